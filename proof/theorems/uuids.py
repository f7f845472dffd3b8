"""The UUID entries store exactly their 16 bytes, print exactly what is there, or refuse.

For all arguments. A caller's array has as many bytes as its length says, whatever that is; a UUID that
is handed over has 16.
Shown, of get_device_uuid, get_override_device_uuid and get_driver_uuid: 0, no message and each of
bytes 0 to 15 stored once, the four words as the header names them, where out_length is 16 or more;
-1, the one message and no store where it is less.
Of uuid_to_str: -1 after the one message, with the length, and no access, where uuid_length is not 16;
else the 16 bytes are handed to os_snprintf in their order with the header's form, with room for
text_size bytes, 0 for a negative one, and the result is 0 exactly where what os_snprintf returns is at
least 0 and below text_size.
Assumed: os_snprintf stores to no more bytes than it is given room for, and returns any number.
"""

import z3

import setting
from callers import TOO_SHORT, inside_of, messages, stored_bytes, word_at
from counterexample import Call
from executor import terms

FORM = "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x"


def prove(proof):
    family, model, revision = (z3.BitVec(n, 32) for n in ("family_id", "model_code", "rev_id"))
    word_0 = z3.BitVec("word_0", 16)
    stores_uuid(proof, "get_device_uuid", [family, model, revision],
                [0x5A52, family, model, revision])
    stores_uuid(proof, "get_override_device_uuid", [family, model, revision, word_0],
                [z3.ZeroExt(16, word_0), family, model, revision])
    stores_uuid(proof, "get_driver_uuid", [], [4, 1, 3, 0])
    prints_uuid(proof)


def stores_uuid(proof, export, more, words):
    machine = proof.machine()
    length = z3.BitVec("out_length", 32)
    out = setting.output("out", 0, 1)
    out.inside = inside_of(length)

    def call(model):
        numbers = [model.eval(a, model_completion=True) for a in [length, *more]]
        given, *others = [n.as_long() for n in numbers]
        expected = b"".join(model.eval(terms.vector(w, 32), model_completion=True).as_long()
                            .to_bytes(4, "little") for w in words)
        signed = given - (1 << 32) if given >> 31 else given
        room = b"\xA5" * 32

        def wrong(result, buffers):
            if signed < 16:
                fine = result == 0xFFFFFFFF and buffers[0] == room
            else:
                fine = result == 0 and buffers[0] == expected + room[16:]
            return "" if fine else "the header says another result or other bytes"
        return Call(export, [room, given, *others], wrong=wrong)

    outcomes = proof.run(machine, export, [setting.at(out), length, *more])
    proof.show_claims(machine, call)
    for outcome in outcomes:
        conditions = outcome.state.conditions
        stored = stored_bytes(outcome, out)
        if outcome.value == 0:
            proof.show(f"{export} stores where there is room", conditions, length >= 16, call=call)
            proof.require(f"{export} stores bytes 0 to 15, each once", stored == list(range(16)))
            proof.require(f"{export} says nothing", messages(outcome) == [])
            for place, word in enumerate(words):
                proof.show(f"{export}: word {place}", conditions,
                           terms.vector(word_at(machine, outcome, out, 4 * place), 32) == word,
                           call=call)
        else:
            proof.show(f"{export} refuses with -1", conditions,
                       terms.compare("eq", outcome.value, 0xFFFFFFFF, 32), call=call)
            proof.show(f"{export} refuses what is too short alone", conditions, length < 16, call=call)
            proof.require(f"{export} stores nothing", stored == [])
            proof.require(f"{export} says that it is too short",
                          messages(outcome) == [(export, TOO_SHORT)])
        proof.find(f"{export} returns {outcome.value}", conditions)
    proof.require(f"{export} has two ends", sorted(o.value == 0 for o in outcomes) == [False, True])


def prints_uuid(proof):
    machine = proof.machine()
    text_size, uuid_length = z3.BitVec("text_size", 32), z3.BitVec("uuid_length", 32)
    text = setting.output("text", 0, 1)
    text.inside = inside_of(text_size)
    uuid = setting.record("uuid", 16, shared=False)
    printed = z3.BitVec("what os_snprintf returns", 32)

    def print_(machine, state, arguments):
        state.notes["printed"] = state.notes.get("printed", ()) + (tuple(arguments),)
        return printed

    def call(model):
        size, length = (model.eval(n, model_completion=True).as_long()
                        for n in (text_size, uuid_length))
        signed = size - (1 << 32) if size >> 31 else size
        room = b"\xA5" * max(min(signed, 64), 1)
        fits = length == 16 and signed >= 37

        def wrong(result, buffers):
            right = result == (0 if fits else 0xFFFFFFFF)
            untouched = (length == 16 and signed > 0) or buffers[0] == room
            return "" if right and untouched else "the header says another result, or no store"
        return Call("uuid_to_str", [room, size, bytes(range(16)), length], wrong=wrong)

    machine.services["os_snprintf"] = print_
    outcomes = proof.run(machine, "uuid_to_str",
                         [setting.at(text), text_size, setting.at(uuid), uuid_length])
    proof.show_claims(machine, call)
    seen = set()
    for outcome in outcomes:
        conditions, calls = outcome.state.conditions, outcome.state.notes.get("printed", ())
        value = terms.vector(outcome.value, 32)
        proof.require("nothing but os_snprintf stores", outcome.state.stores == [])
        seen.add(len(calls))
        if not calls:
            proof.show("only a length that is not 16 is refused", conditions, uuid_length != 16,
                       call=call)
            proof.show("a refusal is -1", conditions, value == 0xFFFFFFFF, call=call)
            proof.require("a refusal reads nothing", outcome.state.loads == [])
            proof.require("a refusal says why",
                          messages(outcome) == [("uuid_to_str", "Bad uuid length %u")] and
                          outcome.state.messages[0].arguments[0].eq(uuid_length))
            continue
        proof.require("the text is printed once, without a message",
                      len(calls) == 1 and messages(outcome) == [])
        to, room, form, *parts = calls[0]
        proof.require("it is printed to the caller's text", to.region is text and to.offset == 0)
        proof.require("it is printed in the header's form", machine.text_at(form) == FORM)
        proof.require("16 bytes are printed", len(parts) == 16)
        proof.require("each byte is read once", [(a.offset, a.bytes) for a in outcome.state.loads] ==
                      [(i, 1) for i in range(16)])
        proof.show("a length of 16 alone is accepted", conditions, uuid_length == 16, call=call)
        for place, part in enumerate(parts):
            proof.show(f"byte {place} stands in its place", conditions,
                       part == z3.ZeroExt(24, z3.BitVec(f"uuid+{place}:1", 8)), call=call)
        proof.show("there is room for text_size bytes", conditions,
                   terms.vector(room, 64) == z3.If(text_size > 0, z3.SignExt(32, text_size), 0),
                   call=call)
        proof.show("0 where 36 characters and their end fit, else -1", conditions + [printed == 36],
                   value == z3.If(text_size > 36, z3.BitVecVal(0, 32),
                                  z3.BitVecVal(0xFFFFFFFF, 32)), call=call)
        proof.show("0 where all of it fits, else -1", conditions,
                   value == z3.If(z3.And(printed >= 0, printed < text_size), z3.BitVecVal(0, 32),
                                  z3.BitVecVal(0xFFFFFFFF, 32)), call=call)
        proof.find("a text that fits", conditions + [value == 0])
        proof.find("a text that does not", conditions + [value != 0])
    proof.require("both ends exist", seen == {0, 1})
