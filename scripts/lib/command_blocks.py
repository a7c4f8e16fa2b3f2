"""The blocks of commands in the documents of a checkout."""

import dataclasses
import re
import subprocess

_OPENINGS = ("```sh", "```sh long", "```text")
_FENCE = re.compile(r"[\s>]*(```|~~~)")
_INDENTED = re.compile(r"(?: {4}|\t)\S")
_INLINE = re.compile(r"`([^`]+)`")
_SCRIPT = re.compile(r"(?:^|\s)((?:scripts|bench|\.ci)/[\w./-]+)((?: --[\w-]+)*)")
# A person would copy these, and nobody would notice that they fail.
_BELONGS_IN_A_BLOCK = re.compile(r"&&|^cmake --(preset|build)|^(sudo )?apt\b")


class Unclear(Exception):
    """A document in which commands cannot be told from the rest, or in which nobody tries them."""


@dataclasses.dataclass
class Block:
    """Commands that are run together."""

    place: str
    text: str
    is_long: bool

    @property
    def first_line(self):
        """What tells a person which block it is."""
        return self.text.splitlines()[0]


def documents(checkout):
    """The name and the blocks of every document, the first to be read first."""
    names = subprocess.run(["git", "-C", str(checkout), "ls-files", "*.md"], check=True,
                           encoding="utf-8", stdout=subprocess.PIPE).stdout.splitlines()
    names.sort(key=lambda name: (name != "README.md", name))
    return [(name, blocks(checkout, name)) for name in names]


def blocks(checkout, name):
    """The blocks of one document."""
    found, prose = _split(name, (checkout / name).read_text(encoding="utf-8"))
    for span in _INLINE.findall(prose):
        span = " ".join(span.split())
        if _BELONGS_IN_A_BLOCK.search(span):
            raise Unclear(f"{name}: `{span}` belongs in a block of its own, where it is tried")
        for script, arguments in _SCRIPT.findall(span):
            _check_script(checkout, name, script, arguments.split())
    return found


def _split(name, text):
    """The blocks of commands, and the text around all blocks."""
    found, prose, before = [], [], ""
    begin = opening = inside = None
    for number, line in enumerate(text.splitlines(), 1):
        place = f"{name}:{number}"
        if inside is not None:
            if line != "```":
                inside.append(line)
                continue
            if opening != "```text":
                found.append(Block(begin, "\n".join(inside), opening == "```sh long"))
            inside = None
        elif line in _OPENINGS:
            begin, opening, inside = place, line, []
        elif _FENCE.match(line):
            raise Unclear(f"{place}: a block is opened by one of the lines {_OPENINGS}")
        elif _INDENTED.match(line) and not before.strip():
            raise Unclear(f"{place}: a block that is not fenced")
        else:
            prose.append(line)
        before = line
    if inside is not None:
        raise Unclear(f"{begin}: a block that does not end")
    return found, "\n".join(prose)


def _check_script(checkout, name, script, options):
    """A script that a text names is there, and knows the options that the text gives it."""
    path = checkout / script
    if not path.exists():
        raise Unclear(f"{name}: there is no {script}")
    for option in options:
        if option not in path.read_text(encoding="utf-8"):
            raise Unclear(f"{name}: {script} knows no {option}")
