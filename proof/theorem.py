"""What a theorem is proved with, and what is kept of it for the report."""

import sys
import time
from dataclasses import dataclass, field

import setting
from executor.machine import NotUnderstood


MOST_FAILURES = 5  # before a theorem is left


@dataclass
class Failure:
    what: str  # was to be shown
    place: str  # in the library's source
    why: str  # "counterexample", "the solver gave up" or what else
    values: str = ""  # of the unknowns
    call: object = None  # counterexample.Call
    confirmed: str = ""  # what the built library said to it


@dataclass
class Report:
    name: str
    shown: int = 0  # claims
    found: int = 0  # exceptions, and cases that must exist
    paths: int = 0
    instructions: int = 0
    questions: int = 0  # asked of the solver, each once
    solver_seconds: float = 0.0
    slowest_seconds: float = 0.0
    seconds: float = 0.0
    failures: list = field(default_factory=list)


class Proof:
    """Handed to a theorem's prove(): collects what it shows."""

    def __init__(self, name, module, prover, quick=False, most_failures=MOST_FAILURES):
        self.module = module
        self.prover = prover
        self.quick = quick
        self.report = Report(name)
        self.most_failures = most_failures
        self._case = ""
        self._started = self._told = time.monotonic()
        self._asked, self._solver_seconds = prover.asked, prover.seconds

    # ---- running the code

    def machine(self, **arguments):
        return setting.make_machine(self.module, self.prover, **arguments)

    def run(self, machine, name, arguments, memory=None, conditions=(), notes=None):
        """All outcomes of a call of the library's code."""
        steps, paths = machine.steps, machine.paths
        outcomes = machine.run(name, arguments, memory, conditions, notes)
        self.report.instructions += machine.steps - steps
        self.report.paths += machine.paths - paths
        if not outcomes:
            self.fail(f"{name} ends", "", "no path through it was found")
        return outcomes

    # ---- showing

    def show(self, what, conditions, claim, place="", call=None, realistic=None):
        """The claim holds wherever the conditions do. `call` makes a counterexample's call of the
        solver's values; `realistic`, of all terms that were asked about, what holds of values that can
        be called with."""
        self.count()
        answer = self.prover.proves(conditions, claim)
        if answer.proved:
            return True
        if answer.gave_up:
            return self.fail(what, place, "the solver gave up")
        if realistic is None:
            return self.fail(what, place, "counterexample", answer.model, call)
        more = realistic(list(conditions) + [claim])
        callable_ = self.prover.proves(list(conditions) + more, claim)
        if callable_.model is None:
            return self.fail(what, place, "counterexample, none found that can be called",
                             answer.model)
        return self.fail(what, place, "counterexample", callable_.model, call)

    def count(self):
        """One claim more; a long run says how far it is."""
        self.report.shown += 1
        now = time.monotonic()
        if now - self._told >= _SECONDS_UNTOLD:
            self._told = now
            print(f"{self.report.name}: {self._case}{self.report.shown} claims, "
                  f"{self.prover.asked} questions, {now - self._started:.0f} s so far",
                  file=sys.__stderr__, flush=True)

    def each(self, cases):
        """The cases, one after the other; a long run says at which it is."""
        for number, case in enumerate(cases, 1):
            self._case = f"case {number} of {len(cases)}, "
            yield case
        self._case = ""

    def show_claims(self, machine, call=None):
        """All that the compiler has promised and that memory demands on the paths so far."""
        for claim in machine.claims:
            self.show(f"{claim.kind}: {claim.text}", claim.conditions, claim.holds, claim.place, call)
        machine.claims.clear()

    def find(self, what, conditions):
        """There are such values: an exception is one, a case is not empty."""
        self.report.found += 1
        verdict, _ = self.prover._check(list(conditions), True, quick=False)
        if verdict != "sat":
            return self.fail(what, "", "no such values were found")
        return True

    def require(self, what, condition, place=""):
        """Something that is known without the solver."""
        self.count()
        return bool(condition) or self.fail(what, place, "it does not hold")

    def fail(self, what, place, why, model=None, call=None):
        failure = Failure(what, place, why)
        if model is not None:
            values = sorted(f"{d.name()} = {model[d]}" for d in model.decls() if d.arity() == 0)
            more = len(values) - _MOST_VALUES
            failure.values = ", ".join(values[:_MOST_VALUES]) + (
                f" and {more} more" if more > 0 else "")
            if call is not None:
                failure.call = call(model)
        self.report.failures.append(failure)
        if len(self.report.failures) >= self.most_failures:
            raise EnoughFailures
        return False

    def finished(self):
        report = self.report
        report.seconds = time.monotonic() - self._started
        report.questions = self.prover.asked - self._asked
        report.solver_seconds = self.prover.seconds - self._solver_seconds
        report.slowest_seconds = self.prover.slowest
        return report


_MOST_VALUES = 24
_SECONDS_UNTOLD = 60


class EnoughFailures(Exception):
    pass


def prove(name, theorem, module, prover, quick=False, most_failures=MOST_FAILURES):
    """Runs one theorem: a module with prove(proof)."""
    prover.slowest = 0.0
    proof = Proof(name, module, prover, quick, most_failures)
    try:
        theorem.prove(proof)
    except EnoughFailures:
        pass
    except NotUnderstood as reason:
        proof.report.failures.append(Failure("the code is understood", "", str(reason)))
    if proof.report.shown == 0:
        proof.report.failures.append(Failure("something", "", "the theorem has shown nothing"))
    return proof.finished()
