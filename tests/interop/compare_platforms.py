#!/usr/bin/env python3
"""pgtool for another processor does what the native one does, byte for byte.

    compare_platforms.py PGTOOL LAUNCHER... OTHER_PGTOOL

Every file of tests/data is dumped, shown as JSON and saved in each encoding, and every DICOMDIR is
browsed and verified, by both: what is printed, what is written and the exit status must be equal. The
launcher runs programs for the other processor. The last line is "N passed, M failed".
"""
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/support"))
from check_runner import files_below, run_checks  # noqa: E402

MODES = ("implicit-le", "explicit-le", "explicit-be", "as-read")
JOBS = {"dump": ["dump", "FILE"], "raw": ["dump", "--raw", "FILE"], "json": ["json", "FILE"],
        **{mode: ["save", "FILE", "OUT", "--mode", mode] for mode in MODES}}
MEDIA_JOBS = {"browse": ["browse", "FILE", "--json"], "verify": ["verify", "FILE", "--json"]}


def result_of(launcher, job, file):
    """The exit status, what was printed on either stream, and what was written."""
    with tempfile.TemporaryDirectory() as directory:
        written = pathlib.Path(directory) / "out"
        places = {"FILE": str(file), "OUT": str(written)}
        done = subprocess.run([*launcher, *(places.get(word, word) for word in job)], check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)
        hide = directory.encode()
        return (done.returncode, done.stdout.replace(hide, b"DIR"), done.stderr.replace(hide, b"DIR"),
                written.read_bytes() if written.is_file() else None)


def first_difference(native, other):
    for name, one, two in zip(("exit status", "output", "errors", "file"), native, other):
        if one == two:
            continue
        if not (isinstance(one, bytes) and isinstance(two, bytes)):
            return f"{name}: {str(one)[:300]}, not {str(two)[:300]}"
        at = next((i for i, pair in enumerate(zip(one, two)) if pair[0] != pair[1]),
                  min(len(one), len(two)))
        return f"{name}, byte {at}: {one[max(at - 60, 0):at + 40]!r}, not {two[max(at - 60, 0):at + 40]!r}"
    return None


def check(native, other, job, file):
    return first_difference(result_of(native, job, file), result_of(other, job, file))


def checks(native, other):
    for name, path in files_below(ROOT / "tests/data"):
        jobs = {**JOBS, **(MEDIA_JOBS if "DICOMDIR" in path.name else {})}
        for kind, job in jobs.items():
            yield kind, name, check, (native, other, job, path)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit("usage: compare_platforms.py PGTOOL LAUNCHER... OTHER_PGTOOL")
    sys.exit(run_checks(list(checks([sys.argv[1]], sys.argv[2:]))))
