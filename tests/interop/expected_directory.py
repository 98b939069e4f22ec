"""The DICOMDIR that the files of a folder ask for, worked out from what pydicom reads of them.

Records are Record objects: type, keys (raw bytes by tag, without padding) and children, in order.
"""

import os
import pathlib
import re

import pydicom

DIRECTORY_CLASS = "1.2.840.10008.1.3.10"

PATIENT_KEYS = {0x00100030: 8, 0x00100040: 16}
STUDY_KEYS = {0x0020000D: 64, 0x00200010: 16, 0x00080020: 8, 0x00080030: 16, 0x00080050: 16,
              0x00081030: 64, 0x00080090: 194}
SERIES_KEYS = {0x00080060: 16, 0x00080080: 64, 0x00080081: 1024, 0x00081050: 194, 0x0008103E: 64,
               0x0020000E: 64}
CONTENT_TIMES = {0x00080023: 8, 0x00080033: 16}
# The keys of each kind of leaf that are copied as text, and the sequences that are copied.
LEAF_KEYS = {
    "SR DOCUMENT": {0x0040A491: 16, 0x0040A493: 16, **CONTENT_TIMES},
    "KEY OBJECT DOC": CONTENT_TIMES,
    "PRESENTATION": {0x00700082: 8, 0x00700083: 16, 0x00700084: 194, 0x00700080: 16,
                     0x00700081: 64},
    "ENCAP DOC": {0x00420010: 1024, 0x00420012: 64, **CONTENT_TIMES},
    "WAVEFORM": CONTENT_TIMES,
    "RAW DATA": CONTENT_TIMES,
    "IMAGE": {0x00080008: 271},
}
LEAF_SEQUENCES = {
    "SR DOCUMENT": [0x0040A043], "KEY OBJECT DOC": [0x0040A043], "ENCAP DOC": [0x0040A043],
    "PRESENTATION": [0x00081115],
}
# Reports of later classes count as images, like every class that has no kind of its own.
REPORT_CLASSES = {"1.2.840.10008.5.1.4.1.1.88." + end
                  for end in ("11", "22", "33", "40", "50", "65", "67", "69")}
WITH_MODIFIERS = ("SR DOCUMENT", "KEY OBJECT DOC")


class Record:
    def __init__(self, kind, keys):
        self.kind = kind
        self.keys = keys
        self.children = []
        self.number = 0  # orders series and leaves


class Source:
    """A file as creation sees it: raw values, cut and without padding."""

    def __init__(self, path):
        self.data_set = pydicom.dcmread(path)
        self.meta = self.data_set.file_meta

    def text(self, tag, size, default=b""):
        data_set = self.meta if tag >> 16 == 2 else self.data_set
        if tag not in data_set:
            return default
        value = data_set.get_item(tag).value
        if isinstance(value, pydicom.multival.MultiValue):
            value = "\\".join(value)
        if not isinstance(value, bytes):  # some elements are decoded at once
            value = str(value).encode()
        return value[:size].split(b"\0")[0].rstrip(b" ")

    def number(self, tag, default=0):
        if tag not in self.data_set or self.data_set[tag].value in (None, ""):
            return default
        value = self.data_set[tag].value
        return int(value[0] if isinstance(value, pydicom.multival.MultiValue) else value)

    def sequence(self, tag):
        return self.data_set[tag].value if tag in self.data_set else None

    @property
    def sop_class(self):
        return self.text(0x00020002, 64) or self.text(0x00080016, 64)


def leading_integer(text):
    match = re.match(rb"\s*([+-]?\d+)", text)
    return int(match[1]) if match else 0


def judge(path, name):
    """The acceptance code of a file by itself, and the file when it is accepted."""
    if name.upper() == "DICOMDIR":
        return 4, None
    content = path.read_bytes()
    if content[128:132] != b"DICM":
        return 2, None
    source = Source(path)
    if not source.sop_class:
        return 3, None
    if source.sop_class.decode().startswith(DIRECTORY_CLASS):
        return 4, None
    for tag, code in ((0x00080018, 7), (0x0020000D, 9), (0x0020000E, 8)):
        if not source.text(tag, 64):
            return code, None
    return 0, source


def files_in_order(folder, place=""):
    """Relative paths with backslashes: a directory's files, then its subdirectories."""
    names = sorted(os.listdir(folder / place.replace("\\", "/")), key=os.fsencode)
    joined = [place + "\\" + name if place else name for name in names]
    is_file = [(folder / path.replace("\\", "/")).is_file() for path in joined]
    yield from (path for path, plain in zip(joined, is_file) if plain)
    for path, plain in zip(joined, is_file):
        if not plain:
            yield from files_in_order(folder, path)


def kind_of(sop_class):
    if sop_class == "1.2.840.10008.5.1.4.1.1.88.59":
        return "KEY OBJECT DOC"
    if sop_class in REPORT_CLASSES:
        return "SR DOCUMENT"
    if sop_class == "1.2.840.10008.5.1.4.1.1.11.1":
        return "PRESENTATION"
    if sop_class.startswith("1.2.840.10008.5.1.4.1.1.9."):
        return "WAVEFORM"
    return {"1.2.840.10008.5.1.4.1.1.104.1": "ENCAP DOC",
            "1.2.840.10008.5.1.4.1.1.66": "RAW DATA"}.get(sop_class, "IMAGE")


def character_set(source):
    return source.text(0x00080005, 271, b"ISO_IR 100")


def described(sequence):
    """Items as comparable text, without padding."""
    return [{element.tag: described(element.value) if element.VR == "SQ" else str(element.value)
             for element in item} for item in sequence]


def leaf_of(source, name):
    sop_class = source.sop_class
    kind = kind_of(sop_class.decode())
    keys = {0x00041500: name.encode(), 0x00041510: sop_class,
            0x00041511: source.text(0x00080018, 64), 0x00041512: source.text(0x00020010, 64),
            0x00080005: character_set(source)}
    keys.update({tag: source.text(tag, size) for tag, size in LEAF_KEYS[kind].items()})
    for tag in LEAF_SEQUENCES.get(kind, []):
        if source.sequence(tag) is not None:
            keys[tag] = described(source.sequence(tag))
    if kind in WITH_MODIFIERS:
        modifiers = [item for item in source.sequence(0x0040A730) or []
                     if str(item.get("RelationshipType", "")).startswith("HAS CONCEPT MOD")]
        if modifiers:
            keys[0x0040A730] = described(modifiers)
    if kind == "SR DOCUMENT" and keys[0x0040A493].startswith(b"VERIFIED"):
        keys[0x0040A030] = max([str(item.get("VerificationDateTime", "")).encode()
                                for item in source.sequence(0x0040A073) or []], default=b"")
    if kind == "IMAGE":
        keys[0x00280010] = source.number(0x00280010)
        keys[0x00280011] = source.number(0x00280011)
        keys[0x00280008] = str(source.number(0x00280008, 1)).encode()
    leaf = Record(kind, keys)
    leaf.number = source.number(0x00200013)
    keys[0x00200013] = str(leaf.number).encode()
    return leaf


def child(parent, kind, tag, keys, number=None):
    """The first child with the same value, or a new one; ordered by number if there is one."""
    for known in parent.children:
        if known.keys[tag] == keys[tag]:
            return known
    record = Record(kind, keys)
    insert(parent, record, number)
    return record


def insert(parent, record, number):
    place = len(parent.children)
    if number is not None:
        record.number = number
        place = next((i for i, other in enumerate(parent.children) if other.number >= number),
                     place)
    parent.children.insert(place, record)


def texts(source, keys):
    return {0x00080005: character_set(source),
            **{tag: source.text(tag, size) for tag, size in keys.items()}}


def add(root, source, name):
    """Gives 0, or 6 when the series has the instance already."""
    patient_keys = {**texts(source, PATIENT_KEYS), 0x00100020: source.text(0x00100020, 64).strip(),
                    0x00100010: source.text(0x00100010, 194).rstrip(b" ^").strip(b" ")}
    patient = next((known for known in root.children
                    if known.keys[0x00100020] == patient_keys[0x00100020]
                    and known.keys[0x00100010] == patient_keys[0x00100010]), None)
    if patient is None:
        patient = Record("PATIENT", patient_keys)
        root.children.append(patient)
    study = child(patient, "STUDY", 0x0020000D, texts(source, STUDY_KEYS))
    series_keys = {**texts(source, SERIES_KEYS), 0x00200011: source.text(0x00200011, 16, b"0")}
    series = child(study, "SERIES", 0x0020000E, series_keys,
                   leading_integer(series_keys[0x00200011]))
    leaf = leaf_of(source, name)
    if any(other.keys[0x00041511] == leaf.keys[0x00041511] for other in series.children):
        return 6
    insert(series, leaf, leaf.number)
    return 0


def leaves_below(record):
    if not record.children:
        return [record]
    return [leaf for each in record.children for leaf in leaves_below(each)]


def expected_directory(folder):
    """The root, whose children are the patients, and the lines of the acceptance list."""
    folder = pathlib.Path(folder)
    root = Record("", {})
    refused = []
    for name in files_in_order(folder):
        code, source = judge(folder / name.replace("\\", "/"), name)
        if code == 0:
            code = add(root, source, name)
        if code != 0:
            refused.append(f"{code}\t{name}")
    accepted = [f"0\t{leaf.keys[0x00041500].decode()}"
                for leaf in (leaves_below(root) if root.children else [])]
    return root, refused + accepted
