"""korvel_init_multi_level_surface writes the documented words and no others, for all arguments.

For any chip row of families 5, 6 and 7 and the unknown chip, any width, height, depth, format, samples,
mode and flags, records of 0, 1, 2, 3, 6 and 15 levels, 0 to 3 planes, and those that are refused:

1. `levels`, `alignment` and `size` are loaded once each, before anything is written; on a tiled surface
   of one plane without flag buffers flag_size of every level as well, once; nothing else of the
   record, so nothing that has been written. More than 15 levels, or else more than 3 planes, leave
   the one message that the header names and every byte unwritten.
2. Written are, for every plane of every level, the image's seven words and flag_valid; flag_size and
   flag_pitch where there are flag buffers; flag_offset and flag_slice_pitch with flag buffers of
   several planes, and on a tiled surface of one plane; each once. The level's words are written once
   for each plane, so that those of the last one stay; without planes the two LRZ words alone. Extra
   words exactly with LAYOUT_FLAG_EXTRA; extended and total_size always. No others, so padding, levels
   and planes beyond stay as they were.
3. Their values, each by those before it: flag buffers of a tiled surface of one plane from 0 on;
   images from the next level_offset_alignment on, one behind the other; a flag buffer of several
   planes in front of its image; pitch, image size in 32 bits, slice pitches, a level's size, the next
   plane behind all slices of this one, the extra buffer, total_size.
4. Sizing in whole tiles (a plane's first step on a supported chip of families 6 and 7 where it is
   tiled, not of block formats and not extended): level by level half the texels, an image the texels
   rounded up to the plane's tile, a power of two. A flag buffer covers the least power of two that is
   not below the surface's own size; its tiles, halved level by level and at least 1 and
   min_level_extent, are the pitch and the rows, whose 32-bit product is the size.
5. It divides by nothing but a flag buffer's tile there; no message comes from there.
6. No access outside the record's 5512 bytes or the code's own arrays, no promise of the compiler
   broken.

Sizing by the rules (all other surfaces) is replaced, in 1 to 3, by what it leaves: any width and
height of each image, any flag_size and flag_pitch. Rounds of that loop show that it leaves these and
nothing else, so far on the unknown chip alone: chains_are_sized_level_by_level. On known chips that is
assumed here: of families 6 and 7 for linear surfaces, block formats and extended surfaces, of family 5
for all.

--quick: tiled surfaces: those of the unknown chip with 0 and 1 levels and planes, and those with flag
buffers of all others with 2 levels and 1 and 2 planes.

Assumed: the GPU is identified. Products of two unknowns are unknown functions; with a factor 0 they
are 0. A row of the table of tiles is any of powers of two up to 2^14; all of its words are some.

Not shown: that the tile of an image or of a flag buffer is the one of the format; where exactly it
divides by 0; records of other numbers of levels.
"""

import z3

import chains
import setting
from executor import terms
from layouts import (EXTRA_SLICE_BYTES, EXTRA_WORDS, FLAG_EXTENDED, FLAG_EXTRA, READ_HEAD,
                     chip_of_any_family, equal, has_flag, rounded_up, stored,
                     times_depth, wide)
from records import LAYOUT

ALL_LEVELS, ALL_PLANES = (0, 1, 2, 3, 6, 15), range(4)


def prove(proof):
    if proof.quick:
        one_kind(proof, chains.Case(setting.unknown_chip(), True, "not asked"), (0, 1), (0, 1))
        one_kind(proof, chains.Case(chip_of_any_family(), True, "made"), (2,), (1, 2))
        return
    for chip in (setting.unknown_chip(), chip_of_any_family()):
        for tiled in (True, False):
            for flags in ("not asked", "not compressed", "made"):
                if flags == "made" and terms.known(chip.words["ubwc"]):
                    continue  # the unknown chip compresses nothing
                one_kind(proof, chains.Case(chip, tiled, flags), ALL_LEVELS, ALL_PLANES)


def one_kind(proof, case, all_levels, all_planes):
    call = chains.Call(proof, case)
    outcomes, starts = call.begin()
    proof.require("levels and planes above their limits are refused", len(outcomes) == 2)
    for outcome in outcomes:
        refusal(proof, call, outcome)
    for start in starts:
        head_alone(proof, call, start)
    proof.require("some are sized by the rules", any(not chains.whole_tiles(s) for s in starts))
    tiles = case.tiled and not terms.known(case.chip.words["ubwc"])
    proof.require("whole tiles exactly of tiled surfaces on known chips",
                  any(chains.whole_tiles(s) for s in starts) == tiles)
    for levels in all_levels:
        for planes in all_planes:
            laid = 0
            for start in starts:
                laid += laid_out(proof, call, start, levels, planes)
            proof.require("there is an extra buffer and there is none", laid >= 2)
            proof.show_claims(call.machine)
    proof.find("a record of 15 levels and 3 planes",
               [*call.conditions, call.head["levels"] == 15, call.given["planes"] == 3])


def refusal(proof, call, outcome):
    """Too many levels, or else too many planes; nothing is written."""
    state, levels, planes = outcome.state, call.head["levels"], call.given["planes"]
    named = {"Invalid level count %u": (z3.UGT(levels, 15), levels),
             "Invalid plane count %u": (z3.And(z3.ULE(levels, 15), z3.UGT(planes, 3)), planes)}
    proof.require("a refusal leaves one message that the header names, and writes nothing",
                  outcome.kind == "returns" and len(state.messages) == 1 and not state.stores and
                  state.messages[0].format in named and state.messages[0].function == chains.EXPORT)
    message = state.messages[0]
    holds, number = named[message.format]
    proof.show("a refusal is of what its message says", state.conditions, holds)
    proof.show("the message says the number", state.conditions,
               equal(message.arguments[0], number, 32))
    head_alone(proof, call, outcome.state)


def head_alone(proof, call, state):
    loads = sorted((a.offset, a.bytes) for a in state.loads if a.region is call.record)
    proof.require("levels, alignment and size are loaded once each, and nothing else",
                  loads == sorted(READ_HEAD.values()) and not state.stores and
                  state.memory.cells(call.record) == {})
    limits = [z3.ULE(call.head["levels"], 15), z3.ULE(call.given["planes"], 3)]
    if not state.messages:
        proof.show("none is above the limits", state.conditions, z3.And(*limits))


def laid_out(proof, call, start, levels, planes):
    """How many paths are laid out."""
    laid = 0
    for outcome in call.place(start, levels, planes):
        state = outcome.state
        proof.require("no message comes behind the sizing by the rules", not state.messages)
        if outcome.kind == "faults":
            proof.require("only whole tiles with flag buffers divide by what may be 0",
                          chains.whole_tiles(start) and call.case.flag_buffers and levels and planes)
            continue
        laid += 1
        accesses(proof, call, outcome)
        values(proof, call, outcome)
    read = {(a.offset, a.bytes) for a in call.late}
    proof.require("nothing but flag sizes is loaded once something is written",
                  read <= {LAYOUT.word((level, 0), "flag_size") for level in range(levels)})
    return laid


def accesses(proof, call, outcome):
    state, levels, planes, case = outcome.state, call.levels, call.planes, call.case
    found = stored(state, call.record)
    reads = sorted(READ_HEAD.values())
    counted = call.placement == "gathered" and planes == 1 and not case.flag_buffers
    if counted:
        reads += [LAYOUT.word((level, 0), "flag_size") for level in range(levels)]
    proof.require("the documented words are loaded once each, and no others",
                  sorted((a.offset, a.bytes) for a in state.loads) == sorted(reads)
                  and all(a.region is call.record for a in state.loads), outcome.place)
    extra = has_flag(call.given["flags"], FLAG_EXTRA)
    with_extra = EXTRA_WORDS["extra_offset"][0] in found
    proof.show("extra words exactly for LAYOUT_FLAG_EXTRA", state.conditions,
               extra if with_extra else z3.Not(extra))
    expected = {LAYOUT.word((), "total_size"): 1}
    for name in EXTRA_WORDS:
        if with_extra or name in ("extra_valid", "extended"):
            expected[EXTRA_WORDS[name]] = 1
    for level in range(levels):
        for name in chains.LEVEL_WORDS if planes else ("lrz_valid", "lrz_fc_valid"):
            expected[LAYOUT.word((level,), name)] = max(planes, 1)
        for plane in range(planes):
            names = chains.IMAGE_WORDS
            if case.flag_buffers:
                names += chains.SIZE_WORDS
            if call.placement != "none":
                names += chains.PLACE_WORDS
            expected |= {LAYOUT.word((level, plane), n): 1 for n in names}
    proof.require("the documented words are written so often as documented, and no others",
                  {(at, size): times for at, (size, _, times) in found.items()} == expected,
                  outcome.place)


def values(proof, call, outcome):
    state, levels, planes = outcome.state, call.levels, call.planes
    known, given = list(state.conditions), call.given
    found = stored(state, call.record)
    depth = given["depth"]

    def actual(where, name):
        at, bytes_ = LAYOUT.word(where, name)
        return found[at][1] if at in found else z3.BitVec(call.record.named(at, bytes_), 8 * bytes_)

    words = chains.StandIns(actual)
    relations = chains.Relations(call, words.word)
    for what, where, name, expected in relations.all():
        bits = 8 * LAYOUT.word(where, name)[1]
        value = words.seen(actual(where, name), expected)
        lemmas = [*relations.lemmas, *chains.in_either_order(expected)]
        proof.show(what, [*call.conditions, *lemmas],
                   chains.as_differences(equal(value, expected, bits)),
                   f"{name} of {where}")
    for level in range(levels if planes else 0):
        for name, value in {"slices": depth, "tiled": given["tiling_mode"], "planes": planes}.items():
            proof.show(name, known, equal(actual((level,), name), value, 32))
        for plane in range(planes):
            proof.show("flag_valid", known, equal(actual((level, plane), "flag_valid"),
                                                  int(call.case.flag_buffers), 32))
    for level in range(levels):
        for name in ("lrz_valid", "lrz_fc_valid"):
            proof.show(name, known, equal(actual((level,), name), 0, 32))
    the_end(proof, call, words, found, known, relations)


def the_end(proof, call, words, found, known, relations):
    surface_bytes, lemmas = relations.end, relations.lemmas
    depth, flags = call.given["depth"], call.given["flags"]
    with_extra = EXTRA_WORDS["extra_offset"][0] in found
    extra_bytes = times_depth(depth, EXTRA_SLICE_BYTES) if with_extra else 0
    proof.show("extra_valid", known, equal(found[EXTRA_WORDS["extra_valid"][0]][1], int(with_extra), 32))
    if with_extra:
        for name, value in {"extra_offset": surface_bytes, "extra_size": extra_bytes,
                            "extra_slice_pitch": EXTRA_SLICE_BYTES}.items():
            actual = words.seen(found[EXTRA_WORDS[name][0]][1], value)
            proof.show(name, [*call.conditions, *lemmas, *chains.in_either_order(value)],
                       chains.as_differences(equal(actual, value, 64)))
    extended = z3.And(has_flag(flags, FLAG_EXTRA), has_flag(flags, FLAG_EXTENDED))
    proof.show("extended", known, equal(found[EXTRA_WORDS["extended"][0]][1],
                                        terms.choose(extended, 1, 0, 32), 32))
    whole = rounded_up(terms.compute("add", surface_bytes, extra_bytes, 64),
                       wide(call.head["alignment"]), 64)
    total = terms.compute("add", whole, wide(call.head["size"]), 64)
    actual = words.seen(found[LAYOUT.word((), "total_size")[0]][1], total)
    proof.show("total_size", [*call.conditions, *lemmas, *chains.in_either_order(total)],
               chains.as_differences(equal(actual, total, 64)))
