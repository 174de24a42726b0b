# SPDX-License-Identifier: GPL-3.0-or-later
"""Controls that move while the sound runs: where, in which order, written how."""

import os
import subprocess

from renderer_case import INPUT, RENDERER, RendererCase, noise, sine
from sound_files import write_wav

NUM_FRAMES = 6000


class Automation(RendererCase):
    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(NUM_FRAMES, 1, peak=0.9))

    def moved(self, content, *words, source=None):
        self.path("moves.csv").write_bytes(content.encode("utf-8"))
        return self.render(source or self.source, "--noise", "off", "--automation", self.path("moves.csv"), *words)

    def still(self, *words):
        return self.render(self.source, "--noise", "off", *words)

    def first_difference(self, one, other):
        return next((i for i, (a, b) in enumerate(zip(one.frames, other.frames)) if a != b), None)

    def test_a_change_is_heard_from_its_very_frame_on(self):
        still = self.still()
        # Out Level is a gain at the very end: the first step of its ramp is heard at once, and nothing is before it.
        for frame in (0, 1, 511, 512, 513, 3333, NUM_FRAMES - 1):
            with self.subTest(frame):
                self.assertEqual(self.first_difference(self.moved(f"{frame},OutLevel,-10dB"), still), frame)

    def test_a_change_begins_a_ramp(self):
        # At its frame a gain takes the first of 4800 equal steps in decibels; 1e-6 is some steps of float.
        still, moved = self.still(), self.moved("3000,OutLevel,-10dB")
        (before,), (after,) = still.frames[3000], moved.frames[3000]
        self.assertAlmostEqual(after / before, 10 ** (-10 / 20 / 4800), delta=1e-6)

    def test_bypass_leads_to_the_input(self):
        # The mix fades for 4800 frames. The block in which a fade ends still mixes; from the next on it is the input.
        frame, rest = 600, 600 + 4800 + 512
        still, moved = self.still(), self.moved(f"{frame},Bypass,Byp")
        self.expect_frames(moved.frames[:frame], still.frames[:frame])
        self.assertEqual(self.first_difference(moved, still), frame)
        self.expect_frames(moved.frames[rest:], noise(NUM_FRAMES, 1, peak=0.9)[rest:])

    def test_the_block_size_is_not_heard(self):
        moves = ("100,Mix,40%\n777,LowThreshold,-20dB\n778,MidRatio,6:1\n2000,Nuke,On\n2000,HighSolo,On\n"
                 "2500,HighSolo,Off\n3001,LowXOver,900Hz\n4000,HPF,200Hz\n4096,InLevel,4dB\n5000,Niveau,Off\n")
        for factor in (1, 3):
            words = ("--oversampling", factor, "--block")
            expected = self.moved(moves, *words, 1).data
            for block in (64, 777, 4096):
                with self.subTest(factor=factor, block=block):
                    self.assertEqual(self.moved(moves, *words, block).data, expected)

    def test_frames_count_in_the_input_whatever_the_latency(self):
        # 52 frames later in what comes out of the engine, and so in time with the frame of the input again.
        still = self.still("--oversampling", "2", "--keep-latency")
        moved = self.moved("3000,OutLevel,-10dB", "--oversampling", "2", "--keep-latency")
        self.assertEqual(self.first_difference(moved, still), 3000)
        still, moved = self.still("--oversampling", "2"), self.moved("3000,OutLevel,-10dB", "--oversampling", "2")
        self.assertEqual(self.first_difference(moved, still), 3000 - 52)

    def test_frames_go_on_through_the_tail(self):
        words = ("--tail", "0.1", "--bypass")
        moved = self.moved(f"{NUM_FRAMES + 100},Bypass,In", *words)
        self.assertEqual(len(moved.frames), NUM_FRAMES + 4800)
        self.expect_frames(moved.frames[:NUM_FRAMES + 100], self.still(*words).frames[:NUM_FRAMES + 100])
        self.assertTrue(any(x != 0.0 for (x,) in moved.frames[NUM_FRAMES + 100:]))

    def test_what_lies_behind_the_end_changes_nothing(self):
        self.assertEqual(self.moved(f"{NUM_FRAMES},Nuke,On\n9000000000000000000,Mix,0%").data, self.still().data)

    def test_settings_that_move_to_where_they_are_change_nothing(self):
        # A cut alone is not heard: see the block size.
        self.assertEqual(self.moved("1,LowGain,2dB\n700,MidRatio,3:1\n701,Nuke,Off\n3000,Mix,100%").data,
                         self.still().data)

    def test_order_of_lines(self):
        expected = self.moved("1000,Mix,30%\n2000,Mix,60%\n2000,Nuke,On\n").data
        self.assertEqual(self.moved("2000,Mix,60%\n2000,Nuke,On\n1000,Mix,30%\n").data, expected)
        # At one frame the last one counts.
        self.assertEqual(self.moved("1000,Mix,30%\n2000,Mix,5%\n2000,Mix,60%\n2000,Nuke,On\n").data, expected)
        self.assertNotEqual(self.moved("1000,Mix,30%\n2000,Mix,60%\n2000,Mix,5%\n2000,Nuke,On\n").data, expected)

    def test_texts_and_normalised_numbers_are_the_same(self):
        for text, number in (("MidRatio,4:1", "MidRatio,n:0.75"), ("Mix,50%", "Mix,n:0.5"),
                             ("LowGain,auto", "LowGain,n:0"), ("InLevel,-10dB", "InLevel, n: 0.0"),
                             ("HPF,500Hz", "HPF,n:1"), ("Mix,0.1%", "Mix,n:1e-3")):
            with self.subTest(text):
                self.assertEqual(self.moved(f"1000,{text}").data, self.moved(f"1000,{number}").data)

    def test_forgives_layout(self):
        expected = self.moved("1000,Mix,30%\n").data
        for content in ("frame,identifier,value\n1000,Mix,30%\n",
                        "\ufeffFrame, Identifier, Value\r\n1000 , Mix , 30 %\r\n",
                        "# moves\n\nframe,identifier,value # columns\n1000,Mix,30 # less\n", "1000,Mix,30%"):
            with self.subTest(content):
                self.assertEqual(self.moved(content).data, expected)

    def test_no_lines_are_no_changes(self):
        for content in ("", "frame,identifier,value\n", "# nothing\n"):
            with self.subTest(content):
                self.assertEqual(self.moved(content).data, self.still().data)

    def test_link_forwards_while_it_is_on(self):
        one = self.moved("1000,Link,On\n1000,MidRatio,6:1\n").data
        all_of_them = self.moved("1000,LowRatio,6:1\n1000,MidRatio,6:1\n1000,HighRatio,6:1\n").data
        self.assertEqual(one, all_of_them)
        self.assertNotEqual(one, self.moved("1000,MidRatio,6:1\n").data)

    def test_meters_keep_a_row_a_block(self):
        self.moved("100,MidMeter,Control\n700,Mix,30%\n701,Mix,40%\n", "--meters", self.path("m.csv"), "--block",
                   "1000")
        rows = [line.split(",") for line in self.path("m.csv").read_text(encoding="ascii").splitlines()[1:]]
        self.assertEqual([int(row[0]) for row in rows], [0, 1000, 2000, 3000, 4000, 5000])
        # The meter of Mid shows its gain reduction from frame 100 on, and its level stands still.
        self.assertEqual(len({row[3] for row in rows}), 1)
        self.assertEqual(len({row[1] for row in rows}), 6)

    def test_what_is_saved_is_what_stood_before_the_first_sample(self):
        self.moved("0,Mix,30%\n", "--save-state", self.path("a"))
        self.succeed("--save-state", self.path("b"))
        self.assertEqual(self.path("a").read_bytes(), self.path("b").read_bytes())

    def test_a_long_ramp_of_many_lines(self):
        # Out Level falls by 0.05 dB every ten frames. Each change begins a ramp of 4800 frames to its own target, of
        # which ten frames are gone: after n changes the level is the sum of a 480th of what was left each time.
        tone = sine(NUM_FRAMES, 1000.0, 0.01)
        source = write_wav(self.path("tone.wav"), tone)
        lines = "".join(f"{10 * i},OutLevel,{-0.05 * i:.2f}dB\n" for i in range(200))
        still = self.render(source, "--noise", "off").frames
        moved = self.moved(lines, source=source).frames
        level = 0.0
        for i in range(200):
            level += (-0.05 * i - level) / 480.0
        last = 10 * 199 + 9
        # Steps of float add up over 2000 multiplications of the ramp: 2000 * 6e-8, with room for the samples' own.
        self.assertAlmostEqual(moved[last][0] / still[last][0], 10 ** (level / 20), delta=2e-4)
        self.assertLess(level, -0.5)

    def test_refuses_mistakes_with_their_line(self):
        for content, complaint in (("frame,identifier,value\n0,mix,30%", 'line 2: .*"mix"; did you mean "Mix"'),
                                   ("0,Mix,30%\n\n10,Mix,130%", "line 3: Mix takes a percentage from 0 to 100"),
                                   ("-1,Mix,30%", "line 1: a frame is a whole number"),
                                   ("1.5,Mix,30%", "line 1: a frame"), (",Mix,30%", "line 1: a frame"),
                                   ("1e3,Mix,30%", "line 1: a frame"), ("+1,Mix,30%", "line 1: a frame"),
                                   ("99999999999999999999,Mix,30%", "line 1: a frame"),
                                   ("10,Mix", "line 1: .*frame,identifier,value"), ("10", "line 1: .*frame,identifier"),
                                   ("10;Mix;30%", "line 1: .*frame,identifier"), ("10,Mix,", "line 1: Mix takes"),
                                   ("10,Mix,30%,slow", "line 1: Mix takes"), ("10,Mix,n:1.1", "line 1: .*from 0 to 1"),
                                   ("10,Mix,n:", "line 1: .*from 0 to 1"), ("10,Mix,n:nan", "line 1: .*from 0 to 1"),
                                   ("0,Mix,30%\nframe,identifier,value", "line 2: a frame"),
                                   ("10,Calibration,22", 'line 1: .*"Calibration"')):
            with self.subTest(content):
                self.path("moves.csv").write_text(content, encoding="utf-8")
                self.refuse(INPUT, complaint, self.source, self.path("out.wav"), "--automation", self.path("moves.csv"))

    def test_reads_nothing_behind_a_mistake(self):
        # Seen by the memory: the lines of 60 MB were once all read and kept before the first of them was looked at.
        def most_memory(num_bytes):
            with self.path("moves.csv").open("w", encoding="ascii") as moves:
                moves.write("a mistake\n")
                for _ in range(num_bytes // 10000):
                    moves.write("0,Mix,50%\n" * 1000)
            with open(os.devnull, "w", encoding="ascii") as nowhere:
                child = subprocess.Popen([RENDERER, self.source, self.path("out.wav"), "--automation",
                                          self.path("moves.csv")], stderr=nowhere)
            _, status, usage = os.wait4(child.pid, 0)
            child.returncode = os.waitstatus_to_exitcode(status)
            self.assertEqual(child.returncode, INPUT)
            return usage.ru_maxrss      # kilobytes

        self.assertLess(most_memory(60000000), most_memory(10000) + 20000)

    def test_shortens_what_it_quotes(self):
        for line in ("0,{},50%", "0,Mix,{}", "0,Mix,n:{}", "{},Mix,50%"):
            with self.subTest(line):
                self.path("moves.csv").write_text(line.format("x" * 2000000), encoding="ascii")
                process = self.run_renderer(self.source, self.path("out.wav"), "--automation", self.path("moves.csv"))
                self.assertEqual(process.returncode, INPUT)
                self.assertLess(len(process.err), 400)
                self.assertRegex(process.err, r'line 1: .*"(n:)?x+\.\.\.x+"')

    def test_refuses_what_is_no_file(self):
        self.refuse(INPUT, "no such file", self.source, self.path("out.wav"), "--automation", self.path("absent"))
        self.refuse(INPUT, "not a regular file", self.source, self.path("out.wav"), "--automation", self.folder)
