"""What a screen reader is told of the settings window, and where the Tab key leads in it."""

import unittest

from rig import processes
from settings_case import SettingsCase
from upload_case import BASE

CONTROLS = ("push button", "check box", "radio button", "combo box", "text", "password text",
            "slider", "page tab")
# Where the Tab key stops on each tab, from the first to the last.
STOPS = {
    "Server": [
        ("page tab", "Server"), ("radio button", "FTPS (FTP with TLS)"), ("text", "Hostname"),
        ("text", "Port"), ("check box", "Passive Mode"), ("text", "Username"),
        ("password text", "Password"), ("text", "Remote Path"), ("text", "Public URL Base"),
        ("check box", "Allow Self-Signed Certificates"), ("combo box", "TLS Version"),
        ("push button", "Test"), ("push button", "Save")],
    "Filenames": [
        ("page tab", "Filenames"), ("radio button", "Random String"),
        ("check box", "Include date in filename"), ("slider", "Length"),
        ("check box", "Lower-case letters, abc"), ("check box", "Upper-case letters, ABC"),
        ("check box", "Digits, 123"), ("check box", "Symbols, #@$"), ("text", "Custom Symbols"),
        ("push button", "Save")],
    "Shortcuts": [
        ("page tab", "Shortcuts"), ("push button", "Record"), ("push button", "Super+Shift+U"),
        ("push button", "Super+Alt+U"), ("push button", "Ctrl+Shift+U"), ("push button", "Save")],
    "General": [
        ("page tab", "General"), ("check box", "Launch at Login"),
        ("push button", "Open System Settings"), ("push button", "Save")],
}


def reads_before(one, other):
    """Whether a reader meets one control before the other: above it, or left of it in a row."""
    (left, top, _, height), (other_left, other_top, _, other_height) = one.extents, other.extents
    middle, other_middle = top + height / 2, other_top + other_height / 2
    if abs(middle - other_middle) < min(height, other_height) / 2:
        return left < other_left
    return middle < other_middle


class AccessibilityTest(SettingsCase):
    """The settings are valid and such that as many controls as can be are shown."""

    def setUp(self):
        super().setUp()
        self.desktop.keyring.store("password")
        self.desktop.write_settings(
            serverType="FTPS (FTP with TLS)", hostname="127.0.0.1", port=990, username="me",
            publicURLBase=BASE, filenameStyle="Random String",
            randomFilenameConfig={
                "length": 12, "useLowercase": True, "useUppercase": False, "useNumbers": True,
                "useSymbols": True, "customSymbols": "-_"})
        self.program = self.start()
        self.window = self.open_window(self.program)

    def stops(self, tab):
        """Where the Tab key leads from a tab until it is back."""
        now = self.window.go_to(tab, "page tab")
        found = [now]
        while (now := self.window.stop_after("Tab", now)) != found[0]:
            found.append(now)
        return found

    def states(self, name, *roles):
        """The states of a control."""
        return self.window.find(name, *roles).states

    def wait_for_state(self, state, name, *roles):
        """Waits until a control is in a state."""
        processes.wait_until(lambda: state in self.states(name, *roles), 5, f"{name!r} is {state}")

    def test_tab_key_leads_to_every_control_in_reading_order(self):
        for tab, expected in STOPS.items():
            with self.subTest(tab):
                self.window.open_tab(tab)
                stops = self.stops(tab)
                self.assertEqual([(stop.role, stop.label) for stop in stops], expected)
                # The page scrolls beneath the tabs and the footer.
                page = [stop for stop in stops[1:] if stop.name not in ("Test", "Save")]
                for before, after in zip(page, page[1:]):
                    self.assertTrue(reads_before(before, after), f"{before}, then {after}")
                back = [stops[0]]
                while len(back) < len(stops):
                    back.append(self.window.stop_after("shift+Tab", back[-1]))
                self.assertEqual(back, [stops[0], *reversed(stops[1:])])

    def test_everything_that_is_shown_has_a_name(self):
        for tab in STOPS:
            with self.subTest(tab):
                self.window.open_tab(tab)
                shown = self.window.all()
                self.assertEqual([node for node in shown if not node.name and not node.label
                                  and (node.role in CONTROLS or node.role == "label"
                                       or "focusable" in node.states)], [])
                self.assertEqual([node for node in shown if "focusable" in node.states
                                  and node.role not in CONTROLS], [])
                for card in self.window.all("panel"):
                    self.assertNotEqual(card.name, "")

    def test_selected_tab_is_told(self):
        for tab in STOPS:
            self.window.open_tab(tab)
            selected = [node.name for node in self.window.all("page tab")
                        if "selected" in node.states]
            self.assertEqual(selected, [tab])

    def test_switches_and_choices_tell_how_they_stand(self):
        self.assertIn("checked", self.states("Passive Mode"))
        self.window.press("Passive Mode")
        processes.wait_until(lambda: "checked" not in self.states("Passive Mode"), 5, "it is off")

        self.window.go_to("FTPS (FTP with TLS)", "radio button")
        self.desktop.screen.key("Left")
        self.wait_for_state("checked", "FTP", "radio button")
        self.assertNotIn("checked", self.states("FTPS (FTP with TLS)", "radio button"))
        self.assertNotIn("Allow Self-Signed Certificates", self.window.names())

    def test_slider_and_list_tell_what_they_stand_at(self):
        self.window.go_to("TLS Version", "combo box")
        self.desktop.screen.key("Down")
        processes.wait_until(lambda: self.window.find("TLS Version").name == "TLS 1.3", 5,
                             "the next version")
        self.window.open_tab("Filenames")
        slider = self.window.go_to("Length", "slider")
        self.assertEqual(slider.value, 12)
        self.desktop.screen.key("Right")
        processes.wait_until(lambda: slider.value == 13, 5, "one more")
        self.assertIn("13 characters", self.window.names())

    def test_missing_field_is_told_and_disables_the_test(self):
        self.assertIn("enabled", self.states("Test"))
        self.window.fill("Hostname", "")
        self.window.wait_for_badge("Fill required fields")
        self.assertNotIn("enabled", self.states("Test"))

    def test_password_is_told_to_nobody(self):
        self.window.fill("Password", "a-secret-of-ours")
        field = self.window.find("Password")
        self.assertEqual(field.role, "password text")
        self.assertNotIn("secret", field.text)


if __name__ == "__main__":
    unittest.main()
