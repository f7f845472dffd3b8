"""The alignment entries, run on all that they can be asked, and what the rules say to it.

A case is an entry, a family, a plane, a mode and a class of formats. All else is unknown: sizes,
samples, thresholds, divisors, the chip's own words.
"""

import struct
from dataclasses import dataclass, field, fields, replace

import z3

import setting
from counterexample import Call
from executor import terms
from executor.memory import NULL, Address, Memory
from format_classes import OTHER_PLANE, FormatClass, joined_classes

import alignment as rules
import chips
import formats

FULL = "compute_fmt_aligned_width_and_height"
FDM = "compute_fmt_aligned_width_and_height_fdm"
MINIMAL = "compute_fmt_minimal_aligned_width_and_height"
IN_BYTES = "compute_fmt_aligned_width_and_height_in_bytes"
WITHOUT_FORMAT = "compute_aligned_width_and_height"
PADDING = "compute_surface_padding"
COMPRESSED = "compute_compressedfmt_aligned_width_and_height"
SLICE_PITCH = "get_slice_pitch_alignment"
PIXEL = "get_gpu_pixel_alignment"

OF_FORMATS = (FULL, FDM, MINIMAL, IN_BYTES)

NEGATIVE = "Invalid width or height: W = %d, H = %d"
UNKNOWN_CHIP = "Unknown Chip ID %d"
NEGATIVE_TEXELS = "Invalid texel width or texel height: W = %d, H = %d"
NOT_COMPRESSED = "Not a compressed format 0x%x"
NULL_POINTER = "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x "

OUTPUTS_IN_BLOCKS = ("width", "height", "bpp")

NO_FAMILY = 0  # of a chip that the library does not know
SIX_OR_SEVEN = 67  # a chip of one of the two, which share most of their rules
FAMILIES = (5, SIX_OR_SEVEN, NO_FAMILY)


def word(name):
    return z3.BitVec(name, 32)


WIDTH, HEIGHT, SAMPLES = word("width"), word("height"), word("samples")
MODE, SELECTOR = word("tiling_mode"), word("selector")
THRESHOLD, DIVISOR = word("min_padded_row_bytes"), word("divisor")
TILING_ALLOWED, PADDING_WANTED = word("tiling_allowed"), word("want_extra_padding")


# ---- chips

IS_FAMILY_7 = z3.Bool("chip is of family 7")


def any_chip(family):
    """As the executor sees it, and as the rules do."""
    if family == NO_FAMILY:
        return setting.unknown_chip(), chips.UNKNOWN_CHIP
    fixed = {}
    if family == SIX_OR_SEVEN:
        listed = z3.And(IS_FAMILY_7, z3.Bool("chip has max_surface_pitch"))
        number = terms.choose(IS_FAMILY_7, 7, 6, 32)
        fixed = {"family_id": number, "uuid_1": number,
                 "max_surface_pitch": terms.choose(listed, 16384, 0, 32)}
    chip = setting.any_chip(family, **fixed)

    def has(name):
        return z3.Bool(f"chip has {name}")

    return chip, chips.Chip(
        family, z3.Bool("chip is supported"), has("base_alignment"), has("linear_alignment"),
        has("pixel_alignment"), has("tiled_alignment"), chip.word("max_surface_pitch"),
        chip.word("extra_padding_units"))


# ---- cases


@dataclass(frozen=True)
class Case:
    entry: str
    family: int
    plane: int = 0
    tiled: bool = False
    formats: FormatClass | None = None
    nulls: tuple = ()  # outputs of COMPRESSED whose pointers are null

    @property
    def format_id(self):
        return self.formats.representative

    def holds(self, format_id):
        return any(format_id in m.ids for m in self.formats.members)

    def of_members(self):
        """A case of each class that is joined in this one."""
        return [replace(self, plane=m.plane, formats=m) for m in self.formats.members]

    @property
    def mode(self):
        return 1 if self.tiled else MODE

    @property
    def plane_number(self):
        return self.formats.plane_number

    @property
    def conditions(self):
        made = list(self.formats.conditions) if self.formats else []
        if self.entry in OF_FORMATS:
            made += [] if self.tiled else [z3.Not(MODE == 1)]
        if self.nulls:
            # Else a null pointer is stored to, as the header says.
            made += [WIDTH >= 0, HEIGHT >= 0]
        return made

    def __str__(self):
        chip = {NO_FAMILY: "an unknown chip", SIX_OR_SEVEN: "family 6 or 7"}.get(
            self.family, f"family {self.family}")
        if self.formats is None:
            return f"{self.entry}, {chip}"
        text = (f"{self.entry}, {chip}, {self.formats.size} formats or planes of them like "
                f"{self.formats.representative}")
        if self.entry not in OF_FORMATS:
            return text + (f", null: {', '.join(self.nulls)}" if self.nulls else "")
        plane = "a plane above 2" if self.plane == OTHER_PLANE else f"plane {self.plane}"
        return f"{text}, {plane}, {'tiled' if self.tiled else 'linear'}"


def cases_of_formats(entries=OF_FORMATS, families=FAMILIES, planes=(0, 1, 2, OTHER_PLANE),
                     modes=(True, False)):
    """All formats with all planes, in classes of which the rules say the same: the very same term,
    and so do the faults of the header."""
    made = []
    for entry in entries:
        for family in families:
            for tiled in modes:
                def key(class_):
                    case = Case(entry, family, class_.plane, tiled, class_)
                    return terms_of(case), is_listed_family5(case)
                made += [Case(entry, family, c.plane, tiled, c)
                         for c in joined_classes(planes, key)]
    return made


def cases_with(chosen):
    """A sample: of each (entry, family, tiled, format) the case of plane 0 that holds the format."""
    made = []
    for entry, family, tiled, format_id in chosen:
        found = [c for c in cases_of_formats((entry,), (family,), (0,), (tiled,))
                 if c.holds(format_id)]
        if len(found) != 1:
            raise SystemExit(f"{len(found)} classes hold format {format_id}")
        made += found
    return made


def is_listed_family5(case):
    """A block format, or one of 107, 614 and 654-656."""
    made = formats.traits(case.format_id)
    return made.is_block_compressed or case.format_id in (107, 614, 654, 655, 656)


_kept = []  # so that no other term gets the number of one of these


def terms_of(case):
    """Numbers that are equal for answers of the same terms alone."""
    answer = required(case)
    _kept.append(answer)
    values = [getattr(answer, f.name) for f in fields(answer)]
    return tuple(v.get_id() if isinstance(v, z3.ExprRef) else repr(v) for v in values)


def required(case):
    """What the rules say to a case: rules.Answer or rules.BytesAnswer."""
    if case.family != SIX_OR_SEVEN:
        return _required(case, any_chip(case.family)[1])
    chip = any_chip(case.family)[1]
    six, seven = (_required(case, replace(chip, family=family)) for family in (6, 7))
    return type(six)(**{f.name: _either(getattr(six, f.name), getattr(seven, f.name))
                        for f in fields(six)})


def _either(of_six, of_seven):
    if isinstance(of_six, z3.ExprRef) and not of_six.eq(of_seven):
        return z3.If(IS_FAMILY_7, of_seven, of_six)
    return of_six


def _required(case, chip):
    mode = rules.TILED if case.tiled else rules.LINEAR
    common = (chip, WIDTH, HEIGHT, case.plane, case.format_id, SAMPLES, mode)
    if case.entry == FULL:
        return rules.compute_fmt_aligned_width_and_height(*common, THRESHOLD)
    if case.entry == FDM:
        return rules.compute_fmt_aligned_width_and_height_fdm(*common, THRESHOLD, DIVISOR,
                                                              PADDING_WANTED)
    if case.entry == MINIMAL:
        return rules.compute_fmt_minimal_aligned_width_and_height(
            *common, TILING_ALLOWED, THRESHOLD, DIVISOR, PADDING_WANTED)
    return rules.compute_fmt_aligned_width_and_height_in_bytes(*common, THRESHOLD)


# ---- running


@dataclass
class Run:
    """One path of a case."""

    kind: str  # "returns" or "faults"
    conditions: list
    value: object
    messages: list  # (entry, text, arguments)
    outputs: dict  # name -> what is stored there at the end; names that nothing is stored to fail
    strays: list  # stores to anything else
    place: str


@dataclass
class Ran:
    runs: list
    claims: list  # executor.state.Claim


_ran = {}  # (module, case) -> Ran: theorems ask for the same cases


@dataclass
class _Memory:
    """A caller's memory of a call: pointers to outputs, and what stands there before."""

    memory: Memory
    outputs: dict = field(default_factory=dict)  # name -> Region

    def output(self, name):
        self.outputs[name] = setting.output(name)
        return setting.at(self.outputs[name])


def _arguments(case, called):
    if case.entry in (FULL, FDM, MINIMAL):
        last = {FULL: (), FDM: (DIVISOR, PADDING_WANTED), MINIMAL: (DIVISOR, PADDING_WANTED)}
        allowed = (TILING_ALLOWED,) if case.entry == MINIMAL else ()
        return [WIDTH, HEIGHT, case.plane_number, case.formats.number, SAMPLES, case.mode, *allowed,
                SELECTOR, THRESHOLD, *last[case.entry], called.output("width"),
                called.output("height")]
    if case.entry == IN_BYTES:
        asked = setting.record("params", 40, alignment=8, shared=False)
        answers = setting.record("result", 24, alignment=8, shared=False)
        words = (WIDTH, HEIGHT, case.plane_number, case.formats.number, SAMPLES, SELECTOR,
                 THRESHOLD)
        cells = {4 * i: (4, w) for i, w in enumerate(words)}
        cells[32] = (8, called.output("tiling_mode"))
        pointers = ("aligned_row_bytes", "minimal_row_bytes", "aligned_height")
        called.memory = Memory({
            **called.memory.regions, asked: cells,
            answers: {8 * i: (8, called.output(name)) for i, name in enumerate(pointers)},
            called.outputs["tiling_mode"]: {0: (4, case.mode)}})
        return [setting.at(asked), setting.at(answers)]
    if case.entry == WITHOUT_FORMAT:
        return [WIDTH, HEIGHT, *(word(f"a{i}") for i in range(3, 7)), called.output("width"),
                called.output("height")]
    if case.entry == COMPRESSED:
        pointers = [NULL if name in case.nulls else called.output(name)
                    for name in OUTPUTS_IN_BLOCKS]
        return [WIDTH, HEIGHT, case.formats.number,
                *(z3.BitVec(f"ignored_{i}", 64) for i in (1, 2, 3)), *pointers]
    if case.entry == PADDING:
        return [WIDTH, word("a2"), MODE, word("a4"), word("a5")]
    if case.entry == SLICE_PITCH:
        return [MODE]
    if case.entry == PIXEL:
        return []
    raise ValueError(case.entry)


def ran(proof, case, arguments=None):
    """All paths of a case. `arguments`: makes them of the case and the caller's memory."""
    key = (id(proof.module), case)
    if arguments is None and key in _ran:
        return _ran[key]
    chip, _ = any_chip(case.family)
    machine = proof.machine()
    if case.formats is not None and case.formats.finite is not None:
        machine.finite.append(case.formats.finite)
    called = _Memory(setting.place_chip(machine, chip))
    given = (arguments or _arguments)(case, called)
    outcomes = proof.run(machine, case.entry, given, called.memory,
                         chip.conditions + case.conditions)
    made = Ran([_run(o, called) for o in outcomes], machine.claims)
    if arguments is None:
        _ran[key] = made
    return made


def _run(outcome, called):
    state = outcome.state
    outputs, strays = {}, []
    for name, region in called.outputs.items():
        if any(s.region is region for s in state.stores):
            outputs[name] = state.memory.cells(region)[0][1]
    for store in state.stores:
        if store.region not in called.outputs.values() or (store.offset, store.bytes) != (0, 4):
            strays.append(f"{store.bytes} bytes of {store.region.name} at {store.offset}")
    messages = [(m.function, m.format, m.arguments) for m in state.messages]
    return Run(outcome.kind, list(state.conditions), outcome.value, messages, outputs, strays,
               outcome.place)


# ---- counterexamples as calls

UNTOUCHED = 0xA5A5A5A5  # what outputs hold before a call


def rows_of_chips(proof):
    """The maker's rows, as the library's code holds them: words by name."""
    row = proof.machine().variable(setting.CHIP_ROWS)
    tables = {**{n: w[:2] for n, w in setting.PROPERTIES.items()}, **setting.WORDS}
    starts = range(setting.ROW_OF_A_CHIP * setting.ROW_BYTES, row.bytes, setting.ROW_BYTES)
    return [{n: int(row.content[start + at][1]) for n, (at, _) in tables.items()}
            for start in starts]


_ASKED_OF_CHIPS = ("family_id", "supported", "base_alignment", "linear_alignment", "pixel_alignment",
                   "tiled_alignment", "max_surface_pitch", "extra_padding_units")


def is_row(chip, row):
    """That the words of an unknown chip which alignment asks for are those of a row."""
    return z3.And(*(terms.truth(terms.compare("eq", chip.word(n), row[n], 32))
                    for n in _ASKED_OF_CHIPS))


def real_model(proof, case, conditions, claim):
    """A counterexample on a chip that the hardware data names: (model, chip id). The model is None
    where there is none."""
    if case.family == NO_FAMILY:
        verdict, model = proof.prover._check(list(conditions), terms.negation(claim), quick=False)
        return (model, 0x7FFFFFFF) if verdict == "sat" else (None, 0)
    chip, _ = any_chip(case.family)
    seen = set()
    for row in rows_of_chips(proof):
        words = tuple(row[n] for n in _ASKED_OF_CHIPS)
        families = (6, 7) if case.family == SIX_OR_SEVEN else (case.family,)
        if row["family_id"] not in families or words in seen:
            continue
        seen.add(words)
        asked = [*conditions, is_row(chip, row)]
        verdict, model = proof.prover._ask(asked + [terms.truth(terms.negation(claim))], False)
        if verdict == "sat":
            return model, row["chip_id"]
    return None, 0


def number_in(model, value):
    """What a number comes to in a model."""
    if terms.known(value):
        return int(value)
    value = model.eval(value, model_completion=True)
    return z3.is_true(value) if z3.is_bool(value) else value.as_long()


def as_call(case, model, chip_id, answer):
    """Of an entry with two outputs: run against the built library. None for other entries."""
    if case.entry not in (FULL, FDM, MINIMAL, WITHOUT_FORMAT):
        return None
    given = []
    for argument in _arguments(case, _Memory(Memory())):
        given.append(struct.pack("<I", UNTOUCHED) if isinstance(argument, Address) else
                     number_in(model, argument))
    fault, written = (number_in(model, t) for t in (answer.fault, answer.written))
    sizes = [number_in(model, t) for t in (answer.width, answer.height)]

    def wrong(_, buffers):
        if fault:
            return "the rules divide by 0"
        found = [struct.unpack("<I", b)[0] for b in buffers[-2:]]
        wanted = sizes if written else [UNTOUCHED, UNTOUCHED]
        return "" if found == wanted else f"{found[0]} x {found[1]}, not {wanted[0]} x {wanted[1]}"

    return Call(case.entry, given, chip_id, wrong, "")
