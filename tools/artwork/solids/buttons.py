# SPDX-License-Identifier: GPL-3.0-or-later
"""The six push buttons: moulded keys in a slot of the plate, their legends engraved and filled, standing out and pressed."""

import numpy as np
from scipy import ndimage

import lettering
import style
import solids.relief as relief
import solids.studio as studio

WIDTH, HEIGHT = 170, 108
DETAIL = 4

# The slot fills the part of the bitmap that takes clicks: 0.15 to 0.82 of the width, 0.25 to 0.73 of the height.
SLOT = (25.5, 27.0, 139.4, 78.8)
GAP = 2.4
CORNER = 5.0
SLOT_DEPTH = 7.0
LIFT = 16.0
LIFT_DOWN = 4.5
SHIFT_DOWN = 2.0  # of a pressed key in the picture; straight from the front, height alone would hardly show
SIDE = 5.5  # how far the face stands back behind the foot
CAP = 18.5

GREY = (0x35, 0x36, 0x39)
RED = (0x66, 0x0D, 0x0A)
KEYS = [("link", "LINK", GREY), ("niveau", "NIVEAU", GREY), ("nuke", "NUKE", RED), ("ms", "M/S", GREY), ("solo", "SOLO", GREY),
        ("in", "IN", GREY)]


def rounded_box(x, y, box, corner):
    """Distance to the box's edge, negative inside."""
    x0, y0, x1, y1 = box
    dx = np.abs(x - (x0 + x1) / 2) - (x1 - x0) / 2 + corner
    dy = np.abs(y - (y0 + y1) / 2) - (y1 - y0) / 2 + corner
    return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - corner


def covered(distance):
    return 1 - studio.smoothstep(-0.5, 0.5, distance)


def legend(text, x, y):
    layer = lettering.Layer(WIDTH * DETAIL, HEIGHT * DETAIL)
    layer.text(text, x * DETAIL, y * DETAIL, CAP * DETAIL, spacing=0.07)
    return layer.coverage(0.45 * DETAIL)


def draw(text, colour, down):
    c = np.arange(WIDTH * DETAIL) + 0.5, np.arange(HEIGHT * DETAIL) + 0.5
    x, y = np.meshgrid(c[0] / DETAIL, c[1] / DETAIL)
    shift, lift = (SHIFT_DOWN, LIFT_DOWN) if down else (0.0, LIFT)
    x0, y0, x1, y1 = SLOT
    foot = (x0 + GAP, y0 + GAP + shift * 0.5, x1 - GAP, y1 - GAP + shift * 0.5)
    middle = ((x0 + x1) / 2, (y0 + y1) / 2 + shift - (0 if down else 0.5))

    in_slot = rounded_box(x, y, SLOT, CORNER)
    to_foot = rounded_box(x, y, foot, CORNER - 1)
    # The wall leans; the lower one of a key that stands out is seen widest.
    wall = SIDE + studio.smoothstep(-6, 6, y - middle[1]) * (0 if down else 1.2) - (0 if down else 0.3)
    up = np.clip(-to_foot / wall, 0, 1)
    face = 1.1 * (1 - ((y - middle[1]) / 24) ** 2) + 0.35 * (1 - ((x - middle[0]) / 55) ** 2)
    key = -SLOT_DEPTH + (lift + SLOT_DEPTH) * up + face * up
    key = ndimage.gaussian_filter(key, 0.85 * DETAIL)
    height = np.where(to_foot < 0, key, np.where(in_slot < 0, -SLOT_DEPTH, 0.0))
    letters = legend(text, *middle)
    height = height - 0.5 * letters * (to_foot < 0)
    height = ndimage.gaussian_filter(height, 0.45 * DETAIL) * DETAIL

    coarse = studio.reduced(height, 2) / 2
    lamp = relief.light_share(coarse, studio.soft_box(7, 5), step=1.5, softness=1.2)
    hall = relief.light_share(coarse, relief.room(), step=2.0, softness=1.2, reach=60)
    lamp, hall = (np.repeat(np.repeat(a, 2, axis=0), 2, axis=1) for a in (lamp, hall))

    key_share, slot_share = covered(to_foot), covered(in_slot)
    ivory = letters * key_share
    body = relief.Material(
        albedo=_mix(_mix(studio.to_linear(style.GROOVE) * 0.5, studio.to_linear(colour), key_share),
                    studio.to_linear(style.LEGEND), ivory),
        mirror=np.where(key_share[..., None] > 0.5, 0.030, 0.004) * (1 - 0.7 * ivory[..., None]) * np.ones(3),
        rough_x=0.24 + 0.20 * ivory,
    )
    dim = 0.80 if down else 1.0
    lit = studio.to_srgb(relief.shade(relief.normals(height), body, studio.soft_box(13, 7), lamp * dim, hall))

    shadow = studio.shadow_alpha(lamp * (1 - studio.ROOM) + hall * studio.ROOM)
    # Below, the next key begins soon: the shadow ends before it.
    fade_y = studio.smoothstep(8, 17, y) * (1 - studio.smoothstep(88, 98, y))
    fade_x = studio.smoothstep(4, 20, x) * (1 - studio.smoothstep(150, 165, x))
    shadow = studio.grounded(shadow, 0.05) * fade_x * fade_y
    # The slot's lower lip is a fine chamfer that looks up into the light.
    lip = np.exp(-((in_slot - 0.9) / 0.8) ** 2) * np.clip(_outward_down(x, y), 0, 1) * 0.16
    plate = studio.over((np.ones_like(lit), lip), (np.zeros_like(lit), shadow))
    colour_out, alpha = studio.over((lit, slot_share), plate)
    alpha_small = studio.reduced(alpha, DETAIL)
    return studio.reduced(colour_out * alpha[..., None], DETAIL) / np.maximum(alpha_small, 1e-6)[..., None], alpha_small


def _outward_down(x, y):
    x0, y0, x1, y1 = SLOT
    d = rounded_box(x, y, SLOT, CORNER)
    gy, gx = np.gradient(d, 1 / DETAIL)
    return gy * 0.9 + gx * 0.3


def _mix(a, b, share):
    return a * (1 - share[..., None]) + b * share[..., None]


def make(folder):
    for name, text, colour in KEYS:
        studio.save(folder / f"button-{name}.png", *draw(text, colour, False))
        studio.save(folder / f"button-{name}-down.png", *draw(text, colour, True))
