"""The initialisers of one level write the documented words and no others, for all arguments.

For korvel_init_single_level_surface and korvel_init_memory_layout, any chip row of families 5, 6 and
7 and the unknown chip, any width, height, depth, format, samples, mode and flags, any 32-bit number
of planes, and the `levels` of the record that 2 names:

1. A plane (lay_out_plane, any surface that these two describe): written are the image's seven words
   and flag_valid, the other four flag words where there is a flag buffer and only there, each once
   and with the values that the header gives: the flag buffer at the plane's offset, the image behind
   it, both together the slice pitch, an image its rows rounded up to the mode's and the base
   alignment. Nothing of the plane is loaded. At most one message, "Invalid width or height" of a
   negative size, or else "Unknown Chip ID" of a chip that is not supported. It divides by 0 exactly
   on a supported chip with a size that is not negative: on family 5 tiled elements of 0 bytes; on
   families 6 and 7 linear elements of 0 bytes and samples of block and packed formats; and on any
   chip for a flag buffer whose sample tile is not known.
2. The initialisers, of which korvel_init_memory_layout makes one level; the other for a record of no
   level, one, or more than 15, and on the unknown chip with tiling mode 1 of any number. `levels`,
   `alignment` and `size` are loaded once each, before anything is written, and nothing else of the
   record, nor anything that has been written. Refused arguments leave the message that the header
   names and every byte unwritten. Else the level words of `levels`
   levels are written, the planes' words by one call of lay_out_plane each, in order, with the sum of
   the bytes before as offset; the extra buffer's words with LAYOUT_FLAG_EXTRA and only then; extended
   and total_size; and, by korvel_init_memory_layout, the 24 bytes of the header and the record's
   words up to `levels` but reserved_60. So padding words, levels and planes beyond, LRZ words but the
   two valid ones stay as they were.
3. No access outside the record (5512 bytes, the blob 5536, a plane 88), no promise of the compiler
   broken.

--quick: on the unknown chip, 1 of plane 0 and, for korvel_init_single_level_surface with tiling mode 1 and a
record of no level, one, or more than 15, 2.

Assumed: the GPU is identified. Products of two unknowns are unknown functions. lay_out_plane is
replaced, in 2, by what 1 shows of it.

Not shown: 2 for records of 2 to 15 levels, but on the unknown chip with tiling mode 1.
"""

import z3

import setting
from executor import terms
from executor.memory import NULL, Region
from format_rows import BLOCK_COMPRESSED, BLOCK_FAMILY67, DEPTH_STENCIL, AnyFormat
from layouts import (EXTRA_SLICE_BYTES, EXTRA_WORDS, FAMILIES, FLAG_EXTENDED, FLAG_EXTRA, FLAG_UBWC,
                     FLAG_WORDS, IMAGE_WORDS, LEVEL_WORDS, LOG_OF_PLANES, READ_HEAD,
                     any_surface, chip_of_any_family, depth_without_sign, equal, has_flag, laid_planes, plane_by_name,
                     plane_code, plane_conditions, rounded_up, stored, times_depth, unknown,
                     wide)
from records import LAYOUT
from setting import PLANES

# The formats of which the header says that a flag buffer's sample tile is not known, and the
# compressed formats that are video formats: their tile goes by the format alone.
WITHOUT_TILE = {6: {619, 659, 658, 709, 710, 711}, 7: {619, 659}}
VIDEO = {103, 104, 107, 506, 614, 619, 620, 709, 710, 711} | set(range(654, 665))
FACTS = {
    "without tile on family 6": lambda id_: id_ in WITHOUT_TILE[6],
    "without tile on family 7": lambda id_: id_ in WITHOUT_TILE[7],
    "video": lambda id_: id_ in VIDEO,
}


def prove(proof):
    for plane in range(1 if proof.quick else PLANES):
        one_plane(proof, setting.unknown_chip(), 0, plane)
    if proof.quick:
        # In full: chips of the families, any number of levels, and both tiling modes.
        single_level(proof, setting.unknown_chip(), False, True, any_levels=False)
        return
    for family in FAMILIES:
        for plane in range(PLANES):
            one_plane(proof, setting.any_chip(family), family, plane)
    for chip in (chip_of_any_family(), setting.unknown_chip()):
        for flag_buffers in (False, True):
            unknown_one = terms.known(chip.words["ubwc"])
            if flag_buffers and unknown_one:
                continue  # the unknown chip compresses nothing
            for tiled in (True, False):
                single_level(proof, chip, flag_buffers, tiled, any_levels=unknown_one and tiled)
                memory_layout(proof, chip, flag_buffers, tiled)


# ---- one plane


def one_plane(proof, chip, family, plane):
    machine = proof.machine()
    memory = setting.place_chip(machine, chip)
    format_ = AnyFormat(machine, FACTS)
    surface, words, memory = any_surface(machine, memory, format_)
    out = Region("plane", LAYOUT.plane_bytes, 8, True, "any")
    size, offset = unknown("size", 64), unknown("offset", 64)
    flags = z3.Bool("surface.flag_buffers")
    compressed = (terms.compute("and", chip.words["ubwc"], format_.word("ubwc_group"), 8) != 0
                  if not terms.known(chip.words["ubwc"]) else z3.BoolVal(False))
    conditions = [format_.condition, *chip.conditions, z3.Implies(flags, compressed)]
    outcomes = proof.run(machine, plane_code(proof.module),
                         [setting.at(surface), size, plane, offset, setting.at(out)], memory,
                         conditions)
    negative = size & (1 << 63 | 1 << 31) != 0
    supported = terms.compare("ne", chip.words["supported"], 0, 8)
    faults = divides_by_zero(format_, words, plane, family,
                             terms.conjunction(terms.negation(negative), supported), flags)
    for outcome in outcomes:
        state, known = outcome.state, outcome.state.conditions
        proof.require("a plane's words are not loaded",
                      not any(a.region is out for a in state.loads), outcome.place)
        one_message(proof, state, negative, supported)
        if outcome.kind == "faults":
            proof.show("a division by 0 is one that the header names", known, faults, outcome.place)
            continue
        proof.show("no fault that the header names is left out", known, terms.negation(faults),
                   outcome.place)
        found = stored(state, out)
        with_flags = LAYOUT.plane["flag_offset"][0] in found
        proof.show("flag words exactly for a flag buffer", known,
                   flags if with_flags else z3.Not(flags), outcome.place)
        names = IMAGE_WORDS + (FLAG_WORDS if with_flags else ())
        expected = {LAYOUT.plane[n][0]: LAYOUT.plane[n][1] for n in names}
        proof.require("a plane's words are written once each, and no others",
                      {at: size for at, (size, _, times) in found.items() if times == 1} == expected
                      and len(found) == len(expected), outcome.place)
        written = {n: found[LAYOUT.plane[n][0]][1] for n in names}
        written["image_alignment"] = words["image_alignment"]
        properties = {"base_alignment": terms.extended(chip.words["base_alignment"], 16, 64, False)}
        for what, holds in plane_conditions(offset, written, with_flags, properties).items():
            proof.show(what, known, holds, outcome.place)
        proof.show("flag_valid", known, equal(written["flag_valid"], int(with_flags), 32))
        proof.show("image_element_size", known,
                   equal(written["image_element_size"], words["element_bytes"], 32))
        proof.show("the result is the slice pitch", known,
                   equal(outcome.value, written["image_slice_pitch"], 64), outcome.place)
    proof.show_claims(machine)
    if family:
        proof.find("a plane with a flag buffer", [*conditions, flags, terms.negation(faults)])
        proof.find("a plane that faults", [*conditions, faults])


def divides_by_zero(format_, words, plane, family, reaches_rules, flags):
    """As the header says under "Faults"."""
    samples = words["samples"]
    tiled = words["tiling_mode"] == 1
    if family == 0:
        return False
    def product_is_0(name):
        return z3.ZeroExt(24, format_.word(name)) * samples == 0
    if family == 5:
        rules = z3.And(tiled, product_is_0(f"plane_bytes_{plane}"))
        tiles = z3.BoolVal(False)  # 1 x 1 where none is known
    else:
        blocks = format_.word("rules") & BLOCK_FAMILY67 != 0
        rules = z3.And(z3.Not(tiled), blocks, product_is_0("substitute_bytes"))
        counted = z3.Or(*(samples == n for n in (1, 2, 4, 8)))
        tiles = z3.And(flags, z3.Or(format_.is_(f"without tile on family {family}"),
                                    z3.And(z3.Not(counted), z3.Not(format_.is_("video")))))
    return z3.Or(z3.And(reaches_rules, rules), tiles)


def one_message(proof, state, negative, supported):
    """At most one, of what the header lists."""
    known, messages = state.conditions, state.messages
    if not messages:
        proof.show("no message is left out", known,
                   terms.conjunction(terms.negation(negative), supported))
        return
    text = messages[0].format
    named = {"Invalid width or height: W = %d, H = %d": negative,
             "Unknown Chip ID %d": terms.conjunction(terms.negation(negative),
                                                     terms.negation(supported))}
    proof.require("a message that the header names", len(messages) == 1 and text in named
                  and messages[0].function == LOG_OF_PLANES)
    proof.show(f'"{text}" of what the header says', known, named.get(text, False))


# ---- the initialisers


def arguments(tiled):
    """Any, of the tiling mode 1 or of all others."""
    return {"width": unknown("width"), "height": unknown("height"), "depth": unknown("depth"),
            "format": unknown("format"), "samples": unknown("samples"),
            "tiling_mode": 1 if tiled else unknown("tiling_mode"),
            "flags": unknown("flags", 64), "planes": unknown("planes")}


def small_product(a, b):
    """Lemma: numbers below 2^15 have a product below 2^30."""
    small = z3.And(z3.ULT(a, 1 << 15), z3.ULT(b, 1 << 15))
    return z3.Implies(small, z3.And(z3.Not(terms.product_wraps(a, b, 32)),
                                    z3.Not(terms.signed_product_wraps(a, b, 32)),
                                    z3.ULT(terms.product(a, b, 32), 1 << 30)))


def is_mode(given, mode):
    return equal(given["tiling_mode"], mode, 32)


ASKED = ("rules", "bytes", "substitute_bytes", "block_width", "block_height", "ubwc_group",
         "has record", "is unknown")


def start(proof, chip, flag_buffers, tiled):
    machine = proof.machine(instead={plane_code(proof.module): plane_by_name(chip, flag_buffers)})
    machine.exhausted = 20_000_000
    memory = setting.place_chip(machine, chip)
    format_ = AnyFormat(machine, FACTS, apart=False, names=ASKED)
    given = arguments(tiled)
    compresses = False
    if not terms.known(chip.words["ubwc"]):
        compresses = z3.And(has_flag(given["flags"], FLAG_UBWC),
                            z3.ULT(given["format"], 722),
                            chip.words["ubwc"] & format_.word("ubwc_group") != 0)
    conditions = [format_.condition, format_.number_is_the_rows(), *chip.conditions,
                  *(small_product(format_.wide(name), given["samples"])
                    for name in ("bytes", "substitute_bytes"))]
    if not tiled:
        conditions.append(terms.negation(is_mode(given, 1)))
    if not terms.known(compresses):
        conditions.append(compresses if flag_buffers else z3.Not(compresses))
    return machine, memory, format_, given, conditions


def single_level(proof, chip, flag_buffers, tiled, any_levels):
    machine, memory, format_, given, conditions = start(proof, chip, flag_buffers, tiled)
    record = setting.record("record", LAYOUT.bytes, 8, True, True)
    if not any_levels:  # no level, one, or too many
        levels = unknown("record+68:4")
        conditions.append(z3.Or(z3.ULE(levels, 1), z3.UGT(levels, 15)))
    early = []
    machine.at_load = lambda state, access: early.append(access) if state.stores else None
    outcomes = proof.run(machine, "korvel_init_single_level_surface",
                         [setting.at(record), *given.values()], memory, conditions)
    proof.require("nothing is loaded once something is written", not early)
    head = {name: unknown(f"record+{at}:{size}", 8 * size)
            for name, (at, size) in READ_HEAD.items()}
    refused = 0
    for outcome in outcomes:
        state = outcome.state
        proof.require("the initialiser itself divides by nothing", outcome.kind == "returns",
                      outcome.place)
        loads = sorted((a.offset, a.bytes) for a in state.loads if a.region is record)
        proof.require("levels, alignment and size are loaded once each, and nothing else",
                      loads == sorted(READ_HEAD.values()))
        if state.messages:
            refused += 1
            refusal(proof, state, head["levels"], given["planes"])
            continue
        laid_out(proof, chip, format_, given, state, record, 0, head, flag_buffers)
    proof.require("levels and planes above their limits are refused", refused == 2)
    proof.show_claims(machine)
    for levels in (0, 1, 2, 15) if any_levels else (0, 1):
        proof.find(f"a record of {levels} levels", [*conditions, head["levels"] == levels])


def refusal(proof, state, levels, planes):
    """Too many levels, or else too many planes; nothing is written."""
    message, known = state.messages[0], state.conditions
    named = {"Invalid level count %u": (z3.UGT(levels, 15), levels),
             "Invalid plane count %u": (z3.And(z3.ULE(levels, 15), z3.UGT(planes, 3)), planes)}
    proof.require("a refusal leaves one message that the header names, and writes nothing",
                  len(state.messages) == 1 and message.format in named and not state.stores
                  and message.function == "korvel_init_single_level_surface")
    holds, number = named[message.format]
    proof.show("a refusal is of what its message says", known, holds)
    proof.show("the message says the number", known, equal(message.arguments[0], number, 32))


def laid_out(proof, chip, format_, given, state, record, base, head, flag_buffers):
    """What a record that is not refused holds afterwards: `base` is where it stands in its region."""
    known = state.conditions
    found = stored(state, record, base)
    levels = sum(1 for at in found if at >= LAYOUT.levels_at
                 and at < 5472 and (at - LAYOUT.levels_at) % LAYOUT.level_bytes == 0)
    laid = laid_planes(state)
    proof.require("all levels have as many planes", levels == 0 and not laid
                  or levels and len(laid) % levels == 0)
    planes = len(laid) // levels if levels else 0
    proof.show("as many levels as the record says", known, equal(head["levels"], levels, 32))
    if levels:
        proof.show("as many planes as are asked for", known, equal(given["planes"], planes, 32))
    else:
        proof.show("planes that a record can hold", known, z3.ULE(given["planes"], 3))

    extra = has_extra(given)
    with_extra = EXTRA_WORDS["extra_offset"][0] in found
    proof.show("extra words exactly for LAYOUT_FLAG_EXTRA", known,
               extra if with_extra else z3.Not(extra))
    expected = {LAYOUT.word((), "total_size")}
    expected |= {EXTRA_WORDS[n] for n in EXTRA_WORDS if with_extra or n in ("extra_valid", "extended")}
    for level in range(levels):
        expected |= {LAYOUT.word((level,), n) for n in LEVEL_WORDS}
        for plane in range(planes):
            expected |= {LAYOUT.word((level, plane), n)
                         for n in IMAGE_WORDS + (FLAG_WORDS if flag_buffers else ())}
    proof.require("the documented words are written once each, and no others",
                  {(at, size) for at, (size, _, times) in found.items() if at >= 0 and times == 1}
                  == expected and len([a for a in found if a >= 0]) == len(expected))

    def value(where, name):
        return found[LAYOUT.word(where, name)[0]][1]

    show_surface(proof, chip, format_, given, known, laid, flag_buffers)
    end, width, height = 0, at_least_1(given["width"]), at_least_1(given["height"])
    blocks = is_block_format(format_, known)
    proof.require("whether a format is in blocks is asked", blocks is not None or not laid)
    for level in range(levels):
        start_bytes = end
        for plane in range(planes):
            one = laid[planes * level + plane]
            proof.require("planes come in their order, each at its place",
                          one.plane == plane and one.out - base == LAYOUT.plane_at(level, plane))
            proof.show("a plane starts where those before it end", known, equal(one.offset, end, 64))
            first = laid[planes * level]
            proof.require("the planes of a level have one size",
                          terms.same(one.width, first.width) and terms.same(one.height, first.height))
            if blocks is False:
                proof.show("it is the level's", known, terms.conjunction(
                    equal(one.width, width, 32), equal(one.height, height, 32)))
            end = terms.compute("add", end, one.words["image_slice_pitch"], 64)
        of_level = terms.compute("sub", end, start_bytes, 64)
        known = [*known, depth_without_sign(given["depth"], of_level)]
        for name, holds in {"slices": given["depth"], "tiled": given["tiling_mode"],
                            "planes": given["planes"], "lrz_valid": 0, "lrz_fc_valid": 0}.items():
            proof.show(name, known, equal(value((level,), name), holds, 32))
        proof.show("size of a level", known,
                   equal(value((level,), "size"), times_depth(given["depth"], of_level), 64))
        width, height = (at_least_1(terms.compute("ashr", v, 1, 32)) for v in (width, height))

    known = [*known, depth_without_sign(given["depth"], end)]
    surface_bytes = times_depth(given["depth"], end)
    extra_bytes = times_depth(given["depth"], EXTRA_SLICE_BYTES) if with_extra else 0
    proof.show("extra_valid", known, equal(found[5472][1], int(with_extra), 32))
    if with_extra:
        for name, holds in {"extra_offset": surface_bytes, "extra_size": extra_bytes,
                            "extra_slice_pitch": EXTRA_SLICE_BYTES}.items():
            proof.show(name, known, equal(found[EXTRA_WORDS[name][0]][1], holds, 64))
    extended = z3.And(extra, has_flag(given["flags"], FLAG_EXTENDED))
    proof.show("extended", known, equal(found[5504][1], terms.choose(extended, 1, 0, 32), 32))
    whole = rounded_up(terms.compute("add", surface_bytes, extra_bytes, 64), wide(head["alignment"]),
                       64)
    proof.show("total_size", known,
               equal(value((), "total_size"), terms.compute("add", whole, wide(head["size"]), 64), 64))


def has_extra(given):
    return has_flag(given["flags"], FLAG_EXTRA)


def at_least_1(size):
    return terms.choose(terms.compare("sge", size, 1, 32), size, 1, 32)


def is_block_format(format_, known):
    """As the code has found out on a path; None where it has not asked."""
    ids = {c.get_id() for c in known if not isinstance(c, bool)}
    rules = format_.word("rules")
    asked = terms.compare("eq", terms.compute("and", rules, BLOCK_COMPRESSED, 8), 0, 8)
    return (False if asked.get_id() in ids else
            True if terms.negation(asked).get_id() in ids else None)


def show_surface(proof, chip, format_, given, known, laid, flag_buffers):
    """What every call of lay_out_plane is told of the surface."""
    for words in [one.surface for one in laid][:1]:
        tiled = is_mode(given, 1)
        alignment = terms.choose(tiled, chip.word("tiled_alignment"), chip.word("linear_alignment"), 32)
        bytes_ = terms.compute("mul", format_.wide("bytes"), given["samples"], 32)
        expected = {"samples": given["samples"], "tiling_mode": given["tiling_mode"],
                    "min_padded_row_bytes": chip.word("aux_alignment"), "tiling_allowed": 0,
                    "step_divisor": 1, "element_bytes": bytes_, "image_alignment": alignment}
        for name, value in expected.items():
            proof.show(f"{name} of the surface", known, equal(words[name], value, 32))
        proof.show("flag_buffers of the surface", known,
                   equal(words["flag_buffers"], int(flag_buffers), 8))
        extended = z3.And(has_flag(given["flags"], FLAG_EXTRA), has_flag(given["flags"], FLAG_EXTENDED))
        for name in ("padding_width", "padding_rows"):
            proof.show("no padding but of an extended surface", known,
                       z3.Or(extended, truth(equal(words[name], 0, 32))))
    for one in laid[1:]:
        proof.require("every plane is told the same of the surface",
                      all(_same_word(one.surface[n], laid[0].surface[n]) for n in one.surface))


def _same_word(a, b):
    return a is b or terms.same(a, b) if not hasattr(a, "region") else a == b


def truth(value):
    return terms.truth(value)


HEADER = {0: 0x00FACADE, 4: 1, 8: 5536, 12: 3, 16: 24, 20: 5512}


def memory_layout(proof, chip, flag_buffers, tiled):
    for null in (False, True):
        machine, memory, format_, given, conditions = start(proof, chip, flag_buffers, tiled)
        blob = Region("blob", setting.BLOB_BYTES, 8, True, "any")
        outcomes = proof.run(machine, "korvel_init_memory_layout",
                             [NULL if null else setting.at(blob), *given.values()], memory,
                             conditions)
        refused = refusals(format_, given)
        for outcome in outcomes:
            state, known = outcome.state, outcome.state.conditions
            proof.require("the initialiser itself divides by nothing", outcome.kind == "returns")
            proof.require("nothing of a blob is loaded", not state.loads)
            fails = terms.negation(equal(outcome.value, 0, 32))
            if state.messages:
                own = "validate_memory_layout_input_params"
                messages = [(m.function, m.format) for m in state.messages]
                proof.require("a refusal leaves its two messages and writes nothing",
                              len(messages) == 2 and not state.stores and messages[1] == (
                                  "korvel_init_memory_layout",
                                  "Memory Layout input parameter validation failed!"))
                text = messages[0][1]
                name = own if text != "Invalid plane count %u" else "korvel_init_memory_layout"
                proof.require("the first message comes under its name",
                              messages[0][0] == name and text in refused)
                proof.show(f'"{text}" of what the header says', known, refused.get(text, False))
                proof.show("a refusal fails", known, equal(outcome.value, 0xFFFFFFFF, 32))
                continue
            proof.show("what no message refuses passes", known,
                       z3.Not(z3.Or(*refused.values())))
            if null:
                proof.require("null is written to nowhere", not state.stores)
                proof.show("null fails", known, equal(outcome.value, 0xFFFFFFFF, 32))
                continue
            proof.show("it succeeds", known, terms.negation(fails))
            found = byte_cells(state, blob)
            for at, value in HEADER.items():
                proof.show("a word of the blob's header", known, equal(found[at], value, 32))
            identity(proof, chip, format_, given, state, known, blob, flag_buffers)
        proof.show_claims(machine)
        proof.find("arguments that pass", [*conditions, z3.Not(z3.Or(*refused.values()))])


def refusals(format_, given):
    """message -> when, the first that applies."""
    rules = format_.word("rules")
    listed = {
        "Invalid width, height, or depth: W = %d, H = %d, D = %d":
            z3.Or(*(given[n] <= 0 for n in ("width", "height", "depth"))),
        "Unknown Format %u": z3.Or(given["format"] == 0, z3.UGE(given["format"], 722)),
        "Invalid configuration, cannot support linear depth/stencil":
            z3.And(rules & DEPTH_STENCIL != 0, terms.truth(terms.negation(is_mode(given, 1)))),
        "Invalid input sample count %u": z3.Not(z3.Or(*(given["samples"] == n for n in (1, 2, 4, 8)))),
        "Invalid plane count %u": z3.UGT(given["planes"], 3),
    }
    made, before = {}, []
    for text, holds in listed.items():
        made[text] = z3.And(holds, *(z3.Not(b) for b in before))
        before.append(holds)
    return made


def byte_cells(state, region):
    """The 32-bit words that stand in the first bytes of a region."""
    cells = state.memory.cells(region)
    found = {}
    for at, (size, value) in cells.items():
        if size == 4:
            found[at] = value
        elif size == 8 and at < 72 + 24:
            found[at] = terms.truncated(value, 32)
            found[at + 4] = terms.truncated(terms.compute("lshr", value, 32, 64), 32)
    return found


def identity(proof, chip, format_, given, state, known, blob, flag_buffers):
    """The record's words up to `levels`, and the layout behind them."""
    words = byte_cells(state, blob)
    samples = given["samples"]
    linear = rounded_up(
        terms.compute("mul", format_.wide("substitute_bytes"), samples, 32),
        chip.word("pixel_alignment"), 32)
    alignment = terms.choose(is_mode(given, 1), chip.word("tiled_alignment"),
                             terms.choose(is_mode(given, 0), linear, 0, 32), 32)
    expected = {0: 0xDA7ACA5E, 4: 5512, 8: chip.word("uuid_0"), 12: chip.word("uuid_1"),
                16: chip.word("uuid_2"), 20: chip.word("uuid_3"), 24: 4, 28: 1, 32: 3, 36: 0,
                48: alignment, 52: given["format"], 56: samples, 64: 0, 68: 1}
    for at, value in expected.items():
        proof.show(f"the record's word at {at}", known, equal(words[24 + at], value, 32))
    written = {at + i for a in state.stores for at in [a.offset] for i in range(a.bytes)
               if a.offset < 24 + LAYOUT.levels_at}
    proof.require("up to the levels all but reserved_60 is written",
                  written == set(range(96)) - set(range(84, 88)))
    head = {"levels": 1, "alignment": words[24 + 48], "size": 5512}
    state.stores = [a for a in state.stores
                    if a.offset >= 24 + LAYOUT.levels_at or a.offset == 24 + 40]
    laid_out(proof, chip, format_, given, state, blob, 24, head, flag_buffers)
