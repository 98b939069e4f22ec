"""Finds and loads the shared library and declares the functions that this package calls.

Functions that take a ``FILE*`` are left alone: the C runtime of Python need not be the library's.
"""

from __future__ import annotations

import ctypes
import os
import pathlib
import sys
from ctypes import POINTER, c_char_p, c_int32, c_int64, c_size_t, c_uint16, c_uint32, c_uint64, c_void_p
from typing import Any, Union

# With the version of the interface first: the plain name is there for developers only.
_FILE_NAMES = ("pgkit.dll",) if os.name == "nt" else ("libpgkit.so.2", "libpgkit.so")

StrPath = Union[str, "os.PathLike[str]"]


class ListCell(ctypes.Structure):
    """PGX_ListElement."""


ListCell._fields_ = [("data", c_void_p), ("next", POINTER(ListCell))]


class ObjectList(ctypes.Structure):
    """PGX_List."""

    _fields_ = [("count", c_int32), ("head", POINTER(ListCell)), ("tail", POINTER(ListCell))]


class BrowseReason(ctypes.Structure):
    """PGX_DicomDirCallbackReason."""

    _fields_ = [("reason", c_int32), ("path", c_char_p)]


class ScanReason(ctypes.Structure):
    """PgDicomdirScanReason."""

    _fields_ = [("file_name", c_char_p), ("subdirectory", c_char_p),
                ("acceptance_code", c_uint32), ("user_data", c_void_p)]


class DicomdirOptions(ctypes.Structure):
    """PgDicomdirOptions."""

    _fields_ = [("icon_size", c_uint32), ("series_icons", c_uint32), ("store_file_size", c_uint32),
                ("fill_missing_keys", c_uint32), ("file_set_id", ctypes.c_char * 20),
                ("flags", c_uint32)]


class FramePiece(ctypes.Structure):
    """PgxFramePiece."""

    _fields_ = [("frame", c_uint32), ("length", c_uint32), ("offset", c_uint64),
                ("bytes", c_void_p)]


class JsonWriteOptions(ctypes.Structure):
    """PgxJsonWriteOptions."""

    _fields_ = [("size", c_size_t), ("bulk_limit", c_uint64), ("source_uri", c_char_p),
                ("uri", c_void_p), ("uri_context", c_void_p), ("character_set", c_void_p)]


class JsonReadOptions(ctypes.Structure):
    """PgxJsonReadOptions."""

    _fields_ = [("size", c_size_t), ("depth_limit", c_uint32), ("size_limit", c_uint64),
                ("bulk", c_void_p), ("bulk_context", c_void_p)]


class JsonPlace(ctypes.Structure):
    """PgxJsonPlace."""

    _fields_ = [("size", c_size_t), ("error", c_int32), ("offset", c_uint64),
                ("path", ctypes.c_char * 256)]


class Report(ctypes.Structure):
    """PgxOpenReport."""

    _fields_ = [("size", c_uint32), ("options", c_uint32), ("result", c_int32),
                ("notes", c_uint32), ("certainty", c_int32), ("syntax_flags", c_uint32),
                ("elements", c_uint64), ("offset", c_uint64), ("group", c_uint16),
                ("element", c_uint16), ("transfer_syntax", ctypes.c_char * 68)]


BrowseCallback = ctypes.CFUNCTYPE(c_int32, POINTER(BrowseReason), c_char_p, c_void_p)
ScanCallback = ctypes.CFUNCTYPE(c_int32, POINTER(ScanReason))

_PROTOTYPES: dict[str, Any] = {
    # Data sets.
    "pgxOpenFile": (c_void_p, c_char_p, c_uint32, c_uint32, POINTER(Report)),
    "pgxOpenMemory": (c_void_p, c_char_p, c_size_t, c_uint32, POINTER(Report)),
    "pgxMakeLongValuesUn": (c_int32, c_void_p),
    "pgxSaveToMemory": (c_int64, c_void_p, c_int32, c_void_p, c_size_t),
    "pgxFindFrames": (c_int64, c_void_p, POINTER(FramePiece), c_size_t, POINTER(c_int32)),
    "pgxDecodeRle": (c_int32, c_char_p, c_size_t, c_uint32, c_uint32, c_void_p, c_size_t),
    "pgKitCloseDataSet": (None, c_void_p),
    "pgKitAllocateDataSetNode": (c_void_p,),
    "pgKitFreeNodeHierarchy": (None, c_void_p),
    "pgKitFindNodeWithGroupElement": (c_void_p, c_void_p, c_uint16, c_uint16),
    "pgKitInsertNodeWithGroupElement":
        (c_void_p, c_void_p, c_uint16, c_uint16, c_char_p, c_uint32),
    "pgKitRemoveNode": (None, c_void_p, c_void_p),
    "pgKitSeqGetHead": (c_void_p, c_void_p),
    "pgKitSeqAddTail": (None, c_void_p, c_void_p),
    "pgKitSeqAddHead": (None, c_void_p, c_void_p),
    "pgKitSetNext": (None, c_void_p, c_void_p),
    "pgKitDumpToFile": (c_int32, c_void_p, c_char_p),
    "pgKitAddPart10Elements": (c_int32, c_void_p, c_char_p),
    "pgKitSaveDataSetAsEx": (c_uint32, c_void_p, c_char_p, c_int32),
    # Nodes and values.
    "pgKitGetNodeType": (c_uint32, c_void_p),
    "pgKitGetValueRep": (c_uint32, c_void_p),
    "pgKitSetValueRep": (None, c_void_p, c_uint32),
    "pgKitGetGroup": (c_uint16, c_void_p),
    "pgKitGetElement": (c_uint16, c_void_p),
    "pgKitGetLength": (c_uint32, c_void_p),
    "pgKitGetNext": (c_void_p, c_void_p),
    "pgKitGetFirst": (c_void_p, c_void_p),
    "pgKitGetValue": (c_int32, c_void_p, c_void_p),
    "pgKitSetValue": (c_int32, c_void_p, c_char_p, c_uint32),
    "pgKitGetFileData": (c_int32, c_void_p, c_void_p, c_uint32, c_uint32),
    "pgKitIsEncodedPixelData": (c_int32, c_void_p),
    "pgKitInsertEncodedPixelDataNode": (c_void_p, c_void_p, c_uint32),
    "pgKitSetEncodedPixelData": (c_int32, c_void_p, c_uint32, c_uint32, c_char_p),
    "pgKitGetEncodedPixelInfo": (c_int32, c_void_p, c_uint32, POINTER(c_uint32),
                                 POINTER(c_uint32)),
    # Many values at once, and texts.
    "pgxReadLevel": (c_size_t, c_void_p, c_void_p, c_uint32, c_void_p, c_size_t),
    "pgxReadValues": (c_size_t, c_void_p, c_void_p, c_char_p, c_uint32, c_uint32, c_void_p,
                      c_size_t),
    "pgxReadFileValues": (c_size_t, c_char_p, c_uint32, c_char_p, c_uint32, c_uint32, c_void_p,
                          c_size_t, POINTER(Report)),
    "pgxFindCharacterSet": (c_void_p, c_void_p, c_void_p),
    "pgxGetUtf8Value": (c_int64, c_void_p, c_void_p, c_char_p, c_size_t),
    "pgxTextFromUtf8": (c_int64, c_char_p, c_uint32, c_char_p, c_size_t, c_char_p, c_size_t),
    "pgxFieldToUtf8": (c_int64, c_char_p, c_uint32, c_char_p, c_char_p, c_size_t),
    # JSON.
    "pgxGetJson": (c_int64, c_void_p, POINTER(JsonWriteOptions), c_char_p, c_size_t),
    "pgxParseJson": (c_void_p, c_char_p, c_size_t, POINTER(JsonReadOptions), POINTER(JsonPlace)),
    "pgxJsonErrorText": (c_size_t, c_int32, c_char_p, c_size_t),
    # Dictionary and UIDs.
    "pgxUseEdition": (c_int32, c_int32),
    "pgSetPrivateDictionaryFile": (c_uint32, c_char_p),
    "pgxFindTag": (c_int32, c_char_p, POINTER(c_uint16), POINTER(c_uint16)),
    "pgxTagKeyword": (c_size_t, c_uint16, c_uint16, c_char_p, c_size_t),
    "pgxTagMultiplicity": (c_size_t, c_uint16, c_uint16, c_char_p, c_size_t),
    "pgxUidName": (c_size_t, c_char_p, c_char_p, c_size_t),
    "pgxUidKeyword": (c_size_t, c_char_p, c_char_p, c_size_t),
    "pgFindElementIdInfo": (c_uint32, c_int32, POINTER(c_uint16), POINTER(c_uint16)),
    "pgGetTagElementId": (c_uint32, c_char_p),
    "pgFindValueRepresentation": (c_uint32, c_uint16, c_uint16),
    "pgFindValueRepresentationVR": (c_uint32, c_char_p),
    "pgGetVRPrintableName": (c_uint32, c_uint32, c_char_p),
    "pgxGetTagPrintableName": (c_size_t, c_uint16, c_uint16, c_char_p, c_size_t),
    "pgxGetTagName": (c_size_t, c_void_p, c_char_p, c_size_t),
    "pgxGetUIDName": (c_size_t, c_char_p, c_char_p, c_size_t),
    "pgCheckUID": (c_int32, c_char_p),
    "pgGetVersionString": (c_int32, c_char_p, c_int32),
    "pgxSetVerbosity": (c_int32, c_int32),
    "pgxSetPathEncoding": (c_int32, c_int32),
    # Media.
    "pgKitOpenDicomDir": (c_void_p, c_char_p, c_uint32),
    "pgKitCloseDicomDir": (None, c_void_p),
    "pgKitIsDicomDir": (c_int32, c_void_p),
    "pgKitDirBrowse": (c_void_p, c_void_p, BrowseCallback, c_void_p),
    "pgCreateDicomdirEx": (c_uint32, c_char_p, c_char_p, POINTER(DicomdirOptions), ScanCallback,
                           c_void_p),
    "pgxTakeRootRecords": (c_uint32, c_void_p, c_void_p, c_uint32),
    "pgxIsProfile": (c_int32, c_char_p),
    "pgxAcceptanceText": (c_size_t, c_uint32, c_char_p, c_size_t),
}

# Getters of directory records: a record in, a text, a number or a list out.
_RECORD_TEXTS = (
    "PatientID PatientsName PatientBirthDate PatientSex "
    "StudyUID StudyID StudyDate StudyTime StudyAccessionNumber StudyDesc StudyManufacturer "
    "StudyReferringPhysiciansName StudyModality "
    "SeriesUID SeriesDesc SeriesNumber SeriesModality SeriesInstitutionName "
    "SeriesInstitutionAddress SeriesPerformingPhysiciansName "
    "LeafRecordType LeafInstanceUID LeafSOPClassUID LeafFullPath LeafSpecificCharacterSet "
    "ImagePhotoInterp ImageType ReportVerificationFlag ReportCompletionFlag ReportContentDate "
    "ReportContentTime KeyObjectContentDate KeyObjectContentTime PresentationCreationDate "
    "PresentationCreationTime PresentationCreatorsName PresentationLabel PresentationDescription "
    "WaveformContentDate WaveformContentTime RawDataContentDate RawDataContentTime").split()
_RECORD_NUMBERS = ("LeafType LeafInstanceNumber ImageRows ImageColumns ImageNumberOfFrames").split()
_RECORD_HANDLES = "StudyList SeriesList LeafList PatientNode StudyNode SeriesNode LeafNode".split()


def _candidates() -> list[str]:
    named = os.environ.get("PGKIT_LIBRARY")
    if named:
        return [named]
    package = pathlib.Path(__file__).resolve().parent
    folder = "bin" if os.name == "nt" else "lib"
    # PREFIX/share/pgkit/python/pgkit is where an installation puts the package.
    folders = [package] + ([package.parents[3] / folder] if len(package.parents) > 3 else [])
    places = [place / name for place in folders for name in _FILE_NAMES]
    return [str(place) for place in places if place.is_file()] + [_FILE_NAMES[0]]


def _load() -> tuple[ctypes.CDLL, str]:
    path = _candidates()[0]
    try:
        return ctypes.CDLL(path), path
    except OSError as error:
        raise ImportError(f"pgkit: cannot load {path} ({error}); the environment variable "
                          "PGKIT_LIBRARY may name the library's file") from error


def _declare(library: ctypes.CDLL) -> None:
    prototypes = dict(_PROTOTYPES)
    kinds: tuple[tuple[list[str], Any], ...] = (
        (_RECORD_TEXTS, c_char_p), (_RECORD_NUMBERS, c_int32), (_RECORD_HANDLES, c_void_p))
    for names, kind in kinds:
        prototypes.update({f"pgKitDirGet{name}": (kind, c_void_p) for name in names})
    for name, (result, *arguments) in prototypes.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments


lib, _path = _load()
_declare(lib)
lib.pgxSetVerbosity(0)
_CURRENT_EDITION = 1
lib.pgxUseEdition(_CURRENT_EDITION)
_PATHS_UTF8 = 1
lib.pgxSetPathEncoding(_PATHS_UTF8)


def library_path() -> str:
    """The file that the library was loaded from, as it was given to the system."""
    return _path


def library_version() -> str:
    """The library's version text."""
    buffer = ctypes.create_string_buffer(18)
    lib.pgGetVersionString(buffer, 17)
    return buffer.value.decode("ascii")


_PATH_ENCODING = ("utf-8", "strict") if os.name == "nt" else (
    sys.getfilesystemencoding(), "surrogateescape")


def encoded_path(path: StrPath) -> bytes:
    """A path as the library takes it."""
    encoded = os.fspath(path).encode(*_PATH_ENCODING)
    if b"\0" in encoded:
        raise ValueError("texts for the library must not contain NUL")
    return encoded


def backslashed_path(path: StrPath) -> bytes:
    """A path as the library takes it where it looks for its folder: with a backslash at least."""
    # Before it is encoded: the second byte of a character may be that of a backslash.
    text = os.fspath(path).replace("/", "\\")
    if not text:
        raise ValueError("the path is empty")
    return encoded_path(text if "\\" in text else ".\\" + text)


def decoded_path(path: bytes) -> str:
    """A path, or a name of a file, that the library gave."""
    return path.decode("utf-8", "replace") if os.name == "nt" else os.fsdecode(path)


def c_text(text: str, encoding: str = "ascii", errors: str = "strict") -> bytes:
    """A text as zero-terminated bytes; ctypes would cut it silently at a zero inside."""
    encoded = text.encode(encoding, errors)
    if b"\0" in encoded:
        raise ValueError("texts for the library must not contain NUL")
    return encoded


def _use_private_elements() -> None:
    """Private elements of manufacturers: from the package, from beside the library, or where an
    installation has them (PREFIX/share/pgkit/python/pgkit is where that puts the package)."""
    host = pathlib.Path(sys.executable or "python").resolve().parent
    if (host / "privdict.dic").is_file():  # a site's own, which the library has read
        return
    package = pathlib.Path(__file__).resolve().parent
    folders = [package, *package.parents[1:2]]
    if os.path.dirname(_path):  # else the system has looked for the library
        folders.insert(1, pathlib.Path(_path).resolve().parent)
    for file in (folder / "private.dic" for folder in folders):
        if file.is_file():
            lib.pgSetPrivateDictionaryFile(encoded_path(file))
            return


_use_private_elements()
