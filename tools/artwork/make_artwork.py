#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws every bitmap of the editor: python3 tools/artwork/make_artwork.py --out source/assets/images

Needs these Debian packages: python3-cairo, python3-numpy, python3-scipy, python3-pil, fonts-urw-base35 and povray; with
optipng the files are smaller. The same inputs give the same pixels: all seeds are fixed and no file bears a date.
"""
import argparse
import pathlib
import subprocess
import sys
import time

import about
import bars
import front
import front_meter

HERE = pathlib.Path(__file__).resolve().parent


def main():
    parser = argparse.ArgumentParser(description="Draws every bitmap of the editor.")
    parser.add_argument("--out", required=True, type=pathlib.Path, help="folder of the PNG files")
    parser.add_argument("--layout", type=pathlib.Path, default=HERE / "front.json", help="rectangles and marks")
    parser.add_argument("--only", choices=["front", "meter", "about", "bars", "solids"], help="draw one group")
    arguments = parser.parse_args()
    arguments.out.mkdir(parents=True, exist_ok=True)

    groups = {
        "front": lambda: front.draw(arguments.layout, arguments.out),
        "meter": lambda: front_meter.draw(arguments.layout, arguments.out),
        "about": lambda: about.draw(arguments.out),
        "bars": lambda: bars.draw(arguments.out),
        "solids": lambda: solids(arguments.out),
    }
    for name, group in groups.items():
        if arguments.only in (None, name):
            start = time.monotonic()
            group()
            print(f"{name}: {time.monotonic() - start:.1f} s")


def solids(out):
    """Knobs, buttons and lamps have a script of their own."""
    subprocess.run([sys.executable, str(HERE / "make_solids.py"), "--out", str(out)], check=True)


if __name__ == "__main__":
    main()
