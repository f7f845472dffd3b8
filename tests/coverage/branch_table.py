"""Prints the branches of the library's files that the tests took, and fails when one is left.

A branch is a condition's outcome: true or false. Those of one place are added up over all sources
and template arguments that it was compiled for.
"""

import json
import sys
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SUBSYSTEMS = ("platform", "identify", "formats", "align", "layout")


def library_file(name):
    path = Path(name)
    if not path.is_relative_to(ROOT):
        return None
    inside = path.relative_to(ROOT)
    return str(inside) if inside.parts[0] in SUBSYSTEMS else None


def left_out_lines():
    """The listed lines, as file and number. A line that is gone ends the run."""
    text = Path(__file__).with_name("left_out.txt").read_text()
    lines = [line for line in text.splitlines() if line.strip() and not line.startswith("#")]
    found = set()
    for file, text, _reason in zip(*[iter(lines)] * 3):
        in_file = [line.strip() for line in (ROOT / file).read_text().splitlines()]
        if text.strip() not in in_file:
            sys.exit(f"left_out.txt names what is not in {file} any more: {text.strip()}")
        found.add((file, in_file.index(text.strip()) + 1))
    return found


def counted_branches(functions, left_out):
    """Counts by file, place and outcome."""
    branches = defaultdict(int)
    for function in functions:
        file_names = [library_file(f) for f in function["filenames"]]
        for branch in function["branches"]:
            line, column, _, _, true_count, false_count, file_index = branch[:7]
            file = file_names[file_index]
            if file is None or (file, line) in left_out:
                continue
            branches[(file, line, column, "true")] += true_count
            branches[(file, line, column, "false")] += false_count
    return branches


def main():
    functions = json.loads(Path(sys.argv[1]).read_text())["data"][0]["functions"]
    left_out = left_out_lines()
    branches = counted_branches(functions, left_out)
    files = {f for function in functions for f in map(library_file, function["filenames"]) if f}
    total = taken_in_all = 0
    print(f"{'file':62} {'branches':>8} {'taken':>6}")
    for file in sorted(files):
        counts = [count for key, count in branches.items() if key[0] == file]
        taken = sum(count > 0 for count in counts)
        total, taken_in_all = total + len(counts), taken_in_all + taken
        print(f"{file:62} {len(counts):8} {taken:6}")
    print(f"{'all':62} {total:8} {taken_in_all:6}   {100 * taken_in_all / total:.1f} %")
    print(f"{len(left_out)} lines are left out (tests/coverage/left_out.txt)")
    for (file, line, column, outcome), count in sorted(branches.items()):
        if count == 0:
            print(f"never {outcome}: {file}:{line}:{column}", file=sys.stderr)
    sys.exit(0 if taken_in_all == total else 1)


if __name__ == "__main__":
    main()
