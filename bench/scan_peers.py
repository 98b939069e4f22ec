#!/usr/bin/env python3
"""Times "pgtool scan" of many small files beside other tools, and prints a table:

    scan_peers.py PGTOOL [FILES]

The files (20,000 unless told) are copies of a small image with instance UIDs of their own, in folders
of 500, in a temporary directory. Each run is a whole process with its output thrown away; the best of
three counts, with the files in the system's cache. "cold" rows have the cache dropped before each
run, where that is allowed (as root). What is timed: pgtool with one thread and with one for each
processor, dcmdump of seven elements, and a loop over pydicom.dcmread that stops before the pixels.
Tools that are not installed are left out.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
IMAGE = ROOT / "tests/data/native/mr_implicit_le.dcm"
FOLDER = 500
RUNS = 3
KEYWORDS = ["PatientID", "PatientName", "StudyDate", "Modality", "StudyInstanceUID",
            "SeriesInstanceUID", "SOPInstanceUID"]
LOOP = """
import pathlib, sys, pydicom
for path in sorted(pathlib.Path(sys.argv[1]).rglob("*")):
    if path.is_file():
        ds = pydicom.dcmread(path, stop_before_pixels=True)
        print(path, *(getattr(ds, name, "") for name in sys.argv[2:]), sep=",")
"""


def make_files(directory, count):
    image = IMAGE.read_bytes()
    uid = b"20040826185059.5457"
    for i in range(count):
        folder = directory / f"{i // FOLDER:04}"
        folder.mkdir(exist_ok=True)
        (folder / f"{i:06}").write_bytes(image.replace(uid, b"%019d" % i))


def drop_cache():
    subprocess.run(["sync"], check=True)
    pathlib.Path("/proc/sys/vm/drop_caches").write_text("3\n", encoding="ascii")


def seconds(command, cold):
    best = None
    for _ in range(1 if cold else RUNS):
        if cold:
            drop_cache()
        begin = time.monotonic()
        subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        passed = time.monotonic() - begin
        best = passed if best is None else min(best, passed)
    return best


def commands(pgtool, directory):
    yield "pgtool scan -j 1", [pgtool, "scan", directory, "-j", "1"]
    yield "pgtool scan", [pgtool, "scan", directory]
    if shutil.which("dcmdump"):
        tags = [word for name in KEYWORDS for word in ("+P", name)]
        yield "dcmdump +sd +r", ["dcmdump", "-q", *tags, "+sd", "+r", directory]
    for python in ("/usr/bin/python3", sys.executable):
        if subprocess.run([python, "-c", "import pydicom"], stderr=subprocess.DEVNULL,
                          check=False).returncode == 0:
            yield "pydicom.dcmread loop", [python, "-c", LOOP, directory, *KEYWORDS]
            break


def main():
    pgtool = str(pathlib.Path(sys.argv[1]).resolve())
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 20000
    with tempfile.TemporaryDirectory() as name:
        make_files(pathlib.Path(name), count)
        print("| | time | files per second |\n| --- | ---: | ---: |")
        for label, command in commands(pgtool, name):
            passed = seconds(command, False)
            print(f"| {label} | {passed:.2f} s | {count / passed:,.0f} |", flush=True)
        try:
            drop_cache()
        except OSError:
            return
        for threads in ("1", "2", "8"):
            passed = seconds([pgtool, "scan", name, "-j", threads], True)
            print(f"| cold, pgtool scan -j {threads} | {passed:.2f} s | {count / passed:,.0f} |",
                  flush=True)


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit("usage: scan_peers.py PGTOOL [FILES]")
    main()
