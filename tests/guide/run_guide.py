#!/usr/bin/env python3
"""Runs what the guide shows, and compares what comes with what it shows.

tests/guide/run_guide.py KORVEL_LAYOUT GUIDE [--write]

Blocks of the kind `console` hold commands, each behind "$ ", and below each what it prints on standard
output and standard error. A line of three dots stands for any lines. Commands of a page run in one
folder, one after another; $TREE is where the tree is. With --write, outputs that differ are replaced by what comes.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)
ANY_LINES = "..."
TREE = pathlib.Path(__file__).resolve().parents[2]


def fail(sentence):
    sys.exit("run_guide: " + sentence)


def commands_of(block):
    """Pairs of a command and the lines that it prints."""
    pairs = []
    for line in block.splitlines():
        if line.startswith("$ "):
            pairs.append((line[2:], []))
        elif not pairs:
            fail(f"a block begins with '{line}', which is no command behind '$ '")
        else:
            pairs[-1][1].append(line)
    if not pairs:
        fail("a block holds no command")
    return pairs


def pattern_of(lines):
    """What the lines match; three dots match whole lines, and never all of them."""
    if lines and all(line == ANY_LINES for line in lines):
        fail("an output is shown as three dots alone")
    parts = [r"(?:.*\n)*?" if line == ANY_LINES else re.escape(line) + r"\n" for line in lines]
    return re.compile("".join(parts))


def run(command, tool, folder):
    environment = {"PATH": f"{tool.parent}:/usr/bin:/bin", "LC_ALL": "C.UTF-8", "HOME": str(folder),
                   "TREE": str(TREE)}
    done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                          timeout=60)
    text = done.stdout.decode("utf-8")
    return text if text.endswith("\n") or not text else text + "\n"


class Page:
    def __init__(self, path, tool):
        self.path = path
        self.tool = tool
        self.text = path.read_text(encoding="utf-8")
        self.commands = 0
        self.differences = []

    def check(self):
        """Returns the page with what the commands print now."""
        with tempfile.TemporaryDirectory() as folder:
            return BLOCK.sub(lambda block: self.check_block(block.group(1), folder), self.text)

    def check_block(self, block, folder):
        lines = []
        for command, shown in commands_of(block):
            self.commands += 1
            came = run(command, self.tool, folder)
            lines.append("$ " + command)
            if pattern_of(shown).fullmatch(came):
                lines += shown
            else:
                lines += came.splitlines()
                self.differences.append((command, "\n".join(shown), came))
        return "```console\n" + "\n".join(lines) + "\n```"


def check_pictures(guide):
    """Every picture is shown, and every shown picture is there."""
    there = {path.relative_to(guide).as_posix() for path in guide.glob("pictures/*.svg")}
    shown = set()
    for path in guide.glob("*.md"):
        shown |= set(re.findall(r"!\[[^\]]*\]\(([^)]*)\)", path.read_text(encoding="utf-8")))
    if there != shown or not there:
        fail(f"the pictures {sorted(there)} are there, but {sorted(shown)} are shown")


def main():
    if len(sys.argv) < 3 or sys.argv[3:] not in ([], ["--write"]):
        fail("needs the tool, the guide's folder and, at most, --write")
    tool = pathlib.Path(sys.argv[1]).resolve()
    guide = pathlib.Path(sys.argv[2])
    if not os.access(tool, os.X_OK):
        fail(f"there is no program {tool}")
    write = len(sys.argv) == 4
    commands = 0
    differences = 0
    for path in sorted(guide.glob("*.md")):
        page = Page(path, tool)
        text = page.check()
        commands += page.commands
        differences += len(page.differences)
        if write and text != page.text:
            path.write_text(text, encoding="utf-8")
            continue
        for command, shown, came in page.differences:
            print(f"{path.name}: $ {command}\nis shown with\n{shown}\nbut prints\n{came}")
    if commands == 0:
        fail(f"the pages of {guide} hold no command")
    check_pictures(guide)
    if differences and not write:
        fail(f"{differences} of {commands} commands print something else; with --write the pages take it")
    print(f"{commands} commands of the guide, {differences} of them with another output")


main()
