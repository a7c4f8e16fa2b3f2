"""The servers of the rig do what the tests of uploads take them for."""

import os
import pathlib
import subprocess
import unittest

from rig import ports, processes
from rig.surroundings import Surroundings
from servers import Server

USER = ("-u", "tester:test password")


class ServersCase(unittest.TestCase):
    """The tools with settings of their own, and a file to upload."""

    def setUp(self):
        self.surroundings = Surroundings()
        self.addCleanup(self.surroundings.remove)
        self.folder = self.surroundings.base
        self.picture = self.folder / "a.png"
        self.picture.write_bytes(b"A picture.")

    def run_tool(self, *command, **environment):
        """Runs a tool to its end; gives the exit status and what it said."""
        done = subprocess.run(
            [str(part) for part in command], timeout=60, check=False, stdin=subprocess.DEVNULL,
            env={**self.surroundings.environment, **environment}, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True)
        return done.returncode, done.stdout

    def curl(self, *arguments, **environment):
        """Uploads the picture with curl."""
        return self.run_tool("curl", "-v", "-T", self.picture, *arguments, **environment)

    def sftp(self, server, *options, **environment):
        """Uploads the picture with sftp, with no keys but those of the options."""
        batch = self.folder / "batch"
        batch.write_text(f'cd {server.remotePath}\nput "{self.picture}" "a.png"\nbye')
        return self.run_tool(
            "sftp", "-F", "none", "-oStrictHostKeyChecking=no", "-oUserKnownHostsFile=/dev/null",
            "-oIdentitiesOnly=yes", *options, "-b", batch, f"-oPort={server.port}",
            f"{server.user}@{server.host}", **environment)

    def assert_arrived(self, folder):
        """The picture is in the folder, and is taken away from there."""
        arrived = pathlib.Path(folder) / "a.png"
        self.assertEqual(arrived.read_bytes(), self.picture.read_bytes())
        arrived.unlink()


class FtpTest(ServersCase):
    """Servers for curl."""

    @unittest.skipUnless(ports.has_version_6(), "loopback has no ::1 here")
    def test_version_6_of_the_protocol(self):
        for kind, options in (("pyftpdlib", {}), ("proftpd-ftp", {}), ("proftpd-ftps", {}),
                              ("proftpd-ftps", {"explicit": True})):
            with self.subTest(kind, **options), Server(kind, host="::1", **options) as server:
                scheme = "ftps" if kind == "proftpd-ftps" and not options else "ftp"
                trust = {"CURL_CA_BUNDLE": server.certificate} if server.certificate else {}
                status, said = self.curl(*USER, *(["--ssl-reqd"] if trust else []),
                                         f"{scheme}://[{server.host}]:{server.port}/", **trust)
                self.assertEqual(status, 0, said)
                self.assert_arrived(server.folder)

    def test_explicit_encryption(self):
        with Server("proftpd-ftps", explicit=True) as server:
            place = f"{server.host}:{server.port}/"
            status, said = self.curl(*USER, "-k", "--ssl-reqd", "ftp://" + place)
            self.assertEqual(status, 0, said)
            self.assertIn("> AUTH SSL", said)
            self.assertIn("> PROT P", said)
            self.assert_arrived(server.folder)
            status, said = self.curl(*USER, "ftp://" + place)
            self.assertEqual(status, 67, said)
            self.assertNotIn("> PASS", said)
            status, said = self.curl(*USER, "-k", "ftps://" + place)
            self.assertEqual(status, 35, said)

    def test_server_without_encryption_tells_what_it_heard(self):
        with Server("pyftpdlib") as server:
            place = f"ftp://{server.host}:{server.port}/"
            log = pathlib.Path(server.log)
            status, said = self.curl(*USER, "--ssl-reqd", place)
            self.assertEqual(status, 64, said)
            self.assertEqual(log.read_text().splitlines(), ["AUTH SSL", "AUTH TLS"])
            self.assertEqual(self.curl(*USER, place)[0], 0)
            self.assertIn("\nUSER tester\nPASS test password\n", log.read_text())
            self.assert_arrived(server.folder)

    def test_port_that_epsv_tells_refuses(self):
        with Server("pyftpdlib", refused_epsv=True) as server:
            status, said = self.curl(*USER, f"ftp://{server.host}:{server.port}/")
            self.assertEqual(status, 0, said)
            self.assertIn("Connection refused", said)
            self.assertIn("\nEPSV\nPASV\n", pathlib.Path(server.log).read_text())
            self.assert_arrived(server.folder)

    def test_name_has_the_addresses_given(self):
        with Server("pyftpdlib") as server:
            for name, ascii_name in (("two.example", "two.example"),
                                     ("bücher.example", "xn--bcher-kva.example")):
                with self.subTest(name):
                    self.surroundings.name_addresses(ascii_name, server.port,
                                                     "127.0.0.2", server.host)
                    status, said = self.curl(*USER, f"ftp://{name}:{server.port}/")
                    self.assertEqual(status, 0, said)
                    self.assertRegex(said, r"connect to 127\.0\.0\.2 port \d+ .*refused")
                    self.assert_arrived(server.folder)


class ProxyTest(ServersCase):
    """The HTTP proxy."""

    def test_uploads_are_kept_and_tunnels_opened(self):
        with Server("http-proxy") as proxy, Server("proftpd-ftps") as server:
            place = f"{server.host}:{server.port}/"
            variables = {"all_proxy": f"http://{proxy.host}:{proxy.port}"}
            status, said = self.curl(*USER, f"ftp://{place}", **variables)
            self.assertEqual(status, 0, said)
            self.assert_arrived(proxy.folder)
            status, said = self.curl(*USER, "-k", f"ftps://{place}", **variables)
            self.assertEqual(status, 0, said)
            self.assert_arrived(server.folder)
            log = pathlib.Path(proxy.log).read_text()
            self.assertRegex(log, f"^PUT ftp://.*{place}a.png HTTP/1.1\n")
            self.assertIn(f"\nCONNECT {place[:-1]} HTTP/1.1\n", log)

    def test_every_request_gets_the_status(self):
        for status in 403, 405, 501:
            with self.subTest(status), Server("http-proxy", status=status) as proxy:
                variables = {"all_proxy": f"http://{proxy.host}:{proxy.port}"}
                for scheme in "ftp", "ftps":
                    self.assertIn(f"\n< HTTP/1.1 {status} ",
                                  self.curl(*USER, f"{scheme}://files.example/", **variables)[1])
                self.assertEqual(os.listdir(proxy.folder), [])
                log = pathlib.Path(proxy.log).read_text()
                self.assertIn("PUT ftp://", log)
                self.assertIn("CONNECT files.example:990 ", log)


class SftpTest(ServersCase):
    """Servers that count refused logins, and keys that need more than being there."""

    def login(self, server, *keys, password=None):
        """Offers the keys, and then the password if there is one; gives the exit status."""
        options = [f"-oIdentityFile={key}" for key in keys] or ["-oIdentityFile=none"]
        if password is None:
            return self.sftp(server, "-oBatchMode=yes", *options)
        helper = self.folder / "askpass"
        helper.write_text('#!/bin/sh\nprintf "%s\\n" "$PASSWORD"\n')
        helper.chmod(0o700)
        return self.sftp(server, "-oBatchMode=no", "-oNumberOfPasswordPrompts=1", *options,
                         SSH_ASKPASS=str(helper), SSH_ASKPASS_REQUIRE="force", PASSWORD=password)

    def test_refused_logins_keep_the_address_out(self):
        with Server("asyncssh", no_keys=True, penalties=3) as server:
            log = pathlib.Path(server.log)
            for count in range(1, 4):
                self.assertEqual(self.login(server, server.privateKey)[0], 255)
                processes.wait_until(lambda: log.read_text().count("refused") == count, 5,
                                     "the refusal in the log")
            status, said = self.login(server, password=server.password)
            self.assertEqual(status, 255)
            self.assertNotIn("Permanently added", said)
            self.assertEqual(log.read_text().split()[::2], ["refused"] * 3 + ["dropped"])

    def test_refused_key_and_right_password_is_no_refused_login(self):
        for kind in "asyncssh", "sshd":
            with self.subTest(kind), Server(kind, no_keys=True, penalties=True) as server:
                for _ in range(6):
                    status, said = self.login(server, server.privateKey, password=server.password)
                    self.assertEqual(status, 0, said)
                    self.assert_arrived(server.folder)
                self.assertEqual(self.login(server, server.privateKey, password="wrong")[0], 255)
                log = pathlib.Path(server.log)
                if kind == "asyncssh":
                    processes.wait_until(lambda: log.read_text().split()[::2] == ["accepted"] * 6
                                         + ["refused"], 5, log.read_text)

    def test_real_server_has_its_own_penalties_only_when_told(self):
        for options in {"penalties": True}, {}:
            with self.subTest(**options), Server("sshd", no_keys=True, **options) as server:
                for _ in range(6):
                    self.assertEqual(self.login(server, server.privateKey)[0], 255)
                status, said = self.login(server, password=server.password)
                self.assertEqual(status, 255 if server.hasPenalties else 0, said)
                self.assertFalse(server.hasPenalties and not options)

    def test_key_with_a_passphrase(self):
        with Server("sshd", key_passphrase="a phrase") as server:
            status, said = self.login(server, server.privateKey)
            self.assertEqual(status, 255, said)
            self.assertIn("\nAccepted key", "\n" + pathlib.Path(server.log).read_text())
            status, said = self.login(server, server.privateKey, password="a phrase")
            self.assertEqual(status, 0, said)
            self.assert_arrived(server.folder)

    def test_few_tries_and_many_keys(self):
        with Server("sshd", max_auth_tries=3) as server:
            others = [self.folder / f"key{number}" for number in range(3)]
            for key in others:
                self.run_tool("ssh-keygen", "-q", "-N", "", "-f", key)
            status, said = self.login(server, *others, server.privateKey)
            self.assertEqual(status, 255)
            self.assertIn("Too many authentication failures", said)
            status, said = self.login(server, *others[:2], server.privateKey)
            self.assertEqual(status, 0, said)
            self.assert_arrived(server.folder)


if __name__ == "__main__":
    unittest.main()
