# SPDX-License-Identifier: GPL-3.0-or-later
"""What the renderer's tests share: a folder and a home of their own, signals, and how to ask for an end."""

import math
import os
import pathlib
import random
import signal
import struct
import subprocess
import tempfile
import time
import unittest

from session_blocks import read_state
from sound_files import read_wav, write_wav

RENDERER = os.environ.get("CORVANE_RENDER", "")

OK, USAGE, INPUT, OUTPUT = 0, 2, 3, 4


def to_float32(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


def noise(num_frames, channels=1, seed=1, peak=0.5):
    source = random.Random(seed)
    return [tuple(to_float32(source.uniform(-peak, peak)) for _ in range(channels)) for _ in range(num_frames)]


def sine(num_frames, hz, peak, rate=48000, channels=1):
    return [(peak * math.sin(2.0 * math.pi * hz * i / rate),) * channels for i in range(num_frames)]


def decibels(linear):
    return 20.0 * math.log10(linear)


def rms(frames):
    samples = [sample for frame in frames for sample in frame]
    return math.sqrt(math.fsum(x * x for x in samples) / len(samples))


def hear_all_signals():
    """Whatever the tests themselves were started to ignore, in the background or by nohup."""
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGPIPE, signal.SIGTERM, signal.SIGXCPU):
        signal.signal(number, signal.SIG_DFL)


class RendererCase(unittest.TestCase):
    def setUp(self):
        self.assertTrue(RENDERER, "CORVANE_RENDER must hold the path of corvane-render")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "work"
        self.home = pathlib.Path(folder.name) / "home"
        self.folder.mkdir()
        self.home.mkdir()

    def path(self, name):
        return self.folder / name

    def start(self, *arguments, preexec_fn=lambda: None, stderr=subprocess.PIPE, **more):
        environment = dict(os.environ, HOME=str(self.home))

        def prepare():
            hear_all_signals()
            preexec_fn()

        return subprocess.Popen([RENDERER, *map(str, arguments)], cwd=self.folder, env=environment,
                                stdout=subprocess.PIPE, stderr=stderr, text=True, preexec_fn=prepare, **more)

    def run_renderer(self, *arguments, **more):
        process = self.start(*arguments, **more)
        try:
            process.out, process.err = process.communicate(timeout=120)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            self.fail("it did not end within two minutes")
        return process

    def wait_for_part(self, process):
        """The name of the file that is being written; the program has begun and is not done."""
        deadline = time.monotonic() + 60.0
        while process.poll() is None and time.monotonic() < deadline:
            for part in self.folder.glob(".corvane-render-*"):
                return part.name
            time.sleep(0.005)
        process.kill()
        self.fail(f"nothing is being written: {process.communicate()}")

    def start_endless(self, *arguments, **more):
        """A render that takes far longer than any test: at 1 frame a block and factor 16 ten minutes of tail."""
        process = self.start(*arguments, "--tail", "600", "--oversampling", "16", "--block", "1", **more)
        return process, self.wait_for_part(process)

    def succeed(self, *arguments):
        """Runs it and returns what it printed."""
        process = self.run_renderer(*arguments)
        self.assertEqual((process.returncode, process.err), (OK, ""))
        return process.out

    def refuse(self, status, pattern, *arguments, **more):
        """Runs it and holds it to one line of complaint, and to a folder that stays as it was."""
        before = self.folder_content()
        process = self.run_renderer(*arguments, **more)
        self.assertEqual(process.returncode, status, process.err)
        self.assertRegex(process.err, r"\Acorvane-render: [^\n]*\n\Z")
        self.assertRegex(process.err, pattern)
        self.assertEqual(process.out, "")
        self.expect_folder(before)

    def attributes(self, *words):
        """The attributes of the session block that the words lead to."""
        self.succeed(*words, "--save-state", self.path("state of words"), "--force")
        return read_state(self.path("state of words"))

    def folder_content(self):
        return {file.name: file.read_bytes() for file in self.folder.iterdir() if file.is_file()}

    def expect_folder(self, expected):
        found = self.folder_content()
        self.assertEqual(sorted(found), sorted(expected))
        self.assertEqual([name for name in found if found[name] != expected[name]], [])

    def expect_frames(self, found, expected):
        """Equality of sounds. The first difference tells enough, and a list of all of them takes minutes to make."""
        self.assertEqual(len(found), len(expected))
        for i, (one, other) in enumerate(zip(found, expected)):
            if one != other:
                self.fail(f"frame {i} of {len(found)} is {one}, not {other}")

    def render(self, source, *options, name="out.wav"):
        """Renders a path, or frames, and returns the sound that comes out."""
        if isinstance(source, list):
            source = write_wav(self.path("in.wav"), source)
        self.succeed(source, self.path(name), "--quiet", "--force", *options)
        return read_wav(self.path(name))
