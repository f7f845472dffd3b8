"""The test program of what has no export: it compiles the library's own headers in."""

import re
import subprocess

from library_build import FLAGS, BuildError


class LookupsProgram:
    def __init__(self, build):
        self.build = build
        self.program = build.folder / "lookups_test"
        self.flags = [f for f in FLAGS if f not in ("-O1", "-fno-exceptions", "-fno-rtti")]
        self.flags += [f"-I{build.tree}", f"-I{build.tree}/include", f"-I{build.root}"]
        text = (build.root / "tests/formats/CMakeLists.txt").read_text()
        inside = re.search(r"korvel_test\(lookups_test(.*?)\)\n", text, re.S).group(1)
        self.sources = []
        for name in inside.split():
            if name.startswith("${PROJECT_SOURCE_DIR}/src/"):
                self.sources.append(build.tree / name.split("/src/", 1)[1])
            else:
                self.sources.append((build.root / "tests/formats" / name).resolve())
        self.files = {source: self._files_of(source) for source in self.sources}

    def _files_of(self, source):
        """What the source reads of the tree that is changed, itself included."""
        done = subprocess.run(
            ["g++", *self.flags, "-MM", "-MT", "all", str(source)], capture_output=True, text=True
        )
        if done.returncode != 0:
            raise BuildError(f"{source}: {done.stderr[-2000:]}")
        read = done.stdout.replace("\\\n", " ").split()[1:]
        tree = f"{self.build.tree}/"
        return {name.removeprefix(tree) for name in read if name.startswith(tree)}

    def _compile(self, source, target):
        command = ["g++", *self.flags, "-c", str(source), "-o", str(target)]
        return subprocess.run(command, capture_output=True).returncode == 0

    def start(self):
        """Builds the program from the sources as they stand."""
        for source in self.sources:
            if not self._compile(source, self._object(source, False)):
                raise BuildError(f"cannot compile {source}")
        self._link([self._object(source, False) for source in self.sources])

    def rebuilt(self, file):
        """None when a change of the file does not reach the program; False when it cannot be built
        any more."""
        objects = []
        for source in self.sources:
            changed = file in self.files[source]
            target = self._object(source, changed)
            if changed and not self._compile(source, target):
                return False
            objects.append((changed, target))
        if not any(changed for changed, _ in objects):
            return None
        self._link([target for _, target in objects])
        return True

    def _object(self, source, changed):
        return self.build.folder / "objects" / f"lookups-{int(changed)}-{source.stem}.o"

    def _link(self, objects):
        libraries = f"-L{self.build.lib} -Wl,-rpath,{self.build.lib} -lreference -lhxluser"
        libraries += " -lgmock -lgtest_main -lgtest -lpthread"
        done = subprocess.run(
            ["g++", *map(str, objects), "-o", str(self.program), *libraries.split()],
            capture_output=True, text=True,
        )  # fmt: skip
        if done.returncode != 0:
            raise BuildError(f"cannot link the lookups' program: {done.stderr[-2000:]}")
