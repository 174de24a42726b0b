#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds source/dsp/DetectorCurvesData.inc to its script, and the curves to what the solver needs.

The file is parsed here by its text alone, so what is checked is what the compiler will read.
"""

import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools/tables/make_detector_curves.py"
DATA = ROOT / "source/dsp/DetectorCurvesData.inc"

NUM_ENTRIES = 32768
KNOT_ENTRIES = (0, 2048, 3072, 4096, 8192, 16384, 24576, 32767)

# Written out once more, apart from the script's own list: a slip of the pen there shows here.
KNOT_VALUES = (
    (0.10556, 0.10650, 0.22303, 1.57806, 2.66886, 3.31654, 3.64336, 3.88630),
    (0.10894, 0.10790, 0.13220, 1.37622, 2.50241, 3.38151, 4.01398, 4.59558),
    (0.11008, 0.11459, 0.19220, 1.41474, 2.40622, 3.43390, 4.40817, 5.33222),
    (0.11366, 0.11283, 0.12802, 0.20717, 2.07929, 3.20945, 4.61067, 5.90445),
    (0.11817, 0.13446, 0.16653, 0.28223, 1.77577, 2.92835, 4.77778, 6.42998),
)


def as_float32(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


def parse_curves(text):
    """The texts of the entries, one list for each brace list."""
    without_comments = re.sub(r"//[^\n]*", "", text)
    return [[entry.strip() for entry in braces.split(",")]
            for braces in re.findall(r"\{([^}]*)\},", without_comments)]


def run_script(*arguments):
    return subprocess.run([sys.executable, str(SCRIPT), *map(str, arguments)],
                          capture_output=True, text=True, check=False)


class DetectorCurvesData(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = DATA.read_text(encoding="ascii")
        cls.entries = parse_curves(cls.text)
        cls.curves = [[float(entry.rstrip("f")) for entry in curve] for curve in cls.entries]

    def test_holds_five_curves_of_32768_entries(self):
        self.assertEqual([len(curve) for curve in self.curves], [NUM_ENTRIES] * 5)

    def test_first_line_names_the_script(self):
        self.assertEqual(self.text.splitlines()[0],
                         "// Made by tools/tables/make_detector_curves.py; do not edit: run the script instead.")

    def test_stays_small_enough_to_keep_in_the_tree(self):
        self.assertLess(DATA.stat().st_size, 2_500_000)

    def test_every_entry_is_a_float_of_at_most_six_significant_digits(self):
        shape = re.compile(r"\d+\.\d+f")
        for index, curve in enumerate(self.entries):
            for i, entry in enumerate(curve):
                digits = entry.rstrip("f").replace(".", "").lstrip("0")
                self.assertTrue(shape.fullmatch(entry) and len(digits) <= 6, f"curve {index} entry {i}: {entry}")

    def test_given_points_are_kept_exactly(self):
        for index, curve in enumerate(self.curves):
            self.assertEqual(tuple(curve[i] for i in KNOT_ENTRIES), KNOT_VALUES[index], f"curve {index}")

    def test_never_falls_from_entry_2048_on(self):
        for index, curve in enumerate(self.curves):
            end = NUM_ENTRIES - 1 if index == 0 else NUM_ENTRIES     # the first curve's last entry falls
            for i in range(2049, end):
                self.assertGreaterEqual(curve[i], curve[i - 1], f"curve {index} entry {i}")

    def test_floor_runs_one_way_from_its_first_to_its_last_point(self):
        for index, curve in enumerate(self.curves):
            direction = 1.0 if curve[2048] > curve[0] else -1.0
            for i in range(1, 2049):
                self.assertGreaterEqual(direction * (curve[i] - curve[i - 1]), 0.0, f"curve {index} entry {i}")

    def test_no_value_leaves_the_range_of_its_two_points(self):
        for index, curve in enumerate(self.curves):
            for first, last in zip(KNOT_ENTRIES, KNOT_ENTRIES[1:]):
                low, high = sorted((curve[first], curve[last]))
                # The first curve's last entry but one is set above the last on purpose.
                inside = curve[first:last - 1] if index == 0 and last == NUM_ENTRIES - 1 else curve[first:last]
                self.assertTrue(all(low <= value <= high for value in inside), f"curve {index} from {first}")

    def test_slope_is_continuous_at_the_points(self):
        # The steps on both sides of a point agree to a hundredth of the mean step of the longer
        # side's interval, plus the rounding of two differences: no corner is left to be heard.
        for index, curve in enumerate(self.curves):
            for before, knot, after in zip(KNOT_ENTRIES, KNOT_ENTRIES[1:], KNOT_ENTRIES[2:]):
                left, right = curve[knot] - curve[knot - 1], curve[knot + 1] - curve[knot]
                mean = max(abs(curve[knot] - curve[before]) / (knot - before),
                           abs(curve[after] - curve[knot]) / (after - knot))
                self.assertLess(abs(right - left), 0.01 * mean + 2.0e-5, f"curve {index} entry {knot}")

    def test_first_curve_falls_slowly_at_its_end(self):
        beyond, last = (as_float32(value) for value in self.curves[0][-2:])
        self.assertLess(last, beyond)
        self.assertGreater(last / beyond, 1.0 - 3.0e-6)     # one unit of the sixth digit of 3.8863

    def test_other_curves_end_rising(self):
        for index in range(1, 5):
            before, last = self.curves[index][-2:]
            self.assertGreater(last, before, f"curve {index}")
            self.assertGreater(as_float32(last), as_float32(before), f"curve {index} as 32-bit float")


class Script(unittest.TestCase):
    def test_makes_the_file_that_is_in_the_tree(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "made.inc"
            self.assertEqual(run_script(made).returncode, 0)
            self.assertEqual(made.read_bytes(), DATA.read_bytes())

    def test_check_accepts_the_file_that_is_in_the_tree(self):
        result = run_script("--check", DATA)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_check_refuses_one_changed_digit(self):
        with tempfile.TemporaryDirectory() as folder:
            changed = pathlib.Path(folder) / "changed.inc"
            changed.write_bytes(DATA.read_bytes().replace(b"0.22303f", b"0.22304f"))
            result = run_script("--check", changed)
            self.assertEqual(result.returncode, 1)
            self.assertIn("differs", result.stderr)

    def test_check_refuses_a_missing_file(self):
        with tempfile.TemporaryDirectory() as folder:
            result = run_script("--check", pathlib.Path(folder) / "none.inc")
            self.assertEqual(result.returncode, 1)
            self.assertIn("none.inc", result.stderr)


if __name__ == "__main__":
    unittest.main()
