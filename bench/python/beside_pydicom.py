#!/usr/bin/env python3
"""Times this module beside pydicom, in one run: beside_pydicom.py [FILE...]

PGKIT_LIBRARY names the library, PYTHONPATH the folder of the module; PGKIT_PURE_PYTHON leaves out its
part in C++. Prints a Markdown table; each
time is the best of many, both in turns. Without files: those of tests/data named below, and 200 MiB of
pixels in a temporary file.
"""

import os
import pathlib
import sys
import tempfile
import time

import pydicom

import pgkit

DATA = pathlib.Path(__file__).resolve().parents[2] / "tests/data"
FILES = ("native/mr_implicit_le.dcm", "native/all_vrs_explicit_le.dcm",
         "sequences/sr_nested_explicit_undefined.dcm", "sequences/rtplan_implicit.dcm")
KEYS = ("PatientName", "PatientID", "StudyInstanceUID", "SeriesInstanceUID", "SOPInstanceUID",
        "Modality", "Rows", "Columns")
PIXELS = 200 << 20


def best(*functions, seconds=1.5, rounds=5):
    """The best time of each, in seconds; they take turns of a fraction of a second."""
    times = [float("inf")] * len(functions)
    for _ in range(rounds):
        for index, function in enumerate(functions):
            end = time.perf_counter() + seconds / rounds / len(functions)
            while (begin := time.perf_counter()) < end:
                function()
                times[index] = min(times[index], time.perf_counter() - begin)
    return times


def micros(seconds):
    return f"{seconds * 1e6:,.{2 if seconds < 1e-6 else 1}f} us"


def line(job, mine, others):
    print(f"| {job} | {micros(mine)} | {micros(others)} | {others / mine:.1f} |")


def eight_values(opened):
    for key in KEYS:
        getattr(opened, key, None)


def walk_mine(path):
    with pgkit.open(path) as data_set:
        for element in data_set.walk():
            try:
                element.value
            except (ValueError, pgkit.PgkitError):  # encapsulated Pixel Data have none
                pass


def walk_others(path):
    for element in pydicom.dcmread(path).iterall():
        element.value


def time_file(path):
    name = pathlib.Path(path).name
    line(f"open and eight values, {name}",
         *best(lambda: eight_values(pgkit.open(path)), lambda: eight_values(pydicom.dcmread(path))))
    line(f"open and all elements, {name}",
         *best(lambda: walk_mine(path), lambda: walk_others(path)))
    line(f"scan of eight values, {name}",
         *best(lambda: pgkit.read_values(path, KEYS),
               lambda: eight_values(pydicom.dcmread(path, stop_before_pixels=True,
                                                    specific_tags=list(KEYS)))))


def time_access(path):
    mine, others = pgkit.open(path), pydicom.dcmread(path)

    def often(data_set):
        for _ in range(1000):
            data_set.PatientName

    line("ds.PatientName of an open data set",
         *(seconds / 1000 for seconds in best(lambda: often(mine), lambda: often(others))))


def time_pixels(folder):
    path = os.path.join(folder, "large.dcm")
    with pgkit.new() as data_set:
        data_set.SOPClassUID = "1.2.840.10008.5.1.4.1.1.7"
        data_set.SOPInstanceUID = pgkit.generate_uid()
        data_set.SamplesPerPixel, data_set.NumberOfFrames = 1, PIXELS // (1024 * 1024 * 2)
        data_set.PhotometricInterpretation = "MONOCHROME2"
        data_set.Rows = data_set.Columns = 1024
        data_set.BitsAllocated = data_set.BitsStored = 16
        data_set.HighBit, data_set.PixelRepresentation = 15, 0
        data_set.PixelData = os.urandom(1 << 20) * (PIXELS >> 20)
        data_set.save(path)
    line("open and pixel_array, 200 MiB",
         *best(lambda: pgkit.open(path).pixel_array, lambda: pydicom.dcmread(path).pixel_array,
               seconds=4))


def main(files):
    print("|  | pgkit | pydicom | pydicom/pgkit |\n| --- | ---: | ---: | ---: |")
    for file in files or [DATA / name for name in FILES]:
        time_file(str(file))
    time_access(str(DATA / FILES[0]))
    with tempfile.TemporaryDirectory() as folder:
        time_pixels(folder)


if __name__ == "__main__":
    main(sys.argv[1:])
