#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds the script that mends the framework's wrappers to its promise: all of its rules or nothing, and a sentence that
says which version it met. Asked for in the environment: CORVANE_VST3_WRAPPER and CORVANE_LV2_WRAPPER, the installed files;
CORVANE_BUILD, the folder of the build whose bundles must be made of what it writes.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools" / "wrappers" / "mend_wrapper.py"
sys.path.insert(0, str(SCRIPT.parent))
import mend_wrapper  # noqa: E402

WRAPPERS = {kind: pathlib.Path(os.environ[f"CORVANE_{kind}_WRAPPER"]) for kind in ("VST3", "LV2")}
BUILD = pathlib.Path(os.environ["CORVANE_BUILD"])


def text_of(kind):
    return WRAPPERS[kind].read_text(encoding="utf-8")


def run(*arguments):
    return subprocess.run([sys.executable, str(SCRIPT), *map(str, arguments)], capture_output=True, text=True, check=False)


class MendWrapper(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.output = self.folder / "made" / "unit.cpp"

    def test_each_rule_changes_the_installed_file(self):
        for kind, source in WRAPPERS.items():
            done = run(kind, source, self.output)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            made = self.output.read_text(encoding="utf-8")
            for what, pattern, replacement in mend_wrapper.RULES[kind]:
                self.assertIn(replacement, made, what)
                self.assertNotIn(replacement, text_of(kind), what)
            # And nothing but the places of the rules: what the rules leave is there line by line.
            kept = set(made.splitlines())
            lost = [line for line in text_of(kind).splitlines() if line not in kept]
            self.assertLessEqual(len(lost), 2 + len(mend_wrapper.RULES[kind]), "\n".join(lost))

    def assert_refused(self, kind, text, what):
        changed = self.folder / "changed.cpp"
        changed.write_text(text, encoding="utf-8")
        done = run(kind, changed, self.output)
        self.assertEqual(done.returncode, 1, what)
        for part in (str(changed), "7.0.5", what, "instead of once", "tools/wrappers/mend_wrapper.py"):
            self.assertIn(part, done.stderr)
        self.assertNotIn("Traceback", done.stderr)
        self.assertFalse(self.output.exists(), what)

    def test_a_file_without_the_place_of_a_rule_is_refused(self):
        for kind in WRAPPERS:
            for what, pattern, _ in mend_wrapper.RULES[kind]:
                self.assert_refused(kind, re.sub(pattern, "other ()", text_of(kind)), what)

    def test_a_file_with_the_place_of_a_rule_twice_is_refused(self):
        for kind in WRAPPERS:
            for what, pattern, _ in mend_wrapper.RULES[kind]:
                self.assert_refused(kind, text_of(kind) + re.search(pattern, text_of(kind))[0], what)

    def test_a_wrapper_of_the_other_kind_is_refused(self):
        self.assertEqual(run("VST3", WRAPPERS["LV2"], self.output).returncode, 1)
        self.assertEqual(run("LV2", WRAPPERS["VST3"], self.output).returncode, 1)
        self.assertFalse(self.output.exists())

    def test_a_file_that_is_not_there_is_named(self):
        done = run("VST3", self.folder / "none.cpp", self.output)
        self.assertEqual(done.returncode, 1)
        self.assertIn("none.cpp", done.stderr)
        self.assertNotIn("Traceback", done.stderr)

    def test_an_earlier_unit_stays_when_the_framework_has_changed(self):
        self.assertEqual(run("LV2", WRAPPERS["LV2"], self.output).returncode, 0)
        before = self.output.read_bytes()
        self.assertEqual(run("LV2", WRAPPERS["VST3"], self.output).returncode, 1)
        self.assertEqual(self.output.read_bytes(), before)

    def test_the_same_unit_keeps_its_date(self):
        self.assertEqual(run("LV2", WRAPPERS["LV2"], self.output).returncode, 0)
        os.utime(self.output, (1, 1))
        self.assertEqual(run("LV2", WRAPPERS["LV2"], self.output).returncode, 0)
        self.assertEqual(self.output.stat().st_mtime, 1)

    def test_wrong_arguments_are_answered_with_the_usage(self):
        for arguments in ((), ("VST3",), ("AU", WRAPPERS["LV2"], self.output)):
            done = run(*arguments)
            self.assertEqual(done.returncode, 2)
            self.assertIn("mend_wrapper.py VST3|LV2", done.stderr)


class TheBuild(unittest.TestCase):
    def test_compiles_the_mended_wrappers_and_no_other(self):
        """Read off the build's own list. The framework hands each format's unit to the other bundles, too, where it is
        empty: a unit counts where it is compiled for its own."""
        commands = subprocess.run(["ninja", "-C", str(BUILD), "-t", "compdb"], capture_output=True, text=True, check=True)
        entries = json.loads(commands.stdout)
        for kind in WRAPPERS:
            units = {entry["file"] for entry in entries
                     if f"CorvaneQ7_{kind}.dir/" in entry.get("output", "")
                     and re.search(rf"juce_audio_plugin_client_{kind}\.(cpp|mm)$", entry["file"])}
            self.assertEqual(len(units), 1, units)
            unit = BUILD / units.pop()
            self.assertEqual(unit.read_text(encoding="utf-8"), mend_wrapper.mend(kind, WRAPPERS[kind], text_of(kind)))


if __name__ == "__main__":
    unittest.main()
