# SPDX-License-Identifier: GPL-3.0-or-later
"""Words that the renderer takes, and words that it refuses."""

import subprocess

from renderer_case import INPUT, OUTPUT, RENDERER, USAGE, RendererCase, noise
from sound_files import write_wav


class CommandLine(RendererCase):
    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(600))

    def refuse_words(self, pattern, *words):
        self.refuse(USAGE, pattern, self.source, self.path("out.wav"), *words)

    def test_tells_its_version(self):
        self.assertEqual(self.succeed("--version"), "corvane-render 1.0.0\n")

    def test_help_names_every_option(self):
        text = self.succeed("--help")
        for option in ("program", "oversampling", "calibration", "block", "seed", "noise", "tail", "meters",
                       "keep-latency", "bypass", "bits", "list-programs", "dump-curves", "dump-control-law",
                       "dump-taps", "version", "force", "quiet", "set", "set-normalised", "state", "save-state",
                       "settings", "save-settings", "automation", "list-parameters", "json", "write-parameter-docs"):
            self.assertIn(f"--{option} ", text)

    def test_needs_input_and_output(self):
        self.refuse(USAGE, "INPUT and an OUTPUT")
        self.refuse(USAGE, "INPUT and an OUTPUT", self.source)

    def test_refuses_a_third_file(self):
        self.refuse(USAGE, "third.wav", self.source, self.path("out.wav"), "third.wav")

    def test_refuses_empty_file_names(self):
        self.refuse(USAGE, "name of a file", self.source, "")
        for option in ("--meters", "--state", "--save-state", "--settings", "--save-settings", "--automation",
                       "--write-parameter-docs"):
            with self.subTest(option):
                self.refuse_words("name of a file", option, "")

    def test_refuses_unknown_options(self):
        self.refuse_words("--loudness", "--loudness")

    def test_refuses_an_option_without_its_value(self):
        for option in ("--block", "--program", "--meters", "--dump-taps"):
            with self.subTest(option):
                self.refuse_words(option, option)

    def test_refuses_an_option_given_twice(self):
        self.refuse_words("--block", "--block", "64", "--block", "128")

    def test_refuses_numbers_out_of_range_and_names_the_range(self):
        for option, ends, values in (("--oversampling", "1 to 16", ("0", "17", "-1", "2.5", "99999999999999999999")),
                                     ("--calibration", "16 to 24", ("15.99", "24.01", "-20", "1e9")),
                                     ("--block", "1 to 65536", ("0", "65537", "-512", "0x40")),
                                     ("--seed", "0 to 4294967295", ("-1", "4294967296")),
                                     ("--tail", "0 to 600", ("-0.001", "600.001"))):
            for value in values:
                with self.subTest(option=option, value=value):
                    self.refuse_words(f"{option} takes .* from {ends}, not \"{value}\"", option, value)

    def test_refuses_what_is_no_number(self):
        for option in ("--oversampling", "--calibration", "--block", "--seed", "--tail"):
            for value in ("nan", "inf", "-inf", "1e999", "four", "", " 4", "4 ", "4,5"):
                with self.subTest(option=option, value=value):
                    self.refuse_words(f"{option} takes a", option, value)

    def test_quotes_the_ends_of_what_is_long(self):
        long = "begin" + "x" * 100000 + "end"
        for words in (("--set", f"{long}=1"), ("--set", f"Mix={long}"), ("--set", long), ("--set-normalised", long),
                      ("--set-normalised", f"Mix={long}"), ("--program", long), ("--program", "9" * 100000),
                      ("--bits", long), ("--noise", long), ("--block", long), ("--tail", long)):
            with self.subTest(words=[word[:30] for word in words]):
                process = self.run_renderer(self.source, self.path("out.wav"), *words)
                self.assertEqual(process.returncode, USAGE)
                self.assertLess(len(process.err), 300)
                self.assertRegex(process.err, r'"(begin)?[x9]+\.\.\.[x9]+(end)?"')

    def test_keeps_every_complaint_short(self):
        # Not only what stands in quotation marks: the name of a file, or of an option that does not exist.
        for status, words in ((USAGE, (self.source, "out.wav", "--" + "x" * 100000)),
                              (USAGE, (self.source, "out.wav", "x" * 100000)),
                              (INPUT, ("x" * 100000, "out.wav")), (OUTPUT, (self.source, "x" * 100000))):
            process = self.run_renderer(*words)
            self.assertEqual(process.returncode, status)
            self.assertLess(len(process.err), 1100)
            self.assertRegex(process.err, r"\Acorvane-render: [^\n]*x\.\.\.x[^\n]*\n\Z")

    def test_takes_the_ends_of_every_range(self):
        for words in (("--oversampling", "16"), ("--calibration", "16"), ("--calibration", "24"), ("--block", "65536"),
                      ("--block", "1"), ("--seed", "0"), ("--seed", "4294967295"), ("--tail", "0"),
                      ("--program", "0"), ("--program", "14")):
            with self.subTest(words):
                self.assertEqual(len(self.render(self.source, *words).frames), 600)

    def test_refuses_other_words_than_on_and_off_for_the_noise(self):
        self.refuse_words("on or off, not \"loud\"", "--noise", "loud")

    def test_refuses_other_formats(self):
        for bits in ("8", "32", "16f", ""):
            with self.subTest(bits):
                self.refuse_words("16, 24 or 32f", "--bits", bits)

    def test_lists_the_programs(self):
        lines = self.succeed("--list-programs").splitlines()
        self.assertEqual([int(line.split()[0]) for line in lines], list(range(15)))
        names = [line.split(None, 1)[1] for line in lines]
        self.assertEqual((names[0], names[5], names[14]), ("Default", "Drum Bus Smash", "Vocals Male Rock Extreme"))
        self.assertEqual(len(set(names)), 15)

    def test_offers_the_program_that_was_probably_meant(self):
        self.refuse_words('no program is called "Drm Bus smash"; did you mean "Drum Bus Smash"', "--program",
                          "Drm Bus smash")

    def test_offers_no_program_when_none_is_near(self):
        process = self.run_renderer(self.source, self.path("out.wav"), "--program", "Trombone")
        self.assertEqual(process.returncode, USAGE)
        self.assertIn("--list-programs", process.err)
        self.assertNotIn("did you mean", process.err)

    def test_refuses_program_numbers_out_of_range(self):
        for number in ("15", "-1", "4294967296"):
            with self.subTest(number):
                self.refuse_words("--list-programs", "--program", number)

    def test_renders_and_saves_nothing_when_it_lists_or_dumps(self):
        for words in (("--list-programs",), ("--list-parameters",), ("--write-parameter-docs", "page")):
            with self.subTest(words):
                self.refuse_words("list or dump", *words)
                self.refuse(USAGE, "list or dump", *words, "--save-state", "state")

    def test_refuses_json_without_a_list(self):
        self.refuse_words("--list-parameters", "--json")

    def test_saving_alone_takes_no_options_of_a_render(self):
        for option in ("--meters", "--automation"):
            with self.subTest(option):
                self.refuse(USAGE, "need an INPUT", "--save-state", "state", option, "file")

    def test_complains_when_its_text_cannot_be_printed(self):
        try:
            full = open("/dev/full", "w")
        except OSError:
            self.skipTest("no /dev/full: this system has no device that is always full")
        with full:
            ended = subprocess.run([RENDERER, "--list-programs"], stdout=full, stderr=subprocess.PIPE, text=True,
                                   check=False)
        self.assertEqual(ended.returncode, OUTPUT)
        self.assertRegex(ended.stderr, r"\Acorvane-render: [^\n]*standard output\n\Z")
