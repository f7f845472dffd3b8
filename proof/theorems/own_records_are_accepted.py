"""What korvel_init_memory_layout writes is accepted, but for listed exceptions.

The record is that of layouts_write_what_they_document: one level, 1 to 3 planes that follow each other
(the relations of layouts.plane_conditions), all with flag buffers or none, an extra buffer or none,
total_size rounded up to `alignment`, the UUIDs those that the caller of the validator gives. All that
these relations leave open is unknown: sizes, pitches, element bytes, both alignments.

Assumed   depth is 1 or more, samples 1, 2, 4 or 8, the format below 722: the initialiser refuses
          others. `alignment` is at most 4096, the mode's alignment 0 or a power of two up to 4096,
          the base alignment 0 or a power of two. Of the rules: validators_follow_the_rules, by which
          the validator refuses a level exactly for a broken rule.
Shown     1. the header: on the validator's code, any such record below 2^48 bytes, with any
             `alignment` that is a power of two, passes, and one level is counted; with another
             `alignment` it is refused.
          2. the level: on the rules. Without an exception no rule is broken. Exception 2 always
             breaks one; with at most 2048 slices so does each of 3 to 7, whatever else is in the
             record, and 8 with one plane. The surface is below 2^48 bytes.
          3. an image has fewer bytes than its rows, as the validator counts them, exactly where they
             are not 0 and rounding them up to the mode's alignment leaves 32 bits, or this alignment
             or the base alignment is 0. A product of pitch and rows that wraps is no exception: both
             sides wrap alike.
          All of this for 1 to 3 planes; --quick: for 1.
Excepted  each found, with products as they are:
          1. `alignment` is not a power of two: a tiling mode above 1 has 0, linear elements of 192
             bytes have 192
          2. more than 2048 slices
          3. no bytes at all: planes that are all empty. So is a surface without planes, which breaks
             the rules of `size` and of `planes`
          4. an image without width, height or element bytes
          5. an image smaller than its rows, as in 3 above
          6. a flag buffer of a linear level
          7. a flag buffer whose pitch is 0 or above the slice pitch
          8. bytes of the surface that are 2^32 or more with bit 31 clear. From 2^31 to 2^32 - 1, and
             wherever bit 31 is set, the record is accepted, as the validator's bound is then near 2^64
          Exceptions 4 and 5 of an only plane without flag buffer are exception 3 too; 3 with flag
          buffers is 7 too.
Not shown that the code accepts a record of one level once its level has passed; which of exceptions
          4, 5 and 7 a call of the initialiser can bring about; chains; records of
          korvel_init_single_level_surface, whose first words are the caller's; whether all records
          of 2 and 3 planes of exception 8 are refused.
Lemmas    on products of numbers without sign: of one up to 2^11 and one below 2^36 is below 2^47;
          (d - 1) x t + t = d x t; they grow with their factors; with a factor of 0 is 0, and else, if it
          does not wrap, is not.
"""

import z3

import validator_runs
from executor import terms
from layouts import EXTRA_SLICE_BYTES, plane_conditions, rounded_up, unknown, wide
from records import LAYOUT
from requirements import stored_levels
from setting import PLANES
from theorems.accepted_buffers_end_inside import header_words

RECORD_BYTES, MOST_SLICES = 5512, 2048
SIGNATURE = 0xDA7ACA5E
OF_ONE_PLANE = ("a row is its elements", "an image is its rows, rounded up",
                "its size is whole alignments")


def prove(proof):
    header(proof)
    for planes in (1,) if proof.quick else (1, 2, 3):
        for with_flags in (False, True):
            one_level(proof, Record(planes, with_flags))
    without_planes(proof)
    small_numbers_make_small_products(proof)


def power_of_two(value):
    return z3.And(value != 0, value & (value - 1) == 0)


# ---- the header


def header(proof):
    word = {name: z3.BitVec(name, 8 * bytes_) for name, (_, bytes_) in LAYOUT.header.items()}
    surface = unknown("surface", 64)  # bytes
    size = wide(word["size"])
    written = [
        word["signature"] == SIGNATURE, word["size"] == RECORD_BYTES, word["levels"] == 1,
        word["linear_fallback"] == 0, z3.ULT(word["format"], 722),
        z3.Or(*(word["samples"] == n for n in (1, 2, 4, 8))), z3.ULT(surface, 1 << 48),
        word["total_size"] == rounded_up(surface, wide(word["alignment"]), 64) + size]
    for uuid in ("device_uuid", "driver_uuid"):
        for half, at in (("0_1", 0), ("2_3", 8)):
            written.append(word[f"{uuid}_{half}"] == unknown(f"{uuid}+{at}:8", 64))
    pot = power_of_two(word["alignment"])
    paths = validator_runs.header_part(proof, LAYOUT).paths
    passed = [p for p in paths if p.ending == "goes on"]
    refused = [p for p in paths if p.ending == "refuses"]
    proof.require("there are records that pass and others", passed and refused)
    for path in refused:
        proof.show(f"no refusal: {path.state.messages[-1].format}",
                   [*path.state.conditions, *written], z3.Not(pot))
    for path in passed:
        here = [*path.state.conditions, *written]
        checked = header_words(path)
        proof.show("only with a power of two", here, pot)
        proof.show("one level is counted", here, checked["levels"] == 1)
        proof.show("total_size is as stored", here, checked["total_size"] == word["total_size"])
        proof.show("the bound is that of the level's theorem", here,
                   checked["surface_size"] == bound_of(word["total_size"]))
    proof.find("a record whose header passes", [*passed[0].state.conditions, *written]
               if len(passed) == 1 else [*written, pot])
    for alignment in (0, 192):
        proof.find(f"exception 1: alignment {alignment}", [*written, word["alignment"] == alignment])


def bound_of(total_size):
    return z3.SignExt(32, z3.Extract(31, 0, total_size - RECORD_BYTES))


# ---- the level


class Record:
    """The words of a record and what is known of them."""

    def __init__(self, planes, with_flags):
        self.planes, self.with_flags = planes, with_flags
        self.depth, self.mode = unknown("depth"), unknown("tiling_mode")
        self.base = z3.ZeroExt(48, unknown("base_alignment", 16))
        self.known = [self.depth > 0, z3.ULE(self.mode, 1),
                      z3.Or(self.base == 0, power_of_two(self.base))]
        self.order = []  # what is known of where buffers stand
        self.laid, end = [], z3.BitVecVal(0, 64)
        for number in range(planes):
            words = self.any_plane(number)
            relations = plane_conditions(end, words, with_flags, {"base_alignment": self.base})
            self.known += relations.values()
            self.order += [holds for name, holds in relations.items() if name not in OF_ONE_PLANE]
            end = end + words["image_slice_pitch"]
            self.laid.append(words)
        self.slice_bytes = unknown("T", 64)  # of all planes
        self.extra = unknown("extra bytes", 64)
        self.alignment = unknown("alignment")
        self.order.append(self.slice_bytes == end)
        self.known += [self.slice_bytes == end, power_of_two(self.alignment)]
        self.others = z3.ZeroExt(32, self.depth + z3.BitVecVal(0xFFFFFFFF, 32))
        self.all_slices = terms.product(wide(self.depth), self.slice_bytes, 64)
        self.known += [z3.Or(self.extra == 0, self.extra == wide(self.depth) * EXTRA_SLICE_BYTES),
                       z3.ULE(self.alignment, 4096)]
        surface = self.all_slices + self.extra
        self.total_size = unknown("total_size", 64)
        self.known.append(self.total_size ==
                          rounded_up(surface, wide(self.alignment), 64) + RECORD_BYTES)
        self.surface_bytes = self.total_size - RECORD_BYTES
        self.bound = bound_of(self.total_size)

    def any_plane(self, number):
        words = {name: unknown(f"{number}.{name}", 8 * bytes_)
                 for name, (_, bytes_) in LAYOUT.plane.items()}
        words["image_alignment"] = unknown("image_alignment")
        words["flag_valid"] = z3.BitVecVal(int(self.with_flags), 32)
        self.known.append(z3.Or(words["image_alignment"] == 0, power_of_two(words["image_alignment"])))
        self.known.append(z3.ULE(words["image_alignment"], 4096))
        return words

    def level_word(self, name):
        zero = z3.BitVecVal(0, 32)
        return {"slices": self.depth, "tiled": self.mode, "size": self.all_slices,
                "planes": z3.BitVecVal(self.planes, 32), "lrz_valid": zero,
                "lrz_fc_valid": zero}.get(name, unknown(f"level.{name}", 8 * LAYOUT.level[name][1]))

    def rules(self):
        """All of level 0, by message and plane."""
        zero = z3.BitVecVal(0, 32)
        found = {(r.message, None): r for r in stored_levels.level_rules(
            self.level_word, 0, None, self.bound, self.total_size, zero)}
        for plane in range(PLANES):
            words = self.laid[plane] if plane < self.planes else self.any_plane(plane)
            found |= {(r.message, plane): r for r in stored_levels.plane_rules(
                words.get, self.level_word, 0, plane, self.bound, False)}
        return found

    def lemmas(self):
        """Of the products of this record, with at most 2048 slices and T below 2^36."""
        of_all = terms.product(self.others, self.slice_bytes, 64)
        few = z3.And(z3.ULE(self.depth, MOST_SLICES), self.depth != 0)
        small = z3.ULT(self.slice_bytes, 1 << 36)
        made = [of_all + self.slice_bytes == self.all_slices,
                (self.all_slices == 0) == (self.slice_bytes == 0),
                z3.ULT(of_all, 1 << 47), z3.ULT(self.all_slices, 1 << 47)]
        names = ("image_slice_pitch", "flag_slice_pitch")[:1 + self.with_flags]
        for pitch in (words[name] for words in self.laid for name in names):
            step = terms.product(self.others, pitch, 64)
            made += [z3.Implies(z3.ULE(pitch, self.slice_bytes), z3.And(
                z3.ULE(step, of_all), z3.Not(terms.product_wraps(self.others, pitch, 64)))),
                     z3.Implies(self.others == 0, step == 0),
                     z3.Implies(pitch == self.slice_bytes, step == of_all)]
        return [z3.Implies(z3.And(few, small), z3.And(*made))]

    def rows(self, words):
        """Bytes of an image's rows, 32 bits."""
        return terms.product(words["image_pitch"], words["image_height"], 32)

    def too_small(self, words):
        rows, alignment = self.rows(words), words["image_alignment"]
        return z3.And(rows != 0, z3.Or(self.base == 0, alignment == 0, z3.UGT(rows, -alignment)))

    def exceptions(self):
        """number -> (message of the rule that it breaks, plane, when)."""
        found = {2: [("slices is invalid", None, z3.UGT(self.depth, MOST_SLICES))],
                 3: [("Metadata level size is", None, self.slice_bytes == 0)],
                 4: [], 5: [], 6: [], 7: []}
        for plane, words in enumerate(self.laid):
            found[4].append(("image invalid dimensions", plane, z3.Or(*(
                words[n] == 0 for n in ("image_width", "image_height", "image_element_size")))))
            found[5].append(("image size mismatch", plane, self.too_small(words)))
            if self.with_flags:
                found[6].append(("tiling is disabled", plane, self.mode == 0))
                found[7].append(("flagbuffer pitch mismatch", plane, z3.Or(
                    words["flag_pitch"] == 0,
                    z3.UGT(wide(words["flag_pitch"]), words["flag_slice_pitch"]))))
        return found

    def too_large(self):
        bytes_ = self.surface_bytes
        return z3.And(z3.UGE(bytes_, 1 << 32), bytes_ & (1 << 31) == 0)


def one_level(proof, record):
    known = [*record.known, *record.lemmas()]
    images = [z3.ULT(words["image_size"], 1 << 33) for words in record.laid]
    for holds in images:
        proof.show("an image is below 2^33 bytes", record.known, holds)
    proof.show("the planes of one slice stay below 2^36 bytes", [*record.order, *images],
               z3.ULT(record.slice_bytes, 1 << 36))
    for words in record.laid:
        proof.show("an image is smaller than its rows exactly in exception 5", known,
                   z3.ULT(words["image_size"], wide(record.rows(words))) == record.too_small(words))
    known.append(z3.ULT(record.slice_bytes, 1 << 36))  # as just shown
    few = z3.ULE(record.depth, MOST_SLICES)
    rules, exceptions = record.rules(), record.exceptions()
    excepted = [when for one in exceptions.values() for _, _, when in one] + [record.too_large()]
    regular = [*known, few, z3.Not(z3.Or(*excepted))]
    proof.show("the surface is below 2^48 bytes", [*known, few],
               z3.ULT(record.surface_bytes, 1 << 48))
    proof.show("the bound is that of all slices or above", regular,
               z3.ULE(record.all_slices, record.bound))
    inside = [*record.lemmas(), few, record.depth > 0, z3.ULE(record.all_slices, record.bound),
              z3.ULT(record.slice_bytes, 1 << 36)]
    for words in record.laid:
        for buffer in ("image", "flag") if record.with_flags else ("image",):
            lies = inside_a_slice(record, words, buffer)
            proof.show(f"the {buffer} buffer of one slice lies in the slice",
                       [*record.order, *images], lies)
            inside.append(lies)
    for (message, plane), rule in rules.items():
        bounds = "buffer exceeds surface bounds" in message and plane is not None
        proof.show(f"without an exception no record breaks: {message}",
                   inside if bounds else regular, z3.Not(z3.And(rule.applies, rule.broken)))
    for number, ones in exceptions.items():
        for part, plane, when in ones:
            rule = the_rule(rules, part, plane)
            # A record of too many slices is no record of small products; no other needs them.
            proof.show(f"exception {number} is always refused",
                       [*known, when] if number == 2 else [*known, few, when],
                       z3.And(rule.applies, rule.broken))
    if record.planes == 1:
        proof.show("exception 8 is always refused", [*known, few, record.too_large()],
                   the_rule(rules, "image buffer exceeds surface bounds", 0).broken)
    cases(proof, record, exceptions, excepted)


def inside_a_slice(record, words, buffer):
    offset, size = words[f"{buffer}_offset"], words[f"{buffer}_size"]
    return z3.And(*(z3.ULE(n, record.slice_bytes) for n in (
        offset, size, offset + size, words[f"{buffer}_slice_pitch"])))


def the_rule(rules, part, plane):
    found = [r for (message, at), r in rules.items() if part in message and at == plane]
    if len(found) != 1:
        raise SystemExit(f"{len(found)} rules have a message with: {part}")
    return found[0]


def as_they_are(record, slices):
    """Products of the numbers themselves, for so many slices, so that what is found is a record."""
    made = [record.depth == slices, record.all_slices == slices * record.slice_bytes]
    for words in record.laid:
        for a, b in (("image_pitch", "image_height"), ("image_element_size", "image_width")):
            made.append(terms.product(words[a], words[b], 32) == words[a] * words[b])
        for name in ("image_slice_pitch", "flag_slice_pitch"):
            made.append(terms.product(record.others, words[name], 64) == (slices - 1) * words[name])
    return made


def cases(proof, record, exceptions, excepted):
    """Records and exceptions that exist."""
    whole = [*record.known, unknown("base_alignment", 16) == 4096]
    for slices in (1, 6, MOST_SLICES):
        proof.find(f"a record of {slices} slices that is accepted",
                   [*whole, *as_they_are(record, slices), z3.Not(z3.Or(*excepted))])
    proof.find("2^31 bytes that are accepted",
               [*whole, *as_they_are(record, 1), record.surface_bytes == 1 << 31,
                z3.Not(z3.Or(*excepted))])
    for number, ones in exceptions.items():
        for _, _, when in ones:
            comes_with = {number} | brings(proof, record, number, when)
            others = [w for n, more in exceptions.items() if n not in comes_with for _, _, w in more]
            slices = MOST_SLICES + 1 if number == 2 else 1
            proof.find(f"exception {number}", [
                *whole, *as_they_are(record, slices), when, z3.Not(record.too_large()),
                *(z3.Not(o) for o in others)])
    proof.find("exception 8", [*whole, *as_they_are(record, 4), record.too_large(),
                               *(z3.Not(w) for w in excepted[:-1])])


def brings(proof, record, number, when):
    """The exceptions that come with one always: a plane that is alone and has no flag buffer is
    empty where its image is, and an empty one has no flag buffer that has a row."""
    if number in (4, 5) and record.planes == 1 and not record.with_flags:
        proof.show(f"exception {number} of the only buffer is exception 3 too",
                   [*record.known, *no_rows(record), when], record.slice_bytes == 0)
        return {3}
    if number == 3 and record.with_flags:
        pitch = record.laid[0]["flag_pitch"]
        proof.show("empty planes with flag buffers are exception 7 too",
                   [*record.known, *(z3.ULT(w["image_slice_pitch"], 1 << 34) for w in record.laid),
                    when],
                   z3.Or(pitch == 0, z3.UGT(wide(pitch), record.laid[0]["flag_slice_pitch"])))
        return {7}
    return set()


def no_rows(record):
    """The lemma on factors of 0, of the products of 32 bits."""
    return [z3.Implies(z3.Or(words[a] == 0, words[b] == 0),
                       terms.product(words[a], words[b], 32) == 0)
            for words in record.laid for a, b in (("image_pitch", "image_height"),
                                                  ("image_element_size", "image_width"))]


def without_planes(proof):
    """A surface without planes has no bytes."""
    record = Record(1, False)
    record.planes, record.slice_bytes = 0, z3.BitVecVal(0, 64)
    record.all_slices = z3.BitVecVal(0, 64)
    rules = record.rules()
    for part in ("Metadata level size is", "planes is invalid"):
        rule = the_rule(rules, part, None)
        proof.show("a surface without planes is refused", [], z3.And(rule.applies, rule.broken))


def small_numbers_make_small_products(proof):
    """The lemmas on products, of numbers of few bits."""
    d, s, t = (z3.ZeroExt(4, unknown(n, 4)) for n in ("d", "s", "t"))
    some = [d != 0]
    proof.show("(d - 1) x t + t = d x t", some, (d - 1) * t + t == d * t)
    proof.show("products grow with their factors", [*some, z3.ULE(s, t)],
               z3.ULE((d - 1) * s, (d - 1) * t))
    proof.show("a product is 0 with a factor 0 and no other", some, (d * t == 0) == (t == 0))
