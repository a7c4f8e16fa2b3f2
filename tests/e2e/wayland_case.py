"""What tests on Wayland desktops have in common."""

import subprocess

from desktop_case import PROGRAM
from rig import processes
from upload_case import BASE, DONE, PASSWORD, UploadCase
from wayland_desktop import WaylandDesktop

NAME = "Screenshot 2026-01-31 at 10.20.30.png"
CLIPBOARD = "Upload from Clipboard  ⌘⇧U"
CHOICE = "🪟 Window system: "
MENU = "Screenshot Uploader"
READY = "✅ Notification permission granted"
TEXT = "Copied: naïve, 日本, 🙂\r\nand its second line\n"


class WaylandCase(UploadCase):
    """A Wayland desktop on which screenshots and copied things are uploaded.

    By SFTP, since the names of copied things tell the time: with the digits 530 in it an upload by
    FTP reads as a refused login."""

    desktop_kind = WaylandDesktop
    server_kind = "asyncssh"
    server_options = {"password": PASSWORD}

    def start_set_up(self, **options):
        """Stores settings that upload to the server and starts the program; gives it and its tray
        item."""
        self.store_settings()
        program = self.start(**options)
        item = self.desktop.tray_item(program)
        program.wait_for_line(READY)
        return program, item

    def assert_choice(self, program, text):
        """The program has told which window system it runs on, and why."""
        program.wait_for_line(CHOICE + text)
        self.assertEqual(len([line for line in program.output.all if CHOICE in line]), 1)

    def assert_pasted(self, link):
        """Another program gets this link when it pastes."""
        self.assertEqual(self.desktop.screen.clipboard(), link)

    def publish(self, program, item, data=None):
        """A file appears in the Desktop folder, a real screenshot without `data`; its link must be
        what the next paste gives."""
        item.click("Start Monitoring")
        program.wait_for_line("✅ Monitoring started successfully")
        if data is None:
            data = self.desktop.take_screenshot(NAME).read_bytes()
        else:
            self.drop(NAME, data)
        link = self.wait_for_upload(NAME)
        self.assert_pasted(link)
        self.assertEqual(self.on_server(), {NAME: data})
        item.wait_for_label(f"✅ Uploaded: {NAME}")
        self.assert_idle(program)

    def upload_copied(self, item, data, form, suffix, count=1):
        """Another program copies something, the menu uploads it; gives the name on the server."""
        self.desktop.screen.set_clipboard(data, form)
        before = set(self.on_server())
        item.click(CLIPBOARD)
        self.desktop.notifications.wait_for(DONE, count=count)
        name, = set(self.on_server()) - before
        self.assertTrue(name.endswith(suffix), name)
        self.assert_pasted(f"{BASE}/{name}")
        return name

    def upload_all_that_can_be_copied(self, program, item):
        """Text, an image and a file, byte for byte."""
        name = self.upload_copied(item, TEXT, "text/plain;charset=utf-8", ".txt")
        self.assertEqual(self.on_server()[name], TEXT.encode())
        image = subprocess.run(["convert", "-size", "37x23", "gradient:red-blue", "png:-"],
                               check=True, stdout=subprocess.PIPE).stdout
        name = self.upload_copied(item, image, "image/png", ".png", 2)
        self.assertEqual(self.on_server()[name], image)
        folder = self.desktop.surroundings.base / "files"
        folder.mkdir()
        file = folder / "a b é.txt"
        file.write_bytes(b"The user's own file.\n")
        name = self.upload_copied(item, f"{file.as_uri()}\r\n", "text/uri-list", ".txt", 3)
        self.assertEqual((name, self.on_server()[name]), (file.name, file.read_bytes()))
        self.assert_idle(program)

    def quit(self, program, item):
        """Chooses "Quit"."""
        item.click("Quit")
        self.assertEqual(program.wait(), 0)

    def start_again(self):
        """Starts the program once more, which must hand over to the one that runs."""
        again = self.desktop.start_program(PROGRAM)
        self.assertEqual((again.wait(), again.output.all, again.errors.all), (0, [], []))

    def use_the_menu_without_a_tray(self, program):
        """Started again, the program shows its menu as a window, whose first entry is chosen."""
        self.start_again()
        self.desktop.screen.wait_for_window(MENU)
        self.desktop.screen.key("Return")
        program.wait_for_line("✅ Monitoring started successfully")
        self.wait_for_window_gone(MENU)
        self.start_again()
        self.desktop.screen.wait_for_window(MENU)
        self.desktop.screen.key("Escape")
        self.wait_for_window_gone(MENU)

    def wait_for_window_gone(self, title):
        """Waits until no window has this title."""
        processes.wait_until(lambda: not self.desktop.screen.windows(title), 5,
                             f"no window {title!r}")
