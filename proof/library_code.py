"""The library's code as its compiler hands it to the back end: the files of the Windows DLL, with
their own switches, as bitcode."""

import hashlib
import json
import os
import re
import shlex
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from executor import ir

TREE = Path(__file__).resolve().parent.parent


def compile_library(build, out):
    """The linked bitcode of the library that a build folder builds. A file that has been compiled
    before is taken as it is: KORVEL_PROOF_CACHE names the folder, out/cache without it."""
    database = Path(build) / "compile_commands.json"
    if not database.exists():
        raise SystemExit(f"{database} is not there: configure the preset of that folder first, with "
                         "CMAKE_EXPORT_COMPILE_COMMANDS on")
    out = Path(out).resolve()  # the compiler runs elsewhere
    cache = Path(os.environ.get("KORVEL_PROOF_CACHE") or out / "cache").resolve()
    for folder in (out, cache):
        folder.mkdir(parents=True, exist_ok=True)
    entries = [e for e in json.loads(database.read_text())
               if "korvel_utils.dir" in e["command"] and e["file"].endswith(".cpp")]
    if not entries:
        raise SystemExit(f"{database} names no file of the library")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        parts = list(pool.map(lambda e: _compiled(e, out, cache), entries))
    linked = out / "library.bc"
    subprocess.run(["llvm-link-19", "-o", str(linked)] + [str(p) for p in parts], check=True)
    return linked


def _compiled(entry, out, cache):
    """The bitcode of one file."""
    command = re.sub(r" -o \S+", "", entry["command"]).replace(" -c ", " ")
    words = shlex.split(command) + ["-emit-llvm"]
    seen = subprocess.run(words + ["-E", "-o", "-"], cwd=entry["directory"], capture_output=True,
                          text=True, check=False)
    if seen.returncode != 0:
        raise SystemExit(f"{entry['file']}: the compiler refuses it:\n{seen.stderr}")
    # What the compiler reads and how it is called, wherever the tree stands.
    told = "\0".join(words + [seen.stdout]).replace(str(TREE), "")
    kept = cache / f"{hashlib.sha256(told.encode()).hexdigest()}.bc"
    if not kept.exists():
        made = cache / f"{kept.stem}.{os.getpid()}"
        done = subprocess.run(words + ["-c", "-o", str(made)], cwd=entry["directory"], check=False)
        if done.returncode != 0:
            raise SystemExit(f"{entry['file']}: the compiler refuses it")
        made.replace(kept)
    part = out / (Path(entry["file"]).stem + ".bc")
    shutil.copyfile(kept, part)
    return part


def read_library(linked):
    return ir.read_module(linked)
