#!/usr/bin/env python3
"""Runs command lines that make no sense, and compares what korvel-layout says of each.

tests/tools/wrong/run_invocations.py KORVEL_LAYOUT INVOCATIONS [--write]

In the file INVOCATIONS, lines behind "$ " are wrong command lines. Each ends with exit code 2 and says on standard
error the one line below it. Lines behind "! " make files that they name. With --write, the lines that differ
are replaced by what comes, for whoever changes a message to read.
"""
import pathlib
import subprocess
import sys
import tempfile

FEWEST = 100
COMMANDS = ("show", "explain", "table", "diff", "fit", "guess", "chips", "formats", "check", "dump", "manual")
PREFIX = "korvel-layout: "
# What tells the user how to go on: one of these stands in every message.
NEXT_STEPS = ("for example", "did you mean", " --help ", "write ", "leave ", "korvel-layout formats",
              "korvel-layout chips", "korvel-layout show", "korvel-layout table")


def fail(sentence):
    sys.exit("run_invocations: " + sentence)


def run(command, tool, folder):
    variables = {"PATH": f"{tool.parent}:/usr/bin:/bin", "LC_ALL": "C.UTF-8", "HOME": folder}
    return subprocess.run(["bash", "-c", command], cwd=folder, env=variables, check=False, capture_output=True,
                          stdin=subprocess.DEVNULL, timeout=60)


def message_of(command, tool, folder):
    """The line that the wrong command line leads to."""
    done = run(command, tool, folder)
    text = done.stderr.decode("utf-8")
    if done.returncode != 2 or done.stdout:
        fail(f"'{command}' ends with {done.returncode} instead of 2, and prints\n{done.stdout.decode()}{text}")
    if not text.startswith(PREFIX) or text.count("\n") != 1:
        fail(f"'{command}' does not lead to one line that begins with the program's name, but to\n{text}")
    return text[len(PREFIX):-1]


def faults_of(command, message):
    """What every message has to hold, whatever it says."""
    words = [word.strip("'") or '""' for word in command.split()[1:]]
    if not any(word in message for word in words):
        yield "repeats no word of the command line"
    if not any(step in message for step in NEXT_STEPS):
        yield "tells no next step"


class Invocations:
    def __init__(self, tool):
        self.tool = tool
        self.seen = set()
        self.faults = []

    def check(self, lines):
        """Returns the lines with the messages that come."""
        came = []
        with tempfile.TemporaryDirectory() as folder:
            for number, line in enumerate(lines):
                if line.startswith("! "):
                    done = run(line[2:], self.tool, folder)
                    if done.returncode != 0 or done.stderr:
                        fail(f"'{line[2:]}' makes no file: {done.stderr.decode()}")
                if not lines[number - 1].startswith("$ ") or line.startswith("$ ") or not line:
                    came.append(line)
                if line.startswith("$ "):
                    said = lines[number + 1] if number + 1 < len(lines) else ""
                    came.append(self.message(line[2:], said, folder))
        return came

    def message(self, command, said, folder):
        if command in self.seen:
            fail(f"'{command}' stands there twice")
        self.seen.add(command)
        message = message_of(command, self.tool, folder)
        if message != said:
            self.faults.append(f"$ {command}\nsays   {message}\nand not {said}")
        for fault in faults_of(command, message):
            self.faults.append(f"$ {command}\n{fault}: {message}")
        return message


def main():
    if len(sys.argv) < 3 or sys.argv[3:] not in ([], ["--write"]):
        fail("needs the tool, the file of command lines and, at most, --write")
    tool = pathlib.Path(sys.argv[1]).resolve()
    path = pathlib.Path(sys.argv[2])
    invocations = Invocations(tool)
    came = invocations.check(path.read_text(encoding="utf-8").splitlines())
    if sys.argv[3:]:
        path.write_text("\n".join(came) + "\n", encoding="utf-8")
    elif invocations.faults:
        fail("\n".join(invocations.faults) + f"\n{len(invocations.faults)} faults")
    words = " ".join(invocations.seen).split()
    missing = [command for command in COMMANDS if command not in words]
    if len(invocations.seen) < FEWEST or missing:
        fail(f"{len(invocations.seen)} command lines, and none of the commands {missing}")
    print(f"{len(invocations.seen)} wrong command lines, each with its message")


main()
