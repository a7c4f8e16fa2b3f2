#!/usr/bin/python3
"""Compares what the files around the program say with each other: package_files.py SOURCE

The version, the packages, and the actions stand in more than one place each."""

import configparser
import pathlib
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree

SOURCE = pathlib.Path(sys.argv.pop())
PACKAGING = SOURCE / "packaging"
IDENTIFIER = "org.tessery.Tessery"


def version():
    """The version of the project."""
    text = (SOURCE / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(tessery\s+VERSION ([\d.]+)", text).group(1)


def desktop_entry():
    """The desktop entry, by group."""
    entry = configparser.ConfigParser(interpolation=None, delimiters="=")
    entry.optionxform = str
    entry.read(PACKAGING / f"{IDENTIFIER}.desktop", encoding="utf-8")
    return entry


def packages(name):
    """The packages of an array in scripts/lib/packages.sh."""
    script = f'source "{SOURCE}/scripts/lib/packages.sh"; printf "%s\\n" "${{{name}[@]}}"'
    result = subprocess.run(["bash", "-c", script], check=True, capture_output=True, text=True)
    return set(result.stdout.split())


def relations(field):
    """The packages that a field of debian/control names, with their alternatives."""
    text = (PACKAGING / "debian" / "control").read_text(encoding="utf-8")
    value = re.search(rf"^{field}:(.*(?:\n .*)*)", text, re.MULTILINE).group(1)
    names = re.split(r"[,|]", re.sub(r"\(.*?\)", "", value))
    return {name.strip() for name in names if name.strip() and "$" not in name}


class PackageFiles(unittest.TestCase):
    """One version, one list of packages, one set of actions."""

    def test_the_changelog_begins_with_the_version(self):
        changelog = (PACKAGING / "debian" / "changelog").read_text(encoding="utf-8")
        self.assertTrue(changelog.startswith(f"tessery ({version()}) "), changelog[:40])

    def test_the_metainfo_begins_with_the_version(self):
        tree = xml.etree.ElementTree.parse(PACKAGING / f"{IDENTIFIER}.metainfo.xml")
        self.assertEqual(tree.find("releases")[0].get("version"), version())

    def test_the_package_is_built_with_what_the_scripts_install(self):
        # The compiler comes with every build of a package, debhelper is for packages alone.
        self.assertEqual(relations("Build-Depends") - {"debhelper-compat"},
                         packages("build_packages") - {"build-essential"})

    def test_the_package_asks_for_what_the_scripts_install(self):
        asked = relations("Depends") | relations("Recommends")
        # Libraries are found in the program itself.
        run = {name for name in packages("run_packages") if not name.startswith("lib")}
        self.assertEqual(run - asked, set())

    def test_each_action_starts_the_program_with_its_name(self):
        entry = desktop_entry()
        actions = entry["Desktop Entry"]["Actions"].rstrip(";").split(";")
        self.assertEqual({group for group in entry.sections() if group != "Desktop Entry"},
                         {f"Desktop Action {action}" for action in actions})
        for action in actions:
            self.assertEqual(entry[f"Desktop Action {action}"]["Exec"], f"tessery {action}")

    def test_the_manual_lists_the_actions(self):
        manual = (PACKAGING / "tessery.1").read_text(encoding="utf-8")
        actions = desktop_entry()["Desktop Entry"]["Actions"].rstrip(";").split(";")
        self.assertEqual(re.findall(r"^\.It Cm (\S+)$", manual, re.MULTILINE), actions)


if __name__ == "__main__":
    unittest.main()
