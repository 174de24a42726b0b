# SPDX-License-Identifier: GPL-3.0-or-later
"""The front's metal: plates, screws, meter frames, display windows, grille and badge, as relief and colour.

Needs python3-cairo, python3-numpy and python3-scipy.
"""
import math

import numpy as np
from scipy import ndimage

import about_marks
import lettering
import style
from front_layout import (BADGE, BANDS, GRILLE, MASTER_BOTTOM, MASTER_TOP, RULE_BOTTOM, RULE_TOP, RULES, SCREW, SEAM,
                          STRIP_BOTTOM, STRIP_TOP, STRIP_WIDTH)
from front_relief import Relief, cover, hexagon, rounded_box, smoothstep, to_linear, unit

S = style.SCALE
CHASSIS = -14.0  # height of what is seen between the plates


def build(layout):
    relief = Relief(layout.width * S, layout.height * S, (0x08, 0x08, 0x09))
    relief.z[:] = CHASSIS
    relief.gloss[:] = 0.02
    texture = brushed(relief)

    for _, _, x in BANDS:
        plate(relief, x + SEAM, STRIP_TOP, x + STRIP_WIDTH - SEAM, STRIP_BOTTOM, style.STRIP)
    plate(relief, SEAM, MASTER_TOP, layout.width - SEAM, MASTER_BOTTOM, style.PLATE)
    relief.albedo *= texture[..., None]

    for x in RULES:
        groove(relief, x * S, RULE_TOP * S, x * S, RULE_BOTTOM * S)

    for x, y, w, h in layout.ending("Meter"):
        meter_frame(relief, x, y, w, h)
    for x, y, w, h in layout.ending("Readout"):
        window(relief, x, y + 3, w, h - 6, rim=2.0, radius=2.5, colour=(0x09, 0x0A, 0x0B))
    for x, y, w, h in layout.ending("Digits"):
        window(relief, x, y, w, h, rim=3.0, radius=3.0, colour=(0x0E, 0x03, 0x03))

    turns = np.random.default_rng(0x5C2E).uniform(0.0, math.pi / 3.0, 16)
    for (x, y), turn in zip(screw_places(layout), turns):
        screw(relief, x, y, turn)
    grille(relief)
    badge(relief)
    return relief


def brushed(relief):
    """A fine horizontal brush for the whole front, 1 on average: short strokes over long ones."""
    random = np.random.default_rng(0xB205)
    texture = np.zeros((relief.height, relief.width), np.float32)
    for step, sigma, strength in ((8, (0.75, 12.0), 0.020), (4, (1.3, 11.0), 0.014)):
        coarse = random.standard_normal((relief.height, relief.width // step + 2)).astype(np.float32)
        coarse = ndimage.gaussian_filter(coarse, sigma, mode="wrap")
        strokes = np.repeat(coarse / coarse.std(), step, axis=1)
        strokes = ndimage.uniform_filter1d(strokes, 2 * step + 1, axis=1)[:, : relief.width]
        texture += strength * np.clip(strokes, -2.5, 2.5)
    return 1.0 + texture


def plate(relief, x0, y0, x1, y1, colour):
    relief.box(x0 * S, y0 * S, x1 * S, y1 * S, radius=4.5 * S, top=0.0, edge=5.5, colour=colour, gloss=0.26)


def groove(relief, x0, y0, x1, y1):
    """An engraved rule from point to point, upright or level, in bitmap pixels."""
    where, X, Y = relief.window(x0 - 8, y0 - 8, x1 + 8, y1 + 8)
    d = rounded_box(X, Y, x0 - 1.6, y0 - 1.6, x1 + 1.6, y1 + 1.6, 1.5)
    relief.z[where] -= 2.6 * smoothstep(1.2, -1.4, d)
    relief.paint(where, 0.8 * cover(d, 1.0), style.GROOVE)


def meter_frame(relief, x, y, w, h):
    """A black anodised frame screwed onto the plate; the meter itself fills its opening."""
    x0, y0, x1, y1 = x * S, y * S, (x + w) * S, (y + h) * S
    wide = 7 * S
    relief.box(x0 - wide, y0 - wide, x1 + wide, y1 + wide, radius=4.0 * S, top=9.0, edge=5.0,
               colour=style.ANODISED, gloss=0.22)
    where, X, Y = relief.window(x0 - wide, y0 - wide, x1 + wide, y1 + wide)
    d = rounded_box(X, Y, x0 + 2, y0 + 2, x1 - 2, y1 - 2, 3.0)
    # An inner slope leads down to the glass.
    slope = smoothstep(4.5 * S, 0.0, d)
    # The paper's light spills onto that slope.
    relief.glow[where] += (0.075 * slope**2 * (d > 0))[..., None] * to_linear((0xF6, 0xC8, 0x86))
    relief.z[where] -= 10.0 * slope * (d > 0)
    mask = cover(d)
    relief.lift(where, mask, -6.0)
    relief.paint(where, mask, (0x10, 0x0E, 0x0C), 0.02)


def window(relief, x, y, w, h, rim, radius, colour):
    """A dark display behind a narrow black bezel."""
    x0, y0, x1, y1 = x * S, y * S, (x + w) * S, (y + h) * S
    b = rim * S
    relief.box(x0 - b, y0 - b, x1 + b, y1 + b, radius * S + b * 0.6, top=4.0, edge=3.0,
               colour=style.ANODISED, gloss=0.20)
    relief.pit(x0, y0, x1, y1, radius * S * 0.6, floor=-5.0, edge=3.0, colour=colour, gloss=0.0)


def screw_places(layout):
    c = SCREW
    for _, _, x in BANDS:
        left, right = x + SEAM + c, x + STRIP_WIDTH - SEAM - c
        yield from ((left, STRIP_TOP + c), (right, STRIP_TOP + c), (left, STRIP_BOTTOM - c), (right, STRIP_BOTTOM - c))
    left, right = SEAM + c, layout.width - SEAM - c
    yield from ((left, MASTER_TOP + c), (right, MASTER_TOP + c), (left, MASTER_BOTTOM - c), (right, MASTER_BOTTOM - c))


def screw(relief, x, y, turn):
    """A socket screw of turned steel, sunk into a counterbore."""
    cx, cy, head = x * S, y * S, 6.5 * S
    where, X, Y = relief.window(cx - head - 10, cy - head - 10, cx + head + 10, cy + head + 10)
    r = np.hypot(X - cx, Y - cy)
    # Counterbore with a broken rim.
    bore = head + 2.2
    relief.z[where] -= 2.0 * smoothstep(bore + 3.0, bore, r)
    relief.lift(where, cover(r - bore), -7.0)
    relief.paint(where, cover(r - bore), style.GROOVE, 0.03)
    # Head: flat, with a rounded rim.
    top = 2.5
    inside = np.clip((head - r) / 4.0, 0.0, 1.0)
    z = top - 4.0 * (1.0 - np.sqrt(np.clip(1.0 - (1.0 - inside) ** 2, 0.0, 1.0)))
    relief.lift(where, cover(r - head), z)
    steel = np.array([0x80, 0x81, 0x83], np.float32)
    # Turning marks run around, so the light lies in two opposite sectors, as on a record.
    light = unit(style.LIGHT)
    along = np.arctan2(Y - cy, X - cx) - math.atan2(light[1], light[0])
    fan = 0.62 + 0.62 * np.cos(along) ** 4
    mask = cover(r - head)
    relief.paint(where, mask, None, 0.5)
    relief.albedo[where] += (to_linear(steel) * fan[..., None] - relief.albedo[where]) * mask[..., None]
    # Socket.
    d = hexagon(X, Y, cx, cy, head * 0.47, turn)
    relief.z[where] -= 1.0 * smoothstep(2.0, 0.0, d) * mask
    relief.lift(where, cover(d), -9.0)
    relief.paint(where, cover(d), (0x12, 0x12, 0x13), 0.05)


def grille(relief):
    """Milled slots that let the warm air out."""
    x0, y0, x1, y1 = (v * S for v in GRILLE)
    number, slot = 5, 5.2 * S
    step = (x1 - x0 - slot) / (number - 1)
    for i in range(number):
        left = x0 + i * step
        relief.pit(left, y0, left + slot, y1, slot / 2, floor=-15.0, edge=2.5, colour=(0x05, 0x05, 0x06), gloss=0.0)
    # Far behind them the heaters glow.
    where, X, Y = relief.window(x0, y0, x1, y1)
    ember = np.exp(-(((X - (x0 + x1) / 2) / 46.0) ** 2) - ((Y - y0 - 0.62 * (y1 - y0)) / 44.0) ** 2)
    relief.glow[where] += (0.030 * ember * (relief.z[where] < -9.0))[..., None] * to_linear((0xFF, 0x96, 0x40))


def badge(relief):
    """The maker's badge: black enamel in a brass rim, marks and wordmark of brass raised to the rim's height."""
    x0, y0, x1, y1 = (v * S for v in BADGE)
    relief.box(x0, y0, x1, y1, 7 * S, top=5.0, edge=3.5, colour=style.BRASS, gloss=0.34)
    relief.pit(x0 + 5, y0 + 5, x1 - 5, y1 - 5, 7 * S - 5, floor=1.0, edge=2.0, colour=(0x12, 0x12, 0x13), gloss=0.08)
    layer = lettering.Layer(relief.width, relief.height)
    draw_badge(layer.context, x0, y0, x1, y1)
    where, _, _ = relief.window(x0, y0, x1, y1)
    mask = layer.coverage(0.6)[where]
    rise = ndimage.gaussian_filter(np.minimum(ndimage.distance_transform_edt(mask > 0.5), 4.0), 0.8)
    relief.z[where] += 1.0 * rise.astype(np.float32) * smoothstep(0.2, 0.7, mask)
    relief.paint(where, mask, style.BRASS, 0.34)


def draw_badge(c, x0, y0, x1, y1):
    """Coverage of the raised brass: mark and wordmark, a rule, and the model's name below on the right."""
    c.set_source_rgba(1, 1, 1, 1)
    left, right = badge_margins(x0, x1)
    rows = badge_rows(y0, y1)
    about_marks.corvane_mark(c, left + 33, rows[0] + 2, 33)
    c.fill()
    word, height, gap = left + 98, 33.0, 0.20
    while about_marks.corvane_word_width(height, gap=gap) < right - word:
        gap += 0.002
    about_marks.corvane_word(c, word, rows[0], height, gap=gap)
    c.rectangle(left, (rows[0] + rows[1]) / 2 + 2, right - left, 3)
    c.fill()
    about_marks.q7(c, right - about_marks.q7_width(40.0), rows[1], 40.0)


def badge_margins(x0, x1):
    return x0 + 32, x1 - 32


def badge_rows(y0, y1):
    """Middles of the two rows."""
    return y0 + 62, y1 - 45
