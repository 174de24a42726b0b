# SPDX-License-Identifier: GPL-3.0-or-later
"""Controls on the command line: texts and numbers, lists, the page of the documentation."""

import json
import pathlib
import struct

from renderer_case import USAGE, RendererCase, noise, to_float32
from sound_files import write_wav

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]

# Some of each kind: what is typed, and where the control then stands.
TEXTS = (("LowThreshold=-12dB", 8 / 30), ("LowThreshold=-12", 8 / 30), ("LowThreshold= -12.0 db ", 8 / 30),
         ("MidRatio=4:1", 0.75), ("Mix=80%", 0.8), ("Mix=12.5 %", 0.125), ("HPF=OFF", 0.0), ("HPF=off", 0.0),
         ("HPF=500Hz", 1.0), ("LowGain=auto", 0.0), ("MidGain=0dB", 1 / 21), ("HighGain=20", 1.0), ("LowIn=Off", 0.0),
         ("LowMidSide=Mid", 0.0), ("HighMidSide=side", 1.0), ("Bypass=Byp", 1.0), ("Bypass=In", 0.0),
         ("HighAttack=0.5mS", 1 / 3), ("MidRecovery=1.5s", 0.75), ("LowMeter=Out", 1.0), ("MasterGain=-10dB", 0.0),
         ("InLevel=+2.5 dB", 0.625), ("LowXOver=500Hz", 0.5), ("HighXOver=12000", 1.0), ("Nuke=on", 1.0),
         # Between two points: to the nearest, from the middle up.
         ("LowThreshold=-11.1", 8 / 30), ("LowThreshold=-11", 10 / 30), ("LowGain=2.4dB", 3 / 21),
         ("LowGain=2.5dB", 4 / 21))


class Setting(RendererCase):
    def test_a_text_puts_its_control_where_it_says(self):
        for text, normalised in TEXTS:
            with self.subTest(text):
                identifier = text.split("=")[0]
                # Both numbers pass a float, whose step below 1 is 6e-8.
                self.assertAlmostEqual(float(self.attributes("--set", text)[identifier]), normalised, delta=6e-8)

    def test_a_text_moves_nothing_but_its_control(self):
        before = self.attributes("--program", "4")
        after = self.attributes("--program", "4", "--set", "MidRatio=6:1")
        self.assertEqual({name for name in before if before[name] != after[name]}, {"MidRatio"})

    def test_a_normalised_number_goes_to_its_control_as_it_is(self):
        for x in ("0", "1", "0.125", "0.33", "1e-3"):
            with self.subTest(x):
                kept = self.attributes("--set-normalised", f"InLevel={x}")["InLevel"]
                # The way to decibels and back costs some steps of double, and lands on the float that came.
                self.assertEqual(to_float32(float(kept)), to_float32(float(x)))

    def test_the_last_one_of_several_counts_whatever_its_kind(self):
        text, number = ("--set", "Mix=25%"), ("--set-normalised", "Mix=0.75")
        self.assertEqual(float(self.attributes(*text, *number)["Mix"]), 0.75)
        self.assertEqual(float(self.attributes(*number, *text)["Mix"]), 0.25)
        self.assertEqual(float(self.attributes(*number, *text, *number)["Mix"]), 0.75)

    def test_controls_come_over_the_program(self):
        attributes = self.attributes("--set", "Mix=25%", "--program", "4")
        self.assertEqual(float(attributes["Mix"]), 0.25)
        self.assertEqual(attributes["Nuke"][0], "1")

    def test_options_of_their_own_come_over_controls(self):
        self.assertEqual(float(self.attributes("--set", "Bypass=In", "--bypass")["Bypass"]), 1.0)
        self.assertEqual(float(self.attributes("--set", "Bypass=Byp")["Bypass"]), 1.0)

    def test_link_forwards_as_in_the_plug_in(self):
        linked = self.attributes("--set", "Link=On", "--set", "MidRatio=6:1")
        self.assertEqual({float(linked[band + "Ratio"]) for band in ("Low", "Mid", "High")}, {1.0})
        before = self.attributes("--set", "MidRatio=6:1", "--set", "Link=On")
        self.assertEqual([float(before[band + "Ratio"]) for band in ("Low", "Mid", "High")], [0.5, 1.0, 0.5])

    def test_a_control_is_heard_from_the_first_sample(self):
        source = noise(2000, 2)
        words = ("--noise", "off", "--set")
        self.expect_frames(self.render(source, *words, "Bypass=Byp").frames, source)
        self.expect_frames(self.render(source, *words, "Mix=0%").frames, source)
        self.assertEqual(self.render(source, *words, "Nuke=On").data,
                         self.render(source, "--noise", "off", "--set-normalised", "Nuke=1").data)
        self.assertNotEqual(self.render(source, *words, "Nuke=On").data, self.render(source, *words, "Nuke=Off").data)

    def test_every_control_of_the_sound_is_heard(self):
        # Against the program 4, in which all of them matter; the rest are meters, Link, and In and Solo of no use.
        source = write_wav(self.path("in.wav"), noise(3000, 2, peak=0.9))
        words = [f"{band}{control}" for band in ("Low", "Mid", "High")
                 for control in ("In=Off", "Solo=On", "MidSide=Mid", "Gain=auto", "Ratio=6:1", "Threshold=-20",
                                 "Attack=2uS", "Recovery=800mS")]
        words += ["Mix=33%", "HPF=300Hz", "MasterGain=3dB", "LowXOver=100Hz", "HighXOver=2000Hz", "Nuke=Off",
                  "Niveau=Off", "Bypass=Byp", "InLevel=-3dB", "OutLevel=2dB"]
        sounds = {self.render(source, "--noise", "off", "--program", "4", "--set", word).data for word in words}
        sounds.add(self.render(source, "--noise", "off", "--program", "4").data)
        self.assertEqual(len(sounds), len(words) + 1)


class Refusing(RendererCase):
    def refuse_words(self, pattern, *words):
        self.refuse(USAGE, pattern, *words, "--save-state", self.path("state"))

    def test_unknown_identifiers_with_the_nearest_one(self):
        for word, offer in (("lowgain", "LowGain"), ("LOWTHRESHOLD", "LowThreshold"), ("LowTreshold", "LowThreshold"),
                            ("LowGian", "LowGain"), ("mix", "Mix"), ("Low XOver", "LowXOver")):
            for option in ("--set", "--set-normalised"):
                with self.subTest(word=word, option=option):
                    self.refuse_words(f'"{word}"; did you mean "{offer}"\\? --list-parameters', option, f"{word}=1")

    def test_unknown_identifiers_without_an_offer_when_none_is_near(self):
        process = self.run_renderer("--set", "Trombone=1", "--save-state", self.path("state"))
        self.assertEqual(process.returncode, USAGE)
        self.assertNotIn("did you mean", process.err)

    def test_texts_with_what_would_be_taken(self):
        for word, taken in (("LowThreshold=loud", "decibels from -20 to 10 in steps of 2, such as -12dB, not \"loud\""),
                            ("LowThreshold=12dB", "from -20 to 10"), ("LowThreshold=", "from -20 to 10"),
                            ("MidGain=-1dB", "auto, or decibels from 0 to 20 in steps of 1, such as 4dB"),
                            ("MidRatio=5:1", "1.5:1, 2:1, 3:1, 4:1 or 6:1, not \"5:1\""),
                            ("HighIn=1", "Off or On"), ("Bypass=On", "In or Byp"), ("LowMidSide=M", "Mid, Off or Side"),
                            ("Mix=101%", "a percentage from 0 to 100, such as 80%"), ("Mix=0,5", "from 0 to 100"),
                            ("HPF=19Hz", "OFF, or hertz from 20 to 500"), ("HPF=1kHz", "from 20 to 500"),
                            ("LowXOver=49.9", "from 50 to 5000"), ("HighXOver=nan", "from 200 to 12000"),
                            ("InLevel=10.1dB", "from -10 to 10"), ("HighMeter=Input", "In, Control or Out")):
            with self.subTest(word):
                self.refuse_words(f"{word.split('=')[0]} takes .*{taken}", "--set", word)

    def test_numbers_that_are_not_normalised(self):
        for value in ("-0.001", "1.001", "50%", "", "nan", "inf", "0,5", "0x1"):
            with self.subTest(value):
                self.refuse_words(f"Mix takes a number from 0 to 1, not \"{value}\"", "--set-normalised",
                                  f"Mix={value}")

    def test_what_is_no_assignment(self):
        self.refuse_words("IDENTIFIER=TEXT, not \"Mix\"", "--set", "Mix")
        self.refuse_words("IDENTIFIER=X, not \"0.5\"", "--set-normalised", "0.5")


class MetersAndTheirControls(RendererCase):
    def levels(self, *words):
        """Whether the level of Low, Mid and High ever moves."""
        self.render(noise(3000, 2, peak=0.9), "--meters", self.path("m.csv"), *words)
        rows = [line.split(",") for line in self.path("m.csv").read_text(encoding="ascii").splitlines()[1:]]
        return [len({row[column] for row in rows}) > 1 for column in (1, 3, 5)]

    def test_a_meter_that_was_set_wins(self):
        # A meter that shows the gain reduction leaves the level where it stands.
        self.assertEqual(self.levels(), [True, True, True])
        self.assertEqual(self.levels("--set", "MidMeter=Control"), [True, False, True])
        self.assertEqual(self.levels("--set-normalised", "LowMeter=0.5", "--set", "HighMeter=Control"),
                         [False, True, False])

    def test_with_link_all_of_them_were_set(self):
        self.assertEqual(self.levels("--set", "Link=On", "--set", "MidMeter=Control"), [False, False, False])
        self.assertEqual(self.levels("--set", "MidMeter=Control", "--set", "Link=On"), [True, False, True])

    def test_a_meter_at_the_input_shows_other_levels(self):
        words = ("--noise", "off", "--set", "MidGain=20dB", "--set", "MidMeter=")
        rows = []
        for meter in ("In", "Out"):
            self.levels(*words[:-1], words[-1] + meter)
            rows.append(self.path("m.csv").read_text(encoding="ascii").splitlines()[-1].split(","))
        self.assertGreater(float(rows[1][3]), 2.0 * float(rows[0][3]))
        self.assertEqual(rows[0][5:], rows[1][5:])

    def test_what_is_saved_beside_a_render_knows_nothing_of_the_choice_for_meters(self):
        self.succeed(write_wav(self.path("in.wav"), noise(100)), self.path("out.wav"), "--meters", self.path("m.csv"),
                     "--save-state", self.path("with"), "--quiet")
        self.succeed("--save-state", self.path("without"))
        self.assertEqual(self.path("with").read_bytes(), self.path("without").read_bytes())


class Lists(RendererCase):
    def setUp(self):
        super().setUp()
        self.controls = json.loads(self.succeed("--list-parameters", "--json"))["parameters"]

    def test_names_every_control_in_the_order_of_a_session(self):
        names = [control["identifier"] for control in self.controls]
        self.assertEqual(names, list(self.attributes())[1:-3])
        self.assertEqual([control["index"] for control in self.controls], list(range(len(names))))

    def test_keys_keep_their_order(self):
        for control in self.controls:
            self.assertEqual(list(control), ["index", "identifier", "name", "description", "kind", "unit", "range",
                                             "steps", "default", "texts", "meta"])
            self.assertEqual(list(control["default"]), ["normalised", "text"])

    def test_tells_what_a_control_is(self):
        by_name = {control["identifier"]: control for control in self.controls}
        gain = by_name["LowGain"]
        self.assertEqual((gain["name"], gain["kind"], gain["unit"], gain["steps"], gain["meta"]),
                         ("Low Gain", "decibels", "dB", 22, False))
        self.assertEqual(gain["range"], {"lowest": 0, "highest": 20, "step": 1})
        self.assertEqual(gain["texts"], ["auto"] + [f"{db}.0dB" for db in range(21)])
        self.assertEqual(gain["default"]["text"], "1.0dB")
        self.assertEqual(by_name["LowXOver"]["default"], {"normalised": 0.30103, "text": "200Hz"})
        self.assertEqual((by_name["HPF"]["steps"], by_name["HPF"]["texts"]), (None, ["OFF"]))
        self.assertIsNone(by_name["InLevel"]["range"]["step"])
        self.assertIsNone(by_name["MidRatio"]["range"])
        self.assertTrue(by_name["MidRatio"]["meta"])
        self.assertEqual(sum(control["meta"] for control in self.controls), 18)
        self.assertEqual(by_name["HighXOver"]["description"], "Where the middle band ends and the high band begins.")
        self.assertEqual(by_name["LowSolo"]["description"], by_name["HighSolo"]["description"])

    def test_every_text_it_names_can_be_set(self):
        for control in self.controls:
            for i, text in enumerate(control["texts"]):
                with self.subTest(identifier=control["identifier"], text=text):
                    x = i / (control["steps"] - 1) if control["steps"] else 0.0
                    found = self.attributes("--set", f"{control['identifier']}={text}")[control["identifier"]]
                    self.assertAlmostEqual(float(found), x, delta=6e-8)     # a step of float below 1

    def test_defaults_are_those_of_a_state_that_holds_nothing(self):
        self.path("empty").write_bytes(struct.pack("<II", 0x21324356, 14) + b"<CQ7SETTINGS/>\0")
        attributes = self.attributes("--state", self.path("empty"))
        for control in self.controls:
            with self.subTest(control["identifier"]):
                self.assertAlmostEqual(float(attributes[control["identifier"]]), control["default"]["normalised"],
                                       delta=6e-8)      # a step of float below 1

    def test_the_plain_list_has_a_line_for_each_and_what_it_does_below(self):
        header, *lines = self.succeed("--list-parameters").splitlines()
        self.assertEqual(header.split()[:3], ["#", "identifier", "name"])
        self.assertEqual([line.split()[1] for line in lines[::2]], [c["identifier"] for c in self.controls])
        self.assertEqual(lines[1::2], ["    " + c["description"] for c in self.controls])
        self.assertRegex(lines[12], r"^6 +LowThreshold +Low Threshold +decibels +-20 to 10 dB +16 +-10\.0dB "
                                   r"+0\.33333334 +no +-20\.0dB to 10\.0dB$")


class Documentation(RendererCase):
    def test_the_page_in_the_repository_is_the_one_that_is_made(self):
        self.assertEqual(self.succeed("--write-parameter-docs", self.path("page.md")), "")
        made = self.path("page.md").read_text(encoding="utf-8")
        kept = (REPOSITORY / "docs" / "PARAMETERS.md").read_text(encoding="utf-8")
        self.assertEqual(made, kept, "run: corvane-render --write-parameter-docs docs/PARAMETERS.md --force")

    def test_the_page_tells_of_every_control(self):
        self.succeed("--write-parameter-docs", self.path("page.md"))
        rows = [line.split(" | ") for line in self.path("page.md").read_text(encoding="utf-8").splitlines()
                if line.startswith("| ") and line[2].isdigit()]
        self.assertEqual([row[2].strip("`") for row in rows], list(self.attributes())[1:-3])
        self.assertTrue(all(len(row) == 8 and len(row[3]) > 20 for row in rows))

    def test_a_page_that_is_there_is_replaced_only_when_asked(self):
        self.path("page.md").write_text("what was here", encoding="utf-8")
        self.refuse(4, "exists already", "--write-parameter-docs", self.path("page.md"))
        self.succeed("--write-parameter-docs", self.path("page.md"), "--force")
        self.assertIn("LowThreshold", self.path("page.md").read_text(encoding="utf-8"))
