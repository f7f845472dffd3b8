"""The library's code as LLVM has it, read into plain records through LLVM's C interface."""

import ctypes
import re
from dataclasses import dataclass, field

_P = ctypes.c_void_p
_U = ctypes.c_uint
_INT = ctypes.c_int


def _load():
    for name in ("libLLVM.so.19.1", "libLLVM-19.so"):
        try:
            return ctypes.CDLL(name)
        except OSError:
            continue
    raise SystemExit("libLLVM-19 is not there: install Debian's llvm-19")


_llvm = None


def _call(name, result, *arguments):
    """One function of the C interface; arguments are pointers, numbers or bytes."""
    global _llvm
    if _llvm is None:
        _llvm = _load()
    function = getattr(_llvm, "LLVM" + name)
    function.restype = result
    return function(*arguments)


def _p(name, *arguments):
    value = _call(name, _P, *arguments)
    return _P(value) if value else None


def _u(name, *arguments):
    return _call(name, _U, *arguments)


def _text(name, value):
    length = ctypes.c_size_t()
    start = _call(name, _P, value, ctypes.byref(length))
    return ctypes.string_at(start, length.value)


# ---- types


@dataclass(frozen=True)
class Type:
    kind: str  # int, pointer, struct, array, vector, void, other
    bits: int = 0  # of an int
    bytes: int = 0  # in memory
    parts: tuple = ()  # of a struct
    offsets: tuple = ()  # bytes, of its parts
    count: int = 0  # of an array or a vector
    element: "Type" = None  # of an array or a vector


# ---- values


@dataclass(frozen=True)
class Int:
    bits: int
    value: int  # without sign


@dataclass(frozen=True)
class Null:
    pass


@dataclass(frozen=True)
class Undefined:
    """undef or poison."""

    type: Type


@dataclass(frozen=True)
class Aggregate:
    parts: tuple


@dataclass(frozen=True)
class Symbol:
    """A function or a variable by its name."""

    name: str


@dataclass(frozen=True)
class Assembly:
    """Machine instructions in the text of the library."""

    text: str


@dataclass(frozen=True)
class Element:
    """Constant address: so many bytes behind another."""

    base: object
    offset: int


@dataclass(frozen=True)
class AddressNumber:
    """Constant address as a number."""

    address: object


@dataclass(frozen=True)
class RelativeNumber:
    """How far one constant lies behind another, as a number of 32 bits."""

    target: object
    base: object


@dataclass(frozen=True)
class Local:
    """An argument or what an instruction yields, by its number in the function."""

    number: int


@dataclass
class Instruction:
    opcode: str
    type: Type
    operands: list
    number: int
    predicate: str = ""  # of a comparison
    flags: frozenset = frozenset()  # the compiler's promises
    range: tuple = None  # of the loaded number: from, and up to but not with; promised
    noundef: bool = False  # of a load: promised
    targets: tuple = ()  # blocks, of a branch or a switch
    cases: tuple = ()  # (number, block) of a switch
    incoming: tuple = ()  # (value, block) of a phi
    source: Type = None  # of an address or an alloca
    indices: tuple = ()  # of extractvalue and insertvalue; the mask of a shufflevector
    alignment: int = 1  # bytes, promised of a load or a store; of an alloca
    volatile: bool = False
    callee: "Symbol | Local | Assembly | None" = None
    text: str = ""
    place: str = ""  # in the library's source


@dataclass
class Block:
    number: int
    instructions: list = field(default_factory=list)


@dataclass(frozen=True)
class ArgumentPromises:
    noundef: bool = False
    nonnull: bool = False
    alignment: int = 1  # bytes
    dereferenceable: int = 0  # bytes


@dataclass
class Function:
    name: str
    arguments: list  # of Local
    argument_types: list
    promises: list  # of ArgumentPromises
    result: Type
    result_noundef: bool
    result_range: tuple  # from, and up to but not with; None
    blocks: list
    headers: frozenset = frozenset()  # blocks that loops start with
    declaration: str = ""  # its first line


@dataclass
class Variable:
    name: str
    bytes: int
    constant: bool
    content: dict  # offset -> (bytes, Int or address)
    alignment: int = 1  # bytes


@dataclass
class Module:
    functions: dict
    declared: set
    variables: dict


_TYPE_KINDS = {0: "void", 8: "int", 10: "struct", 11: "array", 12: "pointer", 13: "vector"}
_OPCODES = {
    1: "ret", 2: "br", 3: "switch", 7: "unreachable", 8: "add", 10: "sub", 12: "mul", 14: "udiv",
    15: "sdiv", 17: "urem", 18: "srem", 20: "shl", 21: "lshr", 22: "ashr", 23: "and", 24: "or",
    25: "xor", 26: "alloca", 27: "load", 28: "store", 29: "getelementptr", 30: "trunc",
    31: "zext", 32: "sext", 39: "ptrtoint", 40: "inttoptr", 41: "bitcast", 42: "icmp", 44: "phi",
    45: "call", 46: "select", 50: "extractelement", 51: "insertelement", 52: "shufflevector",
    53: "extractvalue", 54: "insertvalue", 55: "fence", 68: "freeze",
}
_PREDICATES = {32: "eq", 33: "ne", 34: "ugt", 35: "uge", 36: "ult", 37: "ule", 38: "sgt",
               39: "sge", 40: "slt", 41: "sle"}
_KINDS = {0: "argument", 1: "block", 5: "function", 8: "variable", 10: "constant expression",
          11: "array", 12: "struct", 13: "array", 14: "undefined", 15: "zero", 16: "data",
          17: "data", 18: "int",
          20: "null", 22: "metadata", 23: "assembly", 24: "instruction", 25: "poison"}


_PROMISES = {"nuw", "nsw", "exact", "nneg", "disjoint", "inbounds", "nusw"}


def _range_in(text):
    found = re.search(r"range\(i\d+ (-?\d+), (-?\d+)\)", text)
    return (int(found[1]), int(found[2])) if found else None


def _promises_of_arguments(text, count):
    """From what stands between a function's parentheses."""
    parts, depth, start = [], 0, text.index("(") + 1
    for at in range(start, len(text)):
        if text[at] in "([{<":
            depth += 1
        elif text[at] in ")]}>" and depth > 0:
            depth -= 1
        elif text[at] == ")" or text[at] == "," and depth == 0:
            parts.append(text[start:at])
            start = at + 1
            if text[at] == ")":
                break
    parts = [p.strip() for p in parts if p.strip()]
    if len(parts) != count:
        raise SystemExit(f"arguments that are not understood: {text}")
    made = []
    for part in parts:
        words = part.split(" ")
        alignment = int(words[words.index("align") + 1]) if "align" in words else 1
        found = re.search(r"dereferenceable\((\d+)\)", part)
        made.append(ArgumentPromises("noundef" in words, "nonnull" in words, alignment,
                                     int(found[1]) if found else 0))
    return made


def _successors(block):
    last = block.instructions[-1]
    return list(last.targets) + [target for _, target in last.cases]


def _loop_headers(blocks):
    """The blocks to which a path comes back."""
    headers, done = set(), set()
    stack = [(0, iter(_successors(blocks[0])))]
    on_path = {0}
    while stack:
        number, successors = stack[-1]
        for successor in successors:
            if successor in on_path:
                headers.add(successor)
            elif successor not in done:
                on_path.add(successor)
                stack.append((successor, iter(_successors(blocks[successor]))))
                break
        else:
            stack.pop()
            on_path.discard(number)
            done.add(number)
    return frozenset(headers)


class _Reader:
    def __init__(self, path):
        context = _p("ContextCreate")
        buffer, message, module = _P(), ctypes.c_char_p(), _P()
        if _call("CreateMemoryBufferWithContentsOfFile", _INT, str(path).encode(),
                 ctypes.byref(buffer), ctypes.byref(message)):
            raise SystemExit(f"{path}: {str(message.value, 'utf-8')}")
        if _call("ParseBitcodeInContext2", _INT, context, buffer, ctypes.byref(module)):
            raise SystemExit(f"{path}: not the compiler's bitcode")
        self.module = module
        self.layout = _p("GetModuleDataLayout", module)
        self.types = {}
        self.metadata_kinds = {name: _u("GetMDKindID", name.encode(), _U(len(name)))
                               for name in ("range", "noundef")}

    def type(self, handle):
        if handle.value not in self.types:
            self.types[handle.value] = self._type(handle)
        return self.types[handle.value]

    def _type(self, handle):
        kind = _TYPE_KINDS.get(_call("GetTypeKind", _INT, handle), "other")
        if kind in ("void", "other"):
            return Type(kind)
        size = _call("ABISizeOfType", ctypes.c_ulonglong, self.layout, handle)
        if kind == "int":
            return Type(kind, bits=_u("GetIntTypeWidth", handle), bytes=size)
        if kind == "array":
            return Type(kind, bytes=size, count=_call("GetArrayLength2", ctypes.c_uint64, handle),
                        element=self.type(_p("GetElementType", handle)))
        if kind == "vector":
            return Type(kind, bytes=size, count=_u("GetVectorSize", handle),
                        element=self.type(_p("GetElementType", handle)))
        if kind == "struct":
            count = _u("CountStructElementTypes", handle)
            parts = [self.type(_p("StructGetTypeAtIndex", handle, _U(i))) for i in range(count)]
            offsets = [_call("OffsetOfElement", ctypes.c_ulonglong, self.layout, handle, _U(i))
                       for i in range(count)]
            return Type(kind, bytes=size, parts=tuple(parts), offsets=tuple(offsets))
        return Type(kind, bytes=size)

    def type_of(self, value):
        return self.type(_p("TypeOf", value))

    def operands(self, value):
        return [_p("GetOperand", value, _U(i)) for i in range(_call("GetNumOperands", _INT, value))]

    def value(self, handle):
        kind = _KINDS.get(_call("GetValueKind", _INT, handle))
        if kind in ("argument", "instruction"):
            return Local(self.numbers[handle.value])
        return self.constant(handle, kind)

    def constant(self, handle, kind=None):
        kind = kind or _KINDS.get(_call("GetValueKind", _INT, handle))
        type_ = self.type_of(handle)
        if kind == "int":
            if type_.bits > 64:
                raise SystemExit("a number of more than 64 bits")
            return Int(type_.bits, _call("ConstIntGetZExtValue", ctypes.c_ulonglong, handle))
        if kind == "null":
            return Null()
        if kind in ("undefined", "poison"):
            return Undefined(type_)
        if kind in ("function", "variable"):
            return Symbol(_text("GetValueName2", handle).decode())
        if kind == "assembly":
            return Assembly(self.text(handle))
        if kind == "zero":
            return self.zero(type_)
        if kind in ("struct", "array"):
            return Aggregate(tuple(self.constant(o) for o in self.operands(handle)))
        if kind == "data":
            return Aggregate(tuple(
                self.constant(_p("GetAggregateElement", handle, _U(i))) for i in range(type_.count)))
        if kind == "constant expression":
            opcode = _OPCODES.get(_call("GetConstOpcode", _INT, handle))
            if opcode == "getelementptr":
                return self.element(handle)
            if opcode == "ptrtoint":
                return AddressNumber(self.constant(self.operands(handle)[0]))
            if opcode == "trunc":
                inner = self.constant(self.operands(handle)[0])
                if isinstance(inner, RelativeNumber):
                    return inner
            if opcode == "sub":
                target, base = (self.constant(o) for o in self.operands(handle))
                if isinstance(target, AddressNumber) and isinstance(base, AddressNumber):
                    return RelativeNumber(target.address, base.address)
        raise SystemExit(f"a constant that is not understood: {self.text(handle)}")

    def zero(self, type_):
        if type_.kind == "int":
            return Int(type_.bits, 0)
        if type_.kind == "pointer":
            return Null()
        parts = type_.parts if type_.kind == "struct" else [type_.element] * type_.count
        return Aggregate(tuple(self.zero(p) for p in parts))

    def element(self, handle):
        base, *indices = self.operands(handle)
        source = self.type(_p("GetGEPSourceElementType", handle))
        offset = 0
        for place, index in enumerate(indices):
            number = self.constant(index)
            signed = number.value - (1 << number.bits if number.value >> (number.bits - 1) else 0)
            if place == 0:
                offset += signed * source.bytes
            elif source.kind == "struct":
                offset += source.offsets[signed]
                source = source.parts[signed]
            else:
                source = source.element
                offset += signed * source.bytes
        return Element(self.constant(base), offset)

    def text(self, handle):
        start = _call("PrintValueToString", _P, handle)
        text = ctypes.string_at(start).decode()
        _call("DisposeMessage", None, _P(start))
        return text.strip()

    def flags(self, opcode, text):
        """Between the name of an instruction and its first type."""
        words = text.partition(" = ")[2].split(" ")
        if opcode not in words:
            return frozenset()
        found = set()
        for word in words[words.index(opcode) + 1:]:
            if word not in _PROMISES:
                break
            found.add(word)
        return frozenset(found)

    def range_of(self, handle):
        """What !range promises of a loaded number."""
        node = _p("GetMetadata", handle, _U(self.metadata_kinds["range"]))
        if not node:
            return None
        parts = (_P * 2)()
        if _call("GetMDNodeNumOperands", _U, node) != 2:
            raise SystemExit("a range of more than one part")
        _call("GetMDNodeOperands", None, node, parts)
        low, high = (self.constant(_P(p)).value for p in parts)
        return low, high

    def place(self, handle):
        length = _U()
        start = _call("GetDebugLocFilename", _P, handle, ctypes.byref(length))
        if not start:
            return ""
        name = ctypes.string_at(start, length.value).decode()
        return f"{name.rpartition('/src/')[2] or name}:{_u('GetDebugLocLine', handle)}"

    def instruction(self, handle, blocks):
        opcode = _OPCODES.get(_call("GetInstructionOpcode", _INT, handle))
        text = self.text(handle)
        if opcode is None:
            raise SystemExit(f"an instruction that is not understood: {text}")
        made = Instruction(opcode, self.type_of(handle), [], self.numbers[handle.value], text=text,
                           flags=self.flags(opcode, text), place=self.place(handle))
        operands = self.operands(handle)
        if opcode in ("br", "switch"):
            made.operands = [self.value(operands[0])] if len(operands) > 1 else []
            if opcode == "br":
                successors = [_p("GetSuccessor", handle, _U(i))
                              for i in range(_u("GetNumSuccessors", handle))]
                made.targets = tuple(blocks[s.value] for s in successors)
            else:
                made.targets = (blocks[operands[1].value],)
                made.cases = tuple((self.constant(n).value, blocks[b.value])
                                   for n, b in zip(operands[2::2], operands[3::2]))
            return made
        if opcode == "phi":
            count = _u("CountIncoming", handle)
            made.incoming = tuple(
                (self.value(_p("GetIncomingValue", handle, _U(i))),
                 blocks[_p("GetIncomingBlock", handle, _U(i)).value]) for i in range(count))
            return made
        if opcode == "call":
            callee = _p("GetCalledValue", handle)
            made.callee = self.value(callee)
            if isinstance(made.callee, Symbol) and made.callee.name.startswith(
                    ("llvm.experimental", "llvm.dbg", "llvm.lifetime")):
                return made
            made.operands = [self.value(o) for o in operands[:-1]]
            return made
        made.operands = [self.value(o) for o in operands]
        if opcode == "icmp":
            made.predicate = _PREDICATES[_call("GetICmpPredicate", _INT, handle)]
        if opcode in ("load", "store"):
            made.volatile = bool(_call("GetVolatile", _INT, handle))
            value = handle if opcode == "load" else operands[0]
            made.source = self.type_of(value)
            made.alignment = _u("GetAlignment", handle)
        if opcode == "load":
            made.range = self.range_of(handle)
            made.noundef = bool(_p("GetMetadata", handle, _U(self.metadata_kinds["noundef"])))
        if opcode == "getelementptr":
            made.source = self.type(_p("GetGEPSourceElementType", handle))
        if opcode == "alloca":
            made.source = self.type(_p("GetAllocatedType", handle))
            made.alignment = _u("GetAlignment", handle)
        if opcode in ("extractvalue", "insertvalue"):
            count = _u("GetNumIndices", handle)
            start = _call("GetIndices", ctypes.POINTER(_U), handle)
            made.indices = tuple(start[i] for i in range(count))
        if opcode == "shufflevector":
            made.indices = tuple(_call("GetMaskValue", _INT, handle, _U(i))
                                 for i in range(_u("GetNumMaskElements", handle)))
        return made

    def function(self, handle):
        self.numbers = {}
        arguments = [_p("GetParam", handle, _U(i)) for i in range(_u("CountParams", handle))]
        block_handles, numbers = [], {}
        for argument in arguments:
            self.numbers[argument.value] = len(self.numbers)
        block = _p("GetFirstBasicBlock", handle)
        while block:
            as_value = _p("BasicBlockAsValue", block)
            numbers[as_value.value] = numbers[block.value] = len(block_handles)
            block_handles.append(block)
            instruction = _p("GetFirstInstruction", block)
            while instruction:
                self.numbers[instruction.value] = len(self.numbers)
                instruction = _p("GetNextInstruction", instruction)
            block = _p("GetNextBasicBlock", block)
        blocks = []
        for number, block in enumerate(block_handles):
            made = Block(number)
            instruction = _p("GetFirstInstruction", block)
            while instruction:
                made.instructions.append(self.instruction(instruction, numbers))
                instruction = _p("GetNextInstruction", instruction)
            blocks.append(made)
        type_ = _p("GlobalGetValueType", handle)
        declaration = self.text(handle).partition("\n")[0]
        while not declaration.startswith("define"):
            declaration = self.text(handle).partition("define ")[2].partition("\n")[0]
            declaration = "define " + declaration
        before, _, behind = declaration.partition(" @")
        return Function(
            _text("GetValueName2", handle).decode(),
            [Local(self.numbers[a.value]) for a in arguments],
            [self.type_of(a) for a in arguments],
            _promises_of_arguments(behind, len(arguments)),
            self.type(_p("GetReturnType", type_)),
            "noundef" in before.split(" "), _range_in(before), blocks, _loop_headers(blocks),
            declaration)

    def content(self, constant, type_, offset, into):
        if isinstance(constant, Aggregate):
            if type_.kind == "struct":
                places = zip(constant.parts, type_.parts, type_.offsets)
            else:
                size = type_.element.bytes
                places = ((p, type_.element, i * size) for i, p in enumerate(constant.parts))
            for part, part_type, at in places:
                self.content(part, part_type, offset + at, into)
        else:
            into[offset] = (type_.bytes, constant)

    def variable(self, handle):
        type_ = self.type(_p("GlobalGetValueType", handle))
        content = {}
        initial = _p("GetInitializer", handle)
        if initial:
            self.content(self.constant(initial), type_, 0, content)
        return Variable(_text("GetValueName2", handle).decode(), type_.bytes,
                        bool(_call("IsGlobalConstant", _INT, handle)), content,
                        max(_u("GetAlignment", handle), 1))

    def read(self):
        functions, declared, variables = {}, set(), {}
        handle = _p("GetFirstFunction", self.module)
        while handle:
            name = _text("GetValueName2", handle).decode()
            if _call("IsDeclaration", _INT, handle):
                declared.add(name)
            else:
                functions[name] = self.function(handle)
            handle = _p("GetNextFunction", handle)
        handle = _p("GetFirstGlobal", self.module)
        while handle:
            variable = self.variable(handle)
            variables[variable.name] = variable
            handle = _p("GetNextGlobal", handle)
        return Module(functions, declared, variables)


def read_module(path):
    return _Reader(path).read()
