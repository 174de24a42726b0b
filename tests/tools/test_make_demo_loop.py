#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the demonstration loop to its script, and to what a loop for a compressor must be."""

import math
import pathlib
import subprocess
import sys
import tempfile
import unittest
import wave

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools/demo/make_demo_loop.py"
LOOP = ROOT / "tools/demo/demo-loop.wav"

FULL_SCALE = 2 ** 23


def run_script(*arguments):
    return subprocess.run([sys.executable, str(SCRIPT), *map(str, arguments)],
                          capture_output=True, text=True, check=False)


def rms(samples):
    return math.sqrt(math.fsum(x * x for x in samples) / len(samples))


def decibels(linear):
    return 20.0 * math.log10(linear)


class DemoLoop(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with wave.open(str(LOOP), "rb") as file:
            cls.shape = file.getnchannels(), file.getsampwidth(), file.getframerate()
            cls.num_frames = file.getnframes()
            data = file.readframes(cls.num_frames)
        values = [int.from_bytes(data[i:i + 3], "little", signed=True) / FULL_SCALE
                  for i in range(0, len(data), 3)]
        cls.sides = values[0::2], values[1::2]

    def test_is_stereo_of_24_bit_at_48_khz(self):
        self.assertEqual(self.shape, (2, 3, 48000))

    def test_lasts_two_bars_at_100_beats_a_minute(self):
        self.assertEqual(self.num_frames, 48000 * 8 * 60 // 100)

    def test_stays_small_enough_to_keep_in_the_tree(self):
        self.assertLess(LOOP.stat().st_size, 1_500_000)

    def test_peaks_at_minus_3_dbfs(self):
        peak = max(max(map(abs, side)) for side in self.sides)
        self.assertAlmostEqual(decibels(peak), -3.0, places=2)

    def test_leaves_a_compressor_something_to_do(self):
        level = decibels(rms(self.sides[0] + self.sides[1]))
        self.assertTrue(-18.0 <= level <= -16.0, f"RMS {level:.2f} dBFS")
        step = self.num_frames // 32
        steps = [decibels(rms(self.sides[0][k * step:(k + 1) * step])) for k in range(32)]
        self.assertGreater(max(steps) - min(steps), 6.0)

    def test_has_no_dc(self):
        for side in self.sides:
            self.assertLess(abs(math.fsum(side)) / len(side), 1.0e-6)

    def test_goes_on_at_the_seam_as_it_does_elsewhere(self):
        # The step over the seam is not larger than the steps just around it, so nothing clicks.
        for side in self.sides:
            around = side[-240:] + side[:240]
            steps = [abs(b - a) for a, b in zip(around, around[1:])]
            seam = steps.pop(239)
            self.assertLessEqual(seam, max(steps))

    def test_is_wide_but_not_hollow(self):
        middle = rms([0.5 * (left + right) for left, right in zip(*self.sides)])
        side = rms([0.5 * (left - right) for left, right in zip(*self.sides)])
        self.assertTrue(-20.0 < decibels(side / middle) < -6.0, f"side {decibels(side / middle):.1f} dB")


class Script(unittest.TestCase):
    def test_makes_the_loop_that_is_in_the_tree(self):
        result = run_script("--check", LOOP)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_check_refuses_a_changed_sample(self):
        with tempfile.TemporaryDirectory() as folder:
            changed = pathlib.Path(folder) / "changed.wav"
            data = bytearray(LOOP.read_bytes())
            data[-2] ^= 0x10                        # the middle byte of the last sample
            changed.write_bytes(data)
            result = run_script("--check", changed)
            self.assertEqual(result.returncode, 1)
            self.assertIn("differs", result.stderr)

    def test_check_refuses_what_is_no_sound(self):
        result = run_script("--check", SCRIPT)
        self.assertEqual(result.returncode, 1)
        self.assertNotIn("Traceback", result.stderr)


if __name__ == "__main__":
    unittest.main()
