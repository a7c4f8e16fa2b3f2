"""The settings window as somebody uses it who has a keyboard and a screen reader."""

from rig import processes

TITLE = "Settings"
# More stops than any tab has.
MOST_STOPS = 30


class SettingsWindow:
    """The open settings window of a program. The desktop must have a bus for screen readers."""

    def __init__(self, desktop, program):
        self._screen = desktop.screen
        desktop.tray_item(program).click("Settings...")
        self._screen.wait_for_window(TITLE)
        self.window = desktop.accessibility.window(program.pid, TITLE)

    # Looking

    def all(self, *roles):
        """What can be seen, all of it or only that of some roles."""
        return [node for node in self.window.all() if not roles or node.role in roles]

    def find(self, name, *roles):
        """What can be seen and is called by this name, or stands beside it as a label."""
        for node in self.all(*roles):
            if node.role != "label" and name in (node.name, node.label):
                return node
        raise LookupError(f"no {name!r} in {self.all()}")

    def names(self):
        """The names of all that can be seen."""
        return [node.name for node in self.all()]

    def focused(self):
        """What has the keyboard; None when nothing has."""
        return next((node for node in self.all() if "focused" in node.states), None)

    def badge(self):
        """What the badge in the footer says; None when there is none."""
        # It may be gone again before all the rest has been looked at.
        return next((node.name for node in self.window.all_from_the_end()
                     if node.role == "alert message"), None)

    def wait_for_badge(self, text, seconds=10):
        """Waits until the badge says this, or is gone if `text` is None."""
        processes.wait_until(lambda: self.badge() == text, seconds,
                             lambda: f"badge {text!r}, not {self.badge()!r}")

    def wait_for_name(self, name, seconds=5):
        """Waits until something is called by this name."""
        processes.wait_until(lambda: name in self.names(), seconds, f"{name!r} in the window")

    # Using the keyboard

    def stop_after(self, key, before):
        """Presses a key that moves the keyboard on; gives where it is then."""
        self._screen.key(key)

        def moved():
            now = self.focused()
            return now if now not in (None, before) else None

        return processes.wait_until(moved, 5, f"{key} moves the keyboard on")

    def go_to(self, name, *roles):
        """Goes to a control with the Tab key, seeing that it gets there; gives it."""
        goal = self.find(name, *roles)
        now = self.focused()
        seen = [now]
        while now != goal:
            if len(seen) > MOST_STOPS:
                raise LookupError(f"the Tab key does not lead to {goal} but to {seen}")
            now = self.stop_after("Tab", now)
            seen.append(now)
        return goal

    def press(self, name, *roles):
        """Goes to a control and presses it."""
        self.go_to(name, *roles)
        self._screen.key("space")

    def fill(self, name, text):
        """Goes to a field and types over what it holds."""
        field = self.go_to(name, "text", "password text")
        self._screen.key("ctrl+a", "Delete")
        self._screen.type(text)
        if field.role == "text":
            processes.wait_until(lambda: field.text == text, 5,
                                 lambda: f"{text!r} in {name!r}, not {field.text!r}")

    def open_tab(self, name):
        """Goes from tab to tab until this one is shown."""
        tab = self.find(name, "page tab")
        for _ in self.all("page tab"):
            if "selected" in tab.states:
                return
            before = self.focused()
            self.stop_after("ctrl+Page_Down", before)
        raise LookupError(f"{tab} is not shown")

    def save(self):
        """Saves, and waits until that is told."""
        self.press("Save")
        self.wait_for_badge("Saved!")

    def close(self):
        """Closes the window."""
        self._screen.key("Escape")
        processes.wait_until(lambda: not self._screen.windows(TITLE), 5, "the window is closed")
