#!/usr/bin/python3
"""Compares pgtool dump with an independent reader, and feeds it every bad file.

    compare_readers.py PGTOOL SANITIZED_PGTOOL [WINDOWS_PGTOOL COMMAND...]

The files are those of tests/data and, when the environment variable PGKIT_SAMPLES names a directory,
all files below it. Three kinds of checks, a line each:

  same    what pgtool prints of a well-formed file is, byte for byte, what follows from the raw
          elements that pydicom reads: nesting, tags, value representations, lengths and values.
          Only the names of the elements, the dictionaries' own vocabulary, are left out.
  robust  the sanitized pgtool opens the file, however broken, with several limits and flags: it ends
          by itself within seconds, says nothing of an error in memory, uses little memory, and
          prints the same text whatever the load limit.
  windows the Windows build prints the same bytes (only tests/data).

The last line is "N passed, M failed"; the exit status tells the same.
"""

import functools
import os
import pathlib
import subprocess
import sys
import threading
import warnings

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import files_below, run_comparison  # noqa: E402
from dump_text import DumpReader  # noqa: E402
from raw_elements import read_raw  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"

# Well-formed files that no two readers have to read alike.
NO_COMMON_READING = {
    "headerless/meta_without_transfer_syntax.dcm":
        "without a transfer syntax the data set counts as explicit VR; here it is implicit",
}

# (load limit, flags) of the robustness runs.
OPENINGS = [
    (0, 0),
    (64, 0),
    (0xFFFFFFFF, 0),
    (64, 0x01),
    (64, 0x200),
    (64, 0x400),
    (0xFFFFFFFF, 0x08 | 0x40),
    (0xFFFFFFFF, 0x10 | 0x40),
    (0xFFFFFFFF, 0x08 | 0x20),
]
# Far beyond what any file takes: the machine may be busy with other tests.
SECONDS = 60
MEMORY_MB = 200  # of the sanitized program, whose allocator hoards what was freed
# A dump asks for a buffer of the length that an element claims, and does not touch it. The sanitizer
# does: it marks an eighth of it, which takes it seconds. So it refuses what is larger.
BUFFER_MB = 512

SANITIZER_EXIT = 99
SANITIZER_OPTIONS = {
    "ASAN_OPTIONS": f"exitcode={SANITIZER_EXIT}:hard_rss_limit_mb={MEMORY_MB}"
                    f":allocator_may_return_null=1:max_allocation_size_mb={BUFFER_MB}"
                    ":quarantine_size_mb=16:detect_leaks=1",
    "UBSAN_OPTIONS": f"exitcode={SANITIZER_EXIT}:print_stacktrace=1",
}


# Most of the time of a sanitized program goes into starting it.
FILES_AT_ONCE = 25


def dump(command, *paths, limit=4096, flags=0, environment=None):
    """Runs pgtool dump. The result has the fields returncode, stdout and stderr."""
    arguments = ["dump", "--raw", *map(str, paths), "--load-limit", str(limit),
                 "--flags", hex(flags)]
    return subprocess.run(command + arguments, capture_output=True, timeout=SECONDS,
                          env={**os.environ, **(environment or {})})


def check_same(tool, path):
    """Returns a complaint, or None when the two readers agree."""
    data_set = read_raw(path)
    # A bare data set does not say that it is big endian: the caller has to know.
    flags = 0
    if data_set.is_bare and data_set.is_big_endian:
        flags = 0x40 | (0x10 if data_set.is_implicit else 0x08)
    run = dump([tool], path, flags=flags)
    if run.returncode != 0:
        return f"exit status {run.returncode}: {run.stderr.decode(errors='replace').strip()}"
    return DumpReader(run.stdout).difference(data_set)


def complaint_of(tool, *paths):
    """What is wrong with the sanitized dump of one file, or of one of several."""
    texts = {}
    for limit, flags in OPENINGS:
        opening = f"load limit {limit}, flags {flags:#x}"
        try:
            run = dump([tool], *paths, limit=limit, flags=flags, environment=SANITIZER_OPTIONS)
        except subprocess.TimeoutExpired:
            return f"{opening}: not done after {SECONDS} seconds"
        if run.returncode not in (0, 1) or b"runtime error" in run.stderr:
            return f"{opening}: exit status {run.returncode}\n{run.stderr.decode(errors='replace')}"
        if texts.setdefault(flags, run.stdout) != run.stdout:
            return f"{opening}: the text depends on the load limit"
    return None


class SanitizedDumps:
    """Of some files: all together, and each by itself when something is wrong with one of them."""

    def __init__(self, tool, paths):
        self.tool = tool
        self.paths = paths
        self.lock = threading.Lock()

    @functools.cached_property
    def are_sound(self):
        return complaint_of(self.tool, *self.paths) is None

    def check(self, path):
        with self.lock:
            if self.are_sound:
                return None
        return complaint_of(self.tool, path)


def check_windows(tool, command, path):
    windows = dump(command, path.relative_to(pathlib.Path.cwd()))
    native = dump([tool], path.relative_to(pathlib.Path.cwd()))
    if windows.returncode != native.returncode:
        return (f"exit status {windows.returncode}, native {native.returncode}\n"
                + windows.stderr.decode(errors="replace"))
    if windows.stdout != native.stdout:
        lines = zip(windows.stdout.split(b"\n"), native.stdout.split(b"\n"))
        return next((f"{w!r}, native {n!r}" for w, n in lines if w != n), "lengths differ")
    return None


def broken_files(root):
    """The files that MANIFEST.tsv, if there is one, says do not follow the format to their end."""
    manifest = root / "MANIFEST.tsv"
    if not manifest.exists():
        return set()
    rows = [line.split("\t") for line in
            manifest.read_text(encoding="utf-8", errors="replace").splitlines()[1:]]
    return {row[0] for row in rows if "parse problem" in row[5]}


def checks_of(root, tool, sanitized, windows):
    """Yields (kind, name, function, arguments) for every file below root."""
    broken = broken_files(root)
    files = list(files_below(root))
    for start in range(0, len(files), FILES_AT_ONCE):
        some = files[start:start + FILES_AT_ONCE]
        dumps = SanitizedDumps(sanitized, [path for _, path in some])
        for name, path in some:
            yield "robust", name, dumps.check, (path,)
    for name, path in files:
        if windows:
            yield "windows", name, check_windows, (tool, windows, path)
        if not name.startswith("bad/") and name not in broken and name not in NO_COMMON_READING:
            yield "same", name, check_same, (tool, path)


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values; they are compared raw
    tool, sanitized, *windows = sys.argv[1:]
    # A path of the Linux file system means nothing to the Windows build.
    sys.exit(run_comparison(DATA, checks_of, (tool, sanitized, windows), (tool, sanitized, None)))
