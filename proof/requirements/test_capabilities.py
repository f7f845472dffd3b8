"""The rules of capabilities and sample tiles against examples worked out by hand, and the reading
of the hardware data against files that are not as they should be."""

import re
import sys
import tempfile
import unittest
from dataclasses import replace
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

# pylint: disable=wrong-import-position
from capabilities import FIRST_UNNAMED_ID, renderable, sampleable, ubwc_supported
from hardware_rows import HARDWARE_DATA, OddRow, read_chips, read_hardware_data
from id_list import as_text, id_list
from identification import Chip, Machine, Message, identify
from sample_tiles import FOUR_CHARACTER_FORMAT, sample_tile

CHIP = Chip(1, family_id=7)
FAMILIES = [replace(CHIP, family_id=family_id) for family_id in (5, 6, 7)]
UNKNOWN = Chip(1)


def rendered(chip, format_id, use=0):
    return renderable(chip, format_id, use).supported


def sampled(chip, format_id, samples=1, view=0):
    return sampleable(chip, format_id, samples, view).supported


class Lists(unittest.TestCase):
    def test_are_read_as_they_are_written(self):
        self.assertEqual(id_list("2-4, 10,12"), {2, 3, 4, 10, 12})
        self.assertEqual(as_text({12, 2, 3, 4, 10}), "2-4,10,12")

    def test_name_an_id_once(self):
        with self.assertRaises(ValueError):
            id_list("2-4, 3")


class Predicates(unittest.TestCase):
    def test_depth_formats_are_targets_and_views_of_depth_alone(self):
        for chip in FAMILIES:
            self.assertEqual([rendered(chip, 40, use) for use in (0, 1, -1)], [0, 1, 1])
            self.assertEqual([sampled(chip, 40, 1, view) for view in (0, 1, -1)], [0, 1, 1])
            # 549 is read as depth and is no target.
            self.assertEqual((rendered(chip, 549, 1), sampled(chip, 549, 1, 1)), (0, 1))

    def test_plain_colour_does_not_look_at_the_use(self):
        for chip in FAMILIES:
            self.assertEqual([rendered(chip, 28, use) for use in (0, 1)], [1, 1])
            self.assertEqual([sampled(chip, 28, 8, view) for view in (0, 1)], [1, 1])

    def test_three_bytes_a_pixel_are_single_sampled_colour(self):
        for chip in FAMILIES:
            self.assertEqual([rendered(chip, 508, use) for use in (0, 1)], [1, 0])
            counts = (0, 1, 2, 0xFFFFFFFF)
            self.assertEqual([sampled(chip, 508, count) for count in counts], [1, 1, 0, 0])
            self.assertEqual([sampled(chip, 508, count, 1) for count in counts], [0, 0, 0, 0])

    def test_families_differ(self):
        self.assertEqual([rendered(chip, 67) for chip in FAMILIES], [0, 1, 1])
        self.assertEqual([sampled(chip, 67) for chip in FAMILIES], [1, 1, 1])
        self.assertEqual([rendered(chip, 668) for chip in FAMILIES], [1, 0, 0])
        self.assertEqual([sampled(chip, 668) for chip in FAMILIES], [0, 1, 1])
        self.assertEqual([sampled(chip, 668, 1, 1) for chip in FAMILIES], [1, 1, 1])
        self.assertEqual([sampled(chip, 676) for chip in FAMILIES], [1, 0, 0])
        self.assertEqual([rendered(chip, 683) for chip in FAMILIES], [0, 0, 1])

    def test_sixteen_bit_yuv_goes_by_the_model_on_family_7(self):
        able = [replace(chip, yuv16_ext=True, p016=True) for chip in FAMILIES]
        ext_alone = replace(CHIP, yuv16_ext=True)
        for format_id in (105, 709, 712, 717):
            self.assertEqual([rendered(chip, format_id) for chip in able], [0, 0, 1])
            self.assertEqual([sampled(chip, format_id) for chip in able], [0, 0, 1])
            self.assertEqual(rendered(CHIP, format_id), 0)
        self.assertEqual((rendered(able[2], 710), sampled(able[2], 710)), (0, 1))
        self.assertEqual([sampled(ext_alone, format_id) for format_id in (714, 715)], [1, 0])

    def test_two_models_of_family_5_do_not_sample_some_block_formats(self):
        excluded = [replace(chip, family5_sample_excluded=True) for chip in FAMILIES]
        for format_id in (80, 81, 83, 84, 95, 96, 626, 635):
            self.assertEqual([sampled(chip, format_id) for chip in excluded], [0, 1, 1])
        for format_id in (79, 82, 94, 97, 636):
            self.assertEqual([sampled(chip, format_id) for chip in excluded], [1, 1, 1])

    def test_compression_goes_by_the_chip(self):
        self.assertEqual(ubwc_supported(CHIP, 28).supported, 1)
        self.assertEqual(ubwc_supported(replace(CHIP, ubwc_never=True), 28).supported, 0)
        self.assertEqual(ubwc_supported(CHIP, 40).supported, 1)
        self.assertEqual(
            ubwc_supported(replace(CHIP, ubwc_depth_excluded=True), 40).supported, 0
        )
        b_alone = replace(CHIP, ubwc_yuv_b=True)
        a_alone = replace(CHIP, ubwc_yuv_a=True)
        yuv16 = replace(CHIP, ubwc_yuv_b=True, ubwc_yuv16=True)
        for format_id, expected in ((104, (0, 1, 1, 1)), (683, (0, 0, 1, 1)), (709, (0, 0, 0, 1))):
            chips = (CHIP, a_alone, b_alone, yuv16)
            answers = tuple(ubwc_supported(chip, format_id).supported for chip in chips)
            self.assertEqual(answers, expected)
        self.assertEqual(ubwc_supported(CHIP, 20).supported, 0)

    def test_an_unknown_family_is_said_by_two_of_three(self):
        self.assertEqual(
            renderable(UNKNOWN, 28, 0).message,
            Message("isFormatRenderableByGpu", "Unknown Family ID 0"),
        )
        self.assertEqual(
            sampleable(UNKNOWN, 28, 1, 0).message,
            Message("isFormatSampleableByGpu", "Unknown Family ID 0"),
        )
        self.assertIsNone(ubwc_supported(UNKNOWN, 28).message)
        self.assertEqual(rendered(UNKNOWN, 28) + sampled(UNKNOWN, 28), 0)
        self.assertEqual(ubwc_supported(UNKNOWN, 28).supported, 0)

    def test_unnamed_ids_are_answered_with_no(self):
        self.assertEqual(FIRST_UNNAMED_ID, 722)
        able = replace(CHIP, yuv16_ext=True, p016=True, ubwc_yuv_b=True, ubwc_yuv16=True)
        for format_id in (0, 1, 134, 722, 0x7FFFFFFF, FOUR_CHARACTER_FORMAT, -28, 2**32 - 28):
            self.assertEqual(rendered(able, format_id) + rendered(able, format_id, 1), 0)
            self.assertEqual(sampled(able, format_id) + sampled(able, format_id, 2, 1), 0)
            self.assertEqual(ubwc_supported(able, format_id).supported, 0)

    def test_values_of_a_kind_are_answered_alike(self):
        able = [replace(c, yuv16_ext=True, p016=True) for c in FAMILIES] + FAMILIES + [UNKNOWN]
        nonzero = [1 << bit for bit in range(32)] + [-1, 3, 0x7FFFFFFF]
        multi = [1 << bit for bit in range(1, 32)] + [3, 0xFFFFFFFF]
        for chip in able:
            for format_id in range(FIRST_UNNAMED_ID + 1):
                self.assertEqual({renderable(chip, format_id, use) for use in nonzero},
                                 {renderable(chip, format_id, 1)})
                for view in (0, *nonzero[::7]):
                    self.assertEqual({sampleable(chip, format_id, 0, view)},
                                     {sampleable(chip, format_id, 1, int(view != 0))})
                    self.assertEqual({sampleable(chip, format_id, m, view) for m in multi[::6]},
                                     {sampleable(chip, format_id, 2, int(view != 0))})


class Identities(unittest.TestCase):
    def test_of_known_unknown_and_failing_devices(self):
        chips = {CHIP.chip_id: CHIP}
        known = identify(Machine(1), chips)
        self.assertEqual((known.chip, known.messages, known.asks_again), (CHIP, (), False))
        unknown = identify(Machine(2), chips)
        self.assertEqual((unknown.chip, len(unknown.messages)), (Chip(2), 3))
        self.assertEqual(
            unknown.messages[2], Message("korvel_get_rev_id", "Unknown HXL chip ID 2")
        )
        failed = identify(Machine(1, "getinfo"), chips)
        self.assertEqual((failed.chip, failed.asks_again), (Chip(0), False))
        unavailable = identify(Machine(1, "library_open"), chips)
        self.assertEqual((len(unavailable.messages), unavailable.asks_again), (4, True))
        self.assertEqual(unavailable.messages[3].text, "Unknown HXL chip ID 4294967295")
        self.assertTrue(identify(Machine(0xFFFFFFFF), chips).asks_again)


class SampleTiles(unittest.TestCase):
    def test_of_pixels_by_samples_and_bytes(self):
        # 28 has 4 bytes, 11 has 8, 2 has 16, 508 has 3.
        for family_id in (5, 6, 7):
            tiles = [sample_tile(family_id, 28, samples, 0) for samples in (1, 2, 4, 8)]
            self.assertEqual(tiles, [(16, 4), (8, 4), (4, 4), (4, 2)])
            tiles = [sample_tile(family_id, 11, samples, 0) for samples in (1, 2, 4, 8)]
            self.assertEqual(tiles, [(8, 4), (4, 4), (4, 2), (2, 2)])
            tiles = [sample_tile(family_id, 2, samples, 0) for samples in (1, 2, 4)]
            self.assertEqual(tiles, [(4, 4), (4, 2), (2, 2)])
            # 49 has 2 bytes and a tall tile, 56 has 2 bytes and none.
            self.assertEqual(sample_tile(family_id, 49, 1, 0), (16, 8))
            self.assertEqual(sample_tile(family_id, 49, 2, 0), (8, 4))
            self.assertEqual(sample_tile(family_id, 56, 1, 0), (16, 4))
        self.assertEqual([sample_tile(f, 678, 1, 0) for f in (5, 6, 7)],
                         [(16, 4), (16, 8), (16, 8)])

    def test_what_is_not_known_is_one_pixel_on_family_5(self):
        for format_id, samples in ((2, 8), (508, 1), (28, 3), (28, 0), (28, 9), (28, -1)):
            tiles = [sample_tile(family_id, format_id, samples, 0) for family_id in (5, 6, 7)]
            self.assertEqual(tiles, [(1, 1), None, None])
        # Video formats without a tile: 619 has 1 byte.
        self.assertEqual([sample_tile(f, 619, 1, 0) for f in (5, 6, 7)], [(16, 4), None, None])
        tiles = [sample_tile(f, FOUR_CHARACTER_FORMAT, 1, 0) for f in (5, 6, 7)]
        self.assertEqual(tiles, [(16, 4), None, None])

    def test_of_video_by_format_and_plane(self):
        for family_id in (6, 7):
            for samples in (0, 1, 9):
                self.assertEqual(sample_tile(family_id, 103, samples, 0), (32, 8))
                self.assertEqual(sample_tile(family_id, 103, samples, 1), (16, 8))
            self.assertEqual(sample_tile(family_id, 654, 1, 0), (48, 4))
            self.assertEqual(sample_tile(family_id, 654, 1, 1), (24, 4))
        for format_id, tile in ((658, (16, 8)), (105, (32, 4)), (719, (16, 4)), (659, None)):
            self.assertIsNone(sample_tile(6, format_id, 1, 0))
            self.assertEqual(sample_tile(7, format_id, 1, 0), tile)

    def test_of_no_family_is_one_pixel(self):
        self.assertEqual(sample_tile(0, 28, 1, 0), (1, 1))


class HardwareRows(unittest.TestCase):
    TEXT = HARDWARE_DATA.read_text(encoding="utf-8")

    def read(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "rows.h"
            path.write_text(text, encoding="utf-8")
            return read_hardware_data(path)

    def test_are_as_many_as_lines_begin_like_one(self):
        lines = [line.strip() for line in self.TEXT.splitlines()]
        begun = sum(line.startswith("{") for line in lines)
        data = read_hardware_data()
        self.assertEqual(begun, len(data.families) + len(data.models) + len(data.chips))
        self.assertEqual(read_chips().keys(), data.chips.keys())

    def test_hold_every_word_at_its_place(self):
        head = self.TEXT[: self.TEXT.index("inline constexpr FamilyData")]
        data = self.read(
            head + "inline constexpr FamilyData kFamilyData[] = {\n  {6, 3},\n};\n"
            "inline constexpr ModelData kModelData[] = {\n"
            "  {0x060310, 9, 8, 1, 0, 1},\n};\n"
            "inline constexpr ChipData kChipData[] = {\n"
            "  {0x43010000, 6, 0x060310, 0x0310000A, {1, 0, 1, 1, 0, 0, 0, 0, 0, 1}, 1,"
            " {0, 1, 0, 1, 0}},  // a comment\n};\n"
        )
        self.assertEqual(data.families, {6: {"family_id": 6, "extra_padding_units": 3}})
        model = data.models[0x060310]
        self.assertEqual(list(model.values()), [0x060310, 9, 8, True, False, True])
        chip = data.chips[0x43010000]
        self.assertEqual(chip["rev_id"], 0x0310000A)
        self.assertEqual(list(chip["columns"].values()), [x == "1" for x in "1011000001"])
        self.assertTrue(chip["supported"])
        self.assertEqual(list(chip["ubwc"].values()), [False, True, False, True, False])

    def test_that_are_odd_end_the_reading(self):
        row = next(line for line in self.TEXT.splitlines() if line.endswith("}},"))
        odd = {
            "a word too many": self.TEXT.replace(row, row.replace("}},", "}, 1},"), 1),
            "a flag of 2": self.TEXT.replace(row, re.sub(r"{[01],", "{2,", row, count=1)),
            "a row twice": self.TEXT.replace(row, f"{row}\n{row}", 1),
            "two rows on a line": self.TEXT.replace(row, f"{row} {row}", 1),
            "a word that is no number": self.TEXT.replace(row, row.replace("0x", "kA + 0x", 1)),
            "a mark between digits": self.TEXT.replace(row, row.replace("0x", "0x0'", 1)),
            "octal": self.TEXT.replace(row, re.sub(r", ([567]),", r", 0\1,", row, count=1)),
            "an unknown model": self.TEXT.replace(
                row, re.sub(r", 0x\w+,", ", 0x1,", row, count=1)
            ),
            "no comma at the end": self.TEXT.replace(row, row.rstrip(","), 1),
            "another order of fields": re.sub(
                r"(bool \w+;[^\n]*\n)(\s*bool \w+;[^\n]*\n)", r"\2\1", self.TEXT, count=1
            ),
            "another name of a table": self.TEXT.replace(" kChipData[]", " kChips[]", 1),
            "no rows": self.TEXT[: self.TEXT.index("kChipData[] = {") + 16] + "\n};\n",
            "nothing": "",
        }
        for what, text in odd.items():
            with self.subTest(what):
                self.assertTrue(text != self.TEXT, "nothing is changed")
                with self.assertRaises(OddRow):
                    self.read(text)


if __name__ == "__main__":
    unittest.main()
