"""Watching the Desktop folder: what is uploaded, what is not, and when."""

import json
import os
import unicodedata
import unittest

from rig import processes, settings_file
from servers import Server
from upload_case import BASE, BEGUN, DONE, FAILED, PASSWORD, UploadCase

CALLED_BACK = "📸 Screenshot callback received for: "
STARTED = "🚀 Starting monitoring..."
RESCANNED = "📸 FSEvents triggered"

# Of each alphabet, in the two forms in which accented letters are written.
LOCALISED = [unicodedata.normalize(form, name) for form, name in (
    ("NFC", "Bildschirmfoto 2026-01-31 um 10.20.30.png"),
    ("NFC", "Capture d'écran 2026-01-31 à 10.20.30.png"),
    ("NFD", "Capture d'écran 2026-01-31 à 10.20.31.png"),
    ("NFC", "Näyttökuva 2026-01-31.png"),
    ("NFD", "NÄYTTÖKUVA 2026-02-01.png"),
    ("NFC", "Снимок экрана — 2026-01-31.png"),
    ("NFC", "螢幕截圖 2026-01-31 上午10.20.30.png"),
    ("NFC", "スクリーンショット 2026-01-31 10.20.30.png"),
    ("NFD", "스크린샷 2026-01-31.png"),
    ("NFC", "لقطة شاشة 2026-01-31.png"),
    ("NFC", "צילום מסך 2026-01-31.png"),
    ("NFD", "Ảnh chụp màn hình 2026-01-31.png"),
    ("NFC", "Ekran Görüntüsü 2026-01-31.png"),
)]


class MonitoringTest(UploadCase):
    """With settings under which uploads succeed."""

    def setUp(self):
        super().setUp()
        self.store_settings()

    def count(self, program, text):
        """How many lines the program has written that hold the text."""
        return sum(text in line for line in program.output.all)

    def test_start_stop_and_start_again(self):
        program, item = self.start_monitoring()
        item.click("Stop Monitoring")
        item.wait_for_label("Monitoring stopped")
        self.assertEqual(item.labels()[:4],
                         ["Monitoring Inactive", "Monitoring stopped", None, "Start Monitoring"])
        self.drop("Screenshot while stopped.png")
        item.click("Start Monitoring")
        program.wait_for_line("✅ Monitoring started successfully",
                              after=program.wait_for_line("📸 Known files at start: 1"))
        item.wait_for_label("Monitoring for screenshots...")
        self.drop("Screenshot one.png")
        self.wait_for_upload("Screenshot one.png")
        self.assertEqual(list(self.on_server()), ["Screenshot one.png"])
        self.assertEqual(self.count(program, CALLED_BACK), 1)
        self.assertEqual(self.titles(), [BEGUN, DONE])

    def test_two_quick_clicks_start_and_stop(self):
        program = self.start()
        item = self.desktop.tray_item(program)
        number = item.entry("Start Monitoring").id
        for _ in range(2):
            item.send_event(number, "clicked")
        item.wait_for_label("Monitoring stopped")
        self.assertEqual(self.count(program, STARTED), 1)

    def test_screenshots_of_before_are_left_alone(self):
        self.drop("Screenshot of before.png")
        program, _ = self.start_monitoring()
        self.drop("Screenshot of now.png")
        self.wait_for_upload("Screenshot of now.png")
        self.assertEqual(list(self.on_server()), ["Screenshot of now.png"])
        self.assertEqual(self.count(program, CALLED_BACK), 1)

    def test_name_that_was_there_before_is_not_uploaded_again(self):
        program, _ = self.start_monitoring()
        path = self.drop("Screenshot again.png")
        self.wait_for_upload("Screenshot again.png")
        os.unlink(path)
        program.wait_for_line("📸 Found 0 files in directory")
        self.drop("Screenshot again.png", b"Another picture.")
        self.drop("Screenshot next.png")
        self.wait_for_upload("Screenshot next.png", 2)
        self.assertEqual(self.on_server()["Screenshot again.png"], b"A picture.")
        self.assertEqual(self.count(program, CALLED_BACK), 2)

    def test_two_screenshots_at_once(self):
        program, item = self.start_monitoring()
        files = {"Screenshot one.png": b"The first.", "Screenshot two.png": b"The second."}
        for name, data in files.items():
            self.drop(name, data)
        last = self.desktop.notifications.wait_for(DONE, count=2)
        calls = [call for call in self.desktop.notifications.all if call.summary == DONE]
        self.assertEqual({call.body for call in calls},
                         {f"URL copied to clipboard: {BASE}/{name}" for name in files})
        self.assertEqual(sorted(call.body for call in self.desktop.notifications.all
                                if call.summary == BEGUN), sorted(files))
        self.assertEqual(self.on_server(), files)
        link = last.body.removeprefix("URL copied to clipboard: ")
        self.assertEqual(self.desktop.screen.clipboard(), link)
        item.wait_for_label("✅ Uploaded: " + link.removeprefix(f"{BASE}/"))
        self.assert_idle(program)

    def test_localised_names(self):
        program, _ = self.start_monitoring()
        files = {name: name.encode() for name in LOCALISED}
        self.assertEqual(len(files), len(LOCALISED))
        for name, data in files.items():
            self.drop(name, data)
        self.desktop.notifications.wait_for(DONE, count=len(files))
        self.assertEqual(self.on_server(), files)
        self.assertEqual(
            {call.body for call in self.desktop.notifications.all if call.summary == DONE},
            {f"URL copied to clipboard: {BASE}/{name}" for name in files})
        self.assert_idle(program)

    def test_other_images_are_told_of_and_left_alone(self):
        diagnostic = "⚠️ File 'Photo.PNG' has image extension but doesn't match screenshot pattern"
        program, _ = self.start_monitoring()
        self.drop("Photo.PNG")
        self.drop("notes.txt")
        program.wait_for_line(diagnostic)
        self.drop("Screenshot list.txt")
        self.wait_for_upload("Screenshot list.txt")
        self.assertEqual(list(self.on_server()), ["Screenshot list.txt"])
        self.assertEqual(self.count(program, RESCANNED), 2)
        self.assertEqual(self.count(program, diagnostic), 2)
        self.assertEqual(self.titles(), [BEGUN, DONE])

    def test_name_that_is_no_text_is_told_of_and_left_alone(self):
        program, _ = self.start_monitoring()
        self.drop(b"Screenshot \xff\n.png")
        self.drop("Screenshot good.png")
        self.wait_for_upload("Screenshot good.png")
        self.assertEqual(list(self.on_server()), ["Screenshot good.png"])
        self.assertIn("⚠️ File 'Screenshot \\xFF\\x0A.png' skipped: its name is not valid UTF-8",
                      program.output.all)

    def test_screenshot_that_is_written_slowly_is_uploaded_once(self):
        program, _ = self.start_monitoring()
        path = self.desktop.surroundings.desktop_folder / "Screenshot slow.png"
        with open(path, "wb") as file:
            file.write(b"The beginning, ")
            file.flush()
            program.wait_for_line(RESCANNED)
            file.write(b"the end.")
        self.wait_for_upload("Screenshot slow.png")
        program.wait_for_line(RESCANNED, after=program.wait_for_line(RESCANNED) + 1)
        self.drop("Screenshot next.png")
        self.wait_for_upload("Screenshot next.png", 2)
        self.assertEqual(self.count(program, CALLED_BACK), 2)
        self.assertEqual(self.on_server()["Screenshot slow.png"], b"The beginning, the end.")

    def test_stopping_lets_an_upload_finish(self):
        with Server("pyftpdlib", password=PASSWORD, rate=100_000) as slow:
            self.store_settings(slow)
            program, item = self.start_monitoring()
            self.drop("Screenshot big.png", bytes(200_000))
            processes.wait_until(lambda: processes.descendants(program.pid), 10, "an upload")
            item.click("Stop Monitoring")
            item.wait_for_label("Monitoring stopped")
            self.wait_for_upload("Screenshot big.png")
            item.wait_for_label("✅ Uploaded: Screenshot big.png")
            self.assertEqual(item.labels()[0], "Monitoring Inactive")


class FailingTest(UploadCase):
    """Uploads that do not come about."""

    server_kind = "closed"

    def setUp(self):
        super().setUp()
        self.desktop.surroundings.choose_client_ports()

    def test_failing_upload_leaves_the_clipboard_alone(self):
        self.store_settings_for_silence(self.server, "FTP")
        self.desktop.screen.set_clipboard("left alone")
        program, item = self.start_monitoring()
        self.drop("Screenshot one.png")
        failure = self.desktop.notifications.wait_for(FAILED)
        self.assertEqual(failure.body,
                         "Connection failed: Could not connect to server. Check hostname and port.")
        self.assertEqual(self.desktop.screen.clipboard(), "left alone")
        item.wait_for_label(f"❌ Upload failed: {failure.body}")
        self.assertEqual(item.labels()[0], "Monitoring Active")
        self.drop("Screenshot two.png")
        self.desktop.notifications.wait_for(FAILED, count=2)
        self.assertEqual(self.titles(), [BEGUN, FAILED] * 2)
        self.assert_idle(program)

    def test_settings_that_become_invalid(self):
        self.store_settings_for_silence(self.server, "FTP")
        self.desktop.screen.set_clipboard("left alone")
        program, item = self.start_monitoring()
        self.desktop.keyring.forget()
        item.wait_until_enabled("Stop Monitoring", False)
        self.drop("Screenshot one.png")
        error = self.desktop.notifications.wait_for("Upload Error")
        self.assertEqual(error.body, "Please configure server settings first")
        self.assertEqual(error.hints["sound-name"], "dialog-error")
        item.wait_for_label("Error: Settings not configured")
        self.assertEqual(program.output.all[-2:],
                         ["🎯 handleNewScreenshot called for: Screenshot one.png",
                          "❌ Settings not valid"])
        self.assertEqual(self.titles(), ["Upload Error"])
        self.assertEqual(self.desktop.screen.clipboard(), "left alone")
        self.assert_idle(program)

    def test_nothing_can_be_chosen_while_settings_are_invalid(self):
        for missing in ("hostname", "username", "publicURLBase"):
            with self.subTest(missing):
                self.desktop.keyring.store("password")
                self.desktop.write_settings(**{"hostname": "127.0.0.1", "username": "user",
                                               "publicURLBase": BASE, missing: ""})
                program = self.start()
                item = self.desktop.tray_item(program)
                enabled = [entry.enabled for entry in item.menu() if entry.type != "separator"]
                self.assertEqual(enabled, [True, True, False, False, True, True])
                item.send_event(item.entry("Start Monitoring").id, "clicked")
                item.click("Quit")
                program.wait()
                self.assertNotIn(STARTED, program.output.all)


class FolderTest(UploadCase):
    """The Desktop folder comes, goes and is another one."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.folder = self.desktop.surroundings.desktop_folder

    def test_folder_that_is_made_later(self):
        self.folder.rmdir()
        program, item = self.start_monitoring()
        program.wait_for_line("⚠️ No access to Desktop, requesting permission...")
        self.assertIn(f"📸 Using sandboxed Desktop: {self.folder}", program.output.all)
        title = "Please select your Desktop folder to allow screenshot monitoring"
        self.desktop.screen.wait_for_window(title)
        item.wait_for_label("Monitoring for screenshots...")
        self.folder.mkdir()
        self.drop("Screenshot one.png")
        self.wait_for_upload("Screenshot one.png")
        self.picture("folder-question")
        self.desktop.screen.key("Escape")
        program.wait_for_line("❌ Desktop access denied")

    def test_folder_that_cannot_be_found_is_asked_for(self):
        self.folder.rmdir()
        program, _ = self.start_monitoring()
        self.desktop.screen.wait_for_window(
            "Please select your Desktop folder to allow screenshot monitoring")
        self.desktop.screen.type(str(self.desktop.surroundings.home))
        self.desktop.screen.key("Return")
        program.wait_for_line("✅ Desktop access granted")

    def test_folder_with_a_localised_name(self):
        self.folder.rename(self.folder.with_name("Schreibtisch"))
        (self.desktop.surroundings.config / "user-dirs.dirs").write_text(
            'XDG_DESKTOP_DIR="$HOME/Schreibtisch"\n')
        program, _ = self.start_monitoring()
        (self.folder.with_name("Schreibtisch") / "Bildschirmfoto.png").write_bytes(b"Ein Bild.")
        self.wait_for_upload("Bildschirmfoto.png")
        self.assertEqual(self.on_server(), {"Bildschirmfoto.png": b"Ein Bild."})
        self.assertIn(f"📸 Using sandboxed Desktop: {self.folder.with_name('Schreibtisch')}",
                      program.output.all)
        self.assertNotIn("⚠️ No access to Desktop, requesting permission...", program.output.all)

    def test_folder_that_is_replaced(self):
        self.start_monitoring()
        self.drop("Screenshot old.png")
        self.wait_for_upload("Screenshot old.png")
        self.folder.rename(self.folder.with_name("Desktop of before"))
        self.folder.mkdir()
        self.drop("Screenshot new.png")
        self.wait_for_upload("Screenshot new.png", 2)
        (self.folder.with_name("Desktop of before") / "Screenshot elsewhere.png").touch()
        self.drop("Screenshot last.png")
        self.wait_for_upload("Screenshot last.png", 3)
        self.assertEqual(sorted(self.on_server()), ["Screenshot last.png", "Screenshot new.png",
                                                    "Screenshot old.png"])


class RestartTest(UploadCase):
    """What is kept from one run to the next."""

    def test_settings_are_kept_and_monitoring_is_off_again(self):
        self.store_settings(addDateToFilename=True)
        stored = self.desktop.suite_file.read_bytes()
        for run in (1, 2):
            program, item = self.start_monitoring()
            lines = program.output.all
            begin = lines.index("✅ Successfully loaded settings:")
            self.assertEqual(lines[begin + 1:begin + 4], [
                f"   - Hostname: {self.server.host}", "   - Protocol: FTP",
                f"   - Port: {self.server.port}"])
            self.drop(f"Screenshot {run}.png")
            self.desktop.notifications.wait_for(DONE, count=run)
            item.click("Quit")
            self.assertEqual(program.wait(), 0)
        names = sorted(self.on_server())
        self.assertEqual(len(names), 2)
        for run, name in enumerate(names, 1):
            self.assertRegex(name, rf"^Screenshot {run}_20\d\d-\d\d-\d\d\.png$")
        self.assertEqual(self.desktop.suite_file.read_bytes(), stored)
        item = self.desktop.tray_item(self.start())
        self.assertEqual(item.labels()[:4],
                         ["Monitoring Inactive", "Ready", None, "Start Monitoring"])

    def test_settings_of_an_older_version_are_taken_over(self):
        record = settings_file.for_server(self.server, BASE)
        settings_file.write(self.desktop.standard_file,
                            {**record, "password": self.server.password})
        program, _ = self.start_monitoring()
        self.assertIn("Found settings in standard UserDefaults, migrating...", program.output.all)
        self.drop("Screenshot one.png")
        self.wait_for_upload("Screenshot one.png")
        program.terminate()
        for path in (self.desktop.suite_file, self.desktop.standard_file):
            self.assertEqual(json.loads(settings_file.read(path)), record)
        self.assertEqual(self.desktop.keyring.read(), self.server.password)


if __name__ == "__main__":
    unittest.main()
