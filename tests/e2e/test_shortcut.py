"""The global shortcut, pressed while another program is in front."""

import re
import subprocess
import unittest

from rig import keys, processes
from rig.household import Lines
from rig.keys import Keys
from upload_case import BASE, DONE, UploadCase

REGISTERED = "✅ Global hotkey registered: "
REFUSED = "❌ Failed to create event tap. Grant Accessibility permission in System Settings."
TRIGGERED = "📋 Upload clipboard triggered"
# The bits of a key event that tell the layout come after those of modifiers and buttons.
_LAYOUT_SHIFT = 13
HELD = keys.LEFT_SUPER, keys.LEFT_SHIFT


class FrontWindow:
    """A window that has the keyboard and writes down which keys reach it."""

    def __init__(self, desktop):
        process = desktop.household.start(
            ["stdbuf", "-oL", "xev", "-event", "keyboard"],
            stdout=subprocess.PIPE, encoding="utf-8", errors="replace")
        self._lines = Lines(process.stdout)
        desktop.screen.wait_for_window("Event Tester")

    def keys(self):
        """The keys so far: whether it was a press, and which."""
        return [(kind == "Press", int(key)) for kind, _, key in self._events()]

    def layout(self):
        """The layout in which the last key was pressed, the first one being 0."""
        return int(self._events()[-1][1], 16) >> _LAYOUT_SHIFT

    def _events(self):
        return re.findall(r"Key(Press|Release) event.*\n.*\n +state 0x(\w+), keycode (\d+)",
                          "\n".join(self._lines.all))

    def wait_for(self, key, count=1):
        """Waits until a key has been pressed and released here so many times."""
        processes.wait_until(lambda: self.keys().count((False, key)) >= count, 5,
                             f"key {key} in the window")


class ShortcutCase(UploadCase):
    """There is text on the clipboard, and a window of another program in front."""

    # By FTP, the time in the name of a file must not hold the digits 530.
    server_kind = "asyncssh"

    def setUp(self):
        super().setUp()
        self.keys = self.enterContext(Keys(self.desktop.screen.display))
        self.window = FrontWindow(self.desktop)

    def start_with(self, line=REGISTERED, **changes):
        """Starts the program and waits for what it says of the shortcut."""
        self.store_settings(**changes)
        program = self.start()
        program.wait_for_line(line)
        return program

    def upload(self, key, *held, count=1):
        """Presses a shortcut, and sees the text of the clipboard published."""
        text = f"Text number {count}."
        self.desktop.screen.set_clipboard(text)
        self.keys.tap(key, *held)
        self.desktop.notifications.wait_for(DONE, 10, count)
        link = self.desktop.screen.clipboard()
        self.assertRegex(link, rf"^{re.escape(BASE)}/clipboard_\d+\.txt$")
        self.assertEqual(self.on_server()[link.rsplit("/", 1)[1]], text.encode())

    def assert_swallowed(self, key):
        """Fails if a key has reached the window, which sees what is pressed from now on."""
        self.keys.tap(keys.SPACE)
        self.window.wait_for(keys.SPACE)
        self.assertNotIn(key, [seen for _, seen in self.window.keys()])


class ShortcutTest(ShortcutCase):
    """The keyboard is a US one."""

    def test_shortcut_publishes_the_clipboard(self):
        program = self.start_with(f"{REGISTERED}⌘⇧U")
        self.upload(keys.U, *HELD)
        self.upload(keys.U, keys.RIGHT_SHIFT, keys.RIGHT_SUPER, count=2)
        self.assert_swallowed(keys.U)
        self.assertEqual(program.output.all.count(TRIGGERED), 2)
        self.assert_idle(program)

    def test_locks_do_not_matter(self):
        self.start_with()
        for count, lock in enumerate((keys.CAPS_LOCK, keys.NUM_LOCK, keys.CAPS_LOCK), 1):
            self.keys.tap(lock)
            self.upload(keys.U, *HELD, count=count)
        self.assert_swallowed(keys.U)

    def test_other_presses_reach_the_window(self):
        program = self.start_with()
        for held in ((), HELD[:1], HELD[1:], (*HELD, keys.LEFT_ALT), (*HELD, keys.LEFT_CONTROL)):
            self.keys.tap(keys.U, *held)
        self.keys.tap(keys.DIGIT_1, *HELD)
        self.window.wait_for(keys.DIGIT_1)
        self.assertEqual(self.window.keys().count((True, keys.U)), 5)
        self.assertNotIn(TRIGGERED, program.output.all)

    def test_invalid_settings_are_told_and_the_clipboard_stays(self):
        program = self.start_with(publicURLBase="")
        self.desktop.screen.set_clipboard("private")
        self.keys.tap(keys.U, *HELD)
        error = self.desktop.notifications.wait_for("Upload Error")
        self.assertEqual(error.body, "Please configure server settings first")
        program.wait_for_line("❌ Settings not valid")
        self.assertEqual(program.output.all[-2:], [TRIGGERED, "❌ Settings not valid"])
        self.assertEqual(self.desktop.screen.clipboard(), "private")

    def test_another_shortcut(self):
        program = self.start_with(
            f"{REGISTERED}⌥⌃1", uploadClipboardShortcut={"key": "1", "modifiers": ["⌥", "⌃"]})
        self.keys.tap(keys.U, *HELD)
        self.window.wait_for(keys.U)
        self.assertNotIn(TRIGGERED, program.output.all)
        self.upload(keys.DIGIT_1, keys.LEFT_CONTROL, keys.LEFT_ALT)
        self.assert_swallowed(keys.DIGIT_1)

    def test_key_without_a_place_never_fires(self):
        program = self.start_with(uploadClipboardShortcut={"key": " ", "modifiers": ["⌃"]})
        self.keys.tap(keys.SPACE, keys.LEFT_CONTROL)
        self.window.wait_for(keys.SPACE)
        self.assertNotIn(TRIGGERED, program.output.all)

    def test_shortcut_that_another_program_holds(self):
        with Keys(self.desktop.screen.display) as other:
            other.grab(keys.U)
            self.store_settings()
            program, _ = self.start_monitoring()
            program.wait_for_line(REFUSED)
            self.keys.tap(keys.U, *HELD)
            self.drop("Screenshot.png")
            self.wait_for_upload("Screenshot.png")
            self.assertNotIn(TRIGGERED, program.output.all)

    def test_shortcut_is_free_when_the_program_has_ended(self):
        self.start_with().terminate()
        self.keys.tap(keys.U, *HELD)
        self.window.wait_for(keys.U)


class LayoutTest(ShortcutCase):
    """The key is the one in the place, whatever it is called."""

    def set_layout(self, layouts):
        """Sets the layouts; the Menu key goes from one to the next."""
        self.desktop.screen.run("setxkbmap", "-option", "", "-layout", layouts,
                                "-option", "grp:menu_toggle")

    def test_layouts_changed_while_it_runs(self):
        self.start_with()
        for count, layout in enumerate(("fr", "de", "ru", "us"), 1):
            self.set_layout(layout)
            self.upload(keys.U, *HELD, count=count)
        self.assert_swallowed(keys.U)

    def check_second_layout(self, layouts):
        """Toggles the second of two layouts on and off, as a person does."""
        self.start_with()
        self.set_layout(layouts)
        for count, layout in enumerate((1, 0), 1):
            self.keys.tap(keys.MENU)
            self.window.wait_for(keys.MENU, count)
            self.assertEqual(self.window.layout(), layout)
            self.upload(keys.U, *HELD, count=count)
        self.assert_swallowed(keys.U)

    def test_german_layout_toggled(self):
        self.check_second_layout("us,de")

    def test_russian_layout_toggled(self):
        self.check_second_layout("us,ru")


if __name__ == "__main__":
    unittest.main()
