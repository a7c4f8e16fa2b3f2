"""Telling the commands in a document from the rest."""

import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts" / "lib"))

# pylint: disable=wrong-import-position
import command_blocks


class CommandBlocksTest(unittest.TestCase):
    """One document in a checkout with one script."""

    def setUp(self):
        self.checkout = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.checkout / "scripts").mkdir()
        (self.checkout / "scripts" / "tool").write_text("#!/bin/sh\n# tool --known\n")

    def blocks(self, text):
        """What is found in a document."""
        (self.checkout / "doc.md").write_text(text)
        return command_blocks.blocks(self.checkout, "doc.md")

    def test_blocks_of_commands_are_found(self):
        found = self.blocks("A\n```sh\nls\n\nls -l\n```\nB\n```text\n```sh\n```\n\n"
                            "```sh long\nscripts/tool\n```\n")
        self.assertEqual(found, [
            command_blocks.Block("doc.md:2", "ls\n\nls -l", False),
            command_blocks.Block("doc.md:12", "scripts/tool", True)])

    def test_text_may_name_what_is_there(self):
        self.assertEqual(self.blocks("Run `scripts/tool\n--known`, `ls -l` or `tool`.\n"
                                     "- and\n    more of the same\n"), [])

    def test_what_nobody_would_try_is_an_error(self):
        for text in ("```\nls\n```\n", "```console\nls\n```\n", "```sh \nls\n```\n",
                     "~~~\nls\n~~~\n", "````sh\nls\n````\n", "- a\n\n  ```sh\n  ls\n  ```\n",
                     "> ```sh\n> ls\n> ```\n", "A\n\n    ls\n", "A\n\n\tls\n", "```sh\nls\n",
                     "`a && b`", "`cmake --preset\nx`", "`sudo apt install x`",
                     "`scripts/tol`", "`scripts/tool --knwon`", "`sudo scripts/tol`"):
            with self.subTest(text), self.assertRaises(command_blocks.Unclear):
                self.blocks(text)


if __name__ == "__main__":
    unittest.main()
