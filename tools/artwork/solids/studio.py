# SPDX-License-Identifier: GPL-3.0-or-later
"""The studio in which every solid thing stands: one soft box, a dim room, and the way from light to pixels.

Values are linear light, scaled so that a matt surface facing the eye has the value of its albedo. Directions point
towards the light: x to the right, y downwards, z towards the eye.
"""

import numpy as np
from PIL import Image

import style

# Share of the light on the plate that comes from the room and not from the soft box.
ROOM = 0.20

# Half the extent of the soft box, as tangents of angles seen from the unit.
BOX_ACROSS = 0.50
BOX_ALONG = 0.34


def normalised(v):
    v = np.asarray(v, dtype=np.float64)
    return v / np.sqrt((v * v).sum(axis=-1, keepdims=True))


def box_frame():
    """The direction to the middle of the soft box and the two directions along its edges."""
    middle = normalised(style.LIGHT)
    across = normalised(np.cross((0.0, 0.0, 1.0), middle))
    return middle, across, np.cross(middle, across)


class Lights:
    """Points of a lamp: directions, and the weight that each adds to (light from there) * (solid angle)."""

    def __init__(self, directions, weights):
        self.directions = np.asarray(directions)
        self.weights = np.asarray(weights)


def soft_box(num_across=11, num_along=7):
    """The soft box as points, brightest in the middle as its cloth is, lighting the plate with 1 - ROOM."""
    middle, across, along = box_frame()
    u = (np.arange(num_across) + 0.5) / num_across * 2 - 1
    v = (np.arange(num_along) + 0.5) / num_along * 2 - 1
    u, v = (a.ravel() for a in np.meshgrid(u, v))
    raw = middle + across * (u * BOX_ACROSS)[:, None] + along * (v * BOX_ALONG)[:, None]
    weights = (1 - 0.45 * u**2) * (1 - 0.45 * v**2) / (raw**2).sum(axis=1) ** 1.5
    directions = normalised(raw)
    weights *= (1 - ROOM) / (weights * directions[:, 2]).sum()
    return Lights(directions, weights)


def ring_of_boxes(num_boxes=20, num_across=4, num_along=5):
    """The soft box sent once around the eye's axis: what a thing that turns may show of light, and no more."""
    box = soft_box(num_across, num_along)
    directions, weights = [], []
    for k in range(num_boxes):
        a = 2 * np.pi * (k + 0.5) / num_boxes
        c, s = np.cos(a), np.sin(a)
        d = box.directions
        directions.append(np.stack([c * d[:, 0] - s * d[:, 1], s * d[:, 0] + c * d[:, 1], d[:, 2]], axis=1))
        weights.append(box.weights / num_boxes)
    return Lights(np.concatenate(directions), np.concatenate(weights))


def to_linear(colour):
    """sRGB, 0 to 255, to linear, 0 to 1."""
    c = np.asarray(colour, dtype=np.float64) / 255
    return np.where(c <= 0.04045, c / 12.92, ((c + 0.055) / 1.055) ** 2.4)


def to_srgb(linear):
    """Linear light to sRGB, 0 to 1. What is brighter than paper bends into the top instead of breaking off there."""
    x = np.maximum(np.asarray(linear, dtype=np.float64), 0)
    knee = 0.70
    x = np.where(x > knee, knee + (1 - knee) * (1 - np.exp(-(x - knee) / (1 - knee))), x)
    return np.where(x <= 0.0031308, x * 12.92, 1.055 * np.maximum(x, 1e-9) ** (1 / 2.4) - 0.055)


def shadow_alpha(light):
    """The opacity of black that dims a surface as much as this share of the full light does."""
    return 1 - np.clip(light, 0, 1) ** (1 / 2.2)


def grounded(alpha, rest):
    """Takes from a shadow the faint rest that would end as a visible frame where its bitmap ends."""
    return np.clip((alpha - rest * (1 - alpha)), 0, 1)


def smoothstep(edge0, edge1, x):
    t = np.clip((x - edge0) / (edge1 - edge0), 0, 1)
    return t * t * (3 - 2 * t)


def reduced(a, factor):
    """The mean of every factor x factor pixels."""
    h, w = a.shape[0] // factor, a.shape[1] // factor
    return a.reshape((h, factor, w, factor) + a.shape[2:]).mean(axis=(1, 3))


def over(top, bottom):
    """Two pictures of (colour, alpha), not premultiplied: the first laid over the second."""
    (ct, at), (cb, ab) = top, bottom
    alpha = at + ab * (1 - at)
    colour = ct * at[..., None] + cb * (ab * (1 - at))[..., None]
    return colour / np.maximum(alpha, 1e-6)[..., None], alpha


def save(path, colour, alpha):
    """Writes colour (sRGB, 0 to 1) and alpha as RGBA; where nothing is seen the colour becomes that of the plate's dark."""
    c = np.where(alpha[..., None] < 0.5 / 255, 0.0, np.clip(colour, 0, 1))
    rgba = np.dstack([c, np.clip(alpha, 0, 1)])
    Image.fromarray(np.round(rgba * 255).astype(np.uint8), "RGBA").save(path, optimize=True)
