#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds scripts/install.py to its promises: a plug-in that works is never lost, whatever the build lacks and whenever the
program is stopped; and what is uninstalled is what was installed.

Most of it plays with a made-up build of small files. CORVANE_BUILD, where it is set, names a build folder to install from
in earnest.
"""

import contextlib
import importlib.util
import io
import os
import pathlib
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "install.py"
BUILD = os.environ.get("CORVANE_BUILD", "")
GPL = pathlib.Path("/usr/share/common-licenses/GPL-3")

# Where there is one, a file system in memory: a thousand installations would wait for a busy disk.
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

VST3, LV2 = "lib/vst3/CorvaneQ7.vst3", "lib/lv2/CorvaneQ7.lv2"
UNITS = (VST3, LV2, "bin/CorvaneQ7", "bin/corvane-render", "share/doc/CorvaneQ7/LICENSE")
RECORD = "share/doc/CorvaneQ7/installed-files"
OWN = {"lib/vst3": ".vst3", "lib/lv2": ".lv2", "bin": ".local/bin", "share": ".local/share"}


def load():
    found = importlib.util.spec_from_file_location("install", SCRIPT)
    module = importlib.util.module_from_spec(found)
    found.loader.exec_module(module)
    return module


installer = load()


def own(path):
    """Where the user's own folders have what a prefix has at that path."""
    return next(path.replace(start, to, 1) for start, to in OWN.items() if path.startswith(start))


def tree(folder):
    """All that is below a folder: files with their bytes, links with their targets, folders."""
    found = {}
    for path in sorted(folder.rglob("*")):
        name = str(path.relative_to(folder))
        found[name] = path.readlink() if path.is_symlink() else path.read_bytes() if path.is_file() else None
    return found


def hear_all_signals():
    """Whatever the tests themselves were started to ignore, in the background or by nohup."""
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
        signal.signal(number, signal.SIG_DFL)


def changes_files(event, details):
    """Whether what an audit hook is told of is a step that may change a file or a folder. What only looks needs no stop
    of its own. Bundles change places by way of a library that is opened for it."""
    if event == "open":
        return bool(details[2] & (os.O_WRONLY | os.O_RDWR | os.O_CREAT))
    return event in ("os.mkdir", "os.rename", "os.remove", "os.rmdir", "os.chmod", "os.utime", "ctypes.dlopen")


class InstallCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=MEMORY)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.made = self.folder / "made"
        self.build = self.folder / "build"
        self.home.mkdir()
        self.make(1)

    def make(self, version, **more):
        """A build of that version. more: further files, with _ for / in their names."""
        files = {f"{VST3}/Contents/x86_64-linux/CorvaneQ7.so": "", f"{VST3}/Contents/Resources/moduleinfo.json": "",
                 f"{LV2}/manifest.ttl": "<a:b> lv2:binary <libCorvaneQ7.so> ; rdfs:seeAlso <dsp.ttl> , <http://a/b.ttl> .",
                 f"{LV2}/dsp.ttl": "", f"{LV2}/libCorvaneQ7.so": "", "bin/CorvaneQ7": "", "bin/corvane-render": "",
                 "share/doc/CorvaneQ7/LICENSE": "", **more}
        for name, content in files.items():
            path = self.made / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(f"{content}\n# {name} of version {version}\n", encoding="utf-8")
            path.chmod(0o755 if "bin/" in name or name.endswith(".so") else 0o644)
        self.build.mkdir(exist_ok=True)
        (self.build / "cmake_install.cmake").write_text("".join(
            f'file (INSTALL DESTINATION "${{CMAKE_INSTALL_PREFIX}}/{pathlib.PurePath(unit).parent}" TYPE DIRECTORY '
            f'FILES "{self.made / unit}" USE_SOURCE_PERMISSIONS)\n' for unit in UNITS)
            + f'file (WRITE "{self.build}/install_manifest.txt" "what CMake writes there")\n', encoding="utf-8")

    def run_script(self, *words, **environment):
        return subprocess.run([sys.executable, SCRIPT, "--build", self.build, *words], capture_output=True, text=True,
                              check=False, env={"PATH": os.environ["PATH"], "HOME": str(self.home), **environment})

    def succeed(self, *words, **environment):
        done = self.run_script(*words, **environment)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def expected(self, root=None):
        """What stands below a root of its own when all is installed: the files of the build, and the record."""
        place = own if root is None else str
        return {place(name): content for name, content in tree(self.made).items() if content is not None}

    def expect_installed(self, folder, found=None):
        found = {name: content for name, content in tree(folder).items() if content is not None}
        record = next(name for name in found if name.endswith("installed-files"))
        del found[record]
        self.assertEqual(found, self.expected(None if folder == self.home else folder))

    def expect_no_leftovers(self):
        self.assertEqual([name for name in tree(self.folder) if ".corvane-install" in name], [])

    def foreign_files(self, root, place):
        """What somebody else has in the same folders, one of them empty."""
        for name in ("lib/vst3/Other.vst3/Contents/other", "bin/other", "share/doc/CorvaneQ7/my notes"):
            path = root / place(name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("somebody else's", encoding="utf-8")
        (root / place("lib/lv2")).mkdir(parents=True)


class Install(InstallCase):
    def test_goes_into_the_users_own_folders(self):
        told = self.succeed().splitlines()[:-1]     # the last line is about the text of the GPL
        self.expect_installed(self.home)
        self.assertEqual(sorted(told), sorted(str(self.home / own(unit)) for unit in UNITS))
        self.assertTrue(os.access(self.home / ".local/bin/corvane-render", os.X_OK))
        self.expect_no_leftovers()

    def test_says_where_the_text_of_the_licence_is_missing(self):
        self.assertIn("The full text of the GPL", self.succeed())
        (self.made / "share/doc/CorvaneQ7/GPL-3").write_text("the text", encoding="utf-8")
        with (self.build / "cmake_install.cmake").open("a", encoding="utf-8") as rules:
            rules.write(f'file (INSTALL DESTINATION "${{CMAKE_INSTALL_PREFIX}}/share/doc/CorvaneQ7" TYPE FILE '
                        f'FILES "{self.made}/share/doc/CorvaneQ7/GPL-3")\n')
        self.assertNotIn("The full text of the GPL", self.succeed())
        self.expect_installed(self.home)

    def test_goes_below_a_prefix(self):
        prefix = self.folder / "usr" / "local"
        self.succeed(PREFIX=str(prefix))
        self.expect_installed(prefix)
        self.assertEqual(tree(self.home), {})

    def test_a_tilde_stands_for_the_home_folder(self):
        self.succeed(PREFIX="~/mine")
        self.expect_installed(self.home / "mine")

    def test_goes_below_a_destination_folder(self):
        for prefix, below in (("/opt/corvane", "opt/corvane"), ("", "usr/local")):
            with self.subTest(prefix):
                destination = self.folder / f"package of {prefix[1:4]}"
                self.succeed(DESTDIR=str(destination), PREFIX=prefix)
                self.expect_installed(destination / below)
                self.assertEqual(tree(self.home), {})

    def test_everybody_may_read_what_is_below_a_prefix(self):
        prefix = self.folder / "all"
        subprocess.run(["sh", "-c", 'umask 077; exec "$0" "$@"', sys.executable, SCRIPT, "--build", self.build],
                       env={"PATH": os.environ["PATH"], "PREFIX": str(prefix)}, check=True, capture_output=True)
        for path in (prefix, *prefix.rglob("*")):
            self.assertEqual(path.stat().st_mode & 0o044, 0o044, path)

    def test_says_where_nothing_is_built(self):
        (self.build / "cmake_install.cmake").unlink()
        done = self.run_script()
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertRegex(done.stderr, r"\ANot installed: nothing is built yet: run 'make build' first\n\Z")
        self.assertEqual(tree(self.home), {})

    def test_leaves_no_list_in_the_build_folder(self):
        self.succeed()
        self.assertEqual(sorted(tree(self.build)), ["cmake_install.cmake"])

    def test_a_new_version_takes_the_place_of_the_old_one(self):
        self.make(1, **{f"{LV2}/old.ttl": ""})
        self.succeed()
        (self.made / LV2 / "old.ttl").unlink()
        self.make(2)
        self.succeed()
        self.expect_installed(self.home)
        self.expect_no_leftovers()

    def test_a_link_in_a_bundles_place_goes_and_its_target_stays(self):
        for unit in (VST3, "bin/CorvaneQ7"):
            with self.subTest(unit):
                elsewhere = self.folder / "elsewhere" / unit
                elsewhere.mkdir(parents=True)
                (elsewhere / "mine").write_text("mine", encoding="utf-8")
                place = self.home / own(unit)
                place.parent.mkdir(parents=True)
                place.symlink_to(elsewhere)
        before = tree(self.folder / "elsewhere")
        self.succeed()
        self.expect_installed(self.home)
        self.assertEqual(tree(self.folder / "elsewhere"), before)

    def test_a_folder_in_a_programs_place_stays(self):
        (self.home / ".local/bin/CorvaneQ7/mine").mkdir(parents=True)
        done = self.run_script()
        self.assertEqual(done.returncode, 1)
        self.assertIn("is a folder", done.stderr)
        self.assertFalse((self.home / own(VST3)).exists())
        self.assertTrue((self.home / ".local/bin/CorvaneQ7/mine").is_dir())
        self.expect_no_leftovers()


class HalfBuilt(InstallCase):
    """Whatever a build lacks, what is installed stays as it is, and a person is told what to do."""

    def setUp(self):
        super().setUp()
        self.succeed()
        self.before = tree(self.home)
        self.make(2)

    def expect_refusal(self):
        done = self.run_script()
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertRegex(done.stderr, r"\ANot installed: the build is not complete[^\n]*: run 'make build' first\n")
        self.assertEqual(tree(self.home), self.before)

    def test_a_file_is_missing(self):
        for name in (f"{VST3}/Contents/x86_64-linux/CorvaneQ7.so", f"{LV2}/libCorvaneQ7.so", f"{LV2}/manifest.ttl",
                     f"{LV2}/dsp.ttl", "bin/CorvaneQ7", "bin/corvane-render", "share/doc/CorvaneQ7/LICENSE"):
            with self.subTest(name):
                content = (self.made / name).read_bytes()
                (self.made / name).unlink()
                self.expect_refusal()
                (self.made / name).write_bytes(content)

    def test_a_file_is_empty(self):
        for name in (f"{VST3}/Contents/x86_64-linux/CorvaneQ7.so", f"{LV2}/dsp.ttl", "bin/corvane-render"):
            with self.subTest(name):
                content = (self.made / name).read_bytes()
                (self.made / name).write_bytes(b"")
                self.expect_refusal()
                (self.made / name).write_bytes(content)

    def test_a_bundle_is_missing(self):
        (self.made / VST3).rename(self.folder / "away")
        self.expect_refusal()

    def test_a_binary_breaks_off(self):
        # Two sections of 64 bytes are announced behind a head of 64.
        head = struct.pack("<4sBBB9x", b"\x7fELF", 2, 1, 1) + struct.pack("<HHIQQQIHHHHHH", 3, 62, 1, 0, 0, 64, 0, 64,
                                                                          0, 0, 64, 2, 1)
        for name in (f"{VST3}/Contents/x86_64-linux/CorvaneQ7.so", f"{LV2}/libCorvaneQ7.so", "bin/CorvaneQ7"):
            for size in (10, 63, 64, 191):
                with self.subTest(name=name, size=size):
                    (self.made / name).write_bytes((head + bytes(128))[:size])
                    self.expect_refusal()
            (self.made / name).write_bytes(head + bytes(128))
        self.succeed()


class Stopped(InstallCase):
    """Stopped before any of its steps, the program leaves each bundle whole at its place: the old or the new one."""

    def setUp(self):
        super().setUp()
        self.place = installer.Place({"HOME": str(self.home)})
        self.foreign_files(self.home, own)
        self.nothing = tree(self.home)

    def each_stop(self, command, before_each):
        """Runs the command again and again: each time it is killed one step later, until it reaches its end."""
        step = 0
        while True:
            step += 1
            before_each()
            child = os.fork()
            if child == 0:
                self.run_until(step, command)
            _, status = os.waitpid(child, 0)
            if os.waitstatus_to_exitcode(status) == 0:
                self.assertGreater(step, 15)
                return
            self.assertEqual(os.waitstatus_to_exitcode(status), -signal.SIGKILL)
            yield step

    def run_until(self, last, command):
        """In a process of its own, which ends here."""
        steps = 0

        def count(event, details):
            nonlocal steps
            if changes_files(event, details):
                steps += 1
                if steps == last:
                    os.kill(os.getpid(), signal.SIGKILL)

        try:
            with contextlib.redirect_stdout(io.StringIO()):
                sys.addaudithook(count)
                command()
                os._exit(0)
        finally:
            os._exit(1)

    def install(self):
        with contextlib.redirect_stdout(io.StringIO()):
            installer.install(self.made, self.place)

    def uninstall(self):
        with contextlib.redirect_stdout(io.StringIO()):
            installer.uninstall(self.place)

    def version_of(self, unit):
        """Of what is installed there: 1, 2, or None where there is nothing. Mixtures fail."""
        path = self.home / own(unit)
        files = installer.files_of(path) if path.exists() else []
        versions = {file.read_text(encoding="utf-8")[-2] for file in files}
        if not files:
            return None
        self.assertEqual(len(versions), 1, unit)
        self.assertEqual(len(files), len(installer.files_of(self.made / unit)), unit)
        return int(versions.pop())

    def test_in_a_first_installation(self):
        for step in self.each_stop(self.install, lambda: None):
            with self.subTest(step):
                self.assertTrue({self.version_of(unit) for unit in UNITS} <= {None, 1})
                # Even now all of it can be taken away.
                self.uninstall()
                self.install()
                self.uninstall()
                self.assertEqual(tree(self.home), self.nothing)

    def install_first_version(self):
        self.make(1)
        self.install()
        self.make(2)

    def test_in_an_update(self):
        both = set()
        for step in self.each_stop(self.install, self.install_first_version):
            with self.subTest(step):
                versions = [self.version_of(unit) for unit in UNITS]
                self.assertTrue(set(versions) <= {1, 2}, versions)
                both |= set(versions)
                self.install()
                self.assertEqual({self.version_of(unit) for unit in UNITS}, {2})
                self.expect_no_leftovers()
        self.assertEqual(both, {1, 2})
        self.uninstall()
        self.assertEqual(tree(self.home), self.nothing)

    def test_in_an_update_where_the_system_exchanges_nothing(self):
        # The next run of either command finds what lay between two names.
        self.addCleanup(setattr, installer, "change_places", installer.change_places)
        installer.change_places = lambda one, other: False
        lay_between = 0
        for step in self.each_stop(self.install, self.install_first_version):
            with self.subTest(step):
                missing = [unit for unit in UNITS if self.version_of(unit) is None]
                lay_between += len(missing)
                self.make(1)
                staged = {installer.new_of(self.home / own(unit)) for unit in missing}
                self.assertTrue(len(staged) <= 1)
                installer.tidy([self.home / own(unit) for unit in UNITS])
                self.assertEqual([self.version_of(unit) for unit in missing], [1] * len(missing))
                self.make(2)
                self.install()
                self.assertEqual({self.version_of(unit) for unit in UNITS}, {2})
                self.expect_no_leftovers()
        self.assertEqual(lay_between, 2)    # once for each bundle

    def test_in_an_uninstallation(self):
        for step in self.each_stop(self.uninstall, self.install_first_version):
            with self.subTest(step):
                self.uninstall()
                self.assertEqual(tree(self.home), self.nothing)

    def test_a_step_that_fails_leaves_old_or_new_and_no_leftovers(self):
        # As on a full disk, or where a folder may not be written to.
        step, done, refused, unharmed = 0, 0, 7, 8
        while True:
            step += 1
            self.install_first_version()
            steps = 0

            def fail(event, details):
                nonlocal steps
                if changes_files(event, details):
                    steps += 1
                    if steps == step:
                        raise OSError("no space left")

            child = os.fork()
            if child == 0:
                try:
                    sys.addaudithook(fail)
                    self.install()
                    os._exit(done if steps < step else unharmed)
                except OSError:
                    os._exit(refused)
                finally:
                    os._exit(1)
            status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
            if status == done:
                self.assertGreater(step, 30)
                break
            with self.subTest(step):
                versions = {self.version_of(unit) for unit in UNITS}
                if status == unharmed:      # what was tidied up did not go, and goes the next time
                    self.assertEqual(versions, {2})
                else:
                    self.assertEqual(status, refused)
                    self.assertTrue(versions <= {1, 2}, versions)
                    self.expect_no_leftovers()

    def test_by_a_signal(self):
        # While the build's own rules install, which is the longest part: they wait for a pipe that nobody opens.
        pipe, reached = self.folder / "pipe", self.folder / "reached"
        os.mkfifo(pipe)
        with (self.build / "cmake_install.cmake").open("a", encoding="utf-8") as rules:
            rules.write(f'file (WRITE "{reached}" "")\nfile (READ "{pipe}" nothing)\n')
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                temporary = self.folder / f"temporary {number}"
                temporary.mkdir()
                process = subprocess.Popen([sys.executable, SCRIPT, "--build", self.build], stdout=subprocess.PIPE,
                                           stderr=subprocess.PIPE, preexec_fn=hear_all_signals, env={"PATH": os.environ["PATH"], "TMPDIR":
                                                                        str(temporary), "HOME": str(self.home)})
                while process.poll() is None and not reached.exists():
                    time.sleep(0.01)
                process.send_signal(number)
                process.communicate(timeout=60)
                reached.unlink()
                self.assertEqual(process.returncode, 128 + number)
                self.assertEqual(tree(self.home), self.nothing)
                self.assertEqual(tree(temporary), {})


class Uninstall(InstallCase):
    def test_leaves_everything_as_it_was(self):
        for environment, root, place in (({}, self.home, own),
                                         ({"PREFIX": str(self.folder / "usr")}, self.folder / "usr", str),
                                         ({"DESTDIR": str(self.folder / "d"), "PREFIX": "/opt"}, self.folder / "d/opt",
                                          str)):
            with self.subTest(environment):
                root.mkdir(parents=True, exist_ok=True)
                self.foreign_files(root, place)
                before = tree(root)
                self.succeed(**environment)
                self.assertNotEqual(tree(root), before)
                told = self.succeed("--uninstall", **environment)
                self.assertIn(f"removed {root / place('bin/corvane-render')}\n", told)
                self.assertEqual(tree(root), before)

    def test_leaves_an_empty_home_empty(self):
        self.succeed()
        self.succeed("--uninstall")
        self.assertEqual(tree(self.home), {})

    def test_needs_no_build(self):
        self.succeed()
        (self.build / "cmake_install.cmake").unlink()
        self.succeed("--uninstall")
        self.assertEqual(tree(self.home), {})

    def test_takes_what_any_version_brought(self):
        self.make(1, **{"share/doc/CorvaneQ7/LICENSE.old": ""})
        installed = installer.Place({"HOME": str(self.home)})
        with contextlib.redirect_stdout(io.StringIO()):
            installer.install(self.made, installed)
        (self.made / "share/doc/CorvaneQ7/LICENSE.old").unlink()
        self.make(2)
        self.succeed()
        self.assertTrue((self.home / ".local/share/doc/CorvaneQ7/LICENSE.old").exists())
        self.succeed("--uninstall")
        self.assertEqual(tree(self.home), {})

    def test_leaves_what_somebody_put_into_a_bundle(self):
        self.succeed()
        mine = self.home / own(LV2) / "mine.ttl"
        mine.write_text("mine", encoding="utf-8")
        self.succeed("--uninstall")
        self.assertEqual([name for name, content in tree(self.home).items() if content is not None],
                         [".lv2/CorvaneQ7.lv2/mine.ttl"])

    def test_leaves_what_a_link_in_a_bundles_place_leads_to(self):
        self.succeed()
        place = self.home / own(VST3)
        place.rename(self.folder / "moved.vst3")
        place.symlink_to(self.folder / "moved.vst3")
        before = tree(self.folder / "moved.vst3")
        self.succeed("--uninstall")
        self.assertEqual(tree(self.folder / "moved.vst3"), before)
        self.assertEqual(list(tree(self.home)), [".vst3", ".vst3/CorvaneQ7.vst3"])

    def test_does_nothing_where_nothing_is_installed(self):
        self.foreign_files(self.home, own)
        before = tree(self.home)
        for _ in range(2):
            self.assertRegex(self.succeed("--uninstall"), r"\ANothing of Corvane Q7 is installed below [^\n]*\n\Z")
        self.assertEqual(tree(self.home), before)

    def test_passes_over_what_no_record_of_ours_holds(self):
        self.succeed()
        (self.folder / "precious").write_text("precious", encoding="utf-8")
        with (self.home / own(RECORD)).open("a", encoding="utf-8") as record:
            record.write(f"../precious\n{self.folder}/precious\n")
        self.succeed("--uninstall")
        self.assertTrue((self.folder / "precious").exists())
        self.assertEqual(tree(self.home), {})


class Manual(InstallCase):
    """Lies in one place below the system's applications folder, whatever the prefix."""

    def setUp(self):
        super().setUp()
        manual = self.folder / installer.MANUAL.name
        manual.write_text("how to", encoding="utf-8")
        self.addCleanup(setattr, installer, "MANUAL", installer.MANUAL)
        installer.MANUAL = manual
        self.place = installer.Place({"DESTDIR": str(self.folder / "d"), "PREFIX": "/opt"})

    def run_both(self):
        with contextlib.redirect_stdout(io.StringIO()) as told:
            installer.install(self.made, self.place)
            installed = tree(self.folder / "d")
            installer.uninstall(self.place)
        return installed, tree(self.folder / "d"), told.getvalue()

    def test_comes_and_goes(self):
        installed, left, _ = self.run_both()
        name = f"{str(self.place.manual.parent)[len(self.place.destdir) + 1:]}/{installer.MANUAL.name}"
        self.assertEqual(installed[name], b"how to")
        self.assertEqual([name for name in installed if ".corvane-install" in name], [])
        self.assertEqual([name for name, content in left.items() if content is not None], [])
        self.assertFalse(self.place.manual.parent.parent.exists())

    def test_stays_in_docs_where_only_root_may_write(self):
        self.addCleanup(setattr, installer.shutil, "copyfile", installer.shutil.copyfile)
        original = installer.shutil.copyfile

        def refuse(source, target, **more):
            if pathlib.Path(source) == installer.MANUAL:
                raise PermissionError
            return original(source, target, **more)

        installer.shutil.copyfile = refuse
        _, _, told = self.run_both()
        self.assertIn("The manual stays in docs", told)


@unittest.skipUnless(BUILD, "CORVANE_BUILD names no build")
class InEarnest(unittest.TestCase):
    def test_what_was_built_works_where_it_is_installed(self):
        with tempfile.TemporaryDirectory() as folder:
            prefix = pathlib.Path(folder)
            environment = {"PATH": os.environ["PATH"], "HOME": folder, "PREFIX": folder}
            subprocess.run([sys.executable, SCRIPT, "--build", BUILD], env=environment, check=True,
                           capture_output=True)
            version = subprocess.run([prefix / "bin/corvane-render", "--version"], env=environment, check=True,
                                     capture_output=True, text=True).stdout
            self.assertRegex(version, r"\Acorvane-render \d+\.\d+\.\d+\n\Z")
            documents = prefix / "share/doc/CorvaneQ7"
            for name in ("LICENSE", "THIRD-PARTY.md"):
                self.assertEqual((documents / name).read_bytes(), (SCRIPT.parents[1] / name).read_bytes())
            if GPL.is_file():
                self.assertEqual((documents / "GPL-3").read_bytes(), GPL.read_bytes())
            subprocess.run([sys.executable, SCRIPT, "--build", BUILD, "--uninstall"], env=environment, check=True,
                           capture_output=True)
            self.assertEqual(tree(prefix), {})


if __name__ == "__main__":
    unittest.main()
