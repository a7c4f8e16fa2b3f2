"""Uploading what real programs have copied: text, images, files."""

import subprocess
import unittest

from rig import processes
from clipboard_case import IMAGE, TEXT, ClipboardCase, about_file
from upload_case import BASE, BEGUN, DONE

LINES = "one\ntwo\r\nthree\rfour\n\n"
CONTROLS = "\x01\x07\x08\t\x0b\x0c\x1b[1m\x7f\x85\u200b\u2028\ufeff"
BEYOND = "é ß 日本 👩‍👩‍👧 𝄞 \U0010fffd"
ALL_TEXT = (LINES + CONTROLS + BEYOND + "\n").encode()
HARD_NAME = "a b#1%41é+&😀.txt"
CONTENT = b"The user's own file.\n"


def image(form, *options):
    """A small image with a gradient, made by ImageMagick, as the bytes of a file."""
    command = ["convert", "-size", "37x23", "gradient:red-blue", "-swirl", "90", "-depth", "8",
               *options, form]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def pixels(data):
    """All pixels of an image file with 16 bits for each of red, green, blue and alpha."""
    return subprocess.run(["convert", "-", "-depth", "16", "-endian", "MSB", "rgba:-"], input=data,
                          check=True, stdout=subprocess.PIPE).stdout


def with_alpha(form):
    """An image that gets more and more transparent."""
    return image(form, "-alpha", "set", "-channel", "A", "-sparse-color", "Barycentric",
                 "0,0 white 36,22 black", "+channel")


class TextTest(ClipboardCase):
    """What is on the server is, byte for byte, what was copied."""

    def setUp(self):
        super().setUp()
        self.start_program()

    def assert_uploaded(self, data, **more):
        self.assertEqual(self.upload_made_file(TEXT, "txt", **more), data)

    def test_of_xclip(self):
        self.desktop.screen.set_clipboard(ALL_TEXT)
        self.assert_uploaded(ALL_TEXT)

    def test_of_a_gtk_program(self):
        self.own_as_gtk("text", ALL_TEXT)
        self.assert_uploaded(ALL_TEXT)

    def test_of_a_qt_program(self):
        self.own_as_qt({"text": ALL_TEXT})
        self.assert_uploaded(ALL_TEXT)

    def test_ten_megabytes_of_xclip(self):
        data = (BEYOND * 300_000).encode()[:10_000_000].decode(errors="ignore").encode()
        self.desktop.screen.set_clipboard(data)
        self.assert_uploaded(data)

    def test_ten_megabytes_of_a_gtk_program(self):
        data = b"0123456789" * 1_000_000
        self.own_as_gtk("text", data)
        self.assert_uploaded(data)

    def test_ten_megabytes_of_a_qt_program(self):
        data = b"0123456789" * 1_000_000
        self.own_as_qt({"text": data})
        self.assert_uploaded(data)

    def test_only_what_is_needed_is_fetched(self):
        _, asked = self.own_and_record({"UTF8_STRING": b"text", "image/png": image("png:-")})
        self.assert_uploaded(b"text")
        self.assertEqual([line for line in asked.all if line not in ("owner", "TARGETS")],
                         ["UTF8_STRING"])

    def test_link_of_the_program_itself(self):
        self.desktop.screen.set_clipboard("text")
        self.assert_uploaded(b"text")
        link = self.desktop.screen.clipboard()
        self.empty_server()
        self.assert_uploaded(link.encode(), count=2)

    def test_link_can_be_read_as_soon_as_the_clipboard_changes_hands(self):
        reader = self.own_and_record({"UTF8_STRING": b"text"})[0]
        self.upload()
        # Ends when it has lost the clipboard.
        self.assertEqual(reader.wait(10), 0)
        self.assertTrue(self.desktop.screen.clipboard().startswith(f"{BASE}/clipboard_"))
        self.desktop.notifications.wait_for(DONE)


class ImageTest(ClipboardCase):
    """What is on the server is a PNG file of the same pixels."""

    def setUp(self):
        super().setUp()
        self.start_program()

    def uploaded(self, **more):
        data = self.upload_made_file(IMAGE, "png", **more)
        self.assertTrue(data.startswith(b"\x89PNG"))
        return data

    def test_png_is_passed_through(self):
        files = {"plain": image("png:-"), "alpha": with_alpha("png:-"),
                 "16 bit": image("png64:-", "-depth", "16"),
                 "grey": image("png:-", "-colorspace", "gray"),
                 "interlaced": image("png:-", "-interlace", "PNG")}
        for count, (name, data) in enumerate(files.items(), 1):
            with self.subTest(name):
                self.desktop.screen.set_clipboard(data, "image/png")
                self.assertEqual(self.uploaded(count=count), data)
                self.empty_server()

    def test_others_keep_their_pixels(self):
        kinds = {"bmp": "bmp", "tiff": "tiff", "jpeg": "jpeg", "x-portable-pixmap": "ppm",
                 "gif": "gif"}
        files = {f"image/{kind}": image(f"{coder}:-") for kind, coder in kinds.items()}
        for count, (form, data) in enumerate(files.items(), 1):
            with self.subTest(form):
                self.desktop.screen.set_clipboard(data, form)
                self.assertEqual(pixels(self.uploaded(count=count)), pixels(data))
                self.empty_server()

    def test_transparency_and_16_bits_are_kept(self):
        files = {"alpha": with_alpha("tiff:-"),
                 "16 bit": image("tiff:-", "-depth", "16")}
        for count, (name, data) in enumerate(files.items(), 1):
            with self.subTest(name):
                self.desktop.screen.set_clipboard(data, "image/tiff")
                self.assertEqual(pixels(self.uploaded(count=count)), pixels(data))
                self.empty_server()

    def test_of_a_gtk_program(self):
        data = with_alpha("png:-")
        self.own_as_gtk("image", data)
        self.assertEqual(pixels(self.uploaded()), pixels(data))

    def test_of_a_qt_program(self):
        data = with_alpha("png:-")
        self.own_as_qt({"image": data})
        self.assertEqual(pixels(self.uploaded()), pixels(data))

    def test_big_one_comes_in_pieces(self):
        data = image("bmp:-", "-resize", "1600x1200!")
        self.desktop.screen.set_clipboard(data, "image/bmp")
        self.assertEqual(pixels(self.uploaded()), pixels(data))


class FileTest(ClipboardCase):
    """The file itself is uploaded, and stays where it is."""

    # By FTP the name on the server may be any.
    server_kind = "pyftpdlib"

    def setUp(self):
        super().setUp()
        self.start_program()
        self.folder = self.owners_folder / "files"
        self.folder.mkdir()
        self.path = self.folder / HARD_NAME
        self.path.write_bytes(CONTENT)

    def assert_uploaded(self):
        name, data = self.upload_and_read(about_file(HARD_NAME))
        self.assertEqual((name, data), (HARD_NAME, CONTENT))
        self.assertEqual(self.path.read_bytes(), CONTENT)

    def copy_in_file_manager(self, *command, title):
        """Copies the only file of the folder with the keys that a person uses."""
        self.desktop.household.start([*command, self.folder],
                                     {"XDG_RUNTIME_DIR": str(self.owners_folder)})
        self.desktop.screen.wait_for_window(title)

        def copied():
            # The keys are taken only once the folder is on show.
            self.desktop.screen.key("ctrl+a", "ctrl+c")
            return "text/uri-list" in (self.desktop.screen.clipboard("TARGETS") or "")

        processes.wait_until(copied, 10, "a file on the clipboard", interval=0.2)

    def test_of_the_file_manager_of_lxqt(self):
        self.copy_in_file_manager("pcmanfm-qt", "--new-window", title="files")
        self.assert_uploaded()

    def test_of_the_file_manager_of_xfce(self):
        self.copy_in_file_manager("thunar", title="files - Thunar")
        self.assert_uploaded()

    def test_form_of_gnome_alone(self):
        for count, action in enumerate(("copy", "cut"), 1):
            with self.subTest(action):
                self.own_and_record({"x-special/gnome-copied-files":
                                       f"{action}\n{self.path.as_uri()}".encode()})
                self.upload()
                self.desktop.notifications.wait_for(DONE, count=count)
                self.assertEqual(self.on_server(), {HARD_NAME: CONTENT})
                self.assertEqual(self.path.read_bytes(), CONTENT)

    def test_cut_as_in_kde(self):
        self.own_as_qt({"text/uri-list": f"{self.path.as_uri()}\r\n".encode(),
                          "application/x-kde-cutselection": b"1",
                          "text": str(self.path).encode()})
        self.assert_uploaded()

    def test_first_of_several(self):
        other = self.folder / "other"
        other.write_bytes(b"another")
        self.own_as_qt({"text/uri-list":
                          f"{self.path.as_uri()}\r\n{other.as_uri()}\r\n".encode()})
        self.assert_uploaded()

    def test_wins_over_image_and_text(self):
        self.own_as_qt({"text/uri-list": f"{self.path.as_uri()}\r\n".encode(),
                          "text": HARD_NAME.encode(), "image": image("png:-")})
        self.assert_uploaded()

    def test_relevant_forms_alone_are_fetched(self):
        _, asked = self.own_and_record({
            "text/uri-list": f"{self.path.as_uri()}\r\n".encode(), "UTF8_STRING": b"text",
            "image/png": image("png:-")})
        self.assert_uploaded()
        self.assertEqual([line for line in asked.all if line not in ("owner", "TARGETS")],
                         ["text/uri-list"])

    def test_name_in_the_style_of_the_settings(self):
        self.program.terminate()
        self.start_program(addDateToFilename=True)
        self.own_as_qt({"text/uri-list": f"{self.path.as_uri()}\r\n".encode()})
        name, data = self.upload_and_read(about_file(HARD_NAME))
        self.assertNotEqual(name, HARD_NAME)
        self.assertTrue(name.endswith(".txt"))
        self.assertEqual(data, CONTENT)


class StatusTest(ClipboardCase):
    """What is shown while the server keeps silent."""

    server_kind = "silent"
    server_options = {}

    def assert_shown(self, about):
        """The status and the notification of an upload under way."""
        self.store_settings_for_silence(self.server, "FTP")
        self.program = self.start()
        self.item = self.desktop.tray_item(self.program)
        self.upload()
        self.item.wait_for_label(about[3])
        self.assertEqual(self.item.labels()[:2], ["Monitoring Inactive", about[3]])
        self.assertEqual(self.titles(), [about[1]])
        self.assertNotIn(BEGUN, self.titles())
        self.assertEqual(self.program.terminate(), 0)
        self.assertEqual(self.temporary_folders(), [])

    def test_text(self):
        self.desktop.screen.set_clipboard("text")
        self.assert_shown(TEXT)

    def test_image(self):
        self.desktop.screen.set_clipboard(image("png:-"), "image/png")
        self.assert_shown(IMAGE)

    def test_file(self):
        path = self.file(HARD_NAME, CONTENT)
        self.own_as_qt({"text/uri-list": f"{path.as_uri()}\r\n".encode()})
        self.assert_shown(about_file(HARD_NAME))
        self.assertEqual(path.read_bytes(), CONTENT)


if __name__ == "__main__":
    unittest.main()
