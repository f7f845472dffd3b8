"""The executor claims what is promised of the code and demanded by memory: a claim fails for the very
numbers for which it should."""

import unittest

import z3

import generated_functions
import small_module
from evaluation import NoValue, evaluate
from executor.memory import Address, Region
from generated_functions import name_of
from small_module import keeps_its_promises, numbers_of, run_known, run_unknown, samples

SAMPLES = 120


def _signed(value, bits):
    return value - (1 << bits) if value >> (bits - 1) else value


def _fits(value, bits, with_sign):
    low, high = (-(1 << (bits - 1)), 1 << (bits - 1)) if with_sign else (0, 1 << bits)
    return low <= value < high


def _quotient(a, b):
    return abs(a) // abs(b) * (1 if (a < 0) == (b < 0) else -1)


def _defined(operation, promise, a, b, bits):
    """Whether an instruction keeps all that is said of it: from the language reference of LLVM."""
    x, y = _signed(a, bits), _signed(b, bits)
    if operation in ("udiv", "urem") and b == 0:
        return False
    if operation in ("sdiv", "srem") and (b == 0 or x == -(1 << (bits - 1)) and y == -1):
        return False
    if operation in ("shl", "lshr", "ashr") and b >= bits:
        return False
    exact = {"add": (a + b, x + y), "sub": (a - b, x - y), "mul": (a * b, x * y),
             "shl": (a << b, x << b) if b < bits else None}
    for word in promise.split():
        if word in ("nuw", "nsw"):
            with_sign = word == "nsw"
            if not _fits(exact[operation][with_sign], bits, with_sign):
                return False
        elif word == "exact" and operation == "udiv" and a % b:
            return False
        elif word == "exact" and operation == "sdiv" and _quotient(x, y) * y != x:
            return False
        elif word == "exact" and operation in ("lshr", "ashr") and a % (1 << b):
            return False
        elif word == "disjoint" and a & b:
            return False
    return True


def _truncates(promise, value, large, small):
    rest = value & (1 << small) - 1
    if "nuw" in promise and rest != value:
        return False
    return not ("nsw" in promise and _signed(rest, small) != _signed(value, large))


class Promises(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.module = small_module.assemble(generated_functions.text())
        cls.machine = small_module.make_machine(cls.module)

    def holds_exactly(self, name, expected, needs_both=True):
        """`expected` is a function of the arguments."""
        function = self.module.functions[name]
        unknown = run_unknown(self.machine, function)
        seen = set()
        for values in samples(function, SAMPLES, "promises"):
            number = numbers_of(function, values)
            right = expected(*values)
            self.assertEqual(keeps_its_promises(unknown, number), right, values)
            known = run_known(self.machine, function, values)
            self.assertEqual(keeps_its_promises(known, number), right, values)
            seen.add(right)
        if needs_both:
            self.assertEqual(seen, {True, False})

    def test_operations(self):
        may_fail = ("udiv", "urem", "sdiv", "srem", "shl", "lshr", "ashr")
        for operation in generated_functions.PLAIN:
            for bits in generated_functions.WIDTHS:
                for promise in ("",) + generated_functions.PROMISES.get(operation, ()):
                    name = name_of(operation, *promise.split(), bits)
                    with self.subTest(name):
                        self.holds_exactly(
                            name, lambda a, b: _defined(operation, promise, a, b, bits),
                            promise or operation in may_fail)

    def test_operations_with_one_number(self):
        for promise in ("nuw", "nsw"):
            for operation in ("add", "sub", "mul"):
                for number in (1, 3, -1, -3, -2147483648):
                    known = number & 0xFFFFFFFF
                    with self.subTest(f"{operation} {promise} {number}"):
                        self.holds_exactly(
                            name_of(operation, promise, number, "left"),
                            lambda a: _defined(operation, promise, known, a, 32), False)
                        self.holds_exactly(
                            name_of(operation, promise, number, "right"),
                            lambda a: _defined(operation, promise, a, known, 32), False)

    def test_truncations(self):
        widths = (1,) + generated_functions.WIDTHS
        for small in widths:
            for large in widths:
                for promise in ("nuw", "nsw", "nuw nsw") if small < large else ():
                    with self.subTest(f"trunc {promise} {large} {small}"):
                        self.holds_exactly(name_of("trunc", *promise.split(), large, small),
                                           lambda a: _truncates(promise, a, large, small))

    def test_zext_nneg(self):
        for small in (8, 16, 32):
            for large in (16, 32, 64):
                if small < large:
                    self.holds_exactly(f"zext_nneg_{small}_{large}", lambda a: a >> (small - 1) == 0)


# Of each function of functions_of_claims.ll: for which arguments all claims hold.
ALWAYS, NEVER = (lambda *arguments: True), (lambda *arguments: False)
EXPECTED = {
    # 16 bytes are there, and 4 are loaded; a place is without sign.
    "load_at": lambda buffer, place: place <= 12,
    # Four words. The place is multiplied by 4 modulo 2^64.
    "load_in_table": lambda place: place % (1 << 62) < 4,
    "load_of_null": NEVER, "store_at_3": ALWAYS, "store_at_13": NEVER, "store_in_front": NEVER,
    "store_to_table": NEVER, "store_to_null": NEVER, "copy_of_17": NEVER, "copy_of_16": ALWAYS,
    "copy_to_15": NEVER, "copy_beside_itself": NEVER,
    # The end of a buffer is an address in it.
    "inbounds_at": lambda buffer, place: place <= 16,
    "inbounds_words": lambda buffer, place: place <= 4,
    "aligned_at": lambda buffer, place: place % 4 == 0,
    "aligned_store_at_8": ALWAYS, "aligned_store_at_4": NEVER, "aligned_in_loose_table": NEVER,
    "aligned_beyond_the_buffer": NEVER, "aligned_own_memory": NEVER,
    "load_with_range": lambda buffer: 3 <= buffer[0] < 7,
    "load_with_range_around": lambda buffer: buffer[0] >= 254 or buffer[0] < 2,
    "table_with_range": lambda place: place % 4 != 3,
    "table_with_range_where_it_holds": ALWAYS,
    "noundef_of_nothing": NEVER, "noundef_of_half_a_word": NEVER, "noundef_of_a_word": ALWAYS,
    "argument_of_nothing": lambda really: not really,
    "argument_too_small": NEVER, "argument_null": NEVER, "argument_not_aligned": NEVER,
    "argument_right": ALWAYS,
    "returns_nothing": lambda really: not really,
    "returns_in_range": lambda a: a in (0, 0xFFFFFFFF),
    "returns_truth": ALWAYS,
    "branch_on_nothing": lambda really: not really,
    "switch_on_nothing": NEVER, "divided_by_nothing": NEVER, "load_from_nowhere": NEVER,
    "store_to_nowhere": NEVER, "copy_to_nowhere": NEVER, "nothing_that_is_not_used": ALWAYS,
    "reached": lambda a: a != 5,
    "leading_zeros_of_not_0": lambda a: a != 0, "trailing_zeros_of_not_0": lambda a: a != 0,
    "column_that_is_not_there": NEVER,
    "faults_for_0": ALWAYS,
}


class Claims(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.module = small_module.assemble(
            (small_module.HERE / "functions_of_claims.ll").read_text())
        cls.machine = small_module.make_machine(cls.module)

    def test_every_function_is_named(self):
        named = {n for n, f in self.module.functions.items()
                 if "define internal" not in f.declaration}
        self.assertEqual(named, set(EXPECTED))

    def test_each(self):
        for name, expected in EXPECTED.items():
            with self.subTest(name):
                self.holds_exactly(self.module.functions[name], expected)

    def holds_exactly(self, function, expected):
        unknown = run_unknown(self.machine, function)
        seen = set()
        tried = samples(function, 200, "claims")
        # Small places are what these functions tell apart.
        if [t.bits for t in function.argument_types][-1:] == [64]:
            tried += [values[:-1] + [n] for n, values in enumerate(tried[:40])]
        for values in tried:
            number = numbers_of(function, values)
            right = expected(*values)
            self.assertEqual(keeps_its_promises(unknown, number), right, values)
            known = run_known(self.machine, function, values)
            self.assertEqual(keeps_its_promises(known, number), right, values)
            seen.add(right)
        if expected not in (ALWAYS, NEVER):
            self.assertEqual(seen, {True, False})

    def test_read_only_memory(self):
        for writable in (True, False):
            region = Region("a caller's", 16, 8, writable, "any")
            self.machine.claims.clear()
            self.machine.run("store_at_3", [Address(region, 0)])
            self.assertEqual(all(c.holds is True for c in self.machine.claims), writable)

    def test_memory_whose_size_is_unknown(self):
        """As many bytes as an argument says."""
        length = z3.BitVec("length", 64)
        region = Region("a caller's", 0, 8, True, "any",
                        inside=lambda offset, size: z3.ULE(offset + size, length))
        self.machine.claims.clear()
        self.machine.run("store_at_13", [Address(region, 0)])
        claims = list(self.machine.claims)
        for given in (0, 13, 16, 17, 1000):
            holds = all(evaluate(c.holds, {"length": given}.__getitem__) for c in claims)
            self.assertEqual(holds, given >= 17)

    def test_fault(self):
        function = self.module.functions["faults_for_0"]
        for value, kind in ((0, "faults"), (1, "returns")):
            outcome, = run_known(self.machine, function, [value]).outcomes
            self.assertEqual(outcome.kind, kind)
        outcomes = run_unknown(self.machine, function).outcomes
        self.assertEqual(sorted(o.kind for o in outcomes), ["faults", "returns"])
        for outcome in outcomes:
            for value in (0, 1, 77):
                number = numbers_of(function, [value])
                taken = all(evaluate(c, number) for c in outcome.state.conditions)
                self.assertEqual(taken, (value == 0) == (outcome.kind == "faults"))

    def test_shared_memory_is_another_at_each_load(self):
        function = self.module.functions["load_at"]
        region = Region("a caller's", 16, 8, False, "shared")
        self.machine.claims.clear()
        outcome, = self.machine.run(function.name, [Address(region, 0), 4])
        self.assertEqual([(a.offset, a.bytes) for a in outcome.state.loads], [(4, 4)])
        with self.assertRaises(NoValue):
            evaluate(outcome.value, numbers_of(function, [bytes(16), 4]))


if __name__ == "__main__":
    unittest.main()
