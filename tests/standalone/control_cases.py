# SPDX-License-Identifier: GPL-3.0-or-later
"""Buttons, switch and lamps, knobs, Link, slots and trims, under the mouse. One run serves as many looks as it can."""

import itertools
import math

from standalone import wait_for
from standalone_case import NEW, RESETS, StandaloneCase
from panel_places import BANDS, KNOBS_OF_BAND

# The key within a button's picture takes clicks, in shares of width and height.
KEY_LEFT, KEY_RIGHT, KEY_TOP, KEY_BOTTOM = 0.15, 0.82, 0.25, 0.73

# Pixels of drag for the whole way, and one detent of the control, by knob.
DRAGS = {"Meter": (50, 1 / 2), "Ratio": (80, 1 / 4), "Attack": (60, 1 / 3), "Recovery": (80, 1 / 4),
         "Gain": (250, 1 / 21), "Threshold": (250, 1 / 15)}

# One click of a wheel: what X's framework makes of it, and the share of the way a knob gives it.
NOTCH = 50 / 256 * 0.15


class Buttons(StandaloneCase):
    def within(self, run, button, across, down):
        """A place in a button's picture, relative to the editor."""
        x, y, w, h = run.place(button)
        return x - run.x + round(across * w), y - run.y + round(down * h)

    def test_each_lights_its_own_lamp_and_no_other(self):
        run = self.start()
        of_bands = [band + button for button in ("In", "Solo") for band in BANDS]
        for name in of_bands + ["Nuke", "Niveau", "Link", "Bypass"]:
            with self.subTest(name):
                was_lit = run.is_lit(name + " lamp")
                run.click(name)
                self.expect_lamps_of_new(run, **{"minus" if was_lit else "plus": [name + " lamp"]})
                run.click(name)
                self.expect_lamps_of_new(run)
        self.expect_end(run)

    def test_what_the_lamps_tell_is_what_is_kept(self):
        run = self.start()
        run.click("LowIn", "MidSolo", "HighMidSide", "Nuke", "Niveau", "Link", "Bypass")
        run.expect_lamps("MidIn lamp", "HighIn lamp", "MidSolo lamp", "HighS lamp", "Nuke lamp", "Link lamp")
        self.expect_end(run, LowIn=0.0, MidSolo=1.0, HighMidSide=1.0, Nuke=1.0, Niveau=0.0, Link=1.0, Bypass=1.0)

    def test_mid_side_goes_round(self):
        run = self.start()
        for band in BANDS:
            with self.subTest(band):
                run.click(band + "MidSide")
                self.expect_lamps_of_new(run, plus=[band + "S lamp"])
                run.click(band + "MidSide")
                self.expect_lamps_of_new(run, plus=[band + "M lamp"])
                run.click(band + "MidSide")
                self.expect_lamps_of_new(run)
        self.expect_end(run)

    def test_the_lamps_of_mid_and_side_are_keys_of_their_own(self):
        run = self.start()
        for band, (here, there) in itertools.product(BANDS, ("MS", "SM")):
            with self.subTest(band + here):
                mine, other = f"{band}{here} lamp", f"{band}{there} lamp"
                run.click(mine)
                self.expect_lamps_of_new(run, plus=[mine])
                run.click(other)
                self.expect_lamps_of_new(run, plus=[other])
                run.click(other)
                self.expect_lamps_of_new(run)
        run.click("LowM lamp", "HighS lamp")
        self.expect_lamps_of_new(run, plus=["LowM lamp", "HighS lamp"])
        self.expect_end(run, LowMidSide=0.0, HighMidSide=1.0)

    def test_other_lamps_and_the_margins_of_a_picture_are_dead(self):
        run = self.start()
        run.click("LowIn lamp", "MidSolo lamp", "Nuke lamp", "Niveau lamp", "Link lamp", "HighM label", "LowS label")
        for button in ("LowIn", "MidSolo", "HighMidSide", "Nuke", "Niveau", "Link"):
            for across, down in ((0.12, 0.5), (0.86, 0.5), (0.1, 0.85)):
                run.click(self.within(run, button, across, down))
        # The lamp of the switch reaches out below it.
        x, y, w, h = run.place("Bypass lamp")
        run.click((x - run.x + w // 2, y - run.y + h - 3))
        # A click that was taken would be seen here: events come in order.
        run.click("HighSolo")
        self.expect_lamps_of_new(run, plus=["HighSolo lamp"])
        self.expect_end(run, HighSolo=1.0)

    def test_a_key_takes_clicks_up_to_its_edges(self):
        run = self.start()
        _, _, w, h = run.place("LowSolo")
        inner_w, inner_h = 1.5 / w, 1.5 / h
        inside = [(KEY_LEFT + inner_w, 0.5), (KEY_RIGHT - inner_w, 0.5), (0.5, KEY_TOP + inner_h),
                  (0.5, KEY_BOTTOM - inner_h)]
        outside = [(KEY_LEFT - inner_w, 0.5), (KEY_RIGHT + inner_w, 0.5), (0.5, KEY_BOTTOM + inner_h)]
        for place in outside:
            run.click(self.within(run, "LowSolo", *place))
        for i, place in enumerate(inside):
            run.click(self.within(run, "LowSolo", *place))
            self.expect_lamps_of_new(run, plus=["LowSolo lamp"] if i % 2 == 0 else [])
        self.expect_end(run)

    def test_of_stacked_pictures_each_takes_its_own_clicks(self):
        # The pictures are 54 px high and stand 41 px apart: they overlap, and the keys in them do not.
        run = self.start()
        x, _, w, h = run.place("HighIn")
        first, last = math.ceil(KEY_TOP * h), math.floor(KEY_BOTTOM * h)
        middle = x - run.x + w // 2
        turned = set()  # lamps that are not as they were in the beginning
        for button, lamps in (("HighIn", ("HighIn lamp",) * 2), ("HighSolo", ("HighSolo lamp",) * 2),
                              ("HighMidSide", ("HighS lamp", "HighM lamp"))):
            top = run.place(button)[1] - run.y
            # Just above the key, which lies in the picture above as well; on its edges; just below, in the next one.
            run.click((middle, top + first - 1), (middle, top + 3))
            for y, lamp in zip((first, last), lamps):
                run.click((middle, top + y))
                turned ^= {"HighS lamp", "HighM lamp"} & turned | {lamp}
                self.expect_lamps_of_new(run, plus=turned - {"HighIn lamp"}, minus=turned & {"HighIn lamp"})
            run.click((middle, top + last + 1))
        self.expect_end(run, HighMidSide=0.0)

    def test_the_switch_lies_over_its_lamp(self):
        run = self.start()
        x, y, w, _ = run.place("Bypass lamp")
        run.click((x - run.x + w // 2, y - run.y + 8))
        self.expect_lamps_of_new(run, minus=["Bypass lamp"])
        # In its picture's very corner too: the whole of it is the switch.
        x, y, _, _ = run.place("Bypass")
        run.click((x - run.x + 1, y - run.y + 1))
        self.expect_lamps_of_new(run)

    def test_alt_looks_at_the_button_and_not_at_the_control(self):
        # A fresh button is up. Where the default is "on", Alt presses it, which turns the control over, and only once.
        run = self.start()
        run.click("LowIn", keys=["alt"])
        self.expect_lamps_of_new(run, minus=["LowIn lamp"])
        run.click("LowIn", keys=["alt"])
        run.click("MidSolo", "Link", keys=["alt"])  # their default is "off", and they are up
        run.click("Bypass", keys=["alt"])           # follows the control, so this takes it to "off"
        self.expect_lamps_of_new(run, minus=["LowIn lamp", "Bypass lamp"])
        run.click("Bypass", keys=["alt"])
        self.expect_end(run, LowIn=0.0, Bypass=1.0)

    def test_keys_held_on_the_keyboard(self):
        run = self.start()
        for keys in (["shift"], ["ctrl"], ["ctrl", "alt"], ["shift", "alt"]):
            run.click("LowSolo", "MidIn", "HighMidSide", "Nuke", "Niveau", "Bypass", keys=keys)
        run.click("HighSolo")
        self.expect_lamps_of_new(run, plus=["HighSolo lamp"])

        # Alt leads a button that was clicked before back to where it stands when new, and there it stays.
        run.click("HighSolo", keys=["alt"])
        self.expect_lamps_of_new(run)
        run.click("HighSolo", "Nuke", "LowSolo", keys=["alt"])
        run.click("Nuke")
        self.expect_lamps_of_new(run, plus=["Nuke lamp"])
        run.click("Nuke", keys=["alt"])
        self.expect_lamps_of_new(run)
        self.expect_end(run)

    def test_a_click_that_ends_elsewhere_is_none(self):
        run = self.start()
        run.drag("LowSolo", up=-200, right=150)
        run.drag("Bypass", up=60)
        run.click("MidSolo")
        self.expect_lamps_of_new(run, plus=["MidSolo lamp"])
        self.expect_end(run, MidSolo=1.0)

    def test_a_button_looks_pressed_while_it_is(self):
        run = self.start()
        for name in ("LowIn", "MidSolo", "HighMidSide", "Nuke", "Niveau", "Link"):
            with self.subTest(name):
                # Beside the key, lamps shine in.
                x, y, w, h = run.place(name)
                key = (x + round(KEY_LEFT * w) + 2, y + round(KEY_TOP * h) + 2, round(0.6 * w), round(0.4 * h))
                released = self.screen.picture(*key)
                run.press(name)
                wait_for(lambda: self.screen.picture(*key) != released, "the pressed key")
                run.release()
                wait_for(lambda: self.screen.picture(*key).is_like(released), "the released key")


class Knobs(StandaloneCase):
    def all_of_band(self, share_of):
        """What each knob of the bands shall keep, from its name without the band."""
        return {band + name: share_of(band, name) for band in BANDS for name in KNOBS_OF_BAND}

    def test_a_drag_of_the_whole_way(self):
        # Up from the bottom to the top in just the way's pixels; a selector does so in a few.
        run = self.start(**self.all_of_band(lambda band, name: 0.0), Mix=0.0, MasterGain=0.0, LowXOver=0.0,
                         HighXOver=0.0)
        for band in BANDS:
            for name, (way, _) in DRAGS.items():
                run.drag(band + name, up=way)
        for name in ("Mix", "HPF", "MasterGain", "LowXOver", "HighXOver"):
            run.drag(name, up=250)
        self.expect_end(run, **self.all_of_band(lambda band, name: 1.0), Mix=1.0, HPF=1.0, MasterGain=1.0, LowXOver=1.0,
                        HighXOver=1.0)

    def test_a_drag_of_half_a_way(self):
        run = self.start(**self.all_of_band(lambda band, name: 1.0))
        expected = {}
        for name, (way, detent) in DRAGS.items():
            # Down by two detents, or one where there are no more; a few pixels more do not reach the next.
            detents = 1 if name == "Meter" else 2
            run.drag("Mid" + name, up=-round(detents * detent * way) - round(0.3 * detent * way))
            expected["Mid" + name] = 1.0 - detents * detent
        run.drag("Mix", up=-100)
        run.drag("HPF", up=25)
        self.expect_end(run, **{**self.all_of_band(lambda band, name: 1.0), **expected, "Mix": 0.6, "HPF": 0.1})

    def test_sideways_is_nothing(self):
        run = self.start()
        for name in ("LowRatio", "MidGain", "HighAttack", "Mix", "MasterGain"):
            run.drag(name, right=60)
        self.expect_end(run)

    def test_it_turns_while_it_is_dragged(self):
        run = self.start()
        for name, readout, up in (("LowRatio", None, 60), ("Mix", "Mix readout", -60), ("HPF", "HPF readout", 60),
                                  ("MasterGain", "MasterGain readout", 60), ("LowXOver", "LowXOver digits", 60)):
            with self.subTest(name):
                before = {part: run.picture(part) for part in (name, readout) if part}
                run.press(name)
                x, y = run.point(name)
                run.xdotool("mousemove", x, y - up // 2, "mousemove", x, y - up)
                for part, picture in before.items():
                    run.expect_change(part, picture)
                run.release()

    def test_wheel(self):
        # A step a notch where there are steps, with Ctrl too; elsewhere a small share, with Ctrl alone a tenth of it.
        run = self.start(Mix=0.5, HPF=0.5, MasterGain=0.5)
        expected = dict(Mix=0.5 + 3 * NOTCH, HPF=0.5 - 2 * NOTCH, MasterGain=0.5 + 3 * NOTCH / 10)
        run.wheel("Mix", 3)
        run.wheel("HPF", -2)
        run.wheel("MasterGain", 3, keys=["ctrl"])
        run.wheel("LowXOver", -2, keys=["ctrl", "shift"])
        expected["LowXOver"] = NEW["LowXOver"] - 2 * NOTCH
        for name, (_, detent) in DRAGS.items():
            run.wheel("Low" + name, -1)
            expected["Low" + name] = NEW["Low" + name] - detent
            run.wheel("High" + name, -1, keys=["ctrl"])
            expected["High" + name] = NEW["High" + name] - detent
        self.expect_end(run, **expected)

    def test_wheel_stops_at_the_ends(self):
        run = self.start()
        run.wheel("LowRatio", 6)
        run.wheel("MidRatio", -6)
        run.wheel("HPF", -3)
        run.wheel("Mix", 3)
        self.expect_end(run, LowRatio=1.0, MidRatio=0.0)

    def test_double_click_resets(self):
        moved = {name: 0.0 for name in RESETS if RESETS[name] > 0.0 and name.endswith(KNOBS_OF_BAND)}
        moved.update(Mix=0.5, HPF=0.5, MasterGain=0.9, LowXOver=0.9, HighXOver=0.1)
        run = self.start(**moved)
        for name in moved:
            run.double_click(name)
        self.expect_end(run, **{name: RESETS[name] for name in moved})


    def test_a_click_with_a_key_held_leaves_it(self):
        run = self.start(LowRatio=0.0, MidGain=1.0, Mix=0.5)
        for keys in (["alt"], ["shift"], ["ctrl"]):
            for knob in ("LowRatio", "MidGain", "Mix"):
                run.click(knob, keys=keys)
        self.expect_end(run, LowRatio=0.0, MidGain=1.0, Mix=0.5)


class Linked(StandaloneCase):
    def test_knobs_and_buttons_take_the_other_bands_along(self):
        run = self.start()
        run.click("Link")
        self.expect_lamps_of_new(run, plus=["Link lamp"])
        run.drag("LowRatio", up=40)
        run.wheel("MidAttack", -1)
        run.drag("HighThreshold", up=-250)
        run.click("MidSolo")
        self.expect_lamps_of_new(run, plus=["Link lamp"] + [band + "Solo lamp" for band in BANDS])
        run.click("HighS lamp")
        self.expect_lamps_of_new(run, plus=["Link lamp"] + [band + kind for band in BANDS
                                                            for kind in ("Solo lamp", "S lamp")])
        run.click("Link")
        run.click("LowIn")
        run.drag("MidGain", up=250)
        linked = {band + name: value for band in BANDS for name, value in
                  dict(Ratio=1.0, Attack=1 / 3, Threshold=0.0, Solo=1.0, MidSide=1.0).items()}
        self.expect_end(run, **linked, LowIn=0.0, MidGain=1.0)


class Slots(StandaloneCase):
    def test_two_slots_of_settings(self):
        run = self.start()
        a_lit, to_b, b_dark = (run.picture(key) for key in ("A", "Copy", "B"))
        run.click("LowSolo")
        run.drag("HighRatio", up=40)
        self.expect_lamps_of_new(run, plus=["LowSolo lamp"])

        run.click("B")
        self.expect_lamps_of_new(run)
        run.park()
        run.expect_change("A", a_lit)
        run.expect_change("B", b_dark)
        run.expect_change("Copy", to_b)
        run.click("Nuke")
        self.expect_lamps_of_new(run, plus=["Nuke lamp"])

        run.click("A")
        self.expect_lamps_of_new(run, plus=["LowSolo lamp"])
        run.park()
        run.expect_picture("A", a_lit)
        run.expect_picture("B", b_dark)
        run.expect_picture("Copy", to_b)
        self.expect_end(run, LowSolo=1.0, HighRatio=1.0)

    def test_the_audible_slot_is_kept(self):
        run = self.start()
        run.click("LowSolo", "B", "Nuke")
        self.expect_lamps_of_new(run, plus=["Nuke lamp"])
        self.expect_end(run, Nuke=1.0)

    def test_copies(self):
        run = self.start()
        run.click("LowSolo", "Copy", "B")
        self.expect_lamps_of_new(run, plus=["LowSolo lamp"])
        run.click("Nuke", "Copy")  # now the other way round, and B stays
        self.expect_lamps_of_new(run, plus=["LowSolo lamp", "Nuke lamp"])
        run.click("MidSolo")
        self.expect_lamps_of_new(run, plus=["LowSolo lamp", "MidSolo lamp", "Nuke lamp"])
        run.click("A")
        self.expect_lamps_of_new(run, plus=["LowSolo lamp", "Nuke lamp"])
        self.expect_end(run, LowSolo=1.0, Nuke=1.0)


class Trims(StandaloneCase):
    def test_drag_wheel_and_double_click(self):
        run = self.start()
        before = run.picture("InLevel text")
        run.drag("InLevel", up=25)    # of 250 for 20 dB
        run.expect_change("InLevel text", before)
        run.wheel("OutLevel", -1)     # 0.6 dB
        self.expect_end(run, InLevel=0.6, OutLevel=0.47)

        run = self.start(InLevel=0.9, OutLevel=0.1)
        run.double_click("InLevel")
        run.drag("OutLevel", up=400)  # over the end
        self.expect_end(run, InLevel=0.5, OutLevel=1.0)

    def test_link_and_slots(self):
        run = self.start(Link=1.0)
        untouched = run.picture("InLevel text")
        run.drag("InLevel", up=50)
        run.expect_change("InLevel text", untouched)
        run.click("B")
        run.expect_picture("InLevel text", untouched)
        run.click("A")
        run.expect_change("InLevel text", untouched)
        self.expect_end(run, Link=1.0, InLevel=0.7)

    def test_a_number_typed_into_the_field(self):
        run = self.start()
        before = run.picture("OutLevel text")
        run.click("OutLevel text")
        run.xdotool("type", "--delay", 30, "2.5")
        run.xdotool("key", "Return")
        run.park()
        run.expect_change("OutLevel text", before)
        self.expect_end(run, OutLevel=0.625)


class Mono(StandaloneCase):
    def test_one_channel_has_no_mid_and_side(self):
        home = self.new_home()
        home.keep_sound_device(inputs=1)
        mono = self.start(home)
        parts = [band + part for band in BANDS for part in ("MidSide", "M lamp", "S lamp", "M label", "S label")]
        pictures = {part: mono.picture(part) for part in parts}
        mono.click(*(band + part for band in BANDS for part in ("MidSide", "M lamp", "S lamp")))
        mono.click("HighSolo")
        wait_for(lambda: mono.is_lit("HighSolo lamp"), "the lamp of a button that is there")
        mono.park()
        for part in parts:
            mono.expect_picture(part, pictures[part])
        self.expect_end(mono, HighSolo=1.0)

        home = self.new_home()
        home.keep_sound_device(inputs=2)
        stereo = self.start(home)
        for part in parts:
            self.assertFalse(stereo.picture(part).is_like(pictures[part]), part)
        stereo.click("LowS lamp")
        wait_for(lambda: stereo.is_lit("LowS lamp"), "the lamp of Side")
        self.expect_end(stereo, LowMidSide=1.0)
