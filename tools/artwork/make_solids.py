#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the solid things of the console front: knobs, push buttons, the toggle switch and the lamps.

    /usr/bin/python3 tools/artwork/make_solids.py --out source/assets/images [--only knobs,buttons,switch,lamps]

Needs these Debian packages: python3-numpy, python3-scipy, python3-pil, python3-cairo, fonts-urw-base35, povray. The same
packages make the same bytes: nothing here is random, and the PNG files bear no date.
"""

import argparse
import importlib
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
sys.dont_write_bytecode = True

GROUPS = {"knobs": "solids.knobs", "buttons": "solids.buttons", "switch": "solids.toggle", "lamps": "solids.lamps"}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", type=pathlib.Path, required=True, help="folder of the images")
    parser.add_argument("--only", default=",".join(GROUPS), help="groups to draw, of " + ", ".join(GROUPS))
    args = parser.parse_args()
    args.out.mkdir(parents=True, exist_ok=True)
    for group in args.only.split(","):
        importlib.import_module(GROUPS[group]).make(args.out)


if __name__ == "__main__":
    main()
