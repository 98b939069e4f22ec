"""Opening data sets: of files, of bytes, of what can be read."""

from __future__ import annotations

import ctypes
import os
import warnings
from typing import Any, BinaryIO, Dict, NoReturn, Union

from ._data_set import DataSet, data_set_of
from ._errors import PgkitError, TruncatedWarning
from ._json import level_of_json
from ._library import Report, StrPath, encoded_path, lib
from ._reports import OpenResult
from ._tree import IN_MEMORY, root_level

_LOAD_BELOW = 64
PAST_PIXEL_DATA = 0x800
_PREAMBLE = 128

_builtin_open = open
_open_file = lib.pgxOpenFile
_report_size = ctypes.sizeof(Report)

Source = Union[StrPath, bytes, bytearray, memoryview, BinaryIO]


def new_report() -> Report:
    """A report that the library can fill in."""
    return Report(_report_size)


def open(source: Source, *, load_below: int = _LOAD_BELOW, flags: int = 0) -> DataSet:  # noqa: A001
    """Opens a DICOM file: a path, the bytes of one, or an object that bytes are read from.

    Raises OSError when it cannot be read, PgkitError with the reason when it is no data set. Warns
    with TruncatedWarning when it could not be read to its end; ``report`` tells more. Values of a
    file that are shorter than load_below bytes are loaded at once, the others when they are asked
    for. flags are the library's PgOpenFlags.
    """
    report = Report(_report_size)
    if isinstance(source, (str, os.PathLike)):
        root = _open_file(encoded_path(source), load_below, flags | PAST_PIXEL_DATA, report)
        result = report.result
        # All values of a complete file lie in front of its end.
        longest_value = None if result else report.offset
    else:
        data = _bytes_of(source)
        root = lib.pgxOpenMemory(data, len(data), flags | PAST_PIXEL_DATA, report)
        result = report.result
        longest_value = IN_MEMORY
    if root is None:
        _raise_for(source, report)
    data_set = data_set_of(root_level(root, longest_value), report)
    if result:
        warnings.warn(f"{_name_of(source)}: {data_set.report}", TruncatedWarning, stacklevel=2)
    return data_set


def _bytes_of(source: Any) -> bytes:
    data = source.read() if hasattr(source, "read") else source
    if not isinstance(data, (bytes, bytearray, memoryview)):
        raise TypeError(f"a data set is opened from a path or bytes, not {type(data).__name__}")
    return bytes(data)


def _name_of(source: Any) -> str:
    if isinstance(source, (str, os.PathLike)):
        return str(os.fspath(source))
    return str(getattr(source, "name", "the bytes"))


def _raise_for(source: Any, report: Report) -> NoReturn:
    result = OpenResult(report.result)
    if result == OpenResult.NO_MEMORY:
        raise MemoryError
    if isinstance(source, (str, os.PathLike)):
        with _builtin_open(source, "rb"):  # says what is wrong with the file itself
            pass
    raise PgkitError(f"{_name_of(source)}: {result.reason}")


def from_json(source: Union[str, bytes, Dict[str, Any]]) -> DataSet:
    """A data set in memory of DICOM JSON: a text, or what ``json.loads`` makes of one.

    Raises JsonError, which says what is wrong and where. Values that are not in it, but behind a
    BulkDataURI, are an error.
    """
    return data_set_of(level_of_json(source), None)


def is_dicom(path: StrPath) -> bool:
    """Whether a file has "DICM" behind its preamble. Raises OSError when it cannot be read."""
    with _builtin_open(path, "rb") as file:
        return file.read(_PREAMBLE + 4)[_PREAMBLE:] == b"DICM"
