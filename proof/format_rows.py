"""Formats: any row of the library's own table of what its rules ask about a format.

A row of unknown number would part a path at each word that is loaded of it, with a condition that
names hundreds of places. Here the words of the row are unknowns of their own, `format.bytes` and so
on, and what is known of them is exact: together they are the words of one of the rows that the table
has. Each load of one parts the path by the values that are left, so that the code computes with plain
numbers.
"""

import re

import z3

from executor import terms
from executor.machine import Cases

TABLE, UBWC_GROUPS = "_ZN6korvel13kFormatTraitsE", "_ZN6korvel12kUbwcGroupOfE"
ROW_BYTES, FORMATS, WITHOUT_RECORD, ROW_OF_WXB7 = 16, 722, 722, 723
ROWS = FORMATS + 2
WXB7 = 0x37425857

# Of a row: where each word stands and how many bytes it has.
WORDS = {
    "plane_index_0": (0, 2), "plane_index_1": (2, 2), "plane_index_2": (4, 2),
    "rules": (6, 1), "tile_variants": (7, 1), "bytes": (8, 1), "substitute_bytes": (9, 1),
    "plane_bytes_0": (10, 1), "plane_bytes_1": (11, 1), "plane_bytes_2": (12, 1),
    "block_width": (13, 1), "block_height": (14, 1), "video_sample_tile": (15, 1),
}
OF_A_PLANE = ("bytes", "tile_variants")  # words that are read of the row that describes a plane

DEPTH_STENCIL, BLOCK_COMPRESSED, BLOCK_FAMILY5, BLOCK_FAMILY67 = 0x1, 0x2, 0x4, 0x8


class AnyFormat:
    """
    number     the format's number, an unknown of 32 bits
    row        where its row stands, bytes from the table's start
    condition  what is known of all this
    """

    def __init__(self, machine, facts=None, apart=True, names=None):
        """`apart`: each load parts the path by the values that are left; else the word is an unknown
        like others. `facts` are a theorem's own, of one bit each: name -> function of a format number below
        722, WXB7 or None for all others."""
        self.machine = machine
        self.facts = facts or {}
        self.apart = apart
        table = machine.variable(TABLE)
        groups = machine.variable(UBWC_GROUPS)
        self.table = [self._row(table, groups, row) for row in range(ROWS)]
        # `names`: the words that the code in question asks for, where not all of them.
        self.names = names or list(self.table[0])
        self.number = z3.BitVec("format", 32)
        self.row = z3.BitVec("format's row", 64)
        self.condition = z3.And(z3.ULT(self.row, ROW_BYTES * ROWS), self.row & 15 == 0,
                                self._is_a_row(self.names))
        self.values = {}
        table.words = self._load
        groups.words = lambda state, address, type_: self._cases("ubwc_group")

    def _row(self, table, groups, row):
        at = ROW_BYTES * row
        words = {name: table.content[at + offset][1] for name, (offset, size) in WORDS.items()
                 if table.content[at + offset][0] == size}
        if len(words) != len(WORDS):
            raise SystemExit("a row of kFormatTraits is not what format_rows.py says it is")
        for plane in range(3):
            index = words.pop(f"plane_index_{plane}")
            if not 0 <= index < ROWS:
                raise SystemExit(f"row {row} names a row that the table has not")
            for name in OF_A_PLANE:
                words[f"plane {plane}.{name}"] = (
                    table.content[ROW_BYTES * index + WORDS[name][0]][1])
        words["ubwc_group"] = groups.content[row][1] if row < FORMATS else 0
        words["has record"] = int(row < FORMATS)
        words["is unknown"] = int(row == 0)
        id_ = row if row < FORMATS else WXB7 if row == ROW_OF_WXB7 else None
        for name, holds in self.facts.items():
            words[name] = int(holds(id_))
        return words

    def word(self, name):
        return z3.BitVec(f"format.{name}", 8)

    def wide(self, name):
        return terms.extended(self.word(name), 8, 32, False)

    def is_(self, name):
        return self.word(name) != 0

    def _is_a_row(self, names):
        tuples = sorted({tuple(row[n] for n in names) for row in self.table})
        return z3.Or(*(z3.And(*(self.word(n) == v for n, v in zip(names, values)))
                       for values in tuples))

    def number_is_the_rows(self):
        """The row is that of the number, as far as the code asks."""
        return z3.And((self.word("has record") != 0) == z3.ULT(self.number, FORMATS),
                      (self.word("is unknown") != 0) == (self.number == 0))

    def _cases(self, name):
        if not self.apart:
            return self.word(name)
        if name not in self.values:
            values = sorted({row[name] for row in self.table})
            self.values[name] = [(self.word(name) == v, v) for v in values]
        cases = self.values[name]
        return cases[0][1] if len(cases) == 1 else Cases(cases)

    def _load(self, state, address, type_):
        field = next(n for n, (at, size) in WORDS.items()
                     if at == address.known % ROW_BYTES and size == type_.bytes)
        of_plane = re.search(r"format\.plane_index_(\d)", address.offset.sexpr())
        if of_plane:
            return self._cases(f"plane {of_plane[1]}.{field}")
        if field.startswith("plane_index"):
            index = z3.BitVec(f"format.{field}", 16)
            state.assume(z3.ULT(index, ROWS))
            return index
        return self._cases(field)
