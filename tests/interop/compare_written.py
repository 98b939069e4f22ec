#!/usr/bin/python3
"""Saves files with pgtool in every encoding and has independent readers judge what was written.

    compare_written.py PGTOOL

The files are the well-formed ones of tests/data and, when the environment variable PGKIT_SAMPLES
names a directory, those below it. A line for each file and encoding, which has to satisfy:

  pydicom   reads from the written file what it reads from the source: tags, order, nesting, values,
            fragments; but for File Meta Information and group lengths, which saving sets.
  dcmdump   reads the file, and warns of nothing but what it warns of in the source.
  dciodvfy  finds no error but those that it finds in the source.

The last line is "N passed, M failed"; the exit status tells the same.
"""

import functools
import hashlib
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import warnings

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import files_below, run_comparison  # noqa: E402
from compare_readers import NO_COMMON_READING, broken_files  # noqa: E402
from raw_elements import read_raw  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
SECONDS = 60
ENCODINGS = {
    "as-read": ["--mode", "as-read"],
    "explicit-le": ["--mode", "explicit-le"],
    "implicit-le": ["--mode", "implicit-le"],
    "explicit-be": ["--mode", "explicit-be"],
    "undefined": ["--mode", "explicit-le", "--undefined-lengths"],
}

# A private syntax that other readers do not know as the implicit VR that it is.
PRIVATE_SYNTAX = b"1.2.840.113619.5.2"

# Bytes of the numbers in a value.
UNITS = {"US": 2, "SS": 2, "OW": 2, "AT": 2, "UL": 4, "SL": 4, "FL": 4, "OF": 4, "OL": 4, "FD": 8, "OD": 8,
         "OV": 8, "SV": 8, "UV": 8}

# Where dciodvfy finds errors that are its own.
DCIODVFY_GIVES_UP = "Missing Pixel Representation, can't set VR"  # of implicit VR
UN_IN_BIG_ENDIAN = "takes the bytes of UN for big endian, which are implicit VR little endian"
DCIODVFY_EXCEPTIONS = {
    ("sequences/seg_fractional_implicit.dcm", "explicit-be"): UN_IN_BIG_ENDIAN,
    ("sequences/seg_implicit_232_sequences.dcm", "explicit-be"): UN_IN_BIG_ENDIAN,
}
META_OUT_OF_ORDER = "reads what was written in order, and so finds errors that it misses in the source"
for image in ("IM1", "IM2", "IM3"):
    for mode in ENCODINGS:
        DCIODVFY_EXCEPTIONS[f"media/nested_minimal/ST1/SE1/{image}", mode] = META_OUT_OF_ORDER


def run(*command):
    return subprocess.run(command, capture_output=True, timeout=SECONDS)


# The links of a DICOMDIR lead to positions in the file.
LINKS = {0x1200, 0x1202, 0x1400, 0x1420, 0x1504}


def is_set_by_saving(element):
    return (element.group == 2 or element.element == 0
            or (element.group == 4 and element.element in LINKS))


def little_endian(element, vr):
    """The value with its numbers in little endian; bytes behind the last whole number stay."""
    unit = UNITS.get(vr, 1)
    if not element.is_big_endian or unit == 1:
        return element.value
    whole = len(element.value) // unit * unit
    numbers = [element.value[i:i + unit][::-1] for i in range(0, whole, unit)]
    return b"".join(numbers) + element.value[whole:]


def difference(source, written):
    """Of two lists of elements: a text, or None."""
    source = [element for element in source if not is_set_by_saving(element)]
    written = [element for element in written if not is_set_by_saving(element)]
    tags = [[f"{e.group:04X},{e.element:04X}" for e in elements] for elements in (source, written)]
    if tags[0] != tags[1]:
        return f"elements {set(tags[0]) ^ set(tags[1]) or 'in another order'}"
    for one, other in zip(source, written):
        complaint = difference_of_elements(one, other)
        if complaint:
            return f"({one.group:04X},{one.element:04X}) {complaint}"
    return None


def difference_of_elements(source, written):
    if source.items is not None and written.items is not None:
        if len(source.items) != len(written.items):
            return f"{len(written.items)} items instead of {len(source.items)}"
        return next(filter(None, map(difference, source.items, written.items)), None)
    if source.items is not None or written.items is not None:
        return None  # without its VR a private sequence of defined length is bytes
    # The VR is that of the header that has one.
    vr = written.vr if source.is_implicit else source.vr
    if source.length == written.length == 0xFFFFFFFF:
        same = fragments_to_write(source.value) == items_of(written.value)[1:]
        return None if same else "fragments"
    same = little_endian(source, vr) == little_endian(written, vr)
    return None if same else f"{vr} {written.value[:40]} instead of {source.value[:40]}"


def items_of(encapsulated):
    """The values of the items: the offset table and the fragments."""
    items = []
    at = 0
    while at + 8 <= len(encapsulated):
        length, = struct.unpack_from("<I", encapsulated, at + 4)
        items.append(encapsulated[at + 8:at + 8 + length])
        at += 8 + length
    return items


def fragments_to_write(encapsulated):
    """The fragments as the library knows them: those that an offset table names, a frame each, or,
    without a table that fits, the items. The table itself is written empty."""
    table, *fragments = items_of(encapsulated)
    if not table or not fits(table, fragments):
        return fragments
    begin = 8 + len(table)  # of the first fragment's item
    offsets = struct.unpack(f"<{len(table) // 4}I", table)
    ends = [begin + offset for offset in offsets[1:]] + [len(encapsulated)]
    return [encapsulated[begin + offset + 8:end] for offset, end in zip(offsets, ends)]


def fits(table, fragments):
    """Whether the last frame of an offset table is one fragment, as the library wants it."""
    last, = struct.unpack_from("<I", table, len(table) // 4 * 4 - 4)
    return len(table) == 4 and len(fragments) == 1 or last == sum(8 + len(f) for f in fragments[:-1])


def complaints_of_dcmdump(path):
    """Its exit status and what it complains of, without the places."""
    result = run("dcmdump", str(path))
    lines = result.stderr.decode(errors="replace").splitlines()
    return result.returncode, {re.sub(r"\d+", "N", line) for line in lines}


def errors_of_dciodvfy(path):
    lines = run("dciodvfy", str(path)).stderr.decode(errors="replace").splitlines()
    return {line for line in lines if line.startswith("Error")}


@functools.cache
def known_of(judge, source):
    """A source is saved several times and judged once."""
    return judge(source)


def complaint_of_pydicom(source, written):
    return difference(read_raw(source).elements, read_raw(written).elements)


def complaint_of_dcmdump(source, written):
    status, found = complaints_of_dcmdump(written)
    known_status, known = known_of(complaints_of_dcmdump, source)
    if status not in (0, known_status):
        return f"exit status {status}"
    return f"{sorted(found - known)[:3]}" if found - known else None


def complaint_of_dciodvfy(source, written):
    found = errors_of_dciodvfy(written) - known_of(errors_of_dciodvfy, source)
    if any(DCIODVFY_GIVES_UP in error for error in found):
        return None
    return f"{sorted(found)[:3]}" if found else None


def complaint_of_readers(readers, source, written):
    for reader, judge in readers.items():
        try:
            complaint = judge(source, written)
        except Exception as error:  # readers may fail in their own ways
            complaint = f"{type(error).__name__}: {error}"
        if complaint:
            return f"{reader}: {complaint}"
    return None


def dumped_in_silence(paths):
    """Whether dcmdump, whose start takes longer than a dump, has no word to say about any of them."""
    result = run("dcmdump", *map(str, paths))
    return result.returncode == 0 and not result.stderr


@functools.cache
def complaints_about(tool, name, source):
    """What is wrong with the source saved in each encoding, None where nothing is."""
    complaints = {}
    with tempfile.TemporaryDirectory(prefix="pgkit-written-") as work:
        # What was read in an encoding is often saved in it again: a file for each content, and the
        # encodings that have it.
        written = {}
        for encoding, options in ENCODINGS.items():
            path = pathlib.Path(work) / encoding
            saved = run(tool, "save", str(source), str(path), *options)
            if saved.returncode != 0:
                message = saved.stderr.decode(errors="replace")
                complaints[encoding] = f"exit status {saved.returncode}: {message}"
                continue
            content = hashlib.sha256(path.read_bytes()).digest()
            is_exception = (name, encoding) in DCIODVFY_EXCEPTIONS
            _, encodings = written.setdefault((content, is_exception), (path, []))
            encodings.append(encoding)
        is_silent = dumped_in_silence(path for path, _ in written.values())
        for (_, is_exception), (path, encodings) in written.items():
            readers = {"pydicom": complaint_of_pydicom}
            if not is_silent:
                readers["dcmdump"] = complaint_of_dcmdump
            if not is_exception:
                readers["dciodvfy"] = complaint_of_dciodvfy
            complaints.update(dict.fromkeys(encodings, complaint_of_readers(readers, source, path)))
    return complaints


def check_saved(tool, name, path, encoding):
    return complaints_about(tool, name, path)[encoding]


def sources_of(root):
    broken = broken_files(root)
    for name, path in files_below(root):
        if name.startswith("bad/") or name in broken or name in NO_COMMON_READING:
            continue
        # Without a transfer syntax readers have to guess; they are compared elsewhere.
        if read_raw(path).is_bare or PRIVATE_SYNTAX in path.read_bytes()[:1024]:
            continue
        yield name, path


def checks_of(root, tool):
    # All files in one encoding, then in the next: the first check of a file judges all its encodings,
    # and no other check should wait for the same.
    sources = list(sources_of(root))
    for encoding in ENCODINGS:
        for name, path in sources:
            yield "written", f"{name}, {encoding}", check_saved, (tool, name, path, encoding)


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values; they are compared raw
    tools = (os.path.abspath(sys.argv[1]),)
    sys.exit(run_comparison(DATA, checks_of, tools, tools))
