"""The formats once more: records, blocks, planes, substitutes, tile classes.

Data and look-ups by a format that is known, in plain Python numbers. Nothing here is taken from the
library's sources: the numbers are written down a second time, so that a wrong number in either
place shows as a difference. Ids are written as ranges, as in "87-89, 507".
"""

from dataclasses import dataclass

RECORD_COUNT = 722
FOURCC_FORMAT = 0x37425857  # the four characters "WXB7"; it has no record

FLAG_VIDEO = 0x200
FLAG_PACKED_PAIR = 0x1000
FLAG_BLOCK_COMPRESSED = 0x2000
FLAGS_IN_BLOCKS = FLAG_PACKED_PAIR | FLAG_BLOCK_COMPRESSED


def ids(ranges):
    """The ids of a list such as "87-89, 507", in the order in which they stand."""
    found = []
    for part in ranges.split(","):
        first, _, last = part.strip().partition("-")
        found.extend(range(int(first), int(last or first) + 1))
    return found


def _by_id(rows):
    """A dictionary from id to what its row gives; an id that two rows name is a typing error."""
    answers = {}
    for answer, ranges in rows:
        for format_id in ids(ranges):
            if format_id in answers:
                raise ValueError(f"format {format_id} stands in two rows")
            if format_id >= RECORD_COUNT:
                raise ValueError(f"format {format_id} has no record")
            answers[format_id] = answer
    return answers


# Flags, bytes of an element (or of a block), planes. All ids that no row names: 0, 1, 1.
_RECORD_ROWS = (
    (0x400, 16, 1, "1"),
    (0xC, 16, 1, "2, 524"),
    (0xA0, 16, 1, "3, 530"),
    (0xC0, 16, 1, "4, 527"),
    (0x400, 12, 1, "5"),
    (0xC, 12, 1, "6"),
    (0xA0, 12, 1, "7"),
    (0xC0, 12, 1, "8"),
    (0x400, 8, 1, "9, 15"),
    (0x4, 8, 1, "10, 522"),
    (0x2, 8, 1, "11, 565"),
    (0xA0, 8, 1, "12, 17, 528, 685"),
    (0x1, 8, 1, "13, 560"),
    (0xC0, 8, 1, "14, 18, 525, 686"),
    (0xC, 8, 1, "16"),
    (0x108400, 8, 1, "19"),
    (0x13C00C, 8, 1, "20, 551"),
    (0x10840C, 8, 1, "21"),
    (0x108000, 8, 1, "22"),
    (0x400, 4, 1, "23, 27, 33, 39, 90, 92"),
    (0x2, 4, 1, "24, 28, 35, 87-89, 507, 532, 537-539, 564, 621, 648, 683, 684"),
    (0xA0, 4, 1, "25, 30, 36, 42, 116, 512, 535, 650"),
    (0x4, 4, 1, "26, 34, 67"),
    (0x102, 4, 1, "29, 91, 93, 520, 622"),
    (0x1, 4, 1, "31, 37, 118, 509, 531, 533, 559, 649"),
    (0xC0, 4, 1, "32, 38, 43, 117, 515, 534, 536, 651"),
    (0x5400C, 4, 1, "40"),
    (0xC, 4, 1, "41, 547"),
    (0x8400, 4, 1, "44"),
    (0x3C002, 4, 1, "45, 501"),
    (0x8402, 4, 1, "46"),
    (0x8000, 4, 1, "47"),
    (0x400, 2, 1, "48, 53"),
    (0x2, 2, 1, "49, 56, 85, 86, 115, 518, 519, 540, 610-613, 652, 653"),
    (0xA0, 2, 1, "50, 57, 514"),
    (0x1, 2, 1, "51, 58, 511"),
    (0xC0, 2, 1, "52, 59, 517"),
    (0x4, 2, 1, "54, 546"),
    (0x54002, 2, 1, "55"),
    (0x400, 1, 1, "60"),
    (0x2, 1, 1, "61, 65, 66, 671-677"),
    (0xA0, 1, 1, "62"),
    (0x1, 1, 1, "63"),
    (0xC0, 1, 1, "64"),
    (0x1002, 2, 1, "68, 69"),
    (0x2400, 8, 1, "70, 79"),
    (0x2002, 8, 1, "71, 681"),
    (0x2102, 8, 1, "72, 682"),
    (
        0x2400, 16, 1,
        "73, 76, 82, 94, 97, 133, 137, 141, 145, 149, 153, 157, 161, 165, 169, 173, 177, 181, 185",
    ),
    (
        0x2002, 16, 1,
        "74, 77, 83, 98, 134, 138, 142, 146, 150, 154, 158, 162, 166, 170, 174, 178, 182, 186, "
        "568-581",
    ),
    (
        0x2102, 16, 1,
        "75, 78, 99, 135, 139, 143, 147, 151, 155, 159, 163, 167, 171, 175, 179, 183, 187",
    ),
    (0x2000, 8, 1, "80, 81, 596, 599, 600, 603-605"),
    (0x2001, 16, 1, "84"),
    (0x2000, 16, 1, "95, 96, 597, 598, 601, 602, 606, 626-635"),
    (0x200, 4, 1, "100, 101"),
    (0x200, 8, 1, "102, 108, 109"),
    (0xA02, 1, 2, "103, 506, 619, 647, 660"),
    (0xA02, 2, 2, "104, 105, 709, 717"),
    (0xA00, 1, 2, "106, 110, 504, 505"),
    (0x1202, 2, 1, "107, 614, 617, 618"),
    (0x200, 1, 1, "111-113"),
    (0x200, 2, 1, "114"),
    (0x12, 1, 1, "502"),
    (0x12, 2, 1, "503, 541"),
    (0x2, 3, 1, "508, 623"),
    (0x1, 3, 1, "510"),
    (0xA0, 3, 1, "513"),
    (0xC0, 3, 1, "516"),
    (0x102, 3, 1, "521, 624"),
    (0x4, 6, 1, "523"),
    (0xC0, 6, 1, "526"),
    (0xA0, 6, 1, "529"),
    (0x14, 4, 1, "542"),
    (0x1C, 8, 1, "543"),
    (0x14, 2, 1, "544"),
    (0x1C, 4, 1, "545"),
    (0x54002, 4, 1, "548, 550"),
    (0x54002, 3, 1, "549"),
    (0x980A0, 1, 1, "552"),
    (0x18002, 4, 1, "553"),
    (0x0, 4, 1, "554"),
    (0x0, 8, 1, "555"),
    (0x0, 12, 1, "556"),
    (0x0, 16, 1, "557"),
    (0x1, 6, 1, "558"),
    (0x1, 12, 1, "561"),
    (0x1, 16, 1, "562"),
    (0x2, 6, 1, "563"),
    (0x2, 12, 1, "566"),
    (0x2, 16, 1, "567"),
    (0x2100, 16, 1, "582-595, 609, 636-645"),
    (0x2100, 8, 1, "607, 608"),
    (0xA02, 1, 3, "615, 616"),
    (0x202, 4, 1, "620, 664, 711, 716, 719"),
    (0x202, 1, 1, "625, 657, 661, 679"),
    (0x102, 1, 1, "646"),
    (0x1A02, 4, 2, "654"),
    (0x1202, 4, 1, "655"),
    (0x1202, 8, 1, "656"),
    (0x202, 2, 1, "658, 659, 662, 663, 680, 710, 715, 718"),
    (0x2A0, 1, 1, "665"),
    (0x2A0, 2, 1, "666-668, 713, 720"),
    (0x2A0, 4, 1, "669, 714, 721"),
    (0x102, 2, 1, "678"),
    (0xAA0, 2, 2, "712"),
)

_UNUSED_RECORD = (0x0, 1, 1)
_RECORDS = _by_id(((flags, size, planes), ranges) for flags, size, planes, ranges in _RECORD_ROWS)

# Id -> (flags, bytes, planes), for every id that has a record.
FORMATS = [_RECORDS.get(format_id, _UNUSED_RECORD) for format_id in range(RECORD_COUNT)]

# Width and height of a block. All ids that no row names: 1 x 1.
_BLOCK_ROWS = (
    (4, 4, "70-84, 94-99, 133-135, 568, 582, 596-609, 628, 629, 638, 639, 681, 682"),
    (5, 4, "137-139, 569, 583, 630, 640"),
    (5, 5, "141-143, 570, 584, 631, 632, 641, 642"),
    (6, 5, "145-147, 571, 585, 633, 643"),
    (6, 6, "149-151, 572, 586, 634, 635, 644, 645"),
    (8, 5, "153-155, 573, 587"),
    (8, 6, "157-159, 574, 588"),
    (8, 8, "161-163, 575, 589"),
    (10, 5, "165-167, 576, 590"),
    (10, 6, "169-171, 577, 591"),
    (10, 8, "173-175, 578, 592"),
    (10, 10, "177-179, 579, 593"),
    (12, 10, "181-183, 580, 594"),
    (12, 12, "185-187, 581, 595"),
    (3, 3, "626, 636"),
    (4, 3, "627, 637"),
    (3, 1, "654, 655, 656"),
)

_BLOCKS = _by_id(((width, height), ranges) for width, height, ranges in _BLOCK_ROWS)

# Bytes of an element of plane 0. All ids that no row names: 1.
_PLANE_0_BYTES_ROWS = (
    (
        16,
        "1-4, 73-78, 82-84, 94-99, 133-135, 137-139, 141-143, 145-147, 149-151, 153-155, 157-159, "
        "161-163, 165-167, 169-171, 173-175, 177-179, 181-183, 185-187, 524, 527, 530, 557, 562, "
        "567-595, 597, 598, 601, 602, 606, 609, 626-645",
    ),
    (12, "5-8, 556, 561, 566"),
    (
        8,
        "9-19, 21, 22, 70-72, 79-81, 102, 108, 109, 522, 525, 528, 543, 555, 560, 565, 596, 599, "
        "600, 603-605, 607, 608, 656, 681, 682, 685, 686",
    ),
    (
        4,
        "23-47, 67, 87-93, 100, 101, 116-118, 501, 507, 509, 512, 515, 520, 531-539, 542, 545, "
        "547, 548, 550, 553, 554, 559, 564, 620-622, 648-651, 654, 655, 664, 669, 683, 684, 711, "
        "714, 716, 719, 721",
    ),
    (
        2,
        "48-59, 68, 69, 85, 86, 104, 105, 107, 114, 115, 503, 511, 514, 517-519, 540, 541, 544, "
        "546, 610-614, 617, 618, 652, 653, 658, 659, 662, 663, 666-668, 678, 680, 709, 710, 712, "
        "713, 715, 717, 718, 720",
    ),
    (3, "508, 510, 513, 516, 521, 549, 623, 624"),
    (6, "523, 526, 529, 558, 563"),
)

_PLANE_0_BYTES = _by_id(((4, "20, 551"),) + _PLANE_0_BYTES_ROWS)

# Bytes of an element of planes 1 and 2. All ids that no row names: 0.
_PLANE_1_BYTES = _by_id(
    (
        (1, "20, 551"),
        (2, "103, 106, 110, 504, 505, 506, 619, 647, 660"),
        (4, "104, 105, 709, 712, 717"),
        (8, "654"),
        (1, "615, 616"),
    )
)
_PLANE_2_BYTES = _by_id(((1, "615, 616"),))

# The format that describes one plane. All pairs that no row names: the format itself.
_PLANE_FORMATS = {
    0: _by_id(
        (
            (625, "615, 616"),
            (715, "105"),
            (40, "20, 551"),
            (657, "103, 506, 619, 647"),
            (663, "104"),
            (655, "654"),
            (661, "660"),
            (710, "709"),
            (713, "712"),
            (718, "717"),
        )
    ),
    1: _by_id(
        (
            (625, "615, 616"),
            (716, "105"),
            (552, "20, 551"),
            (658, "103, 506"),
            (659, "619, 647"),
            (664, "104"),
            (656, "654"),
            (662, "660"),
            (711, "709"),
            (714, "712"),
            (719, "717"),
        )
    ),
    2: _by_id(((625, "615, 616"),)),
}

_LISTED_SUBSTITUTES = _by_id(
    (
        (567, "5, 6, 7, 8, 556, 561, 566"),
        (28, "508, 510, 513, 516, 521, 549, 623, 624"),
        (11, "523, 526, 529, 558, 563"),
    )
)

# Two-byte formats with the taller tile. The two sets differ on purpose.
TALL_TILE_FAMILY5 = frozenset(ids("49-52, 103, 506, 511, 514, 517, 619, 647, 678"))
TALL_TILE_FAMILY67 = frozenset(ids("48-52, 103, 511, 514, 517, 658, 666, 678"))

# One-byte formats with the wide, low tile.
WIDE_TILE = frozenset(ids("660, 661"))

# Counted in blocks by the minimal alignment of family 5, beside the block-compressed formats.
BLOCK_LIKE_FAMILY5 = frozenset(ids("107, 614, 654, 655, 656"))

# Its linear height goes in steps of 64 rows.
ROWS_OF_64 = 670

# Elements that one unit of the extra width padding stands for. All others: 16.
_EXTRA_WIDTH_UNITS = _by_id(
    (
        (32, "103-107, 614, 657, 658, 663, 664, 679, 680, 709-721"),
        (64, "615, 619, 660, 661, 662"),
    )
)


@dataclass(frozen=True)
class Traits:
    """What the rules ask of a format; also of one without a record, which acts as an unused id."""

    format_id: int
    flags: int
    bytes: int  # of an element; of a block for block-compressed formats
    planes: int
    block_width: int
    block_height: int

    @property
    def is_block_compressed(self):
        return bool(self.flags & FLAG_BLOCK_COMPRESSED)

    @property
    def is_counted_in_blocks(self):
        """Block-compressed, or two pixels to an element."""
        return bool(self.flags & FLAGS_IN_BLOCKS)

    @property
    def is_block_like_family5(self):
        return self.is_block_compressed or self.format_id in BLOCK_LIKE_FAMILY5

    @property
    def has_padded_pitch(self):
        """Whether linear pitches of the format are ever padded."""
        flagged = self.flags & (FLAG_VIDEO | FLAG_BLOCK_COMPRESSED)
        return self.format_id != FOURCC_FORMAT and not flagged


def traits(format_id):
    """The traits of any 32-bit format number. Without a record it is never an index."""
    flags, size, planes = (
        FORMATS[format_id] if 0 <= format_id < RECORD_COUNT else _UNUSED_RECORD
    )
    block_width, block_height = _BLOCKS.get(format_id, (1, 1))
    return Traits(format_id, flags, size, planes, block_width, block_height)


def plane_bytes(format_id, plane):
    """Bytes of an element of one plane; 0 for a plane that the format lacks."""
    if plane == 0:
        return _PLANE_0_BYTES.get(format_id, 1)
    if plane == 1:
        return _PLANE_1_BYTES.get(format_id, 0)
    if plane == 2:
        return _PLANE_2_BYTES.get(format_id, 0)
    return 0


def plane_format(format_id, plane):
    """The format that describes one plane of a format, for families 6 and 7."""
    return _PLANE_FORMATS.get(plane, {}).get(format_id, format_id)


def is_power_of_two(number):
    return number > 0 and number & (number - 1) == 0


def npot_substitute(format_id):
    """The format whose element stands in for one whose bytes are no power of two."""
    size = traits(format_id).bytes
    if size == 0 or is_power_of_two(size):
        return format_id
    return {3: 28, 6: 11}.get(size, 567)


def listed_substitute(format_id):
    """The same from a list of ids, as the base widths of families 6 and 7 take it."""
    return _LISTED_SUBSTITUTES.get(format_id, format_id)


def extra_width_unit(format_id):
    """Elements that one unit of the extra padding adds to a width, before the chip's factor."""
    return _EXTRA_WIDTH_UNITS.get(format_id, 16)
