"""A light FTP server in Python: starts quickly, and breaks off or writes slowly when told to."""

import contextlib
import logging
import threading
import time

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.ioloop import IOLoop
from pyftpdlib.servers import FTPServer

from rig import place as places, ports

# As long as an answer takes over a network.
_NETWORK_SECONDS = 0.005


def _handlers(options, log, unheard_port):
    """The handler classes of control and data connections."""

    class Data(DTPHandler):
        ac_in_buffer_size = 4096 if options.rate or options.after else 65536

        def handle_read(self):
            before = self.tot_bytes_received
            super().handle_read()
            if options.rate:
                time.sleep((self.tot_bytes_received - before) / options.rate)
            if options.after and self.tot_bytes_received > options.after:
                self.cmd_channel.close()

        # The name by which the base class's event loop calls it.
        handle_read_event = handle_read

    class Control(FTPHandler):
        banner = "Test server"
        dtp_handler = Data
        passive_ports = list(ports.PASSIVE_PORTS)
        auth_failed_timeout = 0
        log_prefix = ""

        def collect_incoming_data(self, data):
            """As that of the base class, without its limit for a line."""
            self._in_buffer.append(data)

        def pre_process_command(self, line, cmd, arg):
            """Every command comes here first, also the unknown and the forbidden ones."""
            with open(log, "a", encoding="utf-8") as file:
                print(line, file=file)
            return super().pre_process_command(line, cmd, arg)

        def ftp_EPSV(self, line):  # pylint: disable=invalid-name
            """When the answer is there at once, curl 7.88 first waits 200 ms for nothing."""
            time.sleep(_NETWORK_SECONDS)
            if options.refused_epsv:
                self.respond(f"229 Entering extended passive mode (|||{unheard_port}|).")
                return None
            return super().ftp_EPSV(line)

    return Control


@contextlib.contextmanager
def serve(base, options):
    """Runs the server in a thread; with `options.after` it hangs up after so many bytes.

    It offers no encryption, and its log is what clients said. With `options.refused_epsv` it sends
    those who ask by EPSV to a port on which nobody listens."""
    folder = base / "files"
    places.make_login_folder(folder)
    logging.basicConfig(level=logging.ERROR)
    log = base / "log"
    log.touch()
    unheard = ports.bound_socket(options.host)
    control = _handlers(options, log, unheard.getsockname()[1])
    control.authorizer = DummyAuthorizer()
    control.authorizer.add_user(options.user, options.password, str(folder), perm="elradfmwMT")
    loop = IOLoop()
    server = FTPServer(ports.bound_socket(options.host), control, ioloop=loop)
    stop = threading.Event()

    def run():
        while not stop.is_set():
            loop.loop(timeout=0.05, blocking=False)

    thread = threading.Thread(target=run, daemon=True)
    thread.start()
    yield {"host": options.host, "port": server.address[1], "user": options.user,
           "password": options.password, "root": folder, "folder": folder, "remotePath": "/",
           "log": log}
    stop.set()
    thread.join()
    server.close_all()
    unheard.close()
