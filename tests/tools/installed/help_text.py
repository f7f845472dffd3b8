"""What korvel-layout says of itself with --help, read as a user reads it."""
import re
import subprocess
import sys

OPTION = re.compile(r"^  (?:-\w,)?(--[\w-]+)(?: (\S+))?(?: REQUIRED)?(?: |$)")
COMMAND = re.compile(r"^  ([a-z]+)  +\S")


def fail(sentence):
    sys.exit("korvel-layout: " + sentence)


def output_of(tool, *arguments):
    done = subprocess.run([tool, *arguments], check=False, capture_output=True, timeout=60)
    if done.returncode != 0:
        fail(f"{' '.join(arguments)} ends with {done.returncode}: {done.stderr.decode()}")
    return done.stdout.decode("utf-8")


def section(text, title):
    lines = text.split(f"\n{title}:\n", 1)
    if len(lines) != 2:
        fail(f"the help has no '{title}:'")
    return lines[1].split("\n\n", 1)[0].splitlines()


def commands(tool):
    found = [match[1] for match in map(COMMAND.match, section(output_of(tool, "--help"), "Subcommands"))
             if match]
    if len(found) < 10:
        fail(f"the help lists the commands {found} alone")
    return found


def options(tool, *command):
    """Pairs of an option and the type name of its value, None for a flag."""
    lines = section(output_of(tool, *command, "--help"), "Options")
    found = [(match[1], match[2]) for match in map(OPTION.match, lines) if match]
    if len(found) != len([line for line in lines if line.startswith("  -")]):
        fail(f"the options of {command} cannot be read in {lines}")
    return found


def installed(build, prefix):
    """Installs the tool, and the libraries that it runs on, out of a build."""
    subprocess.run(["cmake", "--install", build, "--prefix", prefix, "--component", "tool"], check=True,
                   stdout=subprocess.DEVNULL)
    return prefix
