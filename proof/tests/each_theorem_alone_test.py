"""Each theorem can be proved by its name alone: it imports what it needs, whatever was imported before."""

import subprocess
import sys
import unittest
from pathlib import Path

PROOF = Path(__file__).resolve().parent.parent


def import_alone(name):
    """In a process of its own, as scripts/prove does: what it says on standard error."""
    program = f"import importlib, prove; assert callable(importlib.import_module('theorems.{name}').prove)"
    done = subprocess.run([sys.executable, "-c", program], cwd=PROOF, capture_output=True, text=True,
                          check=False)
    return done.stderr if done.returncode else ""


class EachTheoremAlone(unittest.TestCase):
    def test_each_is_imported_in_a_process_of_its_own(self):
        names = sorted(p.stem for p in (PROOF / "theorems").glob("*.py") if p.stem != "__init__")
        self.assertGreater(len(names), 15)
        for name in names:
            with self.subTest(name):
                self.assertEqual(import_alone(name), "")

    def test_one_that_is_not_there_fails(self):
        self.assertIn("ModuleNotFoundError", import_alone("no_such_theorem"))


if __name__ == "__main__":
    unittest.main()
