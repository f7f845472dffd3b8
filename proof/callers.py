"""What the theorems about small entries share: callers' buffers, what was stored, the rows of chips."""

import z3

import setting
from executor import terms
from executor.ir import Int
from executor.machine import NotUnderstood

TOO_SHORT = "Length of uuid array is too small"
UNOPENED = "Failed to open HXL Library!!!!"


def inside_of(length):
    """Of a buffer that holds as many bytes as an argument of 32 bits with sign says."""
    def inside(offset, size):
        offset = terms.vector(offset, 64)
        room = z3.SignExt(32, length)
        return z3.And(length >= 0, z3.ULE(offset, room), z3.ULE(size, room - offset))
    return inside


def stored_bytes(outcome, region):
    """The bytes of a region that a call has stored to, each as often as it was."""
    return sorted(store.offset + i for store in outcome.state.stores if store.region is region
                  for i in range(store.bytes))


def word_at(machine, outcome, region, offset, size=4):
    type_ = type("Word", (), {"bytes": size, "kind": "int", "bits": 8 * size})
    return machine.word(outcome.state, region, offset, type_, "")


def messages(outcome):
    return [(m.function, m.format) for m in outcome.state.messages]


def row_count(module):
    """Rows of the table of chips, the two that are no chip among them."""
    table = module.variables.get(setting.CHIP_ROWS)
    if table is None or table.bytes % setting.ROW_BYTES or table.bytes <= 2 * setting.ROW_BYTES:
        raise NotUnderstood("the library has no table of chips")
    return table.bytes // setting.ROW_BYTES


def row_words(module, offset, size):
    """Of each row: what stands so many bytes from its start."""
    content = module.variables[setting.CHIP_ROWS].content
    words = []
    for row in range(row_count(module)):
        bytes_, word = content[row * setting.ROW_BYTES + offset]
        if bytes_ != size or not isinstance(word, Int):
            raise NotUnderstood(f"a row has no word of {size} bytes at {offset}")
        words.append(word.value)
    return words


def property_of_rows(module, name):
    offset, size, *_ = setting.PROPERTIES[name]
    return row_words(module, offset, size)


def is_one_of(number, values):
    """Runs of neighbours as bounds."""
    values, parts = sorted(values), []
    while values:
        end = 1
        while end < len(values) and values[end] == values[0] + end:
            end += 1
        low, high = values[0], values[end - 1]
        parts.append(number == low if low == high else z3.And(z3.UGE(number, low),
                                                              z3.ULE(number, high)))
        values = values[end:]
    return terms.disjunction(*parts)


def place_any_row(machine):
    """The identity of the GPU: a row of the table, or none yet; in the second case the call identifies
    it, as gpu_identification.py proves that it does: the row found is any, is returned, and is stored
    unless it is the one that means that nothing was found out. Returns the row that stands there, the
    memory and the conditions. What was found is in the notes of each path, under "found"."""
    row, chip_id = z3.BitVec("row", 32), z3.BitVec("chip id", 32)
    rows = row_count(machine.module)
    identity = machine.variable(setting.GPU_IDENTITY)
    memory = setting.Memory({identity: {0: (4, chip_id), 4: (4, row)}})

    def identify(machine, state, arguments):
        before = state.notes.get("found", ())
        found = z3.BitVec(f"row found by call {len(before) + 1}", 32)
        state.assume(z3.ULT(found, rows))
        state.notes["found"] = before + (found,)
        state.memory = state.memory.store(identity, 4, 4, found)
        return z3.ZeroExt(32, found)

    machine.instead[setting.IDENTIFY_GPU] = identify
    return row, memory, [z3.ULT(row, rows)]
