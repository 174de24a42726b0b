# SPDX-License-Identifier: GPL-3.0-or-later
"""What the renderer tells: meters, summary, tables."""

import math
import re
import struct

from renderer_case import USAGE, RendererCase, decibels, noise, rms, sine
from sound_files import write_wav

HEADER = "frame,low_level,low_gain_reduction,mid_level,mid_gain_reduction,high_level,high_gain_reduction"


class Meters(RendererCase):
    def meters(self, source, *words):
        self.render(source, "--meters", self.path("m.csv"), *words)
        content = self.path("m.csv").read_text(encoding="ascii")
        self.assertTrue(content.endswith("\n"))
        lines = content.splitlines()
        self.assertEqual(lines[0], HEADER)
        rows = [line.split(",") for line in lines[1:]]
        self.assertTrue(all(len(row) == 7 for row in rows))
        return [[int(row[0])] + [float(value) for value in row[1:]] for row in rows]

    def test_a_row_for_each_block(self):
        rows = self.meters(noise(1000), "--block", "300")
        self.assertEqual([row[0] for row in rows], [0, 300, 600, 900])

    def test_tail_and_latency_have_rows_too(self):
        # 1000 frames, 480 of tail and 52 that push the last ones out.
        rows = self.meters(noise(1000), "--block", "300", "--tail", "0.01", "--oversampling", "2")
        self.assertEqual([row[0] for row in rows], [0, 300, 600, 900, 1200, 1500])

    def test_an_empty_file_has_no_rows(self):
        self.assertEqual(self.meters(write_wav(self.path("in.wav"), [], channels=1)), [])

    def test_bands_turn_down_what_is_loud(self):
        loud = self.meters(noise(24000, peak=0.9), "--noise", "off")[-1]
        soft = self.meters(noise(24000, peak=0.0005), "--noise", "off")[-1]
        for column in (2, 4, 6):
            self.assertLess(loud[column], 0.9)
            # A resting capacitor stands a few hundredths of a dB above the voltage of no reduction.
            self.assertAlmostEqual(decibels(soft[column]), 0.0, delta=0.1)

    def test_more_level_at_full_scale_turns_down_more(self):
        source = write_wav(self.path("in.wav"), noise(12000, peak=0.5))
        low = self.meters(source, "--calibration", "16")[-1]
        high = self.meters(source, "--calibration", "24")[-1]
        for column in (2, 4, 6):
            self.assertLess(high[column], low[column])

    def test_digits_bring_every_value_back_as_a_float(self):
        self.meters(noise(6000, peak=0.9))
        values = re.findall(r"(?<=,)0\.\d+", self.path("m.csv").read_text(encoding="ascii"))
        # Nine digits, of which trailing zeros are left out: most values have all nine.
        self.assertGreater(sum(len(value.replace("0.", "", 1).lstrip("0")) == 9 for value in values), len(values) // 2)

    def test_levels_are_those_behind_the_bands(self):
        # 1 kHz lies between the crossovers: the low band gets it some 14 dB lower and compresses it less, so the middle
        # band stays at twice the others and more. Silence rests on the meters' floor, in relation to +4 dBu.
        tone = self.meters(sine(48000, 1000.0, 0.1), "--noise", "off")[-1]
        self.assertGreater(tone[3], 2.0 * tone[1])
        self.assertGreater(tone[3], 2.0 * tone[5])
        silence = self.meters([(0.0,)] * 96000, "--noise", "off")[-1]
        for column in (1, 3, 5):
            # Two seconds are five of the follower's time constants: what is left of the way is below e^-5.
            rest = math.sqrt(0.00001) * 1.2276582668803786
            self.assertAlmostEqual(silence[column], rest, delta=rest * math.exp(-5.0))

    def test_asking_for_meters_changes_no_sample(self):
        source = write_wav(self.path("in.wav"), noise(6000))
        self.succeed(source, self.path("plain.wav"))
        self.succeed(source, self.path("metered.wav"), "--meters", self.path("m.csv"))
        self.assertEqual(self.path("plain.wav").read_bytes(), self.path("metered.wav").read_bytes())

    def test_bypass_turns_nothing_down(self):
        for row in self.meters(noise(3000, peak=0.9), "--bypass"):
            for column in (2, 4, 6):
                # As at rest: see above.
                self.assertAlmostEqual(decibels(row[column]), 0.0, delta=0.1)


class Summary(RendererCase):
    def summary(self, frames, *words):
        source = write_wav(self.path("in.wav"), frames)
        text = self.succeed(source, self.path("out.wav"), "--force", *words)
        rows = {line[:16].strip(): line[16:].split() for line in text.splitlines()}
        return text, rows

    def test_levels_of_a_sine(self):
        # 997 Hz at -20 dBFS on both sides is -20 LUFS by the measure's own definition; on one side 3 dB less.
        for channels, loudness in ((2, -20.0), (1, -23.0)):
            with self.subTest(channels):
                _, rows = self.summary(sine(48000, 997.0, 0.1, channels=channels), "--bypass")
                for side in ("in", "out"):
                    peak, root, lufs = map(float, rows[side])
                    self.assertAlmostEqual(peak, -20.0, delta=0.01)         # the last digit shown
                    self.assertAlmostEqual(root, -23.01, delta=0.01)
                    self.assertAlmostEqual(lufs, loudness, delta=0.1)

    def test_levels_out_are_those_of_the_file(self):
        _, rows = self.summary(noise(20000, 2), "--program", "5", "--oversampling", "2")
        frames = self.render(self.path("in.wav"), "--program", "5", "--oversampling", "2").frames
        self.assertEqual(float(rows["out"][0]), round(decibels(max(max(map(abs, frame)) for frame in frames)), 2))
        self.assertEqual(float(rows["out"][1]), round(decibels(rms(frames)), 2))

    def test_silence_reads_minus_infinity(self):
        _, rows = self.summary([(0.0,)] * 30000, "--noise", "off")
        self.assertEqual(rows["in"], ["-inf"] * 3)
        # Loudness is gated at -70 LUFS; the output transformer's offset leaves a sample of -208 dBFS.
        self.assertLess(float(rows["out"][0]), -200.0)
        self.assertEqual(rows["out"][2], "-inf")

    def test_an_empty_file_has_a_summary_too(self):
        source = write_wav(self.path("in.wav"), [], channels=1)
        self.assertIn("-inf", self.succeed(source, self.path("out.wav")))

    def test_gain_reduction_is_that_of_the_meters(self):
        _, rows = self.summary(noise(20000, peak=0.9), "--program", "5", "--meters", self.path("m.csv"))
        lines = self.path("m.csv").read_text(encoding="ascii").splitlines()[1:]
        for band in range(3):
            values = [decibels(float(line.split(",")[2 + 2 * band])) for line in lines]
            # The last digit shown is 0.1 dB.
            self.assertAlmostEqual(float(rows["mean"][band]), sum(values) / len(values), delta=0.051)
            self.assertAlmostEqual(float(rows["deepest"][band]), min(values), delta=0.051)
            self.assertLess(min(values), -1.0)

    def test_columns_stand_under_each_other(self):
        text, _ = self.summary(noise(20000, peak=0.9))
        table = text.splitlines()[:-1]
        self.assertEqual(len(table), 6)
        self.assertEqual(len({len(line) for line in table}), 1)

    def test_tells_frames_and_speed(self):
        text, _ = self.summary(noise(24000), "--oversampling", "2")
        self.assertRegex(text.splitlines()[-1], r"^24000 frames, 0\.50 s in \d+\.\d\d s, \d+\.\d x real time$")

    def test_quiet_says_nothing(self):
        source = write_wav(self.path("in.wav"), noise(100))
        self.assertEqual(self.succeed(source, self.path("out.wav"), "--quiet"), "")


class Tables(RendererCase):
    def floats(self, *words):
        self.assertEqual(self.succeed(*words, self.path("table")), "")
        content = self.path("table").read_bytes()
        self.path("table").unlink()
        return struct.unpack(f"<{len(content) // 4}f", content)

    def test_the_five_detector_curves(self):
        values = self.floats("--dump-curves")
        self.assertEqual(len(values), 5 * 32768)
        # First and last volts of each: a floor near 0.11 V, and the higher the ratio, the further up.
        for row, (first, last) in enumerate(((0.10556, 3.8863), (0.10894, 4.59558), (0.11008, 5.33222),
                                             (0.11366, 5.90445), (0.11817, 6.42998))):
            self.assertAlmostEqual(values[row * 32768], first, delta=1e-7)          # half a step of float
            self.assertAlmostEqual(values[row * 32768 + 32767], last, delta=5e-7)

    def test_the_control_law(self):
        values = self.floats("--dump-control-law")
        self.assertEqual(len(values), 32768)
        self.assertEqual(values[0], 0.020780690014362335)
        # Table entries stand 10 / 32768 V apart; the law falls by less than 0.01 dB from one to the next.
        for volts, gain in ((1.0, -35.320), (4.0, -45.572), (8.0, -69.336)):
            self.assertAlmostEqual(decibels(values[round(volts * 3276.8)]), gain, delta=0.01)

    def test_the_taps_of_every_factor(self):
        for factor in range(2, 17):
            with self.subTest(factor):
                taps = self.floats("--dump-taps", factor)
                self.assertEqual(len(taps), 52 * factor + 1)
                self.assertAlmostEqual(math.fsum(taps), 1.0, delta=1e-6)    # rounding of the taps to float
                self.assertEqual(max(range(len(taps)), key=taps.__getitem__), 26 * factor)
                for left, right in zip(taps, reversed(taps)):
                    self.assertAlmostEqual(left, right, delta=1e-9)         # the same formula from both ends

    def test_all_at_once(self):
        text = self.succeed("--list-programs", "--dump-curves", "c", "--dump-control-law", "l", "--dump-taps", "2", "t")
        self.assertEqual(len(text.splitlines()), 15)
        self.assertEqual({name: len(content) for name, content in self.folder_content().items()},
                         {"c": 5 * 32768 * 4, "l": 32768 * 4, "t": 105 * 4})

    def test_refuses_factors_without_a_filter(self):
        for factor in ("1", "0", "17", "two", "nan"):
            with self.subTest(factor):
                self.refuse(USAGE, "from 2 to 16", "--dump-taps", factor, "t")
