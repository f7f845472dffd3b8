"""A counterexample as a call that can be run, and what the built library says to it."""

import ctypes
import json
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path


@dataclass
class Call:
    """
    export     the function
    arguments  numbers, None for null, or bytes: a buffer that holds them
    chip_id    of the GPU that the services report
    wrong      says of (result, buffers afterwards, messages) what is wrong with it, "" if nothing
    result     ctypes type of the result
    first      an export without arguments that is called before: then the GPU is known
    """

    export: str
    arguments: list
    chip_id: int = 0
    wrong: object = None
    result: str = "c_uint32"
    first: str = ""
    types: list = field(default_factory=list)  # ctypes types of the numbers, by place; else by size

    def __str__(self):
        lines, written = [], []
        for place, argument in enumerate(self.arguments):
            if isinstance(argument, (bytes, bytearray)):
                lines.append(f'uint8_t buffer_{place}[] = "{_bytes_text(argument)}";')
                written.append(f"buffer_{place}")
            else:
                written.append("NULL" if argument is None else
                               str(argument) if abs(argument) < 10 else hex(argument))
        chip = f" // with chip id {self.chip_id:#x}" if self.chip_id else ""
        if self.first:
            lines.append(f"{self.first}();")
        return "\n".join(lines + [f"{self.export}({', '.join(written)});{chip}"])


def _bytes_text(data):
    """As hexadecimal words; runs of zeros in short."""
    text, zeros = [], 0
    for at in range(0, len(data), 4):
        word = data[at:at + 4]
        if not any(word) and len(data) > 64:
            zeros += len(word)
            continue
        if zeros:
            text.append(f"<{zeros} zero bytes>")
            zeros = 0
        text.append(word.hex())
    if zeros:
        text.append(f"<{zeros} zero bytes>")
    return " ".join(text)


def confirm(call, library):
    """Runs the call in a process of its own, against the library of the tree."""
    request = {
        "library": str(library), "export": call.export, "chip_id": call.chip_id,
        "result": call.result, "types": call.types, "first": call.first,
        "arguments": [{"bytes": a.hex()} if isinstance(a, (bytes, bytearray)) else a
                      for a in call.arguments],
    }
    done = subprocess.run([sys.executable, __file__], input=json.dumps(request), text=True,
                          capture_output=True, timeout=60)
    if done.returncode < 0:
        return f"ends with signal {-done.returncode}"
    if done.returncode:
        return f"could not be asked: {done.stderr.strip()[-300:]}"
    answer = json.loads(done.stdout.splitlines()[-1])
    buffers = [bytes.fromhex(b) if b is not None else None for b in answer["buffers"]]
    told = f"returns {answer['result']:#x}"
    if call.wrong is None:
        return told
    wrong = call.wrong(answer["result"], buffers)
    return (f"{told}: {wrong}" if wrong else
            f"{told}, which alone is not wrong; its messages and accesses are not looked at here")


def _run(request):
    library = Path(request["library"])
    services = ctypes.CDLL(str(library.parent / "libhxluser.so"), mode=ctypes.RTLD_GLOBAL)
    _set_chip(services, request["chip_id"])
    loaded = ctypes.CDLL(str(library))
    if request["first"]:
        getattr(loaded, request["first"])()
    function = getattr(loaded, request["export"])
    function.restype = getattr(ctypes, request["result"]) if request["result"] else None
    values, buffers = [], []
    for place, argument in enumerate(request["arguments"]):
        if isinstance(argument, dict):
            data = bytes.fromhex(argument["bytes"])
            buffers.append(ctypes.create_string_buffer(data, len(data)))
            values.append(buffers[-1])
            continue
        buffers.append(None)
        type_ = request["types"][place] if place < len(request["types"]) else None
        type_ = getattr(ctypes, type_) if type_ else ctypes.c_uint64
        values.append(None if argument is None else type_(argument))
    result = function(*values)
    print(json.dumps({"result": (result or 0) & 0xFFFFFFFFFFFFFFFF,
                      "buffers": [b.raw.hex() if b is not None else None for b in buffers]}))


def _set_chip(services, chip_id):
    services.hxl_sim_reset()
    services.hxl_sim_set_chip(ctypes.c_uint32(chip_id))
    services.hxl_sim_set_capture(1)


if __name__ == "__main__":
    _run(json.load(sys.stdin))
