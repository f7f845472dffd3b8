"""Changes the library one place at a time and reports the changes that no test notices."""

import argparse
import os
import random
import sys
import threading
import time
from collections import Counter, defaultdict
from itertools import zip_longest
from pathlib import Path

from changes import changes_of
from equivalents import Equivalents, WrongList
from library_build import LibraryBuild, Refused
from lookups_program import LookupsProgram
from test_programs import TestPrograms

ROOT = Path(__file__).resolve().parents[2]
# Assertions and declarations: nothing of these files reaches the library's code.
NOT_CHANGED = {"identify/hardware_data_checks.cpp", "layout/record_layout.cpp"}
TABLE_KINDS = {"table", "entry"}
OUTCOMES = ["killed", "refused", "same code", "equivalent", "survived", "misjudged"]


def possible_changes(build):
    gone = NOT_CHANGED - set(build.files)
    if gone:
        sys.exit(f"mutate: not there: {', '.join(sorted(gone))}")
    files = [f for f in build.files if f not in NOT_CHANGED]
    return [c for file in files for c in changes_of(file, build.text(file))]


def chosen_changes(arguments, every):
    """All changes, or a sample of them that is the same in every run."""
    every = [c for c in every if c.file.startswith(tuple(arguments.files))]
    if arguments.line:
        every = [c for c in every if arguments.line in c.before]
    tables = [c for c in every if c.kind in TABLE_KINDS]
    rules = [c for c in every if c.kind not in TABLE_KINDS]
    if not arguments.all:
        pick = random.Random(arguments.seed)
        rules = pick.sample(rules, min(len(rules), arguments.rules))
        tables = evenly(tables, arguments.tables, pick)
    by_file = defaultdict(list)
    for change in sorted(rules + tables, key=lambda c: (c.file, c.start, c.end, c.new)):
        by_file[change.file].append(change)
    return by_file, len(every)


def evenly(changes, count, pick):
    """As many of each file as of the others: the hardware data would take most of the sample."""
    by_file = defaultdict(list)
    for change in pick.sample(changes, len(changes)):
        by_file[change.file].append(change)
    rounds = [c for turn in zip_longest(*by_file.values()) for c in turn if c]
    return rounds[:count]


class Worker:
    def __init__(self, number, arguments):
        self.build = LibraryBuild(ROOT, arguments.work / f"worker{number}", arguments.build)
        self.programs = TestPrograms(arguments.build / "bin", self.build.library)
        self.lookups = LookupsProgram(self.build)

    def start(self):
        """Every test must pass on the library as it stands, and fail without a library."""
        programs = self.programs.quick + self.programs.slow
        for program in programs:
            if self.programs.passes(program):
                sys.exit(f"mutate: {program} passes without a library")
        self.must_pass()

    def must_pass(self):
        """On the library as it stands: else its tests would notice every change."""
        self.build.link({})
        self.lookups.start()
        failed = self.programs.first_failure(self.programs.quick + self.programs.slow)
        if not failed and not self.programs.passes("lookups_test", self.lookups.program):
            failed = "lookups_test"
        if failed:
            sys.exit(f"mutate: {failed} fails on the library as it stands")

    def outcome(self, change):
        """What became of one change, and what noticed it."""
        file = change.file
        self.build.write(file, change.apply(self.build.text(file)))
        try:
            return self._outcome(change)
        except Refused as refused:
            return "refused", f"compiler: {refused}"
        finally:
            self.build.write(file, self.build.text(file))

    def _outcome(self, change):
        sources = self.build.dependents(change.file)
        changed = {}
        # A header goes into a few telling sources first: most changes are noticed there.
        for group in (sources[:1], sources[1:5], sources[5:]):
            for source in group:
                name = "changed-" + source.replace("/", "-") + ".o"
                changed[source] = self.build.folder / "objects" / name
                self.build.compile(source, changed[source])
            if group and not self._same_code({s: changed[s] for s in group}):
                self.build.link(changed)
                noticed = self.programs.first_failure(self.programs.quick)
                if noticed:
                    return "killed", noticed
        same_code = self._same_code(changed)
        if not same_code:
            noticed = self.programs.first_failure(self.programs.slow)
            if noticed:
                return "killed", noticed
        rebuilt = self.lookups.rebuilt(change.file)
        if rebuilt is False:
            return "refused", "compiler: lookups_test"
        if rebuilt and not self.programs.passes("lookups_test", self.lookups.program):
            return "killed", "lookups_test"
        return ("same code" if same_code else "survived"), ""

    def _same_code(self, changed):
        return all(
            target.read_bytes() == self.build.original_object(source)
            for source, target in changed.items()
        )


def judged_equivalent(outcome, by):
    """What became of a change that is listed as one that changes nothing."""
    if outcome == "survived":
        return "equivalent", ""
    if outcome in ("killed", "refused"):
        return "misjudged", f"{outcome}: {by}"
    return outcome, by


class Run:
    def __init__(self, arguments, equivalents):
        self.arguments, self.equivalents = arguments, equivalents
        self.lock = threading.Lock()
        self.results = []
        self.error = None
        self.started = time.monotonic()

    def work(self, worker, files):
        try:
            self._work(worker, files)
        except Exception as error:  # a thread's own end would go unseen
            self.error = error
            files.clear()

    def _work(self, worker, files):
        while True:
            with self.lock:
                if not files:
                    return
                file, changes = files.pop(0)
            worker.build.prepare(file, len(changes))
            for change in changes:
                outcome, by = worker.outcome(change)
                if self.equivalents.reason(change):
                    outcome, by = judged_equivalent(outcome, by)
                with self.lock:
                    self.results.append((change, outcome, by))
                    self._tell(change, outcome, by)

    def _tell(self, change, outcome, by):
        if outcome in ("survived", "misjudged"):
            print(f"{outcome}  {change.describe()}  {by}".rstrip(), flush=True)
        if self.arguments.log:
            with open(self.arguments.log, "a") as log:
                spent = time.monotonic() - self.started
                log.write(f"{spent:.0f}\t{outcome}\t{by}\t{change.describe()}\n")


def batches(by_file, size=60):
    """Files in pieces, long ones first, so that no worker is left with one long file."""
    pieces = []
    for file, changes in by_file.items():
        pieces += [(file, changes[i : i + size]) for i in range(0, len(changes), size)]
    return sorted(pieces, key=lambda piece: -len(piece[1]))


def report(results, everything, seconds):
    table = defaultdict(Counter)
    for change, outcome, _ in results:
        table[change.file][outcome] += 1
    total = Counter()
    print(f"\n{'file':62} {'changes':>7} " + " ".join(f"{o:>10}" for o in OUTCOMES))
    for file in sorted(table):
        counts = table[file]
        total.update(counts)
        print(f"{file:62} {sum(counts.values()):7} " + " ".join(f"{counts[o]:10}" for o in OUTCOMES))
    print(f"{'all':62} {sum(total.values()):7} " + " ".join(f"{total[o]:10}" for o in OUTCOMES))
    noticed = total["killed"] + total["refused"]
    counted = noticed + total["survived"]
    tested = total["killed"] + total["survived"]
    print(f"\n{len(results)} of {everything} possible changes in {seconds:.0f} s")
    rate = 100 * noticed / counted if counted else 100.0
    by_tests = 100 * total["killed"] / tested if tested else 100.0
    print(f"noticed: {rate:.1f} % of those that are not equivalent; by tests alone {by_tests:.1f} %")
    return rate


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=Path, required=True, help="build folder with the tests")
    parser.add_argument("--work", type=Path, required=True, help="scratch folder")
    parser.add_argument("--rules", type=int, default=400, help="changes of rules (default 400)")
    parser.add_argument("--tables", type=int, default=100, help="changes of tables (default 100)")
    parser.add_argument("--all", action="store_true", help="every change")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=min(2, os.cpu_count() or 1))
    parser.add_argument("--line", help="only changes of lines that contain this text")
    parser.add_argument("--log", help="file that gets a line for every change")
    parser.add_argument("--least", type=float, default=97.0, help="percentage to reach")
    parser.add_argument("files", nargs="*", default=[""], help="only files that begin so")
    arguments = parser.parse_args()
    arguments.build, arguments.work = arguments.build.resolve(), arguments.work.resolve()

    workers = [Worker(n, arguments) for n in range(arguments.jobs)]
    every = possible_changes(workers[0].build)
    listed = Path(__file__).with_name("equivalents.txt")
    try:
        equivalents = Equivalents.of(listed.read_text(), every)
    except WrongList as wrong:
        sys.exit(f"mutate: {listed.name}: {wrong}")
    by_file, everything = chosen_changes(arguments, every)
    for worker in workers:
        worker.start()
    run = Run(arguments, equivalents)
    files = batches(by_file)
    threads = [threading.Thread(target=run.work, args=(w, files)) for w in workers]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if run.error:
        sys.exit(f"mutate: {run.error!r}")
    for worker in workers:
        worker.must_pass()
    rate = report(run.results, everything, time.monotonic() - run.started)
    misjudged = sum(outcome == "misjudged" for _, outcome, _ in run.results)
    if misjudged:
        sys.exit(f"mutate: {misjudged} changes that equivalents.txt lists are noticed")
    sys.exit(1 if rate < arguments.least or not run.results else 0)


if __name__ == "__main__":
    main()
