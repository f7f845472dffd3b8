"""Proves the theorems about the library: `scripts/prove --help` says how."""

import argparse
import contextlib
import importlib
import io
import json
import os
import subprocess
import sys
import time
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor
from multiprocessing import get_context
from pathlib import Path

import counterexample
import library_code
import second_solver
import theorem
from executor.prover import Prover

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE / "requirements"))  # for the theorems


def names():
    found = sorted(p.stem for p in (HERE / "theorems").glob("*.py") if p.stem != "__init__")
    if not found:
        raise SystemExit("proof/theorems holds no theorem")
    return found


def print_failure(failure):
    print(f"    not shown: {failure.what}")
    if failure.place:
        print(f"      at {failure.place}")
    print(f"      {failure.why}" + (f": {failure.values}" if failure.values else ""))
    if failure.call:
        print("      as a call:")
        for line in str(failure.call).splitlines():
            print(f"        {line}")
        print(f"      the built library: {failure.confirmed}")


def print_report(report):
    verdict = "NOT PROVED" if report.failures else "proved"
    print(f"  {verdict}: {report.shown} claims, {report.found} exceptions and cases found, "
          f"{report.paths} paths, {report.questions} questions, {report.seconds:.1f} s, "
          f"slowest question {report.slowest_seconds:.1f} s", flush=True)
    for failure in report.failures:
        print_failure(failure)


def run_tests(code, quick):
    """What an executor proves whose tests fail is worth nothing, and so is what it is held against."""
    started = time.monotonic()
    tests = sorted((HERE / "tests").glob("*_test.py"))
    if not tests:
        raise SystemExit("proof/tests holds no test")
    tests += sorted((HERE / "requirements").glob("test_*.py"))
    environment = dict(os.environ, KORVEL_PROOF_LIBRARY_CODE=str(code),
                       KORVEL_PROOF_TESTS="quick" if quick else "all")

    def run(test):
        return subprocess.run([sys.executable, str(test)], env=environment, capture_output=True,
                              text=True, check=False)

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for test, done in zip(tests, pool.map(run, tests)):
            if done.returncode != 0 or "OK" not in done.stderr:
                raise SystemExit(f"the proofs' own test {test.name} fails:\n"
                                 f"{done.stderr[-4000:]}")
    print(f"the proofs' own tests pass: {', '.join(t.stem for t in tests)} "
          f"({time.monotonic() - started:.1f} s)", flush=True)


class _Given:
    """What every process of a run works with."""

    arguments = None
    module = None


def prove_group(names_):
    """(report, what is to be printed, whether the second solver agrees) of each theorem: of theorems
    that share what they run, and so the process."""
    return [prove_one(name) for name in names_]


def prove_one(name):
    arguments = _Given.arguments
    made = importlib.import_module(f"theorems.{name}")
    said = io.StringIO()
    with contextlib.redirect_stdout(said):
        print(f"{name}: {' '.join(made.__doc__.partition(chr(10) * 2)[0].split())}")
        prover = Prover(write_to=Path(arguments.smt) / name if arguments.smt else None)
        report = theorem.prove(name, made, _Given.module, prover, arguments.quick,
                               1 if arguments.first else theorem.MOST_FAILURES)
        for failure in report.failures:
            if failure.call and arguments.library:
                failure.confirmed = counterexample.confirm(failure.call, arguments.library)
        print_report(report)
        agree = not arguments.smt or report.questions == 0 or second_solver.print_answers(
            Path(arguments.smt) / name)
    for failure in report.failures:
        failure.call = None  # has been printed, and cannot be sent
    return report, said.getvalue(), agree


def main():
    parser = argparse.ArgumentParser(prog="scripts/prove", description=__doc__)
    parser.add_argument("theorems", nargs="*", metavar="THEOREM",
                        help="which (all): " + ", ".join(names()))
    parser.add_argument("--quick", action="store_true",
                        help="what takes less than two minutes, and says what is left out")
    parser.add_argument("--first", action="store_true",
                        help="leave a theorem at the first thing that does not hold")
    parser.add_argument("--smt", metavar="FOLDER", help="write each question as an SMT-LIB file, and let a second solver "
                        "answer it")
    parser.add_argument("--build", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--work", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--library", help=argparse.SUPPRESS)
    parser.add_argument("--json", metavar="FILE", help="the report for programs")
    arguments = parser.parse_args()
    wanted = arguments.theorems or names()
    for name in wanted:
        if name not in names():
            parser.error(f"there is no theorem {name}: choose among {', '.join(names())}")

    started = time.monotonic()
    code = library_code.compile_library(arguments.build, Path(arguments.work))
    module = library_code.read_library(code)
    print(f"the library's code for {Path(arguments.build).name}: {len(module.functions)} functions, read in "
          f"{time.monotonic() - started:.1f} s", flush=True)
    if not arguments.theorems:
        run_tests(code, arguments.quick)
    groups = {}
    for name in wanted:
        made = importlib.import_module(f"theorems.{name}")
        groups.setdefault(getattr(made, "SHARES_RUNS_OF", name), []).append(name)
    # The module of the library's code is there in each process without being sent.
    _Given.arguments, _Given.module = arguments, module
    reports, disagree = [], []
    with ProcessPoolExecutor(os.cpu_count(), mp_context=get_context("fork")) as pool:
        for done in pool.map(prove_group, groups.values()):
            for report, said, agree in done:
                print(said, end="", flush=True)
                if report is not None:
                    reports.append(report)
                    if not agree:
                        disagree.append(report.name)
    if arguments.json:
        Path(arguments.json).write_text(json.dumps(
            [{k: v for k, v in vars(r).items() if k != "failures"} |
             {"proved": not r.failures} for r in reports], indent=2))
    failed = [r.name for r in reports if r.failures]
    total = time.monotonic() - started
    if failed:
        print(f"{len(failed)} of {len(reports)} theorems are not proved: {', '.join(failed)} "
              f"({total:.0f} s)")
        return 1
    if disagree:
        print(f"the solvers do not agree on {', '.join(disagree)}")
        return 1
    if not reports:
        print("no theorem was left to prove")
        return 1
    print(f"{len(reports)} theorems proved in {total:.0f} s")
    return 0


if __name__ == "__main__":
    sys.exit(main())
