"""Terms of the solver worked out for given numbers by plain arithmetic: neither by the solver nor by
the executor's own folding."""

import z3


def _signed(value, bits):
    return value - (1 << bits) if value >> (bits - 1) & 1 else value


def _quotient(a, b):
    """Towards 0."""
    return abs(a) // abs(b) * (1 if (a < 0) == (b < 0) else -1)


def _shift_right(a, b, bits):
    return _signed(a, bits) >> min(b, bits)


# What stands for a division by 0 is of no matter here: such numbers are not defined.
_NUMBERS = {
    z3.Z3_OP_BADD: lambda a, b, n: a + b,
    z3.Z3_OP_BSUB: lambda a, b, n: a - b,
    z3.Z3_OP_BMUL: lambda a, b, n: a * b,
    z3.Z3_OP_BAND: lambda a, b, n: a & b,
    z3.Z3_OP_BOR: lambda a, b, n: a | b,
    z3.Z3_OP_BXOR: lambda a, b, n: a ^ b,
    z3.Z3_OP_BUDIV: lambda a, b, n: a // b if b else 0,
    z3.Z3_OP_BUREM: lambda a, b, n: a % b if b else 0,
    z3.Z3_OP_BSDIV: lambda a, b, n: _quotient(_signed(a, n), _signed(b, n)) if b else 0,
    z3.Z3_OP_BSREM: lambda a, b, n: (
        _signed(a, n) - _quotient(_signed(a, n), _signed(b, n)) * _signed(b, n) if b else 0),
    z3.Z3_OP_BSHL: lambda a, b, n: a << b if b < n else 0,
    z3.Z3_OP_BLSHR: lambda a, b, n: a >> b if b < n else 0,
    z3.Z3_OP_BASHR: _shift_right,
}
_COMPARISONS = {
    z3.Z3_OP_ULEQ: (False, lambda a, b: a <= b), z3.Z3_OP_UGEQ: (False, lambda a, b: a >= b),
    z3.Z3_OP_ULT: (False, lambda a, b: a < b), z3.Z3_OP_UGT: (False, lambda a, b: a > b),
    z3.Z3_OP_SLEQ: (True, lambda a, b: a <= b), z3.Z3_OP_SGEQ: (True, lambda a, b: a >= b),
    z3.Z3_OP_SLT: (True, lambda a, b: a < b), z3.Z3_OP_SGT: (True, lambda a, b: a > b),
}


class NoValue(Exception):
    """An unknown that was given no number."""


def evaluate(term, numbers, done=None):
    """`numbers` is a function: name of an unknown -> its number."""
    if not isinstance(term, z3.ExprRef):
        return term
    done = {} if done is None else done
    key = term.get_id()
    if key not in done:
        done[key] = _evaluate(term, numbers, done)
    return done[key]


def _evaluate(term, numbers, done):
    if z3.is_bv_value(term):
        return term.as_long()
    kind = term.decl().kind()
    if kind == z3.Z3_OP_TRUE:
        return True
    if kind == z3.Z3_OP_FALSE:
        return False
    if kind == z3.Z3_OP_ITE:
        condition, yes, no = term.children()
        return evaluate(yes if evaluate(condition, numbers, done) else no, numbers, done)
    values = [evaluate(c, numbers, done) for c in term.children()]
    if kind == z3.Z3_OP_UNINTERPRETED:
        return _named(term, values, numbers)
    if kind == z3.Z3_OP_NOT:
        return not values[0]
    if kind == z3.Z3_OP_AND:
        return all(values)
    if kind == z3.Z3_OP_OR:
        return any(values)
    if kind in (z3.Z3_OP_XOR, z3.Z3_OP_DISTINCT):
        return values[0] != values[1]
    if kind == z3.Z3_OP_EQ:
        return values[0] == values[1]
    if kind == z3.Z3_OP_IMPLIES:
        return not values[0] or values[1]
    first_bits = term.arg(0).size()
    if kind in _COMPARISONS:
        with_sign, holds = _COMPARISONS[kind]
        return holds(*(_signed(v, first_bits) if with_sign else v for v in values))
    if kind in (z3.Z3_OP_BUMUL_NO_OVFL, z3.Z3_OP_BSMUL_NO_OVFL, z3.Z3_OP_BSMUL_NO_UDFL):
        return _product_fits(kind, values, first_bits)
    bits = term.size()
    return _number(term, kind, values, bits, first_bits) & (1 << bits) - 1


def _number(term, kind, values, bits, first_bits):
    if kind in _NUMBERS:
        result = values[0]
        for value in values[1:]:
            result = _NUMBERS[kind](result, value, bits) & (1 << bits) - 1
        return result
    if kind == z3.Z3_OP_BNEG:
        return -values[0]
    if kind == z3.Z3_OP_BNOT:
        return ~values[0]
    if kind == z3.Z3_OP_ZERO_EXT:
        return values[0]
    if kind == z3.Z3_OP_SIGN_EXT:
        return _signed(values[0], first_bits)
    if kind == z3.Z3_OP_EXTRACT:
        return values[0] >> term.params()[1]
    if kind == z3.Z3_OP_CONCAT:
        result = 0
        for value, child in zip(values, term.children()):
            result = result << child.size() | value
        return result
    raise SystemExit(f"{term.decl().name()} is not understood")


def _product_fits(kind, values, bits):
    if kind == z3.Z3_OP_BUMUL_NO_OVFL:
        return values[0] * values[1] < 1 << bits
    product = _signed(values[0], bits) * _signed(values[1], bits)
    if kind == z3.Z3_OP_BSMUL_NO_OVFL:
        return product < 1 << (bits - 1)
    return product >= -(1 << (bits - 1))


def _named(term, values, numbers):
    """An unknown, or one of the functions that stand for products of two of them."""
    name = term.decl().name()
    if not values:
        return numbers(name)
    bits = term.arg(0).size()
    a, b = values
    if name == f"product{bits}":
        return a * b & (1 << bits) - 1
    if name == f"product{bits}_wraps":
        return a * b >= 1 << bits
    if name == f"signed_product{bits}_wraps":
        return not -(1 << (bits - 1)) <= _signed(a, bits) * _signed(b, bits) < 1 << (bits - 1)
    raise SystemExit(f"{name} is not understood")
