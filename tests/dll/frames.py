#!/usr/bin/env python3
"""Which functions of a DLL keep an array in their frame, and are they guarded?

tests/dll/frames.py PDB DLL

Prints the names of the functions whose frame holds an array, one a line and sorted; what frames hold is read from the
PDB, what the code does from the DLL. Fails when one of them does not both read the guard word and have a call of the
routine that ends the process.
"""
import re
import subprocess
import sys


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def types_of(pdb):
    """The records of the PDB's types by number: kind, and the text of all their lines."""
    types = {}
    record = None
    for line in run("llvm-pdbutil-19", "dump", "--types", pdb).splitlines():
        start = re.match(r"\s+(0x[0-9A-F]+) \| (LF_\w+)", line)
        if start:
            record = types[int(start[1], 16)] = [start[2], ""]
        elif record is not None:
            record[1] += line + "\n"
    if not types:
        sys.exit(f"{pdb} lists no types")
    return types


def reference(text, what):
    found = re.search(what + r"\s*[=:]?\s*(0x[0-9A-F]+)", text)
    return int(found[1], 16) if found else None


def holds_array(types, number):
    """Whether an object of the type has an array in it."""
    if number is None or number not in types:
        return False
    kind, text = types[number]
    if kind == "LF_MODIFIER":
        return holds_array(types, reference(text, "referent"))
    if kind == "LF_ARRAY":
        return True
    if kind in ("LF_STRUCTURE", "LF_CLASS", "LF_UNION"):
        whole = reference(text, r"forward ref \(->")
        if whole is not None:
            return holds_array(types, whole)
        fields = types.get(reference(text, "field list"))
        if fields is None:
            return False
        members = re.findall(r"LF_MEMBER \[name = `[^`]*`, Type = (0x[0-9A-F]+)", fields[1])
        members += re.findall(r"LF_BCLASS\s+type = (0x[0-9A-F]+)", fields[1])
        return any(holds_array(types, int(member, 16)) for member in members)
    return False


def functions_of(pdb, types):
    """Name, offset in .text and size of every function, and whether its frame holds an array."""
    functions = []
    local_type = None
    for line in run("llvm-pdbutil-19", "dump", "--symbols", pdb).splitlines():
        record = re.match(r"\s+\d+ \| (S_\w+)(?: \[size = \d+\])?(?: `(.*)`)?", line)
        if record:
            kind = record[1]
            if kind in ("S_GPROC32", "S_LPROC32"):
                functions.append({"name": record[2], "array": False})
            elif kind == "S_LOCAL":
                local_type = None
            # Where the variable of the last S_LOCAL is.
            elif kind == "S_DEFRANGE_FRAMEPOINTER_REL":
                functions[-1]["array"] |= holds_array(types, local_type)
            continue
        # An offset from another register is in somebody else's frame: a result that the caller has room for.
        if re.search(r"register = (ARM64_SP|ARM64_FP|RSP|RBP), offset", line):
            functions[-1]["array"] |= holds_array(types, local_type)
        where = re.search(r"addr = 0001:(\d+), code size = (\d+)", line)
        if where and "offset" not in functions[-1]:
            functions[-1].update(offset=int(where[1]), size=int(where[2]))
        type_of_local = re.match(r"\s+type=(0x[0-9A-F]+) ", line)
        if type_of_local:
            local_type = int(type_of_local[1], 16)
    if len(functions) < 24 or any("offset" not in function for function in functions):
        sys.exit(f"{pdb} does not list the functions")
    return functions


def public_address(pdb, name, bases):
    listing = run("llvm-pdbutil-19", "dump", "--publics", pdb)
    found = re.search(r"`" + re.escape(name) + r"`\n.*addr = 0*(\d+):(\d+)", listing)
    if not found:
        sys.exit(f"{pdb} knows no {name}")
    return bases[int(found[1]) - 1] + int(found[2])


def section_addresses(dll):
    listing = run("llvm-readobj-19", "--file-headers", "--sections", dll)
    base = int(re.search(r"ImageBase: (0x[0-9A-F]+)", listing)[1], 16)
    return [base + int(address, 16) for address in re.findall(r"VirtualAddress: (0x[0-9A-F]+)", listing)]


def code_of(dll):
    """Address and text of every instruction."""
    listing = run("llvm-objdump-19", "--disassemble", "--no-show-raw-insn", dll)
    return [(int(at, 16), text) for at, text in re.findall(r"^\s*([0-9a-f]+):\s+(.*)$", listing, re.M)]


def reads_word_at(code, pointers):
    """Whether the instructions load from one of the addresses, each of which they form anew."""
    pages = {}
    for at, text in code:
        # On Arm a page, then an offset from it; on x86-64 an offset from the next instruction, which is printed.
        page = re.match(r"adrp\s+(x\d+), 0x([0-9a-f]+)", text)
        if page:
            pages[page[1]] = int(page[2], 16)
            continue
        load = re.match(r"ldr\s+x\d+, \[(x\d+)(?:, #0x([0-9a-f]+))?\]", text)
        if load and load[1] in pages and pages[load[1]] + int(load[2] or "0", 16) in pointers:
            return True
        for target in re.findall(r"# 0x([0-9a-f]+)", text):
            if text.startswith("movq") and int(target, 16) in pointers:
                return True
    return False


def main():
    pdb, dll = sys.argv[1:]
    bases = section_addresses(dll)
    fail = public_address(pdb, "__stack_chk_fail", bases)
    guard = public_address(pdb, "__stack_chk_guard", bases)
    # Compilers read the guard through a word that holds its address.
    pointers = {guard, public_address(pdb, ".refptr.__stack_chk_guard", bases)}
    code = code_of(dll)
    with_array = [function for function in functions_of(pdb, types_of(pdb)) if function["array"]]
    for function in with_array:
        start = bases[0] + function["offset"]
        own = [(at, text) for at, text in code if start <= at < start + function["size"]]
        calls_fail = any(re.match(rf"(bl|callq)\s+0x{fail:x}\b", text) for _, text in own)
        if not calls_fail or not reads_word_at(own, pointers):
            sys.exit(f"{function['name']} holds an array in its frame, which nothing guards")
    print("\n".join(sorted(function["name"] for function in with_array)))


main()
