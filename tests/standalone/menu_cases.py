# SPDX-License-Identifier: GPL-3.0-or-later
"""Settings menu, About box and links, by the mouse; and what a next session remembers of them."""

import pathlib
import unittest

from menus import (ABOUT, BRAND, CALIBRATION, DISTRIBUTOR, MANUAL, OVERSAMPLING, PRODUCT, SAVE, SETTINGS_ROWS,
                   UPDATES, ZOOM, choose_link, choose_setting, open_menu)
from standalone import wait_for
from standalone_case import StandaloneCase

DISTRIBUTOR_HOME, BRAND_HOME = "https://harborguild.example", "https://corvane.example"
MANUAL_FILE = pathlib.Path("/usr/Harbor Guild/Corvane Q7/Corvane Q7 Manual.pdf")

ABOUT_SIZE = 450, 300


class Settings(StandaloneCase):
    def test_zoom(self):
        run = self.start(LowSolo=1.0)
        for row, width, height in ((0, 945, 506), (2, 1215, 650), (1, 1080, 578), (3, 1350, 723), (0, 945, 506)):
            with self.subTest(width):
                choose_setting(run, ZOOM, row)
                run.settle(width)
                self.assertEqual((run.width, run.height), (width, height))
                self.expect_lamps_of_new(run, plus=["LowSolo lamp"])
        # The controls are where the smaller panel has them.
        run.click("LowSolo", "HighMidSide")
        self.expect_lamps_of_new(run, plus=["HighS lamp"])
        state = run.close()
        self.expect_state(state, HighMidSide=1.0)
        self.assertAlmostEqual(state["UIZoom"], 0.7, places=6)

    def test_calibration_and_oversampling(self):
        home = self.new_home()
        run = self.start(home, MidSolo=1.0)
        choose_setting(run, OVERSAMPLING, 2)
        choose_setting(run, CALIBRATION, 3)
        state = run.close()
        self.expect_state(state, MidSolo=1.0)
        self.assertEqual((state["Oversampling"], state["Calibration"], state["UIZoom"]), (4, 19, 1))
        self.assertFalse(home.defaults.exists(), "nothing was saved as a default")

        # A session goes on with them, and they can be changed back.
        run = self.start(home)
        self.expect_lamps_of_new(run, plus=["MidSolo lamp"])
        choose_setting(run, OVERSAMPLING, 0)
        choose_setting(run, CALIBRATION, 8)
        state = run.close()
        self.assertEqual((state["Oversampling"], state["Calibration"]), (1, 24))

    def test_defaults_serve_a_fresh_start(self):
        home = self.new_home()
        run = self.start(home)
        choose_setting(run, OVERSAMPLING, 3)
        choose_setting(run, OVERSAMPLING, SAVE)
        choose_setting(run, CALIBRATION, 0)
        choose_setting(run, CALIBRATION, SAVE)
        choose_setting(run, ZOOM, 0)
        run.settle(945)
        choose_setting(run, ZOOM, SAVE)
        run.close()
        self.assertEqual({name: float(text) for name, text in home.values(home.defaults).items()
                          if name != "UIZoom"}, dict(Oversampling=8, Calibration=16))
        self.assertAlmostEqual(float(home.values(home.defaults)["UIZoom"]), 0.7, places=6)

        home.settings.unlink()
        self.start(home, width=945).close()
        # A first run keeps no options, for they are the defaults; the next one does.
        state = self.start(home, width=945).close()
        self.expect_state(state)
        self.assertEqual((state["Oversampling"], state["Calibration"]), (8, 16))

    def test_a_menu_that_is_left_changes_nothing(self):
        run = self.start(Calibration=20.0)
        menu = open_menu(run, "Settings", SETTINGS_ROWS)
        menu.submenu(OVERSAMPLING, 6)
        run.click((run.width // 2, 300))
        wait_for(lambda: not menu.is_open(), "the end of the menu")
        state = run.close()
        self.expect_state(state)
        self.assertEqual((state["Oversampling"], state["Calibration"], state["UIZoom"]), (1, 20, 1))


class Rows(StandaloneCase):
    """Ticks and remarks, by the ink in a row: a tick is a mark at its left, a remark a longer text."""

    def ticked(self, menu):
        """The numbers of the rows that bear a tick."""
        return [i for i, (_, y) in enumerate(menu.rows) if menu.ink(y, 3, 22)]

    def lengths(self, menu):
        return [max(menu.ink(y, 22, menu.box[2] - 3)) for _, y in menu.rows]

    def test_each_choice_gets_the_tick(self):
        run = self.start()
        for title, number, before in ((CALIBRATION, 9, 6), (OVERSAMPLING, 5, 0)):
            for row in range(number):
                menu = open_menu(run, "Settings", SETTINGS_ROWS).submenu(title, number + 1)
                run.park()
                self.assertEqual(self.ticked(menu), [before], (title, row))
                menu.choose(row)
                before = row
        menu = open_menu(run, "Settings", SETTINGS_ROWS).submenu(ZOOM, 5)
        self.assertEqual(self.ticked(menu), [3])

    def test_the_stored_row_bears_a_remark(self):
        home = self.new_home()
        home.keep_defaults(Calibration="30", Oversampling="8", UIZoom="0.5")
        run = self.start(home, Oversampling=2)
        # Out of range counts as -18 dBFS and as 70 %; the factor that is in use has nothing to do with it.
        for title, number, row, tick in ((CALIBRATION, 9, 6, 6), (OVERSAMPLING, 5, 3, 1), (ZOOM, 4, 0, 3)):
            menu = open_menu(run, "Settings", SETTINGS_ROWS).submenu(title, number + 1)
            run.park()
            lengths = self.lengths(menu)[:number]
            self.assertEqual(lengths.index(max(lengths)), row)
            self.assertGreater(max(lengths), 40 + sorted(lengths)[-2], lengths)
            self.assertEqual(self.ticked(menu), [tick])
            run.click((run.width // 2, 300))
            wait_for(lambda: not menu.is_open(), "the end of the menu")

    def test_titles_tell_what_is_chosen(self):
        run = self.start()
        menu = open_menu(run, "Settings", SETTINGS_ROWS)
        before = [menu.ink(y, 22, menu.box[2] - 20) for _, y in menu.rows]
        menu.submenu(OVERSAMPLING, 6).choose(4)
        menu = open_menu(run, "Settings", SETTINGS_ROWS)
        run.park()
        after = [menu.ink(y, 22, menu.box[2] - 20) for _, y in menu.rows]
        self.assertEqual([row for row in range(4) if before[row] != after[row]], [OVERSAMPLING])


class AboutBox(StandaloneCase):
    def box(self, run):
        """Of the editor's middle; the logo's and the texts' share of it counts."""
        w, h = ABOUT_SIZE
        return run.picture_of(run.width // 2 - w // 2, run.height // 2 - h // 2, w, h)

    def test_it_opens_and_closes(self):
        run = self.start()
        panel = self.box(run)
        for place in ((0, -100), (-150, -50), (200, 100)):
            with self.subTest(place):
                open_menu(run, "Settings", SETTINGS_ROWS).choose(ABOUT)
                wait_for(lambda: self.box(run).at(run.x + run.width // 2, run.y + run.height // 2 - 60)
                         != panel.at(run.x + run.width // 2, run.y + run.height // 2 - 60), "the box")
                # A click anywhere on it closes it, and reaches no control beneath.
                run.click((run.width // 2 + place[0], run.height // 2 + place[1]))
                run.park()
                wait_for(lambda: self.box(run).is_like(panel), "the panel behind the box")
        self.expect_end(run)

    def test_the_panel_beside_it_works_and_its_link_leaves_it_open(self):
        run = self.start(width=945, UIZoom=0.7)
        panel = self.box(run)
        open_menu(run, "Settings", SETTINGS_ROWS).choose(ABOUT)
        wait_for(lambda: not self.box(run).is_like(panel), "the box")
        run.click("LowSolo", "HighIn")
        wait_for(lambda: run.is_lit("LowSolo lamp") and not run.is_lit("HighIn lamp"), "the lamps beside the box")
        link = (run.width // 2, run.height // 2 - ABOUT_SIZE[1] // 2 + 284)
        run.click(link)
        wait_for(lambda: run.home.opened_addresses() == [BRAND_HOME], "the link's address")
        self.assertFalse(self.box(run).is_like(panel))
        run.click((run.width // 2, run.height // 2))
        run.park()
        wait_for(lambda: self.box(run).is_like(panel), "the panel behind the box")
        self.expect_end(run, LowSolo=1.0, HighIn=0.0)


class Links(StandaloneCase):
    def test_each_opens_its_address(self):
        run = self.start()
        expected = []

        def expect(address):
            expected.append(address)
            try:
                wait_for(lambda: len(run.home.opened_addresses()) >= len(expected), address)
            finally:
                self.assertEqual(run.home.opened_addresses(), expected)

        run.click("Logo")
        expect(DISTRIBUTOR_HOME)
        for row, address in ((PRODUCT, DISTRIBUTOR_HOME + "/plugins/corvane_q7"),
                             (UPDATES, DISTRIBUTOR_HOME + "/downloads/corvane_q7"), (DISTRIBUTOR, DISTRIBUTOR_HOME),
                             (BRAND, BRAND_HOME)):
            choose_link(run, row)
            expect(address)
        self.expect_end(run)
        self.assertEqual(run.home.opened_addresses(), expected)

    @unittest.skipIf(MANUAL_FILE.exists(), "the manual is installed here")
    def test_the_manual_that_is_not_there(self):
        run = self.start()
        before = run.picture_of_all()
        choose_link(run, MANUAL)
        run.park()
        wait_for(lambda: run.picture_of_all().is_like(before), "the editor as it was")
        # What it might have opened would be noted before this.
        choose_link(run, BRAND)
        wait_for(run.home.opened_addresses, "an address")
        self.assertEqual(run.home.opened_addresses(), [BRAND_HOME])
        self.expect_end(run)
