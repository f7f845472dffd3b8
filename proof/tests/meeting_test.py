"""Paths that meet only forget: whatever a call does is among what is left open behind the meeting."""

import unittest

import z3

import small_module
from executor import terms
from executor.memory import Poison
from small_module import run_here, run_unknown, samples

MEETING = {"counts", "stores_on_one_path", "stores_on_the_other_path", "keeps_what_all_know"}


class Meetings(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        text = (small_module.HERE / "functions_of_meetings.ll").read_text()
        cls.module = small_module.assemble(text)
        cls.library = small_module.compile_here(text)
        if set(cls.module.functions) != MEETING:
            raise SystemExit("not every function is tested")

    def run_meeting(self, name):
        machine = small_module.make_machine(self.module, meets=MEETING)
        return run_unknown(machine, self.module.functions[name])

    def test_fewer_paths(self):
        apart = run_unknown(small_module.make_machine(self.module), self.module.functions["counts"])
        self.assertEqual(len(apart.outcomes), 8)  # three rounds, two ways each
        # The paths of the first two rounds have met; those of the last have not.
        self.assertEqual(len(self.run_meeting("counts").outcomes), 2)

    def test_all_that_happens_is_left_open(self):
        for name in sorted(MEETING):
            run = self.run_meeting(name)
            function = self.module.functions[name]
            for values in samples(function, 60, "meetings"):
                here = run_here(self.library, function, values)
                with self.subTest(name, values=values):
                    self.assertTrue(any(self.open(run, o, function, values, here)
                                        for o in run.outcomes))

    def open(self, run, outcome, function, values, here):
        """Whether the outcome can be with these arguments and end as it does here."""
        asked = [*outcome.state.conditions, *given(run, function, values)]
        if not isinstance(outcome.value, Poison):
            asked.append(terms.vector(outcome.value, 32) == here.value)
        for region, data in zip(run.regions, here.buffers):
            cells = outcome.state.memory.cells(region)
            for place, byte in enumerate(data):
                value = run.machine.byte(region, place, cells)
                if not isinstance(value, Poison):
                    asked.append(terms.vector(value, 8) == byte)
        solver = z3.Solver()
        solver.add(*asked)
        return solver.check() == z3.sat

    def test_the_test_can_tell(self):
        """Of another result it says that it cannot be."""
        machine = small_module.make_machine(self.module)
        function = self.module.functions["counts"]
        run = run_unknown(machine, function)
        right = run_here(self.library, function, [5, 9])
        wrong = small_module.Answer(right.value + 1, [])
        self.assertTrue(any(self.open(run, o, function, [5, 9], right) for o in run.outcomes))
        self.assertFalse(any(self.open(run, o, function, [5, 9], wrong) for o in run.outcomes))

    def test_stores_of_all_paths_are_kept(self):
        for name in ("stores_on_one_path", "stores_on_the_other_path"):
            run = self.run_meeting(name)
            self.assertTrue(all(o.state.stores for o in run.outcomes), name)

    def test_what_all_paths_know_stays(self):
        run = self.run_meeting("keeps_what_all_know")
        self.assertEqual([c for c in run.claims if c.text == "never reached"], [])


def given(run, function, values):
    """The unknowns of the arguments are these numbers."""
    made = []
    for place, (type_, value) in enumerate(zip(function.argument_types, values)):
        if type_.kind == "int":
            made.append(z3.BitVec(f"argument {place}", type_.bits) == value)
    for region, data in zip(run.regions, [v for v in values if isinstance(v, bytes)]):
        for place, byte in enumerate(data):
            made.append(terms.vector(run.machine.byte(region, place, {}), 8) == byte)
    return made


if __name__ == "__main__":
    unittest.main()
