"""Terms as they are under a path's conditions: with what a condition decides put in its place.

A condition that names a truth value decides it wherever else it stands; one that says that a term is a
known number puts the number there. What is made of a condition follows from all of them, and a claim
stays the same under them: so a claim that is shown of what is made here holds wherever the conditions
do.
"""

import z3

from executor import terms

_ROUNDS = 3  # of decisions that make others plain
_made = {}  # ids of conditions -> the conditions, what is made of them, and what they decide


def simplified(conditions, claim):
    """(conditions, claim)"""
    conditions = [c for c in conditions if not terms.known(c)]
    key = tuple(c.get_id() for c in conditions)
    if key not in _made:
        _made[key] = (conditions, *_settled(conditions))
    _, made, decisions = _made[key]
    return made, _put(terms.truth(claim), decisions)


def _settled(conditions):
    made = _parts(conditions)
    decisions = []
    for _ in range(_ROUNDS):
        by_condition = [_decided_by(c) for c in made]
        decisions = [d for own in by_condition for d in own]
        made = _parts(_put(c, _without(decisions, own)) for c, own in zip(made, by_condition))
    return made, decisions


def _without(decisions, own):
    """The decisions about other terms: a condition is not put into itself."""
    terms_ = {term.get_id() for term, _ in own}
    return [d for d in decisions if d[0].get_id() not in terms_]


def _parts(conditions):
    """Conditions that all hold: each without those that it only joins."""
    found, seen = [], set()
    left = [z3.simplify(c) for c in conditions]
    while left:
        condition = left.pop()
        if z3.is_true(condition) or condition.get_id() in seen:
            continue
        seen.add(condition.get_id())
        if z3.is_and(condition):
            left.extend(condition.children())
        elif z3.is_not(condition) and z3.is_or(condition.arg(0)):
            left.extend(z3.simplify(z3.Not(c)) for c in condition.arg(0).children())
        else:
            found.append(condition)
    return found


def _decided_by(condition):
    """(term, what it is) where the condition holds."""
    if z3.is_not(condition):
        return [(condition.arg(0), z3.BoolVal(False))]
    made = [(condition, z3.BoolVal(True))]
    if z3.is_eq(condition):
        for side, other in (condition.children(), reversed(condition.children())):
            if z3.is_bv_value(other):
                made.append((side, other))
    return made


def _put(term, decisions):
    return z3.simplify(z3.substitute(z3.simplify(term), *decisions)) if decisions else (
        z3.simplify(term))
