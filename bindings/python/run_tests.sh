#!/usr/bin/env bash
# Runs the tests of the Python module against a build of the library: run_tests.sh LIBRARY
# Where the part in C++ is beside the library, what concerns values runs without it, too. The last line is
# "N passed, M failed". Debian's interpreter has the peers (pydicom, numpy) that some tests ask; PYTHON
# names another one.
set -euo pipefail
library=$(realpath "$1")
cd "$(dirname "$0")"

export PGKIT_LIBRARY=$library PYTHONPATH=$PWD PYTHONDONTWRITEBYTECODE=1
"${PYTHON:-/usr/bin/python3}" -W error - <<'SCRIPT'
import ctypes
import os
import subprocess
import sys
import unittest

OF_VALUES = ["test_data_set", "test_habits", "test_peer"]


def run(suite):
    """Runs tests; how many there were, and how many of them failed."""
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=1).run(suite)
    sys.stdout.flush()
    ctypes.CDLL(None).fflush(None)  # what the library printed comes before the summary
    return result.testsRun, len(result.failures) + len(result.errors)


def run_in_python():
    """The same without the part in C++, which a process has or has not."""
    code = ("import sys, unittest\n"
            "sys.path.insert(0, 'tests')\n"
            f"suite = unittest.defaultTestLoader.loadTestsFromNames({OF_VALUES!r})\n"
            "result = unittest.TextTestRunner(stream=sys.stdout).run(suite)\n"
            "print(result.testsRun, len(result.failures) + len(result.errors))\n")
    told = subprocess.run([sys.executable, "-W", "error", "-c", code], stdout=subprocess.PIPE, text=True,
                          env={**os.environ, "PGKIT_PURE_PYTHON": "1"}, check=False).stdout
    print("Without the part in C++:\n" + told)
    try:
        return tuple(map(int, told.splitlines()[-1].split()))
    except (IndexError, ValueError):
        return 1, 1


count, failed = run(unittest.defaultTestLoader.discover("tests"))
if sys.modules["pgkit"]._bases.is_native:
    more, more_failed = run_in_python()
    count, failed = count + more, failed + more_failed
print(f"\n{count - failed} passed, {failed} failed")
sys.exit(0 if not failed and count else 1)
SCRIPT
