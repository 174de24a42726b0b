#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Installs what `make build` made, or takes it away again: install.py [--uninstall] [--build FOLDER]

Below PREFIX (and DESTDIR) when the environment names one, otherwise into the user's own folders, where hosts look without
being told.

A plug-in that works is never lost. Everything new is looked at and then copied beside its place before anything that is
installed is touched; then each bundle changes places with the new one in a single step of the system. Whenever this
program is stopped, a host finds the old bundle or the new one, and the next run tidies up.

What is installed, and the folders that were made for it, are written down below share/doc: uninstalling removes these
files, and of these folders those that are empty.
"""

import argparse
import contextlib
import ctypes
import errno
import fcntl
import os
import pathlib
import platform
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile

Path = pathlib.Path

HERE = Path(__file__).resolve().parent.parent
RECORD = Path("share/doc/CorvaneQ7/installed-files")
BUNDLES = (".vst3", ".lv2")
MANUAL = Path("docs/Corvane Q7 Manual.pdf")


class Failure(Exception):
    """What a person is told, in a sentence."""


class Place:
    """Where things go: below a root, at paths that the record keeps."""

    def __init__(self, environment):
        prefix, destdir = environment.get("PREFIX", ""), environment.get("DESTDIR", "")
        self.is_own = not prefix and not destdir
        self.destdir = os.path.abspath(destdir) if destdir else ""
        home = environment.get("HOME", "")
        if self.is_own and not home:
            raise Failure("HOME is not set; name a PREFIX")
        prefix = home if self.is_own else prefix or "/usr/local"
        self.root = Path(self.destdir + os.path.abspath(os.path.expanduser(prefix)))

    def path_of(self, staged):
        """Below the root, of what an installation with a prefix has at that path."""
        if not self.is_own:
            return staged
        return Path(staged.suffix, staged.name) if staged.suffix in BUNDLES else Path(".local", staged)

    @property
    def manual(self):
        """One place whatever the prefix: "Open Manual..." looks for it below the system's applications folder."""
        applications = "/Applications" if platform.system() == "Darwin" else "/usr"
        return Path(f"{self.destdir}{applications}/Harbor Guild/Corvane Q7") / MANUAL.name


# ---- what the build has ----------------------------------------------------------------------
def stage(build, folder):
    """Has the build's own rules install into a folder: they know what there is."""
    if not (build / "cmake_install.cmake").is_file():
        raise Failure("nothing is built yet: run 'make build' first")
    environment = {name: value for name, value in os.environ.items() if name != "DESTDIR"}
    done = subprocess.run(["cmake", "--install", build, "--prefix", folder], env=environment, capture_output=True,
                          text=True, check=False)
    # A list that root leaves in the user's own build folder would be in the user's way.
    (build / "install_manifest.txt").unlink(missing_ok=True)
    if done.returncode != 0:
        raise Failure("the build is not complete: run 'make build' first\n" + done.stderr.strip())


def units_of(staged):
    """What is put in its place as a whole: bundles, and files that are in none."""
    for path in sorted(staged.rglob("*")):
        relative = path.relative_to(staged)
        if not any(parent.suffix in BUNDLES for parent in relative.parents):
            if relative.suffix in BUNDLES or not path.is_dir():
                yield relative


def files_of(unit):
    return [path for path in sorted(unit.rglob("*")) if not path.is_dir()] if unit.is_dir() else [unit]


def require_whole(unit):
    """A link that was broken off leaves a bundle without its binary, or a binary without its end."""
    needed = []
    if unit.suffix == ".vst3":
        needed = list(unit.glob("Contents/*/CorvaneQ7*")) or [unit / "Contents"]
    if unit.suffix == ".lv2":
        manifest = unit / "manifest.ttl"
        text = manifest.read_text(encoding="utf-8") if manifest.is_file() else ""
        needed = [manifest] + [unit / name for name in re.findall(r"<([^<>/:]+\.(?:so|dylib|ttl))>", text)]
    for file in needed + files_of(unit):
        if not file.is_file() or file.stat().st_size == 0 or not is_whole_binary(file):
            raise Failure(f"the build is not complete ({unit.name}: {file.name}): run 'make build' first")


def is_whole_binary(file):
    """Whether the table of sections is there, with which the usual linkers end an ELF file; true of other files."""
    with file.open("rb") as stream:
        head = stream.read(64)
    if head[:5] != b"\x7fELF\x02" or len(head) < 64:
        return head[:4] != b"\x7fELF"
    order = "<" if head[5] == 1 else ">"
    table, = struct.unpack_from(order + "Q", head, 40)
    entry_size, entries = struct.unpack_from(order + "HH", head, 58)
    return table + entry_size * entries <= file.stat().st_size


# ---- the steps -------------------------------------------------------------------------------
def workshop_of(target):
    """Beside the target, on its file system, and where no host looks for bundles."""
    return target.parent / ".corvane-install"


def new_of(target):
    return workshop_of(target) / (target.name + ".new")


def old_of(target):
    return workshop_of(target) / (target.name + ".old")


def exists(path):
    return os.path.lexists(path)


def change_places(one, other):
    """In one step. False where the system cannot do that."""
    library = ctypes.CDLL(None, use_errno=True)
    exchange, here = 2, -100    # RENAME_EXCHANGE or RENAME_SWAP; AT_FDCWD
    names = os.fsencode(one), os.fsencode(other)
    if hasattr(library, "renameat2"):
        result = library.renameat2(here, names[0], here, names[1], exchange)
    elif hasattr(library, "renamex_np"):
        result = library.renamex_np(*names, exchange)
    else:
        return False
    if result != 0 and ctypes.get_errno() in (errno.ENOSYS, errno.EINVAL, errno.ENOTSUP):
        return False
    if result != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()), str(other))
    return True


def put(target):
    """The new one takes its place; what stood there, link or not, lies in the workshop then."""
    new, old = new_of(target), old_of(target)
    if not new.is_dir() or not exists(target):
        os.replace(new, target)
    elif not change_places(new, target):
        # Two steps: stopped between them, the next run puts the old one back.
        os.rename(target, old)
        os.rename(new, target)


def tidy(targets):
    """Puts right what an earlier run left that was stopped."""
    for target in targets:
        if exists(old_of(target)) and not exists(target):
            os.rename(old_of(target), target)
    for folder in {workshop_of(target) for target in targets}:
        shutil.rmtree(folder, ignore_errors=True)


def make_folder(folder, root):
    """Makes it, and gives those that were missing below the root, the outermost first."""
    missing = [path for path in [folder, *folder.parents] if root in path.parents and not path.is_dir()]
    folder.mkdir(parents=True, exist_ok=True)
    return missing[::-1]


@contextlib.contextmanager
def undisturbed():
    """Signals wait: a program that is asked to end does so before or behind what is left half done in between."""
    before = signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGINT, signal.SIGTERM, signal.SIGHUP})
    try:
        yield
    finally:
        signal.pthread_sigmask(signal.SIG_SETMASK, before)


@contextlib.contextmanager
def alone(root):
    """One run at a time below a root: each takes the other's workshop for a leftover."""
    handle = os.open(root, os.O_RDONLY)
    try:
        fcntl.flock(handle, fcntl.LOCK_EX)
        yield
    finally:
        os.close(handle)


# ---- the record ------------------------------------------------------------------------------
def record_of(place):
    return place.root / place.path_of(RECORD)


def read_record(place):
    """Lines of paths below the root; folders end with a stroke. None where nothing is installed."""
    try:
        return record_of(place).read_text(encoding="utf-8").splitlines()
    except FileNotFoundError:
        return None


def write_record(place, lines):
    new = new_of(record_of(place))
    new.parent.mkdir(exist_ok=True)
    new.write_text("".join(line + "\n" for line in sorted(lines)), encoding="utf-8")
    os.replace(new, record_of(place))
    with contextlib.suppress(OSError):      # more is being made in it
        new.parent.rmdir()


def path_in_record(place, line):
    """None for what no record of ours holds."""
    if line == str(place.manual)[len(place.destdir):]:
        return place.manual
    return None if line.startswith("/") or ".." in Path(line).parts else place.root / line


# ---- the two commands ------------------------------------------------------------------------
def install(staged, place):
    units = list(units_of(staged))
    for unit in units:
        require_whole(staged / unit)

    place.root.mkdir(parents=True, exist_ok=True)
    sources = {place.root / place.path_of(unit): staged / unit for unit in units}
    with alone(place.root):
        targets = [*sources, record_of(place)]
        folders = []
        for target in targets:
            folders += make_folder(target.parent, place.root)
        tidy(targets)
        try:
            for target, source in sources.items():
                if source.is_file() and target.is_dir() and not target.is_symlink():
                    raise Failure(f"{target} is a folder")
                workshop_of(target).mkdir(exist_ok=True)
                if source.is_dir():
                    shutil.copytree(source, new_of(target), symlinks=True)
                else:
                    shutil.copy2(source, new_of(target))

            lines = {str(folder.relative_to(place.root)) + "/" for folder in folders}
            for target, source in sources.items():
                for path in [source, *source.rglob("*")]:
                    name = str((target / path.relative_to(source)).relative_to(place.root))
                    lines.add(name + "/" if path.is_dir() else name)
            # Ahead of what it tells of, and with what it told before: too much in it does no harm.
            write_record(place, lines.union(read_record(place) or []))

            with undisturbed():
                for target in sources:
                    put(target)
                    print(target)
        finally:
            with undisturbed():
                tidy(targets)
        install_manual(place)
    if not any(unit.name == "GPL-3" for unit in units):
        print("The full text of the GPL, version 3, was not found on this system; LICENSE says where it is.")


def install_manual(place):
    if not MANUAL.is_file():
        return
    target = place.manual
    try:
        target.parent.mkdir(parents=True, exist_ok=True)
        workshop_of(target).mkdir(exist_ok=True)
        shutil.copyfile(MANUAL, new_of(target))
        os.replace(new_of(target), target)
        workshop_of(target).rmdir()
    except PermissionError:
        print(f"The manual stays in docs: only root may write to {target.parent}, where the plug-in looks for it.")
        return
    write_record(place, {*read_record(place), str(target)[len(place.destdir):]})
    print(target)


def uninstall(place):
    lines = read_record(place)
    if lines is None:
        print(f"Nothing of Corvane Q7 is installed below {place.root}.")
        return

    with alone(place.root):
        files = [path for line in lines if not line.endswith("/") and (path := path_in_record(place, line))]
        folders = [path for line in lines if line.endswith("/") and (path := path_in_record(place, line))]
        bundles = [folder for folder in folders if folder.suffix in BUNDLES]
        tidy([*files, *bundles])
        # A link that somebody put in a bundle's place leads to files that are not ours.
        links = [bundle for bundle in bundles if bundle.is_symlink()]

        for file in files:
            if exists(file) and not any(link in file.parents for link in links):
                file.unlink()
                print(f"removed {file}")
        if place.manual in files:
            folders += [place.manual.parent, place.manual.parent.parent]
        remove_empty(folders)
        record_of(place).unlink()
        tidy([record_of(place)])
        remove_empty(folders)


def remove_empty(folders):
    for folder in sorted(folders, key=lambda path: len(path.parts), reverse=True):
        with contextlib.suppress(OSError):      # not empty: something of somebody else's is in it
            folder.rmdir()


def main():
    arguments = argparse.ArgumentParser(description="Installs what `make build` made, or takes it away again.")
    arguments.add_argument("--uninstall", action="store_true")
    arguments.add_argument("--build", type=Path, default=Path("build/release"), help="the build folder")
    options = arguments.parse_args()
    for number in (signal.SIGTERM, signal.SIGHUP):
        if signal.getsignal(number) != signal.SIG_IGN:
            signal.signal(number, lambda which, _: sys.exit(128 + which))

    os.chdir(HERE)
    try:
        place = Place(os.environ)
        if not place.is_own:
            os.umask(0o022)     # for everybody on the system, whatever root keeps to itself
        if options.uninstall:
            uninstall(place)
            return 0
        with tempfile.TemporaryDirectory() as staged:
            stage(options.build, staged)
            install(Path(staged), place)
        return 0
    except (Failure, OSError) as error:
        print(f"Not {'un' if options.uninstall else ''}installed: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 128 + signal.SIGINT


if __name__ == "__main__":
    sys.exit(main())
