# SPDX-License-Identifier: GPL-3.0-or-later
"""How it starts: on a bare X server, small and large, with no sound, with what a session before has left."""

import subprocess

from standalone import LEFT, make_state, parse_state, wait_for
from standalone_case import NEW, OPTIONS, StandaloneCase


class Start(StandaloneCase):
    def expect_size(self, run, width, height):
        """The strips are black and 24 px high; the panel between them is not, and the lamps are where they belong."""
        self.assertEqual((run.width, run.height), (width, height))
        black = run.picture_of(130, 0, 60, height)
        rows = [all(pixel == 0 for pixel in row) for row in black.rows]
        self.assertEqual(rows[:24], [True] * 24)
        self.assertEqual(rows[-24:], [True] * 24)
        self.assertFalse(any(rows[30:-30]))
        above = self.screen.picture(run.x + 130, run.y - 1, 60, 1)
        self.assertFalse(any(pixel == 0 for pixel in above.rows[0]))
        self.expect_lamps_of_new(run)

    def expect_no_complaint(self, run):
        log = run.log.read_text().lower()
        for word in ("assertion", "segmentation", "badatom", "badwindow", "x error", "terminate called"):
            self.assertNotIn(word, log)

    def end_by_mouse(self, run):
        run.xdotool("mousemove", *run.close_button(), "click", LEFT)
        self.assertEqual(run.ended(), 0)
        self.expect_no_complaint(run)


class OnABareServer(Start):
    """No window manager has ever run there, so the program is closed by its own button."""
    KNOWS_WINDOW_MANAGERS = False

    def test_it_takes_its_full_size(self):
        run = self.start()
        self.expect_size(run, 1350, 723)
        self.end_by_mouse(run)
        self.expect_state(parse_state(run.home.state_block()))

    def test_a_first_run_keeps_no_options(self):
        # So that the user's defaults still count in the next one.
        run = self.start()
        self.end_by_mouse(run)
        self.assertEqual(set(parse_state(run.home.state_block())), {"Version", *NEW})

    def test_a_run_after_it_keeps_them(self):
        home = self.new_home()
        self.end_by_mouse(self.start(home))
        self.end_by_mouse(self.start(home))
        self.assertEqual(set(parse_state(home.state_block())), {"Version", *NEW, *OPTIONS})


class OnASmallScreen(Start):
    SIZE = "1280x800"
    KNOWS_WINDOW_MANAGERS = False

    def test_it_takes_four_fifths(self):
        run = self.start(width=1024)
        self.expect_size(run, 1024, 548)
        # A control is where the smaller panel has it.
        run.click("MidSolo")
        self.expect_lamps_of_new(run, plus=["MidSolo lamp"])
        self.end_by_mouse(run)
        self.expect_state(parse_state(run.home.state_block()), MidSolo=1.0)

    def test_a_smaller_zoom_is_taken_as_it_is(self):
        run = self.start(width=945, UIZoom=0.7)
        self.expect_size(run, 945, 506)
        self.end_by_mouse(run)


class OnATinyScreen(Start):
    SIZE = "1024x768"
    KNOWS_WINDOW_MANAGERS = False

    def test_the_width_limits_the_height(self):
        run = self.start(width=819)
        self.expect_size(run, 819, 438)
        self.end_by_mouse(run)


class Memory(Start):
    MOVED = dict(LowMeter=0.0, LowIn=0.0, LowSolo=1.0, LowMidSide=1.0, LowGain=8 / 21, LowRatio=0.75, LowThreshold=0.2,
                 LowAttack=1.0, LowRecovery=0.25, MidMeter=1.0, MidMidSide=0.0, MidGain=0.0, MidRatio=1.0,
                 HighAttack=0.0, HighRecovery=0.0, Mix=0.83, HPF=0.5, MasterGain=0.25, LowXOver=0.4, HighXOver=0.7,
                 Nuke=1.0, Niveau=0.0, Bypass=1.0, InLevel=0.7, OutLevel=0.4)

    def test_a_session_comes_back_byte_for_byte(self):
        home = self.new_home()
        self.start(home, **self.MOVED, Calibration=19.0, Oversampling=4).close()
        once = home.state_block()
        self.expect_state(parse_state(once), **self.MOVED, Calibration=19.0, Oversampling=4.0)
        self.start(home).close()
        self.assertEqual(home.state_block(), once)

    def test_its_lamps_are_lit_at_once(self):
        run = self.start(**self.MOVED)
        self.assertEqual(run.lamps(), {"LowSolo lamp", "LowS lamp", "MidIn lamp", "MidM lamp", "HighIn lamp",
                                       "Nuke lamp"})

    def test_each_zoom_comes_back(self):
        for zoom, width, height in ((0.7, 945, 506), (0.8, 1080, 578), (0.9, 1215, 650)):
            with self.subTest(zoom):
                run = self.start(width=width, UIZoom=zoom)
                self.expect_size(run, width, height)
                self.assertAlmostEqual(run.close()["UIZoom"], zoom, places=6)

    def test_a_session_without_a_zoom_takes_the_default(self):
        home = self.new_home()
        home.keep_defaults(UIZoom="0.8")
        home.keep_state(make_state(NEW))
        self.start(home, width=1080)

    def test_a_damaged_session_is_a_new_one(self):
        for letters in ("", "5.abcdefg", "0.", "12.......", "nothing"):
            with self.subTest(letters):
                home = self.new_home()
                home.settings.write_text(f'<PROPERTIES><VALUE name="filterState" val="{letters}"/></PROPERTIES>')
                self.expect_end(self.start(home))

    def test_a_damaged_settings_file_is_none(self):
        home = self.new_home()
        home.settings.write_text("<PROPERTIES><VALUE name=")
        self.expect_end(self.start(home))

    def test_the_window_comes_back_where_it_was(self):
        home = self.new_home()
        run = self.start(home)
        x, y, w, _ = run.frame
        run.xdotool("mousemove", x + w // 3, y + 14, "mousedown", LEFT, "mousemove", x + w // 3 + 60, y + 44,
                    "mousemove", x + w // 3 + 100, y + 74, "mouseup", LEFT)
        wait_for(lambda: run.window()[1:3] == (x + 100, y + 60), "the window at its new place")
        run.close()
        self.assertEqual(self.start(home).frame[:2], (x + 100, y + 60))


class UnderAWindowManager(Start):
    @StandaloneCase.needs("openbox")
    def test_it_opens_moves_along_and_closes(self):
        manager = subprocess.Popen(["openbox"], env=self.environment, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        self.addCleanup(manager.wait)
        self.addCleanup(manager.terminate)
        run = self.start()
        self.expect_size(run, 1350, 723)
        run.click("LowSolo")
        self.expect_lamps_of_new(run, plus=["LowSolo lamp"])
        self.expect_end(run, LowSolo=1.0)
        self.expect_no_complaint(run)
