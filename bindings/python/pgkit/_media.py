"""Media: what a DICOMDIR refers to, and making one."""

from __future__ import annotations

import ctypes
import dataclasses
import enum
import re
import threading
from typing import Any, Callable, Dict, Iterator, List, Optional

from ._dictionary import vr_code
from ._errors import CreateError, PgkitError, UnknownProfileError
from ._library import (BrowseCallback, DicomdirOptions, ObjectList, ScanCallback, StrPath,
                       backslashed_path, c_text, decoded_path, lib)


_LONGEST_FILE_ID = 4096
_DRIVE = re.compile("[A-Za-z]:")


class LeafType(enum.IntEnum):
    """What a file is."""

    OTHER = 0
    IMAGE = 1
    REPORT = 2
    KEY_OBJECT = 3
    PRESENTATION = 4
    WAVEFORM = 5
    ENCAPSULATED_DOCUMENT = 6
    RAW_DATA = 7


@dataclasses.dataclass
class Leaf:
    """A file. ``keys`` has what the DICOMDIR says about files of its type, rows for instance.

    ``path`` is in upper case and with backslashes, whatever the file is called: ``pgkit.open``
    finds it, other functions need not. ``file_id`` is what the DICOMDIR says, without a backslash
    at its beginning; ``is_outside`` tells that it leads out of the directory of the DICOMDIR, to
    whatever lies there: such a path is not to be opened.
    """

    type: LeafType
    record_type: str
    path: str
    instance_uid: str
    sop_class_uid: str
    instance_number: int
    keys: Dict[str, Any] = dataclasses.field(default_factory=dict)
    file_id: str = ""
    is_outside: bool = False


@dataclasses.dataclass
class Series:
    """A series and its files."""

    uid: str
    number: str
    modality: str
    description: str
    institution: str
    leaves: List[Leaf] = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Study:
    """A study and its series."""

    uid: str
    id: str
    date: str
    time: str
    accession_number: str
    description: str
    modality: str
    series: List[Series] = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Patient:
    """A patient and the studies."""

    id: str
    name: str
    birth_date: str
    sex: str
    studies: List[Study] = dataclasses.field(default_factory=list)


class AcceptanceCode(enum.IntEnum):
    """What became of a file of a new medium."""

    ACCEPTED = 0
    INVALID_FILE_NAME = 1
    NOT_DICOM_PART_10 = 2
    NOT_A_DATA_SET = 3
    IS_A_DICOMDIR = 4
    PROFILE_REFUSES = 5
    INSTANCE_KNOWN = 6
    NO_SOP_INSTANCE_UID = 7
    NO_SERIES_INSTANCE_UID = 8
    NO_STUDY_INSTANCE_UID = 9

    @property
    def text(self) -> str:
        """The meaning, in the words of the acceptance list file."""
        buffer = ctypes.create_string_buffer(128)
        lib.pgxAcceptanceText(self, buffer, len(buffer))
        return buffer.value.decode("ascii")


@dataclasses.dataclass(frozen=True)
class ScannedFile:
    """A file that was looked at; the path is relative to the medium, with backslashes."""

    path: str
    code: AcceptanceCode


_LEAF_KEYS = {  # the getters of each type, by the keys they are for
    LeafType.IMAGE: {"rows": "ImageRows", "columns": "ImageColumns",
                     "number_of_frames": "ImageNumberOfFrames",
                     "photometric_interpretation": "ImagePhotoInterp", "image_type": "ImageType"},
    LeafType.REPORT: {"completion_flag": "ReportCompletionFlag",
                      "verification_flag": "ReportVerificationFlag",
                      "content_date": "ReportContentDate", "content_time": "ReportContentTime"},
    LeafType.KEY_OBJECT: {"content_date": "KeyObjectContentDate",
                          "content_time": "KeyObjectContentTime"},
    LeafType.PRESENTATION: {"creation_date": "PresentationCreationDate",
                            "creation_time": "PresentationCreationTime",
                            "creator": "PresentationCreatorsName", "label": "PresentationLabel",
                            "description": "PresentationDescription"},
    LeafType.WAVEFORM: {"content_date": "WaveformContentDate",
                        "content_time": "WaveformContentTime"},
    LeafType.RAW_DATA: {"content_date": "RawDataContentDate",
                        "content_time": "RawDataContentTime"},
}


def browse(path: StrPath, *, progress: Optional[Callable[[str], Any]] = None,
           codec: Optional[str] = None) -> List[Patient]:
    """The hierarchy of a DICOMDIR file, copied: nothing stays open.

    progress is called with the path of every file that is found, as leaves have it. Texts
    are decoded by the character set of their record; with a codec, by that. What belongs to no patient
    (palettes, hanging protocols) is passed over. Raises OSError or
    PgkitError for a file that is no DICOMDIR, and what progress raised, once the browse has ended.
    """
    with open(path, "rb"):
        pass
    raised: List[BaseException] = []

    def on_leaf(reason: Any, _message: bytes, _data: Any) -> int:
        if progress is not None and not raised:
            try:
                progress(_leaf_path(reason.contents.path))
            except BaseException as error:  # noqa: BLE001  passed on below
                raised.append(error)
        return 0

    directory = lib.pgKitOpenDicomDir(backslashed_path(path), 0x20000)
    if directory is None:
        raise PgkitError(f"{path}: not a DICOMDIR")
    try:
        # The library keeps the callback until the next browse of this directory object.
        callback = BrowseCallback(on_leaf)
        _pass_over_common_records(directory)
        patients = lib.pgKitDirBrowse(directory, callback, None)
        if raised:
            raise raised[0]
        return [_patient(patient, codec) for patient in _objects(patients)]
    finally:
        lib.pgKitCloseDicomDir(directory)


def _pass_over_common_records(directory: int) -> None:
    """Records at the root that are no patients would end the browse."""
    count = lib.pgxTakeRootRecords(directory, None, 0)
    lib.pgxTakeRootRecords(directory, (ctypes.c_void_p * count)(), count)


def _objects(handle: Optional[int]) -> Iterator[int]:
    # By the cells, whose layout is part of the library's interface: asking for the object at an
    # index walks from the head every time.
    cell = ObjectList.from_address(handle).head if handle else None
    while cell:
        yield cell.contents.data
        cell = cell.contents.next


# All getters of texts answer in one buffer of the library's, and other threads run during the call.
_text_buffer = threading.Lock()


def _bytes(getter: str, handle: int) -> bytes:
    function = getattr(lib, "pgKitDirGet" + getter)
    with _text_buffer:
        data: bytes = function(handle)
    return data


class _Texts:
    """Decodes the texts of a record: with a codec, or by the record's own character set."""

    def __init__(self, handle: int, record: Optional[int], codec: Optional[str]) -> None:
        self._handle = handle
        self._codec = codec
        self._character_set = _character_set(record) if codec is None else b""

    def __call__(self, getter: str, vr: str = "LO") -> str:
        data = _bytes(getter, self._handle)
        if self._codec is not None:
            return data.decode(self._codec, "replace").rstrip(" ")
        # No character takes more than three bytes for one of its own.
        buffer = ctypes.create_string_buffer(3 * len(data) + 1)
        size = lib.pgxFieldToUtf8(self._character_set, vr_code(vr), data, buffer, len(buffer))
        if size < 0:
            raise MemoryError
        return buffer.raw[:size].decode("utf-8", "replace").rstrip(" ")


def _character_set(record: Optional[int]) -> bytes:
    element = lib.pgxFindCharacterSet(record, None) if record else None
    length = lib.pgKitGetLength(element) if element else 0
    if not 0 < length <= _LONGEST_FILE_ID:
        return b""
    buffer = ctypes.create_string_buffer(length + 1)
    lib.pgKitGetValue(element, buffer)
    return buffer.value


def _leaf_path(data: bytes) -> str:
    return decoded_path(data).rstrip(" ")


def _patient(handle: int, codec: Optional[str]) -> Patient:
    text = _Texts(handle, lib.pgKitDirGetPatientNode(handle), codec)
    return Patient(
        text("PatientID"), text("PatientsName", "PN"), text("PatientBirthDate"), text("PatientSex"),
        [_study(study, codec) for study in _objects(lib.pgKitDirGetStudyList(handle))])


def _study(handle: int, codec: Optional[str]) -> Study:
    text = _Texts(handle, lib.pgKitDirGetStudyNode(handle), codec)
    return Study(
        text("StudyUID"), text("StudyID"), text("StudyDate"), text("StudyTime"),
        text("StudyAccessionNumber"), text("StudyDesc"), text("StudyModality"),
        [_series(series, codec) for series in _objects(lib.pgKitDirGetSeriesList(handle))])


def _series(handle: int, codec: Optional[str]) -> Series:
    text = _Texts(handle, lib.pgKitDirGetSeriesNode(handle), codec)
    return Series(
        text("SeriesUID"), text("SeriesNumber"), text("SeriesModality"), text("SeriesDesc"),
        text("SeriesInstitutionName"),
        [_leaf(leaf, codec) for leaf in _objects(lib.pgKitDirGetLeafList(handle))])


def _leaf(handle: int, codec: Optional[str]) -> Leaf:
    text = _Texts(handle, lib.pgKitDirGetLeafNode(handle), codec)
    kind = LeafType(lib.pgKitDirGetLeafType(handle))
    keys: Dict[str, Any] = {}
    for key, getter in _LEAF_KEYS.get(kind, {}).items():
        function = getattr(lib, "pgKitDirGet" + getter)
        is_number = function.restype is ctypes.c_int32
        keys[key] = function(handle) if is_number else text(getter, "PN" if key == "creator"
                                                            else "LO")
    file_id = _file_id(handle)
    return Leaf(kind, text("LeafRecordType"), _leaf_path(_bytes("LeafFullPath", handle)),
                text("LeafInstanceUID"), text("LeafSOPClassUID"),
                lib.pgKitDirGetLeafInstanceNumber(handle), keys, file_id, _leads_outside(file_id))


def _file_id(handle: int) -> str:
    record = lib.pgKitDirGetLeafNode(handle)
    element = record and lib.pgKitFindNodeWithGroupElement(record, 0x0004, 0x1500)
    if not element:
        return ""
    length = lib.pgKitGetLength(element)
    if length > _LONGEST_FILE_ID:  # it is none, and may be a lie
        return ""
    buffer = ctypes.create_string_buffer(length + 1)
    lib.pgKitGetValue(element, buffer)
    text = decoded_path(buffer.value).rstrip(" ")
    return text[1:] if text.startswith("\\") else text


def _leads_outside(file_id: str) -> bool:
    names = file_id.strip(" ").replace("/", "\\").split("\\")
    if (len(names) > 1 and not names[0]) or _DRIVE.match(names[0]):
        return True
    depth = 0
    for name in (name.strip(" ") for name in names):
        if name == "..":
            depth -= 1
        elif name not in ("", "."):
            depth += 1
        if depth < 0:
            return True
    return False


def create(directory: StrPath, profile: Optional[str] = None, *, icon_size: int = 0,
           series_icons: bool = False, store_file_size: bool = False,
           fill_missing_keys: bool = False, file_set_id: str = "", skip_checks: bool = False,
           recurse: bool = True, acceptance_list: bool = True, allow_empty: bool = False,
           progress: Optional[Callable[[ScannedFile], Any]] = None) -> List[ScannedFile]:
    """Makes the DICOMDIR of a directory, and tells what became of every file.

    progress is called for every file, as soon as it is judged. When it returns something true the
    scan ends and the DICOMDIR has what was found so far; so it does when progress raises, and what
    it raised is raised here in the end. The new DICOMDIR takes the place of the one that is there
    as a whole. Raises UnknownProfileError before anything is touched, and CreateError when the
    DICOMDIR cannot be written or nothing is accepted, unless allow_empty says that there may be no
    records; the DICOMDIR that is there stays then.
    """
    if profile and not lib.pgxIsProfile(profile.encode("utf-8", "replace")):
        raise UnknownProfileError(f"unknown profile: {profile}")
    options = DicomdirOptions(icon_size, series_icons, store_file_size, fill_missing_keys,
                              _file_set_id(file_set_id),
                              (1 if skip_checks else 0) | (0 if recurse else 0x10)
                              | (0 if acceptance_list else 0x20)
                              | (0 if allow_empty else 0x200))
    scanned: List[ScannedFile] = []
    raised: List[BaseException] = []

    def on_file(reason: Any) -> int:
        try:
            scanned.append(_scanned_file(reason.contents))
            return 1 if progress is not None and progress(scanned[-1]) else 0
        except BaseException as error:  # noqa: BLE001  passed on below
            raised.append(error)
            return 1

    result = lib.pgCreateDicomdirEx(backslashed_path(directory),
                                    c_text(profile) if profile else None, options,
                                    ScanCallback(on_file), None)
    if raised:
        raise raised[0]
    if result != 0:
        raise CreateError(str(directory), result)
    return scanned


def _file_set_id(text: str) -> bytes:
    encoded = c_text(text)
    if len(encoded) > 16:
        raise ValueError("a File-set ID has at most 16 characters")
    return encoded


def _scanned_file(reason: Any) -> ScannedFile:
    parts = [decoded_path(part) for part in (reason.subdirectory, reason.file_name) if part]
    return ScannedFile("\\".join(parts), AcceptanceCode(reason.acceptance_code))
