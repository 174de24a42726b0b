# SPDX-License-Identifier: GPL-3.0-or-later
"""Refuses a front whose print runs into a control, a display, a screw, other print or the rim.

Needs what the drawings need. Lengths are bitmap pixels.
"""
import math

import style
from front_layout import BANDS, MASTER_BOTTOM, MASTER_TOP, SEAM, STRIP_BOTTOM, STRIP_TOP, STRIP_WIDTH
from front_plates import screw_places

S = style.SCALE
BEVEL = 5


def check(layout, boxes):
    """boxes: (text, x0, y0, x1, y1) of everything printed. Raises ValueError naming each clash."""
    clashes = []
    solids = list(occupied(layout))
    for i, (text, *box) in enumerate(boxes):
        clashes += [f"{text} runs into {name}" for name, *other in solids if touch(box, other, 2)]
        clashes += [f"{text} runs into {second}" for second, *other in boxes[i + 1 :] if touch(box, other, 4)]
        if not on_a_plate(layout, box):
            clashes.append(f"{text} leaves its plate")
    if clashes:
        raise ValueError("; ".join(clashes))


def touch(a, b, gap):
    """A round thing is given as centre and radius, a box by its corners."""
    if len(b) == 3:
        cx, cy, r = b
        nearest = math.hypot(max(a[0] - cx, 0, cx - a[2]), max(a[1] - cy, 0, cy - a[3]))
        return nearest < r + gap
    return a[0] < b[2] + gap and b[0] < a[2] + gap and a[1] < b[3] + gap and b[1] < a[3] + gap


def occupied(layout):
    for k in layout.knobs:
        yield k["parameter"], (k["x"] + k["w"] / 2) * S, (k["y"] + k["h"] / 2) * S, 0.42 * k["w"] * S
    for name, (x, y, w, h) in layout.rectangles.items():
        if name.endswith("Lamp"):
            yield name, (x + w / 2) * S, (y + h / 2) * S, 9.5 * S
        elif name.endswith("Button"):
            # A button's body fills the part of its rectangle that can be clicked.
            yield name, (x + 0.15 * w) * S, (y + 0.25 * h) * S, (x + 0.82 * w) * S, (y + 0.73 * h) * S
        elif name.endswith("Label"):
            yield name, (x + w / 2 - 6) * S, (y + h / 2 - 6) * S, (x + w / 2 + 6) * S, (y + h / 2 + 6) * S
        elif name.endswith("Readout"):
            yield name, (x - 2) * S, (y + 1) * S, (x + w + 2) * S, (y + h - 1) * S
        else:
            rim = 7 if name.endswith("Meter") else 3 if name.endswith("Digits") else 0
            yield name, (x - rim) * S, (y - rim) * S, (x + w + rim) * S, (y + h + rim) * S
    for x, y in screw_places(layout):
        yield "a screw", x * S, y * S, 8.5 * S


def on_a_plate(layout, box):
    plates = [(x, STRIP_TOP, x + STRIP_WIDTH, STRIP_BOTTOM) for _, _, x in BANDS]
    plates.append((0, MASTER_TOP, layout.width, MASTER_BOTTOM))
    return any(box[0] >= (left + SEAM) * S + BEVEL and box[2] <= (right - SEAM) * S - BEVEL
               and box[1] >= top * S + BEVEL and box[3] <= bottom * S - BEVEL
               for left, top, right, bottom in plates)
