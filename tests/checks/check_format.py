#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a source is not laid out as .clang-format says; `make format` mends it."""
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

files = [str(path) for folder in ("source", "tools", "tests", "bench")
         for path in sorted((ROOT / folder).rglob("*")) if path.suffix in {".h", ".cpp"}]
run = subprocess.run(["clang-format", "--dry-run", "--Werror", *files])
print(f"{len(files)} files looked at")
sys.exit(run.returncode if files else 1)
