#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a bundle exports a name of ours or of the framework: it could bind to that of another plug-in.

The C++ library's own templates may appear: the compiler makes them visible whatever the option, and every copy of
them in a process is the same.
"""
import subprocess
import sys

ENTRIES = {"GetPluginFactory", "ModuleEntry", "ModuleExit", "lv2_descriptor", "lv2ui_descriptor"}
LIBRARY_TEMPLATES = ("_ZNSt", "_ZNKSt", "_ZSt", "_ZTISt", "_ZTSSt", "_ZTVSt", "_ZZNSt")

failed = False
for path in sys.argv[1:]:
    listing = subprocess.run(["nm", "-D", "--defined-only", path], check=True, capture_output=True, text=True).stdout
    names = [line.split()[-1] for line in listing.splitlines()]
    if not ENTRIES & set(names):
        print(f"{path}: exports no entry point")
        failed = True
    for name in names:
        if name not in ENTRIES and not (name.startswith(LIBRARY_TEMPLATES) and "juce" not in name.lower()):
            print(f"{path}: exports {name}")
            failed = True

sys.exit(1 if failed else 0)
