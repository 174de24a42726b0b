# SPDX-License-Identifier: GPL-3.0-or-later
"""The front's print: scales around the knobs, names, legends. All places follow from the layout's rectangles and angles.

Needs python3-cairo, python3-numpy and python3-scipy.
"""
import math

import lettering
import style
from front_layout import BADGE, BANDS, HEADER_Y, STRIP_WIDTH, SWITCH_X

S = style.SCALE

# Per kind of knob, base pixels from the centre: ticks' inner ends, ends of small and large ticks, labels, name below.
RINGS = {"BigKnob": (55.5, 60.5, 63.0, 66.0, 65.0), "MidKnob": (33.5, 37.0, 39.0, 42.0, 48.0), "SmallKnob": (25.0, 28.0, 30.0, 33.0, 39.0)}
LABEL_CAP = {"BigKnob": 17.0, "MidKnob": 15.5, "SmallKnob": 15.0}
NAME_CAP = {"BigKnob": 19.0, "MidKnob": 19.0, "SmallKnob": 18.0}


class Print:
    """The three paints, each a layer as large as the front."""

    def __init__(self, layout):
        self.ivory = lettering.Layer(layout.width * S, layout.height * S)
        self.quiet = lettering.Layer(layout.width * S, layout.height * S)
        self.brass = lettering.Layer(layout.width * S, layout.height * S)

    def engrave(self, picture, light):
        for layer, colour in ((self.brass, style.BRASS), (self.quiet, style.LEGEND_QUIET), (self.ivory, style.LEGEND)):
            lettering.engrave(picture, layer.coverage(), colour, light)


def build(layout):
    paint = Print(layout)
    headers(paint)
    for knob in layout.knobs:
        scale(paint, knob)
        name(paint, knob)
    switch(paint, layout)
    badge(paint)
    return paint


def headers(paint):
    for _, name_text, x in BANDS:
        cx, cap, spacing = (x + STRIP_WIDTH / 2) * S, 28.0, 0.34
        paint.ivory.text(name_text, cx, HEADER_Y * S, cap, spacing)
        half = lettering.width(name_text, cap, spacing) / 2 + 22 * S / 2
        for side in (-1, 1):
            paint.brass.line(cx + side * half, HEADER_Y * S, cx + side * 186 * S, HEADER_Y * S, 3.0)


def scale(paint, knob):
    cx, cy = (knob["x"] + knob["w"] / 2) * S, (knob["y"] + knob["h"] / 2) * S
    inner, small, large, label, _ = (v * S for v in RINGS[knob["kind"]])
    cap = LABEL_CAP[knob["kind"]]
    for mark in knob["marks"]:
        a = math.radians(mark["angle"])
        ux, uy = math.sin(a), -math.cos(a)
        major = mark["major"]
        end = large if major else small
        layer = paint.ivory if major else paint.quiet
        layer.line(cx + ux * inner, cy + uy * inner, cx + ux * end, cy + uy * end, 3.8 if major else 3.0)
        if mark["label"]:
            text = mark["label"]
            spacing = 0.035
            half = lettering.width(text, cap, spacing) / 2
            lx, ly = lettering.place_mark_label(cx, cy, mark["angle"], label, half, cap / 2)
            paint.ivory.text(text, lx, ly, cap, spacing)


def name(paint, knob):
    cx, cy = (knob["x"] + knob["w"] / 2) * S, (knob["y"] + knob["h"] / 2) * S
    cap = NAME_CAP[knob["kind"]]
    if knob["parameter"] in ("LowXOver", "HighXOver"):
        # The display stands below these, so their names stand above, where the seam between the two bands comes down.
        bands = "LOW / MID" if knob["parameter"] == "LowXOver" else "MID / HIGH"
        paint.ivory.text(bands, cx, 530 * S, 18.0, 0.09)
        paint.quiet.text("XOVER", cx, 542 * S, 15.0, 0.12)
        return
    paint.ivory.text(knob["legend"], cx, cy + RINGS[knob["kind"]][4] * S, cap, 0.09)


def switch(paint, layout):
    paint.ivory.text("IN", SWITCH_X * S, 558 * S, 18.0, 0.09)
    paint.ivory.text("BYPASS", SWITCH_X * S, 660 * S, 18.0, 0.09)


def badge(paint):
    """What stands in paint on the badge, under the raised wordmark."""
    x0, y0, x1, y1 = (v * S for v in BADGE)
    mid = (y0 + y1) / 2
    left, right = x0 + 124, x1 - 32
    spacing = 0.10
    while lettering.width("THREE BAND COMPRESSOR", 15.0, spacing) > right - left:
        spacing -= 0.005
    paint.quiet.text("THREE BAND COMPRESSOR", left, mid + 26, 15.0, spacing, align=0.0)
