"""An unknown number that is known to be one of a list, as the number of a format is one of its class.

A path keeps which numbers of the list it leaves open. What depends on such a number alone needs no
solver: each open number is asked for itself. Where they do not agree the path parts, so that the
number stays out of all that other unknowns are reckoned with.
"""

import z3

from . import terms
from .memory import Poison

MOST_PATHS = 32  # for words that differ; of more, one term says which it is

_by_number = {}  # (id of a term, id of the unknown) -> the terms, and number -> what the term comes to


def _value_for(term, unknown, number):
    """An int or a bool; None where another unknown is in it."""
    key = (term.get_id(), unknown.get_id())
    if key not in _by_number:
        alone = terms.unknowns(term) <= terms.unknowns(unknown)
        _by_number[key] = (term, unknown, {} if alone else None)
    values = _by_number[key][2]
    if values is None:
        return None
    if number not in values:
        value = z3.simplify(z3.substitute(term, (unknown, z3.BitVecVal(number, unknown.size()))))
        if not (z3.is_bv_value(value) or z3.is_true(value) or z3.is_false(value)):
            raise ValueError(f"{term} has no value for {number}")
        values[number] = value.as_long() if z3.is_bv_value(value) else z3.is_true(value)
    return values[number]


class Finite:
    """`unknown` is one of `numbers`: where `condition` holds."""

    def __init__(self, unknown, numbers):
        if len(set(numbers)) != len(numbers) or not numbers:
            raise ValueError("a list that is empty or names a number twice")
        self.unknown = unknown
        self.numbers = list(numbers)
        self.condition = z3.Or(*(unknown == n for n in numbers))
        self.open = frozenset(numbers)  # where a path begins
        self._holds_for = {}  # id of a condition -> the condition and its numbers of the list

    def numbers_for(self, open_, condition, prover):
        """Those of the open numbers for which a condition holds. None where it speaks of another
        unknown."""
        if not terms.unknowns(condition) <= terms.unknowns(self.unknown):
            return None
        return open_ & self._numbers_for(condition)

    def _numbers_for(self, condition):
        key = condition.get_id()
        if key not in self._holds_for:
            self._holds_for[key] = (condition, self._numbers_for_parts(condition))
        return self._holds_for[key][1]

    def _numbers_for_parts(self, condition):
        parts = [self._numbers_for(c) for c in condition.children() if z3.is_bool(c)]
        if z3.is_not(condition):
            return self.open - parts[0]
        if z3.is_and(condition):
            return self.open.intersection(*parts)
        if z3.is_or(condition):
            return frozenset().union(*parts)
        if z3.is_eq(condition) and condition.arg(0).eq(self.unknown) and (
                z3.is_bv_value(condition.arg(1))):
            return self.open & {condition.arg(1).as_long()}
        return frozenset(n for n in self.numbers if _value_for(condition, self.unknown, n))

    def _is_one_of(self, numbers):
        """The condition that a number is one of these."""
        condition = terms.disjunction(*(self.unknown == n for n in numbers))
        if not terms.known(condition):
            self._holds_for[condition.get_id()] = (condition, frozenset(numbers))
        return condition

    def values(self, open_, term):
        """open number -> what a term comes to. None where another unknown is in it."""
        if _value_for(term, self.unknown, self.numbers[0]) is None:
            return None
        return {n: _value_for(term, self.unknown, n) for n in sorted(open_)}

    def choice(self, words, bits):
        """The word that stands for each open number, as (condition, word) of each that differs or as
        one term: [(True, term)]. None where a word is no number."""
        if any(isinstance(w, Poison) or not terms.known(w) for w in words.values()):
            return None
        groups = {}
        for number, word in words.items():
            groups.setdefault(word, []).append(number)
        if len(groups) == 1:
            return [(True, next(iter(groups)))]
        if 1 < bits <= self.unknown.size() and all(
                number & terms.mask(bits) == word for number, word in words.items()):
            return [(True, terms.truncated(self.unknown, bits))]
        cases = [(self._is_one_of(numbers), word) for word, numbers in groups.items()]
        if len(cases) <= MOST_PATHS:
            return cases
        term = cases[0][1]
        for condition, word in cases[1:]:
            term = terms.choose(condition, word, term, bits)
        return [(True, term)]


class Unlisted(Finite):
    """`unknown` is any number for which `condition` holds, as `example` is: too many for a list. Where
    the solver finds that a condition is the same for all of them, the example stands for all."""

    def __init__(self, unknown, condition, example):
        super().__init__(unknown, [example])
        self.condition = condition
        self._answers = {}  # id of a condition -> the condition and its answer

    def numbers_for(self, open_, condition, prover):
        key = condition.get_id()
        if key not in self._answers:
            found = super().numbers_for(open_, condition, prover)
            if found is not None:
                other = terms.negation(condition) if found else condition
                if prover.possible([self.condition], other):
                    found = None
            self._answers[key] = (condition, found)
        return self._answers[key][1]

    def values(self, open_, term):
        return None
