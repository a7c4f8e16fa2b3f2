"""What tests of uploading the clipboard have in common."""

import html
import itertools
import os
import pathlib
import re
import subprocess

import rig
from rig import processes
from rig.household import Lines
from rig.screen import selection_owner
from upload_case import BASE, DONE, FAILED, UploadCase

ENTRY = "Upload from Clipboard  ⌘⇧U"
EMPTY = "❌ Clipboard Empty"
# The last line of the start.
READY = "✅ Notification permission granted"
TOOL = "🔍 Executing: "
TRIGGERED = "📋 Upload clipboard triggered"
PYTHON = "/usr/bin/python3"
QT_OWNER = os.environ["TESSERY_CLIPBOARD_OWNER"]
RIG = pathlib.Path(rig.__file__).parent

# What is said about text and about an image: log, title and body, status, name for the user.
TEXT = ("📋 Found text in clipboard, creating text file",
        "Uploading Text", "Text content from clipboard",
        "📤 Uploading text from clipboard...", "clipboard text")
IMAGE = ("📋 Found image in clipboard, creating PNG file",
         "Uploading Image", "Image from clipboard",
         "📤 Uploading image from clipboard...", "clipboard image")


def about_file(name):
    """What is said about a file of this name."""
    return (f"📋 Found file URL in clipboard: {name}",
            "Uploading from Clipboard", html.escape(name, quote=False),
            f"📤 Uploading {name} from clipboard...", name)


def as_in_menu(body):
    """The text of a notification the way a panel gets it for a menu."""
    return html.unescape(body).replace("_", "__")


class ClipboardCase(UploadCase):
    """Other programs own the clipboard, the program uploads what they offer.

    By SFTP, since the names of the files tell the time: with the digits 530 in it an upload by FTP
    reads as a refused login."""

    server_kind = "asyncssh"

    def setUp(self):
        super().setUp()
        self.program = self.item = None
        # What the owners of the clipboard make is none of the program's doing.
        self.owners_folder = self.desktop.surroundings.base / "owners"
        self.owners_folder.mkdir(mode=0o700)

    def start_program(self, **settings):
        """Stores settings that upload to the server and starts the program."""
        self.store_settings(**settings)
        self.program = self.start()
        self.item = self.desktop.tray_item(self.program)
        self.program.wait_for_line(READY)

    # Owners of the clipboard

    def file(self, name, data):
        """A file with something to copy."""
        path = self.owners_folder / name
        path.write_bytes(data)
        return path

    def owner(self, selection="CLIPBOARD"):
        """The window that owns a selection; 0 when there is none."""
        return selection_owner(self.desktop.screen.display, selection)

    def own(self, *command, selection="CLIPBOARD", **more):
        """Starts a program that takes the clipboard; gives its process once it has it."""
        before = self.owner(selection)
        process = self.desktop.household.start(
            command, {"XDG_RUNTIME_DIR": str(self.owners_folder)}, **more)
        processes.wait_until(lambda: self.owner(selection) not in (0, before), 10,
                             f"{selection} for {command[0]}")
        return process

    def own_as_qt(self, forms):
        """A Qt program copies: form -> bytes."""
        arguments = []
        for number, (form, data) in enumerate(forms.items()):
            arguments += [form, self.file(f"form {number}", data)]
        return self.own(QT_OWNER, *arguments)

    def own_as_gtk(self, kind, data):
        """A GTK program copies text or an image."""
        return self.own(PYTHON, RIG / "gtk_clipboard_owner.py", kind, self.file("form", data))

    def own_and_record(self, forms, *options, selection="CLIPBOARD"):
        """A program copies that tells what it is asked for; gives its process and these lines."""
        arguments = [f"{form}={self.file(f'form {number}', data)}"
                     for number, (form, data) in enumerate(forms.items())]
        process = self.own(PYTHON, RIG / "clipboard_owner.py", "--selection", selection,
                           *options, *arguments,
                           selection=selection, stdout=subprocess.PIPE, encoding="utf-8")
        asked = Lines(process.stdout)
        asked.wait_for("owner")
        return process, asked

    def clipboard_bytes(self, target):
        """What the clipboard holds in one form."""
        return subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", target],
                              env=self.desktop.household.environment, check=True,
                              stdout=subprocess.PIPE).stdout

    # Uploading

    def empty_server(self):
        """Takes away what has been uploaded."""
        for name in self.on_server():
            (pathlib.Path(self.server.folder) / name).unlink()

    def upload(self):
        """Chooses the entry of the menu."""
        self.item.click(ENTRY)

    def log_of_upload(self):
        """What the log says from the last upload on until its tool is run."""
        lines = self.program.output.all
        last = lines[len(lines) - lines[::-1].index(TRIGGERED) - 1:]
        return list(itertools.takewhile(lambda line: not line.startswith(TOOL), last))

    def upload_and_read(self, about, count=1, seconds=10):
        """Uploads, compares all that is said, and gives the name and bytes on the server."""
        log, title, body, _, shown = about
        said = len(self.desktop.notifications.all)
        self.upload()
        self.desktop.notifications.wait_for(DONE, seconds, count)
        (name, data), = self.on_server().items()
        link = f"{BASE}/{name}"
        calls = [(call.summary, call.body) for call in self.desktop.notifications.all[said:]]
        self.assertEqual(calls, [(title, body), (DONE, "URL copied to clipboard: "
                                                 + html.escape(link, quote=False))])
        self.item.wait_for_label(f"✅ Uploaded: {shown}")
        self.assertEqual(self.desktop.screen.clipboard(), link)
        self.assertEqual(self.log_of_upload(), [TRIGGERED, log])
        self.assert_idle(self.program)
        return name, data

    def upload_made_file(self, about, suffix, **more):
        """Uploads what becomes a file of the program's; gives its bytes on the server."""
        name, data = self.upload_and_read(about, **more)
        self.assertTrue(re.fullmatch(rf"clipboard_\d{{10}}\.{suffix}", name), name)
        return data

    def refuse(self, title, body, *log, count=1, seconds=10):
        """Uploads what cannot be: one notification of an error, and nothing else changes.

        `body` may be a function that judges it."""
        said = len(self.desktop.notifications.all)
        labels = self.item.labels()
        owner = self.owner()
        self.upload()
        self.desktop.notifications.wait_for(title, seconds, count)
        call, = self.desktop.notifications.all[said:]
        self.assertEqual(call.summary, title)
        self.assertEqual(call.hints["sound-name"], "dialog-error")
        if callable(body):
            body(call.body)
        else:
            self.assertEqual(call.body, body)
        self.assertEqual(self.log_of_upload(), [TRIGGERED, *log])
        self.assertEqual(self.item.labels(), labels)
        self.assertEqual(self.owner(), owner)
        self.assertEqual(self.on_server(), {})
        self.assert_idle(self.program)

    def refuse_as_empty(self, *log, **more):
        """Uploads what is nothing that can be uploaded."""
        self.refuse(EMPTY, "No file, text, or image found in clipboard", *log, **more)

    def fail_in_transfer(self, about):
        """Uploads to where it cannot be put; the clipboard must be as it was."""
        log, title, body, _, _ = about
        owner = self.owner()
        self.upload()
        failure = self.desktop.notifications.wait_for(FAILED)
        calls = [(call.summary, call.body) for call in self.desktop.notifications.all]
        self.assertEqual(calls, [(title, body), (FAILED, failure.body)])
        self.item.wait_for_label("❌ Upload failed: " + as_in_menu(failure.body))
        self.assertEqual(self.owner(), owner)
        self.assertEqual(self.log_of_upload(), [TRIGGERED, log])
        self.assert_idle(self.program)
        return failure.body
