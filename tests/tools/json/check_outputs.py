#!/usr/bin/env python3
"""What korvel-layout prints with --json, held against its schema.

tests/tools/json/check_outputs.py KORVEL_LAYOUT SCHEMA

Runs every command in many ways, each output through a validator. The schema has to be closed, so that a field
that it does not describe fails; every field has to occur, with a value and, where it may be, as null; every
field says in words what it is, and every number its unit.
"""
import copy
import json
import re
import subprocess
import sys
import tempfile

import jsonschema

import stored_files

CHAIN = "--format nv12 --size 256x256x3 --levels 4 --ubwc --extra --extended"
WRAPS = "--format 28 --size 16384x16384 --samples 4"
UNKNOWN = "--chip 0x1 --unknown-chip"

# {name} is a file of stored_files.py, {shown} what show prints of a layout.
RUNS = [
    "show --format 28 --size 1918x1080 --linear",
    "show --format 28 --size 200x120x6 --ubwc --extra",
    "show --format 501 --size 64x64 --chip family-5",
    f"show {CHAIN}",
    f"show {WRAPS}",
    f"show --format 28 --size 64x64 {UNKNOWN}",
    "show --format 28 --size 64x64 --levels 15 --planes 0",
    "show --format nv12 --size 64x64 --planes 1 --strict",
    "explain --format 28 --size 1918x1080 --linear",
    "explain --format 71 --size 100x100 --ubwc --chip family-7",
    f"explain {CHAIN}",
    f"explain {WRAPS}",
    f"explain --format 28 --size 2147483647x3 {UNKNOWN}",
    "explain --format 28 --size 1918x1080 --ubwc --field level[0].plane[0].flag_pitch",
    "explain --format 28 --size 100x60x2 --levels 3 --field total_size",
    "explain --format 28 --size 100x60x2 --levels 3 --field level[1].slices",
    "explain --format 28 --size 100x60x2 --field device_uuid",
    "table --format 28,nv12,501 --size 64x64,1920x1080 --chip all-families --linear both --levels none,full",
    "table --format 28,d32_float --size 64x64 --linear --ubwc both --sort padding",
    f"table {WRAPS}",
    f"table {WRAPS} --extra --extended",
    "table --format d32_float --size 64x64 --linear --strict",
    "diff --format 28 --size 2000x1080 --a --linear --b --ubwc",
    "diff --format 28 --size 2000x1080 --a --linear --b --linear",
    f"diff {WRAPS} --a --linear --b --extra",
    "diff --format 28 --size 200x120 --a --levels=3 --b --ubwc",
    "diff {blob} {chain}",
    "diff {blob} {other_header}",
    "diff {blob} {other_device}",
    "diff {blob} {yes_no_of_2}",
    "diff {surface} {other_surface}",
    "diff {blob} --format 28 --size 200x120",
    "diff {bare} --a --linear --format 28 --size 200x120",
    "fit --format 28 --size 1918x1080 --linear --plane pitch=7672,height=1080",
    "fit --format 28 --size 1920x1080 --linear --plane pitch=7680",
    "fit --format nv12 --size 1920x1080 --ubwc --plane pitch=2048,flag_pitch=64 --plane offset=1,flag_size=1",
    "fit --format 28 --size 200x120 --ubwc --layout {shown} --chip 0x43010000",
    f"fit --format 28 --size 64x64 --plane pitch=1 {UNKNOWN}",
    "guess --bytes 8392704 --size 1920x1080 --chip family-6,family-7",
    "guess --bytes 3110400 --format nv12,28,501 --size 1920x1080",
    "guess --bytes 1 --format 28 --size 64x64 --chip 0x43010000",
    "guess --bytes 45056 --format 28 --size 64x64 --levels 7",
    "guess --bytes 0xffffffffffffffff --format 28 --size 64x64",
    "chips",
    "formats",
    "formats --all",
    "formats --chip 0x43010000",
    "formats --chip 0x12345678 --unknown-chip",
    "check {blob}",
    "check {chain} --strict",
    "check {bare} --chip 0x43010000",
    "check {bare} --chip family-7",
    f"check {{bare}} {UNKNOWN}",
    "check {hex}",
    "check {base64} --kind resource",
    "check {version_1}",
    "check {version_2}",
    "check {surface} --kind surface",
    "check {without_guid}",
    "check {signature}",
    "check {other_header} --strict",
    "check {small_level} --strict",
    "check {low_bits}",
    "check - <{blob}",
    "dump {blob}",
    "dump {blob} --all",
    "dump {chain}",
    "dump {hex}",
    "dump {version_1}",
    "dump {version_2}",
    "dump {surface} --all",
    "dump {without_guid}",
    "dump {signature}",
    "dump {magic}",
    "dump {no_room}",
    "dump {cut}",
    "dump {yes_no_of_2}",
    "dump {low_bits}",
    "dump - <{base64}",
]

# Bad input, of every command that takes any: no output, and one line on standard error.
BAD_RUNS = [
    "show --format 28 --size 0x10",
    "show --format nv13 --size 1x1",
    "explain --format 28 --size 1x1 --samples 3",
    "explain --format 28 --size 1x1 --field level[7].size",
    "table --format 28 --size 1x1 --sort nothing",
    "diff --format 28 --size 1x1",
    "diff {blob} {surface}",
    "fit --format 28 --size 1x1",
    "fit --format 28 --size 1x1 --layout {blob}",
    "guess --bytes 0",
    "formats --chip 0x1",
    "chips --colour",
    "check {shown}",
    "check {magic}",
    "check {other_device}",
    "dump {shown}",
]

# Commands whose output is a text for another program.
WITHOUT_JSON = {"schema", "manual"}

UNITS = re.compile(
    r"\b(bytes|texels|elements|rows|tiles|slices|samples|levels|planes|per cent|number of|number that|no unit"
    r"|unit)\b", re.IGNORECASE)


def fail(sentence):
    sys.exit("check_outputs: " + sentence)


# ---- The schema ----

def schemas_below(schema, place="schema"):
    """Every schema inside, with where it stands."""
    yield schema, place
    for keyword in ("properties", "$defs"):
        for name, inner in schema.get(keyword, {}).items():
            yield from schemas_below(inner, f"{place}/{keyword}/{name}")
    for number, inner in enumerate(schema.get("oneOf", [])):
        yield from schemas_below(inner, f"{place}/oneOf/{number}")
    if "items" in schema:
        yield from schemas_below(schema["items"], place + "/items")


def types_of(schema):
    types = schema.get("type", [])
    return types if isinstance(types, list) else [types]


def check_schema(schema):
    jsonschema.Draft202012Validator.check_schema(schema)
    known = {"$schema", "$id", "$ref", "$defs", "title", "description", "type", "properties", "required", "items",
             "additionalProperties", "oneOf", "const", "enum", "pattern", "minimum", "maxItems"}
    fields = 0
    for part, place in schemas_below(schema):
        if not set(part) <= known:
            fail(f"{place} has a keyword that this check does not follow: {sorted(set(part) - known)}")
        if "properties" in part:
            if part.get("additionalProperties") is not False:
                fail(f"{place} is open: a field that it does not describe would pass")
            if sorted(part["required"]) != sorted(part["properties"]):
                fail(f"{place} does not require every field")
        elif "object" in types_of(part):
            fail(f"{place} is an object without a list of its fields")
        for name, field in part.get("properties", {}).items():
            fields += 1
            said = field.get("description") or schema["$defs"].get(field.get("$ref", "").split("/")[-1], {}).get(
                "description")
            if not said:
                fail(f"{place} has a field {name} without a description")
            if {"integer", "number"} & set(types_of(field)) and not UNITS.search(said):
                fail(f"{place}: the description of {name} names no unit: {said}")
    return fields


# ---- What occurs of it ----

class Occurrences:
    """Which fields of a schema occur in valid outputs, with a value and as null."""

    def __init__(self, schema):
        self.schema = schema
        self.with_value = set()
        self.as_null = set()

    def resolved(self, part):
        while "$ref" in part:
            part = self.schema["$defs"][part["$ref"].split("/")[-1]]
        return part

    def note(self, part, value):
        part = self.resolved(part)
        if "oneOf" in part:
            part = next(p for p in part["oneOf"] if ("null" in types_of(p)) == (value is None))
            part = self.resolved(part)
        if isinstance(value, dict):
            for name, inner in value.items():
                field = part["properties"][name]
                (self.as_null if inner is None else self.with_value).add(id(field))
                self.note(field, inner)
        elif isinstance(value, list):
            for inner in value:
                self.note(part["items"], inner)

    def missing(self):
        for part, place in schemas_below(self.schema):
            for name, field in part.get("properties", {}).items():
                if id(field) not in self.with_value:
                    yield f"{place}: {name} has a value in no output"
                nullable = "null" in types_of(field) or any("null" in types_of(p) for p in field.get("oneOf", []))
                if nullable and id(field) not in self.as_null:
                    yield f"{place}: {name} is null in no output"


# ---- Runs ----

def run(tool, arguments, files):
    """Runs the program; `<FILE` at the end is its standard input."""
    words = [word.format(**files) for word in arguments.split()]
    given = open(words.pop()[1:], "rb") if words[-1].startswith("<") else subprocess.DEVNULL
    return subprocess.run([tool, *words, "--json"], stdin=given, capture_output=True, check=False)


def output_of(tool, arguments, files, validator):
    done = run(tool, arguments, files)
    if done.returncode not in (0, 1):
        fail(f"{arguments} ends with {done.returncode}: {done.stderr.decode()}")
    output = json.loads(done.stdout)
    command = validator.schema["$defs"].get(arguments.split()[0])
    if command is None:
        fail(f"the schema has no command {arguments.split()[0]}")
    if not validator.is_valid(output):
        # What fails the schemas of all commands says little; that of its own says where it is wrong.
        own = jsonschema.Draft202012Validator({**command, "$defs": validator.schema["$defs"]})
        for error in own.iter_errors(output):
            fail(f"{arguments}: {error.json_path}: {error.message}")
        fail(f"{arguments}: valid for its command, but not for the whole schema")
    said = [f"korvel-layout: warning: {warning}" for warning in output["warnings"] + (output.get("findings") or [])]
    if done.stderr.decode().splitlines() != said:
        fail(f"{arguments}: warnings {said}, but standard error has {done.stderr.decode()}")
    return output


def expect_nothing(tool, arguments, files):
    done = run(tool, arguments, files)
    if done.returncode != 2 or done.stdout or done.stderr.count(b"\n") != 1:
        fail(f"{arguments} ends with {done.returncode}, prints {done.stdout[:200]} and {done.stderr}")


def shortened(value):
    """The same with the first of each list alone."""
    if isinstance(value, dict):
        return {name: shortened(inner) for name, inner in value.items()}
    return [shortened(inner) for inner in value[:1]] if isinstance(value, list) else value


def objects_in(value):
    if isinstance(value, dict):
        yield value
    for inner in value.values() if isinstance(value, dict) else value if isinstance(value, list) else []:
        yield from objects_in(inner)


def expect_closed(output, validator):
    """A field too many or too few in any object of the output is noticed. Returns how many objects."""
    count = sum(1 for _ in objects_in(output))
    for number in range(count):
        spoilt = copy.deepcopy(output)
        victim = list(objects_in(spoilt))[number]
        victim["undocumented"] = 0
        if validator.is_valid(spoilt):
            fail(f"a field too many passes in {list(victim)}")
        del victim["undocumented"]
        victim.pop(next(iter(victim)))
        if validator.is_valid(spoilt):
            fail(f"a field too few passes beside {list(victim)}")
    return count


def commands_of(tool):
    helped = subprocess.run([tool, "--help"], capture_output=True, check=True).stdout.decode()
    listed = re.search(r"\nSubcommands:\n((?:  .*\n)+)", helped)
    if not listed:
        fail("the help lists no commands")
    return set(re.findall(r"^  (\w+) ", listed.group(1), re.MULTILINE))


def main():
    tool, path = sys.argv[1:]
    with open(path, encoding="utf-8") as file:
        text = file.read()
    printed = subprocess.run([tool, "schema"], capture_output=True, check=True).stdout.decode()
    if printed != text:
        fail("korvel-layout schema prints another schema than the file has; build it again")
    schema = json.loads(text)
    fields = check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    tried = {arguments.split()[0] for arguments in RUNS}
    if tried != commands_of(tool) - WITHOUT_JSON:
        fail(f"these commands are tried: {sorted(tried)}, but there are {sorted(commands_of(tool))}")

    occurrences = Occurrences(schema)
    spoilt = {}
    with tempfile.TemporaryDirectory() as folder:
        files = stored_files.write_files(tool, folder)
        files["shown"] = folder + "/shown.json"
        with open(files["shown"], "wb") as file:
            file.write(run(tool, "show --format 28 --size 200x120 --ubwc --chip 0x43010000", {}).stdout)
        for arguments in RUNS:
            output = output_of(tool, arguments, files, validator)
            occurrences.note(schema["$defs"][output["command"]], output)
            spoilt.setdefault(output["command"], shortened(output))
        for arguments in BAD_RUNS:
            expect_nothing(tool, arguments, files)
    missing = list(occurrences.missing())
    if missing:
        fail("; ".join(missing))
    objects = sum(expect_closed(output, validator) for output in spoilt.values())
    print(f"{len(RUNS)} outputs are as the schema says, {fields} fields occur in them, "
          f"{objects} objects refuse a field too many and one too few; "
          f"{len(BAD_RUNS)} bad inputs print nothing")


main()
