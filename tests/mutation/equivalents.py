"""The checked-in list of changes that change nothing. equivalents.txt says at its top how an entry is
written."""

import re
from dataclasses import dataclass

from changes import tidy

_FILE = re.compile(r"(?P<file>[\w/]+\.(?:h|cpp))(?:, (?P<places>[1-9]\d*) places)?")
_IN_LINE = re.compile(r"(?P<head>[^«»]*)«(?P<old>[^«»]*)»(?P<tail>[^«»]*)")
_IN_TABLE = re.compile(r"(?P<table>\w+), number (?P<number>[1-9]\d*) of every row: «(?P<old>\w+)»")


@dataclass(frozen=True)
class Entry:
    """One part of one line, or one number of a table's rows, and one thing that it may become."""

    file: str
    written: str  # as the list has it
    old: str
    new: str
    places: int  # how many lines of the file are alike; 0 in a table, where any number of rows is
    reason: str
    head: str = ""
    tail: str = ""
    table: str = ""
    number: int = 0

    def fits(self, change):
        if change.file != self.file or change.place.old != self.old or tidy(change.new) != self.new:
            return False
        if self.table:
            return (change.place.table, change.place.number) == (self.table, self.number)
        return (change.place.head, change.place.tail) == (self.head, self.tail)

    def describe(self):
        return f"{self.file}: {self.written}  =>  {self.new or 'nothing'}"


class WrongList(Exception):
    """A paragraph that is not written as the top of the list says, or one that fits no change."""


def _entries(lines):
    """Those of one paragraph: each thing that may change, with each that it may become."""

    def refuse(why):
        raise WrongList(f"{why}:\n" + "\n".join(lines))

    def take(sign):
        taken = []
        while rest and (rest[0] == sign or rest[0].startswith(sign + " ")):
            taken.append(tidy(rest.pop(0)[1:]))
        return taken

    header = _FILE.fullmatch(lines[0])
    if not header:
        refuse("does not begin with a file")
    rest = lines[1:]
    befores, afters = take("-"), take("+")
    reason = tidy(" ".join(rest))
    if not befores or not afters:
        refuse("names nothing that changes, or nothing that it becomes")
    if not reason or any(line[:1] in ("-", "+") for line in rest):
        refuse("does not end with a reason")
    entries = []
    for before in befores:
        in_table, in_line = _IN_TABLE.fullmatch(before), _IN_LINE.fullmatch(before)
        if in_table:
            place = {"table": in_table["table"], "number": int(in_table["number"]), "places": 0}
            if header["places"]:
                refuse("counts the places in a table")
        elif in_line:
            place = {"head": tidy(in_line["head"]), "tail": tidy(in_line["tail"])}
            place["places"] = int(header["places"] or 1)
        else:
            refuse("does not put « » once around what changes")
        old = tidy((in_table or in_line)["old"])
        for after in afters:
            new = after.replace("«»", old)
            entries.append(Entry(header["file"], before, old, new, reason=reason, **place))
    return entries


class Equivalents:
    """Entries are matched by text, not by line number: they outlive moved lines."""

    def __init__(self, text):
        self.entries = []
        lines = [l.rstrip() for l in text.splitlines() if not l.startswith("#")]
        for paragraph in re.split(r"\n\n+", "\n".join(lines)):
            if paragraph.strip():
                self.entries += _entries(paragraph.strip("\n").splitlines())

    @classmethod
    def of(cls, text, changes):
        """The list, when nothing is wrong with it: a stale entry must not go unseen."""
        equivalents = cls(text)
        mistakes = equivalents.mistakes(changes)
        if mistakes:
            raise WrongList("\n" + "\n".join(mistakes))
        return equivalents

    def reason(self, change):
        for entry in self.entries:
            if entry.fits(change):
                return entry.reason
        return None

    def mistakes(self, changes):
        """What is wrong with entries: they name no possible change, or at other than as many places
        as they say, or one that another entry names too."""
        mistakes = []
        named = {}
        for entry in self.entries:
            fitting = [c for c in changes if entry.fits(c)]
            if not fitting:
                mistakes.append(f"no such change: {entry.describe()}")
            elif entry.places and len(fitting) != entry.places:
                mistakes.append(f"at {len(fitting)} places: {entry.describe()}")
            for change in fitting:
                if change in named:
                    mistakes.append(f"named twice: {change.describe()}")
                named[change] = entry
        return mistakes
