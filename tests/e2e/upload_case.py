"""What tests that upload have in common."""

import html
import os
import pathlib

from desktop_case import DesktopCase
from rig import processes
from servers import Server

BASE = "https://files.example/shots"
# Without a blank, which FTP's file of credentials cannot hold.
PASSWORD = "a-secret-of-ours"

BEGUN = "Uploading Screenshot"
DONE = "✅ Screenshot Uploaded"
FAILED = "❌ Upload Failed"


class UploadCase(DesktopCase):
    """The program is set up to upload to a server that the tests of a class share.

    A class says which by `server_kind` and `server_options`."""

    server_kind = "pyftpdlib"
    server_options = {"password": PASSWORD}

    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(Server(cls.server_kind, **cls.server_options))

    def setUp(self):
        super().setUp()
        if self.server.folder:
            for path in pathlib.Path(self.server.folder).iterdir():
                if path.is_file():
                    path.unlink()

    # Setting up

    def store_settings(self, server=None, **changes):
        """Stores settings that upload to a server, and its password."""
        server = server or self.server
        if self.desktop_options.get("keyring", "unlocked"):
            self.desktop.keyring.store(server.password or "not asked for")
        self.desktop.write_settings_for(server, BASE, **changes)

    def store_settings_for_silence(self, server, kind):
        """Stores settings that upload with a protocol to a server that is none."""
        self.desktop.keyring.store("password")
        self.desktop.write_settings(serverType=kind, hostname=server.host, port=server.port,
                                    username="user", publicURLBase=BASE)

    def start_monitoring(self, **options):
        """Starts the program and chooses "Start Monitoring"; gives the program and its item."""
        program = self.start(**options)
        item = self.desktop.tray_item(program)
        item.click("Start Monitoring")
        program.wait_for_line("✅ Monitoring started successfully")
        return program, item

    def start_agent(self, private_key):
        """Starts an ssh-agent that holds the key; gives the environment in which it is found."""
        environment = {"SSH_AUTH_SOCK": str(self.desktop.surroundings.base / "agent")}
        self.desktop.household.start(["ssh-agent", "-D", "-a", environment["SSH_AUTH_SOCK"]])
        processes.wait_until(lambda: os.path.exists(environment["SSH_AUTH_SOCK"]), 5,
                             "the agent's socket")
        adding = self.desktop.household.start(["ssh-add", private_key], environment)
        self.assertEqual(adding.wait(5), 0)
        return environment

    def make_ssh_folder(self):
        """Makes the folder that tells that the person uses ssh."""
        (self.desktop.surroundings.home / ".ssh").mkdir(mode=0o700)

    # Using it

    def drop(self, name, data=b"A picture."):
        """Puts a file into the Desktop folder, complete at once; gives its path."""
        partial = self.desktop.surroundings.base / "partial"
        partial.write_bytes(data)
        path = os.path.join(os.fsencode(self.desktop.surroundings.desktop_folder),
                            os.fsencode(name))
        os.rename(partial, path)
        return path

    def wait_for_upload(self, name, count=1, seconds=10):
        """Waits for the `count`th success, which must be that of `name`; gives the link."""
        link = f"{BASE}/{name}"
        success = self.desktop.notifications.wait_for(DONE, seconds, count)
        # The service of the desktop understands markup.
        self.assertEqual(success.body, f"URL copied to clipboard: {html.escape(link)}")
        return link

    # Looking

    def on_server(self):
        """The files on the server: name -> bytes."""
        return {path.name: path.read_bytes()
                for path in pathlib.Path(self.server.folder).iterdir() if path.is_file()}

    def titles(self):
        """The titles of the notifications so far."""
        return [call.summary for call in self.desktop.notifications.all]

    def temporary_folders(self):
        """The private folders of all runs of the program."""
        surroundings = self.desktop.surroundings
        return [path for folder in (surroundings.runtime, surroundings.tmp)
                for path in folder.glob("org.tessery.Tessery-*")]

    def assert_idle(self, program):
        """Fails unless the program has no tool running and no file left of an upload."""
        self.assertEqual(processes.descendants(program.pid), [])
        folder, = self.temporary_folders()
        self.assertEqual(list(folder.iterdir()), [])
