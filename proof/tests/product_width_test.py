"""Products of numbers of few bits fit where the executor takes them to: all products of all pairs of
small widths, with sign and without."""

import itertools
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import z3

from executor import terms


def numbers(width, with_sign):
    return range(-(1 << (width - 1)), 1 << (width - 1)) if with_sign else range(1 << width)


def extended(name, width, with_sign, bits):
    extend = z3.SignExt if with_sign else z3.ZeroExt
    return extend(bits - width, z3.BitVec(name, width))


class ProductWidths(unittest.TestCase):
    def test_what_is_said_to_fit_fits(self):
        bits, said = 8, 0
        kinds = list(itertools.product(range(1, bits), (False, True)))
        for (w, s), (v, t), with_sign in itertools.product(kinds, kinds, (False, True)):
            low, high = (-(1 << (bits - 1)), 1 << (bits - 1)) if with_sign else (0, 1 << bits)
            products = {a * b for a in (min(numbers(w, s)), max(numbers(w, s)))
                        for b in (min(numbers(v, t)), max(numbers(v, t)))}
            fits = all(low <= p < high for p in products)
            overflows = terms.overflows("mul", extended("a", w, s, bits), extended("b", v, t, bits),
                                        bits, with_sign)
            if overflows is False:
                said += 1
                self.assertTrue(fits, f"{w} {s} x {v} {t} in {bits}, with sign: {with_sign}")
        self.assertGreater(said, 50)

    def test_others_stay_open(self):
        a, b = z3.BitVec("a", 8), z3.ZeroExt(4, z3.BitVec("b", 4))
        self.assertIsNot(terms.overflows("mul", a, b, 8, False), False)
        wide = z3.ZeroExt(3, z3.BitVec("c", 5))
        self.assertIsNot(terms.overflows("mul", wide, b, 8, False), False)


if __name__ == "__main__":
    unittest.main()
