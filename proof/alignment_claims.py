"""What is shown of one path of an alignment entry: that it is what the rules say."""

import z3

import alignment_calls as calls
from executor import terms
from executor.memory import Poison
from opaque import merged, opaque, plain
from under_conditions import simplified

ANY = object()  # a message's number that is not looked at

# Before a question is asked in the next way: products and quotients opaque, as they stand and under
# the path's conditions; one level of them after another; the terms as they are.
_OPAQUE_SECONDS = 2
_MERGED_SECONDS = 10

_MOST_SPLITS = 3  # of two products' equality, one in another


def show(proof, case, what, conditions, claim, place="", answer=None, products=None):
    """The claim holds wherever the conditions do: first with products and quotients opaque.
    `products`: two of which the claim says that they are equal."""
    claim = terms.truth(claim)
    if products is not None and _are_equal_products(proof.prover, conditions, *products):
        proof.count()
        return True
    if _shown_opaque(proof.prover, conditions, claim):
        proof.count()
        return True
    conditions, claim = [plain(c) for c in conditions], plain(claim)

    def call(model):
        made, chip_id = calls.real_model(proof, case, conditions, claim)
        return calls.as_call(case, made if made is not None else model, chip_id, answer)

    return proof.show(f"{case}: {what}", conditions, claim, place,
                      call if answer is not None else None)


def _shown_opaque(prover, conditions, claim):
    if terms.known(claim) and claim:
        return True
    claim = terms.truth(claim)
    patience = prover.timeout_seconds
    prover.timeout_seconds, gave_up = _OPAQUE_SECONDS, len(prover.gave_up)
    assumed, wanted = [opaque(c) for c in conditions], opaque(claim)
    proved = _follows_at_once(prover, assumed, wanted) or prover.proves(assumed, wanted).proved
    if not proved:
        assumed, wanted = simplified(conditions, claim)
        assumed, wanted = [opaque(c) for c in assumed], opaque(wanted)
        proved = prover.proves(assumed, wanted).proved
    if not proved:
        prover.timeout_seconds = _MERGED_SECONDS
        proved = prover.proves(*merged(prover, assumed, wanted)).proved
    prover.timeout_seconds = patience
    del prover.gave_up[gave_up:]
    return proved


def _factors(term):
    """A product modulo 2^32 as its known factor and the unknown ones."""
    number, others, left = 1, [], [term]
    while left:
        top = left.pop()
        if terms.known(top) or z3.is_bv_value(top):
            number *= int(top) if terms.known(top) else top.as_long()
            continue
        kind, parts = top.decl().kind(), top.children()
        if kind == z3.Z3_OP_BSHL and z3.is_bv_value(parts[1]) and parts[1].as_long() < 32:
            number <<= parts[1].as_long()
            left.append(parts[0])
        elif kind == z3.Z3_OP_BMUL or parts and top.decl().name() == "product32":
            left.extend(parts)
        else:
            others.append(top)
    return number & terms.mask(32), others


def _is_choice(term):
    return not terms.known(term) and z3.is_app_of(term, z3.Z3_OP_ITE)


def _of_the_branch(prover, conditions, term):
    """Of a choice at the top of a term, what the conditions leave."""
    while _is_choice(term):
        test, yes, no = term.children()
        if _decided_at_once(prover, conditions, test):
            term = yes
        elif _decided_at_once(prover, conditions, z3.Not(test)):
            term = no
        else:
            break
    return term


def _decided_at_once(prover, conditions, claim):
    """That the claim follows, by the first and shortest way of asking."""
    patience, gave_up = prover.timeout_seconds, len(prover.gave_up)
    prover.timeout_seconds = _OPAQUE_SECONDS
    proved = _follows_at_once(prover, [opaque(c) for c in conditions], opaque(claim))
    prover.timeout_seconds = patience
    del prover.gave_up[gave_up:]
    return proved


def _follows_at_once(prover, assumed, wanted):
    """To bits at once, and of models that are known: what is left open here is asked elsewhere."""
    return prover._check(assumed, terms.negation(wanted), quick=True)[0] == "unsat"


def _are_equal_products(prover, conditions, one, other, splits=_MOST_SPLITS):
    """That two products are equal because their factors are, in each case that the choices at their
    top leave. False also where they are no products of equally many numbers."""
    one, other = (_of_the_branch(prover, conditions, t) for t in (one, other))
    test = next((t.arg(0) for t in (one, other) if _is_choice(t)), None)
    if test is not None:
        return splits > 0 and all(
            _are_equal_products(prover, [*conditions, assumed], one, other, splits - 1)
            for assumed in (test, z3.Not(test)))
    (number, ours), (their_number, theirs) = _factors(one), _factors(other)
    for factor in list(ours):
        match = next((t for t in theirs if t.eq(factor)), None)
        if match is not None:
            ours.remove(factor)
            theirs.remove(match)
    if number != their_number or len(ours) != 1 or len(theirs) != 1:
        return False
    return _shown_opaque(prover, conditions, ours[0] == theirs[0])


def _message_claim(messages, expected):
    """That a path's messages are those of one of (condition, messages) whose condition holds."""
    ways = []
    for condition, wanted in expected:
        if len(wanted) != len(messages):
            continue
        if any(m[:2] != w[:2] or len(m[2]) != len(w[2]) for m, w in zip(messages, wanted)):
            continue
        same = [terms.truth(terms.compare("eq", a, b, 32))
                for m, w in zip(messages, wanted) for a, b in zip(m[2], w[2]) if b is not ANY]
        ways.append(z3.And(condition, *same))
    return z3.Or(*ways) if ways else z3.BoolVal(False)


def expected_messages(case, answer, chip):
    """(condition, messages) of the cases that the rules name."""
    if case.entry in (calls.WITHOUT_FORMAT, calls.PADDING):
        entries, height = [calls.WITHOUT_FORMAT], calls.HEIGHT
        height = 1 if case.entry == calls.PADDING else height
    else:
        entries, height = [case.entry], calls.HEIGHT
        if case.entry == calls.IN_BYTES:
            entries = [calls.MINIMAL, calls.FULL]
    negative = [(e, calls.NEGATIVE, (calls.WIDTH, height)) for e in entries]
    unknown = [(e, calls.UNKNOWN_CHIP, (chip.words["chip_id"],)) for e in entries]
    none = z3.Not(z3.Or(answer.negative_size, answer.unknown_chip))
    return [(answer.negative_size, negative), (answer.unknown_chip, unknown), (none, [])]


def expected_messages_in_blocks(case, answer):
    """The same of the entry for sizes in blocks. The numbers of null pointers are left open."""
    def one(text, arguments):
        return [(calls.COMPRESSED, text, arguments)]

    none = z3.Not(z3.Or(answer.negative_size, answer.not_compressed, answer.null_pointer))
    return [(answer.negative_size, one(calls.NEGATIVE_TEXELS, (calls.WIDTH, calls.HEIGHT))),
            (answer.not_compressed, one(calls.NOT_COMPRESSED, (case.formats.number,))),
            (answer.null_pointer, one(calls.NULL_POINTER, (ANY, ANY, ANY))), (none, [])]


def show_path(proof, case, run, answer, outputs, messages):
    """`outputs`: name -> (condition under which it is stored, what is stored)."""
    where = run.place
    if run.kind == "faults":
        show(proof, case, "divides by 0 where the rules do", run.conditions, answer.fault, where,
             answer)
        return
    show(proof, case, "does not divide by 0 where the rules do not", run.conditions,
         z3.Not(answer.fault), where, answer)
    show(proof, case, "prints the messages of the rules", run.conditions,
         _message_claim(run.messages, messages), where)
    for name, (written, value) in outputs.items():
        if name in run.outputs:
            if isinstance(run.outputs[name], Poison):
                show(proof, case, f"{name} means something", run.conditions, False, where, answer)
                continue
            same = terms.compare("eq", run.outputs[name], value, 32)
            products = ((run.outputs[name], value)
                        if name in ("aligned_row_bytes", "minimal_row_bytes") else None)
            show(proof, case, f"{name} is stored and as required", run.conditions,
                 z3.And(written, terms.truth(same)), where, answer, products)
        else:
            show(proof, case, f"{name} is left as it is where the rules leave it", run.conditions,
                 z3.Not(written), where, answer)
    proof.require(f"{case}: nothing else is written", not run.strays, "; ".join(run.strays))


def show_compiler(proof, case, claims):
    """The compiler's promises, and no access outside of what the header names."""
    for claim in claims:
        show(proof, case, f"{claim.kind}: {claim.text}", claim.conditions, claim.holds, claim.place)


def show_value(proof, case, run, answer):
    if isinstance(run.value, Poison):
        show(proof, case, "the result means something", run.conditions, False, run.place)
        return
    same = terms.truth(terms.compare("eq", run.value, answer.value, 32))
    show(proof, case, "the result is as required", run.conditions, same, run.place)
