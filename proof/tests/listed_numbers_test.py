"""What depends on a number of a list is found for each of its numbers, and without the solver."""

import unittest

import z3

import small_module
from evaluation import evaluate
from executor.finite import Finite, Unlisted
from small_module import edges, numbers_of, run_here, run_unknown

N = z3.BitVec("argument 0", 32)
FUNCTIONS = {"loads", "decides_and_loads", "switches"}


class ListedNumbers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        text = (small_module.HERE / "functions_of_listed_numbers.ll").read_text()
        cls.module = small_module.assemble(text)
        cls.library = small_module.compile_here(text)
        if set(cls.module.functions) != FUNCTIONS:
            raise SystemExit("not every function is tested")

    def run_listed(self, name, listed):
        machine = small_module.make_machine(self.module)
        machine.finite.append(listed)
        return run_unknown(machine, self.module.functions[name], [listed.condition])

    def held_against_this_machine(self, run, name, n, x):
        """One path can be with these numbers, keeps all claims, and ends as it does here."""
        function = self.module.functions[name]
        number = numbers_of(function, [n, x])
        taken = [o for o in run.outcomes if all(evaluate(c, number) for c in o.state.conditions)]
        self.assertEqual(len(taken), 1)
        here = run_here(self.library, function, [n, x])
        self.assertEqual(evaluate(taken[0].value, number), here.value)
        for claim in run.claims:
            if all(evaluate(c, number) for c in claim.conditions):
                self.assertTrue(evaluate(claim.holds, number), claim.text)

    def test_every_number_of_a_list(self):
        for numbers in ([0, 1, 2, 3, 4, 5, 6, 7], [3], [0, 2, 4], [6, 1]):
            for name in sorted(FUNCTIONS):
                run = self.run_listed(name, Finite(N, numbers))
                for n in numbers:
                    for x in edges(32):
                        with self.subTest(name, n=n, x=x):
                            self.held_against_this_machine(run, name, n, x)

    def test_paths_are_as_many_as_differ(self):
        def paths(name, numbers):
            return len(self.run_listed(name, Finite(N, numbers)).outcomes)

        self.assertEqual(paths("loads", range(8)), 4)  # 5, 7, 9, 2
        self.assertEqual(paths("loads", [0, 2, 4, 7]), 1)
        # 0, 2 and 4 find 5; 6 is far and finds 2; 1 and 5 find 7, 3 finds 9, 7 finds 5, for an x
        # above 100 and one that is not.
        self.assertEqual(paths("decides_and_loads", range(8)), 2 + 3 * 2)
        self.assertEqual(paths("switches", range(8)), 3)
        self.assertEqual(paths("switches", [0, 2, 7]), 1)

    def test_the_solver_is_not_asked_of_the_list(self):
        for name in ("loads", "switches"):
            run = self.run_listed(name, Finite(N, range(8)))
            self.assertEqual(run.machine.prover.asked, 0, name)

    def test_a_number_beyond_the_table(self):
        """It is not taken for one of those inside."""
        machine = small_module.make_machine(self.module)
        run = self.run_listed("loads", Finite(N, [0, 8]))
        bad = [c for c in run.claims if not machine.prover.proves(c.conditions, c.holds).proved]
        self.assertTrue(bad)

    def test_a_call_without_the_condition(self):
        machine = small_module.make_machine(self.module)
        machine.finite.append(Finite(N, [1, 2]))
        with self.assertRaises(ValueError):
            run_unknown(machine, self.module.functions["loads"])

    def test_numbers_without_a_list(self):
        """One stands for all where all agree, and else none does."""
        name = "switches"
        above = self.run_listed(name, Unlisted(N, z3.UGT(N, 6), 9))
        self.assertEqual(len(above.outcomes), 1)
        mixed = self.run_listed(name, Unlisted(N, z3.UGT(N, 4), 9))
        self.assertEqual(len(mixed.outcomes), 2)
        for n in (7, 8, 1 << 31, (1 << 32) - 1):
            self.held_against_this_machine(above, name, n, 11)
        for n in (5, 6, 7, (1 << 32) - 1):
            self.held_against_this_machine(mixed, name, n, 11)


if __name__ == "__main__":
    unittest.main()
