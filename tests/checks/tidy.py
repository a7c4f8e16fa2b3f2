#!/usr/bin/python3
"""Runs clang-tidy over the sources of the program: tidy.py SOURCE BUILD CLANG_TIDY

Nearly all of its time goes into the headers of the libraries, so it reads several sources at once,
one after the other as if they were one; those that it does not pass then, be it only because two
have the same name for something of their own, it reads again in halves, down to a single one. Only
what it says about a single one counts.

One that was clean is passed over until it, a header of the project that it includes, its compile
command or the set of checks changes."""

import collections
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

_INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
# Whether a file needs what it makes known by a short name is seen in that file alone.
_SHORT_NAME = re.compile(r"^(using [\w:]+;|namespace \w+ =)", re.MULTILINE)
_BATCH = 12


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
        self._commands = {entry["file"]: entry for entry in json.loads(commands)}
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
        parts += [(self._source / ".clang-tidy").read_bytes(), self._commands[file]["command"].encode()]
        return hashlib.sha256(b"\0".join(parts)).hexdigest()

    def _stamp(self, file):
        return self._folder / (os.path.relpath(file, self._source).replace("/", "-") + ".clean")

    def _is_known_as_clean(self, file):
        stamp = self._stamp(file)
        return stamp.exists() and stamp.read_text(encoding="ascii") == self._key(file)

    def _alike(self, file):
        """What files have in common that can be read as one; its own name if it cannot be."""
        if _SHORT_NAME.search(pathlib.Path(file).read_text(encoding="utf-8")):
            return file
        command = self._commands[file]["command"].replace(file, "")
        return re.sub(r" -o \S+", "", command)

    def batches(self):
        """The files that have to be checked, in lists of those that can be read as one."""
        groups = collections.defaultdict(list)
        for file in self.files:
            if not self._is_known_as_clean(file):
                groups[self._alike(file)].append(file)
        return [files[start:start + _BATCH]
                for files in groups.values() for start in range(0, len(files), _BATCH)]

    def check(self, files):
        """Returns what there is to say about some files: a text for each that is not clean."""
        with tempfile.TemporaryDirectory() as folder:
            result = self._run(files, pathlib.Path(folder))
        if not result.returncode:
            for file in files:
                self._stamp(file).write_text(self._key(file), encoding="ascii")
            return []
        if len(files) == 1:
            return [result.stdout or f"{files[0]}: clang-tidy ended with {result.returncode}\n"]
        middle = len(files) // 2
        return self.check(files[:middle]) + self.check(files[middle:])

    def _run(self, files, folder):
        if len(files) == 1:
            file, folder = files[0], self._folder
        else:
            file = str(folder / "batch.cpp")
            pathlib.Path(file).write_text(
                "".join(f'#include "{name}" // NOLINT(bugprone-suspicious-include)\n'
                        for name in files), encoding="utf-8")
            entry = self._commands[files[0]]
            entry = {**entry, "file": file, "command": entry["command"].replace(files[0], file)}
            (folder / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
        return subprocess.run(
            [self._program, "-p", folder, "--quiet", f"--config-file={self._source}/.clang-tidy",
             "--extra-arg=-Wno-unknown-warning-option", file],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


def main():
    """Checks every file; ends with 1 when there is something to say."""
    os.nice(10)  # What runs beside it has limits of time; this has not.
    tidy = Tidy(*sys.argv[1:4])
    if not tidy.files:
        sys.exit("nothing to check")
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        complaints = [text for found in pool.map(tidy.check, tidy.batches()) for text in found]
    print(*complaints, f"{len(tidy.files)} files, {len(complaints)} with something to mend",
          sep="\n")
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
