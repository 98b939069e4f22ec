#!/usr/bin/python3
"""Makes DICOMDIRs of media with pgtool mkdir and holds them against independent readers.

    recreate_media.py PGTOOL [WINDOWS_PGTOOL COMMAND...]

The media are folders of tests/data and, when the environment variable PGKIT_SAMPLES names a
directory, the media in it, without their own DICOMDIRs. Kinds of checks, a line each:

  records   the records that pydicom reads, found through their links, are those that follow from
            the files (expected_directory.py): hierarchy, order, keys; each is reached once, and
            nothing else is in the file. The acceptance list names every file with its code.
  files     each record's file is there and is the instance that the record names.
  original  nothing of the medium's own DICOMDIR is missing, but for differences with a reason.
  dcmdump   reads the file without a warning.
  dciodvfy  finds no error, and warns of nothing but keys that are more than the standard asks for.
  dcdirdmp  reads the file without a complaint.
  offshore  made apart from its files the DICOMDIR refers to the same ones.
  windows   the Windows build writes the same bytes.

The last line is "N passed, M failed"; the exit status tells the same.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import warnings

import pydicom

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402
from expected_directory import (  # noqa: E402
    Record, described, expected_directory, leaves_below)

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
SECONDS = 60
SEQUENCES = (0x0040A043, 0x0040A730, 0x00081115)
LINKS = (0x00041400, 0x00041410, 0x00041420, 0x00041430)
OWN_UID = re.compile(rb"1\.2\.999\.1\.47\.453\.2865\.\d{14}\.\d+\0?")

# Keys that records have although their definition in the standard does not list them.
EXTRA_KEYS = {"Rows", "Columns", "Number of Frames", "Patient's Sex", "Patient's Birth Date",
              "Performing Physician's Name", "Series Description", "Referring Physician's Name",
              "Institution Address", "Institution Name", "Image Type"}


def is_about_name(line, folder):
    """Whether a complaint is about a name or a depth that no medium may have, and that a file of
    this one has: files are referred to as they are found."""
    name = re.search(r"\(0x0004,0x1500\) CS Referenced File ID  CS \[\d\] = <(.*)>", line)
    if name:
        return any(folder.rglob(name[1])) and not re.fullmatch(r"[A-Z0-9_ ]*", name[1])
    is_about_depth = re.search(r"Bad attribute Value Multiplicity .*<ReferencedFileID>", line)
    return bool(is_about_depth) and any(len(path.relative_to(folder).parts) > 8
                                        for path in folder.rglob("*"))


class Complaint(Exception):
    pass


def run(command, **options):
    return subprocess.run(command, capture_output=True, timeout=SECONDS, check=False, **options)


def make(command, folder, *arguments):
    done = run([*command, "mkdir", *arguments, str(folder)])
    # Real media have names that are no File IDs.
    complaints = [line for line in done.stderr.splitlines() if b"of the names are no File IDs" not in line]
    if done.returncode != 0 or complaints:
        raise Complaint(f"pgtool: exit status {done.returncode}: {done.stderr.decode()}")


def raw_key(record, tag):
    if tag in SEQUENCES:
        return described(record[tag].value)
    value = record.get_item(tag).value
    if tag in (0x00280010, 0x00280011):
        return int.from_bytes(value, "little")
    return (value or b"").rstrip(b" \0")


def read_records(path):
    """The records of a DICOMDIR as a tree, found through their links alone."""
    data_set = pydicom.dcmread(path)
    items = {item.seq_item_tell: item for item in data_set.DirectoryRecordSequence}
    unseen = set(items)

    def chain(offset):
        while offset != 0:
            if offset not in unseen:
                raise Complaint(f"a link leads to {offset}, which is no record or was one before")
            unseen.remove(offset)
            item = items[offset]
            if item[0x00041410].value != 0xFFFF:
                raise Complaint("a record is not in use")
            keys = {element: raw_key(item, element) for element in item.keys()
                    if element not in LINKS and element != 0x00880200}
            record = Record(item[0x00041430].value, keys)
            record.children = list(chain(item[0x00041420].value))
            yield record
            offset = item[0x00041400].value

    root = Record("", {})
    root.children = list(chain(data_set[0x00041200].value))
    if unseen:
        raise Complaint(f"{len(unseen)} records are not linked")
    last = items.get(data_set[0x00041202].value)
    if root.children and last[0x00041400].value != 0:
        raise Complaint("the last record is not the last one")
    return root


def difference(found, expected, place="root"):
    if found.kind != expected.kind:
        return f"{place}: {found.kind}, expected {expected.kind}"
    for tag in sorted(found.keys.keys() | expected.keys.keys()):
        if found.keys.get(tag) != expected.keys.get(tag):
            return (f"{place}: ({tag >> 16:04X},{tag & 0xFFFF:04X}) {found.keys.get(tag)!r}, "
                    f"expected {expected.keys.get(tag)!r}")
    if len(found.children) != len(expected.children):
        return f"{place}: {len(found.children)} children, expected {len(expected.children)}"
    places = (f"{place}/{index}" for index in range(len(found.children)))
    results = map(difference, found.children, expected.children, places)
    return next((result for result in results if result), None)


def copy_medium(source, target):
    """Copies a medium without its DICOMDIR. Files of tests/data get names that a medium may have."""
    if DATA in source.parents:
        target.mkdir()
        for number, path in enumerate(sorted(source.iterdir())):
            shutil.copyfile(path, target / f"IM{number:06}")
        return
    shutil.copytree(source, target)
    (target / "DICOMDIR").unlink(missing_ok=True)


class Medium:
    """A copy of a folder without its DICOMDIR, and what pgtool has made of it."""

    def __init__(self, tool, source, work):
        self.source = source
        self.folder = work / "medium"
        self.work = work
        copy_medium(source, self.folder)
        self.tool = tool
        # The list is there when the scan starts.
        (self.folder / "dcmdir.lst").write_text("")
        self.root, self.lines = expected_directory(self.folder)
        make([tool], self.folder)
        self.path = self.folder / "DICOMDIR"

    def check_records(self, _):
        listed = (self.folder / "dcmdir.lst").read_text().split("\n\n")[1].splitlines()
        if listed != self.lines:
            wrong = [line for line in zip(listed, self.lines) if line[0] != line[1]]
            raise Complaint(f"acceptance list: {wrong[:1] or len(listed)} of {len(self.lines)}")
        found = difference(read_records(self.path), self.root)
        if found:
            raise Complaint(found)

    def check_files(self, _):
        for leaf in leaves_below(read_records(self.path)):
            name = leaf.keys[0x00041500].decode()
            file = pydicom.dcmread(self.folder / name.replace("\\", "/"), stop_before_pixels=True)
            if str(file.SOPInstanceUID).encode() != leaf.keys[0x00041511]:
                raise Complaint(f"{name} is another instance")

    def check_original(self, _):
        compare_with_original(self.source, read_records(self.path))

    def check_dcmdump(self, _):
        done = run(["dcmdump", str(self.path)])
        if done.returncode != 0 or done.stderr:
            raise Complaint(done.stderr.decode(errors="replace"))

    # Keys that the files lack, and records must have, are made up first.
    def check_dciodvfy(self, _):
        make([self.tool], self.folder, "--fill-missing")
        output = run(["dciodvfy", str(self.path)]).stderr.decode(errors="replace")
        if "BasicDirectory" not in output:
            raise Complaint(output)
        lines = output.splitlines()
        others = [line for line in lines if not is_about_name(line, self.folder)]
        summary = "Error - Dicom dataset contains invalid data values for Value Representations"
        if len(others) < len(lines) and summary in others:
            others.remove(summary)
        for line in others:
            extra = re.match(r"Warning - Attribute is not present in standard DICOM IOD - "
                             r"\(\S+\) .. (.*?) ?$", line)
            is_known = (line == "BasicDirectory" or "Standard Extended SOP Class" in line
                        or "Value dubious for this VR" in line
                        or extra and extra[1] in EXTRA_KEYS)
            if not is_known:
                raise Complaint(line)

    def check_dcdirdmp(self, _):
        done = run(["dcdirdmp", str(self.path)])
        output = (done.stdout + done.stderr).decode(errors="replace")
        if done.returncode != 0 or re.search(r"error|warning", output, re.IGNORECASE):
            raise Complaint(output[-500:])

    def check_offshore(self, _):
        apart = self.work / "apart"
        apart.mkdir()
        self.path.unlink(missing_ok=True)
        make([self.tool], apart, "--offshore", str(self.folder))
        # The order may be another one where files of a series have equal numbers.
        names = [leaf.keys[0x00041500] for leaf in leaves_below(read_records(apart / "DICOMDIR"))]
        expected = [leaf.keys[0x00041500] for leaf in leaves_below(self.root)]
        if sorted(names) != sorted(expected):
            raise Complaint(f"{len(names)} files, expected {len(expected)}")

    def check_windows(self, command):
        make([self.tool], self.folder)
        native = OWN_UID.sub(b"", self.path.read_bytes())
        make(command, self.folder)
        if OWN_UID.sub(b"", self.path.read_bytes()) != native:
            raise Complaint("the files differ")


# ---- The DICOMDIR that a medium came with -------------------------------------------------------

# Kinds of records that creation does not make: such files get image records.
WITHOUT_KIND = {
    "1.2.840.10008.5.1.4.1.1.481.3": "RT STRUCTURE SET",
    "1.2.840.10008.5.1.4.1.1.481.5": "RT PLAN",
    "1.2.840.10008.5.1.4.1.1.104.2": "ENCAP DOC",
}
# Keys that every leaf has, and with them those records.
COMMON_KEYS = {0x00041500, 0x00041510, 0x00041511, 0x00041512, 0x00080005, 0x00200013}
# Keys that other writers make up where the files have none; so does creation, on demand.
MADE_UP = {"STUDY": {0x00080020, 0x00080030, 0x00200010}}


def paths(record, above=()):
    """Yields every record below one, with those that lead to it."""
    for each in record.children:
        yield (*above, each)
        yield from paths(each, (*above, each))


def identity(path):
    """What a record is recognised by: that of its instance, its series or its study."""
    return tuple(next(record.keys[tag]
                      for tag in (0x00041511, 0x0020000E, 0x0020000D, 0x00100020)
                      if tag in record.keys) for record in path)


def compare_records(original, created):
    """Complains when a record has not what the original has, without a reason for it."""
    sop_class = created.keys.get(0x00041510, b"").decode()
    has_kind = sop_class not in WITHOUT_KIND
    kind = created.kind if has_kind else WITHOUT_KIND[sop_class]
    if original.kind != kind or not has_kind and created.kind != "IMAGE":
        raise Complaint(f"{original.kind} has become {created.kind}")
    for tag, value in original.keys.items():
        is_made_up = tag in MADE_UP.get(kind, ()) and created.keys[tag] == b""
        if is_made_up or not has_kind and tag not in COMMON_KEYS:
            continue
        if created.keys.get(tag) != value:
            raise Complaint(f"{kind}: ({tag >> 16:04X},{tag & 0xFFFF:04X}) "
                            f"{created.keys.get(tag)!r}, originally {value!r}")


def compare_with_directory(folder, created):
    known = {identity(path): path[-1] for path in paths(created)}
    originals = {identity(path): path[-1] for path in paths(read_records(folder / "DICOMDIR"))}
    if originals.keys() != known.keys():
        raise Complaint(f"other records: {sorted(originals.keys() ^ known.keys())[:1]}")
    for key, original in originals.items():
        compare_records(original, known[key])


def images_of_directories(folder, path, above=()):
    """Yields (study UID, series UID, file ID) by way of directories that refer to directories."""
    for item in pydicom.dcmread(path).DirectoryRecordSequence:
        name = "\\".join(item.ReferencedFileID)
        if item.DirectoryRecordType == "IMAGE":
            yield (*above, name)
            continue
        uid = item.StudyInstanceUID if item.DirectoryRecordType == "STUDY" else \
            item.SeriesInstanceUID
        yield from images_of_directories(folder, folder / name.replace("\\", "/"),
                                         (*above, str(uid)))


def compare_with_directories(folder, created):
    """A study has a directory of its own there, and each of its series: now all are in one."""
    originals = set(images_of_directories(folder, folder / "DICOMDIR"))
    found = {(path[1].keys[0x0020000D].decode(), path[2].keys[0x0020000E].decode(),
              path[3].keys[0x00041500].decode()) for path in paths(created) if len(path) == 4}
    if found != originals:
        raise Complaint(f"other images: {sorted(found ^ originals)[:1]}")


def compare_with_original(folder, created):
    first = pydicom.dcmread(folder / "DICOMDIR").DirectoryRecordSequence[0]
    is_nested = "ReferencedFileID" in first and first.DirectoryRecordType == "STUDY"
    (compare_with_directories if is_nested else compare_with_directory)(folder, created)


# ---- All of it ----------------------------------------------------------------------------------

KINDS = ("records", "files", "original", "dcmdump", "dciodvfy", "dcdirdmp", "offshore", "windows")


def media():
    """Yields (name, folder, whether it has a DICOMDIR of its own)."""
    for name in ("native", "encapsulated", "sequences", "charset"):
        yield name, DATA / name, False
    samples = os.environ.get("PGKIT_SAMPLES")
    if samples:
        for folder in sorted((pathlib.Path(samples) / "media").iterdir()):
            yield "media/" + folder.name, folder, (folder / "DICOMDIR").exists()


def check_medium(tool, windows, folder, kinds):
    """Yields (kind, complaint or None)."""
    with tempfile.TemporaryDirectory(prefix="pgkit-media-") as work:
        medium = Medium(tool, folder, pathlib.Path(work))
        for kind in kinds:
            try:
                getattr(medium, "check_" + kind)(windows)
                yield kind, None
            except Complaint as complaint:
                yield kind, str(complaint)


def results_of(tool, windows):
    """Yields (kind, name, complaint or None) for every medium."""
    for name, folder, has_original in media():
        kinds = [kind for kind in KINDS if (kind != "original" or has_original)
                 and (kind != "windows" or windows)]
        for kind, complaint in check_medium(tool, windows, folder, kinds):
            yield kind, name, complaint


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values
    sys.exit(report(results_of(sys.argv[1], sys.argv[2:])))
