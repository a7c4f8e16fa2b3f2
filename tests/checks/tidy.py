#!/usr/bin/python3
"""Runs clang-tidy over the sources of the program: tidy.py SOURCE BUILD CLANG_TIDY

A file takes seconds, so one that was clean is passed over until it, a header of the project that it
includes, its compile command or the set of checks changes."""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

_INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


class Tidy:
    """The check of one build folder."""

    def __init__(self, source, build, program):
        self._source = pathlib.Path(source)
        self._program = program
        self._folder = pathlib.Path(build) / "tidy"
        self._folder.mkdir(exist_ok=True)
        commands = pathlib.Path(build, "compile_commands.json").read_text(encoding="utf-8")
        # clang stops at gcc's flag for coroutines, which it has without one.
        commands = commands.replace(" -fcoroutines", "")
        (self._folder / "compile_commands.json").write_text(commands, encoding="utf-8")
        self._commands = {entry["file"]: entry["command"] for entry in json.loads(commands)}
        self.files = sorted(file for file in self._commands
                            if file.startswith(f"{self._source}/src/"))

    @functools.cache
    def _headers(self, path):
        """The headers of the project that a file includes directly."""
        names = _INCLUDE.findall(path.read_text(encoding="utf-8"))
        return [header for name in names if (header := self._source / "src" / name).exists()]

    def _key(self, file):
        """A digest of everything that the verdict on a file depends on."""
        seen, waiting = set(), [pathlib.Path(file)]
        while waiting:
            path = waiting.pop()
            if path not in seen:
                seen.add(path)
                waiting += self._headers(path)
        parts = [path.read_bytes() for path in sorted(seen)]
        parts += [(self._source / ".clang-tidy").read_bytes(), self._commands[file].encode()]
        return hashlib.sha256(b"\0".join(parts)).hexdigest()

    def check(self, file):
        """Returns what there is to say about a file: nothing when it is clean."""
        stamp = self._folder / (os.path.relpath(file, self._source).replace("/", "-") + ".clean")
        key = self._key(file)
        if stamp.exists() and stamp.read_text(encoding="ascii") == key:
            return ""
        result = subprocess.run(
            [self._program, "-p", self._folder, "--quiet",
             "--extra-arg=-Wno-unknown-warning-option", file],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if result.returncode:
            return result.stdout or f"{file}: clang-tidy ended with {result.returncode}\n"
        stamp.write_text(key, encoding="ascii")
        return ""


def main():
    """Checks every file; ends with 1 when there is something to say."""
    tidy = Tidy(*sys.argv[1:4])
    if not tidy.files:
        sys.exit("nothing to check")
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        complaints = [text for text in pool.map(tidy.check, tidy.files) if text]
    print(*complaints, f"{len(tidy.files)} files, {len(complaints)} with something to mend",
          sep="\n")
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
