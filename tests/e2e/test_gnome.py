"""GNOME with its own portal: the shortcut that a person allows in a dialog, real keys throughout.

GNOME has no tray: the program is used by its shortcut, its actions and its menu in a window."""

import pathlib
import unittest

from desktop_case import PROGRAM
from instance_case import MENU, InstanceCase
from test_shortcut import REFUSED, REGISTERED, TRIGGERED
from upload_case import BASE, DONE
from wayland_case import NAME, TEXT, WaylandCase

ENTRY = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "org.tessery.Tessery.desktop"
DIALOG = "Add Keyboard Shortcuts"
ADD, CANCEL = "alt+a", "Escape"
SHORTCUT, OTHER_SHORTCUT = "super+shift+u", "ctrl+alt+1"
OTHER = {"key": "1", "modifiers": ["⌥", "⌃"]}
MONITORING = "✅ Monitoring started successfully"


class GnomeCase(WaylandCase, InstanceCase):
    """The program is installed: without a desktop entry the portal knows no program."""

    desktop_options = {"compositor": "gnome-shell", "tray": None, "xwayland": True}

    def setUp(self):
        super().setUp()
        folder = self.desktop.surroundings.home / ".local" / "share" / "applications"
        folder.mkdir(parents=True)
        text = ENTRY.read_text(encoding="utf-8").replace("Exec=tessery", f"Exec={PROGRAM}")
        (folder / ENTRY.name).write_text(text, encoding="utf-8")

    def start_with(self, answer=None, line=REGISTERED, **changes):
        """Starts the program, answers the dialog and waits for what is said of the shortcut."""
        self.store_settings(**changes)
        program = self.start()
        if answer:
            self.answer(answer)
        program.wait_for_line(line, 30)
        return program

    def answer(self, key):
        """Waits for the dialog and answers it by keyboard."""
        self.desktop.screen.wait_for_window(DIALOG, 60)
        self.desktop.screen.key(key)

    def upload(self, shortcut=SHORTCUT, count=1):
        """Presses the shortcut, and sees the text of the clipboard published."""
        text = f"{TEXT} {count}"
        self.desktop.screen.set_clipboard(text)
        self.desktop.screen.key(shortcut)
        self.desktop.notifications.wait_for(DONE, 20, count)
        link = self.desktop.screen.clipboard()
        self.assertRegex(link, rf"^{BASE}/clipboard_\d+\.txt$")
        self.assertEqual(self.on_server()[link.rsplit("/", 1)[1]], text.encode())


class ShortcutTest(GnomeCase):
    """What the person says in the dialog holds."""

    def test_allowed_shortcut_publishes_the_clipboard(self):
        self.store_settings()
        program = self.start()
        self.desktop.screen.wait_for_window(DIALOG, 60)
        self.picture("gnome-dialog")
        self.assertNotIn(REGISTERED, "".join(program.output.all))
        self.answer(ADD)
        program.wait_for_line(f"{REGISTERED}⌘⇧U", 30)
        self.upload()
        self.assertEqual(program.terminate(), 0)

    def test_it_is_asked_once(self):
        self.start_with(ADD).terminate()
        self.start_with()
        self.upload()

    def test_another_shortcut_is_asked_for_anew(self):
        self.start_with(ADD).terminate()
        program = self.start_with(ADD, f"{REGISTERED}⌥⌃1", uploadClipboardShortcut=OTHER)
        self.desktop.screen.key(SHORTCUT)
        self.upload(OTHER_SHORTCUT)
        self.assertEqual(program.output.all.count(TRIGGERED), 1)

    def test_refused_shortcut_is_told_and_does_nothing(self):
        program = self.start_with(CANCEL, REFUSED)
        self.desktop.screen.set_clipboard("private")
        self.desktop.screen.key(SHORTCUT)
        # By the time another way has worked, the key would have.
        self.act("upload-clipboard")
        self.desktop.notifications.wait_for(DONE)
        self.assertEqual(program.output.all.count(TRIGGERED), 1)

    def test_ended_program_has_no_shortcut(self):
        self.start_with(ADD).terminate()
        self.desktop.screen.key(SHORTCUT)
        program = self.start_with()
        self.upload()
        self.assertEqual(program.output.all.count(TRIGGERED), 1)

    def test_program_ends_while_the_dialog_is_open(self):
        self.store_settings()
        program = self.start()
        self.desktop.screen.wait_for_window(DIALOG, 60)
        self.assertEqual(program.terminate(), 0)


class MenuTest(GnomeCase):
    """The menu is a window."""

    def test_screenshot_is_published(self):
        program = self.start_with(ADD)
        self.assert_choice(program, "X11, ")
        self.hand_over()
        self.desktop.screen.wait_for_window(MENU)
        self.picture("gnome-menu")
        self.desktop.screen.key("Return")
        program.wait_for_line(MONITORING)
        data = self.desktop.take_screenshot(NAME).read_bytes()
        self.assert_pasted(self.wait_for_upload(NAME))
        self.assertEqual(self.on_server(), {NAME: data})

    def test_actions_by_a_command(self):
        program = self.start_with(ADD)
        self.desktop.screen.set_clipboard(TEXT)
        self.hand_over("upload-clipboard")
        self.desktop.notifications.wait_for(DONE)
        self.hand_over("quit")
        self.assertEqual(program.wait(), 0)


if __name__ == "__main__":
    unittest.main()
