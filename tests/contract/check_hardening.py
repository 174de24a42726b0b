#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a binary lacks one of the toolchain's protections, read off the file itself.

    check_hardening.py [--unoptimised] --bundle FILE... --program FILE...

Stack protector and checked copies show as functions of the C library that a binary asks for. Checked copies exist in
optimised builds only. A program must be position-independent; a bundle is so anyway.
"""
import argparse
import re
import subprocess
import sys


def readelf(option, path):
    return subprocess.run(["readelf", "--wide", option, path], check=True, capture_output=True, text=True).stdout


def missing(path, is_program, is_optimised):
    dynamic, segments, symbols = (readelf(o, path) for o in ("--dynamic", "--program-headers", "--dyn-syms"))
    imports = set(re.findall(r" UND (\w+)", symbols))
    stack = re.search(r"^ *GNU_STACK.*$", segments, re.MULTILINE)

    if "__stack_chk_fail" not in imports:
        yield "the stack protector"
    if is_optimised and not any(re.fullmatch(r"__\w+_chk", name) for name in imports):
        yield "checked forms of the C library's copies (_FORTIFY_SOURCE)"
    if "GNU_RELRO" not in segments:
        yield "tables that cannot be written after loading (RELRO)"
    if not re.search(r"\(FLAGS\).*BIND_NOW|\(BIND_NOW\)", dynamic):
        yield "all addresses resolved at loading (BIND_NOW)"
    if stack is None or re.search(r" RWE ", stack[0]):
        yield "a stack that cannot be executed"
    if is_program and not re.search(r"\(FLAGS_1\).*PIE", dynamic):
        yield "a position-independent program (PIE)"


arguments = argparse.ArgumentParser()
arguments.add_argument("--unoptimised", action="store_true")
arguments.add_argument("--bundle", nargs="+", default=[])
arguments.add_argument("--program", nargs="+", default=[])
given = arguments.parse_args()

failed = False
for file in given.bundle + given.program:
    for what in missing(file, file in given.program, not given.unoptimised):
        print(f"{file}: lacks {what}")
        failed = True

sys.exit(1 if failed else 0)
