#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The picture of a demonstration: what it reads, and that what it writes can be shown."""

import math
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools/demo/plot_demo.py"

sys.dont_write_bytecode = True
sys.path.insert(0, str(SCRIPT.parent))
import plot_demo  # noqa: E402  (found by the line above)

SVG = "{http://www.w3.org/2000/svg}"
HEADER = "frame,low_level,low_gain_reduction,mid_level,mid_gain_reduction,high_level,high_gain_reduction"


def chunk(name, body):
    return name + struct.pack("<I", len(body)) + body + b"\0" * (len(body) % 2)


def wav(kind, bits, channels, data, rate=48000, before_data=b""):
    width = bits // 8 * channels
    layout = struct.pack("<HHIIHH", kind, channels, rate, rate * width, width, bits)
    body = b"WAVE" + chunk(b"fmt ", layout) + before_data + chunk(b"data", data)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def extensible_wav(kind, bits, channels, data, rate=48000):
    width = bits // 8 * channels
    layout = struct.pack("<HHIIHH", 0xFFFE, channels, rate, rate * width, width, bits)
    layout += struct.pack("<HHIH", 22, bits, 3, kind) + bytes.fromhex("000000001000800000aa00389b71")
    body = b"WAVE" + chunk(b"fmt ", layout) + chunk(b"data", data)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def pcm24(values):
    return b"".join(value.to_bytes(3, "little", signed=True) for value in values)


class InFolder(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path


class ReadWav(InFolder):
    def test_reads_24_bit_with_signs(self):
        data = pcm24([0, -1, 2 ** 22, -2 ** 22, 2 ** 23 - 1, -2 ** 23])
        sound = plot_demo.read_wav(self.write("a.wav", wav(1, 24, 2, data)))
        self.assertEqual(sound.rate, 48000)
        self.assertEqual(sound.channels, [[0.0, 0.5, 1.0 - 2.0 ** -23], [-(2.0 ** -23), -0.5, -1.0]])

    def test_reads_float_above_full_scale(self):
        data = struct.pack("<4f", 0.25, -1.5, 2.0, 0.0)
        sound = plot_demo.read_wav(self.write("a.wav", wav(3, 32, 1, data, rate=96000)))
        self.assertEqual((sound.rate, sound.channels), (96000, [[0.25, -1.5, 2.0, 0.0]]))

    def test_reads_the_long_format_of_both_kinds(self):
        whole = plot_demo.read_wav(self.write("a.wav", extensible_wav(1, 24, 1, pcm24([2 ** 21]))))
        fraction = plot_demo.read_wav(self.write("b.wav", extensible_wav(3, 32, 1, struct.pack("<f", 0.25))))
        self.assertEqual(whole.channels, fraction.channels)

    def test_reads_16_and_32_bit(self):
        short = plot_demo.read_wav(self.write("a.wav", wav(1, 16, 1, struct.pack("<h", -2 ** 14))))
        long = plot_demo.read_wav(self.write("b.wav", wav(1, 32, 1, struct.pack("<i", -2 ** 30))))
        self.assertEqual(short.channels, [[-0.5]])
        self.assertEqual(long.channels, [[-0.5]])

    def test_steps_over_a_chunk_of_odd_length(self):
        data = pcm24([2 ** 22, 0])
        sound = plot_demo.read_wav(self.write("a.wav", wav(1, 24, 1, data, before_data=chunk(b"note", b"abc"))))
        self.assertEqual(sound.channels, [[0.5, 0.0]])

    def test_takes_what_is_there_when_the_header_was_never_finished(self):
        content = wav(1, 24, 1, pcm24([2 ** 22] * 4))
        content = content.replace(b"data" + struct.pack("<I", 12), b"data" + b"\xff" * 4)
        self.assertEqual(plot_demo.read_wav(self.write("a.wav", content)).num_frames, 4)

    def test_refuses_what_it_cannot_read(self):
        not_finite = struct.pack("<f", math.nan)
        for content in (b"", b"RIFF", wav(1, 8, 1, b"\0\0"), wav(3, 32, 1, not_finite), wav(1, 24, 0, b"")):
            with self.assertRaises(ValueError):
                plot_demo.read_wav(self.write("bad.wav", content))


class ReadMeters(InFolder):
    def test_turns_factors_into_decibels(self):
        path = self.write("m.csv", HEADER + "\n0,0,1.0,0,0.5,0,0.1\n64,0,1.0,0,1.0,0,0.0\n")
        frames, reductions = plot_demo.read_meters(path)
        self.assertEqual(frames, [0, 64])
        self.assertEqual(reductions["low"], [0.0, 0.0])
        self.assertAlmostEqual(reductions["mid"][0], -6.0206, places=4)
        self.assertAlmostEqual(reductions["high"][0], -20.0, places=9)
        self.assertTrue(math.isfinite(reductions["high"][1]))

    def test_refuses_missing_columns_and_words(self):
        for content in ("", "frame,low_level\n0,1\n", HEADER + "\n", HEADER + "\n0,0,none,0,1,0,1\n",
                        HEADER + "\n0,0,1\n", HEADER + "\n0,0,nan,0,1,0,1\n"):
            with self.assertRaises(ValueError):
                plot_demo.read_meters(self.write("m.csv", content))


class Picture(InFolder):
    def setUp(self):
        super().setUp()
        frames = 24000
        tone = [round(2 ** 22 * math.sin(0.05 * n)) for n in range(frames)]
        self.before = self.write("before.wav", wav(1, 24, 2, pcm24([x for x in tone for _ in range(2)])))
        quieter = struct.pack(f"<{frames}f", *(x / 2 ** 24 for x in tone))
        self.after = self.write("after.wav", extensible_wav(3, 32, 1, quieter))
        rows = "".join(f"{n},0.1,{1.0 - n / 60000:.5f},0.2,0.5,0.3,1.0\n" for n in range(0, frames, 64))
        self.meters = self.write("meters.csv", HEADER + "\n" + rows)
        self.output = self.folder / "plot.svg"

    def run_script(self, after=None):
        return subprocess.run([sys.executable, str(SCRIPT), "--before", str(self.before),
                               "--after", str(after or self.after), "--meters", str(self.meters),
                               "--title", 'Loud & "soft" <in three bands>', "--output", str(self.output)],
                              capture_output=True, text=True, check=False)

    def drawn(self):
        result = self.run_script()
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return ElementTree.parse(self.output).getroot()

    def test_is_well_formed_and_keeps_the_title(self):
        root = self.drawn()
        self.assertEqual(root.tag, SVG + "svg")
        self.assertEqual(root.find(SVG + "title").text, 'Loud & "soft" <in three bands>')

    def test_is_small(self):
        self.drawn()
        self.assertLess(self.output.stat().st_size, 150_000)

    def test_brings_its_own_background(self):
        first = self.drawn().find(SVG + "rect")
        self.assertGreaterEqual(float(first.get("width")), plot_demo.WIDTH - 1)
        self.assertEqual(first.get("fill"), plot_demo.PANEL)

    def test_draws_two_waveforms_and_three_bands_inside_the_panel(self):
        paths = self.drawn().findall(SVG + "path")
        bands = [each for each in paths if each.get("class") == "band"]
        self.assertEqual([each.get("stroke") for each in bands], list(plot_demo.BAND_COLOURS.values()))
        self.assertEqual({each.get("fill") for each in paths if each not in bands},
                         {plot_demo.BEFORE_COLOUR, plot_demo.AFTER_COLOUR})
        for each in paths:
            numbers = [float(x) for x in re.findall(r"-?[\d.]+", each.get("d"))]
            self.assertTrue(all(plot_demo.LEFT <= x <= plot_demo.RIGHT for x in numbers[0::2]))
            self.assertTrue(all(0 <= y <= plot_demo.HEIGHT for y in numbers[1::2]))

    def test_tells_the_measured_figures(self):
        words = " ".join(self.drawn().itertext())
        self.assertIn("peak \u22126.0 dBFS", words)     # half of full scale
        self.assertIn("peak \u221212.0 dBFS", words)    # a quarter
        self.assertIn("max 6.0 dB", words)              # the middle band's factor of one half

    def test_draws_silence(self):
        silence = self.write("silence.wav", wav(1, 24, 1, pcm24([0] * 24000)))
        self.before = silence
        result = self.run_script(after=silence)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        ElementTree.parse(self.output)

    def test_says_which_file_is_wrong(self):
        result = self.run_script(after=self.meters)
        self.assertEqual(result.returncode, 1)
        self.assertIn("meters.csv: not a WAV file", result.stderr)
        self.assertFalse(self.output.exists())


if __name__ == "__main__":
    unittest.main()
