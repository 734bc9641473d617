# SPDX-License-Identifier: MIT
# Everything in this folder. What tests clients waits more than it works: they run beside the rest.
import pathlib
import subprocess
import sys
import unittest

FOLDER = pathlib.Path(__file__).resolve().parent
WAITING = (("test_hostile_server", "test_providers"), ("test_slow_server",))
WORKING = ("test_packets", "test_messages", "test_values", "test_files", "test_floods", "test_hub")


def main():
    beside = [subprocess.Popen([sys.executable, "-m", "unittest", *names], cwd=FOLDER) for names in WAITING]
    sys.path.insert(0, str(FOLDER))
    result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromNames(WORKING))
    sys.exit(any([process.wait() for process in beside]) or not result.wasSuccessful())


if __name__ == "__main__":
    main()
