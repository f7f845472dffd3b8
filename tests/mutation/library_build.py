"""A copy of the library's sources in which one file at a time is changed and rebuilt."""

import re
import shutil
import subprocess
from pathlib import Path

SUBSYSTEMS = ["platform", "identify", "formats", "align", "layout"]
FLAGS = (
    "-std=c++20 -O1 -fPIC -fno-exceptions -fno-rtti -fno-threadsafe-statics"
    " -fvisibility=hidden -fno-gnu-unique -DKORVEL_UTILS_BUILD"
).split()
COMPILE_SECONDS = 180  # a change may make the compiler evaluate a loop that never ends
WORTH_PRECOMPILING = 5  # changes of one header

_INCLUDE = re.compile(r'^#include\s+"([^"]+)"', re.MULTILINE)
PUBLIC_HEADER = "#include <korvel_utils.h>"
_SYSTEM_INCLUDE = re.compile(r"^#include\s+(<[^>]+>)", re.MULTILINE)

# What a changed header is rebuilt into first: entries that use most of their subsystem.
_TELLING = [
    "identify/gpu_identity.cpp",
    "identify/get_gpu_pixel_alignment.cpp",
    "formats/isUBWCSupportedByGpu.cpp",
    "align/compute_fmt_minimal_aligned_width_and_height.cpp",
    "layout/korvel_init_multi_level_surface.cpp",
    "layout/validate_resource_memory_layout_metadata.cpp",
]


class Refused(Exception):
    """The compiler takes the change for a mistake."""


class BuildError(Exception):
    """The build itself does not work: no change has to do with it."""


class LibraryBuild:
    """`root` is the tree, `folder` a folder of this build's own, `built` a build folder of the tree:
    sources that a change does not reach are linked as they were built there."""

    def __init__(self, root, folder, built):
        self.root, self.folder, self.built = Path(root), Path(folder), Path(built)
        self.lib = self.built / "lib"
        self.sources = self._listed_sources()
        shutil.rmtree(self.folder, ignore_errors=True)
        for part in SUBSYSTEMS + ["include"]:
            source = self.root / part if part == "include" else self.root / "src" / part
            for copy in (self.tree, self.pristine):
                shutil.copytree(source, copy / part, dirs_exist_ok=True)
        self.files = sorted(
            str(p.relative_to(self.tree))
            for part in SUBSYSTEMS + ["include"]
            for p in (self.tree / part).iterdir()
            if p.suffix in (".h", ".cpp")
        )
        self.includes = {f: self._includes(f) for f in self.files}
        self.changed_file = None
        self.prefixes = {}  # precompiled headers, by what stands in them
        self.prefix = None  # the one in use
        self.originals = {}
        (self.folder / "objects").mkdir(exist_ok=True)
        self._check()

    def _listed_sources(self):
        text = (self.root / "src/CMakeLists.txt").read_text()
        library = re.search(r"add_library\(korvel_utils SHARED(.*?)\)", text, re.S)
        return library.group(1).split() if library else []

    def _check(self):
        """What this file knows about the tree and the build folder must be there."""
        found = [f for f in self.files if f.endswith(".cpp")]
        if not found or sorted(self.sources) != found:
            raise BuildError(f"src/CMakeLists.txt lists {self.sources}, the folders hold {found}")
        gone = [s for s in _TELLING if s not in self.sources]
        gone += [o for o in map(self.object, self.sources) if not o.is_file()]
        if gone:
            raise BuildError("not there: " + ", ".join(map(str, gone)))

    @property
    def tree(self):
        return self.folder / "tree"

    @property
    def pristine(self):
        return self.folder / "pristine"

    @property
    def library(self):
        return self.folder / "libkorvel_utils.so"

    def text(self, file):
        return (self.pristine / file).read_text()

    def write(self, file, text):
        (self.tree / file).write_text(text)

    def _includes(self, file):
        text = (self.tree / file).read_text()
        found = _INCLUDE.findall(text)
        found += ["include/korvel_utils.h"] if PUBLIC_HEADER in text else []
        return [i for i in found if (self.tree / i).exists()]

    def reach(self, file):
        """The file and all that it includes."""
        seen, left = set(), [file]
        while left:
            f = left.pop()
            if f not in seen:
                seen.add(f)
                left += self.includes[f]
        return seen

    def dependents(self, file):
        """The sources that a change of the file is rebuilt into, telling ones first."""
        found = [s for s in self.sources if file in self.reach(s)]
        return sorted(found, key=lambda s: (_TELLING.index(s) if s in _TELLING else 99, s))

    def compile(self, source, target):
        prefix = ["-include", str(self.prefix)] if self.prefix else []
        self._compile(
            ["g++", *FLAGS, *prefix, f"-I{self.tree}", f"-I{self.tree}/include", "-c"]
            + [str(self.tree / source), "-o", str(target)]
        )

    def object(self, source):
        return self.built / "src/CMakeFiles/korvel_utils.dir" / (source + ".o")

    def link(self, changed):
        """Links the library with `changed` objects, by source, in the place of its own."""
        objects = list(changed.values())
        objects += [self.object(s) for s in self.sources if s not in changed]
        exports = self.built / "exports/korvel_utils.map"
        self._run(
            ["gcc", "-shared", "-o", str(self.library), *map(str, objects)]
            + [f"-Wl,--version-script={exports}", "-Wl,-z,defs", f"-L{self.lib}", "-lhxluser"]
        )

    def prepare(self, file, changes):
        """Before `changes` changes of the file: compiles all headers beforehand that they cannot
        reach, when that pays."""
        self.changed_file = file
        self.originals = {}
        self.prefix = None
        if changes < WORTH_PRECOMPILING and not file.endswith(".cpp"):
            return
        headers = [f for f in self.files if f.endswith(".h") and file not in self.reach(f)]
        system = sorted({i for f in self.files for i in _SYSTEM_INCLUDE.findall(self.text(f))})
        system.remove("<korvel_utils.h>")
        lines = [f"#include {i}" for i in system] + [f'#include "{h}"' for h in headers]
        text = "\n".join(lines) + "\n"
        if text not in self.prefixes:
            header = self.folder / f"prefix-{len(self.prefixes)}.h"
            header.write_text(text)
            self._run(
                ["g++", *FLAGS, "-x", "c++-header", f"-I{self.tree}", f"-I{self.tree}/include"]
                + [str(header), "-o", str(header) + ".gch"]
            )
            self.prefixes[text] = header
        self.prefix = self.prefixes[text]

    def original_object(self, source):
        """The unchanged source, compiled exactly as a changed one is."""
        if source not in self.originals:
            file = self.changed_file
            changed = (self.tree / file).read_text()
            target = self.folder / "objects" / ("original-" + source.replace("/", "-") + ".o")
            self.write(file, self.text(file))
            try:
                self.compile(source, target)
            except Refused as refused:
                raise BuildError(f"{source} as it stands: {refused}") from refused
            self.write(file, changed)
            self.originals[source] = target.read_bytes()
        return self.originals[source]

    @staticmethod
    def _run(command):
        done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        if done.returncode != 0:
            raise BuildError(done.stderr.decode(errors="replace")[-2000:])

    @staticmethod
    def _compile(command):
        """A changed source. The compiler says so when it is the source that it cannot compile."""
        try:
            done = subprocess.run(
                command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=COMPILE_SECONDS
            )
        except subprocess.TimeoutExpired as late:
            raise Refused("the compiler does not end") from late
        if done.returncode == 0:
            return
        said = done.stderr.decode(errors="replace")
        errors = re.findall(r"^[^\n]*:\d+:\d+: (?:fatal )?error: ([^\n]*)", said, re.M)
        if not errors or "No such file" in errors[0]:
            raise BuildError(said[-2000:])
        raise Refused(errors[0])
