#!/usr/bin/python3
"""Compares the icons of DICOMDIRs with an independent rendering of the images that they show.

    compare_icons.py CREATION_PROBE [WINDOWS_CREATION_PROBE COMMAND...]

The images are those of tests/data and, when the environment variable PGKIT_SAMPLES names a
directory, of that; of the files that are bad on purpose no two readers have to make the same. Every
file becomes a medium of its own; pydicom reads the DICOMDIR and the image, and the icon that it must
have is made here from the raw bytes: stored bits, sign, rescaling, window, then the mean of the area
that each pixel of the icon covers. Three kinds of checks, a line each:

  icon    the icon has the size that fits into the square and, pixel by pixel, the gray of the
          rendering, with a tolerance of one gray and a half: where a gray lies between two, this
          rendering's floating point numbers may round to the other one, and the mean, which is left
          unrounded here, is rounded there.
  none    an image in colours, compressed in a way that is not decoded, or without all of its pixels
          has a record without icon.
  windows the DICOMDIR of the Windows build has the same icon (only tests/data).

The last line is "N passed, M failed"; the exit status tells the same.
"""

import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import warnings

import pydicom

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import files_below, run_comparison  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
EDGES = [64, 33, 256]
TOLERANCE = 1.5
SECONDS = 60

RLE_LOSSLESS = "1.2.840.10008.1.2.5"
# A private syntax: everything is little endian but the words of the pixels.
BIG_ENDIAN_PIXELS = "1.2.840.113619.5.2"
# The empty one is that of a bare data set.
NATIVE = {"", "1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.2", BIG_ENDIAN_PIXELS}


def unpack_bits(segment, size):
    """One segment of an RLE frame."""
    out = bytearray()
    at = 0
    while at < len(segment) and len(out) < size:
        count = segment[at]
        at += 1
        if count < 128:
            out += segment[at:at + count + 1]
            at += count + 1
        elif count > 128:
            out += segment[at:at + 1] * (257 - count)
            at += 1
    return bytes(out[:size])


def rle_frame(fragment, pixels, sample_bytes):
    """The samples of a frame, little endian. Segments begin with the highest bytes."""
    count, *offsets = struct.unpack("<16I", fragment[:64])
    ends = offsets[1:count] + [len(fragment)]
    planes = [unpack_bits(fragment[start:end], pixels)
              for start, end in zip(offsets[:count], ends)]
    if len(planes) != sample_bytes or any(len(plane) != pixels for plane in planes):
        return None
    frame = bytearray(pixels * sample_bytes)
    for i, plane in enumerate(reversed(planes)):
        frame[i::sample_bytes] = plane
    return bytes(frame)


def rle_fragments(data):
    """The fragments of each frame; with one fragment too few, nothing."""
    table, fragments, positions = b"", [], []
    at, is_first = 0, True
    while at + 8 <= len(data):
        group, element, length = struct.unpack_from("<HHI", data, at)
        if (group, element) != (0xFFFE, 0xE000):
            break
        if is_first:
            table, is_first = data[at + 8:at + 8 + length], False
            start = at + 8 + length
        else:
            positions.append(at - start)
            fragments.append(data[at + 8:at + 8 + length])
        at += 8 + length
    if not table:
        return fragments
    frames = list(struct.unpack(f"<{len(table) // 4}I", table)) + [1 << 40]
    return [b"".join(f for f, p in zip(fragments, positions) if begin <= p < end)
            for begin, end in zip(frames, frames[1:])]


def frame_bytes(image, index, pixels, sample_bytes):
    """Little-endian samples, or None."""
    syntax = str(image.file_meta.get("TransferSyntaxUID", ""))
    data = image.PixelData
    size = pixels * sample_bytes
    if syntax == RLE_LOSSLESS:
        frames = rle_fragments(data)
        if len(frames) == 1 and int(image.get("NumberOfFrames", 1) or 1) > 1:
            return None
        return rle_frame(frames[index], pixels, sample_bytes) if index < len(frames) else None
    if syntax not in NATIVE:
        return None
    frame = data[index * size:(index + 1) * size]
    if len(frame) < size:
        return None
    if sample_bytes == 1:
        # Big-endian words of two pixels each.
        if not image.is_little_endian and image["PixelData"].VR == "OW":
            begin = index * size // 2 * 2
            words = data[begin:begin + (size + index * size - begin + 1) // 2 * 2]
            swapped = bytes(words[i ^ 1] for i in range(len(words)))
            frame = swapped[index * size - begin:][:size]
    elif not image.is_little_endian or syntax == BIG_ENDIAN_PIXELS:
        frame = b"".join(frame[i:i + sample_bytes][::-1] for i in range(0, size, sample_bytes))
    return frame


def first_number(value):
    if value is None or value == "":
        return None
    return float(value[0] if isinstance(value, pydicom.multival.MultiValue) else value)


def stored_values(image, frame, sample_bytes):
    allocated = 8 * sample_bytes
    stored = int(image.get("BitsStored", allocated))
    high = int(image.get("HighBit", stored - 1))
    low, mask = high + 1 - stored, (1 << stored) - 1
    samples = struct.unpack("<%d%s" % (len(frame) // sample_bytes,
                                       {1: "B", 2: "H", 4: "I"}[sample_bytes]), frame)
    values = [sample >> low & mask for sample in samples]
    if int(image.get("PixelRepresentation", 0)) == 1:
        sign = 1 << (stored - 1)
        values = [(value ^ sign) - sign for value in values]
    return values


def grays(image, values):
    """Floating point numbers from 0 to 255."""
    slope, intercept = first_number(image.get("RescaleSlope")), first_number(
        image.get("RescaleIntercept"))
    slope, intercept = 1 if slope is None else slope, intercept or 0
    values = [value * slope + intercept for value in values]
    centre, width = first_number(image.get("WindowCenter")), first_number(image.get("WindowWidth"))
    if centre is None or width is None or width < 1 or "ModalityLUTSequence" in image:
        low, high = min(values), max(values)
        scale = 255 / (high - low) if high > low else 0
        result = [(value - low) * scale for value in values]
    elif width == 1:
        result = [0 if value <= centre - 0.5 else 255 for value in values]
    else:
        result = [min(max(((value - (centre - 0.5)) / (width - 1) + 0.5) * 255, 0), 255)
                  for value in values]
    if image.PhotometricInterpretation.startswith("MONOCHROME1"):
        result = [255 - gray for gray in result]
    return [int(gray + 0.5) for gray in result]


def side_parts(old, new):
    """For every new pixel the old ones that it covers, with the lengths that it covers of them."""
    return [[(i, min((n + 1) * old, (i + 1) * new) - max(n * old, i * new))
             for i in range(n * old // new, -(-(n + 1) * old // new))]
            for n in range(new)]


def reduce(pixels, width, height, new_width, new_height):
    across, down = side_parts(width, new_width), side_parts(height, new_height)
    rows = [[sum(pixels[y * width + x] * part for x, part in parts) for parts in across]
            for y in range(height)]
    total = width * height
    return [sum(rows[y][x] * part for y, part in parts) / total
            for parts in down for x in range(new_width)]


def expected_icon(image, edge):
    """(columns, rows, grays), or None for an image that gets no icon."""
    if "PixelData" not in image or int(image.get("SamplesPerPixel", 1)) != 1:
        return None
    if not str(image.get("PhotometricInterpretation", "")).startswith("MONOCHROME"):
        return None
    columns, rows = int(image.get("Columns", 0)), int(image.get("Rows", 0))
    allocated = int(image.get("BitsAllocated", 8))
    if not columns or not rows or allocated not in (8, 16, 32):
        return None
    frame_count = int(image.get("NumberOfFrames", 1) or 1) & 0xFFFF
    sample_bytes = allocated // 8
    frame = frame_bytes(image, frame_count // 3, columns * rows, sample_bytes)
    if frame is None:
        return None
    longer = max(columns, rows)
    width, height = (max((2 * side * edge + longer) // (2 * longer), 1) for side in (columns, rows))
    pixels = grays(image, stored_values(image, frame, sample_bytes))
    return width, height, reduce(pixels, columns, rows, width, height)


def written_icon(command, image_path, edge):
    """The record of a medium's only image, and its icon as (columns, rows, bytes)."""
    with tempfile.TemporaryDirectory() as directory:
        medium = pathlib.Path(directory) / "MEDIUM"
        medium.mkdir()
        shutil.copy(image_path, medium / "IMAGE")
        run = subprocess.run([*command, "MEDIUM", str(edge)], cwd=directory, timeout=SECONDS,
                             capture_output=True)
        if run.returncode != 0:
            raise RuntimeError(f"exit status {run.returncode}: {run.stderr.decode()}")
        records = pydicom.dcmread(medium / "DICOMDIR").DirectoryRecordSequence
    records = [r for r in records if r.DirectoryRecordType == "IMAGE"]
    if not records:
        return None, None
    if "IconImageSequence" not in records[0]:
        return records[0], None
    (icon,) = records[0].IconImageSequence
    fields = (icon.SamplesPerPixel, icon.PhotometricInterpretation, icon.BitsAllocated,
              icon.BitsStored, icon.HighBit, icon.PixelRepresentation)
    if fields != (1, "MONOCHROME2", 8, 8, 7, 0):
        raise RuntimeError(f"the icon says {fields}")
    return records[0], (icon.Columns, icon.Rows, icon.PixelData)


def check_icon(probe, path, image, edge):
    """Returns a complaint, or None when the icon is right."""
    expected = expected_icon(image, edge)
    _, written = written_icon([probe], path, edge)
    if expected is None or written is None:
        return None if expected is written else f"expected {expected}, written {written}"
    columns, rows, pixels = written
    if (columns, rows) != expected[:2]:
        return f"{columns} by {rows} pixels, expected {expected[0]} by {expected[1]}"
    if len(pixels) != (columns * rows + 1) // 2 * 2:
        return f"{len(pixels)} bytes of pixels"
    worst = max(abs(a - b) for a, b in zip(pixels, expected[2]))
    return f"a pixel is {worst:.2f} grays off" if worst > TOLERANCE else None


def check_windows(probe, command, path, edge):
    native, windows = written_icon([probe], path, edge)[1], written_icon(command, path, edge)[1]
    return None if native == windows else "the icons differ"


def images_of(root, probe):
    """Yields (name, path, image) for every file below root that becomes an image record."""
    for name, path in files_below(root):
        if name.startswith("bad/"):
            continue
        if written_icon([probe], path, 0)[0] is not None:
            yield name, path, pydicom.dcmread(path)


def checks_of(root, probe, windows):
    for name, path, image in images_of(root, probe):
        for edge in EDGES:
            kind = "none" if expected_icon(image, edge) is None else "icon"
            yield kind, f"{name}, {edge}", check_icon, (probe, path, image, edge)
        if windows:
            yield "windows", name, check_windows, (probe, windows, path, EDGES[0])


if __name__ == "__main__":
    warnings.simplefilter("ignore")  # pydicom comments on unusual values
    program, *command = sys.argv[1:]
    program = os.path.abspath(program)
    sys.exit(run_comparison(DATA, checks_of, (program, command), (program, None)))
