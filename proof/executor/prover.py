"""Questions to the solver: whether conditions can hold at all, and whether a claim follows from
them.

A question is asked first with the conditions that name nothing else than it does, then with those
that share an unknown with it, directly or through others, then with all of them: to leave one out
can only make a claim harder to prove. Each question is asked once, however many paths come to it.
"""

import hashlib
import time
from dataclasses import dataclass
from pathlib import Path

import z3

from . import terms


@dataclass
class Answer:
    proved: bool
    model: object = None  # a counterexample
    gave_up: bool = False


class Prover:
    def __init__(self, timeout_seconds=60, write_to=None):
        self.timeout_seconds = timeout_seconds
        self.write_to = Path(write_to) if write_to else None
        self.facts = []  # what every question may rely on
        self.answers = {}
        self.questions = 0
        self.asked = 0
        self.seconds = 0.0
        self.slowest = 0.0
        self.gave_up = []
        self._kept = []
        self._proved = set()
        self._by_what_is_about = False  # the last claim followed from these conditions alone
        self._models = []  # the last ones: many questions have the same answer

    def possible(self, conditions, condition):
        """Whether a path may go on under one more condition. To take a path that cannot be taken
        costs time alone, so that who gives up says yes."""
        return self._check(conditions, condition, quick=True)[0] != "unsat"

    def proves(self, conditions, claim):
        """Whether the claim holds wherever the conditions do."""
        self.questions += 1
        if terms.known(claim):
            if claim:
                return Answer(True)
            claim = z3.BoolVal(False)
        # Most claims follow from what is about them, and were asked on another path.
        key = (terms.number_of(claim), frozenset(
            terms.number_of(c) for c in self._about(conditions, claim) if not isinstance(c, bool)))
        if key in self._proved:
            return Answer(True)
        verdict, model = self._check(conditions, terms.negation(claim), quick=False)
        if verdict == "unsat" and self._by_what_is_about:
            self._kept.append((claim, conditions))
            self._proved.add(key)
        return Answer(verdict == "unsat", model, verdict == "unknown")

    def _check(self, conditions, question, quick):
        conditions = list(conditions) + self.facts
        asked = None
        self._by_what_is_about = True
        for choose in ((self._about, self._related) if quick else
                       (self._about, self._related, lambda conditions, _: conditions)):
            chosen = choose(conditions, question)
            if asked is not None and len(chosen) == asked:
                continue
            asked = len(chosen)
            verdict, model = self._ask(chosen + [question], quick)
            if verdict == "unsat":
                break
            self._by_what_is_about = False
        return verdict, model

    def _about(self, conditions, question):
        """The conditions that name nothing that the question does not name."""
        if terms.known(question):
            return conditions
        wanted = terms.unknowns(question)
        return [c for c in conditions if terms.unknowns(c) <= wanted]

    def _related(self, conditions, question):
        """The conditions that share an unknown with the question, directly or through others."""
        if terms.known(question):
            return conditions
        wanted = set(terms.unknowns(question))
        if not wanted:
            return conditions
        left, kept = list(range(len(conditions))), set()
        while True:
            found = [i for i in left if terms.unknowns(conditions[i]) & wanted]
            if not found:
                return [conditions[i] for i in sorted(kept)]
            for i in found:
                wanted |= terms.unknowns(conditions[i])
            kept.update(found)
            left = [i for i in left if i not in kept]

    def _ask(self, asserted, quick):
        asserted = [a for a in asserted if not (isinstance(a, bool) and a)]
        if any(isinstance(a, bool) for a in asserted):
            return "unsat", None
        key = frozenset(a.get_id() for a in asserted)
        if key in self.answers and (quick or self.answers[key] != ("sat", None)):
            return self.answers[key]  # a counterexample's numbers are worth asking again
        self._kept.extend(asserted)  # so that no other term gets the number of one of these
        if quick and self._holds_in_a_model(asserted):
            self.answers[key] = ("sat", None)
            return self.answers[key]
        started = time.monotonic()
        solver = _quick_solver() if quick else z3.Solver()
        solver.set("timeout", 1000 * self.timeout_seconds)
        solver.add(*asserted)
        verdict = str(solver.check())
        took = time.monotonic() - started
        self.asked += 1
        self.seconds += took
        self.slowest = max(self.slowest, took)
        model = solver.model() if verdict == "sat" else None
        if model is not None:
            self._models = [model] + self._models[:_MODELS - 1]
        if verdict == "unsat" and self.write_to:
            self._write(solver)
        if verdict == "unknown" and not quick:
            self.gave_up.append(asserted)
        self.answers[key] = (verdict, model)
        return self.answers[key]

    def _holds_in_a_model(self, asserted):
        for place, model in enumerate(self._models):
            # The question stands last, and is what most of them break.
            if all(z3.is_true(model.eval(a, model_completion=True)) for a in reversed(asserted)):
                self._models.insert(0, self._models.pop(place))
                return True
        return False

    def _write(self, solver):
        """For another solver: a file that is named for what it asks."""
        text = solver.to_smt2()
        self.write_to.mkdir(parents=True, exist_ok=True)
        name = hashlib.sha256(text.encode()).hexdigest()[:16]
        path = self.write_to / f"{name}.smt2"
        if not path.exists():
            path.write_text("(set-logic QF_UFBV)\n" + text)


_MODELS = 40


def _quick_solver():
    return z3.Then("simplify", "ackermannize_bv", "bit-blast", "sat").solver()
