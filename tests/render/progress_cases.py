# SPDX-License-Identifier: GPL-3.0-or-later
"""What a terminal shows while a render runs. A pseudo-terminal stands in for it."""

import os
import pty
import re
import signal
import subprocess
import threading

from renderer_case import INPUT, OK, RENDERER, RendererCase, hear_all_signals, noise
from sound_files import write_flac, write_wav

CLEARED = "\r" + " " * 40 + "\r"


class Progress(RendererCase):
    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(30000, 2))

    def on_terminal(self, *words, while_it_runs=lambda process: None):
        """Exit status, what the terminal showed of the standard error output, and the standard output."""
        ours, theirs = pty.openpty()
        process = subprocess.Popen([RENDERER, *map(str, words)], cwd=self.folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=theirs, text=True, preexec_fn=hear_all_signals)
        os.close(theirs)
        shown = b""
        patience = threading.Timer(120.0, process.kill)
        patience.start()
        try:
            while_it_runs(process)
            while True:
                try:
                    part = os.read(ours, 4096)
                except OSError:     # all ends of the terminal but this one are closed
                    break
                if not part:
                    break
                shown += part
            output, _ = process.communicate(timeout=60)
        finally:
            patience.cancel()
            process.kill()
            os.close(ours)
        # A terminal makes a return and a new line of a new line.
        return process.returncode, shown.decode("ascii").replace("\r\n", "\n"), output

    def percentages(self, shown):
        """Of a line that is shown again and again, and at last cleared, and nothing else."""
        self.assertRegex(shown, rf"\A(\rrendering: [ \d]{{3}} %)+{re.escape(CLEARED)}\Z")
        return [int(number) for number in re.findall(r"rendering: +(\d+) %", shown)]

    def test_rises_from_nothing_to_all_and_is_cleared(self):
        status, shown, output = self.on_terminal(self.source, "out.wav", "--oversampling", "8", "--tail", "1")
        self.assertEqual(status, OK)
        numbers = self.percentages(shown)
        self.assertEqual((numbers[0], numbers[-1]), (0, 100))
        self.assertEqual(numbers, sorted(numbers))
        self.assertIn("real time", output)

    def test_shows_what_lies_between(self):
        # Of a render that takes seconds. What is slower shows more.
        _, shown, _ = self.on_terminal(self.source, "out.wav", "--oversampling", "16", "--tail", "8", "--block", "64")
        between = [number for number in self.percentages(shown) if 0 < number < 100]
        self.assertGreaterEqual(len(set(between)), 3)

    def test_the_shortest_render_shows_its_ends(self):
        for num_frames in (1, 513):
            with self.subTest(num_frames):
                source = write_wav(self.path("short.wav"), noise(num_frames))
                _, shown, _ = self.on_terminal(source, "out.wav", "--force")
                numbers = self.percentages(shown)
                self.assertEqual((numbers[0], numbers[-1]), (0, 100))

    def test_counts_frames_where_nobody_knows_how_many_there_are(self):
        # A stream of FLAC that does not say how long it is.
        source = write_flac(self.path("in.flac"), [(i % 100,) for i in range(5000)], announced=0)
        status, shown, _ = self.on_terminal(source, "out.wav")
        self.assertEqual(status, OK)
        self.assertRegex(shown, rf"\A(\rrendering: \d+ frames)+{re.escape(CLEARED)}\Z")

    def test_quiet_shows_nothing(self):
        self.assertEqual(self.on_terminal(self.source, "out.wav", "--quiet"), (OK, "", ""))

    def test_nothing_is_shown_where_there_is_no_terminal(self):
        self.succeed(self.source, self.path("out.wav"))     # holds the standard error output to no text

    def test_a_complaint_stands_on_a_line_of_its_own(self):
        source = write_flac(self.path("in.flac"), [(i % 100,) for i in range(20000)])
        content = source.read_bytes()
        source.write_bytes(content[:len(content) // 2])
        status, shown, _ = self.on_terminal(source, "out.wav")
        self.assertEqual(status, INPUT)
        self.assertRegex(shown, rf"%{CLEARED}corvane-render: [^\n]*damaged after frame[^\n]*\n\Z")

    def test_an_interrupt_clears_the_line(self):
        def interrupt(process):
            self.wait_for_part(process)
            process.send_signal(signal.SIGINT)

        status, shown, _ = self.on_terminal(self.source, "out.wav", "--tail", "600", "--oversampling", "16", "--block",
                                            "1", while_it_runs=interrupt)
        self.assertEqual(status, 128 + signal.SIGINT)
        self.assertTrue(shown.endswith(CLEARED + "corvane-render: interrupted, nothing was written\n"), shown)
        self.assertEqual(list(self.folder.glob(".corvane-render-*")), [])
