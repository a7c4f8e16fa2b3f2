"""An HTTP proxy: takes uploads by PUT and opens tunnels, or answers everything with one status."""

import contextlib
import http.server
import select
import socket
import threading
import urllib.parse

from rig import ports


def _handler(options, folder, log):
    """The class whose objects answer the requests of one connection."""

    class Handler(http.server.BaseHTTPRequestHandler):
        protocol_version = "HTTP/1.1"

        def parse_request(self):
            """Notes what came; with a status of its own every request ends here."""
            if not super().parse_request():
                return False
            with open(log, "a", encoding="utf-8") as file:
                print(self.requestline, self.headers, sep="\n", end="", file=file)
            if options.status:
                self._answer(options.status)
            return not options.status

        def handle_expect_100(self):
            """Asks for no file that is going to be refused."""
            return bool(options.status) or super().handle_expect_100()

        def log_message(self, *_):
            """Standard error is for what went wrong."""

        def do_PUT(self):  # pylint: disable=invalid-name
            """Keeps the file under its name, without the folders before it."""
            name = urllib.parse.unquote(urllib.parse.urlsplit(self.path).path).rpartition("/")[2]
            (folder / name).write_bytes(self.rfile.read(int(self.headers["Content-Length"])))
            self._answer(201)

        def do_CONNECT(self):  # pylint: disable=invalid-name
            """Passes on what both sides say until one of them ends."""
            host, _, port = self.path.rpartition(":")
            self.close_connection = True
            try:
                server = socket.create_connection((host.strip("[]"), int(port)))
            except OSError:
                self._answer(502)
                return
            self.send_response(200)
            self.end_headers()
            other = {self.connection: server, server: self.connection}
            with server, contextlib.suppress(OSError):
                while True:
                    for side in select.select(list(other), [], [])[0]:
                        data = side.recv(65536)
                        if not data:
                            return
                        other[side].sendall(data)

        def _answer(self, status):
            self.close_connection = True
            self.send_response(status)
            self.send_header("Content-Length", "0")
            self.send_header("Connection", "close")
            self.end_headers()
            # Whoever closes with something unread resets the connection, and the answer is lost.
            with contextlib.suppress(OSError):
                self.connection.shutdown(socket.SHUT_WR)
                while self.connection.recv(65536):
                    pass

    return Handler


@contextlib.contextmanager
def serve(base, options):
    """Runs the proxy in threads; its log holds the head of each request."""
    folder, log = base / "files", base / "log"
    folder.mkdir()
    log.touch()
    sock = ports.bound_socket()
    server = http.server.ThreadingHTTPServer(sock.getsockname(), _handler(options, folder, log),
                                             bind_and_activate=False)
    server.socket.close()
    server.socket = sock
    server.server_activate()
    threading.Thread(target=server.serve_forever, daemon=True).start()
    yield {"port": sock.getsockname()[1], "folder": folder, "log": log}
    server.shutdown()
    server.server_close()
