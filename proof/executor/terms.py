"""Numbers of the library's code: plain ones where they are known, terms of the solver where not.

A number of b bits is a Python int from 0 to 2^b - 1 or a z3 bit vector; a truth value is a Python
bool or a z3 truth value. What can be computed at once is, so that the solver sees the unknown alone.

The product of two unknown numbers is itself one unknown number, the same for the same factors: all
that is taken to be true of it are the lemmas that a theorem names. So is what says whether it wraps.
"""

import z3

# The binding's checks of its callers take a third of a proof; the solver checks its own arguments.
z3.z3.Z3_DEBUG = False

Term = z3.ExprRef


def known(value):
    return not isinstance(value, Term)


def mask(bits):
    return (1 << bits) - 1


def signed(value, bits):
    return value - (1 << bits) if value >> (bits - 1) else value


def vector(value, bits):
    return value if isinstance(value, Term) else z3.BitVecVal(value, bits)


def truth(value):
    return value if isinstance(value, Term) else z3.BoolVal(value)


def negation(value):
    if known(value):
        return not value
    return value.arg(0) if z3.is_not(value) else z3.Not(value)


def conjunction(*values):
    kept = {}
    for value in values:
        if not known(value):
            kept.setdefault(value.get_id(), value)
        elif not value:
            return False
    kept = list(kept.values())
    if not kept:
        return True
    return kept[0] if len(kept) == 1 else z3.And(*kept)


def disjunction(*values):
    kept = {}
    for value in values:
        if not known(value):
            kept.setdefault(value.get_id(), value)
        elif value:
            return True
    kept = list(kept.values())
    if not kept:
        return False
    if len(kept) == 2 and negation(kept[0]).eq(kept[1]):
        return True
    return kept[0] if len(kept) == 1 else z3.Or(*kept)


def implies(condition, value):
    return disjunction(negation(condition), value)


def same(a, b):
    """Whether two numbers or truth values are the same term."""
    if known(a) or known(b):
        return known(a) and known(b) and type(a) is type(b) and a == b
    return a.eq(b)


def choose(condition, a, b, bits):
    """a where the condition holds, else b; bits is 0 for truth values."""
    if known(condition):
        return a if condition else b
    if same(a, b):
        return a
    if bits == 0:
        if known(a) and known(b):
            return condition if a else negation(condition)
        return z3.If(condition, truth(a), truth(b))
    return z3.If(condition, vector(a, bits), vector(b, bits))


def _to_bits(value, bits):
    """A truth value as the number of one bit that it is, where numbers are wanted."""
    if bits == 1 and isinstance(value, bool):
        return int(value)
    if bits == 1 and z3.is_bool(value):
        return z3.If(value, z3.BitVecVal(1, 1), z3.BitVecVal(0, 1))
    return value


_products = {}


def _function(name, bits, result):
    if name not in _products:
        sort = z3.BitVecSort(bits)
        _products[name] = z3.Function(name, sort, sort, result)
    return _products[name]


def _in_order(a, b):
    """The factors by the names of what is unknown in them, so that equal factors that are written in
    different ways come in the same order."""
    return (a, b) if _order(a) <= _order(b) else (b, a)


def _order(term):
    return sorted(unknowns(term)), term.get_id()


_unknowns = {}


def unknowns(term):
    """The names of the unknowns of a term."""
    found = getattr(term, "unknowns_", None)  # kept with the term: many questions ask for it
    if found is None:
        found = term.unknowns_ = _unknowns_of(term)
    return found


def number_of(term):
    """Equal terms have one number, as long as one of them is there."""
    found = getattr(term, "number_", None)
    if found is None:
        found = term.number_ = term.get_id()
    return found


def _unknowns_of(term):
    stack = [term]
    while stack:
        top = stack[-1]
        key = top.get_id()
        if key in _unknowns:
            stack.pop()
            continue
        children = top.children()
        missing = [c for c in children if c.get_id() not in _unknowns]
        if missing:
            stack.extend(missing)
            continue
        stack.pop()
        if not children:
            plain = z3.is_bv_value(top) or z3.is_true(top) or z3.is_false(top)
            names = frozenset() if plain else frozenset([top.decl().name()])
        else:
            names = frozenset().union(*(_unknowns[c.get_id()][1] for c in children))
        _unknowns[key] = (top, names)  # the term is kept, so that no other one gets its number
    return _unknowns[term.get_id()][1]


def product(a, b, bits):
    """Of two unknown numbers, modulo 2^bits."""
    return _function(f"product{bits}", bits, z3.BitVecSort(bits))(*_in_order(a, b))


def product_wraps(a, b, bits):
    """Whether the product of two unknown numbers without sign is 2^bits or more."""
    return _function(f"product{bits}_wraps", bits, z3.BoolSort())(*_in_order(a, b))


def signed_product_wraps(a, b, bits):
    """Whether the product of two unknown numbers with sign leaves their range."""
    return _function(f"signed_product{bits}_wraps", bits, z3.BoolSort())(*_in_order(a, b))


def _is_one_of_two(term):
    """Of two known numbers: its products are those of these."""
    return z3.is_app_of(term, z3.Z3_OP_ITE) and all(z3.is_bv_value(term.arg(i)) for i in (1, 2))


_COMPUTE = {
    "add": lambda a, b, n: (a + b) & mask(n),
    "sub": lambda a, b, n: (a - b) & mask(n),
    "mul": lambda a, b, n: (a * b) & mask(n),
    "and": lambda a, b, n: a & b,
    "or": lambda a, b, n: a | b,
    "xor": lambda a, b, n: a ^ b,
    "shl": lambda a, b, n: (a << b) & mask(n) if b < n else None,
    "lshr": lambda a, b, n: a >> b if b < n else None,
    "ashr": lambda a, b, n: (signed(a, n) >> b) & mask(n) if b < n else None,
    "udiv": lambda a, b, n: a // b if b else None,
    "urem": lambda a, b, n: a % b if b else None,
    "sdiv": lambda a, b, n: _divide(a, b, n)[0],
    "srem": lambda a, b, n: _divide(a, b, n)[1],
}
_BUILD = {
    "add": lambda a, b: a + b,
    "sub": lambda a, b: a - b,
    "mul": lambda a, b: a * b,
    "and": lambda a, b: a & b,
    "or": lambda a, b: a | b,
    "xor": lambda a, b: a ^ b,
    "shl": lambda a, b: a << b,
    "lshr": z3.LShR,
    "ashr": lambda a, b: a >> b,
    "udiv": z3.UDiv,
    "urem": z3.URem,
    "sdiv": lambda a, b: a / b,
    "srem": z3.SRem,
}


def _divide(a, b, n):
    """Towards 0. The quotient and the remainder; none for a divisor of 0 and for one that wraps."""
    x, y = signed(a, n), signed(b, n)
    if y == 0 or (x == -(1 << (n - 1)) and y == -1):
        return None, None
    quotient = abs(x) // abs(y) * (1 if (x < 0) == (y < 0) else -1)
    return quotient & mask(n), (x - quotient * y) & mask(n)


def compute(operation, a, b, bits):
    """What an instruction on two numbers yields. None where it is not defined for known ones."""
    if bits == 1:
        return _of_one_bit(operation, a, b)
    if known(a) and known(b):
        return _COMPUTE[operation](a, b, bits)
    if operation == "add" and known(b) and b == 0 or operation == "add" and known(a) and a == 0:
        return a if known(b) else b
    if operation in ("sub", "shl", "lshr", "ashr", "or", "xor") and known(b) and b == 0:
        return a
    if operation == "mul":
        for one, other in ((a, b), (b, a)):
            if known(one) and one in (0, 1):
                return other if one else 0
        if not known(a) and not known(b):
            for one, other in ((a, b), (b, a)):
                if _is_one_of_two(one):
                    return z3.If(one.arg(0), *(vector(compute("mul", other, one.arg(i).as_long(),
                                                              bits), bits) for i in (1, 2)))
            return product(a, b, bits)
    if operation == "and":
        for one, other in ((a, b), (b, a)):
            if known(one) and one in (0, mask(bits)):
                return other if one else 0
    if operation in ("udiv", "sdiv") and known(b) and b == 1:
        return a
    return _BUILD[operation](vector(a, bits), vector(b, bits))


def _of_one_bit(operation, a, b):
    if operation == "and":
        return conjunction(a, b)
    if operation == "or":
        return disjunction(a, b)
    if operation == "xor":
        if known(a) or known(b):
            fixed, other = (a, b) if known(a) else (b, a)
            return negation(other) if fixed else other
        return z3.Xor(a, b)
    raise SystemExit(f"{operation} of truth values is not understood")


_COMPARE = {
    "eq": (lambda a, b: a == b, False), "ne": (lambda a, b: a != b, False),
    "ult": (lambda a, b: a < b, False), "ule": (lambda a, b: a <= b, False),
    "ugt": (lambda a, b: a > b, False), "uge": (lambda a, b: a >= b, False),
    "slt": (lambda a, b: a < b, True), "sle": (lambda a, b: a <= b, True),
    "sgt": (lambda a, b: a > b, True), "sge": (lambda a, b: a >= b, True),
}
_UNSIGNED = {"ult": z3.ULT, "ule": z3.ULE, "ugt": z3.UGT, "uge": z3.UGE}


def compare(predicate, a, b, bits):
    if bits == 1:
        a, b = _to_bits(a, 1), _to_bits(b, 1)
    function, with_sign = _COMPARE[predicate]
    if known(a) and known(b):
        return function(signed(a, bits), signed(b, bits)) if with_sign else function(a, b)
    if same(a, b):
        return predicate in ("eq", "ule", "uge", "sle", "sge")
    a, b = vector(a, bits), vector(b, bits)
    if predicate in _UNSIGNED:
        return _UNSIGNED[predicate](a, b)
    return function(a, b)


def extended(value, bits, to, with_sign):
    """A number of `bits` as one of `to` bits."""
    if bits == to:
        return value
    if bits == 1:
        one = mask(to) if with_sign else 1
        return choose(value, one, 0, to)
    if known(value):
        return signed(value, bits) & mask(to) if with_sign else value
    return z3.SignExt(to - bits, value) if with_sign else z3.ZeroExt(to - bits, value)


def truncated(value, to):
    if to == 1:
        if known(value):
            return bool(value & 1)
        return z3.Extract(0, 0, value) == z3.BitVecVal(1, 1)
    if known(value):
        return value & mask(to)
    return z3.Extract(to - 1, 0, value)


def _fits_by_width(a, b, bits, with_sign):
    """Whether the factors come from numbers of so few bits that their product fits."""
    widths, signs = [], []
    for one in (a, b):
        if not z3.is_app_of(one, z3.Z3_OP_ZERO_EXT) and not z3.is_app_of(one, z3.Z3_OP_SIGN_EXT):
            return False
        widths.append(one.arg(0).size())
        signs.append(z3.is_app_of(one, z3.Z3_OP_SIGN_EXT))
    if with_sign:  # below 2^w without sign, up to 2^(w - 1) with it
        return sum(widths) - sum(signs) <= bits - 1 - all(signs)
    return not any(signs) and sum(widths) <= bits


def overflows(operation, a, b, bits, with_sign):
    """Whether add, sub or mul leave the range of `bits`."""
    if known(a) and known(b):
        x, y = (signed(a, bits), signed(b, bits)) if with_sign else (a, b)
        exact = {"add": x + y, "sub": x - y, "mul": x * y}[operation]
        low, high = (-(1 << (bits - 1)), mask(bits - 1)) if with_sign else (0, mask(bits))
        return not low <= exact <= high
    if operation == "mul" and not with_sign:
        for one, other in ((a, b), (b, a)):
            if known(one) and one in (0, 1):
                return False
    if operation == "mul" and not known(a) and not known(b):
        if _fits_by_width(a, b, bits, with_sign):
            return False
        for one, other in ((a, b), (b, a)):
            if _is_one_of_two(one):
                return z3.If(one.arg(0), *(truth(overflows("mul", other, one.arg(i).as_long(), bits,
                                                           with_sign)) for i in (1, 2)))
        return (signed_product_wraps if with_sign else product_wraps)(a, b, bits)
    x, y = vector(a, bits), vector(b, bits)
    if operation == "add":
        no = z3.And(z3.BVAddNoOverflow(x, y, with_sign),
                    z3.BVAddNoUnderflow(x, y) if with_sign else z3.BoolVal(True))
    elif operation == "sub":
        no = (z3.And(z3.BVSubNoOverflow(x, y), z3.BVSubNoUnderflow(x, y, True)) if with_sign
              else z3.UGE(x, y))
    else:
        no = z3.And(z3.BVMulNoOverflow(x, y, with_sign),
                    z3.BVMulNoUnderflow(x, y) if with_sign else z3.BoolVal(True))
    return z3.Not(no)
