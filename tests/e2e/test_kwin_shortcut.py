"""The global shortcut on kwin, the compositor of KDE Plasma, pressed with real keys."""

import re
import subprocess
import unittest

from kwin_case import KwinCase
from rig import processes
from rig.household import Lines
from settings_window import SettingsWindow

REGISTERED = "✅ Global hotkey registered: "
REFUSED = "❌ Failed to create event tap. Grant Accessibility permission in System Settings."
TRIGGERED = "📋 Upload clipboard triggered"
SHORTCUTS = "org.kde.kglobalaccel"
COMPONENT = "org.tessery.Tessery"
ACTION = [COMPONENT, "uploadClipboard", "Tessery", "Upload from Clipboard"]
# Qt's numbers of Meta, of Shift, and of Meta+Shift+U.
META, SHIFT = 0x10000000, 0x02000000
META_SHIFT_U = META | SHIFT | ord("U")
IN_FORCE_NOW = 6
# In seconds. This kwin draws without a graphics card, before it does anything else.
PATIENCE = 30


class FrontWindow:
    """A window that has the keyboard and writes down which keys reach it."""

    def __init__(self, desktop):
        process = desktop.household.start(["stdbuf", "-oL", "wev", "-f", "wl_keyboard"],
                                          stdout=subprocess.PIPE, encoding="utf-8")
        self._lines = Lines(process.stdout)
        processes.wait_until(lambda: "enter" in self._text(), PATIENCE, "the window has the keyboard")

    def _text(self):
        return "\n".join(self._lines.all)

    def pressed(self):
        """The names of the symbols that were pressed so far."""
        return re.findall(r" key: .*\(pressed\)\n +sym: (\w+)", self._text())

    def wait_for(self, symbol):
        """Waits until a key with this symbol has been pressed here."""
        processes.wait_until(lambda: symbol in self.pressed(), PATIENCE, f"{symbol} in the window")


class KwinShortcutCase(KwinCase):
    """There is a window of another program in front."""

    desktop_options = {"compositor": "kwin", "tray": None, "notifications": False}

    def setUp(self):
        super().setUp()
        self.presses = 0

    def service(self, method, signature, *arguments):
        """Calls KDE's service of shortcuts."""
        return self.desktop.bus.call(SHORTCUTS, "/kglobalaccel", "org.kde.KGlobalAccel", method,
                                     signature, *arguments)

    def start_with(self, line=REGISTERED, **changes):
        """Starts the program and waits for what it says of the shortcut."""
        self.store_settings(**changes)
        program = self.start()
        program.wait_for_line(line, PATIENCE)
        return program

    def triggered(self, program):
        """How often the program has heard its shortcut."""
        return program.output.all.count(TRIGGERED)

    def press(self, program, *keys):
        """Presses shortcuts that the program must hear, one after the other."""
        for key in keys:
            self.desktop.screen.key(key)
            self.presses += 1
            processes.wait_until(lambda: self.triggered(program) == self.presses, PATIENCE,
                                 f"{key} is heard, {self.presses} in all")

    def assert_unheard(self, program, window, symbol, *keys):
        """Fails unless shortcuts reach the window in front, and not the program."""
        for key in keys:
            self.desktop.screen.key(key)
        self.desktop.screen.key("x")
        window.wait_for("x")
        self.assertIn(symbol, window.pressed())
        self.assertEqual(self.triggered(program), self.presses)


class KwinShortcutTest(KwinShortcutCase):
    """Which presses are heard, and by whom."""

    def test_press_is_heard_and_swallowed(self):
        program = self.start_with(f"{REGISTERED}⌘⇧U")
        window = FrontWindow(self.desktop)
        self.press(program, "super+shift+u", "super+shift+u")
        self.desktop.screen.key("x")
        window.wait_for("x")
        self.assertFalse({"u", "U"} & set(window.pressed()), window.pressed())

    def test_other_presses_reach_the_window(self):
        program = self.start_with()
        window = FrontWindow(self.desktop)
        self.assert_unheard(program, window, "U", "super+u", "shift+u", "super+shift+alt+u",
                            "super+shift+ctrl+u")

    def test_digit_with_shift(self):
        program = self.start_with(
            uploadClipboardShortcut={"key": "1", "modifiers": ["⌘", "⇧"]})
        window = FrontWindow(self.desktop)
        self.press(program, "super+shift+1")
        self.assert_unheard(program, window, "1", "super+1")

    def test_every_kind_of_key(self):
        for count, (key, name) in enumerate((("[", "bracketleft"), ("'", "apostrophe"),
                                             ("-", "minus"), ("z", "z"), ("0", "0"))):
            with self.subTest(key):
                self.presses = 0
                program = self.start_with(
                    uploadClipboardShortcut={"key": key, "modifiers": ["⌃", "⇧", "⌥"]})
                self.press(program, f"ctrl+shift+alt+{name}")
                program.terminate()
                self.assertEqual(program.wait(), 0, count)

    def test_key_that_no_shortcut_can_have(self):
        program = self.start_with(uploadClipboardShortcut={"key": " ", "modifiers": ["⌃"]})
        window = FrontWindow(self.desktop)
        self.assert_unheard(program, window, "space", "ctrl+space")

    def test_key_of_another_program_stays_its_own(self):
        other = ["another", "action", "Another Program", "Its Action"]
        self.service("doRegister", "(as)", other)
        self.assertEqual(
            self.service("setShortcut", "(asaiu)", other, [META_SHIFT_U], IN_FORCE_NOW),
            [META_SHIFT_U])
        program = self.start_with(REFUSED)
        self.assertIn("⚠️ Global hotkey: the key belongs to Its Action of Another Program",
                      program.output.all)
        self.assertNotIn(f"{REGISTERED}⌘⇧U", program.output.all)
        self.desktop.screen.key("super+shift+u")
        self.assertEqual(self.service("shortcut", "(as)", other), [META_SHIFT_U])
        self.assertEqual(self.service("shortcut", "(as)", ACTION), [])
        self.assertEqual(self.triggered(program), 0)

    def test_key_is_free_once_the_program_has_ended(self):
        program = self.start_with()
        window = FrontWindow(self.desktop)
        self.press(program, "super+shift+u")
        program.terminate()
        self.assertEqual(program.wait(), 0)
        self.desktop.screen.key("super+shift+u")
        window.wait_for("U")

    def test_next_start_has_the_key_again(self):
        for _ in range(2):
            self.presses = 0
            program = self.start_with(f"{REGISTERED}⌘⇧U")
            self.press(program, "super+shift+u")
            program.terminate()
            self.assertEqual(program.wait(), 0)

    def test_key_changed_in_the_desktops_settings(self):
        program = self.start_with()
        changed = META | ord("K")
        self.service("setForeignShortcut", "(asai)", ACTION, [changed])
        program.wait_for_line("⚠️ Global hotkey: the desktop's settings have changed its key; this "
                              "program's own settings hold again when they are saved, and at the "
                              "next start", PATIENCE)
        self.press(program, "super+k")
        program.terminate()
        self.assertEqual(program.wait(), 0)
        self.presses = 0
        program = self.start_with()
        self.assertEqual(self.service("shortcut", "(as)", ACTION), [META_SHIFT_U])
        self.press(program, "super+shift+u")


class KwinSavedShortcutTest(KwinShortcutCase):
    """The shortcut is changed in the settings window."""

    desktop_options = {"compositor": "kwin", "accessibility": True}

    def test_chosen_shortcut_is_heard_at_once_and_the_old_one_is_not(self):
        program = self.start_with()
        window = SettingsWindow(self.desktop, program)
        window.open_tab("Shortcuts")
        window.press("Ctrl+Shift+U")
        window.save()
        program.wait_for_line(f"{REGISTERED}⌃⇧U", PATIENCE)
        window.close()
        front = FrontWindow(self.desktop)
        self.press(program, "ctrl+shift+u")
        self.assert_unheard(program, front, "U", "super+shift+u")

    def test_recorded_shortcut_is_what_the_key_types_without_modifiers(self):
        program = self.start_with()
        window = SettingsWindow(self.desktop, program)
        window.open_tab("Shortcuts")
        window.press("Record")
        window.wait_for_name("Press keys...")
        self.desktop.screen.key("k", "ctrl+shift+1")
        window.wait_for_name("Shift+Ctrl+1", PATIENCE)
        window.find("Apply").act()  # All keys are swallowed now.
        window.wait_for_name("Record")
        window.save()
        program.wait_for_line(f"{REGISTERED}⇧⌃1", PATIENCE)
        window.close()
        self.press(program, "ctrl+shift+1")


if __name__ == "__main__":
    unittest.main()
