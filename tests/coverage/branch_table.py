"""Prints the branches of the library's files that the tests took, and fails when one is left.

A branch is a condition's outcome: true or false. Those of one place are added up over all sources
and template arguments that it was compiled for.
"""

import json
import sys
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def library_file(name):
    path = Path(name)
    if not path.is_relative_to(ROOT):
        return None
    inside = path.relative_to(ROOT)
    return str(inside) if inside.parts[0] == "src" else None


def counted_branches(functions):
    """Counts by file, place and outcome."""
    branches = defaultdict(int)
    for function in functions:
        file_names = [library_file(f) for f in function["filenames"]]
        for branch in function["branches"]:
            line, column, _, _, true_count, false_count, file_index = branch[:7]
            file = file_names[file_index]
            if file is None:
                continue
            branches[(file, line, column, "true")] += true_count
            branches[(file, line, column, "false")] += false_count
    return branches


def read_functions(arguments):
    """The functions of an export of llvm-cov, which is the one argument."""
    if len(arguments) != 1:
        sys.exit("usage: branch_table.py COVERAGE.json")
    try:
        return json.loads(Path(arguments[0]).read_text())["data"][0]["functions"]
    except (OSError, ValueError, KeyError, IndexError) as error:
        sys.exit(f"{arguments[0]} is no export of llvm-cov: {error!r}")


def missing_exports(functions):
    """Exports of the library that nothing is known of: another program's coverage, or a part."""
    lines = (ROOT / "src/exports.txt").read_text().splitlines()
    exports = {line.strip() for line in lines if line.strip() and not line.startswith("#")}
    if not exports:
        sys.exit("src/exports.txt names no export")
    return sorted(exports - {function["name"] for function in functions})


def main():
    functions = read_functions(sys.argv[1:])
    branches = counted_branches(functions)
    files = {f for function in functions for f in map(library_file, function["filenames"]) if f}
    if not branches:
        sys.exit("no branch of the library was counted")
    if missing := missing_exports(functions):
        sys.exit(f"nothing was counted in {', '.join(missing)}")
    total = taken_in_all = 0
    print(f"{'file':62} {'branches':>8} {'taken':>6}")
    for file in sorted(files):
        counts = [count for key, count in branches.items() if key[0] == file]
        taken = sum(count > 0 for count in counts)
        total, taken_in_all = total + len(counts), taken_in_all + taken
        print(f"{file:62} {len(counts):8} {taken:6}")
    print(f"{'all':62} {total:8} {taken_in_all:6}   {100 * taken_in_all / total:.1f} %")
    for (file, line, column, outcome), count in sorted(branches.items()):
        if count == 0:
            print(f"never {outcome}: {file}:{line}:{column}", file=sys.stderr)
    sys.exit(0 if taken_in_all == total else 1)


if __name__ == "__main__":
    main()
