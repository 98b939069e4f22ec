#!/usr/bin/env python3
"""Times "pgtool disc" of many small files, and "pgtool verify" of the disc, beside copying them, and prints a
table:

    disc_beside_copy.py PGTOOL [FILES [FOLDER]]

The files (5,000 unless told) are copies of a small image with instance UIDs of their own, 100 in a
series, in a temporary directory, or in one below FOLDER: a file system on disk and one in memory
give different times. Runs are whole processes that take turns; medians of five, with the files in
the system's cache. The targets are removed between the runs, which is not timed. dcmmkdir makes the
DICOMDIR of a copy, where it is installed: what people do with other tools.
"""
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
IMAGE = ROOT / "tests/data/native/mr_implicit_le.dcm"
SERIES = 100
RUNS = 5


def make_files(directory, count):
    image = IMAGE.read_bytes()
    instance = b"1.3.6.1.4.1.5962.1.1.4.1.1.20040826185059.5457"
    series = b"1.3.6.1.4.1.5962.1.3.4.1.20040826185059.5457"
    if instance not in image or series not in image:
        sys.exit(f"{IMAGE} has other UIDs")
    for i in range(count):
        folder = directory / f"SE{i // SERIES:04}"
        folder.mkdir(parents=True, exist_ok=True)
        own = image.replace(instance, b"1.3.6.1.4.1.5962.1.1.4.1.1.%019d" % i)
        own = own.replace(series, b"1.3.6.1.4.1.5962.1.3.4.1.%019d" % (i // SERIES))
        (folder / f"IM{i % SERIES:04}").write_bytes(own)


def commands(pgtool, source, target, made):
    """Yields (label, commands); made is a disc that is there already."""
    disc = [pgtool, "disc", source, "-o", target]
    copy = ["cp", "-r", source, target]
    yield "cp -r", [copy]
    yield "pgtool disc", [disc]
    yield "pgtool disc --transfer-syntax explicit", [[*disc, "--transfer-syntax", "explicit"]]
    yield "pgtool disc --icons 64", [[*disc, "--icons", "64"]]
    yield "pgtool disc --web", [[*disc, "--web"]]
    yield "pgtool verify", [[pgtool, "verify", made]]
    if shutil.which("dcmmkdir"):
        yield "cp -r and dcmmkdir", [copy, ["dcmmkdir", "-q", "+id", target, "+r", "+I", "-Nxc",
                                            "+D", f"{target}/DICOMDIR"]]


def seconds(steps):
    begin = time.monotonic()
    for command in steps:
        subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    return time.monotonic() - begin


def main():
    pgtool = str(pathlib.Path(sys.argv[1]).resolve())
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 5000
    place = sys.argv[3] if len(sys.argv) > 3 else None
    with tempfile.TemporaryDirectory(dir=place) as name:
        source, target, made = f"{name}/source", f"{name}/target", f"{name}/made"
        make_files(pathlib.Path(source), count)
        seconds([[pgtool, "disc", source, "-o", made]])
        jobs = list(commands(pgtool, source, target, made))
        times = {label: [] for label, _ in jobs}
        for turn in range(RUNS + 1):
            for label, steps in jobs:
                passed = seconds(steps)
                shutil.rmtree(target, ignore_errors=True)  # a check leaves none
                if turn != 0:  # the first one fills the cache
                    times[label].append(passed)
        floor = statistics.median(times["cp -r"])
        print("| | time | each file | beside cp -r |\n| --- | ---: | ---: | ---: |")
        for label, _ in jobs:
            passed = statistics.median(times[label])
            print(f"| {label} | {passed:.2f} s | {passed / count * 1e6:.0f} us | "
                  f"{passed / floor:.1f} |")


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3, 4):
        sys.exit("usage: disc_beside_copy.py PGTOOL [FILES [FOLDER]]")
    main()
