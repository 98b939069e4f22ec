#!/usr/bin/python3
"""Compares texts in UTF-8 with two independent readers, dcmdump (+U8) and pydicom.

    compare_text.py LIBRARY

Two kinds of checks, a line each:

  set   a text of one script: written by the library under a character set, put into a file, and read
        by the library and by both others
  file  every text of the files that have one beyond ASCII: those of tests/data and, when the
        environment variable PGKIT_SAMPLES names a directory, those of its folders of character sets

Where a reader differs the reason stands in EXPLAINED. The last line is "N passed, M failed".
"""

import ctypes
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import warnings

import pydicom

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import files_below, report  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
VALUE_REPRESENTATIONS = {"LO": 5, "SH": 7, "ST": 13, "PN": 14, "LT": 17, "UT": 25, "UC": 33}

# (name, character set, VR, text)
TEXTS = [
    ("western European", "ISO_IR 100", "PN", "Buc^Jérôme"),
    ("central European", "ISO_IR 101", "PN", "Wałęsa^Żółć"),
    ("south European", "ISO_IR 109", "LO", "Ħaż-Żabbar"),
    ("north European", "ISO_IR 110", "PN", "Kalniņš"),
    ("Cyrillic", "ISO_IR 144", "PN", "Люкceмбypг"),
    ("Arabic", "ISO_IR 127", "PN", "قباني^لنزار"),
    ("Greek", "ISO_IR 126", "PN", "Διονυσιος"),
    ("Hebrew", "ISO_IR 138", "PN", "שרון^דבורה"),
    ("Turkish", "ISO_IR 148", "PN", "İnönü^Şükrü"),
    ("euro sign", "ISO_IR 203", "LO", "€ œuvre"),
    ("Thai", "ISO_IR 166", "PN", "สมชาย"),
    ("katakana", "ISO_IR 13", "PN", "ﾔﾏﾀﾞ^ﾀﾛｳ"),
    ("Japanese", "\\ISO 2022 IR 87", "PN", "Yamada^Tarou=山田^太郎=やまだ^たろう"),
    ("Japanese behind katakana", "ISO 2022 IR 13\\ISO 2022 IR 87", "PN",
     "ﾔﾏﾀﾞ^ﾀﾛｳ=山田^太郎=やまだ^たろう"),
    ("Japanese beside ASCII", "\\ISO 2022 IR 87", "LO", "CT 頭部 plain"),
    ("Japanese lines", "\\ISO 2022 IR 87", "LT", "一行目\r\nline 2 二行目\r\n"),
    ("rare Japanese", "\\ISO 2022 IR 87\\ISO 2022 IR 159", "LO", "丂亜"),
    ("Korean", "\\ISO 2022 IR 149", "PN", "Hong^Gildong=洪^吉洞=홍^길동"),
    ("Korean lines", "\\ISO 2022 IR 149", "LT",
     "The 1st line includes 길동.\r\nThe 2nd line includes 길동, too.\r\nThe 3rd line."),
    ("Chinese with extensions", "\\ISO 2022 IR 58", "PN", "Zhang^XiaoDong=张^小东"),
    ("Chinese in UTF-8", "ISO_IR 192", "PN", "Wang^XiaoDong=王^小東"),
    ("Chinese in GB18030", "GB18030", "PN", "Wang^XiaoDong=王^小东"),
    ("Chinese in GBK", "GBK", "LO", "乗客 王小东"),
    ("everything in GB18030", "GB18030", "LO", "aé山홍😂"),
    ("everything in UTF-8", "ISO_IR 192", "LO", "aé山홍😂"),
    ("several values", "\\ISO 2022 IR 87", "LO", "頭部\\CT\\腹部"),
    ("Greek beside Cyrillic", "ISO 2022 IR 144\\ISO 2022 IR 126", "LO", "Лю Δι"),
    ("Latin 1 behind ASCII", "ISO 2022 IR 6\\ISO 2022 IR 100", "PN", "Buc^Jérôme"),
]

# Why (check, reader) differs, by name.
EXPLAINED = {
    ("Chinese with extensions", "pydicom"): "follows no escape of ISO 2022 IR 58",
    ("Chinese in GBK", "pydicom"): "splits at bytes 5C inside of characters",
    ("euro sign", "dcmdump"): "does not know ISO_IR 203",
    ("euro sign", "pydicom"): "likewise, and takes ISO_IR 100 instead",
    # "not supported by the utilized character set conversion library", which is glibc's iconv.
    **{(name, "dcmdump"): "converts no ISO 2022 IR 87 with this library"
       for name in ("Japanese", "Japanese behind katakana", "Japanese beside ASCII",
                    "Japanese lines", "rare Japanese", "several values")},
}


class Library:
    def __init__(self, path):
        self._library = ctypes.CDLL(str(pathlib.Path(path).resolve()))
        for name in ("pgxTextToUtf8", "pgxTextFromUtf8"):
            function = getattr(self._library, name)
            function.restype = ctypes.c_int64
            function.argtypes = [ctypes.c_char_p, ctypes.c_uint32, ctypes.c_char_p,
                                 ctypes.c_size_t, ctypes.c_char_p, ctypes.c_size_t]

    def _convert(self, function, character_set, vr, value):
        arguments = (character_set.encode("latin-1"), VALUE_REPRESENTATIONS[vr], value, len(value))
        length = function(*arguments, None, 0)
        if length < 0:
            raise ValueError(f"error {length} for {value!r} under {character_set}")
        buffer = ctypes.create_string_buffer(length + 1)
        function(*arguments, buffer, len(buffer))
        return buffer.raw[:length]

    def read(self, character_set, vr, value):
        return self._convert(self._library.pgxTextToUtf8, character_set, vr, value).decode()

    def write(self, character_set, vr, text):
        return self._convert(self._library.pgxTextFromUtf8, character_set, vr, text.encode())


def element(group, number, vr, value):
    value += b" " * (len(value) % 2)
    return struct.pack("<HH2sH", group, number, vr.encode(), len(value)) + value


def file_with(character_set, vr, value):
    """A Part 10 file that holds the character set and one text, at a tag of the VR."""
    tag = {"PN": (0x0010, 0x0010), "LO": (0x0008, 0x1030), "LT": (0x0010, 0x4000)}[vr]
    syntax = b"1.2.840.10008.1.2.1\0"
    meta = struct.pack("<HH2sH", 2, 0x0010, b"UI", len(syntax)) + syntax
    return (bytes(128) + b"DICM" + element(2, 0, "UL", struct.pack("<I", len(meta))) + meta
            + element(0x0008, 0x0005, "CS", character_set.encode()) + element(*tag, vr, value))


def without_padding(text):
    return text.rstrip(" \0")


# ---- The other readers ---------------------------------------------------------------------------

DUMPED = re.compile(r"^ *\((?!0002)[0-9a-f]{3}[02468ace],[0-9a-f]{4}\) (SH|LO|ST|PN|LT|UT|UC) "
                    r"(?:\[(.*?)\]|\(no value available\)) +# +\d+, *\d+ ", re.DOTALL | re.MULTILINE)


def dumped_texts(path):
    """The texts that dcmdump shows, in order; None when it cannot convert the file."""
    run = subprocess.run(["dcmdump", "+U8", "+L", str(path)], capture_output=True, timeout=60)
    if run.returncode != 0 or b"cannot convert" in run.stderr:
        return None
    dump = run.stdout.decode(errors="replace").replace("\r\n", "\n")
    return [(match[1], without_padding(match[2] or "")) for match in DUMPED.finditer(dump)]


def as_text(value):
    if value is None:
        return ""
    if isinstance(value, (list, pydicom.multival.MultiValue)):
        return "\\".join(as_text(one) for one in value)
    return str(value)


def texts_of(data_set, character_set):
    """Yields (tag, VR, character set, bytes, what pydicom makes of them) of a data set and its items."""
    own = data_set.get_item(0x00080005)
    if own is not None:
        value = own.value
        character_set = (value.decode("latin-1") if isinstance(value, bytes) else as_text(value))
    for tag in sorted(data_set.keys()):
        raw = data_set.get_item(tag)
        value = raw.value
        known = data_set[tag]
        if known.VR == "SQ":
            for item in known.value:
                yield from texts_of(item, character_set)
        elif known.VR in VALUE_REPRESENTATIONS and isinstance(value, bytes):
            yield tag, known.VR, character_set, value, as_text(known.value)


# ---- Checks --------------------------------------------------------------------------------------

def explained(name, reader):
    return EXPLAINED.get((name, reader)) is not None


def check_text(library, name, character_set, vr, text):
    value = library.write(character_set, vr, text)
    if library.read(character_set, vr, value) != text:
        return f"reads {library.read(character_set, vr, value)!r} from {value!r}"
    with tempfile.TemporaryDirectory() as directory:
        path = pathlib.Path(directory) / "file"
        path.write_bytes(file_with(character_set, vr, value))
        shown = dumped_texts(path)
        answers = {"dcmdump": shown[0][1] if shown else None,
                   "pydicom": list(texts_of(pydicom.dcmread(path), ""))[0][4]}
    return differences(name, text.replace("\r\n", "\n"), answers)


def differences(name, text, answers):
    """A complaint about answers that differ without a reason, and about reasons without need."""
    for reader, answer in answers.items():
        same = answer is not None and without_padding(answer.replace("\r\n", "\n")) \
            == without_padding(text)
        if same and explained(name, reader):
            return f"{reader} does not differ any more"
        if not same and not explained(name, reader):
            return f"{reader} reads {answer!r} instead of {text!r}"
    return None


def check_file(library, name, path, texts):
    ours = [(vr, library.read(character_set, vr, value))
            for _, vr, character_set, value, _ in texts]
    theirs = [(vr, without_padding(text)) for _, vr, _, _, text in texts]
    # pydicom leaves out empty component groups at the end.
    comparable = [(vr, text.rstrip("=") if vr == "PN" else text) for vr, text in ours]
    found = list(compared("pydicom", name, comparable, theirs))
    shown = dumped_texts(path)
    if shown is not None:
        # Each reader has a dictionary of private elements of its own.
        public = [text for text, (tag, *_) in zip(ours, texts) if tag.group % 2 == 0]
        found += compared("dcmdump", name, in_order(public), in_order(shown))
    return "\n       ".join(found[:5]) or None


def in_order(texts):
    return sorted((vr, text.replace("\r\n", "\n")) for vr, text in texts if text)


def compared(reader, name, ours, theirs):
    pairs = [(mine, other) for mine, other in zip(ours, theirs) if mine != other]
    if len(ours) != len(theirs):
        pairs.append((len(ours), len(theirs)))
    if pairs and not explained(name, reader):
        for mine, other in pairs:
            yield f"{reader}: {other!r} instead of {mine!r}"
    if not pairs and explained(name, reader):
        yield f"{reader} does not differ any more"


def international_texts(path):
    """All texts of a file when one of them is more than ASCII; else none."""
    try:
        texts = list(texts_of(pydicom.dcmread(path, force=True, stop_before_pixels=True), ""))
    except Exception:  # broken files are compared by others
        return []
    return texts if any(not value.isascii() or b"\x1b" in value for _, _, _, value, _ in texts) \
        else []


# Below a directory of samples.
CHARACTER_SETS = ("charset", "media/character_sets")


def main(library_path):
    library = Library(library_path)
    results = [("set", name, check_text(library, name, *rest)) for name, *rest in TEXTS]
    roots = [DATA]
    if "PGKIT_SAMPLES" in os.environ:
        samples = pathlib.Path(os.environ["PGKIT_SAMPLES"])
        roots += filter(pathlib.Path.is_dir, (samples / name for name in CHARACTER_SETS))
    for root in roots:
        for name, path in files_below(root):
            texts = [] if name.startswith("bad/") else international_texts(path)
            if texts:
                results.append(("file", name, check_file(library, name, path, texts)))
    return report(results)


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values
    sys.exit(main(*sys.argv[1:]))
