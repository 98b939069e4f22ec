#!/usr/bin/python3
"""Compares the frames of encapsulated Pixel Data, and deflated data sets, with pydicom and dcmtk.

    compare_frames.py LIBRARY

Three kinds of checks, a line each:

  frames    the frames that pgxFindFrames tells are those of pydicom, byte by byte: of files that
            pydicom makes, with offset tables of every kind, and of the files of tests/data and, when
            the environment variable PGKIT_SAMPLES names a directory, of the files below it
  inflate   what pydicom or dcmconv has deflated is read like what it was made of
  deflate   what the library deflates is read by pydicom and by dcmdump like what it was made of

Where a reader differs the reason stands in EXPLAINED. The last line is "N passed, M failed".
"""

import ctypes
import os
import pathlib
import subprocess
import sys
import tempfile
import warnings

import pydicom
import pydicom.dicomdir
from pydicom.encaps import encapsulate, encapsulate_extended, generate_pixel_data
from pydicom.uid import DeflatedExplicitVRLittleEndian, ExplicitVRLittleEndian, RLELossless

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import files_below, report  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"

LARGEST = 4 << 20

# Files, by the end of their path, for which the library tells other frames than pydicom, and why.
EXPLAINED = {
    "encapsulated/sc_rle_2frame_multifragment_no_bot.dcm":
        "no table and no count tells; pydicom guesses",
    "encapsulated/ect_2frames_jpegll57_17fragments_no_bot.dcm":
        "no table tells which of the 17 fragments begins the second frame; pydicom looks for ends",
    "encapsulated/ect_2frames_jpegll_19fragments_no_bot.dcm":
        "nor which of the 19",
    "encapsulated/ect_2frames_jpegls_11fragments_no_bot.dcm":
        "nor which of the 11",
    "bad/meta_says_jpeg_data_implicit.dcm":
        "the data set is not in the encoding that its syntax says; pydicom guesses that too",
    "bad/sc_rle_2frame_bot_wild_offsets.dcm":
        "the offset table is wrong, each fragment is a frame; pydicom takes all for one",
    "bad/sc_rle_2frame_fragment_longer_than_file.dcm":
        "the last fragment claims more than there is",
}


class Piece(ctypes.Structure):
    _fields_ = [("frame", ctypes.c_uint32), ("length", ctypes.c_uint32),
                ("offset", ctypes.c_uint64), ("bytes", ctypes.c_void_p)]


class Library:
    def __init__(self, path):
        self.library = ctypes.CDLL(str(path))
        self.library.pgxOpenFile.restype = ctypes.c_void_p
        self.library.pgxFindFrames.restype = ctypes.c_int64
        self.library.pgxFindFrames.argtypes = [ctypes.c_void_p, ctypes.POINTER(Piece),
                                               ctypes.c_size_t, ctypes.POINTER(ctypes.c_int32)]
        self.library.pgCloseDataSet.argtypes = [ctypes.c_void_p]
        self.library.pgKitSaveDataSetAsEx.argtypes = [ctypes.c_void_p, ctypes.c_char_p,
                                                      ctypes.c_int32]

    def open(self, path):
        return self.library.pgxOpenFile(os.fsencode(path), 64, 0, None)

    def frames(self, path):
        """The frames of a file; None where the library tells none."""
        root = self.open(path)
        try:
            count = self.library.pgxFindFrames(root, None, 0, None)
            if count <= 0:
                return None
            pieces = (Piece * count)()
            self.library.pgxFindFrames(root, pieces, count, None)
        finally:
            self.library.pgCloseDataSet(root)
        content = pathlib.Path(path).read_bytes()
        frames = {}
        for piece in pieces:
            part = content[piece.offset:piece.offset + piece.length]
            frames[piece.frame] = frames.get(piece.frame, b"") + part
        return [frames.get(frame, b"") for frame in range(max(frames) + 1)]

    def save(self, path, target, mode):
        root = self.open(path)
        result = self.library.pgKitSaveDataSetAsEx(root, os.fsencode(target), mode)
        self.library.pgCloseDataSet(root)
        return result


def expected_frames(path):
    """What pydicom gives; None for files without frames that it can tell."""
    if path.stat().st_size > LARGEST:  # it takes minutes for those
        return None
    dataset = pydicom.dcmread(path, force=True)
    syntax = getattr(dataset, "file_meta", {}).get("TransferSyntaxUID")
    if syntax is None or not syntax.is_compressed or "PixelData" not in dataset:
        return None
    if dataset["PixelData"].VR not in ("OB", "OW") or not dataset["PixelData"].is_undefined_length:
        return None
    return list(generate_pixel_data(dataset.PixelData, int(dataset.get("NumberOfFrames", 1) or 1)))


def joined(frames):
    return [b"".join(frame) for frame in frames]


def check_file(library, path):
    try:
        expected = expected_frames(path)
    except Exception:  # what it cannot read is nothing to compare with
        return None
    if expected is None:
        return None
    found = library.frames(path)
    if found == joined(expected):
        return "same"
    if found is None:
        return "library tells none"
    return f"{len(found)} frames of {[len(f) for f in found][:5]}, not " \
           f"{[len(f) for f in joined(expected)][:5]}"


def sample(directory, name, **attributes):
    """A file of pydicom's, of any pixel data."""
    dataset = pydicom.dcmread(DATA / "encapsulated/rtdose_rle_15frames_no_bot.dcm")
    for keyword, value in attributes.items():
        setattr(dataset, keyword, value)
    dataset["PixelData"].is_undefined_length = True
    path = pathlib.Path(directory) / name
    dataset.save_as(path)
    return path


def made_files(directory):
    frames = [bytes([number]) * (100 + 2 * number) for number in range(1, 8)]
    for fragments in (1, 2, 3):
        for has_table in (True, False):
            name = f"{fragments}_fragments_{'with' if has_table else 'without'}_table"
            yield sample(directory, name, NumberOfFrames=7, PixelData=encapsulate(
                frames, fragments_per_frame=fragments, has_bot=has_table))
    yield sample(directory, "single_frame_in_pieces", NumberOfFrames=1, PixelData=encapsulate(
        frames[:1], fragments_per_frame=4, has_bot=False))
    pixels, offsets, lengths = encapsulate_extended(frames)
    yield sample(directory, "extended_table", NumberOfFrames=7, PixelData=pixels,
                 ExtendedOffsetTable=offsets, ExtendedOffsetTableLengths=lengths)


def check_frames(library):
    with tempfile.TemporaryDirectory() as directory:
        paths = list(made_files(directory))
        samples = os.environ.get("PGKIT_SAMPLES")
        for root in [DATA] + ([pathlib.Path(samples)] if samples else []):
            paths += [path for _, path in files_below(root)]
        for path in paths:
            complaint = check_file(library, path)
            if complaint is None:
                continue
            ending = "/".join(path.parts[-2:]) if path.suffix else path.name
            # pydicom guesses where no table and no count tells.
            if ending.endswith("without_table") and not ending.endswith("1_fragments_without_table"):
                complaint = None if complaint == "library tells none" else complaint
            elif complaint == "same":
                complaint = None
            elif ending in EXPLAINED:
                complaint = None
            yield "frames", ending, complaint


def same_content(a, b):
    first, second = pydicom.dcmread(a), pydicom.dcmread(b)
    for dataset in (first, second):
        for element in list(dataset.group_dataset(0x0008)):
            if element.tag.element == 0:
                del dataset[element.tag]
    return None if first == second else "the data sets differ"


def dump(path):
    """The lines of the values: sequences may be written with lengths or with delimiters."""
    done = subprocess.run(["dcmdump", "-q", path], capture_output=True, check=True)
    lines = done.stdout.decode("latin-1").splitlines()
    values = [line.strip() for line in lines if " SQ " not in line]
    return [line for line in values if line.startswith("(") and line[1:5] not in ("0002", "fffe")]


def check_deflate(library):
    plain = DATA / "sequences/sr_nested_explicit_undefined.dcm"
    with tempfile.TemporaryDirectory() as directory:
        directory = pathlib.Path(directory)
        by_pydicom, by_dcmtk = directory / "pydicom", directory / "dcmtk"
        dataset = pydicom.dcmread(plain)
        dataset.file_meta.TransferSyntaxUID = DeflatedExplicitVRLittleEndian
        dataset.save_as(by_pydicom)
        subprocess.run(["dcmconv", "+td", plain, by_dcmtk], check=True)
        for path in (by_pydicom, by_dcmtk):
            bare, again = directory / "bare", directory / "again"
            failed = library.save(path, bare, 0x28) != 0 or library.save(path, again, 0) != 0
            inflated = directory / "inflated"
            head = pydicom.dcmread(plain)
            head.file_meta.TransferSyntaxUID = ExplicitVRLittleEndian
            head.clear()
            head.save_as(inflated)
            inflated.write_bytes(inflated.read_bytes() + bare.read_bytes())
            yield "inflate", path.name, "cannot be saved" if failed else same_content(plain,
                                                                                      inflated)
            yield "deflate", path.name + ", for pydicom", same_content(plain, again)
            differs = dump(path) != dump(again)
            yield "deflate", path.name + ", for dcmdump", "differs" if differs else None


def main():
    warnings.simplefilter("ignore")
    # It would follow the links between records, some of which run in circles.
    pydicom.dicomdir.DicomDir.parse_records = lambda self: None
    library = Library(pathlib.Path(sys.argv[1]).resolve())
    return report([*check_frames(library), *check_deflate(library)])


if __name__ == "__main__":
    sys.exit(main())
