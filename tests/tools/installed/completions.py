#!/usr/bin/env python3
"""Completes command lines in bash, zsh and fish, which find the installed completions by themselves.

tests/tools/installed/completions.py KORVEL_LAYOUT BUILD SHELL

SHELL is bash, zsh, fish, or `program` for what the program itself says to all of them.
"""
import os
import pathlib
import pty
import select
import subprocess
import sys
import tempfile
import time

import help_text
from help_text import fail

# What is typed, and what its last word becomes.
CASES = [
    ("korvel-layout sho", "show"),
    ("korvel-layout help expl", "explain"),
    ("korvel-layout show --form", "--format"),
    ("korvel-layout show --linear --unk", "--unknown-chip"),
    ("korvel-layout show --format yuy", "yuy2"),
    ("korvel-layout show --format YUY", "YUY2"),
    ("korvel-layout show --format=yuy", "--format=yuy2"),
    ("korvel-layout table --format nv12,yuy", "nv12,yuy2"),
    ("korvel-layout show --chip 0x4301000", "0x43010000"),
    ("korvel-layout table --chip family-6,all-", "family-6,all-families"),
    ("korvel-layout table --linear bo", "both"),
    ("korvel-layout table --sort padd", "padding"),
    ("korvel-layout check --kind s", "surface"),
    ("korvel-layout fit --plane pitch=7680,hei", "pitch=7680,height="),
    ("korvel-layout dump lone", "lonely.blob"),
    ("korvel-layout show --blob lone", "lonely.blob"),
]
PATIENCE_SECONDS = 30

# Each makes Control-G append the line as it stands to the file $LINES_FILE, and answers by doing so once.
BASH_START = r"""
shopt -s direxpand; PS1='> '; bind 'set enable-bracketed-paste off'
. /usr/share/bash-completion/bash_completion
bind -x '"\C-g": printf "%s|\n" "$READLINE_LINE" >>"$LINES_FILE"'
echo started >>"$LINES_FILE"
"""
ZSH_START = r"""
PS1='> '; unsetopt zle_bracketed_paste; fpath=("$PREFIX/share/zsh/site-functions" $fpath)
autoload -U compinit; compinit -u -D
write-line() { print -r -- "$BUFFER|" >>"$LINES_FILE" }; zle -N write-line; bindkey '^G' write-line
print started >>"$LINES_FILE"
"""


def environment(tool, prefix, folder):
    return {"PATH": f"{pathlib.Path(tool).parent}:/usr/bin:/bin", "HOME": str(folder), "TERM": "dumb",
            "LC_ALL": "C.UTF-8", "LINES_FILE": str(folder / "lines"), "PREFIX": prefix,
            "XDG_DATA_DIRS": f"{prefix}/share:/usr/share"}


class Terminal:
    """A shell at a terminal, in which somebody types."""

    def __init__(self, command, start, folder, variables):
        self.lines_file = folder / "lines"
        self.lines_file.write_text("")
        self.shown = b""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            try:
                os.execve(command[0], command, variables)
            except OSError:
                os._exit(127)
        self.type(start)
        self.wait_for_lines(1)

    def type(self, text):
        os.write(self.terminal, text.encode())

    def wait_for_lines(self, count):
        end = time.monotonic() + PATIENCE_SECONDS
        while True:
            lines = self.lines_file.read_text().splitlines()
            if len(lines) >= count:
                return lines
            if time.monotonic() > end:
                fail(f"the shell does not answer, which shows\n{self.shown.decode(errors='replace')}")
            if select.select([self.terminal], [], [], 0.05)[0]:
                try:
                    self.shown += os.read(self.terminal, 65536)
                except OSError:
                    fail(f"the shell has ended, which shows\n{self.shown.decode(errors='replace')}")

    def completed(self, number, line):
        self.type(f"{line}\t\x07")
        lines = self.wait_for_lines(number + 1)
        self.type("\x15")  # the next line starts empty
        return lines[number].rstrip("|")

    def end(self):
        self.type("exit\r")
        os.waitpid(self.process, 0)
        os.close(self.terminal)


def lines_in_terminal(command, start, folder, variables):
    terminal = Terminal(command, start, folder, variables)
    lines = [terminal.completed(number, line) for number, (line, _) in enumerate(CASES, start=1)]
    terminal.end()
    return lines


def lines_in_fish(folder, variables):
    lines = []
    for line, _ in CASES:
        done = subprocess.run(["/usr/bin/fish", "-c", "complete -C $argv[1]", line], check=False,
                              cwd=folder, env=variables, capture_output=True, timeout=PATIENCE_SECONDS)
        found = [answer.split("\t")[0] for answer in done.stdout.decode().splitlines()]
        if len(found) != 1:
            fail(f"fish offers {found} for '{line}': {done.stderr.decode()}")
        ending = "" if found[0].endswith("=") else " "
        lines.append(line.rpartition(" ")[0] + " " + found[0] + ending)
    return lines


def check_shell(shell, tool, build):
    if not os.access(f"/usr/bin/{shell}", os.X_OK):
        fail(f"{shell} is not installed; see test_packages in scripts/packages.sh")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name) / "home"
        folder.mkdir()
        (folder / "lonely.blob").write_bytes(b"")
        prefix = help_text.installed(build, str(pathlib.Path(name) / "prefix"))
        variables = environment(tool, prefix, folder)
        if shell == "bash":
            lines = lines_in_terminal(["/usr/bin/bash", "--norc", "--noprofile", "-i"], BASH_START, folder,
                                      variables)
        elif shell == "zsh":
            lines = lines_in_terminal(["/usr/bin/zsh", "-f", "-i"], ZSH_START, folder, variables)
        else:
            lines = lines_in_fish(folder, variables)
    wrong = []
    for (line, word), came in zip(CASES, lines, strict=True):
        wanted = line.rpartition(" ")[0] + " " + word + ("" if word.endswith("=") else " ")
        if came != wanted:
            wrong.append(f"'{line}' becomes '{came}' instead of '{wanted}'")
    if wrong:
        fail(f"in {shell}\n" + "\n".join(wrong))
    print(f"{len(lines)} lines completed in {shell}")


def offered(tool, *words):
    return [line.split("\t")[0] for line in help_text.output_of(tool, "complete", *words).splitlines()]


# Of these values there is nothing to offer: numbers, lists of numbers, options in quotes, names of fields.
FREE_VALUES = {"N", "LIST", "WxH[xD]", "WxH[xD],...", "OPTIONS", "NAME"}


def check_program(tool):
    """Every command, every option, and values of every option that does not take any."""
    commands = help_text.commands(tool)
    if set(offered(tool, "")) != set(commands) | {"help"}:
        fail(f"of {commands}, {offered(tool, '')} are offered")
    values = 0
    for command in commands:
        options = help_text.options(tool, command)
        if offered(tool, command, "-") != [option for option, _ in options]:
            fail(f"{command} has the options {options}, but {offered(tool, command, '-')} are offered")
        for option, value in options:
            if value is None:
                continue
            found = [word for word in offered(tool, command, option, "") if not word.startswith("-")]
            if bool(found) == (value in FREE_VALUES):
                fail(f"{command} {option} takes {value}, and {found} is offered")
            values += 1
    if not values:
        fail("no option takes a value")
    taken = offered(tool, "show", "--linear", "--size=64x64", "--")
    if "--linear" in taken or "--size" in taken or "--ubwc" not in taken:
        fail(f"behind --linear and --size, {taken} are offered")
    if "--plane" not in offered(tool, "fit", "--plane", "pitch=64", "--"):
        fail("--plane is not offered a second time")
    for words in (["nothing", ""], ["help", "show", ""], ["show", "--size", ""], ["show", "--format", "zz"]):
        if offered(tool, *words):
            fail(f"behind {words}, {offered(tool, *words)} are offered")
    print(f"{len(commands)} commands and {values} options with values")


def main():
    tool, build, shell = sys.argv[1:]
    if shell == "program":
        check_program(tool)
    elif shell in ("bash", "zsh", "fish"):
        check_shell(shell, tool, build)
    else:
        fail(f"there are no completions for {shell}")


main()
