"""The link after the program has quit: a clipboard manager keeps it, where there is one."""

import glob
import signal
import time
import unittest

from clipboard_case import TEXT, ClipboardCase

MANAGER = "CLIPBOARD_MANAGER"
LOST = "⚠️ The clipboard manager does not answer, the clipboard is lost"
# The program's patience with a manager is a second; the toolkit's would be five.
SECONDS_TO_QUIT = 4


class ManagerCase(ClipboardCase):
    """Quits after an upload."""

    def start_manager(self):
        """Starts the clipboard manager of Xfce, with the service that it needs."""
        service, = glob.glob("/usr/lib/*/xfce4/xfconf/xfconfd")
        self.desktop.household.start([service])
        self.desktop.bus.wait_for_owner("org.xfce.Xfconf")
        self.own("xfsettingsd", "--disable-wm-check", "--no-daemon", selection=MANAGER)

    def upload_text(self):
        """Uploads a text; gives the link."""
        self.start_program()
        self.desktop.screen.set_clipboard("text")
        self.upload_made_file(TEXT, "txt")
        return self.desktop.screen.clipboard()

    def quit(self):
        """Quits by the menu; gives what it says meanwhile."""
        said = len(self.program.output.all)
        self.item.click("Quit")
        self.assertEqual(self.program.wait(SECONDS_TO_QUIT), 0)
        return self.program.output.all[said:]


class RealManagerTest(ManagerCase):
    """The one of Xfce."""

    def setUp(self):
        super().setUp()
        self.start_manager()

    def test_link_outlives_the_program(self):
        link = self.upload_text()
        self.assertEqual(self.quit(), [])
        self.assertEqual(self.desktop.screen.clipboard(), link)
        self.assertEqual(self.desktop.screen.clipboard("text/plain"), link)

    def test_link_outlives_the_end_by_a_signal(self):
        link = self.upload_text()
        self.program.send_signal(signal.SIGTERM)
        self.assertEqual(self.program.wait(SECONDS_TO_QUIT), 0)
        self.assertEqual(self.desktop.screen.clipboard(), link)

    def test_what_another_program_has_copied_stays(self):
        self.upload_text()
        self.desktop.screen.set_clipboard("of another program")
        owner = self.owner()
        self.assertEqual(self.quit(), [])
        self.assertEqual(self.owner(), owner)
        self.assertEqual(self.desktop.screen.clipboard(), "of another program")


class StandInTest(ManagerCase):
    """Managers that are of no use."""

    def start_stand_in(self, *options):
        """Starts a manager that keeps nothing; gives the lines that tell what it is asked for."""
        return self.own_and_record({}, *options, selection=MANAGER)[1]

    def test_hangs(self):
        asked = self.start_stand_in("--silent", "SAVE_TARGETS")
        self.upload_text()
        begun = time.monotonic()
        self.assertEqual(self.quit(), [LOST])
        self.assertGreater(time.monotonic() - begun, 0.9)
        # Asked once, and not once more by the toolkit.
        self.assertEqual(asked.all, ["owner", "SAVE_TARGETS"])
        self.assertIsNone(self.desktop.screen.clipboard())

    def test_upload_that_begins_while_it_hangs_ends_with_the_program(self):
        asked = self.start_stand_in("--silent", "SAVE_TARGETS")
        self.upload_text()
        self.program.send_signal(signal.SIGTERM)
        asked.wait_for("SAVE_TARGETS")
        _, read = self.own_and_record({"UTF8_STRING": b"late"}, "--silent", "TARGETS")
        self.desktop.screen.key("super+shift+u")
        read.wait_for("TARGETS")
        # The reading of the clipboard has its own patience.
        self.assertEqual(self.program.wait(2 * SECONDS_TO_QUIT), 0)

    def test_refuses(self):
        asked = self.start_stand_in()
        self.upload_text()
        self.assertEqual(self.quit(), [])
        self.assertIn("SAVE_TARGETS", asked.all)

    def test_is_not_asked_about_what_others_have_copied(self):
        asked = self.start_stand_in("--silent", "SAVE_TARGETS")
        self.upload_text()
        self.desktop.screen.set_clipboard("of another program")
        self.assertEqual(self.quit(), [])
        self.assertEqual(asked.all, ["owner"])

    def test_is_not_asked_if_nothing_was_uploaded(self):
        asked = self.start_stand_in("--silent", "SAVE_TARGETS")
        self.start_program()
        self.assertEqual(self.quit(), [])
        self.assertEqual(asked.all, ["owner"])

    def test_there_is_none(self):
        self.upload_text()
        self.assertEqual(self.quit(), [])
        self.assertIsNone(self.desktop.screen.clipboard())


if __name__ == "__main__":
    unittest.main()
