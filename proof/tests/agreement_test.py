"""The executor computes what this machine does: on numbers that are known, and in terms of unknown
ones, on exactly one of its paths."""

import unittest

import generated_functions
import small_module
from evaluation import evaluate
from small_module import (bytes_of, keeps_its_promises, numbers_of, plain, run_here, run_known,
                          run_unknown, samples)

SAMPLES = 100
ENOUGH = 12 if small_module.QUICK else SAMPLES  # samples on which nothing undefined happens


class Agreement(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        text = small_module.functions_of_files() + generated_functions.text()
        cls.module = small_module.assemble(text)
        cls.library = small_module.compile_here(text)
        cls.machine = small_module.make_machine(cls.module)

    def test_every_function(self):
        tried = 0
        for name, function in sorted(self.module.functions.items()):
            if "define internal" in function.declaration:
                continue  # run as part of those that call it
            with self.subTest(name):
                self.agrees(function)
                tried += 1
        self.assertGreater(tried, 350)

    def agrees(self, function):
        unknown = run_unknown(self.machine, function)
        self.assertTrue(unknown.outcomes)
        compared = 0
        for values in samples(function, SAMPLES, "agreement"):
            number = numbers_of(function, values)
            taken = [o for o in unknown.outcomes
                     if all(evaluate(c, number) for c in o.state.conditions)]
            defined = keeps_its_promises(unknown, number)
            known = run_known(self.machine, function, values)
            defined_known = keeps_its_promises(known, number)
            self.assertEqual(defined, defined_known, values)
            if not defined:
                continue
            compared += 1
            if compared > ENOUGH:
                break
            self.assertEqual(len(taken), 1, f"paths that hold for {values}")
            self.assertEqual(len(known.outcomes), 1, f"known paths for {values}")
            here = run_here(self.library, function, values)
            for what, run, outcome in (("known", known, known.outcomes[0]),
                                       ("unknown", unknown, taken[0])):
                self.assertEqual(outcome.kind, "returns")
                self.assertEqual(plain(evaluate(outcome.value, number)), here.value,
                                 f"{what}: {values}")
                self.assertEqual(bytes_of(run, outcome, number), here.buffers, f"{what}: {values}")
        self.assertGreaterEqual(compared, 1)


if __name__ == "__main__":
    unittest.main()
