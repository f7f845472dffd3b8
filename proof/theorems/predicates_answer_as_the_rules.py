"""The three predicates answer as the rules for every 32-bit format number, all arguments, every row.

Not by the solver: every call is made, of the built library, by exhaustive/predicates_for_every_id.
Shown     all numbers below 722 with all arguments near every power of two, on every row, on chips
          that are unknown and where the device does not answer; all numbers from 722 on, on one chip
          of each family; all 2^32 values of each further argument, on one chip. For numbers from 722
          on, predicates_stay_in_their_tables shows the rest: no row's table is read for them.
Excepted  nothing.
Quick     numbers and arguments near every power of two alone.
"""

import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent.parent


def prove(proof):
    command = [sys.executable, str(HERE / "exhaustive" / "predicates_for_every_id.py")]
    done = subprocess.run(command + (["--quick"] if proof.quick else []), capture_output=True,
                          text=True, check=False)
    said = (done.stdout + done.stderr).strip()
    compared = re.search(r"([\d,]+) calls, 0 disagreements", said)
    if not proof.require(f"the calls agree: {said[-1500:]}", done.returncode == 0 and compared):
        return
    calls = int(compared[1].replace(",", ""))
    proof.require("so many calls were made", calls > (10 ** 8 if proof.quick else 10 ** 11))
    proof.report.shown += calls
