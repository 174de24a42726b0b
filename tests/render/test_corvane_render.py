#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds corvane-render to what its command line promises. The environment variable CORVANE_RENDER names the program.

The cases stand beside this file, one thought a file; `-k NAME` runs those with NAME in theirs.
"""

import unittest

PARTS = ("command_line_cases", "file_cases", "sound_cases", "report_cases", "parameter_cases", "state_cases",
         "settings_cases", "automation_cases", "progress_cases")


def load_tests(loader, _tests, _pattern):
    return unittest.TestSuite(loader.loadTestsFromName(part) for part in PARTS)


if __name__ == "__main__":
    unittest.main()
