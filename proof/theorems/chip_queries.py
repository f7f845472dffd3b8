"""The entries that tell a property of the chip or the size of a record tell what the header says.

For every row of the table, the unknown chip's and that of a GPU not yet identified among them, for all
arguments and all that the services may answer.
Shown: get_gpu_pixel_alignment returns its property of the row, 64 or 1. get_slice_pitch_alignment
returns the least common multiple of the two properties of the row, 0 where one of them is 0, and
divides by 0 exactly where both are, which linear mode alone comes to. It identifies at most twice.
isSecureContextSupportedByGpu returns the device's word, 0 and one message where the library cannot be
opened, 0 where the device cannot be opened or queried; it asks with a record of zeros but for its own
size, and closes what it has opened. korvel_get_metadata_blob_size returns 5536.
korvel_get_aligned_gpu_buffer_size returns 0 for null; else it loads record_offset and the record's
total_size and size, each once, inside of the 24 and the 48 bytes that the header asks for, and returns
their difference.
Excepted: where the first identification of get_slice_pitch_alignment finds out nothing and the second
one a chip, the mode's property is the unknown chip's and the base alignment the chip's.
"""

import math

import z3

import setting
from callers import UNOPENED, is_one_of, messages, place_any_row, property_of_rows, row_count, row_words
from counterexample import Call
from executor import terms
from executor.memory import NULL


def prove(proof):
    pixel_alignment(proof)
    for tiled in (True, False):
        slice_pitch_alignment(proof, tiled)
    secure_context(proof)
    blob_size(proof)
    buffer_size(proof)


def call_on_row(proof, export, row, arguments, right):
    """On the chip of a row, before which nothing was asked. `right` gives a row's result."""
    ids = row_words(proof.module, 16, 4)

    def call(model):
        number = max(model.eval(row, model_completion=True).as_long(), 1)
        return Call(export, arguments(model), chip_id=ids[number], wrong=lambda result, _:
                    "" if result == right(number) else f"the header says {right(number)}")
    return call


def pixel_alignment(proof):
    machine = proof.machine()
    row, memory, conditions = place_any_row(machine)
    words = property_of_rows(proof.module, "pixel_alignment")
    proof.require("64 or 1", set(words) == {64, 1})

    def call_on(used):
        return call_on_row(proof, "get_gpu_pixel_alignment", used, lambda model: [],
                           words.__getitem__)

    outcomes = proof.run(machine, "get_gpu_pixel_alignment", [], memory, conditions)
    proof.show_claims(machine, call_on(row))
    for outcome in outcomes:
        used = outcome.state.notes.get("found", (row,))[0]
        proof.show("the row's pixel alignment", outcome.state.conditions,
                   is_one_of(used, [i for i, w in enumerate(words) if w == outcome.value]),
                   call=call_on(used))
        proof.find(f"a pixel alignment of {outcome.value}", outcome.state.conditions)
    proof.require("both values and both ways to the row", len(outcomes) == 4)


def slice_pitch_alignment(proof, tiled):
    machine = proof.machine()
    row, memory, conditions = place_any_row(machine)
    base = property_of_rows(proof.module, "base_alignment")
    own = property_of_rows(proof.module, "tiled_alignment" if tiled else "linear_alignment")
    mode = z3.BitVec("tiling_mode", 32)

    def expected(own_alignment, base_alignment):
        if own_alignment == 0 and base_alignment == 0:
            return "faults"
        return math.lcm(own_alignment, base_alignment)

    def call_on(used):
        return call_on_row(
            proof, "get_slice_pitch_alignment", used,
            lambda model: [1 if tiled else model.eval(mode, model_completion=True).as_long()],
            lambda number: expected(own[number], base[number]))

    given = 1 if tiled else mode
    if not tiled:
        conditions = conditions + [z3.Not(mode == 1)]
    outcomes = proof.run(machine, "get_slice_pitch_alignment", [given], memory, conditions)
    proof.show_claims(machine, call_on(row))
    seen = set()
    for outcome in outcomes:
        found = outcome.state.notes.get("found", ())
        ended = "faults" if outcome.kind == "faults" else outcome.value
        seen.add(ended)
        name = f"{'tiled' if tiled else 'linear'}: {ended}"
        if len(found) < 2:
            used = found[0] if found else row
            fits = [i for i in range(row_count(proof.module)) if expected(own[i], base[i]) == ended]
        else:
            used = found[1]
            fits = [i for i in range(row_count(proof.module)) if expected(own[0], base[i]) == ended]
            proof.show("a second question follows none that was answered", outcome.state.conditions,
                       found[0] == 0, call=call_on(row))
            proof.require("no third question", len(found) == 2)
        proof.show(name, outcome.state.conditions, is_one_of(used, fits), call=call_on(used))
        proof.find(name, outcome.state.conditions)
    proof.require("all ends exist", seen == ({4096, 0} if tiled else {4096, 0, "faults"}))
    answered_late = [o for o in outcomes if len(o.state.notes.get("found", ())) == 2]
    for outcome in answered_late[:1]:
        proof.find("a chip that the second question finds", outcome.state.conditions + [
            z3.UGE(outcome.state.notes["found"][1], 2)])
    proof.require("the exception exists", answered_late)


def secure_context(proof):
    machine = proof.machine()
    opened, device, queried = (z3.BitVec(n, 32) for n in ("opened", "device", "queried"))
    told = z3.BitVec("the device's word", 32)
    asked_with = []

    def note(name, result):
        def service(machine, state, arguments):
            state.notes[name] = state.notes.get(name, ()) + (tuple(arguments),)
            return result
        return service

    def query(machine, state, arguments):
        handle, record = arguments
        machine.check_access(state, record, 0x118, 1, True, "hxl_device_getinfo_ext")
        cells = state.memory.cells(record.region)
        asked_with.append((handle, [machine.byte(record.region, i, cells) for i in range(0x118)]))
        setting._fills(machine, state, record, 0x118, "extended record")
        state.memory = state.memory.store(record.region, 0x80, 4, told)
        return queried

    for name, result in (("hxl_library_open", opened), ("hxl_library_close", None),
                         ("hxl_device_open", device), ("hxl_device_close", None)):
        machine.services[name] = note(name, result)
    machine.services["hxl_device_getinfo_ext"] = query
    right = z3.If(z3.And(opened == 0, device != 0, queried == 0), told, z3.BitVecVal(0, 32))
    outcomes = proof.run(machine, "isSecureContextSupportedByGpu", [])
    proof.show_claims(machine)
    for outcome in outcomes:
        conditions, notes = outcome.state.conditions, outcome.state.notes
        failed = messages(outcome) == [("isSecureContextSupportedByGpu", UNOPENED)]
        proof.require("one message or none", failed or messages(outcome) == [])
        proof.show("the message says that the library cannot be opened", conditions,
                   (opened != 0) if failed else (opened == 0))
        proof.show("the device's word, or 0", conditions, terms.vector(outcome.value, 32) == right)
        proof.require("an open library is closed once",
                      len(notes.get("hxl_library_close", ())) == (0 if failed else 1))
        if not failed:
            closed = [c[0] for c in notes.get("hxl_device_close", ())]
            proof.show("an open device is closed", conditions,
                       (device != 0) if closed else (device == 0))
            proof.require("it is that device", all(c.eq(device) for c in closed) and len(closed) < 2)
        proof.find("an end", conditions)
    proof.require("three ends", len(outcomes) == 3)
    size = (0x118).to_bytes(4, "little")
    proof.require("the device is asked with zeros and the record's size", len(asked_with) == 1 and
                  asked_with[0][1] == list(bytes(0x88) + size + bytes(0x118 - 0x88 - 4)))
    proof.find("a secure context", [right != 0])


def blob_size(proof):
    machine = proof.machine()
    outcome, = proof.run(machine, "korvel_get_metadata_blob_size", [])
    proof.require("5536 bytes", outcome.value == 5536 == setting.BLOB_BYTES)


def buffer_size(proof):
    machine = proof.machine()
    outcome, = proof.run(machine, "korvel_get_aligned_gpu_buffer_size", [NULL])
    proof.require("0 for null", outcome.value == 0 and outcome.state.loads == [])
    record_offset = z3.ZeroExt(32, z3.BitVec("blob+16:4", 32))
    blob = setting.record("blob", 0)

    def inside(offset, size):
        """In the header, or in the 48 bytes from record_offset on."""
        offset = terms.vector(offset, 64)
        from_record = offset - record_offset
        return z3.Or(z3.And(z3.ULE(offset, 24), z3.ULE(offset + size, 24)),
                     z3.And(z3.ULE(record_offset, offset), z3.ULE(from_record, 48),
                            z3.ULE(from_record + size, 48)))

    blob.inside = inside

    def call(model):
        data = bytearray(24 + 48)
        data[16:20] = (24).to_bytes(4, "little")
        data[28:32] = (7).to_bytes(4, "little")
        data[64:72] = (5 << 32 | 3).to_bytes(8, "little")
        right = (5 << 32 | 3) - 7
        return Call("korvel_get_aligned_gpu_buffer_size", [bytes(data)], result="c_uint64",
                    wrong=lambda result, _: "" if result == right else f"{right:#x} is right")

    outcome, = proof.run(machine, "korvel_get_aligned_gpu_buffer_size", [setting.at(blob)])
    proof.show_claims(machine, call)
    loads = outcome.state.loads
    proof.require("three words are loaded, none of them again",
                  len(loads) == 3 and all(load.volatile for load in loads) and
                  outcome.state.stores == [])
    if len(loads) != 3:
        return
    offset, total, size = loads
    proof.require("record_offset first", offset.offset == 16 and offset.bytes == 4)
    if total.bytes == 4:
        total, size = size, total
    conditions = outcome.state.conditions
    proof.require("of 8 and of 4 bytes", total.bytes == 8 and size.bytes == 4)
    proof.show("total_size", conditions, total.offset == record_offset + 40, call=call)
    proof.show("size", conditions, size.offset == record_offset + 4, call=call)
    proof.show("their difference", conditions,
               outcome.value == total.value - z3.ZeroExt(32, size.value), call=call)
