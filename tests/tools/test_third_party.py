#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares what THIRD-PARTY.md says that the binaries link with what stands in them.

Asked for in the environment: CORVANE_BINARIES, as NAME=PATH|NAME=PATH, with the page's own names of them.
"""

import os
import pathlib
import re
import subprocess
import unittest

PAGE = (pathlib.Path(__file__).resolve().parents[2] / "THIRD-PARTY.md").read_text(encoding="utf-8")
BINARIES = dict(pair.split("=", 1) for pair in os.environ["CORVANE_BINARIES"].split("|"))
LOADER = "ld-linux-x86-64.so.2"     # a part of the C library, which only some linkers name


def named_on_page(binary):
    """The libraries that the page names in the binary's row."""
    row, = re.findall(rf"^\| {re.escape(binary)} \| (lib[^|]*) \|$", PAGE, re.MULTILINE)
    return set(row.split(", "))


def needed_by(path):
    listing = subprocess.run(["readelf", "--dynamic", path], capture_output=True, text=True, check=True,
                             env=dict(os.environ, LC_ALL="C")).stdout
    return set(re.findall(r"\(NEEDED\)\s+Shared library: \[(.+)\]", listing)) - {LOADER}


def named_in(path, pattern):
    """Names in the binary's bytes: what a program loads by name stands there as it stands in the source."""
    return {name.decode("ascii") for name in re.findall(pattern, pathlib.Path(path).read_bytes())}


class ThirdParty(unittest.TestCase):
    def test_the_page_names_what_every_binary_links(self):
        for name, path in BINARIES.items():
            with self.subTest(name):
                needed = needed_by(path)
                self.assertIn("libc.so.6", needed)
                self.assertEqual(named_on_page(name), needed)

    def test_the_page_names_what_is_loaded_later(self):
        sentence = re.search(r"load the X libraries by name[^:]*:([^|]*?)\.\n\n", PAGE).group(1)
        on_page = set(re.findall(r"libX\w+\.so\.\d", sentence))
        loaded = set().union(*(named_in(path, rb"libX\w+\.so\.\d") for path in BINARIES.values()))
        self.assertTrue(on_page)
        # Without a bundle there is only the renderer, which has no window.
        self.assertEqual(loaded, on_page if len(BINARIES) > 1 else set())

    def test_nothing_is_compiled_in_that_only_tests_use(self):
        # Names of functions stay in the bytes of a binary that is not stripped.
        for name, path in BINARIES.items():
            with self.subTest(name):
                self.assertEqual(named_in(path, rb"\b(?:lilv|serd|sord|sratom)_[a-z]+_[a-z]+"), set())


if __name__ == "__main__":
    unittest.main()
