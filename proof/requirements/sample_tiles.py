"""The tile of pixels that stands behind one byte of a flag buffer.

What the tile goes by of a format, its bytes and whether it is a video format, is written down here
once more: the lists are those of the format table.
"""

from id_list import id_list

# A format named by four characters, "WXB7"; it has no record.
FOUR_CHARACTER_FORMAT = 0x37425857

# Formats laid out as video or palettes. Families 6 and 7 give them tiles of their own.
VIDEO_FORMATS = id_list("100-114, 504-506, 614-620, 625, 647, 654-669, 679-680, 709-721")

# Bytes of an element, or of a block, or of an element of the first plane. All other ids, unused
# ones and those behind the table among them, have 1.
FORMATS_OF_BYTES = {
    2: id_list(
        "48-59, 68-69, 85-86, 104-105, 107, 114-115, 503, 511, 514, 517-519, 540-541, 544, 546,"
        "610-614, 617-618, 652-653, 658-659, 662-663, 666-668, 678, 680, 709-710, 712-713, 715,"
        "717-718, 720"
    ),
    3: id_list("508, 510, 513, 516, 521, 549, 623-624"),
    4: id_list(
        "23-47, 67, 87-93, 100-101, 116-118, 501, 507, 509, 512, 515, 520, 531-539, 542, 545,"
        "547-548, 550, 553-554, 559, 564, 620-622, 648-651, 654-655, 664, 669, 683-684, 711, 714,"
        "716, 719, 721"
    ),
    6: id_list("523, 526, 529, 558, 563"),
    8: id_list(
        "9-22, 70-72, 79-81, 102, 108-109, 522, 525, 528, 543, 551, 555, 560, 565, 596, 599-600,"
        "603-605, 607-608, 656, 681-682, 685-686"
    ),
    12: id_list("5-8, 556, 561, 566"),
    16: id_list(
        "1-4, 73-78, 82-84, 94-99, 133-135, 137-139, 141-143, 145-147, 149-151, 153-155, 157-159,"
        "161-163, 165-167, 169-171, 173-175, 177-179, 181-183, 185-187, 524, 527, 530, 557, 562,"
        "567-595, 597-598, 601-602, 606, 609, 626-645"
    ),
}

# Width and height by samples and by bytes of an element.
TILES = {
    1: {1: (16, 4), 2: (16, 4), 4: (16, 4), 8: (8, 4), 16: (4, 4)},
    2: {1: (8, 4), 2: (8, 4), 4: (8, 4), 8: (4, 4), 16: (4, 2)},
    4: {1: (4, 4), 2: (4, 4), 4: (4, 4), 8: (4, 2), 16: (2, 2)},
    8: {1: (4, 2), 2: (4, 2), 4: (4, 2), 8: (2, 2)},
}

# Formats of 2 bytes whose tile of one sample is 8 high.
TALL_TILES = {
    5: id_list("48-52, 511, 514, 517"),
    6: id_list("48-52, 511, 514, 517, 678"),
    7: id_list("48-52, 511, 514, 517, 678"),
}
TALL_TILE = (16, 8)

# Of video formats on families 6 and 7: formats, width of the first plane, width of the others,
# height. Samples do not matter.
_VIDEO_TILES_OF_BOTH = (
    ("107, 614, 617, 618, 662, 663, 668, 680", 32, 32, 4),
    ("620, 664, 669", 16, 16, 4),
    ("625, 657, 665, 679", 32, 32, 8),
    ("666", 16, 16, 8),
    ("654", 48, 24, 4),
    ("655", 48, 48, 4),
    ("656", 24, 24, 4),
    ("660", 64, 32, 4),
    ("661", 64, 64, 4),
    ("104", 32, 16, 4),
    ("103, 106, 506", 32, 16, 8),
)
_VIDEO_TILES_OF_FAMILY_7 = (
    ("710, 713, 715, 718, 720", 32, 32, 4),
    ("711, 714, 716, 719, 721", 16, 16, 4),
    ("658", 16, 16, 8),
    ("105, 709, 712, 717", 32, 16, 4),
)


def _video_tiles(*row_lists):
    tiles = {}
    for rows in row_lists:
        for formats, first_plane_width, other_planes_width, height in rows:
            for format_id in id_list(formats):
                if format_id in tiles:
                    raise ValueError(f"format {format_id} has two tiles")
                tiles[format_id] = (first_plane_width, other_planes_width, height)
    return tiles


VIDEO_TILES = {
    6: _video_tiles(_VIDEO_TILES_OF_BOTH),
    7: _video_tiles(_VIDEO_TILES_OF_BOTH, _VIDEO_TILES_OF_FAMILY_7),
}


def sample_tile(family_id, format_id, samples, plane):
    """Width and height, in pixels, of the tile of a format's plane; `samples` is signed.

    None where the tile is not known: it counts as 0 x 0, and who divides by it divides by 0.
    """
    if family_id == 5:
        # Video formats go by their bytes too, and nothing is unknown.
        return _tile_of_pixels(family_id, format_id, samples) or (1, 1)
    if family_id in (6, 7):
        if format_id == FOUR_CHARACTER_FORMAT:
            return None
        if format_id in VIDEO_FORMATS:
            return _tile_of_video(family_id, format_id, plane)
        return _tile_of_pixels(family_id, format_id, samples)
    return (1, 1)


def bytes_of(format_id):
    """Bytes of a format's element."""
    for size_bytes, formats in FORMATS_OF_BYTES.items():
        if format_id in formats:
            return size_bytes
    return 1


def _tile_of_pixels(family_id, format_id, samples):
    if samples == 1 and bytes_of(format_id) == 2 and format_id in TALL_TILES[family_id]:
        return TALL_TILE
    return TILES.get(samples, {}).get(bytes_of(format_id))


def _tile_of_video(family_id, format_id, plane):
    tile = VIDEO_TILES[family_id].get(format_id)
    if tile is None:
        return None
    first_plane_width, other_planes_width, height = tile
    return (first_plane_width if plane == 0 else other_planes_width, height)
