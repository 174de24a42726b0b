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


class Size:
    def __init__(self, name, pixels, num_flutes, pointer_width, detail):
        self.name = name
        self.pixels = pixels
        self.num_flutes = num_flutes
        self.pointer_width = pointer_width  # in pixels of the bitmap
        self.detail = detail  # pixels of the map along one pixel of the bitmap
        self.radius = 0.40 * pixels


SIZES = [Size("big", 240, 24, 8.6, 4), Size("mid", 144, 20, 7.2, 5), Size("small", 108, 16, 6.4, 6)]

# Radius and height as shares of the skirt's radius. Between two points the line is straight; all is softened afterwards.
PROFILE = [
    (0.000, 0.435), (0.500, 0.450),  # the cap, a shallow dish
    (0.528, 0.450), (0.556, 0.418),  # its edge, cut bright
    (0.566, 0.385), (0.582, 0.385),  # the groove around it
    (0.594, 0.425), (0.636, 0.428),  # the grip's face
    (0.668, 0.410), (0.694, 0.370),  # its shoulder
    (0.806, 0.165), (0.832, 0.145),  # its wall, fluted, and the foot
    (0.940, 0.118), (0.972, 0.096), (0.992, 0.050), (1.000, 0.000), (1.100, 0.000),  # skirt and edge
]
CAP_EDGE = (0.530, 0.560)
FLUTES = (0.615, 0.720, 0.850, 0.890)  # begin, full, full, end
POINTER = (0.20, 0.982)


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
    """How far the wall stands back, as a share of the radius: round valleys, sharp ridges, one of these at the pointer.

    Also the valleys and the ridges themselves, 0 to 1, for what light and wear make of them.
    """
    phase = size.num_flutes * angle / (2 * np.pi)
    across = np.abs(phase - np.floor(phase) - 0.5) * 2  # 0 in a valley's middle, 1 on a ridge
    valley = 1 - across**2
    b0, b1, e0, e1 = FLUTES
    where = studio.smoothstep(b0, b1, r) * (1 - studio.smoothstep(e0, e1, r))
    depth = 0.56 * np.pi * 0.76 / size.num_flutes
    back = depth * valley * where
    # How deep in a flute a point lies, and how sharp a ridge it stands on; both end where the wall stands on the skirt.
    wall = studio.smoothstep(b0 + 0.02, b1, r) * (1 - studio.smoothstep(0.79, 0.835, r + back))
    return back, valley * wall, across**3 * wall


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
    # Hands have polished the edges of the grip.
    worn = studio.smoothstep(0.925, 0.945, r) + studio.smoothstep(0.625, 0.645, r) * (1 - studio.smoothstep(0.675, 0.705, r))
    grip = 1 - cap - cut
    worn = worn * grip
    ivory = np.zeros_like(r)
    channel = np.zeros_like(r)
    if with_pointer:
        ivory, channel = pointer(r, x, y, size)
        channel = channel * (1 - ivory)
        for part in (cap, cut, grip, worn):
            part *= 1 - ivory - channel
    aluminium = studio.to_linear(style.ALUMINIUM)
    black = studio.to_linear(style.ANODISED)
    return relief.Material(
        albedo=blend([(cap, aluminium * 0.10), (cut, aluminium * 0.05), (grip, black * 0.9),
                      (ivory, studio.to_linear(style.LEGEND)), (channel, black * 0.3)], 3),
        mirror=blend([(cap, aluminium * 1.05), (cut, aluminium * 1.5), (grip, np.full(3, 0.038)),
                      (worn, np.full(3, 0.045)), (ivory, np.full(3, 0.02)), (channel, np.full(3, 0.01))], 3),
        rough_x=blend([(cap, 0.20), (cut, 0.22), (grip, 0.28), (worn, -0.07), (ivory, 0.5), (channel, 0.5)], 1),
        rough_y=blend([(cap, 0.60), (cut, 0.22), (grip, 0.28), (worn, -0.07), (ivory, 0.5), (channel, 0.5)], 1),
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
    """What the rotor shows of a picture of the knob: at every radius one brightness between its darkest and its brightest.

    On the metal it is the mean. On the black grip it lies lower, so that the top layer darkens little there and does not
    dim the pointer where it looks down. Returns it and its ratio to the mean.
    """
    step = 0.0025
    index = (r / step).astype(int)
    count = np.maximum(np.bincount(index.ravel()), 1)
    used = np.bincount(index.ravel()) > 0
    place = np.bincount(index.ravel(), weights=r.ravel()) / count
    grip = studio.smoothstep(0.57, 0.60, place)
    shown, ratio = np.empty_like(a), np.empty_like(a)
    for c in range(a.shape[2]):
        mean = np.bincount(index.ravel(), weights=a[..., c].ravel()) / count
        spread = np.sqrt(np.maximum(np.bincount(index.ravel(), weights=a[..., c].ravel() ** 2) / count - mean**2, 0))
        level = np.maximum(mean - 0.65 * grip * spread, 0.35 * mean)
        shown[..., c] = np.interp(r, place[used], level[used])
        ratio[..., c] = np.interp(r, place[used], (level / np.maximum(mean, 1e-6))[used])
    return shown, ratio


def shares(height, detail, size):
    """Shadow shares at half of the detail; they are soft enough."""
    coarse = studio.reduced(height, 2) / 2
    step = 0.5 * detail
    lamp = relief.light_share(coarse, studio.soft_box(7, 5), step=step * 0.75, softness=detail * 0.35)
    ring = relief.light_share(coarse, studio.ring_of_boxes(14, 2, 3), step=step, softness=detail * 0.35)
    reach = 0.45 * size.radius * detail / 2
    hall = relief.light_share(coarse, relief.room(14, 4), step=step, softness=detail * 0.35, reach=reach)
    return [np.repeat(np.repeat(a, 2, axis=0), 2, axis=1) for a in (lamp, ring, hall)]


def draw(size):
    x, y, r, angle = polar(size)
    soft = max(0.0045, 0.30 / size.radius)
    unit = size.radius * size.detail
    smooth_height = profile(r, soft) * unit
    back, valley, ridge = flutes(size, r, angle)
    fluted_height = profile(r + back, soft) * unit

    lamp, ring, hall = shares(smooth_height, size.detail, size)
    _, fluted_ring, fluted_hall = shares(fluted_height, size.detail, size)

    inside = 1 - studio.smoothstep(1.0 - 0.5 / size.radius, 1.0 + 0.5 / size.radius, r)
    grains = grain(x, y)

    # The knob in its true light, without flutes and pointer, and the same knob with the light all around.
    body = material(r, x, y, size, False)
    smooth_normal = relief.normals(smooth_height)
    true = relief.shade(smooth_normal, body, studio.soft_box(13, 7), lamp, hall, grains)
    even, ratio = around(true, r)

    # The rotor: flutes and pointer, in light from all around.
    with_pointer = material(r, x, y, size, True)
    fluted_normal = relief.normals(fluted_height)
    turned = relief.shade(fluted_normal, with_pointer, studio.ring_of_boxes(), fluted_ring, fluted_hall, grains, room_tilt=0)

    turned *= ratio
    # Ridges are worn and catch light from somewhere at every angle; valleys keep their dust.
    turned *= (1 - 0.30 * valley)[..., None]
    turned += (0.022 * ridge)[..., None]

    # The ivory is one inlaid bar that bridges the groove; paint that faded on the steep wall would be read badly.
    ivory, _ = pointer(r, x, y, size)
    bar = 0.94 - 0.13 * np.exp(-(((r - 0.75) / 0.055) ** 2)) - 0.05 * studio.smoothstep(0.8, 1.0, r)
    turned += (studio.to_linear(style.LEGEND) * bar[..., None] - turned) * ivory[..., None]

    rotor = (studio.reduced(studio.to_srgb(turned) * inside[..., None], size.detail), studio.reduced(inside, size.detail))
    rotor = (rotor[0] / np.maximum(rotor[1], 1e-6)[..., None], rotor[1])
    top = light_layer(studio.to_srgb(true), studio.to_srgb(even), inside, size)
    return background(lamp, hall, r, size), rotor, top


def light_layer(true, even, inside, size):
    true, even = (studio.reduced(a.mean(axis=2), size.detail) for a in (true, even))
    inside = studio.reduced(inside, size.detail)
    brighter = np.clip((true - even) / np.maximum(1 - even, 0.05), 0, 0.75)
    darker = np.clip(1 - true / np.maximum(even, 1e-3), 0, 0.75)
    # Over the groove around the cap the pointer runs on; the lights of that edge cross it softened.
    radius = studio.reduced(polar(size)[2], size.detail)
    calm = 1 - 0.45 * np.exp(-(((radius - 0.565) / 0.04) ** 2))
    brighter, darker = brighter * calm, darker * calm
    white = (true > even).astype(float)
    return np.repeat(white[..., None], 3, axis=2), np.where(true > even, brighter, darker) * inside


def background(lamp, hall, r, size):
    light = lamp * (1 - studio.ROOM) + hall * studio.ROOM
    alpha = studio.reduced(studio.shadow_alpha(light), size.detail)
    radius = studio.reduced(r, size.detail) * size.radius
    alpha = np.where(radius < size.radius - 0.5, np.maximum(alpha, 0.85), alpha)
    n = size.pixels
    # What is left at the border is the room's faint shade; it ends there, round as the knob.
    alpha = studio.grounded(alpha, 0.045) * (1 - studio.smoothstep(0.425, 0.497, radius / n))
    return np.zeros((n, n, 3)), alpha


def make(folder):
    for size in SIZES:
        for name, (colour, alpha) in zip(("background", "rotor", "top"), draw(size)):
            studio.save(folder / f"knob-{size.name}-{name}.png", colour, alpha)
