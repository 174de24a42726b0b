# SPDX-License-Identifier: GPL-3.0-or-later
"""The solid things of the console front: knobs, keys, toggle switch, lamps."""
