#!/usr/bin/env python3
"""The Python module on the built library and the simulator. tests/python/korvel_utils_test.py TREE FOLDER_OF_LIBRARIES"""

import ctypes
import sys
import unittest
from pathlib import Path

TREE, LIBRARIES = Path(sys.argv[1]), sys.argv[2]
sys.path.insert(0, str(TREE / "python"))
import korvel_utils  # pylint: disable=wrong-import-position

LIBRARY = korvel_utils.Library(LIBRARIES)


class Records(unittest.TestCase):
    """The records are those of the list of the ABI."""

    def test_every_field_stands_where_the_list_says(self):
        """All fields of the five records, by offset, and their sizes."""
        names = {"MetadataHeader", "PlaneLayout", "LevelLayout", "MemoryLayout", "LayoutMetadata"}
        listed, found = set(), set()
        for line in (TREE / "tests/package/abi.txt").read_text().splitlines():
            kind, name, number = line.split()[:3]
            if kind == "record" and name in names or kind == "field" and name.split(".")[0] in names:
                listed.add((name, int(number)))
        for name in names:
            record = getattr(korvel_utils, name)
            found.add((name, ctypes.sizeof(record)))
            for field in record._fields_:
                found.add((f"{name}.{field[0]}", getattr(record, field[0]).offset))
        self.assertGreater(len(listed), 60)
        self.assertEqual(listed, found)


class Layouts(unittest.TestCase):
    """The numbers are those that tests/examples/outputs has, with their derivation."""

    def test_surface(self):
        """1920 x 1080 with flags."""
        layout = LIBRARY.lay_out(1920, 1080, format=28, ubwc=True)
        plane = layout.levels[0].planes[0]
        self.assertEqual((layout.allocation_bytes, layout.alignment_bytes), (8392704, 4096))
        self.assertEqual((plane.image_offset, plane.height_rows, plane.image_pitch_bytes), (36864, 1088, 7680))
        self.assertEqual((plane.flags.offset, plane.flags.size_bytes), (0, 36864))
        self.assertEqual(layout.driver_uuid.hex(), "04000000010000000300000000000000")
        self.assertEqual(len(layout.blob), 5536)
        self.assertEqual(LIBRARY.read(layout.blob), layout)

    def test_chain(self):
        """The nine levels of 256 x 256."""
        layout = LIBRARY.lay_out(256, 256, format=28, levels=9)
        offsets = [level.planes[0].image_offset for level in layout.levels]
        self.assertEqual(offsets, [0, 262144, 327680, 344064, 352256, 356352, 360448, 364544, 368640])
        self.assertEqual(layout.allocation_bytes, 372736)
        self.assertIsNone(layout.levels[0].planes[0].flags)


class Refusals(unittest.TestCase):
    """Exceptions have the library's own message."""

    def refusal(self, call, *arguments, **more):
        """The message of the exception that a call raises."""
        with self.assertRaises(korvel_utils.Refused) as caught:
            call(*arguments, **more)
        return str(caught.exception)

    def test_arguments(self):
        """What the library refuses, one message and then the next."""
        self.assertEqual(self.refusal(LIBRARY.lay_out, 0, 4, format=28),
                         "Invalid width, height, or depth: W = 0, H = 4, D = 1")
        self.assertEqual(self.refusal(LIBRARY.lay_out, 4, 4, format=28, samples=3), "Invalid input sample count 3")

    def test_records(self):
        """A stored record of another GPU, and one that ends too early."""
        layout = LIBRARY.lay_out(64, 64, format=28)
        record = layout.blob[24:]
        LIBRARY.validate(record, layout.device_uuid, layout.driver_uuid)
        other = bytes([layout.device_uuid[0] ^ 1]) + layout.device_uuid[1:]
        self.assertIn("Metadata device version mismatch",
                      self.refusal(LIBRARY.validate, record, other, layout.driver_uuid))
        self.assertEqual(self.refusal(LIBRARY.validate, record[:5472], layout.device_uuid, layout.driver_uuid),
                         "the record says that it has 5512 bytes, and 5472 are there")
        self.assertEqual(self.refusal(LIBRARY.validate, b"", layout.device_uuid, layout.driver_uuid),
                         "Metadata has bad signature 0")

    def test_what_the_library_would_not_notice(self):
        """Numbers that do not fit, and lengths."""
        for call in (lambda: LIBRARY.lay_out(4, 4, format=28, levels=16),
                     lambda: LIBRARY.lay_out(4, 4, format=28, levels=0),
                     lambda: LIBRARY.lay_out(2 ** 31, 4, format=28),
                     lambda: LIBRARY.lay_out(4, 4, format=-1),
                     lambda: LIBRARY.read(b"\0" * 5535),
                     lambda: LIBRARY.validate(b"", b"", b"\0" * 16),
                     lambda: LIBRARY.validate(b"\0" * 5513, b"\0" * 16, b"\0" * 16)):
            with self.assertRaisesRegex(ValueError, "such as|as Layout|as in Layout"):
                call()


if __name__ == "__main__":
    program = unittest.main(argv=sys.argv[:1], exit=False)
    if program.result.testsRun < 6 or not program.result.wasSuccessful():
        sys.exit(1)
