# SPDX-License-Identifier: GPL-3.0-or-later
"""The lamps: a coloured dome in a chrome bezel, dark and lit. The middle of the lens has a colour laid down once for all."""

import numpy as np
from scipy import ndimage

import solids.relief as relief
import solids.studio as studio

SIZE = 50
DETAIL = 8
BEZEL, WELL, LENS = 15.8, 12.2, 11.5  # radii in pixels

COLOURS = {
    "green": ((0x34, 0x76, 0x00), (0x4B, 0xFF, 0x00)),
    "red": ((0x76, 0x11, 0x16), (0xFF, 0x00, 0x00)),
    "yellow": ((0x76, 0x60, 0x00), (0xFF, 0xD4, 0x00)),
}


def grid():
    c = (np.arange(SIZE * DETAIL) + 0.5) / DETAIL - SIZE / 2
    return np.meshgrid(c, c)


def lens(x, y, r, colour, lit):
    """sRGB of the dome. Its middle has the colour itself."""
    base = np.array(colour) / 255
    q = r / LENS
    rim = studio.smoothstep(0.36, 1.0, q)
    out = np.ones(x.shape + (3,)) * base
    if lit:
        # Hottest in the middle, deeper towards the rim; glass and lamp throw a little of it to the lower side.
        out = out * (1 - 0.58 * rim**1.3)[..., None]
        gathered = 0.20 * np.exp(-(((x - 1.6) / 6.0) ** 2 + ((y - 7.0) / 2.4) ** 2)) * studio.smoothstep(3.0, 6.0, r)
        out = out + (1 - out) * gathered[..., None]
    else:
        # Light that enters above is gathered below, opposite to the soft box.
        gathered = np.exp(-(((x - 2.2) / 5.0) ** 2 + ((y - 6.0) / 3.0) ** 2)) * studio.smoothstep(3.0, 6.0, r)
        out = out * (1 - 0.72 * rim**1.3)[..., None] + (base * 1.1 + 0.05) * (0.55 * gathered)[..., None]
    # The soft box mirrored in the dome.
    u, v = (x + 2.0 + 0.25 * (y + 5.8)) / 4.0, (y + 6.3 + 0.035 * x**2) / 1.7
    box = np.exp(-(np.abs(u) ** 3) - np.abs(v) ** 3) * studio.smoothstep(3.0, 4.6, r)
    gloss = (0.62 if lit else 0.50) * box
    return out * (1 - gloss)[..., None] + gloss[..., None]


def bezel(x, y, r):
    """A turned chrome ring, and how light falls on the plate around it."""
    t = np.clip((r - WELL) / (BEZEL - WELL), 0, 1)
    height = np.where((r < BEZEL) & (r > WELL), 3.4 * np.sqrt(np.maximum(1 - (2 * t - 1) ** 2, 0)) ** 0.9, 0.0)
    height = np.where(r <= WELL, -1.5, height)
    height = ndimage.gaussian_filter(height, 0.35 * DETAIL) * DETAIL
    lamp = relief.light_share(height, studio.soft_box(7, 5), step=2, softness=2)
    hall = relief.light_share(height, relief.room(), step=3, softness=2)
    metal = relief.Material(np.full(3, 0.01), np.array((0.60, 0.61, 0.63)), 0.13)
    colour = relief.shade(relief.normals(height), metal, studio.soft_box(13, 7), lamp, hall * 0.5, room_tilt=0.9)
    shadow = studio.shadow_alpha(lamp * (1 - studio.ROOM) + hall * studio.ROOM)
    return studio.to_srgb(colour), shadow


def draw(colour, lit):
    x, y = grid()
    r = np.hypot(x, y)
    ring, shadow = bezel(x, y, r)

    def disc(radius):
        return 1 - studio.smoothstep(-0.4, 0.4, r - radius)

    to_edge = SIZE / 2 - np.maximum(np.abs(x), np.abs(y))
    fade = studio.smoothstep(0.5, 6, to_edge) * (1 - studio.smoothstep(19, 24.5, r))
    picture = (np.zeros(x.shape + (3,)), studio.grounded(shadow, 0.04) * fade)
    if lit:
        light = np.ones(x.shape + (3,)) * np.array(colour) / 255
        halo = 0.36 * (1 - studio.smoothstep(BEZEL - 2, 25.0, r)) ** 2.0
        picture = studio.over((light, halo), picture)
        # The inner side of the bezel mirrors the lens.
        glow = (1 - studio.smoothstep(WELL - 0.5, BEZEL - 0.6, r)) * 0.75
        ring = 1 - (1 - ring) * (1 - light * glow[..., None])
    picture = studio.over((ring, disc(BEZEL)), picture)
    well = np.zeros(x.shape + (3,)) + (np.array(colour) / 255 * 0.25 if lit else 0.02)
    picture = studio.over((well, disc(WELL)), picture)
    picture = studio.over((lens(x, y, r, colour, lit), disc(LENS)), picture)
    rgb, alpha = picture
    small = studio.reduced(alpha, DETAIL)
    rgb = studio.reduced(rgb * alpha[..., None], DETAIL) / np.maximum(small, 1e-6)[..., None]
    m = slice(SIZE // 2 - 2, SIZE // 2 + 2)
    rgb[m, m], small[m, m] = np.array(colour) / 255, 1.0
    return rgb, small


def make(folder):
    for name, (off, on) in COLOURS.items():
        studio.save(folder / f"lamp-{name}-off.png", *draw(off, False))
        studio.save(folder / f"lamp-{name}-on.png", *draw(on, True))
