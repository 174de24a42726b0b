# SPDX-License-Identifier: GPL-3.0-or-later
"""The menus of the two strips, found by their light sheet and the texts on it."""

import contextlib
import time

from standalone import wait_for

SHEET = 0xfcfcfc

# Lower marks than this are lines between rows.
LOWEST_TEXT = 5  # px
PLACE_OF_MENUS = 600  # px
HALF_TEXT = 6  # px, so that no line between rows is met

# A menu takes no click in its first quarter of a second: the first one waits for longer than that. A second click, after
# one that was not taken all the same, must not come while a busy machine still works at the first.
DEAF_TIME = 0.3       # s
CLICK_PATIENCE = 5.0  # s
CLICKS = 6


class Menu:
    """A sheet that has come up since a picture of the editor was taken."""

    def __init__(self, run, before, number_of_rows):
        self.run = run
        self.before = before
        self.rows = wait_for(lambda: self.find(number_of_rows), f"a menu of {number_of_rows} rows")
        self.seen = time.monotonic()

    def find(self, number_of_rows):
        """The rows' middles on the screen, if all are there."""
        shown = picture_of_menus(self.run)
        fresh = [[now == SHEET and then != SHEET for now, then in zip(*rows)]
                 for rows in zip(shown.rows, self.before.rows)]
        # A row of the sheet is bright for the most part of its width: stray pixels are not one.
        lines = [j for j, row in enumerate(fresh) if sum(row) > 20]
        if not lines:
            return None
        top, bottom = lines[0], lines[-1]
        columns = [i for i in range(len(fresh[0])) if sum(fresh[j][i] for j in lines) > len(lines) // 2]
        if not columns:
            return None
        left, right = columns[0], columns[-1]

        texts, begin = [], None
        for j in range(top, bottom + 2):
            marked = j <= bottom and any(pixel != SHEET for pixel in shown.rows[j][left + 4:right - 3])
            if marked and begin is None:
                begin = j
            elif not marked and begin is not None:
                texts.append((begin, j - begin))
                begin = None
        self.box = (shown.x + left, shown.y + top, right - left + 1, bottom - top + 1)
        # The sheet's round corners are marks of their own, a few lines high.
        rows = [shown.y + begin + height // 2 for begin, height in texts if height >= LOWEST_TEXT]
        return [(shown.x + (left + right) // 2, y) for y in rows] if len(rows) == number_of_rows else None

    def is_open(self):
        """By the sheet's margin in the middle of its upper edge."""
        x, y, w, _ = self.box
        return self.run.screen.pixel(x + w // 2, y + 1) == SHEET

    def ink(self, y, begin, end):
        """The columns of the sheet, counted from its left, that bear dark marks around that height."""
        x = self.box[0]
        shown = self.run.screen.picture(x + begin, y - HALF_TEXT, end - begin, 2 * HALF_TEXT)
        return [begin + i for i, column in enumerate(zip(*shown.rows))
                if min(pixel >> 8 & 255 for pixel in column) < 128]

    def hover(self, row):
        self.run.xdotool("mousemove", *self.rows[row])

    def submenu(self, row, number_of_rows):
        before = picture_of_menus(self.run)
        self.hover(row)
        return Menu(self.run, before, number_of_rows)

    def choose(self, row):
        """Clicks until the menu takes it."""
        self.hover(row)
        time.sleep(max(0.0, self.seen + DEAF_TIME - time.monotonic()))
        for _ in range(CLICKS):
            self.run.xdotool("click", 1)
            with contextlib.suppress(AssertionError):
                wait_for(lambda: not self.is_open(), "the end of the menu", CLICK_PATIENCE)
                return
        raise AssertionError("the menu stays open")


def picture_of_menus(run):
    """The part of the editor in which menus come up: both strips have their buttons at the right."""
    return run.picture_of(run.width - PLACE_OF_MENUS, 0, PLACE_OF_MENUS, run.height)


def open_menu(run, button, number_of_rows):
    run.park()
    before = picture_of_menus(run)
    run.click(button)
    return Menu(run, before, number_of_rows)


# ---- the settings menu ---------------------------------------------------------------------------
SETTINGS_ROWS = 4
ABOUT, CALIBRATION, OVERSAMPLING, ZOOM = range(SETTINGS_ROWS)
ROWS_OF = {CALIBRATION: 10, OVERSAMPLING: 6, ZOOM: 5}
SAVE = -1  # always the last


def choose_setting(run, title, row):
    open_menu(run, "Settings", SETTINGS_ROWS).submenu(title, ROWS_OF[title]).choose(row)


# ---- the menu of links ---------------------------------------------------------------------------
LINKS_ROWS = 5
MANUAL, PRODUCT, UPDATES, DISTRIBUTOR, BRAND = range(LINKS_ROWS)


def choose_link(run, row):
    open_menu(run, "Links", LINKS_ROWS).choose(row)
