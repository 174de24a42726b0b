#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a command on an X server of its own, without a window manager: with_screen.py [--size 1920x1200] COMMAND...

The server chooses its own display number, so that tests may run side by side. The result is the command's.
"""

import argparse
import contextlib
import os
import subprocess
import sys


@contextlib.contextmanager
def screen(size="1920x1200"):
    """An X server of that size; gives the environment for programs that shall use it."""
    readable, writable = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writable), "-screen", "0", size + "x24", "-nolisten", "tcp", "-noreset"],
        pass_fds=[writable], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writable)
    try:
        with os.fdopen(readable) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        environment = dict(os.environ, DISPLAY=":" + number)
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
