"""The folders and the environment of a private desktop."""

import os
import pathlib
import shutil
import tempfile

from rig import clock, ports

# What a desktop of the person who runs this would leak into ours.
_KEPT = ("PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")


class Surroundings:
    """A fresh HOME, runtime folder and temporary folder below one base folder."""

    def __init__(self):
        self._clock = clock.environment()
        self.base = pathlib.Path(tempfile.mkdtemp(prefix="tessery-desktop-"))
        self.home = self._folder("home")
        # The digits 530 in the speed that curl's progress meter tells read as a refused login.
        self._curl_settings = self.home / ".curlrc"
        self._configure_curl("no-progress-meter")
        self.runtime = self._folder("run")
        self.tmp = self._folder("tmp")
        self.desktop_folder = self._folder("home/Desktop")
        self.config = self._folder("home/.config")
        self._own_tmp = self._folder("desktop-tmp")
        self._noted = set()
        self.environment = self._environment()

    def _folder(self, name):
        path = self.base / name
        path.mkdir(mode=0o700)
        return path

    def _environment(self):
        kept = {name: os.environ[name] for name in _KEPT if name in os.environ}
        return {
            **kept,
            "HOME": str(self.home),
            "USER": "tester",
            "LOGNAME": "tester",
            "XDG_RUNTIME_DIR": str(self.runtime),
            "TMPDIR": str(self._own_tmp),
            "LANG": "C.UTF-8",
            "LIBGL_ALWAYS_SOFTWARE": "1",
            "NO_AT_BRIDGE": "1",
            "GSETTINGS_BACKEND": "memory",
            # None: those of GNOME complain that the services of drives and shares are not there.
            "GIO_MODULE_DIR": str(self.runtime),
        }

    def program_environment(self):
        """The programs under test have a temporary folder of their own, and may have a clock."""
        return {**self.environment, **self._clock, "TMPDIR": str(self.tmp)}

    def name_addresses(self, name, port, *addresses):
        """What curl takes a host's name for: tried in this order, version 6 in brackets."""
        self.choose_client_ports()
        self._configure_curl(f'resolve = "{name}:{port}:{",".join(addresses)}"')

    def choose_client_ports(self):
        """Has curl take ports without the digits 530 on its own side, which version 8 tells of a
        connection that is refused."""
        self._configure_curl(f"local-port = {ports.CLIENT_PORTS[0]}-{ports.CLIENT_PORTS[-1]}")

    def _configure_curl(self, line):
        with open(self._curl_settings, "a", encoding="utf-8") as file:
            print(line, file=file)

    def _files(self):
        return {path for folder in (self.runtime, self.tmp) for path in folder.rglob("*")}

    def note_files(self):
        """What is in the temporary and runtime folders now is none of the programs' doing."""
        self._noted = self._files()

    def new_files(self):
        """What has come into these folders since."""
        return sorted(str(path) for path in self._files() - self._noted)

    def remove(self):
        """Removes everything."""
        shutil.rmtree(self.base)
