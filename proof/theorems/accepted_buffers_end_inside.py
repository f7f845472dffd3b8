"""What a validator accepts ends inside the surface: every image, flag, LRZ and fast-clear buffer of
every counted level and plane, in exact arithmetic.

Assumed   the four conditions of the public header:
          1. the record's size is that of its version (accepted records have it: shown)
          2. total_size >= size
          3. total_size - size <= 0x7FFFFFFF, for a MemoryLayout
          4. total_size - size <= the bytes of the surface: what "inside" means here
Shown     buffer offset + (slices - 1) x slice pitch + buffer size <= total_size - size, without any
          wrap, for each buffer that the level's words count, on every path on which a level passes;
          and that a record is accepted only when as many levels have passed as it counts.
Excepted  without condition 2, and for a MemoryLayout without condition 3, there are records that are
          accepted with a bound above total_size - size. Rows inside a buffer are another matter: an
          image of 65536 rows of 65536 bytes passes in 4096 bytes.
Lemma     a product with the factor 0 is 0 and does not wrap.
Quick     the header's checks and the rules; the walk of plain levels is left out.
"""

import z3

import record_calls
import validator_runs
from executor import terms
from records import KINDS, LAYOUT
from setting import LEVELS, PLANES

SHARES_RUNS_OF = "validators"


def prove(proof):
    for kind in KINDS:
        header(proof, kind)
        for part, level in validator_runs.rounds(proof, kind):
            for path in validator_runs.level_part(proof, kind, part, level).paths:
                if path.ending != "refuses":
                    level_is_inside(proof, kind, path)
        for part, level in [(p, n) for p in ("walk", "rules") for n in range(LEVELS)]:
            if (part, level) == ("rules", 1) or not proof.quick and (part, level) != ("rules", 0):
                all_have_passed(proof, kind, validator_runs.level_part(proof, kind, part, level))


def all_have_passed(proof, kind, part):
    """A record is accepted behind the last of its levels."""
    counted = z3.BitVec("header.levels", 32)
    for path in part.paths:
        if path.ending == "accepts":
            proof.show("all counted levels have passed", path.state.conditions,
                       counted == path.level + 1, place(kind, path))


def header(proof, kind):
    """The bound that the levels are held against is total_size - size, where the conditions hold."""
    word = {name: z3.BitVec(name, 8 * bytes_) for name, (_, bytes_) in kind.header.items()}
    surface = word["total_size"] - z3.ZeroExt(32, word["size"])
    conditions = [z3.UGE(word["total_size"], z3.ZeroExt(32, word["size"]))]
    if kind is LAYOUT:
        conditions.append(z3.ULE(surface, 0x7FFFFFFF))
    walks = [p for p in validator_runs.header_part(proof, kind).paths if p.ending == "goes on"]
    proof.require("the levels are reached", walks, kind.validator)
    for path in walks:
        checked = header_words(path)
        here = list(path.state.conditions)
        proof.show("the bound is total_size - size", here + conditions,
                   checked["surface_size"] == surface, kind.validator)
        proof.show("the levels are counted as the record has them", here,
                   checked["levels"] == word["levels"], kind.validator)
        proof.show("1 to 15 levels", here, z3.And(z3.UGE(checked["levels"], 1),
                                                  z3.ULE(checked["levels"], LEVELS)), kind.validator)
        sizes = (5472, 5504, 5512) if kind is LAYOUT else (kind.bytes,)
        proof.show("the size is that of a version", here,
                   z3.Or(*(word["size"] == s for s in sizes)), kind.validator)
    # Each condition is needed: without it there is a larger bound.
    checked, here = header_words(walks[0]), list(walks[0].state.conditions)
    proof.find("total_size below size", here + [z3.Not(conditions[0]),
                                                z3.UGT(checked["surface_size"], word["total_size"])])
    if kind is LAYOUT:
        proof.find("a surface of 2^31 bytes", here + [
            conditions[0], surface == 0x80000000, z3.UGT(checked["surface_size"], surface)])


def header_words(path):
    """What the checks of the header hand on."""
    _, header = path.state.notes["walk"]
    cells = path.state.memory.cells(header.region)
    return {name: cells[header.offset + offset][1]
            for name, (offset, _) in validator_runs.Header.WORDS.items()}


def level_is_inside(proof, kind, path):
    """Of a path on which a level has passed."""
    here = list(path.state.conditions)
    where = place(kind, path)
    show = showing(proof, kind, path)
    bound = z3.BitVec("header.surface_size", 64)
    level = Words(kind, "level", path)
    slices = level.word("slices")
    planes = level.word("planes")
    looked_at = [p for p in range(PLANES) if Words(kind, f"plane {p}", path).was_read("image_offset")]
    proof.require("some planes were looked at", looked_at, where)
    show("all counted planes were looked at", here, z3.ULE(planes, len(looked_at)), where)
    for number in looked_at:
        plane = Words(kind, f"plane {number}", path)
        buffer_is_inside(show, here, plane, "image", slices, bound, where)
        if plane.was_read("flag_offset"):
            buffer_is_inside(show, here, plane, "flag", slices, bound, where)
        else:
            show("a plane without a flag buffer", here, plane.word("flag_valid") == 0, where)
    if level.was_read("lrz_offset"):
        buffer_is_inside(show, here, level, "lrz", slices, bound, where)
        buffer_is_inside(show, here, level, "lrz_fc", None, bound, where)
    else:
        show("a level without LRZ", here,
             z3.And(level.word("lrz_valid") == 0, level.word("lrz_fc_valid") == 0), where)


def showing(proof, kind, path):
    """proof.show, with a record as the counterexample."""
    total = z3.BitVec("header.total_size", 64)

    def realistic(asked):
        held = record_calls.realistic(kind, path, asked) + [z3.UGE(total, kind.bytes)]
        return held + ([z3.ULE(total, kind.bytes + 0x7FFFFFFF)] if kind is LAYOUT else [])

    def show(what, conditions, claim, where):
        return proof.show(what, conditions, claim, where, record_calls.call(
            kind, path, record_calls.outside_although_accepted), realistic)
    return show


def buffer_is_inside(show, here, words, buffer, slices, bound, where):
    """offset + (slices - 1) x slice pitch + size <= bound, in 66 bits."""
    offset, size = words.word(f"{buffer}_offset"), words.word(f"{buffer}_size")
    end = z3.ZeroExt(2, offset) + z3.ZeroExt(2, size)
    fits, lemma = z3.BoolVal(True), []
    if slices is not None:
        others = terms.extended(terms.compute("add", slices, terms.mask(32), 32), 32, 64, False)
        pitch = words.word(f"{buffer}_slice_pitch")
        product, wraps = terms.product(others, pitch, 64), terms.product_wraps(others, pitch, 64)
        lemma = [z3.Implies(others == 0, z3.And(product == 0, z3.Not(wraps)))]
        end, fits = end + z3.ZeroExt(2, product), z3.Not(wraps)
    show(f"the {buffer} buffer ends inside", here + lemma,
         z3.And(fits, z3.ULE(end, z3.ZeroExt(2, bound))), where)


class Words:
    """The words of a level or a plane as a path has read them."""

    def __init__(self, kind, where, path):
        self.where = where
        self.table = kind.level if where == "level" else kind.plane
        place = (path.level,) if where == "level" else (path.level, int(where[-1]))
        self.read = {a.offset for a in path.state.loads}
        self.offset_of = lambda name: kind.word(place, name)[0]

    def word(self, name):
        return validator_runs.stored_word(self.where, name, self.table[name][1])

    def was_read(self, name):
        return self.offset_of(name) in self.read


def place(kind, path):
    return f"{kind.validator}, {path.part}, level {path.level}"
