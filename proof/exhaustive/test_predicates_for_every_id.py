"""predicates_for_every_id fails when an answer differs, and when its file is not whole.

Run as: test_predicates_for_every_id.py PROGRAM
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

# pylint: disable=wrong-import-position
from predicates_for_every_id import answer_lines, read_chips

PROGRAM = None
DIFFERENT = 1
REFUSED = 2


class Program(unittest.TestCase):
    LINES = list(answer_lines(read_chips()))

    def run_on(self, lines):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "answers.txt"
            path.write_text("".join(f"{line}\n" for line in lines), encoding="utf-8")
            return subprocess.run(
                [PROGRAM, path, "--quick"], check=False, capture_output=True, text=True
            )

    def changed(self, old, new):
        """The answers with a change in the last line that has `old`."""
        place = max(i for i, line in enumerate(self.LINES) if old in line)
        lines = list(self.LINES)
        lines[place] = lines[place].replace(old, new)
        return lines

    def test_takes_the_rules_answers(self):
        self.assertEqual(self.run_on(self.LINES).returncode, 0)

    def test_notices_one_other_answer(self):
        changes = {
            "an id of the last chip": ("ids 2-4,", "ids 2-3,"),
            "every id from 722 on": ("ubwc behind 0 ids 10,", "ubwc behind 1 ids 10,"),
            "a message's text": ("RenderableByGpu Unknown Family", "RenderableByGpu Family"),
            "a message's function": ("korvel_get_rev_id", "korvel_get_rev"),
            "a second identification": ("asks_once", "asks_again"),
        }
        for what, (old, new) in changes.items():
            with self.subTest(what):
                result = self.run_on(self.changed(old, new))
                self.assertEqual(result.returncode, DIFFERENT, result.stderr)
                self.assertIn("by the rules", result.stderr)

    def test_refuses_a_file_that_is_not_whole(self):
        last_chip = max(i for i, line in enumerate(self.LINES) if "none family 7" in line)
        without_a_chip = list(self.LINES)
        without_a_chip[last_chip] = self.LINES[last_chip].replace("machine 0x", "machine 0x1")
        files = {
            "nothing": [],
            "no machine": ["ids 722 machines 0", "end"],
            "no end": self.LINES[:-1],
            "half": self.LINES[: len(self.LINES) // 2],
            "another chip": without_a_chip,
            "no failing device": self.changed("getinfo", "device_open"),
            "an id too many": self.changed("ids 2-4,", "ids 2-722,"),
        }
        for what, lines in files.items():
            with self.subTest(what):
                self.assertEqual(self.run_on(lines).returncode, REFUSED)


if __name__ == "__main__":
    if len(sys.argv) < 2 or not Path(sys.argv[1]).is_file():
        sys.exit(f"usage: {sys.argv[0]} PROGRAM")
    PROGRAM = Path(sys.argv.pop(1)).resolve()
    unittest.main()
