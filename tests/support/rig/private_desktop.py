"""What every private desktop has, whatever shows its windows."""

import os
import pathlib
import signal

from rig import ports, processes, settings_file, tray
from rig.accessibility import Accessibility
from rig.bus import Bus
from rig.household import Household
from rig.keyring import Keyring
from rig.notifications import NAME as NOTIFICATIONS
from rig.notifications import Notifications
from rig.program import Program, with_own_account
from rig.surroundings import Surroundings

# A tool's own tools end by themselves, but a moment after it has.
SECONDS_TO_FOLLOW = 1


class PrivateDesktop:
    """A desktop whose parts are all its own; they are ended and removed on leaving. Options:

    tray           "statusnotifier", "xembed" (X11 only), or None: start_tray() brings one later
    notifications  whether a notification daemon runs
    keyring        "unlocked", "locked", or None: no secret service at all
    activation     whether the bus starts missing services by itself, as on a person's machine
    accessibility  whether there is a bus for screen readers, and programs talk to them
    environment    further variables for the desktop and the programs in it

    A kind of desktop has a `session`, the variables that tell programs what it is, and a screen,
    and perhaps a way to be admitted to its household."""

    session = {}

    def __init__(self, tray="statusnotifier", notifications=True, keyring="unlocked",
                 activation=False, accessibility=False, environment=None):
        self._tray_kind = tray
        self._wants_notifications = notifications
        self._wants_keyring = keyring
        self._activation = activation
        self._wants_accessibility = accessibility
        self._tray_process = None
        self._notification_daemon = None
        self.surroundings = Surroundings()
        self.surroundings.environment.update(self.session)
        self.surroundings.environment.update(environment or {})
        self.household = Household(self.surroundings.environment,
                                   self.surroundings.base / "desktop.log", self._admitted)
        self.bus = self.screen = self.keyring = self.notifications = self.accessibility = None

    def _admitted(self, command):
        """The command that runs a command as a member of the household."""
        return command

    def _make_screen(self):
        """Starts what shows windows."""
        raise NotImplementedError

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def _start(self):
        """Starts what does not depend on one another side by side, then waits for all."""
        self.bus = Bus(self.household, self.surroundings, self._activation)
        self.household.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.address
        self.screen = self._make_screen()
        if self._wants_accessibility:
            # Before the other programs, which would have the bus start parts of it.
            self.accessibility = Accessibility(self.household, self.bus)
        self.notifications = Notifications(self.bus.address)
        if self._tray_kind:
            self.start_tray(self._tray_kind, wait=False)
        if self._wants_notifications:
            self.start_notification_daemon()
        self.keyring = Keyring(self.household, self.bus)
        if self._wants_keyring:
            self.keyring.start()
        if self._wants_keyring == "locked":
            self.keyring.lock()
        self.screen.wait_until_ready()
        if self._tray_kind:
            self.wait_for_tray()
        if self._wants_notifications:
            self.bus.wait_for_owner(NOTIFICATIONS)
        self.surroundings.note_files()

    def close(self):
        """Ends every process and removes every file."""
        if self.accessibility:
            self.accessibility.close()
        if self.notifications:
            self.notifications.close()
        if self.screen:
            self.screen.close()
        if self.bus:
            self.bus.close()
        self.household.end()
        self.surroundings.remove()

    # The tray

    def start_tray(self, kind="statusnotifier", wait=True):
        """Starts a panel with a tray of the given kind."""
        self._tray_kind = kind
        if kind == "xembed":
            self._tray_process = self.screen.start_xembed_tray()
            return
        self._tray_process = self.screen.start_panel(self.surroundings)
        if wait:
            self.wait_for_tray()

    def stop_tray(self):
        """Ends the panel."""
        self.household.stop(self._tray_process)

    def restart_tray(self):
        """Ends the panel and starts it again."""
        self.stop_tray()
        self.start_tray(self._tray_kind)

    def wait_for_tray(self):
        """Waits until tray items are shown."""
        if self._tray_kind == "statusnotifier":
            processes.wait_until(lambda: tray.host_registered(self.bus), 20, "a panel with a tray")

    def tray_item(self, program, seconds=10):
        """Waits for the tray item of a program."""
        return tray.TrayItem.find(self.bus, program.pid, seconds)

    # Notifications

    def start_notification_daemon(self):
        """Starts the service that shows notifications, without waiting for it."""
        self._notification_daemon = self.screen.start_notification_daemon(self.surroundings)

    def pause_notification_daemon(self):
        """Lets the service that shows notifications hang."""
        self._notification_daemon.send_signal(signal.SIGSTOP)

    def stop_notification_daemon(self):
        """Ends the service that shows notifications."""
        self.household.stop(self._notification_daemon)

    # Programs and their settings

    def start_program(self, path, *arguments, environment=None, own_account=False, mounts=None):
        """Starts a program under test.

        With `own_account` the ssh that it starts has its ".ssh" folder in the desktop's HOME, with
        `mounts` it runs among those; both need user namespaces."""
        command = [str(path), *arguments]
        if mounts:
            command = mounts.command(command)
        if own_account:
            command = with_own_account(command, self.surroundings, os.getuid(), os.getgid())
        return Program(self.household, command,
                       {**self.surroundings.program_environment(), **(environment or {})})

    @property
    def suite_file(self):
        """The file of the settings."""
        return self.surroundings.config / settings_file.SUITE

    @property
    def standard_file(self):
        """The file of the standard domain, which holds a copy of the settings."""
        return self.surroundings.config / settings_file.STANDARD

    def write_settings(self, **changes):
        """Stores the default settings with some fields changed."""
        settings_file.write(self.suite_file, settings_file.record(**changes))

    def write_settings_for(self, server, public_base, **changes):
        """Stores settings that upload to a test server."""
        settings_file.write(self.suite_file,
                            settings_file.for_server(server, public_base, **changes))

    def use_key(self, private_key):
        """Puts a private key where ssh finds it, for programs with an account of their own."""
        folder = self.surroundings.home / ".ssh"
        folder.mkdir(mode=0o700, exist_ok=True)
        key = folder / "id_ed25519"
        key.touch(mode=0o600)
        key.write_bytes(pathlib.Path(private_key).read_bytes())

    def take_screenshot(self, name):
        """Takes a real screenshot of the display into the Desktop folder, at once under its name.

        Returns the path of the file."""
        path = self.surroundings.desktop_folder / name
        partial = self.surroundings.base / "screenshot.png"
        self.screen.picture(partial)
        # Curl tells the size; what follows the end of a picture is no part of it.
        with open(partial, "ab") as file:
            while ports.TRAP in str(file.tell()):
                file.write(b"\0")
        partial.rename(path)
        return path

    # Checks

    def assert_clean(self):
        """Fails when programs that have ended left processes or files behind."""
        services = self.bus.admitted()
        if self.accessibility:
            services |= self.accessibility.services()
        processes.pass_in(lambda: self.household.orphans().keys() <= services, SECONDS_TO_FOLLOW)
        left = [f"process {pid}: {line}" for pid, line in self.household.orphans().items()
                if pid not in services]
        left += self.surroundings.new_files()
        if left:
            raise AssertionError("left behind:\n" + "\n".join(left))
