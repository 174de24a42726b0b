#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Uses the Standalone's window with mouse and keys on a screen of its own, as a musician does.

The environment variable CORVANE_STANDALONE names the program. The cases stand beside this file; words on the command
line choose some, `test_standalone.py control_cases`, and `-k NAME` runs those with NAME in theirs. CORVANE_SOAK_SECONDS
and CORVANE_SOAK_SEED make the random run at the end another one.
"""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

PARTS = ("start_cases", "control_cases", "menu_cases", "soak_cases")


def load_tests(loader, _tests, _pattern):
    return unittest.TestSuite(loader.loadTestsFromName(part) for part in PARTS)


if __name__ == "__main__":
    chosen = [word.partition(".")[0] in PARTS for word in sys.argv[1:]]
    unittest.main(module=None if any(chosen) else "__main__")
