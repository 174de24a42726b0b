#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a command on an X server of its own, without a window manager: with_screen.py [--size 1920x1200] COMMAND...

Each server has a display number of its own, far from 0, so that tests may run side by side: programs that name no display
try number 0, and would end with a server that they found there by chance. The result is the command's.
"""

import argparse
import contextlib
import os
import subprocess
import sys


def start(number, size):
    """The server of that number once it answers; None where it does not start, as when the number is taken."""
    readable, writable = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", ":%d" % number, "-displayfd", str(writable), "-screen", "0", size + "x24", "-nolisten", "tcp",
         "-noreset"],
        pass_fds=[writable], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writable)
    with os.fdopen(readable) as pipe:
        if pipe.readline().strip():
            return server
    server.wait()
    return None


@contextlib.contextmanager
def screen(size="1920x1200"):
    """An X server of that size; gives the environment for programs that shall use it."""
    server, number = None, 100 + os.getpid() % 50000
    for candidate in range(number, number + 20):
        server = start(candidate, size)
        if server is not None:
            number = candidate
            break
    if server is None:
        raise RuntimeError("Xvfb did not start")
    try:
        environment = dict(os.environ, DISPLAY=":%d" % number)
        environment.pop("XAUTHORITY", None)
        environment.pop("WAYLAND_DISPLAY", None)
        yield environment
    finally:
        server.terminate()
        server.wait()


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("--size", default="1920x1200")
    options.add_argument("command", nargs=argparse.REMAINDER)
    chosen = options.parse_args()
    with screen(chosen.size) as environment:
        return subprocess.run(chosen.command, env=environment).returncode


if __name__ == "__main__":
    sys.exit(main())
