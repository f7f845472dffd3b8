#!/usr/bin/env python3
"""Pictures of korvel-layout as a browser takes them.

tests/tools/picture/check_pictures.py CHECK KORVEL_LAYOUT GUIDE_PICTURES

CHECK is `files` (parsers accept them, they load nothing, every part says what it is), `colours` (readers
with any colour vision tell them apart) or `guide` (the pictures of the guide are those that the tool
makes).
"""
import html.parser
import itertools
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

SVG = "{http://www.w3.org/2000/svg}"

# Surfaces of all kinds: one of each mode, planes, levels, slices, warnings, an empty allocation.
REQUESTS = [
    "--format 28 --size 1918x1080 --linear",
    "--format 28 --size 1900x1080 --ubwc",
    "--format nv12 --size 1920x1080 --ubwc",
    "--format nv12 --size 200x120x6 --ubwc",
    "--format 28 --size 2048x2048 --levels 12 --ubwc",
    "--format 28 --size 200x120x6 --ubwc --extra",
    "--format 71 --size 2048x2048x2048 --levels 15",
    "--format nv12 --size 16384x16384x2048 --levels 15 --ubwc --planes 3",
    "--format 28 --size 16384x16384 --samples 4",
    "--format 28 --size 2147483647x3 --linear",
    "--format 28 --size 64x64 --chip 0x1 --unknown-chip",
]


def fail(sentence):
    sys.exit("check_pictures: " + sentence)


def run(tool, arguments):
    done = subprocess.run([tool] + arguments.split(), capture_output=True, check=False)
    if done.returncode != 0 or not done.stdout:
        fail(f"korvel-layout {arguments} ends with {done.returncode}: {done.stderr.decode()}")
    return done.stdout.decode("utf-8")


# ---- Files ----

class Tags(html.parser.HTMLParser):
    """Refuses tags that do not close in the order in which they opened."""

    NEVER_CLOSED = {"meta"}

    def __init__(self):
        super().__init__()
        self.open = []
        self.seen = 0

    def handle_starttag(self, tag, attrs):
        self.seen += 1
        if tag not in self.NEVER_CLOSED:
            self.open.append(tag)

    def handle_startendtag(self, tag, attrs):
        self.seen += 1

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            fail(f"</{tag}> closes what was not opened last")


def check_references(text, root, where):
    """Whatever a picture refers to is in it."""
    ids = [element.get("id") for element in root.iter() if element.get("id")]
    if len(ids) != len(set(ids)):
        fail(f"{where}: two elements have the same id")
    used = re.findall(r"url\(([^)]*)\)", text)
    if not used:
        fail(f"{where}: no pattern is used")
    for name in used:
        if name.removeprefix("#") not in ids:
            fail(f"{where}: url({name}) is not in the file")
    for element in root.iter():
        for name in element.attrib:
            if name.split("}")[-1] in ("href", "src") or name.startswith("on"):
                fail(f"{where}: an attribute {name}")
    rest = text.replace('xmlns="http://www.w3.org/2000/svg"', "")
    rest = rest.replace("const SVG = 'http://www.w3.org/2000/svg';", "")
    for word in ("http:", "https:", "@import", "<link", "<img", "<iframe", "fetch(", "XMLHttp"):
        if word in rest:
            fail(f"{where}: it holds {word}")


ROLES = {"payload", "padding-right", "padding-below", "flags", "extra", "gap", "shared", "slices"}


def check_titles(root, where):
    """Every part says what it is."""
    parts = 0
    for rect in root.iter(SVG + "rect"):
        classes = (rect.get("class") or "").split()
        if not ROLES.intersection(classes) or "behind" in classes:
            continue
        parts += 1
        title = rect.find(SVG + "title")
        if title is None or not title.text.strip():
            fail(f"{where}: a part of the class {classes} has no title")
    if parts == 0:
        fail(f"{where}: no parts")


def check_files(tool, _):
    for request in REQUESTS:
        svg = run(tool, "show --svg - " + request)
        root = ElementTree.fromstring(svg)
        if root.tag != SVG + "svg" or list(root.iter(SVG + "script")):
            fail(f"{request}: no SVG without a script")
        check_references(svg, root, request)
        check_titles(root, request)
        page = run(tool, "show --html - " + request)
        tags = Tags()
        tags.feed(page)
        tags.close()
        if tags.open or tags.seen < 20:
            fail(f"{request}: tags left open: {tags.open}")
        inner = page[page.index("<svg"):page.index("</svg>") + len("</svg>")]
        root = ElementTree.fromstring(inner)
        check_references(page, root, request)
        check_titles(root, request)
        if "default-src 'none'" not in page:
            fail(f"{request}: the page may load from elsewhere")
    print(f"{len(REQUESTS)} SVG pictures and as many HTML pages are well-formed")


# ---- Colours ----

# How colours look without one kind of cone, as matrices on linear RGB: the full deficiencies of the
# physiologically based model that was published in 2009.
VISIONS = {
    "ordinary": [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
    "without red cones": [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216],
                          [-0.003882, -0.048116, 1.051998]],
    "without green cones": [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413],
                            [-0.011820, 0.042940, 0.968881]],
    "without blue cones": [[1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602],
                           [0.004733, 0.691367, 0.303900]],
}

# Differences in CIELAB below about 2 cannot be seen; fillings beside each other need many times that.
LEAST_DIFFERENCE = 15
# Of text, by the guidelines for accessible pages.
LEAST_CONTRAST = 4.5


def linear(colour):
    channels = [int(colour[i:i + 2], 16) / 255 for i in (1, 3, 5)]
    return [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels]


def seen(vision, colour):
    rgb = linear(colour)
    return [min(1, max(0, sum(row[i] * rgb[i] for i in range(3)))) for row in VISIONS[vision]]


def lab(rgb):
    to_xyz = [[0.4124564, 0.3575761, 0.1804375], [0.2126729, 0.7151522, 0.0721750],
              [0.0193339, 0.1191920, 0.9503041]]
    white = [0.95047, 1.0, 1.08883]
    xyz = [sum(row[i] * rgb[i] for i in range(3)) / w for row, w in zip(to_xyz, white)]
    f = [v ** (1 / 3) if v > 216 / 24389 else (24389 / 27 * v + 16) / 116 for v in xyz]
    return [116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])]


def luminance(colour):
    r, g, b = linear(colour)
    return 0.2126 * r + 0.7152 * g + 0.0722 * b


def contrast(a, b):
    dark, bright = sorted((luminance(a), luminance(b)))
    return (bright + 0.05) / (dark + 0.05)


def colours_of(block):
    return dict(re.findall(r"--([a-z-]+): (#[0-9a-f]{6});", block))


def check_colours(tool, _):
    svg = run(tool, "show --svg - " + REQUESTS[0])
    bright, dark = svg.split("@media (prefers-color-scheme: dark)")
    light_scheme = colours_of(bright)
    dark_scheme = light_scheme | colours_of(dark)
    if not ROLES <= light_scheme.keys() or light_scheme["ground"] == dark_scheme["ground"]:
        fail("the style sheet does not name every colour in both brightnesses")
    compared = 0
    for scheme in (light_scheme, dark_scheme):
        fills = [scheme[role] for role in sorted(ROLES)] + [scheme["ground"]]
        for vision in VISIONS:
            for a, b in itertools.combinations(fills, 2):
                compared += 1
                difference = sum((x - y) ** 2 for x, y in zip(lab(seen(vision, a)),
                                                               lab(seen(vision, b)))) ** 0.5
                if difference < LEAST_DIFFERENCE:
                    fail(f"{a} and {b} look alike to readers with {vision} vision: {difference:.1f}")
        for role in ROLES:
            if contrast("#000000", scheme[role]) < LEAST_CONTRAST:
                fail(f"black text on {role} cannot be read")
        for ink in ("ink", "faint", "warning"):
            if contrast(scheme[ink], scheme["ground"]) < LEAST_CONTRAST:
                fail(f"text in the colour {ink} cannot be read")
    print(f"{compared} pairs of colours differ")


# ---- The guide ----

def check_guide(tool, folder):
    listed = set()
    for line in (folder / "commands.txt").read_text().splitlines():
        name, arguments = line.split(" ", 1)
        listed.add(name + ".svg")
        kept = (folder / (name + ".svg")).read_text(encoding="utf-8")
        if kept != run(tool, arguments + " --svg -"):
            fail(f"{name}.svg is not what the tool makes now: run scripts/guide-pictures")
    there = {path.name for path in folder.glob("*.svg")}
    if listed != there or not listed:
        fail(f"commands.txt lists {sorted(listed)}, but there are {sorted(there)}")
    print(f"{len(listed)} pictures of the guide are as the tool makes them")


def main():
    checks = {"files": check_files, "colours": check_colours, "guide": check_guide}
    if len(sys.argv) != 4 or sys.argv[1] not in checks:
        fail("needs CHECK, the tool and the folder of the guide's pictures")
    checks[sys.argv[1]](sys.argv[2], pathlib.Path(sys.argv[3]))


main()
