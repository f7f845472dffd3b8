"""Counterexamples to theorems about validators, as records: the level in question has the words that
the solver found, all others are plain."""

import re
import struct

import z3

from counterexample import Call
from executor import terms
from records import LAYOUT
from setting import LEVELS, PLANES

DEVICE = struct.pack("<4I", 0x5A52, 6, 0x430100, 0x01000001)
DRIVER = struct.pack("<4I", 4, 1, 3, 0)


def realistic(kind, path, terms_):
    """What holds of the unknowns of a round in a record that can be written down: the bounds are those
    of one header, the level before was tiled or not, and products are products."""
    total, surface = z3.BitVec("header.total_size", 64), z3.BitVec("header.surface_size", 64)
    size = z3.BitVecVal(kind.bytes, 64)
    levels = z3.BitVec("header.levels", 32)
    held = [z3.UGT(levels, path.level), z3.ULE(levels, LEVELS), total != 0,
            z3.ULE(z3.Extract(31, 0, z3.BitVec("before", 64)), 1)]
    if kind is LAYOUT:
        low = z3.Extract(31, 0, total - size)
        held.append(surface == z3.SignExt(32, low))
    else:
        held.append(surface == total - size)
    return held + [fact for term in terms_ for fact in products_of(term)]


def products_of(term):
    """That the opaque products of a term are what products are."""
    facts, stack, seen = [], [term], set()
    while stack:
        top = stack.pop()
        if not isinstance(top, z3.ExprRef) or top.get_id() in seen:
            continue
        seen.add(top.get_id())
        stack.extend(top.children())
        name = top.decl().name()
        if re.fullmatch(r"product\d+", name):
            facts.append(top == top.arg(0) * top.arg(1))
        elif re.fullmatch(r"product\d+_wraps", name):
            facts.append(top == z3.Not(z3.BVMulNoOverflow(top.arg(0), top.arg(1), False)))
    return facts


def call(kind, path, wrong):
    """Makes the call of a model."""
    def made(model):
        values = {d.name(): model[d].as_long() for d in model.decls()
                  if d.arity() == 0 and z3.is_bv_value(model[d])}
        record = a_record(kind, path, values)
        return Call(kind.validator, [record, DEVICE, DRIVER],
                    wrong=lambda result, buffers: wrong(kind, record, result))
    return made


def a_record(kind, path, values):
    record = bytearray(kind.bytes)

    def put(where, name, value):
        offset, bytes_ = kind.word(where, name)
        record[offset:offset + bytes_] = (value & terms.mask(8 * bytes_)).to_bytes(bytes_, "little")

    header = {"signature": 0xDA7ACA5E if kind is LAYOUT else 0xDE5CDA7A, "size": kind.bytes,
              "alignment": 1, "format": 28, "samples": 1, "guid": 1,
              "total_size": values.get("header.total_size", kind.bytes + 4096),
              "linear_fallback": values.get("header.linear_fallback", 0),
              "levels": values.get("header.levels", path.level + 1)}
    for name, value in header.items():
        if name in kind.header:
            put((), name, value)
    for name, uuid in (("device_uuid_0_1", DEVICE), ("driver_uuid_0_1", DRIVER)):
        record[kind.header[name][0]:kind.header[name][0] + 16] = uuid
    before, own = values.get("before", 0), values.get("level.tiled", 0)
    has_lrz = values.get("level.lrz_valid", 0)
    for level in range(min(header["levels"], LEVELS)):
        tiled = values.get("chain.tiled", before & 1) if level < path.level else own
        plain = {"slices": 1, "tiled": tiled, "size": 1, "planes": 1, "lrz_valid": has_lrz,
                 "lrz_fc_valid": has_lrz}
        plain.update({f"lrz_{name}": has_lrz
                      for name in ("size", "slice_pitch", "pitch", "width", "height")})
        image = {"image_size": 1, "image_pitch": 1, "image_slice_pitch": 1, "image_element_size": 1,
                 "image_width": 1, "image_height": 1, "actual_width": 1, "actual_height": 1}
        for name, value in plain.items():
            put((level,), name, value)
        for name, value in image.items():
            if name in kind.plane:
                put((level, 0), name, value)
    for name in kind.level:
        put((path.level,), name, values.get(f"level.{name}", 0))
    for plane in range(PLANES):
        for name in kind.plane:
            put((path.level, plane), name, values.get(f"level.plane[{plane}].{name}", 0))
    return bytes(record)


# ---- what is wrong with a verdict, in plain numbers


def words(kind, record, where):
    table = kind.header if not where else kind.level if len(where) == 1 else kind.plane
    found = {}
    for name in table:
        offset, bytes_ = kind.word(where, name)
        found[name] = int.from_bytes(record[offset:offset + bytes_], "little")
    return found


def outside_although_accepted(kind, record, result):
    """The first buffer of an accepted record that ends behind the surface, in exact arithmetic."""
    if result != 0:
        return ""
    header = words(kind, record, ())
    surface = header["total_size"] - header["size"]
    for level in range(min(header["levels"], LEVELS)):
        its = words(kind, record, (level,))
        buffers = [(f"level {level} {name}", its, name) for name in ("lrz", "lrz_fc")
                   if its[f"{name}_valid"]]
        for plane in range(min(its["planes"], PLANES)):
            of_plane = words(kind, record, (level, plane))
            buffers.append((f"level {level} plane {plane} image", of_plane, "image"))
            if of_plane["flag_valid"]:
                buffers.append((f"level {level} plane {plane} flag buffer", of_plane, "flag"))
        for name, table, prefix in buffers:
            others = 0 if prefix == "lrz_fc" else (its["slices"] - 1) * table[f"{prefix}_slice_pitch"]
            end = table[f"{prefix}_offset"] + others + table[f"{prefix}_size"]
            if end > surface:
                return f"accepts a record whose {name} ends at {end} of {surface} bytes"
    return ""


def breaks(kind, record, level, rules):
    """The message of the first rule that a level of a record breaks, "" for none. The levels in front
    of it are plain."""
    header = words(kind, record, ())
    size = header["size"]
    if kind is LAYOUT:
        surface = (header["total_size"] - size) & terms.mask(32)
        surface = terms.extended(surface, 32, 64, True)
    else:
        surface = (header["total_size"] - size) & terms.mask(64)
    values = {"header.total_size": header["total_size"], "header.surface_size": surface,
              "header.linear_fallback": header["linear_fallback"]}
    if level:
        before = words(kind, record, (level - 1,))
        values["chain.tiled"] = before["tiled"]
        values["before"] = before["tiled"] | before["lrz_valid"] << 32
    values.update({f"level.{n}": v for n, v in words(kind, record, (level,)).items()})
    for plane in range(PLANES):
        values.update({f"level.plane[{plane}].{n}": v
                       for n, v in words(kind, record, (level, plane)).items()})
    solver = z3.Solver()
    for rule in rules:
        solver.push()
        solver.add(rule.fails, *(fact for fact in products_of(rule.fails)))
        for name in terms.unknowns(rule.fails):
            if name in values:
                bits = 32 if name == "header.linear_fallback" else bits_of(kind, name)
                solver.add(z3.BitVec(name, bits) == values[name])
        fails = solver.check() == z3.sat
        solver.pop()
        if fails:
            return rule.message
    return ""


def bits_of(kind, name):
    """Of an unknown of a round."""
    if name in ("header.total_size", "header.surface_size", "before"):
        return 64
    if name == "chain.tiled":
        return 32
    word = name.rpartition(".")[2]
    return 8 * (kind.plane if ".plane[" in name else kind.level)[word][1]
