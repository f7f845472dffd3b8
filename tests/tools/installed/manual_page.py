#!/usr/bin/env python3
"""Reads the installed manual page with man and mandoc.

tests/tools/installed/manual_page.py KORVEL_LAYOUT BUILD

Every command and every option that --help prints stands in it, with its value, and neither of the two programs has
anything to warn of.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

import help_text
from help_text import fail


def read_by(*command):
    """What a reader of manual pages prints. Its warnings are failures."""
    try:
        done = subprocess.run(command, check=False, capture_output=True, timeout=60,
                              env={"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "MANWIDTH": "120"})
    except FileNotFoundError:
        fail(f"{command[0]} is not installed; see test_packages in scripts/packages.sh")
    warnings = done.stderr.decode() + (done.stdout.decode() if "-Tlint" in command else "")
    if done.returncode != 0 or warnings:
        fail(f"{' '.join(command)} ends with {done.returncode}: {warnings}")
    return re.sub(r".\x08", "", done.stdout.decode("utf-8"))


def section_of(text, command):
    parts = re.split(r"^   (\S+)$", text, flags=re.MULTILINE)
    sections = dict(zip(parts[1::2], parts[2::2]))
    if command not in sections:
        fail(f"the manual page has no section for {command}, but for {list(sections)}")
    return sections[command]


def expect_options(where, text, options):
    for option, value in options:
        shown = f"{option} {value}" if value else option
        if not re.search(rf"^ +(-\w, )?{re.escape(shown)}( |$)", text, re.MULTILINE):
            fail(f"{where} of the manual page does not name {shown}:\n{text}")


def main():
    tool, build = sys.argv[1:]
    with tempfile.TemporaryDirectory() as prefix:
        help_text.installed(build, prefix)
        page = str(pathlib.Path(prefix) / "share/man/man1/korvel-layout.1")
        installed_tool = str(pathlib.Path(prefix) / "bin/korvel-layout")
        if help_text.output_of(installed_tool, "--version") != help_text.output_of(tool, "--version"):
            fail("the installed program is another one")
        read_by("mandoc", "-Tlint", "-W", "warning", page)
        text = read_by("man", "--warnings", "-P", "cat", "-l", page)
    commands = help_text.commands(tool)
    count = 0
    for command in commands:
        options = help_text.options(tool, command)
        expect_options(command, section_of(text, command), options)
        count += len(options)
    expect_options("the beginning", text.split("COMMANDS", 1)[0], help_text.options(tool))
    if "\n       korvel-layout - where every byte" not in text or "\nEXAMPLES" not in text:
        fail(f"the manual page says neither what the program is for nor how to call it:\n{text}")
    print(f"the manual page has {len(commands)} commands and their {count} options")


main()
