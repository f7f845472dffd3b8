"""Shows that proofs can fail: puts each bug of proof/bugs into a copy of the tree, and runs the
theorem that must find it there, through scripts/prove. A bug that is not found fails the run.

The first line of a patch names its theorem: "# theorem: NAME".
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
TREE = HERE.parent


def patches():
    found = sorted((HERE / "bugs").glob("*.patch"))
    if not found:
        raise SystemExit("proof/bugs holds no patch")
    return {p.stem: p for p in found}


def theorem_of(patch):
    found = re.match(r"# theorem: (\w+)\n", patch.read_text())
    if not found:
        raise SystemExit(f"{patch.name}: the first line does not name a theorem")
    return found[1]


def copy_of_the_tree(place):
    """The files that git knows, as they stand."""
    if place.exists():
        shutil.rmtree(place)
    names = subprocess.run(["git", "ls-files", "-z"], cwd=TREE, capture_output=True, text=True,
                           check=True).stdout.split("\0")
    for name in filter(None, names):
        (place / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(TREE / name, place / name, follow_symlinks=False)


def try_bug(name, patch, work):
    """(found, seconds, what scripts/prove said)"""
    place = work / name
    copy_of_the_tree(place)
    # The copy stands inside this repository, and is none itself.
    environment = dict(os.environ, GIT_CEILING_DIRECTORIES=str(work),
                       KORVEL_PROOF_CACHE=str(TREE / "build" / "proof" / "cache"))
    applied = subprocess.run(["git", "apply", str(patch)], cwd=place, env=environment,
                             capture_output=True, text=True, check=False)
    if applied.returncode != 0:
        raise SystemExit(f"{patch.name} does not apply to this tree, so make it anew:\n"
                         f"{applied.stderr}")
    started = time.monotonic()
    found, said = False, ""
    for how in (["--quick"], []):
        done = subprocess.run(["scripts/prove", "--first", *how, theorem_of(patch)], cwd=place,
                              env=environment, capture_output=True, text=True, check=False)
        said = done.stdout + done.stderr
        # Not an error of any kind, nor a solver or an executor that gives up: something does not hold.
        found = (done.returncode == 1 and "NOT PROVED" in said and
                 re.search(r"^ +(counterexample|it does not hold)", said, re.M) is not None)
        if found:
            break
    shutil.rmtree(place)
    return found, time.monotonic() - started, said


def main():
    parser = argparse.ArgumentParser(prog="scripts/prove --bugs", description=__doc__)
    parser.add_argument("bugs", nargs="*", metavar="BUG", help="which (all)")
    arguments = parser.parse_args()
    known = patches()
    wanted = arguments.bugs or list(known)
    for name in wanted:
        if name not in known:
            parser.error(f"there is no bug {name}: choose among {', '.join(known)}")
    work = TREE / "build" / "proof" / "bugs"
    missed = []
    for name in wanted:
        found, seconds, said = try_bug(name, known[name], work)
        print(f"{name}: {'found' if found else 'NOT FOUND'} by {theorem_of(known[name])} "
              f"({seconds:.0f} s)", flush=True)
        shown = re.search(r"NOT PROVED.*", said, re.S)
        lines = shown[0].splitlines() if shown else said.splitlines()
        for line in lines[1:12] if found else lines[-20:]:
            print(f"    {line[:300]}", flush=True)
        if not found:
            missed.append(name)
    if missed:
        print(f"{len(missed)} of {len(wanted)} bugs are not found: {', '.join(missed)}")
        return 1
    print(f"all {len(wanted)} bugs are found")
    return 0


if __name__ == "__main__":
    sys.exit(main())
