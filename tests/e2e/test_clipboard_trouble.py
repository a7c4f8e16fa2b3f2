"""Uploading the clipboard when something is wrong: with it, with its owner, with the machine."""

import os
import pathlib
import signal
import struct
import subprocess
import time
import unittest

from clipboard_case import EMPTY, IMAGE, TEXT, TRIGGERED, ClipboardCase
from desktop_case import PROGRAM
from rig import processes
from rig.program import with_small_folder
from upload_case import BASE, DONE, FAILED

SILENCE = "⚠️ The program that owns the clipboard does not answer"
SECRET = "📋 The clipboard holds a secret, leaving it alone"
# The program's patience with an owner, and as much again for a busy machine.
SECONDS_OF_PATIENCE = 2 + 2
# For what takes some milliseconds on an idle machine; the conversion takes longer.
SECONDS_OF_SLUGGISHNESS = 1
# The first bytes of every file of this kind.
PNG = b"\x89PNG\r\n\x1a\n"
SMALL = subprocess.run(["convert", "-size", "37x23", "gradient:", "-depth", "8", "png:-"],
                       check=True, stdout=subprocess.PIPE).stdout


class NothingTest(ClipboardCase):
    """What counts as an empty clipboard."""

    def setUp(self):
        super().setUp()
        self.start_program()

    def test_nobody_owns_it(self):
        self.assertEqual(self.owner(), 0)
        self.refuse_as_empty()

    def test_empty_text(self):
        self.own_and_record({"UTF8_STRING": b"", "text/plain": b""})
        self.refuse_as_empty()

    def test_empty_text_of_a_qt_program(self):
        self.own_as_qt({"text": b""})
        self.refuse_as_empty()

    def test_empty_text_with_an_image(self):
        self.own_and_record({"UTF8_STRING": b"", "image/png": SMALL})
        self.assertEqual(self.upload_made_file(IMAGE, "png"), SMALL)

    def test_forms_that_are_of_no_use(self):
        self.own_and_record({"text/html": b"<p>", "application/x-own": b"data"})
        self.refuse_as_empty()

    def test_secret(self):
        self.own_as_qt({"text": b"correct horse", "x-kde-passwordManagerHint": b"secret"})
        self.refuse_as_empty(SECRET)
        self.assertEqual(self.desktop.screen.clipboard(), "correct horse")
        self.assertNotIn("correct horse", "\n".join(self.program.output.all))

    def test_secret_is_not_even_asked_for(self):
        _, asked = self.own_and_record({"UTF8_STRING": b"correct horse", "image/png": SMALL,
                                        "x-kde-passwordManagerHint": b"secret"})
        self.refuse_as_empty(SECRET)
        self.assertEqual(asked.all, ["owner", "TARGETS", "x-kde-passwordManagerHint"])

    def test_secret_of_an_owner_that_comes_while_another_is_read(self):
        first = self.own("xclip", "-quiet", "-selection", "clipboard", "-i",
                         self.file("first", b"harmless"))
        first.send_signal(signal.SIGSTOP)
        self.upload()
        self.program.wait_for_line(TRIGGERED)
        _, asked = self.own_and_record({"UTF8_STRING": b"correct horse",
                                        "x-kde-passwordManagerHint": b"secret"})
        first.send_signal(signal.SIGCONT)
        self.desktop.notifications.wait_for(EMPTY)
        self.assertEqual(asked.all, ["owner"])
        self.assertEqual(self.on_server(), {})

    def test_hint_that_says_public(self):
        self.own_as_qt({"text": b"no secret", "x-kde-passwordManagerHint": b"public"})
        self.assertEqual(self.upload_made_file(TEXT, "txt"), b"no secret")


class FailureTest(ClipboardCase):
    """One notification of the error; the clipboard still holds what was copied."""

    def test_settings_are_not_valid(self):
        self.start_program()
        _, asked = self.own_and_record({"UTF8_STRING": b"text"})
        # The menu hears of a password that goes away, but not of a keyring that does not answer.
        self.desktop.keyring.pause()
        self.upload()
        self.desktop.notifications.wait_for("Upload Error")
        call, = self.desktop.notifications.all
        self.assertEqual(call.body, "Please configure server settings first")
        self.assertEqual(call.hints["sound-name"], "dialog-error")
        self.assertEqual(self.log_of_upload(), [TRIGGERED, "❌ Settings not valid"])
        self.assertEqual(self.item.labels()[1], "Ready")
        self.assertEqual(asked.all, ["owner"])
        self.assert_idle(self.program)

    def test_transfer_of_text(self):
        self.start_program(remotePath=self.server.missingPath)
        self.desktop.screen.set_clipboard("text")
        self.fail_in_transfer(TEXT)
        self.assertEqual(self.desktop.screen.clipboard(), "text")

    def test_transfer_of_an_image(self):
        self.start_program(remotePath=self.server.missingPath)
        self.desktop.screen.set_clipboard(SMALL, "image/png")
        self.fail_in_transfer(IMAGE)
        self.assertEqual(self.clipboard_bytes("image/png"), SMALL)

    def test_web_address(self):
        self.start_program()
        address = "https://files.example/shots/picture.png"
        self.own_as_qt({"text/uri-list": f"{address}\r\n".encode(), "text": address.encode()})
        about = ("📋 Found file URL in clipboard: picture.png", "Uploading from Clipboard",
                 "picture.png", None, None)
        self.fail_in_transfer(about)
        self.assertEqual(self.desktop.screen.clipboard(), address)
        self.assertEqual(self.on_server(), {})

    def test_file_that_is_not_there(self):
        self.start_program()
        path = self.owners_folder / "gone.txt"
        self.own_as_qt({"text/uri-list": f"{path.as_uri()}\r\n".encode()})
        self.fail_in_transfer(("📋 Found file URL in clipboard: gone.txt",
                               "Uploading from Clipboard", "gone.txt", None, None))

    def test_image_that_is_none(self):
        self.start_program()
        for count, data in enumerate((PNG, PNG + b"no chunk", SMALL[:-20], b"BM", b"text"), 1):
            with self.subTest(data):
                self.desktop.screen.set_clipboard(data, "image/png")
                self.refuse(FAILED, "Could not convert clipboard image to PNG", IMAGE[0],
                            count=count)
                self.assertEqual(self.clipboard_bytes("image/png"), data)
        self.forgive_the_decoder()

    def forgive_the_decoder(self):
        """The library that reads PNG has its say where nobody hears it."""
        self.assertEqual(self.program.terminate(), 0)
        self.programs.remove(self.program)
        self.assertEqual([line for line in self.program.errors.all if "libpng" not in line], [])


class FullDiskTest(ClipboardCase):
    """The program's temporary folder takes next to nothing."""

    def start_in_small_folder(self):
        """Starts the program with a temporary folder of 64 KB, which it alone sees."""
        small = self.desktop.surroundings.base / "small"
        small.mkdir(mode=0o700)
        self.store_settings()
        self.program = self.desktop.start_program(
            *with_small_folder([PROGRAM], small, os.getuid(), os.getgid()),
            environment={"XDG_RUNTIME_DIR": str(small)})
        self.programs.append(self.program)
        self.item = self.desktop.tray_item(self.program)
        self.folder = pathlib.Path(f"/proc/{self.program.pid}/root") / small.relative_to("/")

    def temporary_folders(self):
        return list(self.folder.glob("org.tessery.Tessery-*"))

    def assert_not_written(self, body, suffix):
        """The error tells the reason and which file it was."""
        self.assertRegex(body, rf".*/clipboard_\d{{10}}\.{suffix}: No space left on device$")

    def test_text(self):
        self.start_in_small_folder()
        text = "0123456789" * 10_000
        self.desktop.screen.set_clipboard(text)

        def judge(body):
            self.assertTrue(body.startswith("Could not create temp file: Could not write /"), body)
            self.assert_not_written(body, "txt")

        self.refuse(FAILED, judge, TEXT[0])
        self.assertEqual(self.desktop.screen.clipboard(), text)
        self.desktop.screen.set_clipboard("short")
        self.assertEqual(self.upload_made_file(TEXT, "txt"), b"short")

    def test_image(self):
        self.start_in_small_folder()
        picture = subprocess.run(["convert", "-size", "300x300", "plasma:", "-depth", "8", "png:-"],
                                 check=True, stdout=subprocess.PIPE).stdout
        self.desktop.screen.set_clipboard(picture, "image/png")

        def judge(body):
            self.assertTrue(body.startswith("Could not save clipboard image: Could not write /"),
                            body)
            self.assert_not_written(body, "png")

        self.refuse(FAILED, judge, IMAGE[0])
        self.assertEqual(self.clipboard_bytes("image/png"), picture)


class TwoAtOnceTest(ClipboardCase):
    """Both in the same second, so that their files have the same name."""

    def test_both_are_uploaded_and_leave_nothing(self):
        self.start_program()
        self.desktop.screen.set_clipboard("text")
        processes.wait_until(lambda: time.time() % 1 < 0.1, 2, "the beginning of a second")
        self.upload()
        self.upload()
        self.desktop.notifications.wait_for(DONE, count=2)
        (name, data), = self.on_server().items()
        self.assertEqual(self.titles().count(TEXT[1]), 2)
        self.assertNotIn(FAILED, self.titles())
        self.assertTrue(data == b"text" or data.decode().startswith(f"{BASE}/clipboard_"), data)
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/{name}")
        self.assert_idle(self.program)


class OwnerTest(ClipboardCase):
    """Owners of the clipboard that do not do what they should."""

    def setUp(self):
        super().setUp()
        self.start_program()

    def hang(self):
        """A program copies and then hangs."""
        process = self.own("xclip", "-quiet", "-selection", "clipboard", "-i",
                           self.file("form", b"text"))
        process.send_signal(signal.SIGSTOP)
        return process

    def test_hangs(self):
        self.hang()
        self.upload()
        self.program.wait_for_line(TRIGGERED)
        answers = 0
        while not self.titles():
            begun = time.monotonic()
            self.assertEqual(self.item.labels()[1], "Ready")
            self.assertLess(time.monotonic() - begun, SECONDS_OF_SLUGGISHNESS)
            answers += 1
        self.assertGreater(answers, 10)
        self.desktop.notifications.wait_for(EMPTY)
        self.assertEqual(self.titles(), [EMPTY])

    def test_hangs_for_good(self):
        self.hang()
        begun = time.monotonic()
        self.refuse_as_empty()
        self.assertLess(time.monotonic() - begun, SECONDS_OF_PATIENCE)

    def test_hangs_for_a_while(self):
        process = self.hang()
        self.upload()
        self.program.wait_for_line(TRIGGERED)
        process.send_signal(signal.SIGCONT)
        self.desktop.notifications.wait_for(DONE)
        self.assertEqual(list(self.on_server().values()), [b"text"])

    def test_never_gives_one_of_its_forms(self):
        _, asked = self.own_and_record({"image/png": SMALL}, "--silent", "UTF8_STRING")
        begun = time.monotonic()
        self.refuse_as_empty(SILENCE)
        # Whoever has hung once is not asked again.
        self.assertLess(time.monotonic() - begun, SECONDS_OF_PATIENCE)
        self.assertEqual(asked.all, ["owner", "TARGETS", "UTF8_STRING"])

    def test_never_says_whether_it_is_a_secret(self):
        _, asked = self.own_and_record({"UTF8_STRING": b"correct horse"},
                                       "--silent", "x-kde-passwordManagerHint")
        self.refuse_as_empty(SILENCE, SECRET)
        self.assertNotIn("UTF8_STRING", asked.all)

    def test_vanishes_in_the_middle(self):
        process, asked = self.own_and_record({}, "--break-off", "UTF8_STRING")
        self.upload()
        self.assertEqual(process.wait(5), 0)
        self.desktop.notifications.wait_for(EMPTY)
        self.assertEqual(self.titles(), [EMPTY])
        self.assertEqual(asked.all, ["owner", "TARGETS", "UTF8_STRING"])
        self.assertEqual(self.on_server(), {})
        self.assert_idle(self.program)

    def test_quitting_while_it_hangs(self):
        self.hang()
        self.upload()
        self.program.wait_for_line(TRIGGERED)
        begun = time.monotonic()
        self.assertEqual(self.program.terminate(), 0)
        self.assertLess(time.monotonic() - begun, SECONDS_OF_PATIENCE)
        self.assertEqual(self.temporary_folders(), [])

    def test_answers_while_the_program_quits(self):
        process = self.hang()
        self.upload()
        self.program.wait_for_line(TRIGGERED)
        self.program.send_signal(signal.SIGTERM)
        process.send_signal(signal.SIGCONT)
        self.assertEqual(self.program.wait(), 0)
        self.assertEqual(self.temporary_folders(), [])
        self.assertEqual(self.on_server(), {})


class HugeImageTest(ClipboardCase):
    """A hundred megapixels, as the 300 MB of a BMP file."""

    SIDE = 10_000

    def bmp(self):
        """The image, every line of it the same."""
        row = bytes(i // 64 % 256 for i in range(3 * self.SIDE))
        head = struct.pack("<2sIHHI", b"BM", 54 + len(row) * self.SIDE, 0, 0, 54)
        info = struct.pack("<IiiHHIIiiII", 40, self.SIDE, self.SIDE, 1, 24, 0, 0, 0, 0, 0, 0)
        return b"".join([head, info, *[row] * self.SIDE])

    def test_menu_answers_meanwhile(self):
        self.start_program()
        self.own_as_qt({"image/bmp": self.bmp()})
        self.upload()
        reading = converting = 0
        slowest = 0
        while IMAGE[1] not in self.titles():
            begun = time.monotonic()
            self.item.labels()
            slowest = max(slowest, time.monotonic() - begun)
            if IMAGE[0] in self.program.output.all:
                converting += 1
            else:
                reading += 1
        self.assertEqual(self.titles()[0], IMAGE[1])
        # Whoever converts where the menu is answered lets it have one answer, at the most.
        self.assertGreater(min(reading, converting), 3)
        self.assertLess(slowest, SECONDS_OF_SLUGGISHNESS)
        self.desktop.notifications.wait_for(DONE, 60)
        (_, data), = self.on_server().items()
        self.assertEqual(data[:24], PNG + struct.pack(">I4sII", 13, b"IHDR", self.SIDE, self.SIDE))
        self.assertEqual(data[-8:-4], b"IEND")
        self.assert_idle(self.program)


if __name__ == "__main__":
    unittest.main()
