#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes tools/demo/demo-loop.wav: two bars of music at 100 beats a minute, from nothing but sums.

Drums, a bass line, a singer and two backing singers: something with low, middle and high parts that
move on their own, so that one hears and sees what a three-band compressor does. Stereo, 24-bit PCM,
48 kHz, 4.8 s. The loop is exact: every sound that runs over the end goes on at the start.

    make_demo_loop.py                 writes the file beside this script
    make_demo_loop.py OUT.wav         writes another file
    make_demo_loop.py --check FILE    exit 1 unless FILE is what this script makes

Random numbers are seeded, so two runs on one machine give the same bytes. Mathematics libraries
differ in the last bit of a sine, so --check allows a sample to be off by two steps of 24 bit.

Reading order: the clock and the bus, small parts of synthesis, one function for each voice, the
score, the room, the master, the file.
"""

import argparse
import math
import pathlib
import random
import sys
import wave

RATE = 48000
BEATS_PER_MINUTE = 100
STEPS_PER_BEAT = 4
NUM_STEPS = 32
FRAMES_PER_STEP = RATE * 60 // (BEATS_PER_MINUTE * STEPS_PER_BEAT)
NUM_FRAMES = NUM_STEPS * FRAMES_PER_STEP
SWING = 0.07                        # every second step comes late by this part of a step

PEAK_DBFS = -3.0
FULL_SCALE = 2 ** 23
CHECK_TOLERANCE = 2                 # in steps of 24 bit
CONTROL_FRAMES = 32                 # slow things (formants, cutoff) are computed once in so many frames

DEFAULT_OUTPUT = pathlib.Path(__file__).resolve().parent / "demo-loop.wav"

TWO_PI = 2.0 * math.pi


# ---------------------------------------------------------------------------------------------
# The clock and the bus


def frame_of(step):
    """The frame at which a step of the score sounds; steps may be fractions."""
    late = SWING if int(step) % 2 == 1 else 0.0
    return round((step + late) * FRAMES_PER_STEP)


def hertz(note):
    """The frequency of a note by its MIDI number; 69 is the a' of 440 Hz."""
    return 440.0 * 2.0 ** ((note - 69) / 12.0)


def from_db(decibels):
    return 10.0 ** (decibels / 20.0)


class Bus:
    """A stereo loop and a mono send into the room. What is placed past the end wraps around."""

    def __init__(self):
        self.left = [0.0] * NUM_FRAMES
        self.right = [0.0] * NUM_FRAMES
        self.room_send = [0.0] * NUM_FRAMES

    def place(self, start, samples, gain, pan=0.0, room=0.0):
        """pan runs from -1, left, to 1, right, with the same power everywhere."""
        angle = (pan + 1.0) * math.pi / 4.0
        left_gain = gain * math.cos(angle) * math.sqrt(2.0)
        right_gain = gain * math.sin(angle) * math.sqrt(2.0)
        send_gain = gain * room
        left, right, send = self.left, self.right, self.room_send
        i = start % NUM_FRAMES
        for sample in samples:
            left[i] += left_gain * sample
            right[i] += right_gain * sample
            send[i] += send_gain * sample
            i += 1
            if i == NUM_FRAMES:
                i = 0


# ---------------------------------------------------------------------------------------------
# Small parts of synthesis


class StateVariableFilter:
    """Two poles, trapezoidal integration: stays in tune and stable while the cutoff moves."""

    def __init__(self, cutoff, q):
        self.first = self.second = 0.0
        self.set(cutoff, q)

    def set(self, cutoff, q):
        g = math.tan(math.pi * min(cutoff, 0.45 * RATE) / RATE)
        self.damping = 1.0 / q
        self.a1 = 1.0 / (1.0 + g * (g + self.damping))
        self.a2 = g * self.a1
        self.a3 = g * self.a2

    def run(self, x):
        """Returns low-pass, band-pass and high-pass at once."""
        v3 = x - self.second
        band = self.a1 * self.first + self.a2 * v3
        low = self.second + self.a2 * self.first + self.a3 * v3
        self.first = 2.0 * band - self.first
        self.second = 2.0 * low - self.second
        return low, band, x - self.damping * band - low


class Resonator:
    """One formant: two poles, gain 1 at 0 Hz, so that a chain of them is a vocal tract."""

    def __init__(self):
        self.y1 = self.y2 = 0.0
        self.a, self.b, self.c = 1.0, 0.0, 0.0

    def set(self, frequency, bandwidth):
        radius = math.exp(-math.pi * bandwidth / RATE)
        self.c = -radius * radius
        self.b = 2.0 * radius * math.cos(TWO_PI * frequency / RATE)
        self.a = 1.0 - self.b - self.c

    def run(self, x):
        y = self.a * x + self.b * self.y1 + self.c * self.y2
        self.y2 = self.y1
        self.y1 = y
        return y


def noise(rng):
    return 2.0 * rng.random() - 1.0


def rounded_step(phase, at, increment):
    """What must be added near a jump of height 1 at phase `at`, so that it does not alias."""
    t = (phase - at) / increment
    if -1.0 < t < 0.0:
        return 0.5 * (t + 1.0) * (t + 1.0)
    if 0.0 <= t < 1.0:
        return -0.5 * (1.0 - t) * (1.0 - t)
    return 0.0


def fade(t, length, seconds=0.004):
    """1, going to 0 over the last moments of a sound that ends before it has died away."""
    return min(1.0, max(0.0, (length - t) / seconds))


# ---------------------------------------------------------------------------------------------
# The voices: one function each, a mono list of samples for one stroke or one phrase


def kick(rng):
    """A sine that falls from 190 Hz to 50 Hz, a little bent, with a click of the beater."""
    length, base, sweep, sweep_time = 0.42, 50.0, 140.0, 0.032
    click_filter = StateVariableFilter(3200.0, 0.8)
    out = []
    for n in range(round(length * RATE)):
        t = n / RATE
        phase = TWO_PI * (base * t + sweep * sweep_time * (1.0 - math.exp(-t / sweep_time)))
        body = math.tanh(1.7 * math.sin(phase) * math.exp(-t / 0.15))
        click = click_filter.run(noise(rng) * math.exp(-t / 0.003))[0]
        out.append((body + 0.5 * click) * fade(t, length, 0.05))
    return out


def snare(rng):
    """Two modes of the skin and the rattle of the wires, which last longer than the skin."""
    length = 0.36
    wires_high, wires_low = StateVariableFilter(1500.0, 0.7), StateVariableFilter(9000.0, 0.7)
    out = []
    for n in range(round(length * RATE)):
        t = n / RATE
        bend = 1.0 + 0.25 * math.exp(-t / 0.012)
        skin = (math.sin(TWO_PI * 188.0 * bend * t) * math.exp(-t / 0.060)
                + 0.55 * math.sin(TWO_PI * 327.0 * bend * t) * math.exp(-t / 0.05))
        wires = wires_low.run(wires_high.run(noise(rng))[2])[0]
        rattle = wires * (0.85 * math.exp(-t / 0.110) + 0.8 * math.exp(-t / 0.012))
        out.append(math.tanh(0.6 * skin + rattle) * fade(t, length, 0.03))
    return out


def hat(rng, decay, length):
    """Six tones with no common root, as of a plate of metal, and hiss, above 6.5 kHz."""
    tones = (2311.0, 2967.0, 3389.0, 4127.0, 5471.0, 6343.0)
    phases = [rng.random() for _ in tones]
    filters = StateVariableFilter(6500.0, 0.8), StateVariableFilter(6500.0, 0.7)
    air = StateVariableFilter(13500.0, 0.6)
    out = []
    for n in range(round(length * RATE)):
        t = n / RATE
        metal = 0.0
        for k, tone in enumerate(tones):
            metal += 1.0 if (phases[k] + tone * t) % 1.0 < 0.5 else -1.0
        sound = 0.16 * metal + 0.7 * noise(rng)
        for each in filters:
            sound = each.run(sound)[2]
        sound = air.run(sound)[0]
        strike = min(1.0, t / 0.0004)
        out.append(sound * strike * math.exp(-t / decay) * fade(t, length, 0.012))
    return out


def bass(note, seconds, slide_from=None, accent=1.0):
    """A saw and a square through a low-pass that closes as a plucked string does, and a sine below.

    With slide_from the note glides up or down from there.
    """
    release = 0.05
    lowpass = StateVariableFilter(400.0, 2.2)
    phase, out = 0.0, []
    target = math.log2(hertz(note))
    pitch = math.log2(hertz(slide_from)) if slide_from is not None else target
    glide = 1.0 - math.exp(-CONTROL_FRAMES / (0.055 * RATE))
    increment = 0.0
    for n in range(round((seconds + release) * RATE)):
        t = n / RATE
        if n % CONTROL_FRAMES == 0:
            pitch += (target - pitch) * glide
            increment = 2.0 ** pitch / RATE
            lowpass.set(220.0 + 2600.0 * accent * math.exp(-t / 0.11) + 260.0 * math.exp(-t / 0.6), 2.2)

        half = (phase + 0.5) % 1.0
        # Both sides of the jump are looked up: it lies at phase 0, which is phase 1 as well.
        jump = rounded_step(phase, 0.0, increment) + rounded_step(phase, 1.0, increment)
        half_jump = rounded_step(half, 0.0, increment) + rounded_step(half, 1.0, increment)
        saw = 2.0 * phase - 1.0 - 2.0 * jump
        square = (1.0 if phase < 0.5 else -1.0) + 2.0 * jump - 2.0 * half_jump
        sub = math.sin(TWO_PI * phase)

        envelope = min(1.0, t / 0.004) * (0.72 + 0.28 * math.exp(-t / 0.12)) * fade(t, seconds + release, release)
        plucked = lowpass.run(0.6 * saw + 0.28 * square)[0]
        out.append(math.tanh(1.1 * (0.75 * plucked + 0.35 * sub)) * envelope)

        phase += increment
        if phase >= 1.0:
            phase -= 1.0
    return out


# Frequency and bandwidth of five formants, in Hz. The upper three stand close, as a trained
# singer's do: the ring near 3 kHz that carries a voice over a band.
VOWELS = {
    "ah": ((690.0, 80.0), (1120.0, 90.0), (2550.0, 120.0), (2950.0, 130.0), (3400.0, 180.0)),
    "eh": ((520.0, 70.0), (1720.0, 100.0), (2520.0, 120.0), (3050.0, 140.0), (3500.0, 190.0)),
    "ee": ((300.0, 55.0), (2120.0, 100.0), (2750.0, 130.0), (3200.0, 150.0), (3650.0, 200.0)),
    "oh": ((450.0, 65.0), (830.0, 80.0), (2500.0, 120.0), (2900.0, 130.0), (3350.0, 180.0)),
    "oo": ((330.0, 60.0), (720.0, 80.0), (2400.0, 130.0), (2850.0, 140.0), (3300.0, 190.0)),
}

# How a syllable begins: seconds before the vowel, voicing meanwhile, hiss meanwhile, and the first
# three formants from where the mouth opens.
ONSETS = {
    "":  (0.0, 1.0, 0.0, None),
    "d": (0.040, 0.06, 0.0, (260.0, 1750.0, 2650.0)),
    "l": (0.045, 0.45, 0.0, (340.0, 1150.0, 2800.0)),
    "s": (0.105, 0.0, 1.0, (300.0, 1650.0, 2600.0)),
}


class Singer:
    """What makes one throat differ from another."""

    def __init__(self, seed, tract=1.0, vibrato_rate=5.3, vibrato_cents=32.0, breath=0.03, open_part=0.6):
        self.rng = random.Random(seed)
        self.tract = tract                      # scales all formants: above 1 is a shorter throat
        self.vibrato_rate = vibrato_rate
        self.vibrato_cents = vibrato_cents
        self.breath = breath
        self.open_part = open_part              # share of a cycle in which the glottis is open


def sing(singer, syllables):
    """One phrase in one breath. syllables: (step, steps, note, vowel, onset, loudness), in order.

    The source is the slope of the air flow through the glottis, after D. H. Klatt and L. C. Klatt
    (J. Acoust. Soc. Am. 87, 1990): a parabola's worth of opening and a sudden closure.
    """
    rng, tract = singer.rng, singer.tract
    lead_in, tail = 0.12, 0.25                  # room for the first consonant, and for the last decay
    origin = frame_of(syllables[0][0]) - round(lead_in * RATE)
    marks = [((frame_of(step) - origin) / RATE, (frame_of(step + steps) - origin) / RATE,
              math.log2(hertz(note)), VOWELS[vowel], ONSETS[onset], loudness)
             for step, steps, note, vowel, onset, loudness in syllables]
    num_frames = round((marks[-1][1] + tail) * RATE)

    pitch = marks[0][2] - 1.5 / 12.0            # scoops up into the first note
    formants = [list(each) for each in marks[0][3]]
    resonators = [Resonator() for _ in formants]
    presence_filter = StateVariableFilter(1700.0, 0.6)
    top_filter = StateVariableFilter(4200.0, 0.7)
    hiss_filter = StateVariableFilter(6300.0, 1.3)
    breath_filter = StateVariableFilter(1500.0, 0.7)
    voicing = hiss = wander = 0.0
    phase, increment, current = 0.0, 200.0 / RATE, 0
    tilt = 0.0

    def toward(seconds):
        return 1.0 - math.exp(-CONTROL_FRAMES / (seconds * RATE))

    pitch_speed, formant_speed, attack, release = toward(0.028), toward(0.032), toward(0.014), toward(0.045)
    hiss_speed = toward(0.012)
    voicing_target = hiss_target = 0.0
    out = []
    for n in range(num_frames):
        if n % CONTROL_FRAMES == 0:
            t = n / RATE
            # The coming syllable takes over as soon as its consonant begins.
            while current + 1 < len(marks) and t >= marks[current + 1][0] - marks[current + 1][4][0]:
                current += 1
            begin, end, note, vowel, (before, held, onset_hiss, locus), loudness = marks[current]
            in_onset = begin - before <= t < begin
            sounding = begin <= t < end
            voicing_target = loudness * (held if in_onset else 1.0 if sounding else 0.0)
            hiss_target = loudness * onset_hiss if in_onset else 0.0

            wander += (noise(rng) * 0.03 - wander) * 0.02
            swell = min(1.0, max(0.0, (t - begin - 0.14) / 0.22))
            vibrato = swell * singer.vibrato_cents * math.sin(TWO_PI * singer.vibrato_rate * t) / 1200.0
            pitch += (note - pitch) * pitch_speed
            increment = 2.0 ** (pitch + vibrato + wander) / RATE

            for k, (resonator, goal) in enumerate(zip(resonators, vowel)):
                goal_frequency = locus[k] if in_onset and locus is not None and k < 3 else goal[0]
                formants[k][0] += (goal_frequency - formants[k][0]) * formant_speed
                formants[k][1] += (goal[1] - formants[k][1]) * formant_speed
                resonator.set(formants[k][0] * tract, formants[k][1])
            old_voicing = voicing
            voicing += (voicing_target - voicing) * (attack if voicing_target > voicing else release)
            voicing_slope = (voicing - old_voicing) / CONTROL_FRAMES
            hiss += (hiss_target - hiss) * hiss_speed
            level = old_voicing

        level += voicing_slope
        opened = phase / singer.open_part
        flow_slope = 2.0 * opened - 3.0 * opened * opened if opened < 1.0 else 0.0
        flow_slope += rounded_step(phase, singer.open_part, increment)
        tilt += (flow_slope - tilt) * 0.42      # a soft closure: less of the top
        air = breath_filter.run(noise(rng))[2] * (1.0 if opened < 1.0 else 0.35)

        source = level * (tilt + singer.breath * air)
        sound = source
        for resonator in resonators:
            sound = resonator.run(sound)
        # A throat has more formants than five, and they lift the top: these two stand in for them.
        sound += 4.5 * presence_filter.run(sound)[2]
        sound += 0.9 * top_filter.run(source)[2]
        sound += hiss * hiss_filter.run(noise(rng))[1]
        out.append(sound)

        phase += increment
        if phase >= 1.0:
            phase -= 1.0
    return origin, out


# ---------------------------------------------------------------------------------------------
# The score: D minor seventh for a bar, then B flat and C

KICKS = ((0, 1.0), (7, 0.72), (10, 0.92), (16, 1.0), (19, 0.6), (23, 0.72), (26, 0.95))
SNARES = ((4, 1.0), (9, 0.16), (12, 0.95), (15, 0.2), (20, 1.0), (25, 0.18), (28, 0.97), (31, 0.3))
OPEN_HATS = ((14, 0.75), (30, 0.8))
CLOSED_HATS = ((0, 0.85), (2, 0.6), (4, 0.8), (5, 0.3), (6, 0.62), (8, 0.85), (10, 0.6), (11, 0.32), (12, 0.8),
               (16, 0.85), (18, 0.6), (20, 0.8), (21, 0.35), (22, 0.62), (24, 0.85), (26, 0.6), (27, 0.36),
               (28, 0.8), (29, 0.3))

# step, steps, note, note to slide from, accent
BASS_LINE = (
    (0, 2.7, 38, None, 1.0), (3, 0.8, 38, None, 0.5), (6, 0.8, 50, None, 1.2), (7, 2.4, 38, 36, 0.8),
    (10, 1.7, 45, None, 0.8), (12, 1.0, 36, None, 0.6), (14, 1.8, 38, 33, 0.8),
    (16, 2.7, 34, None, 1.0), (19, 0.8, 34, None, 0.5), (22, 0.8, 46, None, 1.2), (23, 0.9, 34, 41, 0.7),
    (24, 2.7, 36, None, 1.0), (27, 0.8, 36, None, 0.5), (28, 1.5, 40, None, 0.8), (30, 1.7, 36, 43, 0.9),
)

LEAD_PHRASES = (
    ((1.5, 1.2, 57, "ah", "d", 0.85), (3, 1.7, 60, "oh", "l", 1.0), (5, 1.4, 57, "eh", "d", 0.8),
     (7, 1.6, 55, "ee", "s", 0.85), (9, 4.3, 57, "ah", "l", 1.0)),
    ((17.5, 1.3, 62, "ah", "s", 1.0), (19, 1.6, 60, "eh", "l", 0.9), (21, 1.5, 57, "ee", "d", 0.8),
     (23, 1.2, 55, "oh", "", 0.8), (24.5, 5.0, 55, "ah", "s", 1.0)),
)

BACKING_PHRASES_LEFT = (
    ((0, 7.5, 53, "oo", "", 0.7), (8, 6.5, 57, "oh", "", 1.0)),
    ((16, 7.7, 58, "oo", "", 0.8), (24, 6.8, 55, "oh", "", 1.0)),
)
BACKING_PHRASES_RIGHT = (
    ((0, 7.5, 60, "oo", "", 0.7), (8, 6.5, 60, "oh", "", 1.0)),
    ((16, 7.7, 62, "oo", "", 0.8), (24, 6.8, 64, "oh", "", 1.0)),
)


def play_drums(bus):
    rng = random.Random(0x5107)
    for step, velocity in KICKS:
        bus.place(frame_of(step), kick(rng), from_db(-8.5) * velocity, room=0.05)
    for step, velocity in SNARES:
        bus.place(frame_of(step), snare(rng), from_db(-6.5) * velocity, pan=-0.08, room=0.32)
    for step, velocity in CLOSED_HATS:
        bus.place(frame_of(step), hat(rng, 0.034, 0.16), from_db(-10.0) * velocity, pan=0.4, room=0.10)
    for step, velocity in OPEN_HATS:
        # The pedal closes it at the next beat.
        bus.place(frame_of(step), hat(rng, 0.22, 0.29), from_db(-11.5) * velocity, pan=0.4, room=0.12)


def play_bass(bus):
    for step, steps, note, slide_from, accent in BASS_LINE:
        seconds = steps * FRAMES_PER_STEP / RATE
        bus.place(frame_of(step), bass(note, seconds, slide_from, accent), from_db(-8.3), room=0.02)


def play_singers(bus):
    lead = Singer(0x1ead)
    for phrase in LEAD_PHRASES:
        start, samples = sing(lead, phrase)
        bus.place(start, samples, from_db(-21.5), pan=0.03, room=0.32)

    sides = (
        (Singer(0x0b01, tract=1.06, vibrato_rate=4.7, vibrato_cents=20.0, breath=0.10, open_part=0.72),
         BACKING_PHRASES_LEFT, -0.75),
        (Singer(0x0b02, tract=1.12, vibrato_rate=5.0, vibrato_cents=22.0, breath=0.10, open_part=0.70),
         BACKING_PHRASES_RIGHT, 0.75),
    )
    for singer, phrases, pan in sides:
        for phrase in phrases:
            start, samples = sing(singer, phrase)
            bus.place(start, samples, from_db(-23.0), pan=pan, room=0.5)


# ---------------------------------------------------------------------------------------------
# The room, the master, the file

# Milliseconds, left gain, right gain: walls of a small room, no two paths alike.
EARLY_REFLECTIONS = ((7.3, 0.55, 0.20), (9.1, 0.18, 0.52), (13.7, 0.42, -0.25), (17.9, -0.22, 0.40),
                     (23.3, 0.30, 0.17), (27.1, 0.15, -0.31))
TAIL_DELAYS_MS = (31.3, 37.9, 41.7, 47.3)
TAIL_FEEDBACK = 0.66
TAIL_DAMPING = 0.45


def room(send):
    """Early reflections, then four crossed delays whose ends feed one another.

    Delays are read around the loop. The tail is run through it twice and only the second turn is
    kept: by then it has forgotten that it began with silence.
    """
    left, right, early = [0.0] * NUM_FRAMES, [0.0] * NUM_FRAMES, [0.0] * NUM_FRAMES
    for milliseconds, left_gain, right_gain in EARLY_REFLECTIONS:
        delay = round(milliseconds * RATE / 1000.0)
        for i in range(NUM_FRAMES):
            sample = send[i - delay]            # a negative index is the end of the loop before
            left[i] += left_gain * sample
            right[i] += right_gain * sample
            early[i] += 0.5 * (left_gain + right_gain) * sample

    lines = [[0.0] * round(each * RATE / 1000.0) for each in TAIL_DELAYS_MS]
    places, damped = [0] * len(lines), [0.0] * len(lines)
    for turn in range(2):
        for i in range(NUM_FRAMES):
            ends = [line[place] for line, place in zip(lines, places)]
            half_sum = 0.5 * sum(ends)          # a Householder reflection: mixes and keeps the power
            for k, end in enumerate(ends):
                damped[k] += (end - half_sum - damped[k]) * (1.0 - TAIL_DAMPING)
                lines[k][places[k]] = early[i] + TAIL_FEEDBACK * damped[k]
                places[k] = (places[k] + 1) % len(lines[k])
            if turn == 1:
                left[i] += 0.45 * (ends[0] - ends[2])
                right[i] += 0.45 * (ends[1] - ends[3])
    return left, right


def without_rumble(samples):
    """High-pass at 24 Hz, twice around the loop for the same reason as the room, then no DC at all."""
    highpass = StateVariableFilter(24.0, 0.7)
    for sample in samples:
        highpass.run(sample)
    out = [highpass.run(sample)[2] for sample in samples]
    mean = math.fsum(out) / len(out)
    return [sample - mean for sample in out]


def make_loop():
    """Left and right, as whole numbers of 24 bit."""
    bus = Bus()
    play_drums(bus)
    play_bass(bus)
    play_singers(bus)

    sides = []
    for dry, wet in zip((bus.left, bus.right), room(bus.room_send)):
        sides.append(without_rumble([a + b for a, b in zip(dry, wet)]))

    peak = max(abs(sample) for side in sides for sample in side)
    scale = from_db(PEAK_DBFS) * FULL_SCALE / peak
    return [[round(scale * sample) for sample in side] for side in sides]


def write_wav(path, sides):
    data = b"".join(value.to_bytes(3, "little", signed=True) for frame in zip(*sides) for value in frame)
    with wave.open(str(path), "wb") as file:
        file.setnchannels(len(sides))
        file.setsampwidth(3)
        file.setframerate(RATE)
        file.writeframes(data)


def read_wav(path):
    with wave.open(str(path), "rb") as file:
        shape = file.getnchannels(), file.getsampwidth(), file.getframerate(), file.getnframes()
        if shape != (2, 3, RATE, NUM_FRAMES):
            raise ValueError(f"channels, bytes, rate, frames are {shape}, not {(2, 3, RATE, NUM_FRAMES)}")
        data = file.readframes(NUM_FRAMES)
    values = [int.from_bytes(data[i:i + 3], "little", signed=True) for i in range(0, len(data), 3)]
    return [values[0::2], values[1::2]]


def main():
    parser = argparse.ArgumentParser(description="Makes the demonstration loop.")
    parser.add_argument("output", nargs="?", type=pathlib.Path, default=DEFAULT_OUTPUT,
                        help="file to write (default: demo-loop.wav beside this script)")
    parser.add_argument("--check", metavar="FILE", type=pathlib.Path,
                        help="write nothing; exit 1 unless FILE is what would be written")
    arguments = parser.parse_args()

    if arguments.check is None:
        write_wav(arguments.output, make_loop())
        return 0

    try:
        found = read_wav(arguments.check)
    except (OSError, EOFError, ValueError, wave.Error) as error:
        print(f"{arguments.check}: {error}", file=sys.stderr)
        return 1

    worst = max(abs(a - b) for side, made in zip(found, make_loop()) for a, b in zip(side, made))
    if worst > CHECK_TOLERANCE:
        print(f"{arguments.check}: differs from what {pathlib.Path(__file__).name} makes "
              f"by up to {worst} steps of 24 bit", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
