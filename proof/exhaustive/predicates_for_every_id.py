"""Theorem: the three predicates answer as the rules, for every id on every chip.

For all 2^32 format ids, all values of the other arguments, and every machine - a chip of each row,
chips without a row, devices that fail - isFormatRenderableByGpu, isFormatSampleableByGpu and
isUBWCSupportedByGpu return what the rules return (requirements/capabilities.py), and send exactly
the rules' messages, behind those of identification (requirements/identification.py).

Shown by calling the built library:
    every machine           messages: all ids below 722, and beyond those around every power of two
    every chip with a row   all ids below 722, with arguments around every power of two;
                            from 722 on, ids around every power of two and every multiple of 2^24
    one chip of a family    all ids from 722 to 2^32 - 1, for every kind of arguments
    one chip                all 2^32 values of each argument, for an id of every kind of answer

Not shown here: on the other chips, ids from 722 on and arguments that are near no power of two.

The rules' answers go to the program predicates_for_every_id as a file. Kinds of arguments, of which
the rules cannot tell two values apart, are the file's columns:
    a use or a view         "zero" or "nonzero"
    a sample count          "single" (0 and 1) or "multi"
"""

import argparse
import subprocess
import sys
from pathlib import Path

PROOF = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(PROOF / "requirements"))

# pylint: disable=wrong-import-position
from capabilities import FIRST_UNNAMED_ID, renderable, sampleable, ubwc_supported
from hardware_rows import HARDWARE_DATA, read_chips
from id_list import as_text
from identification import NOT_IDENTIFIED, Machine, identify

# Of each kind of arguments: what the file calls it, and the rule with values of the kind. The kinds
# are held against many values in requirements/test_capabilities.py.
KINDS = (
    ("renderable zero", lambda chip, format_id: renderable(chip, format_id, 0)),
    ("renderable nonzero", lambda chip, format_id: renderable(chip, format_id, 1)),
    ("sampleable single zero", lambda chip, format_id: sampleable(chip, format_id, 1, 0)),
    ("sampleable single nonzero", lambda chip, format_id: sampleable(chip, format_id, 1, 1)),
    ("sampleable multi zero", lambda chip, format_id: sampleable(chip, format_id, 2, 0)),
    ("sampleable multi nonzero", lambda chip, format_id: sampleable(chip, format_id, 2, 1)),
    ("ubwc", ubwc_supported),
)


def machines(chips):
    """Every machine of the theorem: one for each row, and those of every kind without a row."""
    without_row = {1, min(chips) - 1, max(chips) + 1, 0x7FFFFFFF, 0x80000000, NOT_IDENTIFIED - 1}
    without_row.add(next(chip_id + 1 for chip_id in sorted(chips) if chip_id + 1 not in chips))
    some_chip = min(chips)
    return (
        [Machine(chip_id) for chip_id in chips]
        + [Machine(chip_id) for chip_id in sorted(without_row - chips.keys())]
        + [Machine(0), Machine(NOT_IDENTIFIED)]
        + [Machine(some_chip, failure) for failure in ("library_open", "device_open", "getinfo")]
    )


def answer_lines(chips):
    """The rules' answers, line by line, as predicates_for_every_id reads them."""
    all_machines = machines(chips)
    yield f"ids {FIRST_UNNAMED_ID} machines {len(all_machines)}"
    for machine in all_machines:
        identity = identify(machine, chips)
        chip = identity.chip
        yield (
            f"machine {machine.reported_chip_id:#010x} {machine.failure} family {chip.family_id} "
            f"{'asks_again' if identity.asks_again else 'asks_once'}"
        )
        yield f"identification {len(identity.messages)}"
        for message in identity.messages:
            yield f"{message.function} {message.text}"
        for kind, rule in KINDS:
            yield from _kind_lines(chip, kind, rule)
    yield "end"


def _kind_lines(chip, kind, rule):
    answers = [rule(chip, format_id) for format_id in range(FIRST_UNNAMED_ID)]
    behind = rule(chip, FIRST_UNNAMED_ID)
    if {answer.message for answer in answers} != {behind.message}:
        raise ValueError("the message of a predicate goes by the format id")
    supported = {format_id for format_id, answer in enumerate(answers) if answer.supported}
    yield f"{kind} behind {behind.supported} ids {as_text(supported) or 'none'}"
    if behind.message is None:
        yield "silent"
    else:
        yield f"says {behind.message.function} {behind.message.text}"


def write_answers(path):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("".join(f"{line}\n" for line in answer_lines(read_chips())), encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(
        description="Show that the predicates answer as the rules for every format id.",
        epilog=f"The rows are those of {HARDWARE_DATA.relative_to(PROOF.parent)}.",
    )
    parser.add_argument(
        "--program",
        type=Path,
        default=PROOF.parent / "build/release/bin/predicates_for_every_id",
        help="the built program; default: %(default)s",
    )
    parser.add_argument("--answers", type=Path, help="where the rules' answers are written")
    parser.add_argument(
        "--quick", action="store_true", help="near every power of two alone, and nearer; seconds"
    )
    parser.add_argument("--jobs", type=int, help="threads; default: as many as processors")
    arguments = parser.parse_args()
    if not arguments.program.is_file():
        sys.exit(f"{arguments.program} is not there: build the target predicates_for_every_id")
    answers = arguments.answers or arguments.program.parents[1] / "proof/predicate_answers.txt"
    write_answers(answers)
    command = [arguments.program, answers]
    if arguments.quick:
        command.append("--quick")
    if arguments.jobs is not None:
        command += ["--jobs", str(arguments.jobs)]
    sys.exit(subprocess.run(command, check=False).returncode)


if __name__ == "__main__":
    main()
