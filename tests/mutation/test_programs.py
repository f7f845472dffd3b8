"""The test programs, run on a changed library."""

import os
import resource
import subprocess
import time

QUICK = [
    "formats_test",
    "identify_test",
    "empty_uuid_text_test",
    "align_test",
    "layout_test",
    "validation_test",
    "digest_test",
]
SLOW = ["reference_test", "fetches_test"]
# Variables that would choose other tests, or give them another GPU.
_OUTSIDE = ("GTEST_", "HXL_SIM_", "KORVEL_")


# Crashes are answers here. Inherited by everything that is run.
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class TestPrograms:
    def __init__(self, bin_folder, library, quick=QUICK, slow=SLOW):
        self.bin, self.library = bin_folder.resolve(), library.resolve()
        self.quick, self.slow = list(quick), list(slow)
        self.seconds = {}

    def passes(self, program, path=None):
        started = time.monotonic()
        environment = {k: v for k, v in os.environ.items() if not k.startswith(_OUTSIDE)}
        environment.update(KORVEL_UTILS_LIBRARY=str(self.library), GTEST_FAIL_FAST="1")
        # Ten times as long as on the library as it stands, and 5 seconds: a loop never ends then.
        limit = self.seconds.get(program, 120) * 10 + 5
        try:
            done = subprocess.run(
                [str(path or self.bin / program), "--gtest_brief=1"],
                env=environment, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                timeout=limit,
            )  # fmt: skip
            good = done.returncode == 0
        except subprocess.TimeoutExpired:
            good = False
        if good:
            self.seconds[program] = max(
                self.seconds.get(program, 0), time.monotonic() - started
            )
        return good

    def first_failure(self, programs):
        """The first program that fails, of those that take the least time first."""
        for program in sorted(programs, key=lambda p: self.seconds.get(p, 0)):
            if not self.passes(program):
                return program
        return None
