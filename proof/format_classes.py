"""All 2^32 numbers of formats, in the classes that the alignment rules know.

The rules say the same of all formats of a class. The library is asked about a class as a whole: the
format is an unknown number of it.
"""

from dataclasses import dataclass, replace

import z3

import formats
from executor.finite import Finite, Unlisted

FORMAT = z3.BitVec("format", 32)
PLANE = z3.BitVec("plane", 32)

# A format and one of its planes, where both are unknown: 32 bits and 2.
PAIR = z3.BitVec("format and plane", 34)
_FORMAT_OF_PAIR = z3.Extract(31, 0, PAIR)
_PLANE_OF_PAIR = z3.ZeroExt(30, z3.Extract(33, 32, PAIR))

OTHER_PLANE = 3  # stands for every plane that no format has


@dataclass(frozen=True)
class FormatClass:
    representative: int
    number: int | z3.BitVecRef  # of the format, for a call: known or the unknown
    conditions: tuple
    finite: Finite | Unlisted | None  # None where the class is one format
    size: int
    plane: int = 0  # of the representative
    plane_number: int | z3.BitVecRef = 0  # for a call: known or the unknown
    members: tuple = ()  # of joined_classes(): the classes of one plane each

    @property
    def ids(self):
        """Of one of classes(): its formats, one that stands for all without a record."""
        return self.finite.numbers if self.finite is not None else [self.representative]


def _of_one_format(format_id):
    made = formats.traits(format_id)
    return (
        made.flags & (formats.FLAG_VIDEO | formats.FLAGS_IN_BLOCKS), made.bytes, made.block_width,
        made.block_height, made.is_block_like_family5, made.has_padded_pitch,
        format_id in formats.WIDE_TILE, format_id in formats.TALL_TILE_FAMILY5,
        format_id in formats.TALL_TILE_FAMILY67,
    )


def _key(format_id, plane):
    """All that the alignment rules ask of a format, for one plane of it."""
    npot = formats.npot_substitute(format_id)
    listed = formats.listed_substitute(format_id)
    return (
        _of_one_format(format_id), _of_one_format(formats.plane_format(format_id, plane)),
        _of_one_format(npot), _of_one_format(formats.npot_substitute(npot)),
        _of_one_format(listed), _of_one_format(formats.listed_substitute(listed)),
        formats.plane_bytes(format_id, plane), formats.extra_width_unit(format_id),
        format_id == formats.ROWS_OF_64,
    )


_classes = {}


def classes(plane):
    """Of a plane; 3 stands for every plane that no format has."""
    if plane not in _classes:
        members = {}
        for format_id in range(formats.RECORD_COUNT):
            members.setdefault(_key(format_id, plane), []).append(format_id)
        made = []
        for ids in members.values():
            if len(ids) == 1:
                made.append(FormatClass(ids[0], ids[0], (), None, 1))
            else:
                finite = Finite(FORMAT, ids)
                made.append(FormatClass(ids[0], FORMAT, (finite.condition,), finite, len(ids)))
        fourcc = formats.FOURCC_FORMAT
        made.append(FormatClass(fourcc, fourcc, (), None, 1))
        unlisted = Unlisted(FORMAT, z3.And(z3.UGE(FORMAT, formats.RECORD_COUNT),
                                           z3.Not(FORMAT == fourcc)), formats.RECORD_COUNT)
        made.append(FormatClass(formats.RECORD_COUNT, FORMAT,
                                (unlisted.condition, z3.Not(FORMAT == fourcc)), unlisted,
                                (1 << 32) - formats.RECORD_COUNT - 1))
        if sum(c.size for c in made) != 1 << 32:
            raise SystemExit("the classes of formats leave a number out")
        _classes[plane] = made
    return _classes[plane]


def _joined(members, without_record):
    """Classes of one plane each, as one. `without_record`: they are of formats without a record."""
    if without_record:
        first = members[0]
        if len(members) == 1 and first.plane != OTHER_PLANE:
            return first
        allowed = z3.Or(*(z3.UGE(PLANE, 3) if m.plane == OTHER_PLANE else PLANE == m.plane
                          for m in members))
        return FormatClass(first.representative, FORMAT, (*first.conditions, allowed), first.finite,
                           first.size, first.plane, PLANE)
    pairs = [(i, m.plane) for m in members for i in m.ids]
    format_id, plane = pairs[0]
    if plane == OTHER_PLANE:
        above = z3.UGE(PLANE, 3)
        if len(pairs) == 1:
            return FormatClass(format_id, format_id, (above,), None, 1, plane, PLANE)
        finite = Finite(FORMAT, [i for i, _ in pairs])
        return FormatClass(format_id, FORMAT, (finite.condition, above), finite, len(pairs), plane,
                           PLANE)
    if len(pairs) == 1:
        return FormatClass(format_id, format_id, (), None, 1, plane, plane)
    finite = Finite(PAIR, [i | p << 32 for i, p in pairs])
    return FormatClass(format_id, _FORMAT_OF_PAIR, (finite.condition,), finite, len(pairs), plane,
                       _PLANE_OF_PAIR)


def joined_classes(planes, key):
    """All formats with all of the planes, in classes of equal key(class). Formats with a record,
    those without one and planes above 2 have classes of their own."""
    groups = {}
    for plane in planes:
        for class_ in classes(plane):
            one = replace(class_, plane=plane, plane_number=plane)
            without_record = class_.representative == formats.RECORD_COUNT
            kind = (without_record, plane == OTHER_PLANE and not without_record)
            groups.setdefault((kind, key(one)), []).append(one)
    made = [replace(_joined(members, kind[0]), members=tuple(members))
            for (kind, _), members in groups.items()]
    members = sum(len(g) for g in groups.values())
    if members != sum(len(classes(p)) for p in planes):
        raise SystemExit("the joined classes leave a format out")
    return made
