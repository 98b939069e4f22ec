#!/usr/bin/python3
"""Times how long JSON of files takes: json_of_peers.py LIBRARY FILE...

Processor time for each file, opened and written as JSON without its Pixel Data: by the library and by
pydicom in this process, and by dcm2json as a process for each file (with that, an empty one beside it:
"dcm2json --version"). Prints a row of a Markdown table for each file.
"""

import ctypes
import os
import resource
import subprocess
import sys
import time

import pydicom


class Options(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("bulk_limit", ctypes.c_uint64),
                ("source", ctypes.c_char_p), ("uri", ctypes.c_void_p),
                ("uri_context", ctypes.c_void_p), ("character_set", ctypes.c_void_p)]


class Library:
    def __init__(self, path):
        self._library = ctypes.CDLL(os.path.abspath(path))
        self._library.pgOpenDataSetFile.restype = ctypes.c_void_p
        self._library.pgxGetJson.restype = ctypes.c_int64
        self._library.pgxGetJson.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_char_p,
                                             ctypes.c_size_t]
        self._library.pgCloseDataSet.argtypes = [ctypes.c_void_p]
        self._buffer = ctypes.create_string_buffer(1 << 24)
        self._options = Options(ctypes.sizeof(Options), 4096, b"file")

    def json(self, path):
        root = self._library.pgOpenDataSetFile(path.encode(), 4096)
        length = self._library.pgxGetJson(root, ctypes.byref(self._options), self._buffer,
                                          len(self._buffer))
        self._library.pgCloseDataSet(root)
        if not 0 < length < len(self._buffer):
            raise ValueError(f"{path}: {length}")


def seconds_of(job):
    """The least of a few, so that what else the machine does counts little."""
    def measured(count):
        start = time.process_time() + children()
        for _ in range(count):
            job()
        return (time.process_time() + children() - start) / count

    count = max(1, int(0.05 / max(measured(1), 1e-6)))
    return min(measured(count) for _ in range(5))


def children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run(*command):
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)


def pydicom_json(path):
    pydicom.dcmread(path, stop_before_pixels=True, force=True).to_json()


def main(library_path, *paths):
    library = Library(library_path)
    print("| file | pgkit | pydicom | dcm2json | its start alone |")
    print("| --- | ---: | ---: | ---: | ---: |")
    start = seconds_of(lambda: run("dcm2json", "--version"))
    for path in paths:
        times = [seconds_of(lambda: library.json(path)), seconds_of(lambda: pydicom_json(path)),
                 seconds_of(lambda: run("dcm2json", "-q", "-fc", path)), start]
        print(f"| {os.path.basename(path)} | "
              + " | ".join(f"{seconds * 1e6:.0f} us" for seconds in times) + " |", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
