"""An unknown number that is known to be one of a list, as the number of a format is one of its class.

A load from a table at a place that depends on such a number alone finds one word for each number of
the list. Where they are all the same, the load finds that word, and no path parts.
"""

import z3

from . import terms
from .memory import Poison

MOST_PATHS = 8  # for words that differ; of more, one term says which it is


class Finite:
    """`unknown` is one of `numbers`: where `condition` holds."""

    def __init__(self, unknown, numbers):
        if len(set(numbers)) != len(numbers) or not numbers:
            raise ValueError("a list that is empty or names a number twice")
        self.unknown = unknown
        self.numbers = list(numbers)
        self.condition = z3.Or(*(unknown == n for n in numbers))
        self._values = {}  # id of a term -> the term and its values

    def values(self, term):
        """What a term comes to for each of the numbers. None where another unknown is in it."""
        key = term.get_id()
        if key not in self._values:
            found = []
            for number in self.numbers:
                value = z3.simplify(z3.substitute(
                    term, (self.unknown, z3.BitVecVal(number, self.unknown.size()))))
                if not z3.is_bv_value(value):
                    found = None
                    break
                found.append(value.as_long())
            self._values[key] = (term, found)
        return self._values[key][1]

    def truth(self, condition, prover):
        """Of a condition that speaks of the number alone and is the same for all of the list. None
        for others."""
        key = condition.get_id()
        if key not in self._values:
            found = set()
            for number in self.numbers:
                found.add(self._truth_for(condition, number))
                if len(found) > 1 or None in found:
                    break
            self._values[key] = (condition, found.pop() if len(found) == 1 else None)
        return self._values[key][1]

    def _truth_for(self, condition, number):
        value = z3.simplify(z3.substitute(
            condition, (self.unknown, z3.BitVecVal(number, self.unknown.size()))))
        return True if z3.is_true(value) else False if z3.is_false(value) else None

    def choice(self, words, bits):
        """The word that stands for each of the numbers, as (condition, word) of each that differs
        or as one term: [(True, term)]. None where a word is no number."""
        if any(isinstance(w, Poison) or not terms.known(w) for w in words):
            return None
        groups = {}
        for number, word in zip(self.numbers, words):
            groups.setdefault(word, []).append(number)
        if len(groups) == 1:
            return [(True, words[0])]
        if bits > 1 and bits <= self.unknown.size() and all(
                number & terms.mask(bits) == word for number, word in zip(self.numbers, words)):
            return [(True, terms.truncated(self.unknown, bits))]
        cases = [(terms.disjunction(*(self.unknown == n for n in numbers)), word)
                 for word, numbers in groups.items()]
        if len(cases) <= MOST_PATHS:
            return cases
        term = cases[0][1]
        for condition, word in cases[1:]:
            term = terms.choose(condition, word, term, bits)
        return [(True, term)]


class Unlisted(Finite):
    """`unknown` is any number for which `condition` holds, as `example` is: too many for a list."""

    def __init__(self, unknown, condition, example):
        super().__init__(unknown, [example])
        self.condition = condition

    def values(self, term):
        return None

    def truth(self, condition, prover):
        key = condition.get_id()
        if key not in self._values:
            found = self._truth_for(condition, self.numbers[0])
            if found is not None:
                other = terms.negation(condition) if found else condition
                if prover.possible([self.condition], other):
                    found = None
            self._values[key] = (condition, found)
        return self._values[key][1]
