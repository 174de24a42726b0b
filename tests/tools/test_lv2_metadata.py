#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the program that completes the LV2 bundle's files to its promises: all that the framework's wrapper states stays,
a second run changes nothing, nothing of the machine gets in, and a text that is not the wrapper's is refused.

Asked for in the environment: CORVANE_LV2_METADATA, the program; CORVANE_LV2_HELPER, the framework's program that has a
bundle describe itself; CORVANE_LV2_BUNDLE, the built bundle.
"""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["CORVANE_LV2_METADATA"]
HELPER = os.environ["CORVANE_LV2_HELPER"]
BUNDLE = pathlib.Path(os.environ["CORVANE_LV2_BUNDLE"])
NAMES = ("manifest.ttl", "dsp.ttl", "ui.ttl")

URI = "http://corvane.example/plugins/corvane-q7"
LV2 = "http://lv2plug.in/ns/lv2core#"
UI = "http://lv2plug.in/ns/extensions/ui#"
VALUE = "http://www.w3.org/1999/02/22-rdf-syntax-ns#value"


def complete(bundle, **environment):
    return subprocess.run([PROGRAM, str(bundle)], capture_output=True, text=True, check=False,
                          env={"HOME": "/nonexistent", **environment})


def contents(bundle):
    return {name: (bundle / name).read_text(encoding="ascii") for name in NAMES}


def statements(file):
    """One line each, in which all blank nodes have the same name: where they hang shows in the lines around."""
    listing = subprocess.run(["sordi", "-o", "ntriples", file.name, "file:///bundle/"], cwd=file.parent,
                             capture_output=True, text=True, check=True).stdout
    return {re.sub(r"_:\w+", "_:b", line) for line in listing.splitlines()}


class Lv2Metadata(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """What the wrapper alone writes."""
        cls.folder = tempfile.TemporaryDirectory()
        cls.wrapper = pathlib.Path(cls.folder.name) / "wrapper.lv2"
        cls.wrapper.mkdir()
        library = shutil.copy(BUNDLE / "libCorvaneQ7.so", cls.wrapper)
        environment = {**os.environ, "HOME": cls.folder.name}
        subprocess.run([HELPER, str(library)], check=True, capture_output=True, env=environment)
        os.remove(library)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def setUp(self):
        self.bundle = pathlib.Path(tempfile.mkdtemp(dir=self.folder.name)) / "copy.lv2"
        shutil.copytree(self.wrapper, self.bundle)

    def test_the_build_has_run_it(self):
        self.assertEqual(complete(self.bundle).returncode, 0)
        self.assertEqual(contents(self.bundle), contents(BUNDLE))
        self.assertNotEqual(contents(self.bundle), contents(self.wrapper))

    def test_a_second_run_changes_nothing(self):
        complete(self.bundle)
        first = contents(self.bundle)
        self.assertEqual(complete(self.bundle).returncode, 0)
        self.assertEqual(contents(self.bundle), first)

    def test_needs_neither_home_nor_display_nor_language(self):
        complete(self.bundle)
        first = contents(self.bundle)

        settings = pathlib.Path(self.folder.name) / "home" / "Corvane Plugins"
        settings.mkdir(parents=True)
        (settings / "Corvane Q7.settings").write_text(
            '<?xml version="1.0" encoding="UTF-8"?>\n<PROPERTIES><VALUE name="Calibration" val="18"/>'
            '<VALUE name="Oversampling" val="4"/></PROPERTIES>\n', encoding="ascii")
        again = pathlib.Path(self.folder.name) / "again.lv2"
        shutil.copytree(self.wrapper, again)
        self.assertEqual(complete(again, HOME=str(settings.parent), LC_ALL="de_DE.UTF-8", DISPLAY=":99").returncode, 0)
        self.assertEqual(contents(again), first)

    def test_keeps_all_that_the_wrapper_states_but_what_it_mends(self):
        complete(self.bundle)
        mended = {
            # It knows no major version, so its 1.0.0 reads as unfinished.
            f'<{URI}> <{LV2}minorVersion> "0"^^<http://www.w3.org/2001/XMLSchema#integer> .',
            # A feature among the interfaces, and an interface among the features.
            f"<{URI}:UI> <{LV2}extensionData> <{UI}noUserResize> .",
            f"<{URI}:UI> <{LV2}optionalFeature> <http://lv2plug.in/ns/ext/options#interface> ."}
        lost = set()
        for name in NAMES:
            lost |= statements(self.wrapper / name) - statements(self.bundle / name)

        # Six digits of a number become as many as its float needs: these statements are there, with other numbers.
        numbers = {line for line in lost if f"<{VALUE}>" in line or f"<{LV2}default>" in line}
        self.assertEqual(lost - numbers, mended)

    def test_says_where_it_fails_and_leaves_the_bundle_alone(self):
        damages = [
            ("dsp.ttl", "plug:LowSolo\n", "plug:LowSola\n", "other parameters"),
            ("dsp.ttl", "\t\tplug:HPF ,\n", "", "writable"),
            ("dsp.ttl", 'doap:revision "', 'doap:revision "9', "doap:revision"),
            ("dsp.ttl", "\t\tlv2:index 3 ;", "\t\tlv2:index 5 ;", "port 3"),
            ("dsp.ttl", "\t\turid:map ,\n", "", "features"),
            ("dsp.ttl", 'rdfs:label "Mix" ;', 'rdfs:label "Mix ;', "string has no end"),
            ("dsp.ttl", "@prefix units:", "@prefix unit:", "units:"),
            ("manifest.ttl", '"808 Clap Fat"', '"808 Clap"', "preset2"),
            ("manifest.ttl", '"13"^^xsd:int', '"12"^^xsd:int', "preset14"),
            ("manifest.ttl", "a lv2:Plugin ;", "a lv2:Plugin", "line"),
            ("ui.ttl", "corvane-q7:UI", "corvane-q7:Window", "corvane-q7:UI")]
        for name, old, new, message in damages:
            with self.subTest(damage=f"{old.strip()} to {new.strip()}"):
                bundle = pathlib.Path(tempfile.mkdtemp(dir=self.folder.name)) / "damaged.lv2"
                shutil.copytree(self.wrapper, bundle)
                text = (bundle / name).read_text(encoding="ascii")
                self.assertIn(old, text)
                (bundle / name).write_text(text.replace(old, new, 1), encoding="ascii")
                before = contents(bundle)

                run = complete(bundle)
                self.assertEqual(run.returncode, 1)
                self.assertRegex(run.stderr, rf"^corvane-lv2-metadata: {name}: .*{re.escape(message)}")
                self.assertEqual(contents(bundle), before)

    def test_a_missing_file_is_an_error(self):
        os.remove(self.bundle / "ui.ttl")
        before = (self.bundle / "dsp.ttl").read_bytes()
        run = complete(self.bundle)
        self.assertEqual(run.returncode, 1)
        self.assertIn("ui.ttl", run.stderr)
        self.assertEqual((self.bundle / "dsp.ttl").read_bytes(), before)

    def test_asks_for_one_bundle(self):
        run = subprocess.run([PROGRAM], capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertIn("usage", run.stderr)


if __name__ == "__main__":
    unittest.main()
