"""Standard output that nobody reads does no harm."""

import fcntl
import os
import unittest

from desktop_case import PROGRAM
from rig import processes
from rig.household import Lines
from upload_case import BASE, UploadCase


class LogTest(UploadCase):
    """The program lives, uploads and quits, whatever becomes of its lines."""

    def setUp(self):
        super().setUp()
        self.store_settings()

    def start_with_output(self, output, *prefix):
        """Starts the program with a descriptor or file as standard output."""
        surroundings = self.desktop.surroundings
        return self.desktop.household.start([*prefix, PROGRAM], surroundings.program_environment(),
                                            stdout=output)

    def use(self, process):
        """Uploads a screenshot and quits."""
        item = self.desktop.tray_item(process)
        item.click("Start Monitoring")
        item.wait_for_label("Monitoring for screenshots...")
        # Every rescan tells of each of these.
        for number in range(200):
            self.drop(f"Photo {number}.png")
        self.drop("Screenshot.png")
        self.wait_for_upload("Screenshot.png")
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/Screenshot.png")
        item.click("Quit")
        self.assertEqual(process.wait(5), 0)

    def test_closed_output(self):
        self.use(self.start_with_output(None, "sh", "-c", 'exec "$0" >&-'))

    def test_all_standard_streams_closed(self):
        process = self.start_with_output(None, "sh", "-c", 'exec "$0" <&- >&- 2>&-')
        self.desktop.tray_item(process)
        # Else a message or a line would be written into whatever has got the free number.
        self.assertEqual([os.readlink(f"/proc/{process.pid}/fd/{number}") for number in range(3)],
                         ["/dev/null"] * 3)
        self.use(process)

    def test_pipe_whose_reader_is_gone(self):
        reader, writer = os.pipe()
        os.close(reader)
        process = self.start_with_output(writer)
        os.close(writer)
        self.use(process)

    def test_full_pipe_that_nobody_reads(self):
        reader, writer = os.pipe()
        self.fill(writer)
        process = self.start_with_output(writer)
        os.close(writer)
        self.use(process)
        os.close(reader)

    def test_full_pipe_that_is_read_in_the_end(self):
        reader, writer = os.pipe()
        filling = self.fill(writer)
        process = self.start_with_output(writer)
        os.close(writer)
        item = self.desktop.tray_item(process)
        item.click("Start Monitoring")
        item.wait_for_label("Monitoring for screenshots...")
        with os.fdopen(reader, "rb") as stream:
            self.assertEqual(stream.read(filling), b"x" * filling)
            lines = Lines(os.fdopen(os.dup(reader), encoding="utf-8"))
            lines.wait_for("✅ Monitoring started successfully")
            self.assertEqual(lines.all[0], "✅ Successfully loaded settings:")
            item.click("Quit")
            self.assertEqual(process.wait(5), 0)
            self.assertTrue(lines.wait_for_end())

    def test_disk_that_is_full(self):
        with open("/dev/full", "wb") as full:
            self.use(self.start_with_output(full))

    def test_lines_come_at_once(self):
        program, _ = self.start_monitoring()
        processes.wait_until(lambda: program.output.all[-1:]
                             == ["✅ Monitoring started successfully"], 5, "the last line")

    @staticmethod
    def fill(pipe):
        """Fills a pipe; gives the number of bytes. The pipe's own flags stay as they are."""
        size = 0
        again = os.open(f"/proc/self/fd/{pipe}", os.O_WRONLY | os.O_NONBLOCK)
        for block in (4096, 1):
            try:
                while True:
                    size += os.write(again, b"x" * block)
            except BlockingIOError:
                pass
        os.close(again)
        assert not fcntl.fcntl(pipe, fcntl.F_GETFL) & os.O_NONBLOCK
        return size


if __name__ == "__main__":
    unittest.main()
