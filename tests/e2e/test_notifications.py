"""Services that show notifications: none, another kind, one that is started again."""

import unittest

from rig import processes
from rig.notifications import NAME as NOTIFICATIONS
from upload_case import BASE, BEGUN, DONE, UploadCase

NOBODY = ("The name org.freedesktop.Notifications was not provided by any .service files")


class NoServiceTest(UploadCase):
    """Nobody shows notifications."""

    desktop_options = {"notifications": False}

    def test_everything_else_works(self):
        self.store_settings()
        program, item = self.start_monitoring()
        program.wait_for_line(f"❌ Notification permission error: {NOBODY}")
        self.drop("Screenshot.png")
        item.wait_for_label("✅ Uploaded: Screenshot.png")
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/Screenshot.png")
        self.assertEqual(self.on_server(), {"Screenshot.png": b"A picture."})
        complaint = f"❌ Failed to send notification: {NOBODY}"
        program.wait_for_line(complaint, after=program.wait_for_line(complaint) + 1)
        self.assert_idle(program)

    def test_service_that_comes_later(self):
        self.store_settings()
        program, item = self.start_monitoring()
        self.drop("Screenshot one.png")
        item.wait_for_label("✅ Uploaded: Screenshot one.png")
        self.desktop.start_notification_daemon()
        self.desktop.bus.wait_for_owner(NOTIFICATIONS)
        self.drop("Screenshot two.png")
        item.wait_for_label("✅ Uploaded: Screenshot two.png")
        processes.wait_until(lambda: len(self.shown()) == 2, 5, "two notifications")
        self.assertEqual([call.summary for call in self.shown()], [BEGUN, DONE])

    def shown(self):
        """The notifications that somebody has shown."""
        return [call for call in self.desktop.notifications.all if call.id is not None]


class PlainServiceTest(UploadCase):
    """The service takes every character for itself."""

    desktop_options = {"notifications": False}

    def test_nothing_is_escaped(self):
        self.desktop.household.start([
            "/usr/bin/python3", "-m", "dbusmock", "--session", "--template", "notification_daemon",
            "--parameters", '{"capabilities": "body"}'])
        self.desktop.bus.wait_for_owner(NOTIFICATIONS)
        self.store_settings()
        program, item = self.start_monitoring()
        program.wait_for_line("✅ Notification permission granted")
        name = "Screenshot <b>&amp;x.png"
        self.drop(name)
        item.wait_for_label(f"✅ Uploaded: {name}")
        self.assertEqual(self.desktop.notifications.wait_for(BEGUN).body, name)
        self.assertEqual(self.desktop.notifications.wait_for(DONE).body,
                         f"URL copied to clipboard: {BASE}/{name}")


class RestartedServiceTest(UploadCase):
    """The service does not stay the same."""

    def test_service_that_is_started_again(self):
        self.store_settings()
        program, _ = self.start_monitoring()
        self.drop("Screenshot one.png")
        self.wait_for_upload("Screenshot one.png")
        self.desktop.stop_notification_daemon()
        self.desktop.start_notification_daemon()
        self.desktop.bus.wait_for_owner(NOTIFICATIONS)
        self.drop("Screenshot <two>.png")
        self.wait_for_upload("Screenshot <two>.png", 2)
        self.assertEqual(self.titles(), [BEGUN, DONE] * 2)
        self.assertFalse(any("❌" in line for line in program.output.all))

    def test_service_that_hangs_holds_nothing_up(self):
        self.store_settings()
        _, item = self.start_monitoring()
        self.desktop.pause_notification_daemon()
        self.drop("Screenshot one.png")
        item.wait_for_label("✅ Uploaded: Screenshot one.png")
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/Screenshot one.png")


if __name__ == "__main__":
    unittest.main()
