# SPDX-License-Identifier: GPL-3.0-or-later
"""The front's print: scales around the knobs, names, legends. All places follow from the layout file.

Needs python3-cairo, python3-numpy and python3-scipy.
"""
import math

import front_clearance
import lettering
import style
from front_plates import badge_margins, badge_rows
from front_layout import BADGE, BANDS, HEADER_Y, STRIP_WIDTH, SWITCH_X

S = style.SCALE

# Per kind of knob, base pixels from the centre: ticks' inner ends, ends of small and large ticks, labels, name below.
RINGS = {
    "BigKnob": (54.0, 58.0, 61.0, 64.5, 65.0),
    "MidKnob": (32.5, 35.5, 37.5, 40.0, 53.0),
    "SmallKnob": (24.5, 27.5, 29.5, 32.0, 39.0),
}
LABEL_SPACING = 0.035
SPELLED_OUT = {"CTRL": "CONTROL", "2us": "2\u00b5s"}  # the scale has room, and the face has the sign
DISPLAY_BELOW = ("LowXOver", "HighXOver")
LABEL_CAP = {"BigKnob": 17.0, "MidKnob": 15.5, "SmallKnob": 15.0}
NAME_CAP = {"BigKnob": 19.0, "MidKnob": 19.0, "SmallKnob": 18.0}


class Print:
    """The three paints, each a layer as large as the front, and the boxes of all texts."""

    def __init__(self, layout):
        self.layers = {colour: lettering.Layer(layout.width * S, layout.height * S)
                       for colour in (style.BRASS, style.LEGEND_QUIET, style.LEGEND)}
        self.boxes = []

    def text(self, text, x, y, cap, spacing, colour=style.LEGEND, align=0.5):
        self.layers[colour].text(text, x, y, cap, spacing, align=align)
        width = lettering.width(text, cap, spacing)
        self.boxes.append((text, x - align * width, y - cap / 2, x + (1 - align) * width, y + cap / 2))

    def line(self, x0, y0, x1, y1, width, colour=style.LEGEND):
        self.layers[colour].line(x0, y0, x1, y1, width)

    def engrave(self, picture, light):
        for colour, layer in self.layers.items():
            lettering.engrave(picture, layer.coverage(), colour, light)


def build(layout):
    paint = Print(layout)
    headers(paint)
    for knob in layout.knobs:
        scale(paint, knob)
        name(paint, knob)
    switch(paint, layout)
    badge(paint)
    front_clearance.check(layout, paint.boxes)
    return paint


def headers(paint):
    for _, name_text, x in BANDS:
        cx, cap, spacing = (x + STRIP_WIDTH / 2) * S, 28.0, 0.34
        paint.text(name_text, cx, HEADER_Y * S, cap, spacing)
        half = lettering.width(name_text, cap, spacing) / 2 + 22 * S / 2
        for side in (-1, 1):
            paint.line(cx + side * half, HEADER_Y * S, cx + side * 186 * S, HEADER_Y * S, 3.0, style.BRASS)


def scale(paint, knob):
    cx, cy = (knob["x"] + knob["w"] / 2) * S, (knob["y"] + knob["h"] / 2) * S
    inner, small, large, radius, _ = (v * S for v in RINGS[knob["kind"]])
    cap = LABEL_CAP[knob["kind"]]
    for mark in knob["marks"]:
        a = math.radians(mark["angle"])
        ux, uy = math.sin(a), -math.cos(a)
        end = large if mark["major"] else small
        width, colour = (3.8, style.LEGEND) if mark["major"] else (3.0, style.LEGEND_QUIET)
        paint.line(cx + ux * inner, cy + uy * inner, cx + ux * end, cy + uy * end, width, colour)
    for text, x, y in place_labels(knob, cx, cy, radius, cap):
        paint.text(text, x, y, cap, LABEL_SPACING)


def place_labels(knob, cx, cy, radius, cap):
    """Labels outside their ticks; neighbours that would touch are turned apart, half a degree at a time."""
    marks = [m for m in knob["marks"] if m["label"]]
    texts = [SPELLED_OUT.get(m["label"], m["label"]) for m in marks]
    halves = [lettering.width(text, cap, LABEL_SPACING) / 2 for text in texts]
    angles = [m["angle"] for m in marks]
    if knob["parameter"] in DISPLAY_BELOW:
        # The lowest labels keep clear of the display under the knob.
        angles = [max(-137.0, min(137.0, a)) for a in angles]
    gap_x, gap_y = 7.0, 5.0
    for _ in range(80):
        places = [lettering.place_mark_label(cx, cy, a, radius, h, cap / 2) for a, h in zip(angles, halves)]
        touching = [i for i in range(len(marks) - 1)
                    if abs(places[i][0] - places[i + 1][0]) < halves[i] + halves[i + 1] + gap_x
                    and abs(places[i][1] - places[i + 1][1]) < cap + gap_y]
        if not touching:
            break
        for i in touching:
            angles[i] -= 0.5
            angles[i + 1] += 0.5
    return [(text, x, y) for text, (x, y) in zip(texts, places)]


def name(paint, knob):
    cx, cy = (knob["x"] + knob["w"] / 2) * S, (knob["y"] + knob["h"] / 2) * S
    cap = NAME_CAP[knob["kind"]]
    if knob["parameter"] in DISPLAY_BELOW:
        # The display stands below these, so their names stand above, where the seam between the two bands comes down.
        paint.text(knob["legend"], cx, 530 * S, 18.0, 0.09)
        paint.text("XOVER", cx, 542 * S, 15.0, 0.12, style.LEGEND_QUIET)
        return
    paint.text(knob["legend"], cx, cy + RINGS[knob["kind"]][4] * S, cap, 0.09)


def switch(paint, layout):
    paint.text("IN", SWITCH_X * S, 558 * S, 18.0, 0.09)
    paint.text("BYPASS", SWITCH_X * S, 660 * S, 18.0, 0.09)


def badge(paint):
    """What stands in paint on the badge, beside the model's name and as high."""
    x0, y0, x1, y1 = (v * S for v in BADGE)
    left, _ = badge_margins(x0, x1)
    middle = badge_rows(y0, y1)[1]
    cap, dy = 15.5, 12.2
    width = lettering.width("COMPRESSOR", cap, 0.17)
    for text, y in (("THREE BAND", middle - dy), ("COMPRESSOR", middle + dy)):
        paint.text(text, left, y, cap, lettering.spacing_to_fit(text, cap, width), style.LEGEND_QUIET, align=0.0)
