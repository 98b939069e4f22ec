#!/usr/bin/python3
"""Compares what pgtool verify finds on media with what independent readers say, where they judge the
same thing.

    compare_media.py PGTOOL

The media are the DICOMDIRs, sound and damaged, in tests/data and, when the environment variable
PGKIT_SAMPLES names a directory, below it, each with the files around it. A line for each check:

  reached   the records that no link leads to, and links that lead to none: those that follow from the
            records that pydicom reads
  files     files that are missing, files without a record, and files that are others than their
            records say: as pydicom reads them
  keys      missing and empty keys of type 1: those that dciodvfy names; it has none of the others
  file-id   File IDs with characters or numbers of components that dciodvfy refuses are found
  offsets   dcdirdmp stumbles over an offset where there is a finding about one, and nowhere else

The last line is "N passed, M failed"; the exit status tells the same.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import warnings

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

import pydicom  # noqa: E402
from check_runner import run_comparison  # noqa: E402
from compare_directories import DATA, directories  # noqa: E402
from directory_records import LOWER, NEXT, ROOT, number, raw_value, read_records  # noqa: E402
from pydicom import filereader  # noqa: E402
from raw_elements import read_head  # noqa: E402

SECONDS = 60
FILE_ID, IN_USE = 0x00041500, 0x00041410
# What a record says of its file: the kind of finding, the key, and the element of the file.
CLAIMS = [("sop-class", 0x00041510, "SOPClassUID"), ("sop-instance", 0x00041511, "SOPInstanceUID"),
          ("transfer-syntax", 0x00041512, "TransferSyntaxUID")]
# Keys that are there under a condition, which dciodvfy takes for fulfilled.
CONDITIONAL = {"ReferencedImageEvidenceSequence"}
MISSING = re.compile(r"^Error - (?:Missing attribute|Empty attribute \(no value\)) +Type 1 Required +"
                     r"Element=<(\w+)>", re.MULTILINE)


def run(*command):
    done = subprocess.run([str(word) for word in command], capture_output=True, timeout=SECONDS,
                          check=False)
    return done.returncode, done.stdout.decode(errors="replace"), done.stderr.decode(errors="replace")


def verify(tool, path):
    status, out, error = run(tool, "verify", path, "--json")
    result = json.loads(out)
    if status != (1 if result["findings"] else 0):
        raise RuntimeError(f"exit status {status}: {error}")
    return result["findings"]


def of_kind(findings, *kinds):
    return [finding for finding in findings if finding["kind"] in kinds]


def records_of(path):
    with open(path, "rb") as stream:
        _, is_implicit, is_big_endian = read_head(stream)
        data_set = filereader.read_dataset(stream, is_implicit, not is_big_endian)
    return data_set, {record.seq_item_tell: record for record in reversed(read_records(data_set))}


def is_in_use(record):
    return raw_value(record, IN_USE) != b"\0\0"


def difference(what, ours, theirs):
    if ours == theirs:
        return None
    return f"{what}: only pgtool {sorted(ours - theirs)}, only the other {sorted(theirs - ours)}"


def check_reached(tool, path):
    findings = verify(tool, path)
    head, records = records_of(path)
    reached, waiting = set(), [number(head, ROOT)]
    while waiting:
        offset = waiting.pop()
        if offset in records and offset not in reached:
            reached.add(offset)
            waiting += [number(records[offset], NEXT), number(records[offset], LOWER)]
    offsets = [number(head, ROOT)] + [number(record, link) for record in records.values()
                                      for link in (NEXT, LOWER) if is_in_use(record)]
    lost = sum(offset != 0 and offset not in records for offset in offsets)
    unreached = {offset for offset, record in records.items()
                 if offset not in reached and is_in_use(record)}
    found = difference("unreached", {finding["offset"] for finding in of_kind(findings, "unreached-record")},
                       unreached)
    links = [finding for finding in of_kind(findings, "link") if "(0004,1202)" not in finding["message"]]
    if not found and lost != len(links):
        found = f"{len(links)} links that lead nowhere, not {lost}"
    return found


def find_file(root, file_id):
    """The path below the medium of the file with an ID, without regard to case, or None."""
    place = root
    for component in file_id:
        names = {name.upper(): name for name in sorted(os.listdir(place))} if place.is_dir() else {}
        if component.upper() not in names:
            return None
        place /= names[component.upper()]
    return place.relative_to(root).as_posix() if place.is_file() else None


def dicom_files(root):
    for path in root.rglob("*"):
        if path.is_file():
            with open(path, "rb") as stream:
                beginning = stream.read(132)
            if beginning[128:] == b"DICM":
                yield path


def check_files(tool, path):
    findings = verify(tool, path)
    root, (_, records) = path.parent, records_of(path)
    missing, used, wrong = set(), set(), set()
    for offset, record in records.items():
        file_id = (raw_value(record, FILE_ID) or b"").decode("latin-1").rstrip(" \0")
        if not file_id or not is_in_use(record):
            continue
        file = find_file(root, file_id.split("\\"))
        if file is None:
            missing.add(offset)
        elif file not in used:
            used.add(file)
            wrong |= {(kind, offset) for kind in wrong_claims(record, root / file)}
    ours = {finding["offset"] for finding in of_kind(findings, "missing-file", "outside")
            if "offset" in finding}
    orphans = {file.relative_to(root).as_posix() for file in dicom_files(root)
               if file.relative_to(root).as_posix() not in used and not is_directory(file)}
    return (difference("missing", ours, missing)
            or difference("orphans", {finding["file"] for finding in of_kind(findings, "orphan")}, orphans)
            or difference("claims", {(finding["kind"], finding["offset"]) for finding in of_kind(
                findings, *(kind for kind, _, _ in CLAIMS)) if "offset" in finding}, wrong))


def is_directory(path):
    return pydicom.filereader.read_file_meta_info(path).get("MediaStorageSOPClassUID") == \
        "1.2.840.10008.1.3.10"


def wrong_claims(record, path):
    file = pydicom.dcmread(path, force=True, stop_before_pixels=True)
    for kind, key, keyword in CLAIMS:
        claimed = (raw_value(record, key) or b"").decode("latin-1").strip(" \0")
        holder = file.file_meta if kind == "transfer-syntax" or is_directory(path) else file
        if holder is file.file_meta and kind != "transfer-syntax":
            keyword = "MediaStorage" + keyword
        if claimed and claimed != str(holder.get(keyword, "")):
            yield kind


def check_keys(tool, path):
    findings = verify(tool, path)
    if of_kind(findings, "cut-short"):
        return None  # dciodvfy reads nothing of it
    _, _, told = run("dciodvfy", path)
    ours = {match.group(1) for finding in of_kind(findings, "missing-key")
            if (match := re.match(r"\([0-9A-F,]+\) (\w+) is (?:missing|empty)$", finding["message"]))}
    # What is there when there is a file is no key of type 1 for dciodvfy.
    ours -= {"ReferencedSOPClassUIDInFile", "ReferencedSOPInstanceUIDInFile",
             "ReferencedTransferSyntaxUIDInFile"}
    return difference("keys", ours, set(MISSING.findall(told)) - CONDITIONAL)


def check_file_ids(tool, path):
    _, _, told = run("dciodvfy", path)
    refused = re.search(r"^Error - .*(?:Referenced File ID|ReferencedFileID)", told, re.MULTILINE)
    if refused and not of_kind(verify(tool, path), "file-id"):
        return f"dciodvfy says: {refused.group()}"
    return None


def check_offsets(tool, path):
    findings = verify(tool, path)
    if of_kind(findings, "circle", "cut-short"):
        return None  # dcdirdmp goes around for ever, or gives up before it follows a link
    _, out, error = run("dcdirdmp", path)
    stumbles = "offset invalid" in out + error
    followed = [finding for finding in of_kind(findings, "link")
                if "(0004,1202)" not in finding["message"]]
    if stumbles == bool(followed):
        return None
    return f"dcdirdmp {'stumbles' if stumbles else 'does not'}; pgtool: {followed}"


def checks_of(root, tool):
    for path in directories(root):
        for kind, check in (("reached", check_reached), ("files", check_files), ("keys", check_keys),
                            ("file-id", check_file_ids), ("offsets", check_offsets)):
            yield kind, path, check, (tool, root / path)


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values
    tool = os.path.abspath(sys.argv[1])
    sys.exit(run_comparison(DATA, checks_of, (tool,), (tool,)))
