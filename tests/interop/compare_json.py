#!/usr/bin/python3
"""Compares DICOM JSON with two independent writers, pydicom and dcm2json.

    compare_json.py LIBRARY

One check for each writer and each file of tests/data and, when the environment variable PGKIT_SAMPLES
names a directory, of its
files of at most 64 KiB. Broken files, of which each reader makes something else, are left out:
compare_readers.py has them. Elements are compared one by one, numbers as numbers. Where a writer differs
the reason must be one of RULES, which quote the standard, or stand in EXPLAINED; a reason of EXPLAINED
that is not needed any more is a failure, too. The last line is "N passed, M failed".
"""

import base64
import ctypes
import json
import math
import os
import pathlib
import re
import struct
import subprocess
import sys
import warnings

import pydicom
import pydicom.config
import pydicom.dicomdir

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import files_below, report  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
CURRENT_EDITION = 1
MAX_SIZE = 64 << 10  # the others are slow
WORDS = {"OW": 2, "OF": 4, "OL": 4, "OD": 8, "OV": 8}


class Library:
    def __init__(self, path):
        self._library = ctypes.CDLL(str(pathlib.Path(path).resolve()))
        self._library.pgOpenDataSetFile.restype = ctypes.c_void_p
        self._library.pgOpenDataSetFile.argtypes = [ctypes.c_char_p, ctypes.c_uint32]
        self._library.pgCloseDataSet.argtypes = [ctypes.c_void_p]
        self._library.pgxGetJson.restype = ctypes.c_int64
        self._library.pgxGetJson.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_char_p,
                                             ctypes.c_size_t]
        self._library.pgxUseEdition(CURRENT_EDITION)

    def json(self, path):
        root = self._library.pgOpenDataSetFile(str(path).encode(), 64)
        if root is None:
            return None
        length = self._library.pgxGetJson(root, None, None, 0)
        if length < 0:
            raise ValueError(f"error {length}")
        buffer = ctypes.create_string_buffer(length + 1)
        self._library.pgxGetJson(root, None, buffer, len(buffer))
        self._library.pgCloseDataSet(root)
        return json.loads(buffer.value.decode(), parse_int=int)


# ---- Reasons -------------------------------------------------------------------------------------
#
# Each takes what is compared (Pair) and tells whether it is the reason of a difference.

class Pair:
    def __init__(self, writer, tag, ours, theirs, raw, is_big_endian, data):
        self.writer = writer
        self.tag = tag
        self.ours = ours
        self.theirs = theirs
        self.raw = raw  # the bytes of the value in the file, or None
        self.is_big_endian = is_big_endian
        self.data = data  # of the file

    @property
    def vr(self):
        return (self.ours or self.theirs)["vr"]


def is_character_set(pair):
    return pair.tag == "00080005" and pair.ours == {"vr": "CS", "Value": ["ISO_IR 192"]}


def is_group_length(pair):
    return pair.ours is None and pair.tag.endswith("0000")


def is_empty(pair):
    theirs = pair.theirs or {}
    values = theirs.get("Value", [])
    return pair.ours is not None and set(pair.ours) == {"vr"} and (
        values == [] or all(value in ("", None, {}, {"Alphabetic": ""}) for value in values))


def without_padding(value):
    if isinstance(value, str):
        return value.rstrip(" \0") or None
    if isinstance(value, dict):
        return {key: group.rstrip(" \0") for key, group in value.items() if group.rstrip(" \0")} \
            or None
    return value


def is_padding(pair):
    if not pair.theirs or not pair.ours or "Value" not in pair.ours:
        return False
    return pair.ours["Value"] == [without_padding(value) for value in pair.theirs.get("Value", [])]


def number_of(value):
    try:
        return None if value in (None, "") else float(value)
    except (TypeError, ValueError):
        return value


def is_number_as_text(pair):
    mine, theirs = numbers_of(pair)
    return len(mine) == len(theirs) > 0 and all(map(same_number, mine, theirs))


def numbers_of(pair):
    if pair.vr not in ("IS", "DS", "SV", "UV", "FL", "FD") or not pair.theirs or not pair.ours:
        return [], []
    return ([number_of(value) for value in pair.ours.get("Value", [])],
            [number_of(value) for value in pair.theirs.get("Value", [])])


def same_number(one, other):
    if isinstance(one, float) and isinstance(other, float) and math.isnan(one):
        return math.isnan(other)
    return one == other


def is_inexact(pair):
    """What both numbers are in FL, or the last of 16 digits."""
    mine, theirs = numbers_of(pair)
    if pair.writer != "dcm2json" or pair.vr not in ("FL", "FD") or len(mine) != len(theirs):
        return False
    if pair.vr == "FL":
        return list(map(as_float, mine)) == list(map(as_float, theirs))
    return all(math.isclose(a, b, rel_tol=1e-15) for a, b in zip(mine, theirs))


def as_float(number):
    return struct.unpack("<f", struct.pack("<f", number))[0]


def swapped(value, unit):
    return b"".join(value[i:i + unit][::-1] for i in range(0, len(value), unit))


def has_carets_at_the_end(pair):
    if pair.writer != "dcm2json" or pair.vr != "PN" or not pair.ours or not pair.theirs:
        return False
    names = [{key: group.rstrip("^") for key, group in (value or {}).items() if group.rstrip("^")}
             for value in pair.ours.get("Value", [])]
    return [name for name in names if name] == pair.theirs.get("Value", [])


def is_left_open(pair):
    return pair.writer == "pydicom" and pair.theirs and pair.theirs["vr"] == "OB or OW" \
        and pair.ours["InlineBinary"] == pair.theirs["InlineBinary"]


def is_little_endian(pair):
    if not pair.is_big_endian or not pair.theirs or not pair.ours or pair.vr not in WORDS:
        return False
    theirs = base64.b64decode(pair.theirs.get("InlineBinary", ""))
    return base64.b64decode(pair.ours["InlineBinary"]) == swapped(theirs, WORDS[pair.vr])


def is_private(pair):
    """Each reader has its own dictionary of private elements, or none."""
    return int(pair.tag[3], 16) % 2 == 1 and pair.ours is not None and pair.ours["vr"] == "UN" \
        and (pair.raw is None or base64.b64decode(pair.ours.get("InlineBinary", "")) == pair.raw)


def is_fragments(pair):
    match = re.fullmatch(r"\?offset=(\d+)&length=(\d+)", (pair.ours or {}).get("BulkDataURI", ""))
    if not match or pair.tag != "7FE00010":
        return False
    fragments = pair.data[int(match[1]):int(match[1]) + int(match[2])]
    delimiter = b"\xfe\xff\xdd\xe0\0\0\0\0"
    if not fragments.startswith(b"\xfe\xff\x00\xe0") or not fragments.endswith(delimiter):
        return False
    return pair.raw is None or fragments.removesuffix(delimiter) == pair.raw.removesuffix(delimiter)


RULES = {
    is_character_set: "PS3.18 F.2: JSON is UTF-8, and Specific Character Set says so",
    is_group_length: "PS3.18 F.2.2: Group Length attributes shall not be included",
    is_empty: "PS3.18 F.2.5: an empty attribute has no Value, BulkDataURI or InlineBinary",
    is_padding: "PS3.5 6.2: padding is not significant; PS3.18 F.2.5: an empty value is null",
    is_number_as_text: "PS3.18 F.2.3: a string preserves the original format, or avoids losing "
                       "precision; PS3.5 6.2: what is no number of the VR is no number here",
    is_inexact: "PS3.18 F.2.3: numbers of JSON; it prints nine digits of FL, and FD by dividing",
    is_left_open: "PS3.5 A.1: where the dictionary says OB or OW, implicit VR settles it",
    has_carets_at_the_end: "PS3.5 6.2.1.1: null components at the end may be left out with their carets",
    is_little_endian: "PS3.18 F.2.7, PS3.5 7.3: InlineBinary is in little endian",
    is_private: "PS3.5 6.2.2: a private element whose VR is not known is UN",
    is_fragments: "PS3.18 F.2.6: encapsulated Pixel Data are bulk data",
}

# What differs in one file alone: (writer, file, tag): why.
EXPLAINED = {
    ("dcm2json", "native/dx_odd_length_value.dcm", "7FE00010"): "makes an odd length even",
    ("dcm2json", "native/mr_ge_private_syntax_be_pixels.dcm", "7FE00010"):
        "knows that this private transfer syntax has big-endian pixels",
}

# Files that each reader takes for something else: nothing in them says what they are.
NOT_COMPARED = {
    "headerless/derived_acr_nema_1_be.dcm",
    "headerless/derived_be_no_meta.dcm",
    "headerless/explicit_be_no_meta.dcm",
    "headerless/meta_without_transfer_syntax.dcm",
}


# ---- Comparison ----------------------------------------------------------------------------------

def equal(mine, theirs):
    return mine == theirs and type(mine) is not bool


def differences(writer, name, ours, theirs, raw_of, is_big_endian, data, path=""):
    """Yields what no rule explains. theirs is {tag: element}; None in place of an element that its
    writer could not write."""
    for tag in sorted({*ours, *theirs}):
        mine, other = ours.get(tag), theirs.get(tag)
        where = f"{path}{tag}"
        if tag in theirs and other is None:
            continue
        if mine and other and mine["vr"] == other["vr"] == "SQ":
            yield from item_differences(writer, name, mine, other, raw_of, is_big_endian, data,
                                        where)
        elif not equal(mine, other):
            raw = raw_of(where)
            pair = Pair(writer, tag, mine, other, raw, is_big_endian, data)
            if not any(holds(pair) for holds in RULES):
                yield where, f"{writer} has {str(other)[:200]} at {where}, not {str(mine)[:200]}"


def item_differences(writer, name, mine, other, raw_of, is_big_endian, data, where):
    items, others = mine.get("Value", []), other.get("Value", [])
    if len(items) != len(others):
        yield where, f"{writer} has {len(others)} items at {where}, not {len(items)}"
        return
    for i, (item, another) in enumerate(zip(items, others)):
        yield from differences(writer, name, item, another, raw_of, is_big_endian, data,
                               f"{where}[{i}].")


def complaint(writer, name, found):
    found = dict(found)
    unexplained = [text for where, text in found.items() if (writer, name, where) not in EXPLAINED]
    needless = [f"{writer} does not differ any more at {where}"
                for reader, file, where in EXPLAINED
                if (reader, file) == (writer, name) and where not in found]
    return "\n       ".join((unexplained + needless)[:5]) or None


# ---- pydicom -------------------------------------------------------------------------------------

def pydicom_json(data_set):
    """None for elements that it cannot write."""
    elements = {}
    for tag in data_set.keys():
        name = f"{int(tag):08X}"
        if int(tag) >> 16 == 0xFFFE:
            continue
        try:
            element = data_set[tag]
            if element.VR == "SQ":
                items = [pydicom_json(item) for item in element.value]
                elements[name] = {"vr": "SQ", "Value": items} if items else {"vr": "SQ"}
            else:
                elements[name] = element.to_json_dict(None, 0)
                json.dumps(elements[name])
        except Exception:
            elements[name] = None
    return elements


class RawValues:
    """The bytes of values by the places of their elements, from a data set nothing was read of."""

    def __init__(self, path):
        self._root = pydicom.dcmread(path, force=True)

    def __call__(self, where):
        steps = re.findall(r"([0-9A-F]{8})(?:\[(\d+)\])?", where)
        item = self._root
        try:
            for tag, index in steps[:-1]:
                item = item[int(tag, 16)].value[int(index)]
            raw = item.get_item(int(steps[-1][0], 16))
            return raw.value if isinstance(raw.value, bytes) else None
        except (AttributeError, KeyError, IndexError, TypeError):
            return None


def check_pydicom(library, name, path):
    ours = library.json(path)
    try:
        data_set = pydicom.dcmread(path, force=True)
        is_big_endian = data_set.is_little_endian is False
        theirs = pydicom_json(data_set)
    except Exception as error:
        return f"pydicom: {error}"
    if ours is None:
        return "is no data set"
    found = differences("pydicom", name, ours, theirs, RawValues(path), is_big_endian,
                        path.read_bytes())
    return complaint("pydicom", name, found)


# ---- dcm2json ------------------------------------------------------------------------------------

def check_dcm2json(library, name, path):
    run = subprocess.run(["dcm2json", "-q", "-ee", str(path)], capture_output=True, timeout=60)
    if run.returncode != 0:
        return None  # other scripts compare what can be read
    text = run.stdout.decode(errors="replace")
    theirs = json.loads(re.sub(r"(?<=[\[ ,])(-?)(?:nan|inf)\b", "null", text))
    ours = library.json(path)
    found = differences("dcm2json", name, ours, theirs, RawValues(path), False, path.read_bytes())
    return complaint("dcm2json", name, found)


def guarded(check, *arguments):
    try:
        return check(*arguments)
    except Exception as error:
        return f"{type(error).__name__}: {error}"


def results_of(library):
    roots = [DATA]
    if "PGKIT_SAMPLES" in os.environ:
        roots.append(pathlib.Path(os.environ["PGKIT_SAMPLES"]))
    for root in roots:
        for name, path in files_below(root):
            if name.startswith("bad/") or name in NOT_COMPARED or path.stat().st_size > MAX_SIZE:
                continue
            yield "pydicom", name, guarded(check_pydicom, library, name, path)
            yield "dcm2json", name, guarded(check_dcm2json, library, name, path)


def main(library_path):
    return report(results_of(Library(library_path)))


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values
    pydicom.config.replace_un_with_known_vr = False
    # It would follow the links between records, some of which run in circles.
    pydicom.dicomdir.DicomDir.parse_records = lambda self: None
    sys.exit(main(*sys.argv[1:]))
