# SPDX-License-Identifier: GPL-3.0-or-later
"""Files that the renderer reads, files that it refuses, and files that it must not touch."""

import contextlib
import os
import resource
import shutil
import signal
import stat
import subprocess
import time
import unittest

from renderer_case import INPUT, OK, OUTPUT, RENDERER, USAGE, RendererCase, hear_all_signals, noise
from sound_files import read_wav, write_aiff, write_flac, write_wav


def whole_numbers(num_frames, channels=1, seed=7):
    return [tuple(round(sample * 32000) for sample in frame) for frame in noise(num_frames, channels, seed)]


class Reading(RendererCase):
    def test_reads_the_same_samples_from_wav_aiff_and_flac(self):
        frames = whole_numbers(3000)
        expected = self.render(write_wav(self.path("a.wav"), frames, bits=16)).data
        self.assertEqual(self.render(write_aiff(self.path("a.aiff"), frames)).data, expected)
        self.assertEqual(self.render(write_flac(self.path("a.flac"), frames)).data, expected)

    def test_reads_24_bits_and_float(self):
        frames = whole_numbers(500, 2)
        expected = self.render(write_wav(self.path("a.wav"), frames, bits=16)).data
        finer = [tuple(sample * 256 for sample in frame) for frame in frames]
        self.assertEqual(self.render(write_wav(self.path("b.wav"), finer, bits=24)).data, expected)
        floats = [tuple(sample / 32768.0 for sample in frame) for frame in frames]
        self.assertEqual(self.render(write_wav(self.path("c.wav"), floats)).data, expected)

    def test_an_empty_file_gives_an_empty_file(self):
        source = write_wav(self.path("in.wav"), [], channels=2)
        for words in ((), ("--oversampling", "4"), ("--oversampling", "4", "--keep-latency"), ("--bits", "16")):
            with self.subTest(words):
                self.assertEqual(self.render(source, *words).frames, [])

    def test_the_tail_of_an_empty_file_is_rendered(self):
        source = write_wav(self.path("in.wav"), [], channels=2)
        self.assertEqual(len(self.render(source, "--tail", "0.01", "--oversampling", "2").frames), 480)

    def test_refuses_more_than_two_channels(self):
        source = write_wav(self.path("in.wav"), noise(10, 3))
        self.refuse(INPUT, "3 channels", source, self.path("out.wav"))

    def test_refuses_what_is_no_sound_file(self):
        for name, content in (("text.wav", b"This is not a sound.\n" * 50), ("none.wav", b""),
                              ("head.wav", b"RIFF\x24\x00\x00\x00WAVE"), ("noise.flac", bytes(range(256)) * 40)):
            with self.subTest(name):
                self.path(name).write_bytes(content)
                self.refuse(INPUT, "not a WAV, AIFF or FLAC file", self.path(name), self.path("out.wav"))

    def test_refuses_what_is_no_file(self):
        self.refuse(INPUT, "no such file", self.path("absent.wav"), self.path("out.wav"))
        self.refuse(INPUT, "not a regular file", self.folder, self.path("out.wav"))
        self.refuse(INPUT, "no such file", "-", self.path("out.wav"))

    def test_refuses_a_file_that_breaks_off_midway(self):
        source = write_flac(self.path("in.flac"), whole_numbers(20000))
        content = source.read_bytes()
        source.write_bytes(content[:len(content) // 2])
        self.path("out.wav").write_bytes(b"what was here")
        self.refuse(INPUT, "damaged after frame", source, self.path("out.wav"), "--force")

    def test_complains_in_one_line_about_a_name_of_two(self):
        self.refuse(INPUT, "no such file", self.path("two\nlines.wav"), self.path("out.wav"))


class Writing(RendererCase):
    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(20000, 2))
        self.out = self.path("out.wav")

    def limited(self, num_bytes):
        return {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (num_bytes, num_bytes))}

    def test_leaves_nothing_but_the_output(self):
        self.succeed(self.source, self.out)
        self.assertEqual(sorted(self.folder_content()), ["in.wav", "out.wav"])

    def test_never_replaces_a_file_unasked(self):
        for words in ((self.source, self.out), ("--dump-curves", self.out), ("--dump-control-law", self.out),
                      ("--dump-taps", "4", self.out), (self.source, self.path("new.wav"), "--meters", self.out)):
            with self.subTest(words):
                self.out.write_bytes(b"what was here")
                self.refuse(OUTPUT, "exists already", *words)

    def test_replaces_a_file_when_asked(self):
        expected = self.render(self.source).data
        self.out.write_bytes(b"what was here")
        self.succeed(self.source, self.out, "--force", "--quiet")
        self.assertEqual(read_wav(self.out).data, expected)

    def test_replaces_its_own_input_only_when_asked(self):
        expected = self.render(self.source, name="other.wav").data
        self.refuse(OUTPUT, "exists already", self.source, self.source)
        self.succeed(self.source, self.source, "--force")
        self.assertEqual(read_wav(self.source).data, expected)

    def test_replaces_what_a_link_points_to(self):
        target = self.path("target.wav")
        target.write_bytes(b"what was here")
        self.out.symlink_to(target)
        self.refuse(OUTPUT, "exists already", self.source, self.out)
        self.succeed(self.source, self.out, "--force")
        self.assertTrue(self.out.is_symlink())
        self.assertEqual(len(read_wav(target).frames), 20000)

    def test_never_replaces_a_folder_or_a_device(self):
        self.path("folder").mkdir()
        self.refuse(OUTPUT, "folder", self.source, self.path("folder"), "--force")
        self.refuse(OUTPUT, "not a regular file", self.source, os.devnull, "--force")

    def test_refuses_a_folder_that_is_not_there(self):
        for words in ((self.source, "absent/out.wav"), (self.source, self.out, "--meters", "absent/m.csv"),
                      ("--dump-curves", "absent/c")):
            with self.subTest(words):
                self.refuse(OUTPUT, 'no folder "absent"', *words)

    def test_refuses_a_name_that_is_too_long(self):
        self.refuse(OUTPUT, "cannot write", self.source, self.path("n" * 300 + ".wav"))

    def test_takes_the_longest_name_there_is(self):
        self.succeed(self.source, "n" * 251 + ".wav")
        self.assertIn("n" * 251 + ".wav", self.folder_content())

    def test_a_full_disk_leaves_nothing_behind(self):
        # A limit on file size stands in for the disk: a write of the sound, its header, the meters, the tables fails.
        self.out.write_bytes(b"what was here")
        for limit in (0, 30, 10000):
            with self.subTest(limit):
                self.refuse(OUTPUT, "out.wav", self.source, self.out, "--force", **self.limited(limit))
        self.refuse(OUTPUT, "m.csv", self.source, self.out, "--force", "--block", "1", "--bits", "16", "--meters",
                    "m.csv", **self.limited(100000))
        self.refuse(OUTPUT, "curves", "--dump-curves", "curves", **self.limited(100000))

    def test_an_empty_output_that_cannot_be_written_is_noticed(self):
        empty = write_wav(self.path("empty.wav"), [], channels=1)
        self.refuse(OUTPUT, "out.wav", empty, self.out, **self.limited(0))

    def test_refuses_meters_over_the_sound(self):
        self.refuse(USAGE, "same file", self.source, self.out, "--meters", "./out.wav")
        self.refuse(USAGE, "same file", self.source, self.out, "--meters", self.source, "--force")


class Rights(RendererCase):
    """What may be done with a file stays as it was when the file is replaced."""

    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(2000, 2))
        self.out = self.path("out.wav")

    def mode(self, name):
        return stat.S_IMODE(self.path(name).stat().st_mode)

    def make(self, name, mode):
        self.path(name).unlink(missing_ok=True)
        self.path(name).write_bytes(b"what was here")
        self.path(name).chmod(mode)

    def masked(self, mask):
        return {"preexec_fn": lambda: os.umask(mask)}

    def test_a_new_file_follows_the_mask_of_the_user(self):
        for mask in (0o022, 0o077, 0o002):
            with self.subTest(oct(mask)):
                self.out.unlink(missing_ok=True)
                self.assertEqual(self.run_renderer(self.source, self.out, **self.masked(mask)).returncode, OK)
                self.assertEqual(self.mode("out.wav"), 0o666 & ~mask)
                # Asked to replace what is not there.
                self.out.unlink()
                self.assertEqual(self.run_renderer(self.source, self.out, "--force", **self.masked(mask)).returncode, OK)
                self.assertEqual(self.mode("out.wav"), 0o666 & ~mask)

    def test_a_file_that_is_replaced_keeps_its_mode(self):
        for mode in (0o640, 0o600, 0o664, 0o444, 0o755, 0o666):
            for mask in (0o022, 0o077):
                with self.subTest(mode=oct(mode), mask=oct(mask)):
                    self.make("out.wav", mode)
                    ended = self.run_renderer(self.source, self.out, "--force", **self.masked(mask))
                    self.assertEqual((ended.returncode, ended.err), (OK, ""))
                    self.assertEqual(self.mode("out.wav"), mode)
                    self.assertEqual(len(read_wav(self.out).frames), 2000)

    def test_whatever_is_written_keeps_its_mode(self):
        names = ("out.wav", "m.csv", "s.bin", "s.txt", "curves")
        for name in names:
            self.make(name, 0o640)
        self.succeed(self.source, self.out, "--meters", "m.csv", "--save-state", "s.bin", "--save-settings", "s.txt",
                     "--force")
        self.succeed("--dump-curves", "curves", "--force")
        for name in names:
            with self.subTest(name):
                self.assertEqual(self.mode(name), 0o640)
                self.assertNotEqual(self.path(name).read_bytes(), b"what was here")

    def test_a_link_says_nothing_about_rights(self):
        self.make("target.wav", 0o640)
        self.out.symlink_to("target.wav")
        self.succeed(self.source, self.out, "--force")
        self.assertTrue(self.out.is_symlink())
        self.assertEqual(self.mode("target.wav"), 0o640)

    def test_nobody_else_reads_what_will_replace_a_private_file(self):
        self.make("out.wav", 0o640)
        process, part = self.start_endless(self.source, self.out, "--force")
        try:
            self.assertEqual(self.mode(part), 0o600)
        finally:
            process.kill()
            process.communicate()

    @unittest.skipUnless(hasattr(os, "getuid") and os.getuid() == 0, "only root gives files away")
    def test_root_leaves_a_file_to_its_owner(self):
        self.make("out.wav", 0o640)
        os.chown(self.out, 54321, 54322)
        self.succeed(self.source, self.out, "--force")
        found = self.out.stat()
        self.assertEqual((found.st_uid, found.st_gid, self.mode("out.wav")), (54321, 54322, 0o640))

    @unittest.skipUnless(hasattr(os, "getuid") and os.getuid() == 0, "only root can become somebody else")
    def test_a_group_that_cannot_be_kept_hands_no_rights_on(self):
        renderer = self.path("renderer")
        shutil.copy(RENDERER, renderer)
        for folder in (self.folder.parent, self.folder):
            folder.chmod(0o777)

        def become_somebody():
            os.setgroups([54324])
            os.setgid(54323)
            os.setuid(54321)

        # The group that a file gets is the first; of 54324 that somebody is a member as well, of 54322 not.
        for old_group, old_mode, group, mode in ((54322, 0o664, 54323, 0o644), (54322, 0o640, 54323, 0o600),
                                                 (54324, 0o664, 54324, 0o664), (54323, 0o660, 54323, 0o660)):
            with self.subTest(old_group=old_group, old_mode=oct(old_mode)):
                self.make("out.wav", old_mode)
                os.chown(self.out, 54320, old_group)
                subprocess.run([renderer, self.source, self.out, "--force", "--quiet"], check=True,
                               preexec_fn=become_somebody)
                found = self.out.stat()
                self.assertEqual((found.st_uid, found.st_gid, oct(self.mode("out.wav"))), (54321, group, oct(mode)))


class Signals(RendererCase):
    """Who asks the program to end is heard in every phase, and finds nothing behind."""

    def setUp(self):
        super().setUp()
        self.source = write_wav(self.path("in.wav"), noise(20000, 2))
        self.out = self.path("out.wav")

    def expect_end(self, process, number):
        try:
            _, complaint = process.communicate(timeout=60)
        finally:
            process.kill()
        self.assertEqual(process.returncode, 128 + number)
        # A closed pipe is nobody's fault: programs say nothing about it.
        expected = r"" if number == signal.SIGPIPE else r"corvane-render: interrupted, nothing was written\n"
        self.assertRegex(complaint, rf"\A{expected}\Z")

    def test_a_signal_leaves_nothing_behind(self):
        for number in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGPIPE, signal.SIGTERM, signal.SIGXCPU):
            with self.subTest(number):
                before = self.folder_content()
                process, _ = self.start_endless(self.source, self.out, "--meters", "m.csv", "--save-state", "s",
                                                "--save-settings", "t")
                process.send_signal(number)
                self.expect_end(process, number)
                self.expect_folder(before)

    def test_a_signal_leaves_a_file_that_would_have_been_replaced(self):
        self.out.write_bytes(b"what was here")
        before = self.folder_content()
        process, _ = self.start_endless(self.source, self.out, "--force")
        process.send_signal(signal.SIGTERM)
        self.expect_end(process, signal.SIGTERM)
        self.expect_folder(before)

    def test_a_signal_is_heard_while_a_file_is_read(self):
        # A program that heard it only behind these three million lines would refuse the last of them.
        with self.path("moves.csv").open("w", encoding="ascii") as moves:
            for _ in range(300):
                moves.write("0,Mix,50%\n" * 10000)
            moves.write("a mistake\n")
        for number in (signal.SIGHUP, signal.SIGINT, signal.SIGPIPE, signal.SIGTERM):
            with self.subTest(number):
                process = self.start(self.source, self.out, "--automation", "moves.csv")
                self.wait_for_part(process)
                process.send_signal(number)
                self.expect_end(process, number)
                self.assertEqual(sorted(file.name for file in self.folder.iterdir()), ["in.wav", "moves.csv"])

    def test_a_signal_that_is_ignored_from_the_start_stays_ignored(self):
        # As nohup starts a program.
        process, _ = self.start_endless(self.source, self.out,
                                        preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        process.send_signal(signal.SIGHUP)
        time.sleep(0.3)     # to end in, if it were heard
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGTERM)
        self.expect_end(process, signal.SIGTERM)

    def test_two_signals_end_it_once(self):
        # The first one waits to be told of, at a pipe that is full, while the second one comes.
        reader, writer = os.pipe()
        os.set_blocking(writer, False)
        filling = 0
        with contextlib.suppress(BlockingIOError):
            while True:
                filling += os.write(writer, b" " * 4096)
        os.set_blocking(writer, True)
        process, _ = self.start_endless(self.source, self.out, stderr=writer)
        os.close(writer)
        process.send_signal(signal.SIGTERM)
        while list(self.folder.glob(".corvane-render-*")) and process.poll() is None:
            time.sleep(0.005)
        time.sleep(0.2)     # from the file's end to the pipe
        process.send_signal(signal.SIGINT)
        time.sleep(0.2)
        with os.fdopen(reader, encoding="ascii") as pipe:
            told = pipe.read()
        process.communicate(timeout=60)
        self.assertEqual(told[filling:], "corvane-render: interrupted, nothing was written\n")
        self.assertEqual(process.returncode, 128 + signal.SIGTERM)

    def test_a_list_for_nobody_ends_in_silence(self):
        reader, writer = os.pipe()
        os.close(reader)
        ended = subprocess.run([RENDERER, "--list-programs"], stdout=writer, stderr=subprocess.PIPE, text=True,
                               check=False, preexec_fn=hear_all_signals)
        os.close(writer)
        self.assertEqual((ended.returncode, ended.stderr), (128 + signal.SIGPIPE, ""))
