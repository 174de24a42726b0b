# SPDX-License-Identifier: GPL-3.0-or-later
"""The settings text: what it says, what comes back from it, what is refused."""

from renderer_case import INPUT, RendererCase, noise, to_float32
from session_blocks import state
from sound_files import write_wav
from state_cases import IDENTIFIERS, MOVED, set_all

OPTIONS = ["Calibration", "Oversampling", "UIZoom"]


class Writing(RendererCase):
    def text(self, *words):
        self.succeed(*words, "--save-settings", self.path("text"), "--force")
        return self.path("text").read_text(encoding="ascii")

    def lines(self, *words):
        lines = [line for line in self.text(*words).splitlines() if line and not line.startswith("#")]
        return dict(line.split(" = ") for line in lines)

    def test_names_every_control_and_option_in_order(self):
        self.assertEqual(list(self.lines()), IDENTIFIERS + OPTIONS)

    def test_sections_stand_before_their_controls(self):
        lines = self.text().splitlines()
        for section, first in (("# Low band", "LowMeter = Control"), ("# Mid band", "MidMeter = Control"),
                               ("# High band", "HighMeter = Control"), ("# The whole unit", "Mix = 100%"),
                               ("# Options", "Calibration = 22 dBu")):
            self.assertEqual(lines[lines.index(section) + 1], first)

    def test_says_what_was_set(self):
        found = self.lines(*set_all(MOVED), "--oversampling", "3", "--calibration", "19.5")
        for word in MOVED:
            identifier, text = word.split("=")
            # Levels are typed here without a decimal where they have none, and shown with one.
            shown = text[:-2] + ".0dB" if text.endswith("dB") and "." not in text else text
            self.assertEqual(found[identifier], shown)
        self.assertEqual([found[name] for name in OPTIONS], ["19.5 dBu", "3", "100%"])

    def test_says_the_zoom_of_a_state(self):
        self.path("a").write_bytes(state(UIZoom="0.85"))
        self.assertEqual(self.lines("--state", self.path("a"))["UIZoom"], "85%")

    def test_every_whole_percent_comes_back(self):
        # A panel cuts shares off: 53% and 59% lie below themselves as floats.
        for percent in (1, 29, 52, 53, 57, 58, 59, 99):
            with self.subTest(percent):
                self.assertEqual(self.lines("--set", f"Mix={percent}%")["Mix"], f"{percent}%")

    def test_refuses_what_no_text_brings_back(self):
        for attributes, complaint in (({"LowRatio": "1.5"}, "LowRatio stands at 1.5"), ({"HPF": "1.4"}, "HPF stands"),
                                      ({"Calibration": "30"}, "Calibration stands at 30 dBu"),
                                      ({"LowXOver": "-0.2"}, "LowXOver")):
            with self.subTest(attributes):
                self.path("a").write_bytes(state(**attributes))
                self.refuse(INPUT, complaint, "--state", self.path("a"), "--save-settings", self.path("text"))


class RoundTrip(RendererCase):
    def test_every_program_comes_back(self):
        for i in range(15):
            with self.subTest(i):
                self.succeed("--program", i, "--save-settings", self.path("a"), "--force")
                self.succeed("--settings", self.path("a"), "--save-settings", self.path("b"), "--force")
                self.assertEqual(self.path("a").read_bytes(), self.path("b").read_bytes())
                # Programs stand on whole hertz, tenths of a decibel and whole percent: nothing is lost to the text.
                straight, through = self.attributes("--program", i), self.attributes("--settings", self.path("a"))
                for name in IDENTIFIERS:
                    self.assertEqual(to_float32(float(straight[name])), to_float32(float(through[name])), name)

    def test_every_control_comes_back_and_sounds_the_same(self):
        source = write_wav(self.path("in.wav"), noise(2000, 2, peak=0.9))
        words = set_all(MOVED) + ["--oversampling", "2", "--calibration", "19.5"]
        expected = self.render(source, *words, "--save-settings", self.path("a")).data
        self.assertEqual(self.render(source, "--settings", self.path("a")).data, expected)

    def test_a_text_holds_what_a_panel_shows_and_no_more(self):
        words = ("--set", "Mix=33.4%", "--set", "LowXOver=200.4Hz", "--set", "InLevel=1.26dB")
        self.succeed(*words, "--save-settings", self.path("a"))
        through = self.attributes("--settings", self.path("a"))
        for name, value in (("Mix", 0.33), ("InLevel", 11.3 / 20)):
            self.assertAlmostEqual(float(through[name]), value, delta=6e-8)     # a step of float below 1
        self.assertEqual(through["LowXOver"], self.attributes("--set", "LowXOver=200Hz")["LowXOver"])


class Reading(RendererCase):
    def settings(self, content, *words):
        self.path("text").write_bytes(content.encode("utf-8"))
        return self.attributes(*words, "--settings", self.path("text"))

    def changed(self, content, *words):
        before, after = self.attributes(*words), self.settings(content, *words)
        return {name for name in before if before[name] != after[name]}

    def test_missing_lines_keep_what_stood(self):
        self.assertEqual(self.changed("Mix = 50%\n", "--program", "9"), {"Mix"})
        self.assertEqual(self.changed("", "--program", "9"), set())
        self.assertEqual(self.changed("Oversampling = 4\nUIZoom = 75 %\nCalibration = 16\n"),
                         {"Oversampling", "UIZoom", "Calibration"})

    def test_forgives_layout(self):
        for content in ("\ufeffMix = 50%", "  Mix=50  \r\n", "# first\n\n\tMix\t=\t50 %   # and more\n",
                        "Mix = 50%\n\n"):
            with self.subTest(content):
                self.assertEqual(float(self.settings(content)["Mix"]), 0.5)

    def test_order_of_the_sources(self):
        self.path("a").write_bytes(state(Mix="0.75", Oversampling="4", Calibration="17"))
        words = ("--state", self.path("a"))
        self.assertEqual(float(self.settings("Mix = 50%", *words)["Mix"]), 0.5)
        self.assertEqual(float(self.settings("Mix = 50%", *words, "--set", "Mix=25%")["Mix"]), 0.25)
        self.assertEqual(self.settings("Mix = 50%", *words)["Oversampling"], "4")
        self.assertEqual(self.settings("Oversampling = 2", *words)["Oversampling"], "2")
        self.assertEqual(self.settings("Oversampling = 2", *words, "--oversampling", "8")["Oversampling"], "8")
        self.assertEqual(float(self.settings("Calibration = 20 dBu", "--calibration", "24")["Calibration"]), 24.0)

    def test_link_forwards_while_it_is_on(self):
        ratios = "LowRatio = 2:1\nMidRatio = 4:1\nHighRatio = 6:1\n"
        for content, expected in ((ratios, [0.25, 0.75, 1.0]), ("Link = On\n" + ratios, [1.0, 1.0, 1.0]),
                                  (ratios + "Link = On\n", [0.25, 0.75, 1.0])):
            with self.subTest(content):
                found = self.settings(content)
                self.assertEqual([float(found[band + "Ratio"]) for band in ("Low", "Mid", "High")], expected)

    def test_refuses_mistakes_with_their_line(self):
        for content, complaint in (("Mix = 50%\nmix = 40%", 'line 2: .*"mix"; did you mean "Mix"'),
                                   ("\n# so\n\nTrombone = 3", 'line 4: .*"Trombone"'),
                                   ("Mix = 50%\n\nMix = 40%", "line 3: Mix stands in line 1 already"),
                                   ("LowGain = 21dB", "line 1: LowGain takes auto, or decibels from 0 to 20"),
                                   ("Mix 50%", "line 1: .*Identifier = text"), ("Mix =", "line 1: Mix takes"),
                                   ("= 50%", 'line 1: .*""'), ("Mix = n:0.5", "line 1: Mix takes"),
                                   ("Calibration = 25 dBu", "line 1: Calibration takes .* 16 to 24"),
                                   ("Calibration = 22 dB", "line 1: Calibration takes"),
                                   ("calibration = 22", 'line 1: .*did you mean "Calibration"'),
                                   ("Oversampling = 2.5", "line 1: Oversampling takes .* 1 to 16"),
                                   ("Oversampling = 17", "line 1: Oversampling"), ("UIZoom = 69%", "line 1: UIZoom"),
                                   ("Version = 1", 'line 1: .*"Version"')):
            with self.subTest(content):
                self.path("text").write_text(content, encoding="utf-8")
                self.refuse(INPUT, complaint, "--settings", self.path("text"), "--save-state", self.path("out"))

    def test_refuses_what_is_no_text(self):
        self.refuse(INPUT, "no such file", "--settings", self.path("absent"), "--save-state", self.path("out"))
        self.refuse(INPUT, "not a regular file", "--settings", self.folder, "--save-state", self.path("out"))
        self.path("block").write_bytes(state(Mix="0.5"))
        self.refuse(INPUT, "line 1", "--settings", self.path("block"), "--save-state", self.path("out"))
