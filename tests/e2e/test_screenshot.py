"""From a screenshot to its link, by every protocol."""

import pathlib
import unittest

from rig.notifications import Notification
from upload_case import BASE, BEGUN, DONE, FAILED, PASSWORD, UploadCase

NAME = "Screenshot 2026-01-31 at 10.20.30.png"
KEYS_FAILED = "SSH key auth failed, trying password: "


def log_of_start(desktop_folder, host):
    """What choosing "Start Monitoring" writes."""
    return [
        "🚀 Starting monitoring...",
        "🚀 Settings valid: true",
        f"🚀 Server: {host}",
        f"📸 Using real Desktop: {desktop_folder}",
        f"📸 Starting screenshot monitoring on: {desktop_folder}",
        "📸 Known files at start: 0",
        "📸 FSEvents stream started: true",
        "✅ Monitoring started successfully",
    ]


def log_of_screenshot(name):
    """What the only file in the Desktop folder writes before its upload."""
    return [
        "📸 FSEvents triggered - checking for new screenshots...",
        "📸 Found 1 files in directory",
        f"✅ New screenshot detected: {name}",
        f"📤 Triggering upload callback for: {name}",
        f"📸 Screenshot callback received for: {name}",
        f"🎯 handleNewScreenshot called for: {name}",
    ]


class ScreenshotCase(UploadCase):
    """A real screenshot is taken; its link must be what the next paste gives."""

    def take(self, name=NAME, **start_options):
        """Starts the program, takes a screenshot and waits for its link."""
        self.program, self.item = self.start_monitoring(**start_options)
        path = self.desktop.take_screenshot(name)
        link = self.wait_for_upload(name)
        self.assertEqual(self.desktop.screen.clipboard(), link)
        self.assertEqual(self.on_server(), {name: path.read_bytes()})
        self.item.wait_for_label(f"✅ Uploaded: {name}")
        self.assertEqual(self.item.labels()[:2], ["Monitoring Active", f"✅ Uploaded: {name}"])
        self.assert_idle(self.program)

    def assert_log(self, *upload_lines, name=NAME):
        """Compares the whole log; `upload_lines` are those of the upload itself."""
        start = log_of_start(self.desktop.surroundings.desktop_folder, self.server.host)
        lines = self.program.output.all
        begin = lines.index(start[0])
        self.assertEqual(lines[begin:], start + log_of_screenshot(name) + list(upload_lines))

    def refuse(self, name=NAME):
        """Starts the program and takes a screenshot that cannot be uploaded; gives the error."""
        self.desktop.screen.set_clipboard("left alone")
        self.program, self.item = self.start_monitoring()
        self.desktop.take_screenshot(name)
        failure = self.desktop.notifications.wait_for(FAILED, 20)
        self.assertEqual(self.titles(), [BEGUN, FAILED])
        self.assertEqual(self.desktop.screen.clipboard(), "left alone")
        self.item.wait_for_label(f"❌ Upload failed: {failure.body}")
        self.assertEqual(self.item.labels()[0], "Monitoring Active")
        self.assert_idle(self.program)
        return failure


class SftpWithKeys(ScreenshotCase):
    """The server lets nobody in by password."""

    server_kind = "sshd"
    server_options = {"no_password": True}

    def test_key_of_an_agent(self):
        self.make_ssh_folder()
        self.store_settings()
        self.take(environment=self.start_agent(self.server.privateKey))
        self.assert_log()

    def test_key_in_the_ssh_folder(self):
        self.desktop.use_key(self.server.privateKey)
        self.store_settings()
        self.take(own_account=True)
        self.assert_log()


class SftpWithKeysElsewhere(ScreenshotCase):
    """Another make of server."""

    server_kind = "proftpd-sftp"

    def test_key_of_an_agent(self):
        self.make_ssh_folder()
        self.store_settings()
        self.take(environment=self.start_agent(self.server.privateKey))
        self.assert_log()


class SftpWithPassword(ScreenshotCase):
    """The server knows no key, and the password is a hard one."""

    server_kind = "sshd"
    server_options = {"no_keys": True, "password": r'-$x [y]{z}"\ é#'}

    def test_with_an_ssh_folder_keys_are_tried_first(self):
        self.make_ssh_folder()
        self.store_settings()
        self.take()
        self.assert_log(KEYS_FAILED + "Upload failed: SFTP process exited with code 255")

    def test_without_an_ssh_folder_keys_are_not_tried(self):
        self.store_settings()
        self.take()
        self.assert_log()

    def test_wrong_password(self):
        self.store_settings()
        self.desktop.keyring.store("another password")
        self.assertEqual(self.refuse().body, "Authentication failed")
        self.assert_log()


class Ftp(ScreenshotCase):
    """Without encryption; also what the person sees and hears of it."""

    server_kind = "proftpd-ftp"
    server_options = {"password": PASSWORD}

    def test_screenshot_is_uploaded(self):
        self.store_settings()
        self.take()
        lines = self.program.output.all
        handled = lines.index(f"🎯 handleNewScreenshot called for: {NAME}")
        source = self.desktop.surroundings.desktop_folder / NAME
        target = f"ftp://127.0.0.1:{self.server.port}/{NAME.replace(' ', '%20')}"
        self.assertEqual(
            lines[handled + 1],
            f'🔍 Executing: /usr/bin/curl --ftp-pasv -T "{source}" [netrc-file] [netrc-file] '
            f"--max-time 60 --connect-timeout 30 -v {target}")
        self.assertEqual(lines[handled + 2], "📋 Full curl output:")
        self.assertIn("> PASS ********", lines)
        self.assertNotIn(self.server.password, "\n".join(lines))

    def test_notifications_have_their_texts_and_hints(self):
        self.store_settings()
        self.take()
        self.desktop.keyring.store("wrong")
        self.desktop.take_screenshot("Screenshot two.png")
        self.desktop.notifications.wait_for(FAILED)
        begun, done, begun_too, failed = self.desktop.notifications.all
        hints = {"urgency": 1, "desktop-entry": "org.tessery.Tessery"}
        self.assert_notification(begun, BEGUN, NAME, hints)
        self.assert_notification(done, DONE, f"URL copied to clipboard: {BASE}/{NAME}", hints)
        self.assert_notification(begun_too, BEGUN, "Screenshot two.png", hints)
        self.assert_notification(failed, FAILED, "Authentication failed",
                                 {**hints, "sound-name": "dialog-error"})
        self.assertEqual(len({call.id for call in (begun, done, begun_too, failed)}), 4)

    def assert_notification(self, call, title, body, hints):
        """Compares everything in a notification, except for the id that the service gave it."""
        hints = {"sender-pid": self.program.pid, **hints} if "sender-pid" in call.hints else hints
        self.assertEqual(call, Notification(
            app_name="Tessery", replaces_id=0, app_icon="org.tessery.Tessery", summary=title,
            body=body, actions=[], hints=hints, timeout=-1, id=call.id, error=None))

    def test_markup_in_a_name_is_shown_as_it_is(self):
        name = "Screenshot <b>&amp;x.png"
        escaped = "Screenshot &lt;b&gt;&amp;amp;x.png"
        self.store_settings()
        self.program, self.item = self.start_monitoring()
        self.desktop.take_screenshot(name)
        done = self.desktop.notifications.wait_for(DONE)
        self.assertEqual(self.desktop.notifications.all[0].body, escaped)
        self.assertEqual(done.body, f"URL copied to clipboard: {BASE}/{escaped}")
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/{name}")
        self.assertEqual(list(self.on_server()), [name])
        self.picture("notification-with-markup")

    def test_made_name_is_in_the_link_and_the_local_one_in_the_status(self):
        self.store_settings(filenameStyle="Random String", publicURLBase=f" {BASE}/\t",
                            randomFilenameConfig={"length": 12, "useLowercase": True,
                                                  "useUppercase": False, "useNumbers": False,
                                                  "useSymbols": False, "customSymbols": ""})
        _, item = self.start_monitoring()
        self.desktop.take_screenshot(NAME)
        self.desktop.notifications.wait_for(DONE)
        (made, data), = self.on_server().items()
        self.assertRegex(made, r"^[a-z]{12}\.png$")
        self.assertEqual(data, (self.desktop.surroundings.desktop_folder / NAME).read_bytes())
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/{made}")
        item.wait_for_label(f"✅ Uploaded: {NAME}")


class Ftps(ScreenshotCase):
    """The server's certificate is signed by nobody but itself."""

    server_kind = "proftpd-ftps"
    server_options = {"password": PASSWORD}

    def test_certificate_that_may_be_insecure(self):
        self.store_settings(allowInsecureCertificates=True)
        self.take()

    def test_certificate_that_must_be_secure(self):
        self.store_settings(allowInsecureCertificates=False)
        self.assertEqual(self.refuse().body,
                         "Upload failed: SSL certificate verification failed. Enable 'Allow "
                         "Self-Signed Certificates' in settings.")
        self.assertEqual(self.on_server(), {})

    def test_certificate_that_is_trusted(self):
        self.store_settings(allowInsecureCertificates=False)
        self.take(environment={"CURL_CA_BUNDLE": self.server.certificate})


if __name__ == "__main__":
    unittest.main()
