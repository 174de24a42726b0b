# SPDX-License-Identifier: GPL-3.0-or-later
"""Ends at bad moments, and many random doings one after the other."""

import os
import random
import time

from menus import ABOUT, OVERSAMPLING, SETTINGS_ROWS, open_menu
from panel_places import HEIGHTS
from standalone import wait_for
from standalone_case import NEW, OPTIONS, StandaloneCase

SECONDS = float(os.environ.get("CORVANE_SOAK_SECONDS", "15"))
SEED = int(os.environ.get("CORVANE_SOAK_SEED", "20250704"))
DOINGS_AT_A_TIME = 12
# None that presses a button: the editor's take no keys, so the framework's own around it would open their dialogs.
KEYS = ("Escape", "Up", "Down", "Left", "Right", "Page_Up", "Home", "End", "Delete", "BackSpace", "a", "5", "F1",
        "ctrl+z", "ctrl+v", "shift+Left")


class Ends(StandaloneCase):
    def test_while_a_menu_is_open(self):
        run = self.start(LowSolo=1.0)
        open_menu(run, "Settings", SETTINGS_ROWS).submenu(OVERSAMPLING, 6)
        self.expect_end(run, LowSolo=1.0)

    def test_while_the_links_are_open(self):
        run = self.start()
        open_menu(run, "Links", 5)
        self.expect_end(run)

    def test_while_the_about_box_is_open(self):
        run = self.start()
        before = run.picture_of_all()
        open_menu(run, "Settings", SETTINGS_ROWS).choose(ABOUT)
        wait_for(lambda: not run.picture_of_all().is_like(before), "the box")
        self.expect_end(run)

    def test_at_once(self):
        run = self.start(Nuke=1.0)
        run.ask_to_close()
        self.assertEqual(run.ended(), 0)

    def test_while_a_knob_is_held(self):
        run = self.start()
        before = run.picture("Mix")
        run.press("Mix")
        x, y = run.point("Mix")
        run.xdotool("mousemove", x, y + 50, "mousemove", x, y + 125)
        run.expect_change("Mix", before)
        state = run.close()
        run.release()
        self.expect_state(state, Mix=0.5)

    def test_while_a_button_is_held(self):
        run = self.start()
        run.press("MidSolo")
        state = run.close()
        run.release()
        self.expect_state(state)


class Soak(StandaloneCase):
    def doing(self, chance, run):
        """The words for one random click, drag or turn of the wheel somewhere in the editor's first place."""
        def somewhere():
            return run.x + chance.randrange(run.width), run.y + chance.randrange(run.height)

        kind = chance.choice(("click", "click", "double", "drag", "drag", "wheel", "held key", "key"))
        words = ["mousemove", *somewhere()]
        if kind == "double":
            return words + ["click", "--repeat", 2, "--delay", 30, 1]
        if kind == "drag":
            return words + ["mousedown", 1, "mousemove", *somewhere(), "mousemove", *somewhere(), "mouseup", 1]
        if kind == "wheel":
            return words + ["click", "--repeat", chance.randint(1, 4), "--delay", 10, chance.choice((4, 5))]
        if kind == "key":
            return words + ["key", chance.choice(KEYS)]
        keys = [chance.choice(("ctrl", "alt", "shift"))] if kind == "held key" else []
        return words + run.with_keys(keys, ("click", chance.choice((1, 1, 1, 3))))

    def test_random_doings(self):
        chance = random.Random(SEED)
        run = self.start()
        end = time.monotonic() + SECONDS
        while time.monotonic() < end:
            run.xdotool(*[word for _ in range(DOINGS_AT_A_TIME) for word in self.doing(chance, run)])
            self.assertTrue(run.is_alive(), f"seed {SEED}: {run.log.read_text()}")

        # Whatever is open goes, the zoom may be any; then a button still answers.
        def is_settled():
            width = run.window()[3] - 2
            self.assertIn(width, HEIGHTS)
            run.settle(width)
            # Beside the About box at every zoom, and on the panel's own ground.
            run.click((6, run.height - 60))
            return True

        wait_for(is_settled, "the editor")
        # Bands may be linked, so only this lamp's own change counts.
        was_lit = run.is_lit("LowSolo lamp")
        run.click("LowSolo")
        wait_for(lambda: run.is_lit("LowSolo lamp") != was_lit, f"an answer after seed {SEED}")

        state = run.close()
        self.assertLessEqual(set(NEW), set(state))
        self.assertLessEqual(set(state), {"Version", *NEW, *OPTIONS})
        self.assertEqual({name: state[name] for name in NEW if not 0.0 <= state[name] <= 1.0}, {})
        self.assertNotEqual(state["LowSolo"] >= 0.5, was_lit)

        # And what it kept can be gone on with.
        again = self.start(run.home, width=None)
        self.assertEqual({name: value for name, value in again.close().items() if name in NEW},
                         {name: value for name, value in state.items() if name in NEW})
