#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes source/assets/fonts/Segment7.otf: the seven-segment face of the crossover displays.

    make_segment7.py                 writes the file at its place in this tree
    make_segment7.py OUT.otf         writes another file
    make_segment7.py --check FILE    exit 1 unless FILE is exactly what this script makes

A display draws its text twice: all segments dark ("88.8"), and the lit ones over them ("12.5"). So
every glyph has the same advance, and the segments of every digit are those of the 8, point for point.

Needs the Python module of FontForge (python3-fontforge), which lives with the system's own Python.
All coordinates are rounded here and nothing of the clock or the machine gets in, so each run of one
version of FontForge makes the same bytes.

Lengths are in units of the em. Ascent and descent add up to the em, so a text of height 30 px has an
em of 30 px.
"""

import argparse
import math
import os
import pathlib
import sys
import tempfile

DEFAULT_OUTPUT = pathlib.Path(__file__).resolve().parents[2] / "source/assets/fonts/Segment7.otf"

FAMILY = "Segment7"
VERSION = "1.000"
MADE_AT = 1735689600                  # 2025-01-01 00:00:00 UTC, whenever the script runs

ASCENT, DESCENT = 860, 140

# The labels keep a margin of 5 px a side at every zoom: at 70 % the narrower display leaves 31 px for four cells at a
# height of 20.3 px. Up to 0.381 em, no digit is squeezed there.
ADVANCE = 380

HEIGHT = 720                          # of a digit; ASCENT and DESCENT centre it
WIDTH = 296                           # of a digit before it is slanted
STROKE = 84
GAP = 17                              # across the seam between two segments
SLANT = math.radians(7.0)

CORNER = 26                           # cut off each outer corner of the digit, along either side
WAIST = 22                            # how far an upright opens outwards where it meets the middle

POINT_SIZE = 92
POINT_LEFT = 4                        # about as far behind the foot of a digit as the next digit would be

SEGMENTS_OF = {"0": "abcdef", "1": "bc", "2": "abdeg", "3": "abcdg", "4": "bcfg", "5": "acdfg",
               "6": "acdefg", "7": "abc", "8": "abcdefg", "9": "abcdfg"}

NAME_OF = {"0": "zero", "1": "one", "2": "two", "3": "three", "4": "four", "5": "five",
           "6": "six", "7": "seven", "8": "eight", "9": "nine"}


# ---------------------------------------------------------------------------------------------
# Outlines, upright, with the digit's lower left corner at 0, 0


def top_bar():
    """Segment a: mitred at 45 degrees against both uprights, with the outer corners cut."""
    seam = GAP / math.sqrt(2.0)       # how far a seam of 45 degrees moves a horizontal edge
    half = [(STROKE + seam, HEIGHT - STROKE),
            ((CORNER + seam) / 2.0, HEIGHT - (CORNER - seam) / 2.0),
            (CORNER, HEIGHT)]
    return half + [(WIDTH - x, y) for x, y in reversed(half)]


def upper_left_upright():
    """Segment f: mitred against the top bar, pointed where it meets the middle bar."""
    seam = GAP / math.sqrt(2.0)
    middle = HEIGHT / 2.0
    return [(0.0, HEIGHT - CORNER),
            ((CORNER - seam) / 2.0, HEIGHT - (CORNER + seam) / 2.0),
            (STROKE, HEIGHT - STROKE - seam),
            (STROKE, middle + STROKE / 2.0 + seam / 2.0),
            (STROKE / 2.0, middle + seam / 2.0),
            (0.0, middle + seam / 2.0 + WAIST)]


def middle_bar():
    """Segment g: a hexagon whose points lie on the centre lines of the uprights."""
    seam = GAP / math.sqrt(2.0)
    middle = HEIGHT / 2.0
    left, half = STROKE / 2.0 + seam / 2.0, STROKE / 2.0
    return [(left, middle), (left + half, middle + half), (WIDTH - left - half, middle + half),
            (WIDTH - left, middle), (WIDTH - left - half, middle - half), (left + half, middle - half)]


def mirrored(points, across, along):
    """Mirrored left to right, top to bottom, or both; the direction of the outline stays."""
    moved = [(WIDTH - x if across else x, HEIGHT - y if along else y) for x, y in points]
    return moved if across == along else moved[::-1]


def point_outline():
    """An octagon that stands on the base line."""
    half, cut = POINT_SIZE / 2.0, POINT_SIZE / (2.0 + math.sqrt(2.0))
    eighth = [(half, -half + cut), (half, half - cut), (half - cut, half), (-half + cut, half)]
    return [(x + half, y + half) for x, y in eighth + [(-x, -y) for x, y in eighth]]


def placed(points, left):
    """Slanted about half the height of a digit, clockwise, in whole units."""
    moved = [(round(left + x + (y - HEIGHT / 2.0) * math.tan(SLANT)), round(y)) for x, y in points]
    area = sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(moved, moved[1:] + moved[:1]))
    return moved if area < 0 else moved[::-1]


def make_segments():
    upright = {"a": top_bar(), "f": upper_left_upright(), "g": middle_bar()}
    upright["b"] = mirrored(upright["f"], True, False)
    upright["c"] = mirrored(upright["f"], True, True)
    upright["d"] = mirrored(upright["a"], False, True)
    upright["e"] = mirrored(upright["f"], False, True)
    return {name: placed(points, (ADVANCE - WIDTH) / 2.0) for name, points in upright.items()}


# ---------------------------------------------------------------------------------------------
# The font


def add_glyph(font, code, name, outlines):
    glyph = font.createChar(code, name)
    pen = glyph.glyphPen()
    for outline in outlines:
        pen.moveTo(outline[0])
        for corner in outline[1:]:
            pen.lineTo(corner)
        pen.closePath()
    pen = None                        # the outlines are handed over when the pen goes
    glyph.width = ADVANCE
    return glyph


def describe(font):
    """Names and measures; each is set here, so that FontForge has nothing to make up."""
    font.fontname, font.familyname, font.fullname = FAMILY, FAMILY, FAMILY
    font.weight = "Regular"
    font.version = VERSION
    font.copyright = "Copyright Corvane, GPL-3.0-or-later"
    for field, text in (("Family", FAMILY), ("SubFamily", "Regular"), ("UniqueID", f"Corvane : {FAMILY} : {VERSION}"),
                        ("Version", f"Version {VERSION}")):
        font.appendSFNTName("English (US)", field, text)
    font.uniqueid = 0
    font.italicangle = -round(math.degrees(SLANT))
    font.upos, font.uwidth = -100, 30

    font.em = ASCENT + DESCENT
    font.ascent, font.descent = ASCENT, DESCENT
    for table in ("hhea_", "os2_typo", "os2_win"):
        for side, value in (("ascent", ASCENT), ("descent", DESCENT if table == "os2_win" else -DESCENT)):
            setattr(font, f"{table}{side}_add", False)
            setattr(font, f"{table}{side}", value)
    font.hhea_linegap = font.os2_typolinegap = 0
    font.os2_weight, font.os2_width = 400, 5
    font.os2_fstype = 0
    font.os2_vendor = "CRVN"
    font.os2_panose = (2, 0, 5, 9, 0, 0, 0, 0, 0, 0)      # of it all, only: one width for all
    font.os2_xheight = font.os2_capheight = HEIGHT

    # Hints for rasterisers that ask for them; the framework's does not.
    for entry, values in (("BlueValues", (-20, 0, HEIGHT, HEIGHT + 20)), ("StdHW", (STROKE,)), ("StdVW", (STROKE,)),
                          ("StemSnapH", (STROKE,)), ("StemSnapV", (STROKE,))):
        font.private[entry] = values


def write_font(path):
    # Read by FontForge when it writes the time of making.
    os.environ["SOURCE_DATE_EPOCH"] = str(MADE_AT)
    try:
        import fontforge              # here, so that --help needs no FontForge
    except ImportError:
        sys.exit("needs FontForge's Python module: package python3-fontforge, run by /usr/bin/python3")

    font = fontforge.font()
    segments = make_segments()
    add_glyph(font, -1, ".notdef", [])
    add_glyph(font, ord(" "), "space", [])
    hyphen = add_glyph(font, ord("-"), "hyphen", [segments["g"]])
    hyphen.altuni = ((0x2212, -1, 0),)
    add_glyph(font, ord("."), "period", [placed(point_outline(), POINT_LEFT + HEIGHT / 2.0 * math.tan(SLANT))])
    for digit, lit in SEGMENTS_OF.items():
        add_glyph(font, ord(digit), NAME_OF[digit], [segments[name] for name in lit])
    describe(font)
    font.generate(str(path), flags=("no-FFTM-table", "no-hints", "no-flex"))


def make_bytes():
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "Segment7.otf"
        write_font(path)
        return path.read_bytes()


def main():
    parser = argparse.ArgumentParser(description="Makes the seven-segment face.")
    parser.add_argument("output", nargs="?", type=pathlib.Path, default=DEFAULT_OUTPUT,
                        help="file to write (default: source/assets/fonts/Segment7.otf of this tree)")
    parser.add_argument("--check", metavar="FILE", type=pathlib.Path,
                        help="write nothing; exit 1 unless FILE is exactly what would be written")
    arguments = parser.parse_args()

    made = make_bytes()

    if arguments.check is None:
        arguments.output.write_bytes(made)
        return 0

    try:
        found = arguments.check.read_bytes()
    except OSError as error:
        print(f"{arguments.check}: {error.strerror}", file=sys.stderr)
        return 1

    if found != made:
        print(f"{arguments.check}: differs from what {pathlib.Path(__file__).name} makes; run the script",
              file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
