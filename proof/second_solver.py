"""Lets cvc5 answer the questions that z3 has answered: each was written as an SMT-LIB file because z3
found that it cannot be satisfied, so that "unsat" agrees."""

import collections
import os
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

SECONDS = 60  # for each question


def answer(path):
    done = subprocess.run(["cvc5", f"--tlimit={SECONDS * 1000}", str(path)], capture_output=True,
                          text=True, check=False)
    said = done.stdout.strip().splitlines()
    if said and said[0] in ("sat", "unsat"):
        return said[0]
    told = (done.stdout + done.stderr).lower()
    return "gave up" if "timeout" in told or "interrupted" in told or "unknown" in told else told


def answer_all(folder):
    """(answer, count), and the files that it does not answer with "unsat"."""
    files = sorted(Path(folder).rglob("*.smt2"))
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        answers = list(pool.map(answer, files))
    others = [(path, said) for path, said in zip(files, answers) if said != "unsat"]
    return collections.Counter(answers), others


def print_answers(folder):
    """Returns whether the solvers agree, as far as the second one has an answer."""
    counts, others = answer_all(folder)
    if not counts:
        print(f"  second solver: there is no question in {folder}")
        return False
    print(f"  second solver: agrees on {counts['unsat']} of {sum(counts.values())} questions")
    for path, said in others:
        print(f"    {path}: {said[:200]}")
    return all(said in ("gave up",) for _, said in others)
