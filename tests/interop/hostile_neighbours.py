#!/usr/bin/python3
"""Makes media in which one file is hostile, and reads their DICOMDIRs with independent readers.

    hostile_neighbours.py PGTOOL

The hostile file is a document whose sequence holds what no directory record can carry, or one whose
keys are odd; it stands between good ones. The medium is made by pgtool mkdir (scan), by pgtool
mkdir --offshore (offshore), and by the library beside pgtool from a browse of the former (rebuild).
Two readers each find the records through their links:

  pydicom   which shows every value of every record, too
  dcmdump   from its text, whose nesting it indents

Each must find every file that the acceptance list has with code 0, once, below its patient, study
and series, and nothing else; good files have their whole concept names. Whether the hostile file is
among them is said with it below: a file that is refused spoils nothing either.

The last line is "N passed, M failed"; the exit status tells the same.
"""

import ctypes
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import warnings

import pydicom

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402

SECONDS = 60
REPORT = b"1.2.840.10008.5.1.4.1.1.88.11"
EXPLICIT, IMPLICIT = b"1.2.840.10008.1.2.1", b"1.2.840.10008.1.2"
UNDEFINED = 0xFFFFFFFF
LONG = ("OB", "OW", "OF", "SQ", "UN", "UT", "UC", "UR", "ZZ")

ITEM_END = struct.pack("<HHI", 0xFFFE, 0xE00D, 0)
SEQUENCE_END = struct.pack("<HHI", 0xFFFE, 0xE0DD, 0)


def padded(value, vr):
    return value if len(value) % 2 == 0 else value + (b"\0" if vr in ("UI", "OB") else b" ")


def element(group, number, vr, value, length=None):
    """In explicit VR; the length may be a lie."""
    length = len(value) if length is None else length
    if vr in LONG:
        return struct.pack("<HH2sHI", group, number, vr.encode(), 0, length) + value
    return struct.pack("<HH2sH", group, number, vr.encode(), length & 0xFFFF) + value


def implicit(group, number, value, length=None):
    return struct.pack("<HHI", group, number, len(value) if length is None else length) + value


def item(content, length=None):
    return struct.pack("<HHI", 0xFFFE, 0xE000, len(content) if length is None else length) + content


def nested(depth):
    content = element(0x0008, 0x0104, "LO", b"in")
    for _ in range(depth):
        content = element(0x0040, 0xA730, "SQ",
                          item(content, UNDEFINED) + ITEM_END + SEQUENCE_END, UNDEFINED)
    return content


def part10(keys, syntax=EXPLICIT, encode=element):
    meta = element(2, 2, "UI", padded(REPORT, "UI")) + element(2, 3, "UI", padded(b"1.2.3", "UI"))
    meta += element(2, 0x10, "UI", padded(syntax, "UI"))
    body = b"".join(
        encode(tag >> 16, tag & 0xFFFF, vr, padded(value, vr)) if vr != "raw" else value
        for tag, (vr, value) in sorted(keys.items()))
    return bytes(128) + b"DICM" + element(2, 0, "UL", struct.pack("<I", len(meta))) + meta + body


def report_keys(number, **changes):
    """Changes are (VR, value) by tag, as g0008e0018; a value of VR "raw" is the whole element."""
    digit = str(number).encode()
    keys = {0x00080016: ("UI", REPORT), 0x00080018: ("UI", b"1.2.3.4." + digit),
            0x00080060: ("CS", b"SR"), 0x00100010: ("PN", b"DOE^" + digit),
            0x00100020: ("LO", b"ID" + digit), 0x0020000D: ("UI", b"1.2." + digit),
            0x0020000E: ("UI", b"1.3." + digit), 0x00200013: ("IS", digit),
            0x0040A043: ("raw", element(0x40, 0xA043, "SQ", item(CODE + NAME)))}
    for name, change in changes.items():
        keys[int(name[1:5] + name[6:10], 16)] = change
    return keys


CODE = element(0x0008, 0x0100, "SH", b"121070")
NAME = element(0x0008, 0x0104, "LO", b"good")


def in_concept_name(content):
    """A report whose concept name holds this behind a code."""
    sequence = element(0x40, 0xA043, "SQ", item(CODE + content, UNDEFINED) + ITEM_END
                       + SEQUENCE_END, UNDEFINED)
    return part10(report_keys(1, g0040eA043=("raw", sequence)))


def implicit_report():
    """A text that is too long for its VR in explicit VR."""
    keys = report_keys(1)
    value = implicit(0x08, 0x0100, b"121070") + implicit(0x08, 0x0104, b"x" * 70000)
    keys[0x0040A043] = ("raw", implicit(0x40, 0xA043, item(value)))
    return part10(keys, IMPLICIT, lambda group, number, _, value: implicit(group, number, value))


FRAGMENTS = element(0x7FE0, 0x10, "OB", item(b"") + item(b"abcd") + SEQUENCE_END, UNDEFINED)

# What the file is and whether it is accepted.
HOSTILE = {
    "item tag": (in_concept_name(item(b"abcd")), True),
    "tag of group FFFE": (in_concept_name(element(0xFFFE, 1, "OB", b"abcd")), True),
    "tag of group FFFF": (in_concept_name(element(0xFFFF, 1, "LO", b"abcd")), True),
    "meta element": (in_concept_name(element(2, 0x10, "UI", IMPLICIT + b"\0")), True),
    "command element": (in_concept_name(element(0, 2, "UI", b"1.2\0")), True),
    "links": (in_concept_name(element(4, 0x1400, "UL", b"\1\1\0\0") + element(4, 0x1220, "SQ",
              item(element(4, 0x1430, "CS", b"IMAGE ")))), True),
    "fragments": (in_concept_name(FRAGMENTS), True),
    "pixel data of unknown VR": (in_concept_name(
        element(0x7FE0, 0x10, "UN", item(implicit(8, 0x100, b"A2")) + SEQUENCE_END, UNDEFINED)),
        True),
    "value without end": (in_concept_name(element(8, 0x104, "OB", b"", UNDEFINED)), True),
    "value beyond the file": (in_concept_name(element(8, 0x104, "UT", b"", 0xFFFFFFF0)), True),
    "value too long": (implicit_report(), True),
    "private value": (in_concept_name(element(9, 0x10, "LO", b"ME")
                                      + element(9, 0x1001, "UN", b"\xFE\xFF\x00\xE0\xFF")), True),
    "sequence that is none": (in_concept_name(element(8, 0x1199, "UN", b"abcdef")), True),
    "half a number": (in_concept_name(element(0x28, 0x106, "UL", b"ab")), True),
    "half a tag": (in_concept_name(element(0x28, 9, "AT", b"ab")), True),
    "odd length": (in_concept_name(element(8, 0x104, "LO", b"odd")), True),
    "unknown VR": (in_concept_name(element(8, 0x120, "UR", b"urn:x ")), True),
    "elements twice": (in_concept_name(CODE + CODE), True),
    "group length": (in_concept_name(element(8, 0, "UL", b"\xFF\0\0\0")), True),
    "character set": (in_concept_name(element(8, 5, "CS", b"NO SUCH ")), True),
    "deep nesting": (in_concept_name(nested(2000)), True),
    "nesting that is too deep": (in_concept_name(nested(3000)), True),
    "odd texts": (part10(report_keys(1, g0010e0010=("PN", b"\\\\^=\r\n\x1B$B\xFF"),
                                     g0008e0005=("CS", b"\\ISO 2022 IR 6\xFF"),
                                     g0010e0030=("DA", b"\0\0\0\0"))), True),
    "padded instance": (part10(report_keys(
        2, g0008e0018=("LO", b" 1.2.3.4.2  "), g0020e000E=("LO", b"1.3.2 "))), False),
    "same instance elsewhere": (part10(report_keys(2, g0020e000E=("UI", b"1.3.9"))), True),
    "class of a DICOMDIR": (part10(report_keys(1)).replace(
        element(2, 2, "UI", padded(REPORT, "UI")),
        element(2, 2, "LO", b" 1.2.840.10008.1.3.10" + b" " * 9)), False),
}


class Complaint(Exception):
    pass


def texts(keys):
    return tuple(key.rstrip(b" \0").decode("latin1").strip() for key in keys)


def run(command):
    done = subprocess.run(command, capture_output=True, timeout=SECONDS, check=False)
    if done.returncode != 0:
        raise Complaint(f"{command[0]}: exit status {done.returncode}: {done.stderr[-200:]!r}")
    return done.stdout.decode("latin1")


# ---- The two readers: (file, (patient, study, series, instance)) of every leaf ------------------


def places(first, record_of):
    """record_of(offset) gives next, lower, the keys of the level, and the file of a leaf."""
    seen = set()

    def chain(offset, above):
        while offset != 0:
            if offset in seen:
                raise Complaint("a record is linked twice")
            seen.add(offset)
            following, lower, key, file = record_of(offset)
            if len(above) == 3:
                yield file, (*above, key)
            yield from chain(lower, (*above, key))
            offset = following

    return sorted(chain(first, ())), seen


KEYS = (0x00100020, 0x0020000D, 0x0020000E, 0x00041511)
KEY_OF = dict(zip(("PATIENT", "STUDY", "SERIES"), KEYS))


def read_by_pydicom(path):
    data_set = pydicom.dcmread(path)
    items = {each.seq_item_tell: each for each in data_set.DirectoryRecordSequence}

    def record_of(offset):
        record = items[offset]
        key, file = texts(record.get_item(tag).value if tag in record else b""
                          for tag in (KEY_OF.get(record[0x00041430].value, KEYS[3]), 0x00041500))
        if file.startswith("GOOD"):
            meaning = record.ConceptNameCodeSequence[0].CodeMeaning
            if meaning != "good":
                raise Complaint(f"{file} has the concept name {meaning}")
        for each in record.iterall():
            str(each)  # reads what is in it
        return record[0x00041400].value, record[0x00041420].value, key, file

    found, seen = places(data_set[0x00041200].value, record_of)
    if seen != set(items):
        raise Complaint("there are records that are not linked")
    return found


def read_by_dcmdump(path):
    text = run(["dcmdump", "-q", str(path)])
    first = int(re.search(r"^\(0004,1200\) up (\d+)", text, re.M)[1])
    records = {}
    for part in re.split(r"^  \(fffe,e000\).*\n", text, flags=re.M)[1:]:
        offset = int(re.search(r"^  #  offset=\$(\d+)", part, re.M)[1])
        records[offset] = dict(re.findall(r"^    \((\w{4},\w{4})\) .. \[?(.*?)\]? +#", part, re.M))

    def record_of(offset):
        record = records[offset]
        tag = KEY_OF.get(record["0004,1430"].strip(), KEYS[3])
        key = record.get(f"{tag >> 16:04x},{tag & 0xFFFF:04x}", "").strip()
        return (int(record["0004,1400"]), int(record["0004,1420"]), key,
                record.get("0004,1500", "").strip())

    found, seen = places(first, record_of)
    if seen != set(records):
        raise Complaint("there are records that are not linked")
    return found


READERS = {"pydicom": read_by_pydicom, "dcmdump": read_by_dcmdump}

# ---- The media ----------------------------------------------------------------------------------


def rebuild(library, folder):
    """Browses the DICOMDIR of a folder and writes what was found in its place."""
    library.pgGetPatientListFromFile.restype = ctypes.c_void_p
    library.pgBuildDicomdir.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    patients = library.pgGetPatientListFromFile(str(folder / "DICOMDIR").encode())
    result = library.pgBuildDicomdir(patients, str(folder).encode())
    if result != 0:
        raise Complaint(f"pgBuildDicomdir returns {result}")


def make(tool, kind, files, folder):
    """The folder of the DICOMDIR, and the files that were accepted."""
    if kind == "offshore":
        run([tool, "mkdir", str(folder), "--offshore", str(files)])
    else:
        folder = files
        run([tool, "mkdir", str(folder)])
    lines = (folder / "dcmdir.lst").read_text().split("\n\n")[1].splitlines()
    accepted = sorted(line.split("\t")[1] for line in lines if line.startswith("0\t"))
    if kind == "rebuild":
        rebuild(ctypes.CDLL(str(pathlib.Path(tool).parent / "libpgkit.so")), folder)
    return folder, [name.split("\\")[-1] for name in accepted]


def place_in(path):
    """Where the file belongs; the hostile part of it is not looked at."""
    with open(path, "rb") as file:
        data_set = pydicom.filereader.read_partial(file, lambda tag, *_: tag > 0x0020FFFF)
    return texts(data_set.get_item(tag).value for tag in (*KEYS[:3], 0x00080018))


def complaint_about(tool, kind, reader, hostile, is_accepted):
    with tempfile.TemporaryDirectory(prefix="pgkit-neighbours-") as work:
        files, apart = pathlib.Path(work) / "files", pathlib.Path(work) / "apart"
        files.mkdir()
        apart.mkdir()
        (files / "GOOD2").write_bytes(part10(report_keys(2)))
        (files / "HOSTILE").write_bytes(hostile)
        (files / "LATER").write_bytes(part10(report_keys(3)))
        (files / "GOOD3").write_bytes(part10(report_keys(4)))
        folder, accepted = make(tool, kind, files, apart)
        names = ["GOOD2", "GOOD3", *(["HOSTILE"] if is_accepted else []), "LATER"]
        if accepted != names:
            return f"accepted are {accepted}"
        expected = sorted((name, place_in(files / name)) for name in accepted)
        found = READERS[reader](folder / "DICOMDIR")
        return None if found == expected else f"found {found}, expected {expected}"


def results_of(tool):
    for name, (hostile, is_accepted) in HOSTILE.items():
        for kind in ("scan", "offshore", "rebuild"):
            for reader in READERS:
                try:
                    complaint = complaint_about(tool, kind, reader, hostile, is_accepted)
                except Exception as error:  # the other reader may fail in its own ways
                    complaint = f"{type(error).__name__}: {error}"
                yield reader, f"{kind}: {name}", complaint


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values
    sys.exit(report(results_of(sys.argv[1])))
