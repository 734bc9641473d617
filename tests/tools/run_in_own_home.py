#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Runs a program with a home, XDG folders and a working folder of its own, which are gone afterwards:
# run_in_own_home.py PROGRAM ARGUMENTS...
import os
import pathlib
import subprocess
import sys
import tempfile

FOLDERS = {"HOME": "home", "XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data", "XDG_STATE_HOME": "state",
           "XDG_CACHE_HOME": "cache", "XDG_RUNTIME_DIR": "runtime", "TMPDIR": "tmp"}


def main():
    if len(sys.argv) < 2:
        sys.exit("usage: run_in_own_home.py PROGRAM ARGUMENTS...")
    with tempfile.TemporaryDirectory() as scratch:
        environment = {name: value for name, value in os.environ.items() if not name.startswith(("VELLUM_", "VL_"))}
        for name, folder in FOLDERS.items():
            path = pathlib.Path(scratch, folder)
            path.mkdir(mode=0o700)
            environment[name] = str(path)
        status = subprocess.run(sys.argv[1:], env=environment, cwd=environment["TMPDIR"],
                                stdin=subprocess.DEVNULL).returncode
    if status < 0:
        print(f"{sys.argv[1]} was ended by signal {-status}", file=sys.stderr)
    sys.exit(status if status >= 0 else 128 - status)


if __name__ == "__main__":
    main()
