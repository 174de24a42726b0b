# SPDX-License-Identifier: GPL-3.0-or-later
"""Light on reliefs: height maps with a material at every point, seen straight from the front.

Heights are in pixels of the map. The reflection is Lambert's plus the anisotropic GGX lobe (B. Walter et al.,
"Microfacet models for refraction through rough surfaces", 2007; B. Burley, "Physically-based shading at Disney", 2012).
"""

import numpy as np

import solids.studio as studio


class Material:
    """albedo and mirror (reflectance facing the eye) are linear RGB; rough_x, rough_y are GGX roughnesses along and across
    the grain; grain is the direction of the grain in the picture, as two maps, or None."""

    def __init__(self, albedo, mirror, rough_x, rough_y=None):
        self.albedo = albedo
        self.mirror = mirror
        self.rough_x = rough_x
        self.rough_y = rough_x if rough_y is None else rough_y


def normals(height):
    dy, dx = np.gradient(height)
    return studio.normalised(np.dstack([-dx, -dy, np.ones_like(height)]))


def _shifted(padded, pad, dx, dy, shape):
    """The map moved so that index p reads p + (dx, dy), between pixels by bilinear weights."""
    x0, y0 = int(np.floor(dx)), int(np.floor(dy))
    fx, fy = np.float32(dx - x0), np.float32(dy - y0)
    h, w = shape
    a = padded[pad + y0 : pad + y0 + h, pad + x0 : pad + x0 + w]
    b = padded[pad + y0 : pad + y0 + h, pad + x0 + 1 : pad + x0 + 1 + w]
    c = padded[pad + y0 + 1 : pad + y0 + 1 + h, pad + x0 : pad + x0 + w]
    d = padded[pad + y0 + 1 : pad + y0 + 1 + h, pad + x0 + 1 : pad + x0 + 1 + w]
    return (a * (1 - fx) + b * fx) * (1 - fy) + (c * (1 - fx) + d * fx) * fy


def visible(height, direction, step=2.0, softness=1.0, reach=None):
    """How far each point sees light from the direction, 0 to 1. A ray that passes within softness counts in part."""
    flat = np.hypot(direction[0], direction[1])
    if flat < 1e-6:
        return np.ones_like(height)
    slope = direction[2] / flat
    limit = (height.max() - height.min()) / slope
    if reach is not None:
        limit = min(limit, reach)
    pad = int(limit + step) + 3
    padded = np.pad(height.astype(np.float32), pad, mode="edge")
    clearance = np.full(height.shape, softness, dtype=np.float32)
    t = step
    while t <= limit + step:
        other = _shifted(padded, pad, direction[0] / flat * t, direction[1] / flat * t, height.shape)
        np.minimum(clearance, height + np.float32(slope * t) - other, out=clearance)
        t += step * (1 + t / 40)
    return np.clip(clearance / softness * 0.5 + 0.5, 0, 1)


def light_share(height, lights, every=1, **how):
    """Of the light that the lamp sends to a point of the plate, the share that arrives, by shadows alone."""
    height = height.astype(np.float32)
    total, weight = np.zeros(height.shape), 0.0
    for d, w in list(zip(lights.directions, lights.weights))[::every]:
        total += w * d[2] * visible(height, d, **how)
        weight += w * d[2]
    return total / weight


def room(num_around=12, num_up=4):
    """Directions over the half space, cosine-weighted."""
    directions = []
    for k in range(num_up):
        s = np.sqrt((k + 0.5) / num_up)
        for j in range(num_around):
            a = 2 * np.pi * (j + 0.5 * (k % 2) + 0.25) / num_around
            directions.append((s * np.cos(a), s * np.sin(a), np.sqrt(1 - s * s)))
    directions = np.array(directions)
    return studio.Lights(directions, 1 / directions[:, 2])


def shade(normal, material, lights, lamp_share, room_share, grain=None, room_tilt=0.35):
    """Linear RGB of every point.

    lamp_share, room_share: what shadows leave of the lamp and of the room's light.
    room_tilt: how much brighter the room is above than below; 0 for a room that is the same all around.
    """
    shape = normal.shape[:2]
    n = normal.reshape(-1, 3).astype(np.float32)
    if grain is None:
        t = np.zeros_like(n)
        t[:, 0] = 1
    else:
        t = np.stack([grain[0].ravel(), grain[1].ravel(), np.zeros(n.shape[0])], axis=1).astype(np.float32)
    t = t - n * (t * n).sum(axis=1, keepdims=True)
    t /= np.maximum(np.sqrt((t * t).sum(axis=1, keepdims=True)), 1e-6)
    b = np.cross(n, t)

    def flat(a, channels):
        a = np.asarray(a, dtype=np.float32)
        if a.ndim >= 2:
            return a.reshape((-1, channels) if channels > 1 else (-1,))
        return np.broadcast_to(a, (n.shape[0], channels) if channels > 1 else (n.shape[0],))

    ax, ay = flat(material.rough_x, 1), flat(material.rough_y, 1)
    mirror, albedo = flat(material.mirror, 3), flat(material.albedo, 3)
    nv = np.maximum(n[:, 2], 0.02)
    tv, bv = t[:, 2], b[:, 2]
    lambda_v = np.sqrt((ax * tv) ** 2 + (ay * bv) ** 2 + nv**2)

    diffuse = np.zeros(n.shape[0], dtype=np.float32)
    lobe = np.zeros(n.shape[0], dtype=np.float32)  # of the mirror colour
    glance = np.zeros(n.shape[0], dtype=np.float32)  # of white, by Fresnel
    for l, w in zip(lights.directions.astype(np.float32), lights.weights.astype(np.float32)):
        nl = np.maximum(n @ l, 0)
        diffuse += w * nl
        half = l + np.array((0, 0, 1), dtype=np.float32)
        half /= np.sqrt(half @ half)
        nh, th, bh = n @ half, t @ half, b @ half
        d = (th / ax) ** 2 + (bh / ay) ** 2 + nh**2
        d = 1 / (np.pi * ax * ay * d * d)
        lambda_l = np.sqrt((ax * (t @ l)) ** 2 + (ay * (b @ l)) ** 2 + nl**2)
        g = 0.5 / np.maximum(nl * lambda_v + nv * lambda_l, 1e-4)
        fresnel = (1 - half[2]) ** 5
        s = np.pi * w * d * g * nl
        lobe += s * (1 - fresnel)
        glance += s * fresnel
    tilt = 1 + room_tilt * -n[:, 1]
    edge = (1 - nv) ** 5
    rough = np.sqrt(ax * ay)
    lamp, hall = np.asarray(lamp_share).ravel(), np.asarray(room_share).ravel() * studio.ROOM * tilt
    out = albedo * (diffuse * lamp + hall * (0.5 + 0.5 * nv))[:, None]
    out += mirror * (lobe * lamp + hall)[:, None] + (glance * lamp + hall * edge * (1 - rough) * 0.3)[:, None]
    return out.reshape(shape + (3,)).astype(np.float64)
