"""Memory as the executor sees it: regions that do not touch each other, and what is written there.

An address is a region and a count of bytes from its start. What lies at an address is known by the
byte where it starts and how many bytes it has; the code stores and loads whole words, mostly the
same ones.
"""

from dataclasses import dataclass, field

import z3

from . import terms


@dataclass(eq=False)
class Region:
    name: str
    bytes: int  # of it that may be touched
    alignment: int = 1  # bytes, of its first byte
    writable: bool = True
    # What stands where nothing has been written: "undefined"; "any", words that are unknown and stay
    # as they are; or "shared", words that others write to, so that each load finds another.
    initial: str = "undefined"
    content: dict = field(default_factory=dict)  # of a constant: offset -> (bytes, value)
    # A theorem's own names for the words of unknown memory, a function of their offset and bytes.
    named: object = None
    # Bytes that must be there for the one who asks, a function of an access: its offset and bytes.
    # For regions whose size is not a plain number.
    inside: object = None
    # Of a constant table whose words a theorem describes itself: what a load at an unknown place of it
    # finds, a function of the path, the address and the type. It returns a value or Cases.
    words: object = None

    def word_name(self, offset, size):
        return self.named(offset, size) if self.named else f"{self.name}+{offset}:{size}"


@dataclass(frozen=True)
class Address:
    """`offset` is a number of 64 bits. Where it is unknown, it is `known` and a multiple of `step`."""

    region: Region  # None: the null address
    offset: object  # bytes
    known: int = 0
    step: int = 1


NULL = Address(None, 0)


class Poison:
    """A number that means nothing. It may be moved about; to rely on it is wrong."""

    def __repr__(self):
        return "poison"


POISON = Poison()


@dataclass(frozen=True)
class Access:
    """A load or a store of memory that is not the library's own."""

    region: Region
    offset: object
    bytes: int
    value: object
    volatile: bool
    place: str


class Memory:
    """What has been written: for every region, offset -> (bytes, value). Never changed: a store makes
    a new one."""

    __slots__ = ("regions",)

    def __init__(self, regions=None):
        self.regions = regions or {}

    def cells(self, region):
        return self.regions.get(region, {})

    def with_cells(self, region, cells):
        regions = dict(self.regions)
        regions[region] = cells
        return Memory(regions)

    def store(self, region, offset, size, value):
        cells = dict(self.cells(region))
        old = cells.get(offset)
        if old is None or old[0] != size:
            for at in [a for a, (length, _) in cells.items() if a < offset + size and offset < a + length]:
                length, word = cells.pop(at)
                for i in range(length):
                    if not offset <= at + i < offset + size:
                        cells[at + i] = (1, byte_of(word, i, 8 * length))
        cells[offset] = (size, value)
        return self.with_cells(region, cells)

    def forget(self, region):
        regions = dict(self.regions)
        regions.pop(region, None)
        return Memory(regions)


def byte_of(value, index, bits):
    if isinstance(value, Poison):
        return value
    if isinstance(value, Address):
        raise SystemExit("one byte of an address")
    if isinstance(value, bool) or z3.is_bool(value):
        value = terms.extended(value, 1, bits, False)
    if terms.known(value):
        return value >> (8 * index) & 0xFF
    return z3.simplify(z3.Extract(8 * index + 7, 8 * index, value))


def joined(bytes_):
    """A number of little-endian bytes."""
    if any(isinstance(b, Poison) for b in bytes_):
        return POISON
    if all(terms.known(b) for b in bytes_):
        return sum(b << (8 * i) for i, b in enumerate(bytes_))
    if len(bytes_) == 1:
        return bytes_[0]
    return z3.simplify(z3.Concat(*(terms.vector(b, 8) for b in reversed(bytes_))))
