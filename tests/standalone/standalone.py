# SPDX-License-Identifier: GPL-3.0-or-later
"""The Standalone as a user has it: started, looked at, taken by the mouse, closed, and its last state read."""

import os
import pathlib
import re
import shlex
import subprocess
import time

from panel_places import BANDS, BAR, HEIGHTS, LAMPS, LAMP_COLOURS, place

PROGRAM = os.environ.get("CORVANE_STANDALONE", "")

PATIENCE = 60.0  # s, for what takes a tenth of a second on an idle machine: a busy one may take its time
TICK = 0.02      # s, between two looks
STILLNESS = 0.4  # s

# Events that the framework reads from the X server while it asks it something else lie until the next one wakes it. A
# hand on a mouse always makes a next one; these runs get one without meaning whenever nothing has come for a while.
_runs = []

LEFT, WHEEL_UP, WHEEL_DOWN = 1, 4, 5

# The framework's frame around the editor, in px: its own line at the sides and below.
FRAME_LINE = 1


def wait_for(condition, what, patience=PATIENCE):
    """Looks until the condition holds, and gives what it gave."""
    now = time.monotonic()
    end, next_nudge = now + patience, now + STILLNESS
    while True:
        result = condition()
        if result:
            return result
        now = time.monotonic()
        if now > end:
            raise AssertionError("waited in vain: " + what)
        if now > next_nudge:
            next_nudge = now + STILLNESS
            for run in _runs:
                run.nudge()
        time.sleep(TICK)


# ---- the settings file of the Standalone -------------------------------------------------------
# The framework's own base 64: six bits a letter with the low bits first, and the number of bytes in front.
LETTERS = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+"


def to_letters(content):
    number = int.from_bytes(content, "little")
    return f"{len(content)}." + "".join(LETTERS[(number >> bit) & 63] for bit in range(0, len(content) * 8, 6))


def from_letters(text):
    length, letters = text.split(".", 1)
    number = sum(LETTERS.index(letter) << (6 * i) for i, letter in enumerate(letters))
    return number.to_bytes((len(letters) * 6 + 7) // 8, "little")[:int(length)]


class Home:
    """A home folder with the files that the Standalone reads and writes, and with programs that stand in for others."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.settings = self.folder / ".config" / "Corvane Q7.settings"
        self.defaults = self.folder / "Corvane Plugins" / "Corvane Q7.settings"
        self.opened = self.folder / "opened"
        self.programs = self.folder / "programs"
        self.programs.mkdir()
        (self.folder / ".config").mkdir()
        # A list of sound devices with nothing in it. Its path must bear no blank.
        self.sound_devices = self.folder / "sound-devices"
        self.sound_devices.touch()
        for name in ("xdg-open", "firefox", "mozilla", "google-chrome", "chromium-browser", "opera", "konqueror"):
            stand_in = self.programs / name
            stand_in.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$*\" >> {shlex.quote(str(self.opened))}\n")
            stand_in.chmod(0o755)

    def environment(self, screen_environment):
        environment = dict(screen_environment, HOME=str(self.folder),
                           PATH=f"{self.programs}:{screen_environment['PATH']}",
                           ALSA_CONFIG_PATH=str(self.sound_devices), JACK_NO_START_SERVER="1")
        for name, place_in_home in (("CONFIG", ".config"), ("CACHE", ".cache"), ("DATA", ".local/share"),
                                    ("STATE", ".local/state")):
            environment[f"XDG_{name}_HOME"] = str(self.folder / place_in_home)
        return environment

    def opened_addresses(self):
        return self.opened.read_text().splitlines() if self.opened.exists() else []

    def keep_state(self, block):
        """What a session before has left."""
        self.settings.write_text('<?xml version="1.0" encoding="UTF-8"?>\n<PROPERTIES>\n  <VALUE name="filterState" '
                                 f'val="{to_letters(block)}"/>\n</PROPERTIES>\n')

    def keep_sound_device(self, inputs):
        """A device that swallows all and gives silence, in use for that many inputs and two outputs."""
        self.sound_devices.write_text("pcm.default { type null }\n")
        self.settings.write_text(
            '<PROPERTIES>\n<VALUE name="audioSetup"><DEVICESETUP deviceType="ALSA" '
            'audioOutputDeviceName="Default ALSA Output" audioInputDeviceName="Default ALSA Input" '
            f'audioDeviceRate="48000.0" audioDeviceInChans="{"1" * inputs}" audioDeviceOutChans="11"/></VALUE>\n'
            '<VALUE name="shouldMuteInput" val="0"/>\n</PROPERTIES>\n')

    def keep_defaults(self, **values):
        self.defaults.parent.mkdir(exist_ok=True)
        rows = "".join(f'<VALUE name="{name}" val="{value}"/>' for name, value in values.items())
        self.defaults.write_text(f'<?xml version="1.0" encoding="UTF-8"?>\n<PROPERTIES>{rows}</PROPERTIES>\n')

    def values(self, path):
        return dict(re.findall(r'name="([^"]*)" val="([^"]*)"', path.read_text())) if path.exists() else {}

    def state_block(self):
        return from_letters(self.values(self.settings)["filterState"])


def parse_state(block):
    """The attributes of a session block; those that are numbers, as numbers."""
    assert block[:4] == bytes.fromhex("56433221"), block[:8]
    return {name: text if name == "Version" else float(text)
            for name, text in re.findall(rb'(\w+)="([^"]*)"'.decode(), block[8:-1].decode())}


def make_state(attributes):
    text = ("<CQ7SETTINGS" + "".join(f' {name}="{value}"' for name, value in attributes.items()) + "/>").encode()
    return bytes.fromhex("56433221") + len(text).to_bytes(4, "little") + text + b"\0"


# ---- the running program -----------------------------------------------------------------------
class Standalone:
    """One run of the program."""

    def __init__(self, screen, environment, home):
        self.screen, self.home = screen, home
        self.environment = home.environment(environment)
        self.id = None
        self.log = home.folder / "log"
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen([PROGRAM], env=self.environment, cwd=home.folder, stdin=subprocess.DEVNULL,
                                            stdout=log, stderr=subprocess.STDOUT)
        _runs.append(self)

    # ---- its life ---------------------------------------------------------------------------
    def wait_until_shown(self, width=None):
        """Waits for the first picture of the whole editor, its pointer out of the way."""
        self.settle(width)
        self.park()
        return self

    def settle(self, width):
        """Waits for the picture of an editor of that width, wherever its window has come to stand meanwhile."""
        def is_there():
            self.locate(width)
            return self.is_painted()

        wait_for(is_there, "the editor's picture")

    def is_alive(self):
        return self.process.poll() is None

    def window(self):
        if not self.is_alive():
            raise AssertionError(f"it ended with {self.process.returncode}: {self.log.read_text()}")
        # The lowest is the first one made; menus of the framework's frame lie above.
        windows = self.screen.windows_of(self.process.pid)
        return windows[-1] if windows else None

    def locate(self, width=None):
        """Finds the window, which may have to reach a width first, and the editor within."""
        def right_window():
            window = self.window()
            return window if window and width in (None, window[3] - 2 * FRAME_LINE) else None

        self.id, x, y, w, h = wait_for(right_window, f"a window for an editor {width or ''} wide")
        self.width = w - 2 * FRAME_LINE
        self.height = HEIGHTS.get(self.width) or int(self.width / 1350 * 723)
        self.x, self.y = x + FRAME_LINE, y + h - FRAME_LINE - self.height
        self.frame = (x, y, w, h)

    def is_painted(self):
        try:
            self.is_lit("Bypass lamp")
            return self.is_lit("LowIn lamp") is not None and self.screen.pixel(self.x + 140, self.y + 2) == 0
        except LookupError:
            return False

    def close_button(self):
        """The framework's own, at the right of its title."""
        x, y, w, _ = self.frame
        return x + w - 17, y + 14

    def ended(self):
        """Waits for the end and gives the exit status."""
        wait_for(lambda: not self.is_alive(), "its end")
        return self.process.returncode

    def ask_to_close(self):
        self.screen.ask_to_close(self.id)

    def close(self):
        """Closes the window and gives the state that the program leaves."""
        self.ask_to_close()
        status = self.ended()
        if status:
            raise AssertionError(f"it ended with {status}: {self.log.read_text()}")
        return parse_state(self.home.state_block())

    def kill(self):
        _runs.remove(self)
        if self.is_alive():
            self.process.kill()
        self.process.wait()

    def nudge(self):
        if self.id is not None and self.is_alive():
            self.screen.nudge(self.id)

    # ---- the mouse --------------------------------------------------------------------------
    def xdotool(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True, timeout=60)

    def place(self, name):
        """A control's rectangle on the screen."""
        x, y, w, h = place(name, self.width, self.height)
        return self.x + x, self.y + y, w, h

    def point(self, where):
        """A place on the screen: the middle of a named control, or x and y within the editor."""
        if isinstance(where, str):
            x, y, w, h = self.place(where)
            return x + w // 2, y + h // 2
        return self.x + where[0], self.y + where[1]

    def move(self, where):
        self.xdotool("mousemove", *self.point(where))

    def park(self):
        """To the right of the logo, where nothing takes notice of it."""
        self.move((self.width // 2, self.height - BAR // 2))

    def with_keys(self, keys, words):
        """The words with modifier keys held."""
        held = [word for key in keys for word in ("keydown", key)]
        return held + list(words) + [word for key in reversed(keys) for word in ("keyup", key)]

    def click(self, *places, keys=()):
        for where in places:
            self.xdotool("mousemove", *self.point(where), *self.with_keys(keys, ("click", LEFT)))

    def double_click(self, where):
        self.xdotool("mousemove", *self.point(where), "click", "--repeat", 2, "--delay", 40, LEFT)

    def press(self, where):
        self.xdotool("mousemove", *self.point(where), "mousedown", LEFT)

    def release(self):
        self.xdotool("mouseup", LEFT)

    def drag(self, where, up=0, right=0, keys=()):
        """Holds, moves in a few strides, lets go."""
        x, y = self.point(where)
        strides = [word for i in range(1, 5)
                   for word in ("mousemove", x + round(right * i / 4), y - round(up * i / 4))]
        self.xdotool("mousemove", x, y, *self.with_keys(keys, ("mousedown", LEFT, *strides, "mouseup", LEFT)))

    def wheel(self, where, steps, keys=()):
        """Turns the wheel, up for steps above 0. Events with the same time stamp count once, hence the pause."""
        turns = ("click", "--repeat", abs(steps), "--delay", 15, WHEEL_UP if steps > 0 else WHEEL_DOWN)
        self.xdotool("mousemove", *self.point(where), *self.with_keys(keys, turns))

    # ---- what is seen -----------------------------------------------------------------------
    def picture(self, name):
        return self.screen.picture(*self.place(name))

    def picture_of(self, x, y, width, height):
        return self.screen.picture(self.x + x, self.y + y, width, height)

    def picture_of_all(self):
        return self.picture_of(0, 0, self.width, self.height)

    def is_lit(self, lamp):
        """By the colour in the lamp's middle. Its neighbours may bleed in a little where the picture is scaled."""
        pixel = self.screen.pixel(*self.point(lamp))
        distances = [max(abs((pixel >> shift & 255) - (colour >> shift & 255)) for shift in (0, 8, 16))
                     for colour in LAMP_COLOURS[LAMPS[lamp]]]
        if min(distances) > 24:
            raise LookupError(f"{lamp} shows {pixel:06x}, which is neither on nor off")
        return distances[1] < distances[0]

    def lamps(self):
        return {lamp for lamp in LAMPS if self.is_lit(lamp)}

    def expect_lamps(self, *lit):
        """Waits until these lamps are lit and no others."""
        try:
            wait_for(lambda: self.lamps() == set(lit), "lamps")
        except AssertionError:
            raise AssertionError(f"lit: {sorted(self.lamps())}, expected: {sorted(lit)}") from None

    def expect_change(self, name, before):
        return wait_for(lambda: self.picture(name) != before, f"another picture of {name}") and self.picture(name)

    def expect_picture(self, name, expected):
        wait_for(lambda: self.picture(name).is_like(expected), f"the same picture of {name}")


LAMPS_OF_A_NEW_INSTANCE = {band + "In lamp" for band in BANDS} | {"Bypass lamp", "Niveau lamp"}
