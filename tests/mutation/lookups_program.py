"""The test program of what has no export: it compiles the library's own headers in."""

import re
import subprocess

from library_build import FLAGS


class LookupsProgram:
    def __init__(self, build):
        self.build = build
        self.program = build.folder / "lookups_test"
        text = (build.root / "tests/formats/CMakeLists.txt").read_text()
        inside = re.search(r"korvel_test\(lookups_test(.*?)\)\n", text, re.S).group(1)
        self.sources = []
        for name in inside.split():
            if name.startswith("${PROJECT_SOURCE_DIR}/"):
                self.sources.append(build.tree / name.split("}/", 1)[1])
            else:
                self.sources.append((build.root / "tests/formats" / name).resolve())

    def _reads(self, source, file):
        found = re.findall(r'^#include\s+"([^"]+)"', source.read_text(), re.M)
        return str(source).endswith(file) or any(
            file in self.build.reach(i) for i in found if i in self.build.includes
        )

    def _compile(self, source, target):
        flags = [f for f in FLAGS if f not in ("-O1", "-fno-exceptions", "-fno-rtti")]
        tree, root = self.build.tree, self.build.root
        command = ["g++", *flags, f"-I{tree}", f"-I{tree}/include", f"-I{root}", "-c"]
        done = subprocess.run([*command, str(source), "-o", str(target)], capture_output=True)
        return done.returncode == 0

    def rebuilt(self, file):
        """None when a change of the file does not reach the program; False when it cannot be built
        any more."""
        if not any(self._reads(s, file) for s in self.sources):
            return None
        objects = []
        for source in self.sources:
            reads = self._reads(source, file)
            folder = self.build.folder / "objects"
            target = folder / f"lookups-{'changed' if reads else 'own'}-{source.stem}.o"
            if (reads or not target.exists()) and not self._compile(source, target):
                return False
            objects.append(str(target))
        libraries = f"-L{self.build.lib} -Wl,-rpath,{self.build.lib} -lhxluser -lgmock"
        libraries += " -lgtest_main -lgtest -lpthread"
        done = subprocess.run(
            ["g++", *objects, "-o", str(self.program), *libraries.split()], capture_output=True
        )
        return done.returncode == 0
