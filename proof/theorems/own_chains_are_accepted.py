"""Levels that korvel_init_multi_level_surface writes are accepted, but for listed exceptions.

The words are those of any level of any chain of 1 to 3 planes: what chains_write_what_they_document shows
of them, and where chains_fit shows the buffers to lie. All that this leaves open is unknown. Held
against the rules of requirements/stored_levels.py, by which the validator refuses a level
(validators_follow_the_rules).

Assumed   chains_fit's conditions: depth is 1 or more, alignments of the chip are powers of two and not
          0, no sum or product of bytes wraps 64 bits. The record's first words are the caller's: they
          pass, with `size` 5512 and the alignment a power of two. One slice of a plane is below 2^36
          bytes, the surface and what starts in it below 2^48; a level's last plane lies in one slice.
Shown     without an exception no rule of the level is broken, whatever the level's number, where the
          tiled and lrz_valid words of the level before are as this one's. Each exception always
          breaks a rule, but for 8. All of it for 1 to 3 planes with flag buffers and without; --quick:
          for 1.
Excepted  each found, with products as they are:
          1. a tiling mode above 1
          2. more than 2048 slices
          3. a level whose last plane has no bytes: size 0
          4. an image without width, height or element bytes
          5. an image smaller than its rows: they are not 0, and rounding them up to the mode's
             alignment leaves 32 bits, or this alignment is 0
          6. a flag buffer of a linear level
          7. a flag buffer whose pitch is 0 or above the slice pitch
          8. bytes of the surface that are 2^32 or more with bit 31 clear: a buffer can end behind the
             bound then
          A surface without planes keeps what stood in `size` and `planes`: nothing is said of it.
Not shown the code's own verdict on a whole record; chips without the three properties.
Lemmas    on products of numbers without sign: of one up to 2^11 and one below 2^36 is below 2^47;
          (d - 1) x t + t = d x t; they grow with their factors; with a factor of 0 is 0, and else, if
          it does not wrap, is not.
"""

import z3

from executor import terms
from layouts import unknown, wide
from records import LAYOUT
from requirements import stored_levels
from setting import PLANES
from theorems.own_records_are_accepted import (MOST_SLICES, RECORD_BYTES, bound_of, power_of_two,
                                               small_numbers_make_small_products, the_rule)


def prove(proof):
    for planes in (1,) if proof.quick else (1, 2, 3):
        for with_flags in (False, True):
            one_level(proof, Level(planes, with_flags))
    small_numbers_make_small_products(proof)


def wide48(number):
    return z3.ZeroExt(16, number)


class Level:
    """The words of a level and what is known of them."""

    def __init__(self, planes, with_flags):
        self.planes, self.with_flags = planes, with_flags
        self.depth, self.mode = unknown("depth"), unknown("tiling_mode")
        self.surface = wide48(unknown("surface", 48))
        self.total_size = self.surface + RECORD_BYTES
        self.bound = bound_of(self.total_size)
        self.others = z3.ZeroExt(32, self.depth + z3.BitVecVal(0xFFFFFFFF, 32))
        self.known = [self.depth > 0]
        self.lemmas, self.laid = [], []
        for plane in range(planes):
            self.laid.append(self.plane(plane))
        own = self.laid[-1]["flag_size"] if with_flags and planes > 1 else z3.BitVecVal(0, 64)
        self.last = own + self.laid[-1]["image_size"]
        self.size = self.times_depth(self.last)
        whole = self.times_depth(self.laid[-1]["image_slice_pitch"])
        self.lemmas.append(z3.Implies(z3.ULE(self.last, self.laid[-1]["image_slice_pitch"]),
                                      z3.ULE(self.size, whole)))
        self.known += [z3.ULE(self.last, self.laid[-1]["image_slice_pitch"])]

    def plane(self, plane):
        words = {name: unknown(f"{plane}.{name}", 8 * bytes_)
                 for name, (_, bytes_) in LAYOUT.plane.items()}
        words["image_alignment"] = unknown("image_alignment")
        words["flag_valid"] = z3.BitVecVal(int(self.with_flags), 32)
        rows = terms.product(words["image_pitch"], words["image_height"], 32)
        alignment = words["image_alignment"]
        start, pitch = wide48(unknown(f"{plane}.start", 48)), words["image_slice_pitch"]
        self.known += [
            z3.Or(alignment == 0, power_of_two(alignment)), z3.ULE(alignment, 4096),
            words["image_pitch"] == terms.product(words["image_element_size"], words["image_width"], 32),
            words["image_size"] == wide((rows + alignment - 1) & ~(alignment - 1))]
        self.lies(words, "image", start, pitch)
        if self.with_flags:
            flags, flag_pitch = start, words["flag_slice_pitch"]
            if self.planes > 1:
                self.known.append(flag_pitch == pitch)
            else:  # gathered in front of the images
                flags = z3.BitVecVal(0, 64)
            self.known.append(z3.ULT(words["flag_size"], 1 << 32))
            self.lies(words, "flag", flags, flag_pitch)
        return words

    def lies(self, words, buffer, start, pitch):
        """A buffer lies in the first slice, and all slices lie inside the surface."""
        known, lemmas = len(self.known), len(self.lemmas)
        offset, size = words[f"{buffer}_offset"], words[f"{buffer}_size"]
        whole = self.times_depth(pitch)
        self.known += [z3.ULT(pitch, 1 << 36), z3.ULE(start, self.surface), z3.ULE(start, offset),
                       z3.ULE(offset, self.surface), z3.ULE(size, pitch),
                       z3.ULE(offset + size, start + pitch), z3.ULE(whole, self.surface),
                       z3.ULE(start + whole, self.surface)]
        step = terms.product(self.others, pitch, 64)
        self.lemmas.append(z3.And(step + pitch == whole, z3.ULE(step, whole), z3.ULT(whole, 1 << 47),
                                  z3.Not(terms.product_wraps(self.others, pitch, 64))))
        words[f"{buffer} lies"] = self.known[known:] + self.lemmas[lemmas:]

    def times_depth(self, bytes_):
        made = terms.product(wide(self.depth), bytes_, 64)
        self.lemmas.append((made == 0) == (bytes_ == 0))
        return made

    def level_word(self, name):
        zero = z3.BitVecVal(0, 32)
        return {"slices": self.depth, "tiled": self.mode, "size": self.size,
                "planes": z3.BitVecVal(self.planes, 32), "lrz_valid": zero,
                "lrz_fc_valid": zero}.get(name, unknown(f"level.{name}", 8 * LAYOUT.level[name][1]))

    def rules(self):
        zero, number = z3.BitVecVal(0, 32), unknown("level's number")
        found = {(r.message, None): r for r in stored_levels.level_rules(
            self.level_word, number, (self.mode, zero), self.bound, self.total_size, zero)}
        for plane in range(PLANES):
            words = self.laid[plane] if plane < self.planes else {
                name: unknown(f"{plane}.{name}", 8 * size) for name, (_, size) in LAYOUT.plane.items()}
            found |= {(r.message, plane): r for r in stored_levels.plane_rules(
                words.get, self.level_word, number, plane, self.bound, False)}
        return found

    def too_small(self, words):
        rows, alignment = (terms.product(words["image_pitch"], words["image_height"], 32),
                           words["image_alignment"])
        return z3.And(rows != 0, z3.Or(alignment == 0, z3.UGT(rows, -alignment)))

    def exceptions(self):
        """number -> (message of the rule that it breaks, plane, when)."""
        found = {1: [("tiled is invalid", None, z3.UGT(self.mode, 1))],
                 2: [("slices is invalid", None, z3.UGT(self.depth, MOST_SLICES))],
                 3: [("Metadata level size is", None, self.last == 0)], 4: [], 5: [], 6: [], 7: []}
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
        return z3.And(z3.UGE(self.surface, 1 << 32), self.surface & (1 << 31) == 0)


def one_level(proof, level):
    few = z3.ULE(level.depth, MOST_SLICES)
    known = [*level.known, z3.Implies(few, z3.And(*level.lemmas))]
    regular = [*level.known, *level.lemmas, few]
    rules, exceptions = level.rules(), level.exceptions()
    excepted = [when for ones in exceptions.values() for _, _, when in ones] + [level.too_large()]
    allowed = [z3.Not(when) for when in excepted]
    proof.show("the bound is that of the surface or above", [*level.known, z3.Not(level.too_large())],
               z3.ULE(level.surface, level.bound))
    bound = unknown("bound", 64)  # any at or above the surface
    for (message, plane), rule in rules.items():
        enough = [*regular, *allowed]
        if "buffer exceeds surface bounds" in message and plane is not None and plane < level.planes:
            buffer = "flag" if "flagbuffer" in message else "image"
            lies = level.laid[plane].get(f"{buffer} lies", [])  # no flag buffer, no rule of it
            enough = [z3.ULT(level.surface, 1 << 48), z3.ULE(level.surface, bound), *lies]
        broken = z3.substitute(z3.And(rule.applies, rule.broken), (level.bound, bound))
        proof.show(f"without an exception no level breaks: {message}", enough, z3.Not(broken))
    for number, ones in exceptions.items():
        for part, plane, when in ones:
            rule = the_rule(rules, part, plane)
            proof.show(f"exception {number} is always refused",
                       [*known, when] if number == 2 else [*regular, when],
                       z3.And(rule.applies, rule.broken))
    cases(proof, level, exceptions, excepted)


def as_they_are(level, slices):
    """Products of the numbers themselves, for so many slices, so that what is found is a record."""
    made = [level.depth == slices, level.size == slices * level.last]
    for words in level.laid:
        for a, b in (("image_pitch", "image_height"), ("image_element_size", "image_width")):
            made.append(terms.product(words[a], words[b], 32) == words[a] * words[b])
        for name in ("image_slice_pitch", "flag_slice_pitch"):
            made += [terms.product(level.others, words[name], 64) == (slices - 1) * words[name],
                     terms.product(wide(level.depth), words[name], 64) == slices * words[name]]
    return made


def cases(proof, level, exceptions, excepted):
    for slices in (1, 6, MOST_SLICES):
        proof.find(f"a level of {slices} slices that is accepted",
                   [*level.known, *as_they_are(level, slices), *(z3.Not(w) for w in excepted)])
    for number, ones in exceptions.items():
        for _, _, when in ones:
            slices = MOST_SLICES + 1 if number == 2 else 1
            proof.find(f"exception {number}", [*level.known, *as_they_are(level, slices), when,
                                               z3.Not(level.too_large())])
    bounds = the_rule(level.rules(), "image buffer exceeds surface bounds", 0)
    proof.find("exception 8", [*level.known, *as_they_are(level, 4), level.too_large(), bounds.broken,
                               *(z3.Not(w) for w in excepted[:-1])])
