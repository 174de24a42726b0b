# SPDX-License-Identifier: GPL-3.0-or-later
"""The knobs: a black fluted grip on a skirt, with a cap of spun aluminium, in three layers.

    background  the shadow on the plate; it stands still
    rotor       the knob under light from all around, so that it may turn without its light turning with it
    top         what the soft box adds to that and takes away from it, as white and black with alpha; it stands still

Grip and skirt without flutes are the same all around, so their light without direction is the mean of their true light
over one turn, and the top layer is the ratio of the two.
"""

import numpy as np

import style
import solids.relief as relief
import solids.studio as studio

GRIP, METAL, CUT, IVORY, CHANNEL = range(5)


class Size:
    def __init__(self, name, pixels, num_flutes, pointer_width, detail):
        self.name = name
        self.pixels = pixels
        self.num_flutes = num_flutes
        self.pointer_width = pointer_width  # in pixels of the bitmap
        self.detail = detail  # pixels of the map along one pixel of the bitmap
        self.radius = 0.40 * pixels


SIZES = [Size("big", 240, 28, 8.4, 4), Size("mid", 144, 22, 7.2, 5), Size("small", 108, 18, 6.4, 6)]

# Radius and height as shares of the skirt's radius. Between two points the line is straight; all is softened afterwards.
PROFILE = [
    (0.000, 0.455), (0.500, 0.470),  # the cap, a shallow dish
    (0.535, 0.470), (0.560, 0.440),  # its edge, cut bright
    (0.575, 0.405), (0.592, 0.405),  # the groove around it
    (0.605, 0.445), (0.650, 0.445),  # the grip's face
    (0.690, 0.425), (0.715, 0.380),  # its shoulder
    (0.800, 0.125), (0.830, 0.095),  # its wall, fluted, and the foot
    (0.955, 0.070), (0.985, 0.045), (1.000, 0.000), (1.100, 0.000),  # skirt and edge
]
CAP_EDGE = (0.536, 0.568)
FLUTES = (0.655, 0.700, 0.800, 0.835)  # begin, full, full, end
POINTER = (0.17, 0.985)


def polar(size):
    n = size.pixels * size.detail
    c = (np.arange(n) + 0.5) / size.detail - size.pixels / 2
    x, y = np.meshgrid(c, c)
    return x, y, np.hypot(x, y) / size.radius, np.arctan2(x, -y)


def profile(r, softness):
    points = np.array(PROFILE)
    fine = np.linspace(0, 1.6, 6401)
    z = np.interp(fine, points[:, 0], points[:, 1])
    k = np.exp(-0.5 * ((np.arange(-200, 201) * 0.00025) / softness) ** 2)
    padded = np.concatenate([z[200:0:-1], z, np.full(200, z[-1])])
    return np.interp(r, fine, np.convolve(padded, k / k.sum(), "valid"))


def flutes(size, r, angle):
    """How far the wall stands back, as a share of the radius: round valleys with narrow lands between, a land at the pointer."""
    phase = size.num_flutes * angle / (2 * np.pi)
    across = np.abs(phase - np.floor(phase) - 0.5) * 2  # 0 in a valley's middle, 1 on a land
    valley = np.sqrt(np.maximum(1 - (across / 0.86) ** 2, 0))
    b0, b1, e0, e1 = FLUTES
    where = studio.smoothstep(b0, b1, r) * (1 - studio.smoothstep(e0, e1, r))
    depth = 0.62 * np.pi * 0.76 / size.num_flutes
    return depth * valley * where, valley * where


def blend(parts, channels):
    """Materials by their share of each point."""
    total = None
    for share, value in parts:
        v = np.asarray(value, dtype=np.float64)
        v = share[..., None] * v if channels == 3 else share * v
        total = v if total is None else total + v
    return total


def material(r, x, y, size, with_pointer):
    soft = 0.35 / size.radius
    cap = 1 - studio.smoothstep(CAP_EDGE[0] - soft, CAP_EDGE[0] + soft, r)
    cut = 1 - studio.smoothstep(CAP_EDGE[1] - soft, CAP_EDGE[1] + soft, r) - cap
    grip = 1 - cap - cut
    ivory = np.zeros_like(r)
    channel = np.zeros_like(r)
    if with_pointer:
        ivory, channel = pointer(r, x, y, size)
        channel = channel * (1 - ivory)
        for part in (cap, cut, grip):
            part *= 1 - ivory - channel
    aluminium = studio.to_linear(style.ALUMINIUM)
    black = studio.to_linear(style.ANODISED)
    return relief.Material(
        albedo=blend([(cap, aluminium * 0.10), (cut, aluminium * 0.05), (grip, black * 0.9), (ivory, studio.to_linear(style.LEGEND)),
                      (channel, black * 0.3)], 3),
        mirror=blend([(cap, aluminium * 1.05), (cut, aluminium * 1.5), (grip, np.full(3, 0.035)), (ivory, np.full(3, 0.02)),
                      (channel, np.full(3, 0.01))], 3),
        rough_x=blend([(cap, 0.17), (cut, 0.22), (grip, 0.30), (ivory, 0.5), (channel, 0.5)], 1),
        rough_y=blend([(cap, 0.62), (cut, 0.22), (grip, 0.30), (ivory, 0.5), (channel, 0.5)], 1),
    )


def pointer(r, x, y, size):
    """The ivory line, and the black channel in which it lies where it crosses the metal."""
    half = size.pointer_width / 2
    start, end = POINTER[0] * size.radius, POINTER[1] * size.radius
    soft = 0.5

    def bar(half_width, first):
        # a line with a round inner end; its outer end lies at the rim
        beyond = np.maximum(first - -y, 0)
        d = np.hypot(x, beyond) - half_width
        line = 1 - studio.smoothstep(-soft, soft, d)
        return line * (1 - studio.smoothstep(end - 1.0, end + 0.4, r * size.radius)) * (y < 0)

    ivory = bar(half, start + half)
    channel = bar(half + max(2.2, 0.016 * size.pixels), start + half)
    return ivory, channel


def grain(x, y):
    length = np.maximum(np.hypot(x, y), 1e-6)
    return -y / length, x / length


def around(a, r):
    """The mean over one turn, at every point."""
    step = 0.0025
    index = (r / step).astype(int)
    count = np.maximum(np.bincount(index.ravel()), 1)
    place = np.bincount(index.ravel(), weights=r.ravel()) / count
    used = np.bincount(index.ravel()) > 0
    out = np.empty_like(a)
    for c in range(a.shape[2]):
        mean = np.bincount(index.ravel(), weights=a[..., c].ravel()) / count
        out[..., c] = np.interp(r, place[used], mean[used])
    return out


def shares(height, detail, size):
    """Shadow shares at half of the detail; they are soft enough."""
    coarse = studio.reduced(height, 2) / 2
    step = 0.5 * detail
    lamp = relief.light_share(coarse, studio.soft_box(7, 5), step=step * 0.75, softness=detail * 0.35)
    ring = relief.light_share(coarse, studio.ring_of_boxes(14, 2, 3), step=step, softness=detail * 0.35)
    hall = relief.light_share(coarse, relief.room(14, 4), step=step, softness=detail * 0.35, reach=0.45 * size.radius * detail / 2)
    return [np.repeat(np.repeat(a, 2, axis=0), 2, axis=1) for a in (lamp, ring, hall)]


def draw(size):
    x, y, r, angle = polar(size)
    soft = max(0.0045, 0.30 / size.radius)
    unit = size.radius * size.detail
    smooth_height = profile(r, soft) * unit
    back, valley = flutes(size, r, angle)
    fluted_height = profile(r + back, soft) * unit

    lamp, ring, hall = shares(smooth_height, size.detail, size)
    _, fluted_ring, fluted_hall = shares(fluted_height, size.detail, size)

    inside = 1 - studio.smoothstep(1.0 - 0.5 / size.radius, 1.0 + 0.5 / size.radius, r)
    grains = grain(x, y)

    # The knob in its true light, without flutes and pointer, and the same knob with the light all around.
    body = material(r, x, y, size, False)
    smooth_normal = relief.normals(smooth_height)
    true = relief.shade(smooth_normal, body, studio.soft_box(13, 7), lamp, hall, grains)
    even = around(true, r)

    # The rotor: flutes and pointer, in light from all around.
    with_pointer = material(r, x, y, size, True)
    fluted_normal = relief.normals(fluted_height)
    turned = relief.shade(fluted_normal, with_pointer, studio.ring_of_boxes(), fluted_ring, fluted_hall, grains, room_tilt=0)

    # Ivory keeps its brightness on the steep wall: a line that fades half way is read badly.
    ivory, _ = pointer(r, x, y, size)
    least = studio.to_linear(style.LEGEND) * 0.80
    turned = np.where((ivory > 0)[..., None], np.maximum(turned, least * ivory[..., None]), turned)

    rotor = (studio.reduced(studio.to_srgb(turned) * inside[..., None], size.detail), studio.reduced(inside, size.detail))
    rotor = (rotor[0] / np.maximum(rotor[1], 1e-6)[..., None], rotor[1])
    top = light_layer(studio.to_srgb(true), studio.to_srgb(even), inside, size)
    return background(lamp, hall, r, size), rotor, top


def light_layer(true, even, inside, size):
    true, even = (studio.reduced(a.mean(axis=2), size.detail) for a in (true, even))
    inside = studio.reduced(inside, size.detail)
    brighter = np.clip((true - even) / np.maximum(1 - even, 0.05), 0, 0.75)
    darker = np.clip(1 - true / np.maximum(even, 1e-3), 0, 0.75)
    white = (true > even).astype(float)
    return np.repeat(white[..., None], 3, axis=2), np.where(true > even, brighter, darker) * inside


def background(lamp, hall, r, size):
    light = lamp * (1 - studio.ROOM) + hall * studio.ROOM
    alpha = studio.reduced(studio.shadow_alpha(light), size.detail)
    radius = studio.reduced(r, size.detail) * size.radius
    alpha = np.where(radius < size.radius - 0.5, np.maximum(alpha, 0.85), alpha)
    n = size.pixels
    c = np.abs(np.arange(n) + 0.5 - n / 2)
    to_edge = n / 2 - np.maximum(c[:, None], c[None, :])
    alpha *= studio.smoothstep(0.0, 0.07 * n, to_edge)
    return np.zeros((n, n, 3)), alpha


def make(folder):
    for size in SIZES:
        for name, (colour, alpha) in zip(("background", "rotor", "top"), draw(size)):
            studio.save(folder / f"knob-{size.name}-{name}.png", colour, alpha)
