"""What an entry of equivalents.txt excuses, and what not."""

import unittest

from changes import changes_of
from equivalents import Equivalents, WrongList
from mutate import judged_equivalent

FILE = "identify/rows.h"
SOURCE = """\
constexpr Row kRows[] = {
    {0x10, {1, 1, 0, 1}, 7},
    {0x20, {0, 1, 1, 0}, 7},
};
constexpr Row kOthers[] = {
    {0x10, {1, 1, 0, 1}, 7},
};
bool check(int a, int b) {
  if (a < 4 && b < 4) return false;
  if (a == 9) {
    return false;
  }
  if (a == 9) {
    return false;
  }
  store(a,
        b);
  return a != b;
}
"""


def paragraph(*lines):
    return "\n".join(lines)


class Excused(unittest.TestCase):
    """Each test writes the changes down that an entry is to excuse, as (line, what it becomes)."""

    def setUp(self):
        self.changes = changes_of(FILE, SOURCE)

    def excused(self, *lines):
        equivalents = Equivalents.of(paragraph(*lines), self.changes)
        return [(c.line, c.after) for c in self.changes if equivalents.reason(c)]

    def mistakes(self, *lines):
        return Equivalents(paragraph(*lines)).mistakes(self.changes)

    def test_one_token_of_a_line(self):
        self.assertEqual(
            self.excused(FILE, "- if (a < «4» && b < 4) return false;", "+ 5", "Why."),
            [(9, "if (a < 5 && b < 4) return false;")],
        )

    def test_another_token_of_the_same_line(self):
        self.assertEqual(
            self.excused(FILE, "- if (a < 4 && b «<» 4) return false;", "+ <=", "+ >=", "Why."),
            [
                (9, "if (a < 4 && b <= 4) return false;"),
                (9, "if (a < 4 && b >= 4) return false;"),
            ],
        )

    def test_a_condition_in_terms_of_itself(self):
        self.assertEqual(
            self.excused(FILE, "- if («a < 4 && b < 4») return false;", "+ true || («»)", "Why."),
            [(9, "if (true || (a < 4 && b < 4)) return false;")],
        )

    def test_a_statement_of_two_lines_that_goes(self):
        self.assertEqual(
            self.excused(FILE, "- «store(a, b)»;", "+", "Why."),
            [(16, ";")],
        )

    def test_a_star_is_a_star(self):
        self.assertEqual(len(self.mistakes(FILE, "- if (a < «4» && *", "+ 5", "Why.")), 1)
        self.assertEqual(
            len(self.mistakes(FILE, "- if (a < «4» && b < 4) return false;", "+ *", "Why.")), 1
        )

    def test_a_line_that_the_file_has_twice(self):
        lines = ["- if («a == 9») {", "+ false && («»)", "Why."]
        self.assertEqual(
            self.excused(FILE + ", 2 places", *lines),
            [(10, "if (false && (a == 9)) {"), (13, "if (false && (a == 9)) {")],
        )
        self.assertEqual(len(self.mistakes(FILE, *lines)), 1)
        self.assertEqual(len(self.mistakes(FILE + ", 3 places", *lines)), 1)

    def test_one_column_of_a_table(self):
        # The fourth property column is the fifth number of a row: the first is the chip's.
        fourth = [FILE, "- kRows, number 5 of every row: «1»", "+ 0", "Why."]
        self.assertEqual(self.excused(*fourth), [(2, "{0x10, {1, 1, 0, 0}, 7},")])

    def test_no_change_of_the_column_before(self):
        fourth = Equivalents(
            paragraph(
                FILE,
                "- kRows, number 5 of every row: «1»",
                "+ 0",
                "Why.",
                "",
                FILE,
                "- kRows, number 5 of every row: «0»",
                "+ 1",
                "Why.",
            )
        )
        self.assertEqual(fourth.mistakes(self.changes), [])
        in_third = [
            c for c in self.changes if (c.place.table, c.place.number) == ("kRows", 4)
        ]
        self.assertEqual(
            [c.after for c in in_third],
            ["{0x10, {1, 1, 1, 1}, 7},", "{0x20, {0, 1, 0, 0}, 7},", "{0x20, {0, 1, 2, 0}, 7},"],
        )
        for change in in_third:
            self.assertIsNone(fourth.reason(change))
        self.assertEqual(sum(fourth.reason(c) is not None for c in self.changes), 2)

    def test_no_row_of_another_table(self):
        equivalents = Equivalents(
            paragraph(FILE, "- kOthers, number 6 of every row: «7»", "+ 8", "Why.")
        )
        lines = [c.line for c in self.changes if equivalents.reason(c)]
        self.assertEqual(lines, [6])

    def test_no_change_of_another_file(self):
        equivalents = Equivalents(
            paragraph("align/rows.h", "- return a «!=» b;", "+ ==", "Why.")
        )
        self.assertFalse(any(equivalents.reason(c) for c in self.changes))

    def test_a_row_that_goes_is_no_number(self):
        equivalents = Equivalents(
            paragraph(FILE, "- kRows, number 1 of every row: «0x10»", "+ 0x11", "+ 0x0", "Why.")
        )
        kinds = {c.kind for c in self.changes if equivalents.reason(c)}
        self.assertEqual(kinds, {"table"})

    def test_reasons_of_several_lines(self):
        equivalents = Equivalents(
            paragraph(FILE, "- return a «!=» b;", "+ ==", "One thing,", "and another.")
        )
        reasons = {equivalents.reason(c) for c in self.changes} - {None}
        self.assertEqual(reasons, {"One thing, and another."})


class Mistakes(unittest.TestCase):
    """Stale entries, and paragraphs that are none: each stops the run."""

    def setUp(self):
        self.changes = changes_of(FILE, SOURCE)

    def assert_stale(self, *lines):
        with self.assertRaisesRegex(WrongList, "no such change"):
            Equivalents.of(paragraph(*lines), self.changes)
        found = Equivalents(paragraph(*lines)).mistakes(self.changes)
        self.assertEqual(len(found), 1, found)
        self.assertTrue(found[0].startswith("no such change"), found)

    def assert_refused(self, *lines):
        with self.assertRaises(WrongList):
            Equivalents(paragraph(*lines))

    def test_a_line_that_has_changed(self):
        self.assert_stale(FILE, "- return a «!=» c;", "+ ==", "Why.")

    def test_a_change_that_is_not_made(self):
        self.assert_stale(FILE, "- return a «!=» b;", "+ <", "Why.")

    def test_one_stale_thing_beside_good_ones(self):
        self.assert_stale(FILE, "- return a «!=» b;", "+ ==", "+ <", "Why.")
        self.assert_stale(
            FILE, "- return a «!=» b;", "- return a «!=» c;", "+ ==", "Why."
        )

    def test_a_file_that_is_gone(self):
        self.assert_stale("identify/columns.h", "- return a «!=» b;", "+ ==", "Why.")

    def test_a_table_or_column_that_is_gone(self):
        self.assert_stale(FILE, "- kGone, number 5 of every row: «1»", "+ 0", "Why.")
        self.assert_stale(FILE, "- kRows, number 7 of every row: «1»", "+ 0", "Why.")

    def test_a_change_that_two_entries_name(self):
        entry = [FILE, "- return a «!=» b;", "+ ==", "Why."]
        found = Equivalents(paragraph(*entry, "", *entry)).mistakes(self.changes)
        self.assertEqual(len(found), 1, found)
        self.assertTrue(found[0].startswith("named twice"), found)

    def test_paragraphs_that_are_no_entries(self):
        self.assert_refused("- return a «!=» b;", "+ ==", "Why.")  # no file
        self.assert_refused(FILE, "- return a != b;", "+ ==", "Why.")  # nothing marked
        self.assert_refused(FILE, "- return «a» «!=» b;", "+ ==", "Why.")  # two things
        self.assert_refused(FILE, "- return a «!=» b;", "Why.")  # becomes nothing
        self.assert_refused(FILE, "+ ==", "Why.")  # nothing changes
        self.assert_refused(FILE, "- return a «!=» b;", "+ ==")  # no reason
        self.assert_refused(FILE, "- return a «!=» b;", "+ ==", "Why.", "+ <")
        self.assert_refused(FILE + ", 0 places", "- return a «!=» b;", "+ ==", "Why.")
        self.assert_refused(
            FILE + ", 2 places", "- kRows, number 5 of every row: «1»", "+ 0", "Why."
        )

    def test_comments_are_no_entries(self):
        self.assertEqual(Equivalents("# A list.\n\n# It is empty.\n").entries, [])


class Judged(unittest.TestCase):
    """A change that is listed is looked at all the same."""

    def test_when_nothing_notices_it(self):
        self.assertEqual(judged_equivalent("survived", ""), ("equivalent", ""))
        self.assertEqual(judged_equivalent("same code", ""), ("same code", ""))

    def test_when_something_does(self):
        self.assertEqual(judged_equivalent("killed", "a_test")[0], "misjudged")
        self.assertEqual(judged_equivalent("refused", "compiler: why")[0], "misjudged")


if __name__ == "__main__":
    unittest.main()
