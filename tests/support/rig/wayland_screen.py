"""What the Wayland compositors of the rig have in common."""

import subprocess

from rig import processes
from rig.wayland_input import LEFT_BUTTON


class WaylandScreen:
    """A compositor, with the tools that work in those which let any program look and copy."""

    def __init__(self, household, surroundings):
        self._household = household
        self._runtime = surroundings.runtime
        self._display_file = surroundings.base / "display"
        self._look_file = surroundings.base / "look.png"
        self.process = self.input = self._owner = None

    def start_compositor(self, command, environment):
        """Starts the compositor and waits for its socket, which every program is then told of."""
        self.process = self._household.start(command, environment)

        def socket():
            if self.process.poll() is not None:
                raise RuntimeError(f"{command[0]} ended with {self.process.returncode}:\n"
                                   + self._household.log())
            return [path for path in self._runtime.glob("wayland-*") if path.is_socket()]

        path, = processes.wait_until(socket, 20, f"a Wayland socket of {command[0]}")
        self._household.environment["WAYLAND_DISPLAY"] = path.name
        return path

    def tell_display(self):
        """The program by which a compositor that starts it tells us its X display."""
        program = self._display_file.with_suffix(".sh")
        program.write_text("#!/bin/sh\n"
                           f'printf "%s\\n" "$DISPLAY" "$XAUTHORITY" >"{self._display_file}.new"\n'
                           f'mv "{self._display_file}.new" "{self._display_file}"\n')
        program.chmod(0o700)
        return str(program)

    def note_display(self):
        """Tells every program of the X display, once the compositor has told it."""
        processes.wait_until(self._display_file.exists, 20, "an X display of the compositor")
        display, authority = self._display_file.read_text().splitlines()
        self._household.environment["DISPLAY"] = display
        if authority:
            self._household.environment["XAUTHORITY"] = authority

    def close(self):
        """Takes our own keyboard and mouse away, and what was copied by us."""
        # A wl-copy that is ended otherwise leaves a file behind.
        if self._owner and self._owner.poll() is None and self.process.poll() is None:
            self._household.run(["wl-copy", "--clear"], timeout=10)
            self._owner.wait(10)
        if self.input:
            self.input.close()

    def wait_until_ready(self):
        """Waits until windows can be opened."""

    def run(self, *command, **more):
        """Runs a program to its end and returns its output."""
        return self._household.run(command, stdout=subprocess.PIPE, text=True, **more).stdout

    # Windows

    @staticmethod
    def is_title(text, title):
        """Whether a window's title is this one, but for the program's name."""
        return text.partition(" — ")[0] == title

    def windows(self, title):
        """The ids of the windows with exactly this title, but for the program's name."""
        raise NotImplementedError

    def _focus(self, window):
        """Gives a window the keyboard."""
        raise NotImplementedError

    def wait_for_window(self, title, seconds=10):
        """Waits until a window of this title is there and has the keyboard; gives its id."""
        window, = processes.wait_until(lambda: self.windows(title), seconds, f"window {title!r}")
        self._focus(window)
        return window

    # Keyboard and mouse

    def key(self, *keys):
        """Presses and releases keys, named as in "ctrl+Page_Down"."""
        for key in keys:
            self.input.key(key)

    def type(self, text):
        """Types text."""
        self.input.type(text)

    def click(self, x, y, button=LEFT_BUTTON):
        """Clicks with the mouse pointer, in pixels of the screen."""
        self.input.click(x, y, button)

    # Pictures

    def picture(self, path):
        """Saves what is on the screen."""
        self.run("grim", path)

    def _look(self):
        """What is on the screen, as a picture that can be compared."""
        self.picture(self._look_file)
        return self._look_file.read_bytes()

    def _still(self, seconds):
        pictures = []

        def still():
            pictures.append(self._look())
            return pictures[-1] in pictures[-3:-1]

        processes.wait_until(still, seconds, "a still picture", interval=0.05)
        return pictures[-1]

    def still_picture(self, path, seconds=10):
        """Saves what is on the screen as soon as nothing moves any more but a text cursor."""
        path.write_bytes(self._still(seconds))

    # The clipboard

    def _clipboard_bytes(self, target):
        result = self._household.run(["wl-paste", "--no-newline", "--type", target], check=False,
                                     stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=10)
        return result.stdout if result.returncode == 0 else None

    def clipboard(self, target="text/plain;charset=utf-8"):
        """The clipboard as text; None when nobody owns it or it holds no text."""
        data = self._clipboard_bytes(target)
        return None if data is None else data.decode()

    def clipboard_types(self):
        """The forms in which the clipboard is offered."""
        return self.run("wl-paste", "--list-types").splitlines()

    def set_clipboard(self, data, target="text/plain;charset=utf-8"):
        """Another program puts text, or bytes of another kind, on the clipboard."""
        data = data.encode() if isinstance(data, str) else data
        self._owner = self._household.start(["wl-copy", "--foreground", "--type", target],
                                            stdin=subprocess.PIPE)
        self._owner.stdin.write(data)
        self._owner.stdin.close()
        processes.wait_until(lambda: self._is_on_clipboard(data, target), 5, "the clipboard")

    def _is_on_clipboard(self, data, target):
        return self._clipboard_bytes(target) == data
