"""Claims with their products and quotients of unknown numbers made opaque.

Two terms that multiply or divide the same numbers in the same way are equal whatever the operation
is: what holds for any function in its place holds for it. The solver then need not know how to
divide. Such an answer is taken where it is yes alone; a no is asked again of the terms as they are.

Remainders and signed quotients by a known number above 0 are written through the unsigned quotient,
so that a compiler's choice among them makes no difference.
"""

import z3

from executor import terms

_UDIV = {z3.Z3_OP_BUDIV, z3.Z3_OP_BUDIV_I}
_UREM = {z3.Z3_OP_BUREM, z3.Z3_OP_BUREM_I}
_SDIV = {z3.Z3_OP_BSDIV, z3.Z3_OP_BSDIV_I}
_SREM = {z3.Z3_OP_BSREM, z3.Z3_OP_BSREM_I}

_made = {}  # id of a term -> the term and what is made of it
_plain = {}


def opaque(term):
    """Of a number or a truth value; known ones stay as they are."""
    return _throughout(term, _made, _rebuilt)


def plain(term):
    """With the executor's opaque products as the multiplications that they are."""
    return _throughout(term, _plain, _with_plain_products)


def _throughout(term, _made, _rebuilt):
    if terms.known(term):
        return term
    stack = [term]
    while stack:
        top = stack[-1]
        if top.get_id() in _made:
            stack.pop()
            continue
        missing = [c for c in top.children() if c.get_id() not in _made]
        if missing:
            stack.extend(missing)
            continue
        stack.pop()
        _made[top.get_id()] = (top, _rebuilt(top, [_made[c.get_id()][1] for c in top.children()]))
    return _made[term.get_id()][1]


def _with_plain_products(term, parts):
    if parts and term.decl().kind() == z3.Z3_OP_UNINTERPRETED:
        bits = parts[0].size()
        if term.decl().name() == f"product{bits}":
            return parts[0] * parts[1]
        if term.decl().name() == f"product{bits}_wraps":
            return z3.Not(z3.BVMulNoOverflow(*parts, False))
        if term.decl().name() == f"signed_product{bits}_wraps":
            return z3.Not(z3.And(z3.BVMulNoOverflow(*parts, True), z3.BVMulNoUnderflow(*parts)))
    return _of_parts(term, parts)


def _of_parts(term, parts):
    """The same operation, also one on more than two, on other numbers."""
    if not parts:
        return term
    array = (z3.Ast * len(parts))(*(p.as_ast() for p in parts))
    made = z3.Z3_mk_app(term.ctx_ref(), term.decl().ast, len(parts), array)
    return z3.BoolRef(made, term.ctx) if z3.is_bool(term) else z3.BitVecRef(made, term.ctx)


def _rebuilt(term, parts):
    if not parts:
        return term
    kind = term.decl().kind()
    if kind == z3.Z3_OP_BMUL:
        return _product(parts, term.size())
    if kind in _UDIV:
        return _quotient(parts[0], parts[1])
    if kind in _UREM:
        return _remainder(parts[0], parts[1], _quotient(parts[0], parts[1]))
    if kind in _SDIV or kind in _SREM:
        signed = _signed_quotient(*parts)
        if signed is not None:
            return signed if kind in _SDIV else _remainder(parts[0], parts[1], signed)
    if kind == z3.Z3_OP_UNINTERPRETED and term.decl().name().startswith("product"):
        if term.decl().name() == f"product{parts[0].size()}":
            return _product(parts, term.size())
    if kind == z3.Z3_OP_ITE and z3.is_bv(term):
        chosen = _of_one_choice(parts)
        if chosen is not None:
            return chosen
    if len(parts) == 2 and z3.is_bv(term) and z3.is_bv(parts[0]):
        # Of a choice and a known number: the choice among the results.
        for place, other in ((0, 1), (1, 0)):
            if _is_choice(parts[place]) and z3.is_bv_value(parts[other]) and not z3.is_bv_value(
                    parts[place]):
                def of(leaf):
                    both = [leaf, leaf]
                    both[other] = parts[other]
                    return z3.simplify(term.decl()(*both))
                return _chosen(parts[place], of)
    return _of_parts(term, parts)


def _of_one_choice(parts):
    """If(c < k, c, k) and its like: of a choice c and known numbers alone, the choice among what it
    comes to for each of its numbers. None for other terms."""
    condition, *results = parts
    if len(condition.children()) != 2 or not all(z3.is_bv(p) for p in condition.children()):
        return None
    used = [p for p in [*condition.children(), *results] if not z3.is_bv_value(p)]
    if not used or not _is_choice(used[0]) or any(not u.eq(used[0]) for u in used):
        return None

    def of(leaf):
        compared = condition.decl()(*(leaf if not z3.is_bv_value(p) else p
                                      for p in condition.children()))
        picked = results[0] if z3.is_true(z3.simplify(compared)) else results[1]
        return picked if z3.is_bv_value(picked) else leaf
    return _chosen(used[0], of)


def _product(parts, bits):
    """Known factors stay what they are; two unknown ones become one unknown number."""
    known = [p for p in parts if z3.is_bv_value(p)]
    unknown = [z3.simplify(p) for p in parts if not z3.is_bv_value(p)]
    known += [p for p in unknown if z3.is_bv_value(p)]
    unknown = sorted((p for p in unknown if not z3.is_bv_value(p)), key=_order)
    for place, factor in enumerate(unknown):
        if len(unknown) > 1 and _is_choice(factor):
            others = unknown[:place] + unknown[place + 1:] + known
            return _chosen(factor, lambda leaf: _product(others + [leaf], bits))
    made = None
    for factor in unknown:
        made = factor if made is None else _opaque_product(made, factor, bits)
    for factor in known:
        made = factor if made is None else made * factor
    return made


def _opaque_product(a, b, bits):
    sort = z3.BitVecSort(bits)
    return z3.Function(f"product{bits}", sort, sort, sort)(*sorted((a, b), key=_order))


_unknowns = {}  # id of a term -> the term and the names of its unknowns


def _order(term):
    """Of factors: by their unknowns, so that equal ones that are written in different ways come in
    the same order."""
    def names(top):
        key = top.get_id()
        if key not in _unknowns:
            parts = top.children()
            own = {top.decl().name()} if not parts and not z3.is_bv_value(top) else set()
            _unknowns[key] = (top, frozenset(own).union(*map(names, parts)))
        return _unknowns[key][1]
    return sorted(names(term)), term.get_id()


_MOST_CHOICES = 64
_choices = {}  # id of a term -> the term, and how many known numbers it chooses among; 0 for others


def _is_choice(term):
    """Whether a term is one of a few known numbers, by conditions."""
    return 0 < _choices_of(term) <= _MOST_CHOICES


def _choices_of(term):
    key = term.get_id()
    if key not in _choices:
        count = 0
        if z3.is_bv_value(term):
            count = 1
        elif term.decl().kind() == z3.Z3_OP_ITE:
            parts = [_choices_of(p) for p in term.children()[1:]]
            count = sum(parts) if all(parts) else 0
        _choices[key] = (term, count)
    return _choices[key][1]


def _chosen(term, leaf):
    """The term with leaf(number) in the place of each known number."""
    if z3.is_bv_value(term):
        return leaf(term)
    condition, yes, no = term.children()
    yes, no = _chosen(yes, leaf), _chosen(no, leaf)
    return yes if yes.eq(no) else z3.If(condition, yes, no)


def _quotient(dividend, divisor):
    """Without sign."""
    divisor = z3.simplify(divisor)
    bits = dividend.size()
    if z3.is_bv_value(divisor):
        number = divisor.as_long()
        if number and number & (number - 1) == 0:
            return z3.LShR(dividend, number.bit_length() - 1)
        sort = z3.BitVecSort(bits)
        quotient = z3.Function(f"quotient{bits} by {number}", sort, sort)(z3.simplify(dividend))
    else:
        sort = z3.BitVecSort(bits)
        quotient = z3.Function(f"quotient{bits}", sort, sort, sort)(z3.simplify(dividend), divisor)
    # All that is known of it: it is 0 for a dividend below the divisor alone.
    zero, one = z3.BitVecVal(0, bits), z3.BitVecVal(1, bits)
    return z3.If(z3.ULT(dividend, divisor), zero, z3.If(quotient == zero, one, quotient))


def _signed_quotient(dividend, divisor):
    divisor = z3.simplify(divisor)
    if not z3.is_bv_value(divisor) or divisor.as_signed_long() <= 0:
        return None
    return z3.If(dividend < 0, -_quotient(-dividend, divisor), _quotient(dividend, divisor))


def _remainder(dividend, divisor, quotient):
    return dividend - _product([quotient, divisor], dividend.size())


# ---- one level after another


def merged(prover, conditions, claim):
    """The conditions and the claim, of opaque(), with each product and quotient as one unknown
    number, the same for two of them whose numbers the solver finds equal. From the inside out, so
    that no question holds one product or quotient in another."""
    names = {}  # id of an application, rewritten -> (the application, its unknown number)
    known = {}  # name of a function -> [(arguments, unknown number)]
    left = _applications([*conditions, claim])
    rewritten = {}

    def rewrite(term):
        stack = [term]
        while stack:
            top = stack[-1]
            key = top.get_id()
            if key in rewritten:
                stack.pop()
                continue
            missing = [c for c in top.children() if c.get_id() not in rewritten]
            if missing:
                stack.extend(missing)
                continue
            stack.pop()
            parts = [rewritten[c.get_id()][1] for c in top.children()]
            made = _of_parts(top, parts)
            if _is_application(top):
                made = names[key][1] if key in names else made
            rewritten[key] = (top, made)
        return rewritten[term.get_id()][1]

    def facts():
        ready = [c for c in conditions if not any(a.get_id() not in names
                                                  for a in _applications([c]))]
        return [rewrite(c) for c in ready]

    for application in left:
        arguments = [z3.simplify(rewrite(a)) for a in application.children()]
        same = None
        others = known.setdefault(application.decl().name(), [])
        assumed = None
        for theirs, number in others:
            pairs = [(a, b) for a, b in zip(arguments, theirs) if not a.eq(b)]
            if pairs and assumed is None:
                assumed = facts()
            if len(pairs) == 2 and arguments[0].eq(theirs[1]) and arguments[1].eq(theirs[0]):
                pairs = pairs if not application.decl().name().startswith("product") else []
            if not pairs or prover.proves(assumed, z3.And(*(a == b for a, b in pairs))).proved:
                same = number
                break
        if same is None:
            bits = application.size()
            text = f"{application.decl().name()}({', '.join(str(a.get_id()) for a in arguments)})"
            same = z3.BitVec(text, bits) if z3.is_bv(application) else z3.Bool(text)
            others.append((arguments, same))
            _kept.append(arguments)  # so that no other term gets their numbers
        names[application.get_id()] = (application, same)
    return [rewrite(c) for c in conditions], rewrite(claim)


_kept = []


def _is_application(term):
    return (term.decl().kind() == z3.Z3_OP_UNINTERPRETED and term.num_args() > 0 and
            z3.is_bv(term))


def _applications(terms_):
    """All products and quotients, each behind those inside it."""
    found, seen = [], set()
    stack = [(t, False) for t in reversed(terms_)]
    while stack:
        term, done = stack.pop()
        if done:
            found.append(term)
            continue
        if term.get_id() in seen:
            continue
        seen.add(term.get_id())
        if _is_application(term):
            stack.append((term, True))
        stack.extend((c, False) for c in term.children())
    return found
