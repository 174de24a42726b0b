# SPDX-License-Identifier: GPL-3.0-or-later
"""What the renderer does to sound: time, length, blocks, noise, formats, settings."""

import math
import struct
import time

from renderer_case import RendererCase, decibels, noise, rms, sine
from sound_files import wav_chunks, write_wav

LATENCY = 52    # frames, at every oversampling factor above 1
LEAN = 1e-9     # silence is not quite 0: the output transformer's offset leaves about 1e-12, and 4e-11 as it begins


def impulse(num_frames, at, height=0.5, channels=1):
    return [(height if i == at else 0.0,) * channels for i in range(num_frames)]


class Time(RendererCase):
    def test_bypass_returns_the_input_bit_for_bit(self):
        source = noise(5000, 2)
        for factor in (1, 4):
            with self.subTest(factor):
                self.expect_frames(self.render(source, "--bypass", "--oversampling", factor).frames, source)

    def test_an_impulse_in_bypass_keeps_its_frame(self):
        source = impulse(400, 123)
        for factor in (1, 4):
            with self.subTest(factor):
                self.expect_frames(self.render(source, "--bypass", "--oversampling", factor).frames, source)

    def test_the_latency_stays_in_front_when_asked(self):
        source = noise(300, 2)
        for factor, latency in ((1, 0), (2, LATENCY), (4, LATENCY), (16, LATENCY)):
            with self.subTest(factor):
                result = self.render(source, "--bypass", "--keep-latency", "--oversampling", factor)
                self.expect_frames(result.frames, [(0.0, 0.0)] * latency + source)

    def test_the_processed_sound_is_in_time(self):
        # The bands ring after an impulse but put nothing in front of it that is higher.
        for factor in (1, 2, 3, 16):
            with self.subTest(factor):
                frames = self.render(impulse(400, 200), "--noise", "off", "--oversampling", factor).frames
                self.assertEqual(max(range(400), key=lambda i: abs(frames[i][0])), 200)

    def test_removing_the_latency_removes_nothing_else(self):
        source = noise(700)
        whole = self.render(source, "--oversampling", "2", "--keep-latency", "--noise", "off").frames
        self.expect_frames(self.render(source, "--oversampling", "2", "--noise", "off").frames, whole[LATENCY:])

    def test_every_length_comes_out_at_every_block_size(self):
        for num_frames in (1, 51, 52, 53, 1000):
            source = write_wav(self.path("in.wav"), noise(num_frames))
            for block in (1, 7, 52, 1000, 65536):
                for factor in (1, 2):
                    with self.subTest(num_frames=num_frames, block=block, factor=factor):
                        result = self.render(source, "--block", block, "--oversampling", factor)
                        self.assertEqual(len(result.frames), num_frames)

    def test_the_tail_is_silence_behind_the_input(self):
        source = noise(1000)
        tail = round(0.0251 * 48000)
        for factor in (1, 4):
            with self.subTest(factor):
                words = ("--noise", "off", "--oversampling", factor)
                result = self.render(source, "--tail", "0.0251", *words)
                self.assertEqual(result.data, self.render(source + [(0.0,)] * tail, *words).data)
                self.assertEqual(len(result.frames), 1000 + tail)

    def test_every_rate_passes_through(self):
        # Below the threshold at program 0 each band adds its 2 dB of Gain; the rest of the chain is within 1 dB.
        for rate in (8000, 44100, 48000, 96000):
            with self.subTest(rate):
                source = sine(rate // 2, 1000.0, 0.001, rate)
                result = self.render(write_wav(self.path("in.wav"), source, rate), "--noise", "off")
                self.assertEqual(result.rate, rate)
                gain = decibels(rms(result.frames[rate // 4:]) / rms(source[rate // 4:]))
                self.assertAlmostEqual(gain, 2.0, delta=1.0)


class Blocks(RendererCase):
    def test_the_block_size_is_not_heard(self):
        for factor in (1, 4):
            source = write_wav(self.path("in.wav"), noise(3001, peak=0.9))
            words = ("--noise", "off", "--oversampling", factor, "--block")
            expected = self.render(source, *words, 1).data
            for block in (64, 1000, 4096):
                with self.subTest(factor=factor, block=block):
                    self.assertEqual(self.render(source, *words, block).data, expected)

    def test_the_block_size_of_a_mono_render_does_not_shift_the_noise(self):
        source = noise(3001)
        self.assertEqual(self.render(source, "--block", "64").data, self.render(source, "--block", "999").data)


    def test_a_block_has_512_frames_unless_told(self):
        # In stereo the noise is drawn channel by channel within a block: it tells one length from the next.
        source = write_wav(self.path("in.wav"), noise(3001, 2))
        default = self.render(source).data
        self.assertEqual(self.render(source, "--block", "512").data, default)
        for block in (511, 513):
            self.assertNotEqual(self.render(source, "--block", block).data, default)


class Noise(RendererCase):
    def test_repeats_with_its_seed(self):
        source = write_wav(self.path("in.wav"), noise(2000, 2))
        first = self.render(source, "--seed", "5").data
        self.assertEqual(self.render(source, "--seed", "5").data, first)
        self.assertNotEqual(self.render(source, "--seed", "6").data, first)
        self.assertEqual(self.render(source).data, self.render(source, "--seed", "1", "--noise", "on").data)

    def test_has_no_seed_when_it_is_off(self):
        source = write_wav(self.path("in.wav"), noise(2000, 2))
        first = self.render(source, "--noise", "off", "--seed", "5").data
        self.assertEqual(self.render(source, "--noise", "off", "--seed", "6").data, first)
        self.assertNotEqual(self.render(source, "--seed", "5").data, first)

    def test_off_keeps_silence_silent(self):
        silence = [(0.0,)] * 2000
        self.assertLess(max(abs(x) for (x,) in self.render(silence, "--noise", "off").frames), LEAN)
        self.expect_frames(self.render(silence, "--noise", "off", "--bits", "24").frames, [(0,)] * 2000)
        self.assertGreater(rms(self.render(silence).frames), 100 * LEAN)

    def test_two_files_of_the_same_render_are_the_same(self):
        source = write_wav(self.path("in.wav"), noise(500))
        self.render(source, name="a.wav")
        time.sleep(1.1)     # a date in a sound file counts seconds
        self.render(source, name="b.wav")
        self.assertEqual(self.path("a.wav").read_bytes(), self.path("b.wav").read_bytes())


class Formats(RendererCase):
    def test_writes_what_is_asked_for(self):
        source = write_wav(self.path("in.wav"), noise(100, 2), 44100)
        for bits, shape in (("16", (16, False)), ("24", (24, False)), ("32f", (32, True))):
            with self.subTest(bits):
                result = self.render(source, "--bits", bits)
                self.assertEqual((result.bits, result.is_float), shape)
                self.assertEqual((result.rate, len(result.frames), len(result.frames[0])), (44100, 100, 2))
                self.assertEqual(result.container, "RIFF")
        self.assertTrue(self.render(source).is_float)

    def test_floats_are_described_in_full(self):
        # What are no whole numbers owes the extension of "fmt ", whose size stands behind the 16 bytes of every file, and
        # the number of frames in "fact". One channel is in the middle, two are left and right.
        float_samples = struct.pack("<IHH8B", 3, 0, 16, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71)
        for channels, speakers in ((1, 4), (2, 3)):
            with self.subTest(channels):
                self.render(write_wav(self.path("in.wav"), noise(77, channels), 44100))
                chunks = wav_chunks(self.path("out.wav").read_bytes())
                usual = struct.pack("<HHIIHH", 0xFFFE, channels, 44100, 44100 * 4 * channels, 4 * channels, 32)
                extension = struct.pack("<HI", 32, speakers) + float_samples
                self.assertEqual(chunks[b"fmt "], usual + struct.pack("<H", len(extension)) + extension)
                self.assertEqual(chunks[b"fact"], struct.pack("<I", 77))

    def test_whole_numbers_want_the_short_description(self):
        for bits in (16, 24):
            with self.subTest(bits):
                self.render(noise(77, 2), "--bits", bits)
                chunks = wav_chunks(self.path("out.wav").read_bytes())
                width = 2 * bits // 8
                self.assertEqual(chunks[b"fmt "], struct.pack("<HHIIHH", 1, 2, 48000, 48000 * width, width, bits))

    def test_whole_numbers_pass_unchanged_in_bypass(self):
        for bits in (16, 24):
            top = 2 ** (bits - 1)
            frames = [(-top,), (top - 1,), (0,), (1,), (-1,)] + [(i * top // 500,) for i in range(-500, 500)]
            source = write_wav(self.path("in.wav"), frames, bits=bits)
            with self.subTest(bits):
                self.expect_frames(self.render(source, "--bypass", "--bits", bits).frames, frames)

    def test_whole_numbers_are_the_nearest(self):
        steps = [(0.6 / 32768,), (-0.6 / 32768,), (1.4 / 32768,), (-1.4 / 32768,), (100.51 / 32768,)]
        self.assertEqual(self.render(steps, "--bypass", "--bits", "16").frames, [(1,), (-1,), (1,), (-1,), (101,)])

    def test_overloads_stop_at_full_scale(self):
        source = [(1.0,), (1.5,), (-1.5,), (1e30,), (-math.inf,), (math.nan,)]
        for bits in (16, 24):
            top = 2 ** (bits - 1)
            with self.subTest(bits):
                self.assertEqual(self.render(source, "--bypass", "--bits", bits).frames,
                                 [(top - 1,), (top - 1,), (-top,), (top - 1,), (-top,), (0,)])

    def test_float_keeps_overloads(self):
        self.assertEqual(self.render([(4.0,), (-16.0,)], "--bypass").frames, [(4.0,), (-16.0,)])

    def test_the_two_sides_of_a_stereo_file_stay_apart(self):
        source = [(left, 0.0) for (left,) in noise(2000, 1)]
        frames = self.render(source, "--noise", "off").frames
        self.assertGreater(rms([(left,) for left, _ in frames]), 0.01)
        self.assertLess(max(abs(right) for _, right in frames), LEAN)

    def test_mono_sounds_like_both_sides_of_equal_stereo(self):
        mono = noise(2000, 1)
        both = self.render([frame * 2 for frame in mono], "--noise", "off").frames
        self.expect_frames([frame * 2 for frame in self.render(mono, "--noise", "off").frames], both)


class Settings(RendererCase):
    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(4000, 1, peak=0.9))

    def data(self, *words):
        return self.render(self.source, "--noise", "off", *words).data

    def test_nothing_fades_in(self):
        # Ramps last 100 ms. Program 2 adds 15 dB to the High band, which holds the sine: were that ramp running, the
        # stretch from 10 to 20 ms would be several dB low.
        frames = self.render(sine(48000, 2000.0, 0.0001), "--noise", "off", "--program", "2").frames
        self.assertAlmostEqual(decibels(rms(frames[480:960]) / rms(frames[24000:24480])), 0.0, delta=0.1)

    def test_a_program_goes_by_number_and_name(self):
        by_number = self.data("--program", "5")
        for name in ("Drum Bus Smash", "drum bus smash", "DRUM BUS SMASH"):
            with self.subTest(name):
                self.assertEqual(self.data("--program", name), by_number)

    def test_every_program_has_its_own_sound(self):
        self.assertEqual(len({self.data("--program", i) for i in range(15)}), 15)

    def test_the_defaults_are_as_told(self):
        default = self.data()
        for words in (("--program", "Default"), ("--oversampling", "1"), ("--calibration", "22"), ("--block", "512"),
                      ("--bits", "32f"), ("--tail", "0")):
            with self.subTest(words):
                self.assertEqual(self.data(*words), default)

    def test_factor_and_calibration_are_heard(self):
        words = [(), ("--oversampling", "2"), ("--oversampling", "3"), ("--calibration", "16"),
                 ("--calibration", "22.5"), ("--calibration", "24")]
        self.assertEqual(len({self.data(*each) for each in words}), len(words))

    def test_the_settings_file_of_the_user_changes_nothing(self):
        expected = self.render(self.source, "--seed", "3")
        folder = self.home / "Corvane Plugins"
        folder.mkdir()
        (folder / "Corvane Q7.settings").write_text(
            '<?xml version="1.0" encoding="UTF-8"?>\n<PROPERTIES>\n  <VALUE name="Oversampling" val="4"/>\n'
            '  <VALUE name="Calibration" val="16"/>\n</PROPERTIES>\n', encoding="utf-8")
        result = self.render(self.source, "--seed", "3")
        self.assertEqual(result.data, expected.data)

    def test_the_settings_file_is_not_made(self):
        self.data()
        self.assertEqual(list(self.home.iterdir()), [])
