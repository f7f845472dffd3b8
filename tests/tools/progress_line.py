#!/usr/bin/env python3
"""Watches the line that says how far a long table is.

tests/tools/progress_line.py KORVEL_LAYOUT
"""
import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import time

# 6000 chains take a good part of a second at least. Held for longer than a second on its way, the program says
# how far it is, whatever the machine.
REQUESTS = 6000
LONG = ["table", "--format", "28", "--size", "1..60x1..100", "--ubwc", "--levels", "full", "--csv"]
SHORT = ["table", "--format", "28", "--size", "64x64"]
ON_ITS_WAY_SECONDS = 0.05
HELD_SECONDS = 1.3
PATIENCE_SECONDS = 120


def fail(sentence):
    sys.exit("progress_line: " + sentence)


def processor_seconds(process):
    fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()
    return int(fields[11]) / os.sysconf("SC_CLK_TCK")


def hold(process):
    """Stops the program when it is on its way, and lets it go on later."""
    end = time.monotonic() + PATIENCE_SECONDS
    while processor_seconds(process) < ON_ITS_WAY_SECONDS:
        if process.poll() is not None:
            fail(f"the table is done before it can be held: it ends with {process.returncode}")
        if time.monotonic() > end:
            fail("the table does not get on its way")
        time.sleep(0.002)
    process.send_signal(signal.SIGSTOP)
    time.sleep(HELD_SECONDS)
    process.send_signal(signal.SIGCONT)


def all_of(terminal):
    """What was printed to a terminal that nobody has open any more."""
    text = b""
    while True:
        try:
            part = os.read(terminal, 65536)
        except OSError:
            return text.decode("utf-8")
        if not part:
            return text.decode("utf-8")
        text += part


def run(tool, arguments, held, terminal_is):
    """What comes on standard output and on standard error; one of both is a terminal."""
    reader, terminal = pty.openpty()
    pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, terminal_is: terminal}
    with subprocess.Popen([tool, *arguments], stdin=subprocess.DEVNULL, **pipes) as process:
        os.close(terminal)
        if held:
            hold(process)
        if terminal_is == "stderr":
            out = process.stdout.read().decode("utf-8")
            err = all_of(reader)
        else:
            out = all_of(reader)
            err = process.stderr.read().decode("utf-8")
    os.close(reader)
    if process.returncode != 0:
        fail(f"{' '.join(arguments)} ends with {process.returncode}: {err}")
    return out, err


def main():
    tool = sys.argv[1]
    out, line = run(tool, LONG, True, "stderr")
    if out.count("\n") != REQUESTS + 1 or "\r" in out or "requests:" in out:
        fail(f"the table has {out.count(chr(10))} lines, or holds what is said of it")
    said = [int(done) for done in re.findall(rf"\rrequests: (\d+) of {REQUESTS}", line)]
    if not said or said != sorted(said) or not 0 < said[0] or said[-1] > REQUESTS:
        fail(f"the terminal shows {line!r}")
    whole = rf"(\rrequests: \d+ of {REQUESTS})+\r( +)\r"
    shown = re.fullmatch(whole, line)
    if not shown or len(shown[2]) != len(shown[1]) - 1:
        fail(f"the line does not make place for what follows: {line!r}")

    out, line = run(tool, LONG, True, "stdout")
    if line or "requests:" in out:
        fail(f"without a terminal, standard error holds {line!r}")
    _, line = run(tool, SHORT, False, "stderr")
    if line:
        fail(f"of a table that takes no second, the terminal shows {line!r}")
    print(f"a line that was printed {len(said)} times is gone at the end")


main()
