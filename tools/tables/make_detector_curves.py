#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes source/dsp/DetectorCurvesData.inc: the five detector curves, 32768 entries each.

A detector curve tells which voltage the compressor's main capacitor is charged towards, for a
given detector input: a flat floor near 0.11 V, a knee, a steep rise, then a rising shoulder. One
curve belongs to each ratio. Eight points of each curve are known; this script draws a smooth line
through them, indexed by entry (the entries are evenly spaced on the input axis, so the index will
do in place of the input), and rounds every value to six significant digits.

The line is a piecewise cubic Hermite whose slopes follow F. N. Fritsch and R. E. Carlson,
"Monotone piecewise cubic interpolation" (SIAM J. Numer. Anal. 17, 1980), with the weighted
harmonic mean of F. N. Fritsch and J. Butland (SIAM J. Sci. Stat. Comput. 5, 1984). It never
leaves the range of two neighbouring points. That matters: an ordinary spline would swing below
the floor in front of the knee, and a curve that falls where it should rise gives the solver, which
looks for a fixed point, more than one answer. The floor is smooth, as no noise is made up for it.

    make_detector_curves.py                 writes the file at its place in this tree
    make_detector_curves.py OUT.inc         writes another file
    make_detector_curves.py --check FILE    exit 1 unless FILE is exactly what this script makes

Only + - * / on doubles are used, so every machine makes the same bytes.
"""

import argparse
import pathlib
import sys
from fractions import Fraction

NUM_ENTRIES = 32768
SIGNIFICANT_DIGITS = 6
VALUES_PER_LINE = 10

DEFAULT_OUTPUT = pathlib.Path(__file__).resolve().parents[2] / "source/dsp/DetectorCurvesData.inc"

KNOT_ENTRIES = (0, 2048, 3072, 4096, 8192, 16384, 24576, 32767)

# Label of the ratio, then the value at each of KNOT_ENTRIES, in volts.
CURVES = (
    ("1.5:1", (0.10556, 0.10650, 0.22303, 1.57806, 2.66886, 3.31654, 3.64336, 3.88630)),
    ("2:1",   (0.10894, 0.10790, 0.13220, 1.37622, 2.50241, 3.38151, 4.01398, 4.59558)),
    ("3:1",   (0.11008, 0.11459, 0.19220, 1.41474, 2.40622, 3.43390, 4.40817, 5.33222)),
    ("4:1",   (0.11366, 0.11283, 0.12802, 0.20717, 2.07929, 3.20945, 4.61067, 5.90445)),
    ("6:1",   (0.11817, 0.13446, 0.16653, 0.28223, 1.77577, 2.92835, 4.77778, 6.42998)),
)

# Beyond its last entry a curve goes on by the ratio of its last two entries. The gentlest ratio
# falls slowly there; all others go on rising.
FALLING_CURVE = 0


# ---------------------------------------------------------------------------------------------
# The monotone cubic


def end_slope(near_width, far_width, near_rise, far_rise):
    """Slope at an outer point: three-point formula, limited so that the end keeps its shape."""
    slope = ((2.0 * near_width + far_width) * near_rise - near_width * far_rise) / (near_width + far_width)
    if slope * near_rise <= 0.0:
        return 0.0
    if near_rise * far_rise <= 0.0 and abs(slope) > 3.0 * abs(near_rise):
        return 3.0 * near_rise
    return slope


def monotone_slopes(xs, ys):
    """One slope for each point; 0 at a turning point, else a weighted harmonic mean."""
    widths = [b - a for a, b in zip(xs, xs[1:])]
    rises = [(b - a) / w for a, b, w in zip(ys, ys[1:], widths)]

    slopes = [end_slope(widths[0], widths[1], rises[0], rises[1])]
    for k in range(1, len(xs) - 1):
        if rises[k - 1] * rises[k] <= 0.0:
            slopes.append(0.0)
        else:
            left_weight = 2.0 * widths[k] + widths[k - 1]
            right_weight = widths[k] + 2.0 * widths[k - 1]
            slopes.append((left_weight + right_weight)
                          / (left_weight / rises[k - 1] + right_weight / rises[k]))
    slopes.append(end_slope(widths[-1], widths[-2], rises[-1], rises[-2]))
    return slopes


def interpolate(xs, ys):
    """The values at every whole number from xs[0] to xs[-1]."""
    slopes = monotone_slopes(xs, ys)
    values = []
    for k in range(len(xs) - 1):
        width = xs[k + 1] - xs[k]
        lowest, highest = min(ys[k], ys[k + 1]), max(ys[k], ys[k + 1])
        for step in range(width):
            t = step / width
            u = 1.0 - t
            value = (ys[k] * u * u * (1.0 + 2.0 * t) + ys[k + 1] * t * t * (3.0 - 2.0 * t)
                     + width * t * u * (slopes[k] * u - slopes[k + 1] * t))
            # The cubic keeps between its points; its rounding error need not.
            values.append(min(max(value, lowest), highest))
    values.append(ys[-1])
    return values


# ---------------------------------------------------------------------------------------------
# Decimals, ends and text


def to_decimal(value):
    """Six significant digits, as text; always with a point, so that an f may follow."""
    text = f"{value:.{SIGNIFICANT_DIGITS}g}"
    return text if "." in text else text + ".0"


def last_digit(text):
    """One unit of the sixth significant digit of a value between 0.1 and 10."""
    return Fraction(1, 10 ** (SIGNIFICANT_DIGITS if Fraction(text) < 1 else SIGNIFICANT_DIGITS - 1))


def move_by_one_digit(text, direction):
    return to_decimal(float(Fraction(text) + direction * last_digit(text)))


def shape_end(texts, falls):
    """Sets the last entry but one, which alone decides how a curve goes on beyond its end.

    The last entry is a given point and stays. On the falling curve its neighbour is set one unit
    of the sixth digit above it: the slowest fall that six digits can hold. On the rising curves
    the neighbour is lower by itself; should rounding make the two equal, it goes down by one unit,
    and those before it are held down to it.
    """
    if falls:
        texts[-2] = move_by_one_digit(texts[-1], +1)
    elif Fraction(texts[-2]) >= Fraction(texts[-1]):
        texts[-2] = move_by_one_digit(texts[-1], -1)
        for i in range(NUM_ENTRIES - 3, KNOT_ENTRIES[-2], -1):
            if Fraction(texts[i]) <= Fraction(texts[-2]):
                break
            texts[i] = texts[-2]


def make_curve(index):
    """The entries of one curve, as decimal texts."""
    _, knot_values = CURVES[index]
    texts = [to_decimal(value) for value in interpolate(KNOT_ENTRIES, knot_values)]
    shape_end(texts, falls=(index == FALLING_CURVE))
    return texts


def make_text():
    """The whole file."""
    lines = [
        "// Made by tools/tables/make_detector_curves.py; do not edit: run the script instead.",
        "// SPDX-License-Identifier: GPL-3.0-or-later",
        "",
    ]
    for index, (label, _) in enumerate(CURVES):
        entries = make_curve(index)
        lines.append(f"// Ratio {label}, in volts")
        lines.append("{")
        for start in range(0, NUM_ENTRIES, VALUES_PER_LINE):
            row = entries[start:start + VALUES_PER_LINE]
            comma = "," if start + VALUES_PER_LINE < NUM_ENTRIES else ""
            lines.append(", ".join(text + "f" for text in row) + comma)
        lines.append("},")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description="Makes the table of the five detector curves.")
    parser.add_argument("output", nargs="?", type=pathlib.Path, default=DEFAULT_OUTPUT,
                        help="file to write (default: source/dsp/DetectorCurvesData.inc of this tree)")
    parser.add_argument("--check", metavar="FILE", type=pathlib.Path,
                        help="write nothing; exit 1 unless FILE is exactly what would be written")
    arguments = parser.parse_args()

    made = make_text().encode("ascii")

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
