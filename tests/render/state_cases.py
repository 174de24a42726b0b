# SPDX-License-Identifier: GPL-3.0-or-later
"""A host's session block as a file: read, written, refused; and what wins over what."""

import struct

from renderer_case import INPUT, OUTPUT, USAGE, RendererCase, noise, to_float32
from session_blocks import block, read_state, state
from sound_files import read_wav, write_wav

BANDS = ("Low", "Mid", "High")
BAND_CONTROLS = ("Meter", "In", "Solo", "MidSide", "Gain", "Ratio", "Threshold", "Attack", "Recovery")
SHARED = ("Mix", "HPF", "MasterGain", "LowXOver", "HighXOver", "Nuke", "Niveau", "Link", "Bypass", "InLevel",
          "OutLevel")
IDENTIFIERS = [band + control for band in BANDS for control in BAND_CONTROLS] + list(SHARED)

# Every control away from where a new record has it.
MOVED = ("LowMeter=In", "LowIn=Off", "LowSolo=Off", "LowMidSide=Side", "LowGain=7dB", "LowRatio=4:1",
         "LowThreshold=-14dB", "LowAttack=10mS", "LowRecovery=400mS", "MidMeter=Out", "MidIn=On", "MidSolo=On",
         "MidMidSide=Mid", "MidGain=auto", "MidRatio=6:1", "MidThreshold=-8dB", "MidAttack=0.5mS", "MidRecovery=100mS",
         "HighMeter=In", "HighIn=On", "HighSolo=On", "HighMidSide=Off", "HighGain=12dB", "HighRatio=1.5:1",
         "HighThreshold=-18dB", "HighAttack=2uS", "HighRecovery=1.5S", "Mix=83%", "HPF=123Hz", "MasterGain=-2.3dB",
         "LowXOver=333Hz", "HighXOver=4567Hz", "Nuke=On", "Niveau=Off", "Link=Off", "InLevel=3.7dB", "OutLevel=-1.1dB")


def set_all(words):
    return [part for word in words for part in ("--set", word)]


class Blocks(RendererCase):
    def test_a_block_is_what_a_host_keeps(self):
        attributes = self.attributes()
        self.assertEqual(list(attributes), ["Version"] + IDENTIFIERS + ["Calibration", "Oversampling", "UIZoom"])
        self.assertEqual((attributes["Version"], attributes["Oversampling"]), ("1.0.0", "1"))
        self.assertEqual(float(attributes["Calibration"]), 22.0)
        self.assertEqual(float(attributes["UIZoom"]), 1.0)
        for identifier in IDENTIFIERS:
            self.assertRegex(attributes[identifier], r"^[01]\.\d{20}$")

    def test_a_block_comes_back_byte_for_byte(self):
        for i in range(15):
            with self.subTest(i):
                self.succeed("--program", i, "--save-state", self.path("a"), "--force")
                self.succeed("--state", self.path("a"), "--save-state", self.path("b"), "--force")
                self.assertEqual(self.path("a").read_bytes(), self.path("b").read_bytes())

    def test_every_control_comes_back(self):
        self.succeed(*set_all(MOVED), "--oversampling", "3", "--calibration", "19", "--save-state", self.path("a"))
        self.succeed("--state", self.path("a"), "--save-state", self.path("b"))
        self.assertEqual(self.path("a").read_bytes(), self.path("b").read_bytes())
        attributes = read_state(self.path("b"))
        self.assertEqual((float(attributes["Calibration"]), attributes["Oversampling"]), (19.0, "3"))

    def test_a_state_sounds_like_the_controls_that_made_it(self):
        # Exact: both ways take the same normalised floats through the same conversions.
        source = write_wav(self.path("in.wav"), noise(3000, 2, peak=0.9))
        for words in (set_all(MOVED), set_all(MOVED) + ["--oversampling", "2", "--calibration", "18"]):
            with self.subTest(words[-2:]):
                expected = self.render(source, *words, "--save-state", self.path("a"))
                self.assertEqual(self.render(source, "--state", self.path("a")).data, expected.data)

    def test_a_reloaded_program_sounds_like_itself(self):
        # A program holds its values as doubles, a state as normalised floats. Corners would move by up to 1e-4 Hz, and
        # the loudest detectors turn that into some 1e-5 of full scale: so both sides have theirs from the same float.
        # Mix and gains are left, some steps of float, and the drive of Nuke: below 1e-6. A reload of a reload is exact.
        source = write_wav(self.path("in.wav"), noise(3000, 1))
        for program, low, high in ((0, 200, 5000), (4, 425, 4766), (6, 449, 4766), (8, 166, 2640), (14, 346, 4458)):
            with self.subTest(program):
                words = ("--noise", "off", "--set", f"LowXOver={low}Hz", "--set", f"HighXOver={high}Hz")
                first = self.render(source, *words, "--program", program, "--save-state", self.path("a"))
                second = self.render(source, "--noise", "off", "--state", self.path("a"), "--save-state",
                                     self.path("b"))
                third = self.render(source, "--noise", "off", "--state", self.path("b"))
                for (one,), (other,) in zip(first.frames, second.frames):
                    self.assertAlmostEqual(one, other, delta=1e-6)
                self.assertEqual(second.data, third.data)

    def test_saving_needs_no_sound_and_changes_none(self):
        self.assertEqual(self.succeed("--program", "5", "--save-state", self.path("alone")), "")
        source = write_wav(self.path("in.wav"), noise(1000))
        plain = self.render(source, "--program", "5").data
        self.assertEqual(self.render(source, "--program", "5", "--save-state", self.path("beside")).data, plain)
        self.assertEqual(self.path("alone").read_bytes(), self.path("beside").read_bytes())

    def test_calibration_is_kept_in_whole_decibels(self):
        self.assertEqual(float(self.attributes("--calibration", "21.4")["Calibration"]), 21.0)


class WhatWins(RendererCase):
    def saved(self, name, content):
        self.path(name).write_bytes(content)
        return self.path(name)

    def test_a_state_over_the_program(self):
        self.succeed("--program", "5", "--save-state", self.path("five"))
        self.assertEqual(self.attributes("--program", "9", "--state", self.path("five")),
                         read_state(self.path("five")))

    def test_controls_over_the_state(self):
        self.succeed("--program", "5", "--save-state", self.path("five"))
        found = self.attributes("--state", self.path("five"), "--set", "Mix=10%")
        self.assertEqual(to_float32(float(found.pop("Mix"))), to_float32(0.1))
        self.assertEqual(found, {k: v for k, v in read_state(self.path("five")).items() if k != "Mix"})

    def test_options_over_the_state_and_the_state_over_their_defaults(self):
        file = self.saved("a", state(Calibration="17", Oversampling="4", UIZoom="0.8"))
        found = self.attributes("--state", file)
        self.assertEqual((float(found["Calibration"]), found["Oversampling"]), (17.0, "4"))
        self.assertEqual(to_float32(float(found["UIZoom"])), to_float32(0.8))
        found = self.attributes("--state", file, "--calibration", "20", "--oversampling", "2")
        self.assertEqual((float(found["Calibration"]), found["Oversampling"]), (20.0, "2"))

    def test_the_oversampling_of_a_state_is_rendered(self):
        source = noise(500)
        file = self.saved("a", state(Oversampling="4", Bypass="1"))
        self.expect_frames(self.render(source, "--state", file).frames, source)
        result = self.render(source, "--state", file, "--keep-latency")
        self.expect_frames(result.frames, [(0.0,)] * 52 + source)

    def test_what_a_state_lacks_never_comes_from_the_users_settings_file(self):
        folder = self.home / "Corvane Plugins"
        folder.mkdir()
        (folder / "Corvane Q7.settings").write_text(
            '<?xml version="1.0" encoding="UTF-8"?>\n<PROPERTIES>\n  <VALUE name="Oversampling" val="4"/>\n'
            '  <VALUE name="Calibration" val="16"/>\n  <VALUE name="UIZoom" val="0.7"/>\n</PROPERTIES>\n',
            encoding="utf-8")
        for content in (state(), state(Mix="0.5"), state(IsPreset="1")):
            found = self.attributes("--state", self.saved("a", content))
            self.assertEqual((float(found["Calibration"]), found["Oversampling"], float(found["UIZoom"])),
                             (22.0, "1", 1.0))

    def test_a_preset_leaves_the_options(self):
        file = self.saved("a", state(IsPreset="1", Mix="0.25", Calibration="16", Oversampling="8"))
        found = self.attributes("--state", file)
        self.assertEqual((float(found["Mix"]), float(found["Calibration"]), found["Oversampling"]), (0.25, 22.0, "1"))

    def test_bypass_of_a_state_stays(self):
        source = noise(500)
        self.expect_frames(self.render(source, "--state", self.saved("a", state(Bypass="1"))).frames, source)

    def test_a_linked_program_hands_the_high_band_to_all(self):
        # Program 6 has Link on, and Link itself is restored last: what a host's restore would do.
        file = self.saved("a", state(LowRatio="0", MidRatio="0.25", HighRatio="1", Link="0"))
        found = self.attributes("--program", "6", "--state", file)
        self.assertEqual([float(found[band + "Ratio"]) for band in BANDS], [1.0, 1.0, 1.0])
        self.assertEqual(float(found["Link"]), 0.0)


class Files(RendererCase):
    def test_refuses_what_is_no_block(self):
        good = state(Mix="0.5")
        for name, content in (("empty", b""), ("short", good[:8]), ("other magic", b"XXXX" + good[4:]),
                              ("no length", good[:4] + struct.pack("<i", 0) + good[8:]),
                              ("negative length", good[:4] + struct.pack("<i", -5) + good[8:]),
                              ("other tag", block('<OTHERSETTINGS Mix="0.5"/>')), ("no XML", block("Mix = 50%")),
                              ("broken off", good[:30]), ("text", b"LowGain = auto\n" * 10),
                              ("zeros", bytes(4000)), ("too long", good + bytes(1 << 20))):
            with self.subTest(name):
                self.path(name).write_bytes(content)
                self.refuse(INPUT, f'cannot read "[^"]*{name}"', "--state", self.path(name), "--save-state",
                            self.path("out"))

    def test_refuses_a_block_that_breaks_off(self):
        self.succeed("--program", "4", "--save-state", self.path("whole"))
        whole = self.path("whole").read_bytes()
        self.path("whole").unlink()
        for length in range(0, len(whole) - 1, 37):
            self.path("part").write_bytes(whole[:length])
            process = self.run_renderer("--state", self.path("part"), "--save-state", self.path("out"))
            self.assertEqual(process.returncode, INPUT, f"{length} of {len(whole)} bytes")
        self.assertEqual(sorted(self.folder_content()), ["part"])

    def test_refuses_what_is_no_file(self):
        self.refuse(INPUT, "no such file", "--state", self.path("absent"), "--save-state", self.path("out"))
        self.refuse(INPUT, "not a regular file", "--state", self.folder, "--save-state", self.path("out"))
        source = write_wav(self.path("in.wav"), noise(10))
        self.refuse(INPUT, "no such file", source, self.path("out.wav"), "--state", self.path("absent"))

    def test_takes_a_block_with_more_behind_it(self):
        self.path("a").write_bytes(state(Mix="0.5") + b"left over")
        self.assertEqual(float(self.attributes("--state", self.path("a"))["Mix"]), 0.5)

    def test_never_replaces_a_file_unasked(self):
        for option in ("--save-state", "--save-settings"):
            with self.subTest(option):
                self.path("a").write_bytes(b"what was here")
                self.refuse(OUTPUT, "exists already", option, self.path("a"))
                self.succeed(option, self.path("a"), "--force")
                self.assertNotEqual(self.path("a").read_bytes(), b"what was here")

    def test_a_state_may_take_the_place_of_the_one_it_came_from(self):
        self.succeed("--program", "5", "--save-state", self.path("a"))
        self.succeed("--state", self.path("a"), "--set", "Mix=10%", "--save-state", self.path("a"), "--force")
        self.assertEqual(to_float32(float(read_state(self.path("a"))["Mix"])), to_float32(0.1))

    def test_refuses_files_that_would_lose_one_another(self):
        source = write_wav(self.path("in.wav"), noise(10))
        for words in (("--save-state", "./out.wav"), ("--save-settings", source), ("--save-state", source),
                      ("--save-state", "a", "--save-settings", "a"), ("--meters", "a", "--save-state", "./a"),
                      ("--automation", "./out.wav"), ("--state", "out.wav"), ("--settings", "out.wav")):
            with self.subTest(words):
                self.refuse(USAGE, "same file", source, self.path("out.wav"), *words)
        self.refuse(USAGE, "same file", "--save-state", "a", "--save-settings", "./a")

    def test_a_render_that_fails_saves_nothing(self):
        self.path("bad.wav").write_bytes(b"This is not a sound.\n" * 50)
        self.refuse(INPUT, "not a WAV", self.path("bad.wav"), self.path("out.wav"), "--save-state", self.path("a"))
        source = write_wav(self.path("in.wav"), noise(10))
        self.refuse(OUTPUT, 'no folder "absent"', source, "absent/out.wav", "--save-settings", self.path("a"))
        self.refuse(OUTPUT, 'no folder "absent"', source, self.path("out.wav"), "--save-state", "absent/a")

    def test_a_sound_and_its_settings_appear_together(self):
        source = write_wav(self.path("in.wav"), noise(10))
        self.succeed(source, self.path("out.wav"), "--quiet", "--save-state", "a", "--save-settings", "b")
        self.assertEqual(sorted(self.folder_content()), ["a", "b", "in.wav", "out.wav"])
        self.assertEqual(len(read_wav(self.path("out.wav")).frames), 10)
