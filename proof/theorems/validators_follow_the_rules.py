"""On every path the verdict and the message are those of the first rule that a level breaks: the quick
walk accepts what the rules accept, and nothing else.

Assumed   nothing of the record: its words are unknown, and so are the bounds that the header's checks
          hand on and the state of the chain behind the levels before.
Shown     for every level 0 to 14, on every path through its round: a level is passed only when it
          breaks no rule; a refusal is that of the first rule that it breaks, in the rules' order,
          with that rule's message and numbers; and it is the only message. The rules are those of
          requirements/stored_levels.py.
Excepted  nothing.
Lemma     a product with the factor 0 is 0 and does not wrap.
Quick     the rules; the walk of plain levels is left out.
"""

import z3

import record_calls
import validator_runs
from executor import terms
from records import KINDS, LAYOUT, SURFACE
from requirements import stored_levels
from setting import PLANES

SHARES_RUNS_OF = "validators"


def prove(proof):
    for kind in KINDS:
        for name, level in validator_runs.rounds(proof, kind):
            part = validator_runs.level_part(proof, kind, name, level)
            rules, lemmas = rules_of(kind, name, level)
            quick = [p for p in part.paths if p.ending != "refuses" and not p.by_rules]
            proof.require("the quick walk passes levels", quick or name == "rules", kind.validator)
            for path in proof.each(part.paths):
                follows(proof, kind, path, rules, lemmas)
    every_message(proof)


_met = set()


def every_message(proof):
    """No rule is vacuous: each one's message was met."""
    if proof.quick:
        return
    for kind in KINDS:
        rules, _ = rules_of(kind, "rules", 1)
        for rule in rules:
            proof.require(f"there is a path to: {rule.message}", (kind.name, rule.message) in _met)


def follows(proof, kind, path, rules, lemmas):
    where = f"{kind.validator}, {path.part}, level {path.level}"
    here = list(path.state.conditions) + lemmas
    messages = path.state.messages
    show = showing(proof, kind, path, rules)
    if path.ending != "refuses":
        proof.require("a level that passes leaves no message", not messages, where)
        for rule in rules:
            show(f"a level that passes does not break: {rule.message}", here, rule.kept, where)
        return
    if not proof.require("a refusal has one message", len(messages) == 1, where):
        return
    message = messages[0]
    proof.require("the validator's name", message.function == kind.validator, where)
    _met.add((kind.name, message.format))
    told = [r for r in rules if r.message == message.format]
    if kind.has_actual_size or told:
        told = [r for r in told if same_place(r, message)]
    if not proof.require(f"a rule has the message: {message.format}", len(told) == 1, where):
        return
    rule = told[0]
    show(f"the rule is broken: {rule.message}", here, rule.fails, where)
    for earlier in rules[:next(i for i, r in enumerate(rules) if r is rule)]:
        show(f"no earlier one is: {earlier.message}", here, earlier.kept, where)
    for number, printed in zip(rule.numbers, message.arguments, strict=True):
        if not isinstance(number, int):
            number = z3.simplify(number)
        proof.show(f"the message's numbers: {rule.message}", here, equal(number, printed), where)


def showing(proof, kind, path, rules):
    """proof.show, with a record as the counterexample."""
    def realistic(asked):
        return record_calls.realistic(kind, path, asked)

    def wrong(_, record, result):
        right = 0xFFFFFFFF if record_calls.breaks(kind, record, path.level, rules) else 0
        return "" if result == right else f"{right:#x} is right by the rules"

    def show(what, conditions, claim, where):
        return proof.show(what, conditions, claim, where, record_calls.call(kind, path, wrong),
                          realistic)
    return show


def same_place(rule, message):
    """Level and plane, which are known numbers."""
    return all(n == p for n, p in zip(rule.numbers, message.arguments) if isinstance(n, int))


def equal(number, printed):
    if isinstance(number, int) or terms.known(printed):
        bits = 64 if terms.known(printed) and not isinstance(number, int) else 32
        if isinstance(number, int):
            return terms.compare("eq", number, printed, bits)
        return number == printed
    if number.size() < printed.size():
        number = z3.ZeroExt(printed.size() - number.size(), number)
    return number == printed


def rules_of(kind, name, level):
    """All rules of a level in their order, and what is true of the products in them."""
    def level_word(word):
        return validator_runs.stored_word("level", word, kind.level[word][1])

    header = validator_runs.Header()
    before = None
    if level:
        before = (z3.BitVec("chain.tiled", 32), z3.BitVecVal(0, 32)) if name == "walk" else (
            validator_runs.tiled_before(), validator_runs.lrz_before())
    rules = list(stored_levels.level_rules(level_word, level, before, header.surface_size,
                                           header.total_size, header.linear_fallback))
    lemmas = [stored_levels.no_others(level_word("slices"), level_word("lrz_slice_pitch"))]
    for plane in range(PLANES):
        def word(name, plane=plane):
            return validator_runs.stored_word(f"plane {plane}", name, kind.plane[name][1])

        rules += stored_levels.plane_rules(word, level_word, level, plane, header.surface_size,
                                           kind is not LAYOUT)
        for pitch in ("image_slice_pitch", "flag_slice_pitch"):
            lemmas.append(stored_levels.no_others(level_word("slices"), word(pitch)))
        size = ("actual_width", "actual_height") if kind is SURFACE else ("image_width", "image_height")
        for a, b in (("image_element_size", size[0]), ("image_pitch", size[1]),
                     ("image_width", "image_height")):
            lemmas.append(z3.Implies(z3.Or(word(a) == 0, word(b) == 0),
                                     terms.product(word(a), word(b), 32) == 0))
    return rules, lemmas
