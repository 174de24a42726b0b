# SPDX-License-Identifier: GPL-3.0-or-later
"""What all drawings of the console front share: light, colours, lettering. Colours are sRGB, 0 to 255."""

# Towards the light: x to the right, y downwards, z towards the eye. A large soft box above, a little to the left.
LIGHT = (-0.30, -0.80, 0.90)

# Where a shadow falls, in pixels for each pixel of height above the plate: the light's slope, mirrored.
SHADOW_PER_HEIGHT = (-LIGHT[0] / LIGHT[2], -LIGHT[1] / LIGHT[2])

# Every bitmap holds twice the pixels that it covers at 100 %.
SCALE = 2

PLATE = (0x1F, 0x21, 0x24)  # the unit's front
STRIP = (0x2A, 0x2D, 0x31)  # the bands' plates
GROOVE = (0x0B, 0x0C, 0x0D)
LEGEND = (0xEC, 0xE6, 0xD6)
LEGEND_QUIET = (0xB3, 0xAE, 0x9F)
BRASS = (0xC9, 0xA4, 0x5C)
PAPER = (0xF1, 0xE6, 0xC4)  # of the meters
PRINT = (0x2A, 0x21, 0x18)
PRINT_RED = (0xB3, 0x26, 0x1E)
ALUMINIUM = (0xB9, 0xBC, 0xC0)
ANODISED = (0x17, 0x18, 0x1A)
BAKELITE = (0x14, 0x13, 0x13)

# The condensed grotesque of all legends, by the names that the system's font service knows.
FACE = "Nimbus Sans Narrow"
