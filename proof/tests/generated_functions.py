"""Functions that differ in an operation and a width alone: their text, made of patterns."""

WIDTHS = (8, 16, 32, 64)
PREDICATES = ("eq", "ne", "ugt", "uge", "ult", "ule", "sgt", "sge", "slt", "sle")
PLAIN = ("add", "sub", "mul", "udiv", "sdiv", "urem", "srem", "shl", "lshr", "ashr", "and", "or",
         "xor")
# What the compiler may promise of each operation.
PROMISES = {
    "add": ("nuw", "nsw", "nuw nsw"), "sub": ("nuw", "nsw", "nuw nsw"),
    "mul": ("nuw", "nsw", "nuw nsw"), "shl": ("nuw", "nsw", "nuw nsw"),
    "udiv": ("exact",), "sdiv": ("exact",), "lshr": ("exact",), "ashr": ("exact",),
    "or": ("disjoint",),
}
# Numbers that an operation treats apart when they stand in the code.
NUMBERS = (0, 1, 2, 7, -1, -2)


def name_of(*parts):
    return "_".join(str(p).replace(" ", "_").replace("-", "minus_") for p in parts)


def _binary():
    for operation in PLAIN:
        for bits in WIDTHS:
            for promise in ("",) + PROMISES.get(operation, ()):
                yield (f"define i{bits} @{name_of(operation, *promise.split(), bits)}"
                       f"(i{bits} %a, i{bits} %b) {{\n"
                       f"  %result = {operation} {promise} i{bits} %a, %b\n  ret i{bits} %result\n}}")
    for operation in PLAIN:
        for number in NUMBERS:
            if number in (0, -1, -2) and operation in ("udiv", "urem", "sdiv", "srem") and number == 0:
                continue  # the assembler folds it
            if operation in ("shl", "lshr", "ashr") and number < 0:
                continue
            for left in (True, False):
                operands = f"{number}, %a" if left else f"%a, {number}"
                name = name_of(operation, number, "left" if left else "right")
                yield (f"define i32 @{name}(i32 %a) {{\n  %result = {operation} i32 {operands}\n"
                       f"  ret i32 %result\n}}")


def _promises_with_numbers():
    """One factor known: the solver's own tests of overflow."""
    for promise in ("nuw", "nsw"):
        for operation in ("add", "sub", "mul"):
            for number in (1, 3, -1, -3, -2147483648):
                for left in (True, False):
                    operands = f"{number}, %a" if left else f"%a, {number}"
                    name = name_of(operation, promise, number, "left" if left else "right")
                    yield (f"define i32 @{name}(i32 %a) {{\n"
                           f"  %result = {operation} {promise} i32 {operands}\n  ret i32 %result\n}}")


def _of_truths():
    for operation in ("and", "or", "xor"):
        for operands, name in (("%a, %b", "both"), ("%a, true", "true"), ("false, %b", "false")):
            yield (f"define i1 @{operation}_1_{name}(i1 %a, i1 %b) {{\n"
                   f"  %result = {operation} i1 {operands}\n  ret i1 %result\n}}")


def _comparisons():
    for predicate in PREDICATES:
        for bits in (1,) + WIDTHS:
            yield (f"define i1 @icmp_{predicate}_{bits}(i{bits} %a, i{bits} %b) {{\n"
                   f"  %result = icmp {predicate} i{bits} %a, %b\n  ret i1 %result\n}}")
        for number in (0, -1, -5):
            yield (f"define i1 @{name_of('icmp', predicate, 'with', number)}(i32 %a) {{\n"
                   f"  %result = icmp {predicate} i32 %a, {number}\n  ret i1 %result\n}}")
        yield (f"define i1 @icmp_{predicate}_same(i16 %a) {{\n"
               f"  %result = icmp {predicate} i16 %a, %a\n  ret i1 %result\n}}")


def _casts():
    all_widths = (1,) + WIDTHS
    for small in all_widths:
        for large in all_widths:
            if small >= large:
                continue
            promises = {"zext": ("", "nneg") if small > 1 else ("",), "sext": ("",)}
            for operation, flags in promises.items():
                for flag in flags:
                    yield (f"define i{large} @{name_of(operation, *flag.split(), small, large)}"
                           f"(i{small} %a) {{\n  %result = {operation} {flag} i{small} %a to i{large}\n"
                           f"  ret i{large} %result\n}}")
            for flag in ("", "nuw", "nsw", "nuw nsw"):
                yield (f"define i{small} @{name_of('trunc', *flag.split(), large, small)}"
                       f"(i{large} %a) {{\n  %result = trunc {flag} i{large} %a to i{small}\n"
                       f"  ret i{small} %result\n}}")


def _selects():
    for bits in WIDTHS:
        yield (f"define i{bits} @select_{bits}(i1 %condition, i{bits} %a, i{bits} %b) {{\n"
               f"  %result = select i1 %condition, i{bits} %a, i{bits} %b\n  ret i{bits} %result\n}}")


def _loads():
    for bits in WIDTHS:
        for place in (0, 1, 5):
            yield (f"define i{bits} @load_{bits}_at_{place}(ptr %buffer) {{\n"
                   f"  %at = getelementptr inbounds i8, ptr %buffer, i64 {place}\n"
                   f"  %result = load i{bits}, ptr %at, align 1\n  ret i{bits} %result\n}}")
            yield (f"define void @store_{bits}_at_{place}(ptr %buffer, i{bits} %a) {{\n"
                   f"  %at = getelementptr inbounds i8, ptr %buffer, i64 {place}\n"
                   f"  store i{bits} %a, ptr %at, align 1\n  ret void\n}}")


def _intrinsics():
    for bits in WIDTHS:
        for kind in ("umin", "umax", "smin", "smax"):
            function = f"@llvm.{kind}.i{bits}"
            yield f"declare i{bits} {function}(i{bits}, i{bits})"
            yield (f"define i{bits} @{kind}_{bits}(i{bits} %a, i{bits} %b) {{\n"
                   f"  %result = call i{bits} {function}(i{bits} %a, i{bits} %b)\n"
                   f"  ret i{bits} %result\n}}")
        for kind in ("umul", "uadd"):
            pair, function = f"{{ i{bits}, i1 }}", f"@llvm.{kind}.with.overflow.i{bits}"
            yield f"declare {pair} {function}(i{bits}, i{bits})"
            for operands, name in ((f"i{bits} %b", ""), (f"i{bits} 24", "_number"),
                                   (f"i{bits} 1", "_one")):
                yield (f"define i{bits} @{kind}_with_overflow_{bits}{name}(i{bits} %a, i{bits} %b) {{\n"
                       f"  %pair = call {pair} {function}(i{bits} %a, {operands})\n"
                       f"  %number = extractvalue {pair} %pair, 0\n"
                       f"  %wraps = extractvalue {pair} %pair, 1\n"
                       f"  %wide = sext i1 %wraps to i{bits}\n"
                       f"  %result = xor i{bits} %number, %wide\n  ret i{bits} %result\n}}")
        for kind in ("ctlz", "cttz"):
            function = f"@llvm.{kind}.i{bits}"
            yield f"declare i{bits} {function}(i{bits}, i1)"
            for poison in ("false", "true"):
                yield (f"define i{bits} @{kind}_{bits}_{poison}(i{bits} %a) {{\n"
                       f"  %result = call i{bits} {function}(i{bits} %a, i1 {poison})\n"
                       f"  ret i{bits} %result\n}}")
        function = f"@llvm.ctpop.i{bits}"
        yield f"declare i{bits} {function}(i{bits})"
        yield (f"define i{bits} @ctpop_{bits}(i{bits} %a) {{\n"
               f"  %result = call i{bits} {function}(i{bits} %a)\n  ret i{bits} %result\n}}")


def text():
    made = []
    for group in (_binary, _promises_with_numbers, _of_truths, _comparisons, _casts, _selects, _loads,
                  _intrinsics):
        found = list(group())
        if not found:
            raise SystemExit(f"{group.__name__} makes no function")
        made.extend(found)
    return "\n".join(made) + "\n"
