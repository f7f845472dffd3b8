#!/usr/bin/python3
"""Proves that the short rule of pitch_padding.py is the look-up in the tables, for every width.

The tables stand here as one choice an entry, in each half, and the solver looks for a width at
which the two differ.
"""

import sys

import z3

import pitch_padding
from words import term


def entry_of_table(pitch_el, element_class, selector):
    """The entry for a width of at most 2048 as a choice among all 33."""
    first = pitch_padding.HALF if selector == 2 else 0
    row = pitch_padding.TABLE[element_class][first : first + pitch_padding.HALF]
    index = z3.LShR(pitch_el + 63, 6)
    answer = z3.BitVecVal(row[-1], 32)
    for number, padded_el in enumerate(row[:-1]):
        answer = z3.If(index == number, z3.BitVecVal(padded_el, 32), answer)
    return answer


def stated_rule(width_el, element_class, selector):
    beyond_el = width_el & 2047
    return z3.If(
        z3.ULE(width_el, 2048),
        entry_of_table(width_el, element_class, selector),
        z3.If(
            beyond_el != 0,
            width_el - beyond_el + entry_of_table(beyond_el, element_class, selector),
            width_el,
        ),
    )


def main():
    width_el = z3.BitVec("width_el", 32)
    shown = 0
    for element_class in range(pitch_padding.ELEMENT_CLASSES):
        for selector in (1, 2):
            short = term(pitch_padding.looked_up(width_el, element_class))
            solver = z3.Solver()
            solver.add(short != stated_rule(width_el, element_class, selector))
            verdict = solver.check()
            if verdict != z3.unsat:
                print(f"class {element_class}, selector {selector}: {verdict}", file=sys.stderr)
                if verdict == z3.sat:
                    print(f"  at {solver.model()}", file=sys.stderr)
                return 1
            shown += 1
    print(f"{shown} tables: the short rule is the look-up, for every width")
    return 0 if shown == 10 else 1


if __name__ == "__main__":
    sys.exit(main())
