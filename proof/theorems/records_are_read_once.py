"""No word of a stored record is read twice, and words that the header calls unread are never read.

Assumed   nothing: every load finds another word, as if others changed the record all the time.
Shown     for both validators, on every path: no byte of the record or of the caller's UUIDs is read
          twice, so nothing is read again after a check relied on it; what is read are whole words of
          the header's records that have a rule; a word of a level is read in that level's round
          alone, but for the tiled word of the next level, which is then not read in its own; every
          load is volatile, so that no back end may repeat it; nothing is stored to the record; no
          access lies outside the bytes that the header names; and no promise that the compiler made
          is broken.
Excepted  nothing.
Quick     the header's checks and the rules; the walk of plain levels is left out.
"""

import validator_runs
from records import KINDS, LAYOUT
from setting import LEVELS, PLANES

SHORTEST_LAYOUT = 5472  # bytes, of version 1

SHARES_RUNS_OF = "validators"


def prove(proof):
    for kind in KINDS:
        words = words_with_a_rule(kind)
        header = validator_runs.header_part(proof, kind)
        for path in header.paths:
            read_once(proof, kind, path, words["header"])
        claims(proof, header)
        for name, level in [(n, v) for n in ("walk", "rules") for v in range(LEVELS)]:
            if (name, level) == ("rules", 0) or proof.quick and (name, level) != ("rules", 1):
                continue
            allowed = words["levels"][level]
            behind = {kind.word((level + 1,), "tiled")} if level + 1 < LEVELS else set()
            if name == "walk":
                allowed = allowed | behind
                if level:  # read in the round before
                    allowed = allowed - {kind.word((level,), "tiled")}
            part = validator_runs.level_part(proof, kind, name, level)
            for path in part.paths:
                read_once(proof, kind, path, allowed)
                if path.by_rules or path.ending == "refuses":
                    proof.require("the next level is left to its own round",
                                  not behind & loaded(path), place(kind, path))
            claims(proof, part)


def claims(proof, part):
    for claim in part.claims:
        proof.show(f"{claim.kind}: {claim.text}", claim.conditions, claim.holds, claim.place)


def loaded(path):
    return {(a.offset, a.bytes) for a in path.state.loads if a.region.name == "record"}


def read_once(proof, kind, path, allowed):
    where = place(kind, path)
    seen = {}
    for access in path.state.loads:
        bytes_ = seen.setdefault(access.region.name, set())
        these = set(range(access.offset, access.offset + access.bytes))
        proof.require(f"no byte is read twice: {access.region.name} {access.offset}",
                      not these & bytes_, f"{access.place}, {where}")
        bytes_ |= these
        proof.require("a load is volatile", access.volatile, access.place)
        if access.region.name == "record":
            word = kind.name_of(access.offset)[0]
            proof.require(f"a word with a rule is read, not {word}",
                          (access.offset, access.bytes) in allowed, f"{access.place}, {where}")
            size = SHORTEST_LAYOUT if kind is LAYOUT else kind.bytes
            proof.require("a load ends inside the record", max(these) < size, access.place)
        else:
            proof.require("16 bytes of a UUID", max(these) < 16, access.place)
    proof.require("nothing is stored to the record", not path.state.stores, where)


def words_with_a_rule(kind):
    """(offset, bytes) of the words that the header's rules name."""
    def level(number):
        words = {kind.word((number,), name) for name in kind.level}
        for plane in range(PLANES):
            words |= {kind.word((number, plane), name) for name in kind.plane}
        return words
    return {"header": {kind.word((), name) for name in kind.header},
            "levels": [level(number) for number in range(LEVELS)]}


def place(kind, path):
    return f"{kind.validator}, {path.part}" + ("" if path.level is None else f", level {path.level}")
