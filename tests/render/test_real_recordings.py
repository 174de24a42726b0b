#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Real recordings through the renderer: Debian's drum samples (hydrogen-drumkits) and a spoken word (alsa-utils).

Every file must come out as long as it went in, with finite samples only, and what is loud must be compressed. The
programs that these files meet are those made for them.
"""
import array
import csv
import math
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

from sound_files import wav_chunks

RENDER = os.environ.get("CORVANE_RENDER", "build/release/tools/render/corvane-render")
DRUMS = pathlib.Path("/usr/share/hydrogen/data/drumkits")
SPEECH = pathlib.Path("/usr/share/sounds/alsa/Front_Center.wav")


def wav_format(data):
    """(channels, rate in Hz, bytes a frame, frames)"""
    chunks = wav_chunks(data)
    channels, rate, _, frame_bytes = struct.unpack_from("<HIIH", chunks[b"fmt "], 2)
    return channels, rate, frame_bytes, len(chunks[b"data"]) // frame_bytes


def flac_format(data):
    """(channels, rate in Hz, frames) from the stream's first block."""
    packed = int.from_bytes(data[18:26], "big")
    return ((packed >> 41) & 7) + 1, packed >> 44, packed & 0xFFFFFFFFF


def shape_of(path):
    data = path.read_bytes()
    if path.suffix == ".flac":
        return flac_format(data)
    channels, rate, _, frames = wav_format(data)
    return channels, rate, frames


def spread(paths, count):
    """Some of the paths, evenly over all of them."""
    return [paths[i * len(paths) // count] for i in range(count)]


class RealRecordings(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.out = pathlib.Path(self.folder.name)

    def render(self, source, *options):
        """Renders to float; returns ((channels, rate, frames), samples, gain reduction in dB per band and block)."""
        output, meters = self.out / "out.wav", self.out / "meters.csv"
        run = subprocess.run([RENDER, "--quiet", "--force", "--meters", meters, *options, source, output],
                             capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, f"{source}: {run.stderr}")
        data = output.read_bytes()
        channels, rate, _, frames = wav_format(data)
        samples = array.array("f")
        samples.frombytes(wav_chunks(data)[b"data"])
        with open(meters, newline="") as file:
            rows = list(csv.DictReader(file))
        reduction = {band: [20 * math.log10(float(row[f"{band}_gain_reduction"])) for row in rows]
                     for band in ("low", "mid", "high")}
        return (channels, rate, frames), samples, reduction

    def check_shape(self, source, result, samples):
        self.assertEqual(result, shape_of(source), source)
        self.assertTrue(all(map(math.isfinite, samples)), f"{source}: a sample is not finite")

    def test_drum_samples_of_every_kit(self):
        paths = sorted(p for p in DRUMS.rglob("*") if p.suffix in (".wav", ".flac") and p.stat().st_size < 600_000)
        self.assertGreater(len(paths), 100, f"{DRUMS} holds no drum samples: is hydrogen-drumkits installed?")
        compressed = 0
        kinds = set()

        for path in spread(paths, 40):
            result, samples, reduction = self.render(path, "--program", "Drum Bus Smash", "--oversampling", "2")
            self.check_shape(path, result, samples)
            kinds.add((path.suffix, result[0]))
            if samples and min(min(values) for values in reduction.values()) < -3.0:
                compressed += 1

        self.assertTrue({".wav", ".flac"} <= {kind for kind, _ in kinds}, kinds)
        # Single hits are short against the meter's 0.4 s, and some are faint: half of them reading 3 dB is plenty.
        self.assertGreaterEqual(compressed, 20)

    def test_a_drum_hit_at_every_factor(self):
        path = sorted(DRUMS.rglob("*snare*.flac"))[0]
        for factor in (1, 2, 3, 4, 8, 16):
            result, samples, _ = self.render(path, "--program", "Snare Fat 57", "--oversampling", str(factor))
            self.check_shape(path, result, samples)
            self.assertGreater(max(map(abs, samples)), 0.01)

    def test_speech_is_levelled(self):
        options = ("--program", "Vocals Male Rock", "--oversampling", "4")
        result, samples, reduction = self.render(SPEECH, *options)
        self.check_shape(SPEECH, result, samples)
        self.assertLess(min(reduction["mid"]), -3.0)

        # The meter moves with the word: it is at rest before it and works within it.
        self.assertGreater(max(reduction["mid"]), -1.0)


if __name__ == "__main__":
    if not SPEECH.exists() or not DRUMS.exists():
        sys.exit(f"{SPEECH} or {DRUMS} is missing: install alsa-utils and hydrogen-drumkits")
    unittest.main()
