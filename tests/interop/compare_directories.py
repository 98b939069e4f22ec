#!/usr/bin/python3
"""Compares pgtool browse with the directory records that an independent reader finds.

    compare_directories.py PGTOOL SANITIZED_PGTOOL [WINDOWS_PGTOOL COMMAND...]

The files are the DICOMDIRs, sound and damaged, in tests/data and, when the environment variable
PGKIT_SAMPLES names a directory, below it. Three kinds of checks, a line each:

  browse  the hierarchy that pgtool prints as JSON is the one that follows from the records that
          pydicom reads (directory_records.py): patients, studies, series and leaves, their keys,
          their order and their file IDs, and which of the files are there.
  robust  the sanitized pgtool prints the same bytes and says nothing of an error in memory.
  windows the Windows build prints the same bytes (only tests/data).

The last line is "N passed, M failed"; the exit status tells the same.
"""

import json
import os
import pathlib
import subprocess
import sys
import warnings

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import run_comparison  # noqa: E402
from directory_records import DIRECTORY_CLASS, Hierarchy  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
SECONDS = 60
CHILDREN = {"patients": "studies", "studies": "series", "series": "leaves", "leaves": None}

# Images of these classes give the series a modality of their own, whatever its record says.
REPORT_PREFIX = "1.2.840.10008.5.1.4.1.1.88."
OWN_MODALITIES = ("SR", "KO", "PR")


def browse(command, path):
    run = subprocess.run(command + ["browse", str(path), "--json"], capture_output=True,
                         timeout=SECONDS, check=False)
    if run.returncode not in (0, 1) or not run.stdout:  # 1: not all of it can be read
        raise RuntimeError(f"exit status {run.returncode}: {run.stderr.decode(errors='replace')}")
    return run.stdout


def has_file(path, file_id):
    """Whether the medium has a file, found without regard to case."""
    place = path.parent
    for component in file_id.split("\\"):
        names = {name.lower(): name for name in os.listdir(place)} if place.is_dir() else {}
        name = names.get(component.strip(" ").lower())
        if name is None:
            return False
        place = place / name
    return place.is_file()


def difference(level, printed, expected, place=""):
    """Where two lists of objects differ, or None. Keys that pgtool alone has do not count."""
    if len(printed) != len(expected):
        return f"{place}/{level}: {len(printed)} of them, expected {len(expected)}"
    for index, (ours, theirs) in enumerate(zip(printed, expected)):
        here = f"{place}/{level}[{index}]"
        for key, value in theirs.items():
            if key == CHILDREN[level]:
                continue
            if key == "modality" and ours[key] in OWN_MODALITIES and is_renamed(theirs):
                continue
            if ours[key] != value:
                return f"{here}.{key}: {ours[key]!r}, expected {value!r}"
        if CHILDREN[level]:
            below = CHILDREN[level]
            found = difference(below, ours[below], theirs[below], here)
            if found:
                return found
    return None


def is_renamed(series):
    """Whether a series holds IMAGE records of objects that are no images."""
    return any(leaf["recordType"].startswith("IMAGE")
               and (leaf["sopClassUid"].startswith(REPORT_PREFIX)
                    or leaf["sopClassUid"] == "1.2.840.10008.5.1.4.1.1.11.1")
               for leaf in series["leaves"])


def leaves_of(patients):
    return [leaf for patient in patients for study in patient["studies"]
            for series in study["series"] for leaf in series["leaves"]]


def check_browse(tool, path):
    printed = json.loads(browse([tool], path).decode("utf-8"))
    found = difference("patients", printed["patients"], Hierarchy(path).patients)
    if found:
        return found
    leaves = leaves_of(printed["patients"])
    if printed["counts"]["instances"] != len(leaves):
        return f"counts {printed['counts']['instances']} instances, prints {len(leaves)}"
    for leaf in leaves:
        if leaf["file"] == "present" and not os.path.isfile(leaf["fullPath"]):
            return f"{leaf['fullPath']} does not open"
        file_id = leaf["referencedFileId"]
        is_there = file_id != "No.ReferencedFileID" and has_file(path, file_id)
        if (leaf["file"] == "present") != is_there:
            return f"{file_id}: {leaf['file']}"
    return None


def check_alike(tool, command, path):
    return None if browse(command, path) == browse([tool], path) else "prints something else"


def directories(root):
    """The files whose first bytes tell that they are DICOMDIRs."""
    for path in sorted(path for path in root.rglob("*") if path.is_file()):
        with open(path, "rb") as stream:
            beginning = stream.read(1024)
        if beginning[128:132] == b"DICM" and DIRECTORY_CLASS.encode() in beginning:
            yield path.relative_to(root)


def checks_of(root, tool, sanitized, windows):
    """Yields (kind, name, function, arguments) for every DICOMDIR below root."""
    for path in directories(root):
        # A path of the Linux file system means nothing to the Windows build.
        yield "browse", path, check_browse, (tool, root / path)
        yield "robust", path, check_alike, (tool, [sanitized], root / path)
        if windows:
            yield "windows", path, check_alike, (tool, windows, path)


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values; they are compared raw
    tool, sanitized, *windows = sys.argv[1:]
    sys.exit(run_comparison(DATA, checks_of, (tool, sanitized, windows), (tool, sanitized, None)))
