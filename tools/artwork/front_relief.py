# SPDX-License-Identifier: GPL-3.0-or-later
"""Relief of a metal front as a height map, and its shading by the one soft light.

Needs python3-numpy and python3-scipy. Heights and lengths are bitmap pixels; z points towards the eye.
"""
import numpy as np
from scipy import ndimage

import style


def to_linear(srgb):
    return (np.asarray(srgb, np.float32) / 255.0) ** 2.2


def to_srgb(linear):
    return 255.0 * np.clip(linear, 0.0, 1.0) ** (1.0 / 2.2)


def unit(vector):
    vector = np.asarray(vector, np.float32)
    return vector / np.linalg.norm(vector)


def smoothstep(low, high, x):
    t = np.clip((x - low) / (high - low), 0.0, 1.0)
    return t * t * (3.0 - 2.0 * t)


def rounded_box(X, Y, x0, y0, x1, y1, radius):
    """Signed distance to a rectangle with round corners, negative inside."""
    hx, hy = (x1 - x0) / 2.0, (y1 - y0) / 2.0
    qx = np.abs(X - (x0 + x1) / 2.0) - (hx - radius)
    qy = np.abs(Y - (y0 + y1) / 2.0) - (hy - radius)
    return np.hypot(np.maximum(qx, 0), np.maximum(qy, 0)) + np.minimum(np.maximum(qx, qy), 0) - radius


def hexagon(X, Y, cx, cy, inradius, turn):
    """Signed distance to a regular hexagon, near enough close to its sides."""
    d = np.full(X.shape, -1e9, np.float32)
    for k in range(6):
        a = turn + k * np.pi / 3.0
        d = np.maximum(d, (X - cx) * np.cos(a) + (Y - cy) * np.sin(a) - inradius)
    return d


def rounding(depth_inside, radius):
    """Height lost at an edge that is rounded with this radius; depth_inside is the way in from the edge."""
    t = np.clip(1.0 - depth_inside / radius, 0.0, 1.0)
    return radius * (1.0 - np.sqrt(np.maximum(1.0 - t * t, 0.0)))


def cover(distance, soft=0.7):
    """Antialiased coverage of a signed distance."""
    return smoothstep(soft, -soft, distance)


class Relief:
    """A height map with colours (linear light) and gloss, of one bitmap."""

    def __init__(self, width, height, colour):
        self.width, self.height = width, height
        self.z = np.zeros((height, width), np.float32)
        self.albedo = np.empty((height, width, 3), np.float32)
        self.albedo[:] = to_linear(colour)
        self.gloss = np.full((height, width), 0.10, np.float32)
        self.glow = np.zeros((height, width, 3), np.float32)  # light that does not come from the lamp above

    def window(self, x0, y0, x1, y1):
        """Slices of a rectangle, kept inside the bitmap, and the pixel centres in it."""
        x0, y0 = max(0, int(x0)), max(0, int(y0))
        x1, y1 = min(self.width, int(x1) + 1), min(self.height, int(y1) + 1)
        X, Y = np.meshgrid(np.arange(x0, x1, dtype=np.float32) + 0.5, np.arange(y0, y1, dtype=np.float32) + 0.5)
        return (slice(y0, y1), slice(x0, x1)), X, Y

    def paint(self, where, mask, colour=None, gloss=None):
        if colour is not None:
            self.albedo[where] += (to_linear(colour) - self.albedo[where]) * mask[..., None]
        if gloss is not None:
            self.gloss[where] += (gloss - self.gloss[where]) * mask

    def lift(self, where, mask, z):
        self.z[where] += (z - self.z[where]) * mask

    def box(self, x0, y0, x1, y1, radius, top, edge, colour=None, gloss=None):
        """A plate with rounded edges whose face lies at `top`."""
        where, X, Y = self.window(x0 - 3, y0 - 3, x1 + 3, y1 + 3)
        d = rounded_box(X, Y, x0, y0, x1, y1, radius)
        mask = cover(d)
        self.lift(where, mask, top - rounding(-d, edge))
        # A little wider than the body, for the edge's gleam reaches out by the width of the smoothing.
        self.paint(where, cover(d - 1.3), colour, gloss)

    def pit(self, x0, y0, x1, y1, radius, floor, edge, colour=None, gloss=None):
        """A milled pocket whose floor lies at `floor`; its rim is broken by `edge`."""
        where, X, Y = self.window(x0 - edge - 3, y0 - edge - 3, x1 + edge + 3, y1 + edge + 3)
        d = rounded_box(X, Y, x0, y0, x1, y1, radius)
        rim = smoothstep(0.0, edge, d)  # 0 in the pocket's mouth, 1 on the plate
        z = self.z[where]
        z -= (1.0 - rim) * edge * 0.8 * (d > 0)
        mask = cover(d)
        self.lift(where, mask, floor)
        self.paint(where, mask, colour, gloss)

    def normals(self):
        z = ndimage.gaussian_filter(self.z, 0.7)
        gy, gx = np.gradient(z)
        nz = 1.0 / np.sqrt(gx * gx + gy * gy + 1.0)
        return -gx * nz, -gy * nz, nz

    def shadow(self, reach=26):
        """1 in the light, towards 0 where something higher stands in the light's way; wider away from the edge."""
        sx, sy = style.SHADOW_PER_HEIGHT
        dark = np.zeros_like(self.z)
        for t in np.arange(1.0, reach, 1.0):
            dx, dy = int(round(sx * t)), int(round(sy * t))
            moved = np.roll(self.z, (dy, dx), (0, 1))
            over = moved - t - self.z
            np.maximum(dark, np.clip(over / (1.0 + 0.45 * t), 0.0, 1.0), out=dark)
        return 1.0 - ndimage.gaussian_filter(dark, 1.2)

    def occlusion(self):
        """Light from all around that corners and pockets do not get, 0 to 1."""
        ao = np.ones_like(self.z)
        for radius, strength in ((2.5, 0.5), (7.0, 0.75), (18.0, 0.9)):
            hidden = (ndimage.gaussian_filter(self.z, radius, truncate=2.5) - self.z) / radius
            ao *= 1.0 - np.clip(hidden * strength, 0.0, 0.75)
        return ao

    def shade(self, spread=None):
        """The lit picture in linear light, a flat bare plate keeping its colour. spread: uneven light, 1 on average."""
        light = unit(style.LIGHT)
        half = unit(light + np.array([0, 0, 1], np.float32))
        nx, ny, nz = self.normals()
        facing = nx * light[0] + ny * light[1] + nz * light[2]
        # A large soft box reaches a little around edges, so the terminator is soft.
        diffuse = np.clip((facing + 0.15) / (light[2] + 0.15), 0.0, None)
        toward = np.clip(nx * half[0] + ny * half[1] + nz * half[2], 0.0, 1.0)
        gleam = toward ** 36 - half[2] ** 36
        shadow = self.shadow()
        ao = self.occlusion()
        ambient = 0.26 * (0.75 - 0.25 * ny)  # the room: a little more from above
        lit = (ambient / (0.26 * 0.75)) * 0.26 * ao + 0.74 * diffuse * shadow * (0.4 + 0.6 * ao)
        if spread is not None:
            lit = lit * spread
        picture = self.albedo * lit[..., None]
        shine = self.gloss * np.clip(gleam, 0.0, None) * shadow * ao
        picture += shine[..., None] * np.array([1.0, 0.985, 0.955], np.float32)
        return np.clip(picture + self.glow, 0.0, None)
