#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a bundle exports anything but its entry points: another name could bind to that of another plug-in.

    check_exports.py vst3=LIBRARY lv2=LIBRARY
"""
import subprocess
import sys

ENTRIES = {
    "vst3": {"GetPluginFactory", "ModuleEntry", "ModuleExit"},
    "lv2": {"lv2_descriptor", "lv2ui_descriptor"},
}

failed = False
for argument in sys.argv[1:]:
    kind, path = argument.split("=", 1)
    listing = subprocess.run(["nm", "-D", "--defined-only", path], check=True, capture_output=True, text=True).stdout
    names = {line.split()[-1] for line in listing.splitlines()}
    for name in sorted(names - ENTRIES[kind]):
        print(f"{path}: exports {name}")
        failed = True
    for name in sorted(ENTRIES[kind] - names):
        print(f"{path}: lacks the entry point {name}")
        failed = True

sys.exit(1 if failed else 0)
