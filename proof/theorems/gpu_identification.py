"""For every 32-bit chip id the identification finds the row whose chip id it is, or that of no chip.

The services answer anything. The id that counts is that of the device's record, 0 where the device
cannot be opened or queried.
Shown: a row of a chip is returned exactly where the id is its own; where no row has the id, the row of
an unknown chip after the three messages with the id, or, for the id 0xFFFFFFFF, the row that means
that nothing was found out; that one also where the services' library cannot be opened while no id is
known, after its own message first. The row is stored, and the id, unless nothing was found out. No
access goes beyond the table; the device and the library are closed as often as they were opened.
The search is run on the rows as they are.
Quick: ids up to that of the 20th chip.
"""

import z3

import setting
from callers import UNOPENED, is_one_of, messages, row_count, row_words, word_at
from counterexample import Call
from executor import terms

UNKNOWN = [(step, "Unknown HXL chip ID %u")
           for step in ("korvel_get_family_id", "korvel_get_chip_id", "korvel_get_rev_id")]
NOTHING = 0xFFFFFFFF
_QUICK_CHIPS = 20


def prove(proof):
    ids = row_words(proof.module, 16, 4)
    chips = ids[setting.ROW_OF_A_CHIP:]
    pixel = row_words(proof.module, setting.PROPERTIES["pixel_alignment"][0], 2)
    proof.require("no two rows have one id", len(set(chips)) == len(chips) == row_count(proof.module) - 2)
    opened, device, queried = (z3.BitVec(n, 32) for n in ("opened", "device", "queried"))
    told = z3.BitVec("the device's id", 32)
    machine = proof.machine(parts=[setting.IDENTIFY_GPU])

    def count(name, result):
        def service(machine, state, arguments):
            state.notes[name] = state.notes.get(name, ()) + (tuple(arguments),)
            return result
        return service

    def query(machine, state, arguments):
        record = arguments[1]
        machine.check_access(state, record, 32, 1, True, "hxl_device_getinfo")
        setting._fills(machine, state, record, 32, "device record")
        state.memory = state.memory.store(record.region, record.offset + 4, 4, told)
        return queried

    for name, result in (("hxl_library_open", opened), ("hxl_library_close", None),
                         ("hxl_device_open", device), ("hxl_device_close", None)):
        machine.services[name] = count(name, result)
    machine.services["hxl_device_getinfo"] = query
    identity = machine.variable(setting.GPU_IDENTITY)
    counted = z3.If(z3.And(device != 0, queried == 0), told, z3.BitVecVal(0, 32))

    def call(model):
        given = model.eval(counted, model_completion=True).as_long()
        # What shows of a row: its pixel alignment.
        right = pixel[ids.index(given, 2)] if given in chips else 1
        return Call("get_gpu_pixel_alignment", [], chip_id=given,
                    wrong=lambda result, _: "" if result == right else f"{right} is right")

    # Before the first identification nothing is known.
    most = sorted(chips)[_QUICK_CHIPS - 1] if proof.quick else NOTHING
    outcomes = proof.run(machine, setting.IDENTIFY_GPU, [], conditions=[z3.ULE(told, most)])
    proof.show_claims(machine, call)
    rows_seen = set()
    for outcome in outcomes:
        conditions, notes = outcome.state.conditions, outcome.state.notes
        said, row = messages(outcome), outcome.value
        proof.require("a row is a plain number", isinstance(row, int) and 0 <= row < row_count(proof.module))
        rows_seen.add(row)
        stored_id = word_at(machine, outcome, identity, 0)
        stored_row = word_at(machine, outcome, identity, 4)
        proof.require("the row that is returned is the one that is known",
                      terms.known(stored_row) and stored_row == row)
        if ("ReadGpuID_from_khxl", UNOPENED) in said:
            proof.show("the library cannot be opened", conditions, opened != 0, call=call)
            proof.require("then nothing is known", row == 0 and stored_id == NOTHING and
                          said == [("ReadGpuID_from_khxl", UNOPENED)] + UNKNOWN)
            proof.require("then nothing is closed or asked", "hxl_device_open" not in notes and
                          "hxl_library_close" not in notes)
            continue
        proof.show("the library is open", conditions, opened == 0, call=call)
        proof.show("the id is kept", conditions, terms.vector(stored_id, 32) == counted, call=call)
        proof.require("the library is closed", len(notes.get("hxl_library_close", ())) == 1)
        proof.show("an open device is closed, no other", conditions,
                   (device != 0) if "hxl_device_close" in notes else (device == 0), call=call)
        if "hxl_device_close" in notes:
            closed, = notes["hxl_device_close"]
            proof.require("it is the one that was opened", closed[0].eq(device))
        if row >= setting.ROW_OF_A_CHIP:
            proof.show(f"row {row} has the id", conditions, counted == ids[row], call=call)
            proof.require("a known chip needs no message", said == [])
            continue
        proof.show("no row has the id", conditions, z3.Not(is_one_of(counted, chips)), call=call)
        proof.show("the device tells nothing" if row == 0 else "the device tells an id", conditions,
                   (counted == NOTHING) if row == 0 else (counted != NOTHING), call=call)
        proof.require("three messages", said == UNKNOWN)
        for message in outcome.state.messages:
            proof.show("a message tells the id", conditions,
                       terms.vector(message.arguments[0], 32) == counted, call=call)
    proof.require("every row can be found", rows_seen == {
        row for row in range(row_count(proof.module))
        if row < setting.ROW_OF_A_CHIP or ids[row] <= most})
    for outcome in outcomes:
        if outcome.value < 2:
            proof.find(f"row {outcome.value} is found", outcome.state.conditions)
