#!/usr/bin/env bash
# Runs the tests of the Python module against a build of the library: run_tests.sh LIBRARY
# The last line is "N passed, M failed". Debian's interpreter has the peers (pydicom, numpy) that some tests
# ask; PYTHON names another one.
set -euo pipefail
library=$(realpath "$1")
cd "$(dirname "$0")"

export PGKIT_LIBRARY=$library PYTHONPATH=$PWD PYTHONDONTWRITEBYTECODE=1
"${PYTHON:-/usr/bin/python3}" -W error - <<'SCRIPT'
import ctypes
import sys
import unittest

suite = unittest.defaultTestLoader.discover("tests")
result = unittest.TextTestRunner(stream=sys.stdout, verbosity=1).run(suite)
failed = len(result.failures) + len(result.errors)
sys.stdout.flush()
ctypes.CDLL(None).fflush(None)  # what the library printed comes before the summary
print(f"\n{result.testsRun - failed} passed, {failed} failed")
sys.exit(0 if result.wasSuccessful() and result.testsRun else 1)
SCRIPT
