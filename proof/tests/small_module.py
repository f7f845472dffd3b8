"""Small modules of LLVM IR: assembled for the executor, compiled for this machine, and run in both."""

import ctypes
import os
import random
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

import z3

HERE = Path(__file__).resolve().parent
QUICK = os.environ.get("KORVEL_PROOF_TESTS") == "quick"
sys.path.insert(0, str(HERE.parent))

from executor import ir, terms  # noqa: E402
from executor.machine import Machine  # noqa: E402
from executor.memory import Address, Memory, Poison, Region  # noqa: E402
from executor.prover import Prover  # noqa: E402

import evaluation  # noqa: E402

HEADER = """\
target datalayout = "e-m:e-p270:32:32-p271:32:32-p272:64:64-i64:64-i128:128-f80:128-n8:16:32:64-S128"
target triple = "x86_64-pc-linux-gnu"
"""
BUFFER_BYTES, BUFFER_ALIGNMENT = 16, 16


def assemble(text):
    """The executor's module of a text of LLVM IR."""
    with tempfile.TemporaryDirectory() as folder:
        source, code = Path(folder, "module.ll"), Path(folder, "module.bc")
        source.write_text(HEADER + text)
        _run("llvm-as-19", str(source), "-o", str(code))
        return ir.read_module(code)


def compile_here(text):
    """The same as this machine's code."""
    with tempfile.TemporaryDirectory() as folder:
        source, shared = Path(folder, "module.ll"), Path(folder, "module.so")
        source.write_text(HEADER + text)
        _run("clang-19", "-target", "x86_64-pc-linux-gnu", "-O0", "-fPIC", "-shared", "-nostdlib",
             "-x", "ir", str(source), "-o", str(shared))
        return ctypes.CDLL(str(shared))


def _run(*command):
    try:
        done = subprocess.run(command, capture_output=True, text=True)
    except FileNotFoundError:
        raise SystemExit(f"{command[0]} is not there: install Debian's llvm-19 and clang-19") from None
    if done.returncode:
        raise SystemExit(f"{' '.join(command)}: {done.stderr}")


def functions_of_files():
    """The text of all functions/*.ll."""
    files = sorted((HERE / "functions").glob("*.ll"))
    if len(files) < 4:
        raise SystemExit("functions/ does not hold the functions that are to be tested")
    return "\n".join(f.read_text() for f in files)


# ---- numbers to try


def edges(bits):
    """Numbers of so many bits at which operations change their ways."""
    top = 1 << bits
    found = {0, 1, 2, 3, 5, bits - 1, bits, top // 2 - 1, top // 2, top // 2 + 1, top - 1, top - 2,
             top - 5, 100, 1 << (bits // 2)}
    return sorted(n % top for n in found)


def samples(function, count, seed):
    """Lists of arguments: numbers, and bytes for the buffers. All edges with all edges as far as
    `count` reaches, then any numbers."""
    chosen = random.Random(f"{function.name} {seed}")
    made = []
    for at in range(count):
        values = []
        for type_ in function.argument_types:
            if type_.kind == "pointer":
                values.append(bytes(chosen.choice((0, 1, 0x7F, 0x80, 0xFF, chosen.randrange(256)))
                                    for _ in range(BUFFER_BYTES)))
            elif at % 2 == 0:
                values.append(chosen.choice(edges(type_.bits)) & terms.mask(type_.bits))
            else:
                values.append(chosen.getrandbits(chosen.randint(1, type_.bits)))
        made.append(values)
    if not function.argument_types:
        return made[:1]
    if all(t.kind == "int" and t.bits == 1 for t in function.argument_types):
        return [[n >> i & 1 for i in range(len(function.argument_types))]
                for n in range(1 << len(function.argument_types))]
    return made


# ---- on this machine


_TYPES = {1: ctypes.c_bool, 8: ctypes.c_uint8, 16: ctypes.c_uint16, 32: ctypes.c_uint32,
          64: ctypes.c_uint64}


@dataclass
class Answer:
    value: object  # the number that was returned, None for none
    buffers: list  # bytes


def run_here(library, function, values):
    called = getattr(library, function.name)
    result = function.result
    called.restype = None if result.kind == "void" else ctypes.c_uint64
    handed, buffers = [], []
    for type_, value in zip(function.argument_types, values):
        if type_.kind == "pointer":
            room = ctypes.create_string_buffer(BUFFER_BYTES + BUFFER_ALIGNMENT)
            start = -ctypes.addressof(room) % BUFFER_ALIGNMENT
            ctypes.memmove(ctypes.addressof(room) + start, value, BUFFER_BYTES)
            buffers.append((room, start))
            handed.append(ctypes.c_void_p(ctypes.addressof(room) + start))
        else:
            handed.append(_TYPES[type_.bits](value))
    returned = called(*handed)
    value = None if result.kind == "void" else returned & terms.mask(result.bits)
    return Answer(value, [room.raw[start:start + BUFFER_BYTES] for room, start in buffers])


# ---- in the executor


@dataclass
class Run:
    machine: Machine
    outcomes: list
    claims: list
    regions: list  # the buffers


def run_known(machine, function, values):
    """With numbers that are known."""
    machine.claims.clear()
    arguments, regions, memory = [], [], Memory()
    for place, (type_, value) in enumerate(zip(function.argument_types, values)):
        if type_.kind == "pointer":
            region = Region(f"buffer {place}", BUFFER_BYTES, BUFFER_ALIGNMENT, True, "any")
            memory = memory.with_cells(region, {i: (1, b) for i, b in enumerate(value)})
            regions.append(region)
            arguments.append(Address(region, 0))
        else:
            arguments.append(bool(value) if type_.bits == 1 else value)
    outcomes = machine.run(function.name, arguments, memory)
    return Run(machine, outcomes, list(machine.claims), regions)


def run_unknown(machine, function, conditions=()):
    """With an unknown for each number and each byte of a buffer."""
    machine.claims.clear()
    arguments, regions = [], []
    for place, type_ in enumerate(function.argument_types):
        if type_.kind == "pointer":
            region = Region(f"buffer {place}", BUFFER_BYTES, BUFFER_ALIGNMENT, True, "any")
            regions.append(region)
            arguments.append(Address(region, 0))
        elif type_.bits == 1:
            arguments.append(z3.Bool(f"argument {place}"))
        else:
            arguments.append(z3.BitVec(f"argument {place}", type_.bits))
    outcomes = machine.run(function.name, arguments, None, conditions)
    return Run(machine, outcomes, list(machine.claims), regions)


def numbers_of(function, values):
    """What the unknowns of run_unknown() stand for."""
    def number(name):
        kind, _, rest = name.partition(" ")
        if kind == "argument" and rest.isdigit():
            value = values[int(rest)]
            return bool(value) if function.argument_types[int(rest)].bits == 1 else value
        if name.startswith("frozen#"):
            return 0x5A5A5A5A  # any number will do
        if kind == "buffer" and ":" in rest:
            place, _, where = rest.partition("+")
            offset, _, size = where.partition(":")
            data = values[int(place)][int(offset):int(offset) + int(size)]
            return int.from_bytes(data, "little")
        raise evaluation.NoValue(name)
    return number


def bytes_of(run, outcome, number):
    """The buffers afterwards."""
    made = []
    for region in run.regions:
        cells = outcome.state.memory.cells(region)
        data = [run.machine.byte(region, i, cells) for i in range(region.bytes)]
        made.append(bytes(evaluation.evaluate(b, number) for b in data))
    return made


def plain(value):
    """A number of a value that is one; a truth value as 0 or 1."""
    if isinstance(value, Poison):
        return "poison"
    return int(value) if isinstance(value, bool) else value


def keeps_its_promises(run, number):
    """Whether a run is one that the code may make with these numbers: what must hold does, and it does
    not end in a number that means nothing, as one does when an instruction breaks its promise."""
    for claim in run.claims:
        if all(evaluation.evaluate(c, number) for c in claim.conditions) and not evaluation.evaluate(claim.holds, number):
            return False
    for outcome in run.outcomes:
        if all(evaluation.evaluate(c, number) for c in outcome.state.conditions):
            values = outcome.value if isinstance(outcome.value, list) else [outcome.value]
            if any(isinstance(v, Poison) for v in values):
                return False
    return True


def make_machine(module, **arguments):
    return Machine(module, Prover(), **arguments)


# ---- what an instruction is


def operation(function, instruction):
    """What must be tested of an instruction: its kind, and the types that it works on."""
    types = {local.number: t for local, t in zip(function.arguments, function.argument_types)}
    for block in function.blocks:
        for one in block.instructions:
            types[one.number] = one.type

    def of(operand):
        if isinstance(operand, ir.Local):
            return _type_name(types[operand.number])
        if isinstance(operand, ir.Int):
            return f"i{operand.bits}"
        return ""

    opcode = instruction.opcode
    if opcode == "call":
        if isinstance(instruction.callee, ir.Assembly):
            faults = "brk" in instruction.callee.text
            return "call of assembly that faults" if faults else "call of assembly"
        name = instruction.callee.name
        if name.startswith(("llvm.experimental", "llvm.dbg")):
            return "call of a note of the compiler"
        return f"call of {name}" if name.startswith("llvm.") else "call"
    if opcode in ("br", "switch", "ret", "unreachable", "getelementptr", "alloca"):
        return opcode
    if opcode == "store":
        return f"store {_type_name(instruction.source)}"
    if opcode in ("zext", "sext", "trunc", "icmp", "bitcast", "ptrtoint"):
        operand = next((o for o in map(of, instruction.operands) if o), "ptr")
        return f"{opcode} {instruction.predicate} {operand} to {_type_name(instruction.type)}"
    return f"{opcode} {_type_name(instruction.type)}"


def promises(instruction):
    return {f"{instruction.opcode} {flag}" for flag in instruction.flags}


def _type_name(type_):
    if type_.kind == "int":
        return f"i{type_.bits}"
    if type_.kind in ("array", "vector"):
        return f"{type_.kind} of {type_.count} {_type_name(type_.element)}"
    if type_.kind == "struct":
        return "struct"
    return "ptr" if type_.kind == "pointer" else type_.kind
