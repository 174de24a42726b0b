#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""clang-tidy over our own sources by the list in .clang-tidy; any finding fails.

usage: check_tidy.py BUILD_FOLDER [PATTERN...]     without a pattern, all of source/

A file whose text and headers have not changed since it was found clean is not looked at again: what was clean lies in
BUILD_FOLDER/tidy-clean, named by a digest of the preprocessed text with its comments, the list and the tool's version.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDERS = ("source/",)

# The compiler's options are g++'s; a warning about one that clang lacks is no finding.
QUIET = ["--quiet", "--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-Wno-ignored-optimization-argument"]


def commands_of(build, patterns):
    """File and compile command of each source, once."""
    chosen = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        file = pathlib.Path(entry["file"])
        if not file.is_relative_to(ROOT) or file.is_relative_to(build):
            continue
        name = file.relative_to(ROOT).as_posix()
        if any(re.search(pattern, name) for pattern in patterns) if patterns else name.startswith(FOLDERS):
            chosen.setdefault(name, entry)
    return chosen


def digest_of(entry, common):
    """Of all that a file's findings follow from."""
    words = shlex.split(entry["command"])
    if words[0].endswith("ccache"):
        words = words[1:]
    if "-o" in words:
        at = words.index("-o")
        del words[at:at + 2]
    # With its comments, for a NOLINT is one.
    text = subprocess.run(words + ["-E", "-C"], cwd=entry["directory"], check=True, capture_output=True).stdout
    return hashlib.sha256(b"\0".join([common, " ".join(words).encode(), text])).hexdigest()


def look_at(build, name, entry, common):
    clean = build / "tidy-clean" / digest_of(entry, common)
    if clean.exists():
        return name, True, ""
    run = subprocess.run(["clang-tidy", "-p", str(build), *QUIET, str(ROOT / name)], capture_output=True, text=True)
    if run.returncode == 0:
        clean.touch()
    return name, False, "" if run.returncode == 0 else run.stdout or run.stderr


def main():
    build, patterns = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
    (build / "tidy-clean").mkdir(exist_ok=True)

    version = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True).stdout
    common = version + (ROOT / ".clang-tidy").read_bytes()
    commands = commands_of(build, patterns)
    known = failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = [pool.submit(look_at, build, name, entry, common) for name, entry in sorted(commands.items())]
        for job in concurrent.futures.as_completed(jobs):
            name, was_known, findings = job.result()
            known += was_known
            if findings:
                failed += 1
                print(f"{name}\n{findings}", flush=True)

    print(f"{len(commands)} files, {known} of them known to be clean, {failed} with findings")
    return 1 if failed or not commands else 0


if __name__ == "__main__":
    sys.exit(main())
