# SPDX-License-Identifier: GPL-3.0-or-later
"""What the cases share: a screen for each class, a home for each run, and how a state is compared."""

import contextlib
import pathlib
import shutil
import tempfile
import unittest

from standalone import LAMPS_OF_A_NEW_INSTANCE, PROGRAM, Home, Standalone, make_state
from x_screen import Screen
from panel_places import BANDS
from with_screen import screen

# Normalised values of a new instance, in the order of the controls.
_NEW_BAND = {"Meter": 0.5, "In": 1.0, "Solo": 0.0, "MidSide": 0.5, "Gain": 3 / 21, "Ratio": 0.5, "Threshold": 16 / 30,
             "Attack": 2 / 3, "Recovery": 1.0}
NEW = {band + name: value for band in BANDS for name, value in _NEW_BAND.items()}
NEW.update(Mix=1.0, HPF=0.0, MasterGain=1 / 3, LowXOver=0.30103, HighXOver=0.786176, Nuke=0.0, Niveau=1.0, Link=0.0,
           Bypass=0.0, InLevel=0.5, OutLevel=0.5)
OPTIONS = {"Calibration": 22.0, "Oversampling": 1, "UIZoom": 1.0}

# Where a double click and a lone Alt lead; the controls that are not here stand there when new.
RESETS = dict(NEW, LowGain=2 / 21, MidGain=4 / 21, HighGain=4 / 21, LowThreshold=1 / 3, MidThreshold=2 / 3,
              HighThreshold=0.6)

# A frequency goes through a logarithm and back in single precision.
TOLERANCE = 2e-5


class StandaloneCase(unittest.TestCase):
    SIZE = "1920x1200"
    KNOWS_WINDOW_MANAGERS = True  # so that windows can be asked to close

    @staticmethod
    def needs(program):
        return unittest.skipUnless(shutil.which(program), f"{program} is not installed")

    @classmethod
    def setUpClass(cls):
        assert PROGRAM, "CORVANE_STANDALONE must hold the path of the Standalone"
        cls.resources = contextlib.ExitStack()
        cls.environment = cls.resources.enter_context(screen(cls.SIZE))
        cls.screen = Screen(cls.environment)
        cls.resources.callback(cls.screen.close)
        if cls.KNOWS_WINDOW_MANAGERS:
            cls.screen.introduce_window_managers()

    @classmethod
    def tearDownClass(cls):
        cls.resources.close()

    def new_home(self):
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        return Home(pathlib.Path(folder.name))

    def start(self, home=None, width=1350, **attributes):
        """A run that goes on from a session with these controls and options; without any, a first run."""
        home = home or self.new_home()
        if attributes:
            home.keep_state(make_state({**NEW, **OPTIONS, **attributes}))
        run = Standalone(self.screen, self.environment, home)
        self.addCleanup(run.kill)
        return run.wait_until_shown(width)

    def expect_state(self, found, **changes):
        """The controls of a new instance but for the changes. Options count only if they are named."""
        expected = {**NEW, **changes}
        different = {name: (found.get(name), value) for name, value in expected.items()
                     if name not in found or abs(found[name] - value) > TOLERANCE}
        self.assertEqual(different, {}, "found and expected")

    def expect_end(self, run, **changes):
        self.expect_state(run.close(), **changes)

    def expect_lamps_of_new(self, run, plus=(), minus=()):
        run.expect_lamps(*(LAMPS_OF_A_NEW_INSTANCE | set(plus)) - set(minus))
