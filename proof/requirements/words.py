"""Arithmetic on 32-bit words that are known numbers or solver terms.

A word is a Python int (taken modulo 2^32) or a 32-bit z3 bit vector, a condition a Python bool or a
z3 Bool. What is known is worked out at once, so that terms hold only what is unknown. Every
operation wraps; where signed and unsigned differ, the name says which it is.
"""

import z3

BITS = 32
_MASK = (1 << BITS) - 1


def known(word):
    return isinstance(word, int)


def word(value):
    """A word of a Python int of any size or sign, or of a term."""
    if isinstance(value, bool):
        raise TypeError("a condition is no word")
    if isinstance(value, int):
        return value & _MASK
    if z3.is_bv(value) and value.size() == BITS:
        return value.as_long() if z3.is_bv_value(value) else value
    raise TypeError(f"no 32-bit word: {value!r}")


def signed(number):
    """The signed value of a known word."""
    number &= _MASK
    return number - (1 << BITS) if number >> (BITS - 1) else number


def term(value):
    """The z3 term of a word."""
    return z3.BitVecVal(value, BITS) if known(value) else value


def condition(value):
    """The z3 term of a condition."""
    return z3.BoolVal(value) if isinstance(value, bool) else value


def add(left, right):
    if known(left) and known(right):
        return word(left + right)
    if known(left) and left == 0:
        return right
    if known(right) and right == 0:
        return left
    return term(left) + term(right)


def subtract(left, right):
    return add(left, word(-right)) if known(right) else term(left) - right


def multiply(left, right):
    if known(left) and known(right):
        return word(left * right)
    for one, other in ((left, right), (right, left)):
        if known(one) and one in (0, 1):
            return other if one else 0
    return term(left) * term(right)


def divide_unsigned(left, right):
    """By 0 the quotient means nothing: whoever divides notes the fault."""
    if known(right) and right == 1:
        return left
    if known(left) and known(right) and right != 0:
        return left // right
    return z3.UDiv(term(left), term(right))


def divide_signed(left, right):
    """Toward zero. By 0 as divide_unsigned()."""
    if known(right) and right == 1:
        return left
    if known(left) and known(right) and right != 0:
        quotient = abs(signed(left)) // abs(signed(right))
        return word(quotient if (signed(left) < 0) == (signed(right) < 0) else -quotient)
    return term(left) / term(right)


def bits_of_both(left, right):
    if known(left) and known(right):
        return left & right
    return term(left) & term(right)


def negate(value):
    return word(-value) if known(value) else -value


def equal(left, right):
    if known(left) and known(right):
        return left == right
    return term(left) == term(right)


def less_signed(left, right):
    if known(left) and known(right):
        return signed(left) < signed(right)
    return term(left) < term(right)


def at_most_signed(left, right):
    return negation(less_signed(right, left))


def less_unsigned(left, right):
    if known(left) and known(right):
        return left < right
    return z3.ULT(term(left), term(right))


def negation(value):
    return not value if isinstance(value, bool) else z3.Not(value)


def all_of(*conditions):
    unknown = []
    for value in conditions:
        if value is False:
            return False
        if value is not True:
            unknown.append(value)
    if not unknown:
        return True
    return unknown[0] if len(unknown) == 1 else z3.And(*unknown)


def any_of(*conditions):
    unknown = []
    for value in conditions:
        if value is True:
            return True
        if value is not False:
            unknown.append(value)
    if not unknown:
        return False
    return unknown[0] if len(unknown) == 1 else z3.Or(*unknown)


def choose(test, then, otherwise):
    """The word `then` where the test holds, else `otherwise`."""
    if isinstance(test, bool):
        return then if test else otherwise
    if known(then) and known(otherwise) and then == otherwise:
        return then
    if not known(then) and not known(otherwise) and then.eq(otherwise):
        return then
    return z3.If(test, term(then), term(otherwise))


def choose_condition(test, then, otherwise):
    """The same for conditions."""
    return any_of(all_of(test, then), all_of(negation(test), otherwise))


def first_match(cases, step=lambda value: value):
    """step(word) of the first case (condition, word) that holds; the last one's is True."""
    *earlier, (last_test, last_word) = cases
    if last_test is not True:
        raise ValueError("the last case must hold for everything")
    answer = step(last_word)
    for test, value in reversed(earlier):
        answer = choose(test, step(value), answer)
    return answer


def round_up_by_mask(value, multiple):
    """Up to a multiple of a power of two; with any other multiple, what the two operations give."""
    return bits_of_both(add(value, subtract(multiple, 1)), negate(multiple))


def round_up_exactly(value, multiple):
    """Up to a multiple of any known size, for a value other than 0, unsigned."""
    steps = divide_unsigned(subtract(value, 1), multiple)
    return add(multiple, multiply(steps, multiple))
