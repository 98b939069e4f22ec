"""Saving data sets."""

from __future__ import annotations

import ctypes
from typing import TYPE_CHECKING, Any, Optional

from ._dictionary import UNKNOWN_VR, vr_code, vr_name
from ._errors import PgkitError, SaveError
from ._library import StrPath, c_text, encoded_path, lib
from ._output import write_whole
from ._tree import Level, chain

if TYPE_CHECKING:
    from ._data_set import DataSet

_UNDEFINED_LENGTH = 0xFFFFFFFF
_TRANSFER_SYNTAX = (0x0002, 0x0010)

# In explicit VR the length of all others has 16 bits, and 65,535 is none.
_VRS_WITH_LONG_HEADER = {"OB", "OD", "OF", "OL", "OV", "OW", "OWOB", "SQ", "SV", "UC", "UN", "UR",
                         "UT", "UV", UNKNOWN_VR}
_VRS_OF_SHORT_NUMBERS = {"US", "SS", "USSS", "UL", "SL", "AT", "FL", "FD"}
_FIRST_TOO_LONG = 65535

# Bits of a write mode.
_UNDEFINED_LENGTHS = 0x01
_PART_10 = 0x04
_ENCODINGS = {  # the mode and the transfer syntax of what ``save`` calls an encoding
    "explicit": (0x28, "1.2.840.10008.1.2.1"),
    "implicit": (0x30, "1.2.840.10008.1.2"),
    "big endian": (0x48, "1.2.840.10008.1.2.2"),
}


def save_to(data_set: DataSet, target: Any, encoding: Optional[str], part10: bool,
            undefined_lengths: bool) -> None:
    """Saves under a path, or into what has a ``write``."""
    if hasattr(target, "write"):
        target.write(saved_bytes(data_set, encoding, part10, undefined_lengths))
        return
    mode = _prepare(data_set, encoding, part10, undefined_lengths)
    _save_file(data_set, target, mode)


def saved_bytes(data_set: DataSet, encoding: Optional[str], part10: bool,
                undefined_lengths: bool) -> bytes:
    """The bytes of the file."""
    mode = _prepare(data_set, encoding, part10, undefined_lengths)
    node = data_set._level.live
    size = lib.pgxSaveToMemory(node, mode, None, 0)
    buffer = ctypes.create_string_buffer(max(size, 1))
    if size > 0:
        size = lib.pgxSaveToMemory(node, mode, buffer, size)
    data_set._level.tree.forget()  # saving completes group 0002 and lengths
    if size < 0:
        raise SaveError("memory", -size)
    return buffer.raw[:size]


def _prepare(data_set: DataSet, encoding: Optional[str], part10: bool,
             undefined_lengths: bool) -> int:
    """Makes the data set ready to be saved; the mode."""
    level = data_set._level
    node = level.live
    if encoding is None and data_set._is_built:
        encoding = _encoding_of_built(data_set)
    mode = 0
    if encoding is not None:
        if encoding not in _ENCODINGS:
            raise ValueError(f"encoding is one of {sorted(_ENCODINGS)}, not {encoding!r}")
        mode, syntax = _ENCODINGS[encoding]
        mode |= _UNDEFINED_LENGTHS if undefined_lengths else 0
        if part10:
            mode |= _PART_10
            if _TRANSFER_SYNTAX not in data_set:
                lib.pgKitAddPart10Elements(node, c_text(syntax))
    _make_long_values_un(level)
    level.tree.forget()
    return mode


def _encoding_of_built(data_set: DataSet) -> str:
    stated = data_set.get(_TRANSFER_SYNTAX)
    found = (name for name, (_, syntax) in _ENCODINGS.items() if syntax == stated)
    return next(found, "explicit")


def _save_file(data_set: DataSet, path: StrPath, mode: int) -> None:
    node = data_set._level.live

    def write(beside: str) -> int:
        code: int = lib.pgKitSaveDataSetAsEx(node, encoded_path(beside), mode)
        return code

    result = write_whole(path, write)
    data_set._level.tree.forget()  # saving completes group 0002 and lengths
    if result != 0:
        raise SaveError(str(path), result)


def _make_long_values_un(level: Level) -> None:
    parents = [level.live]
    while parents:
        for handle in chain(lib.pgKitGetFirst(parents.pop())):
            if lib.pgKitGetFirst(handle) is not None:
                parents.append(handle)
            elif _is_too_long(handle):
                _make_un(handle, level.tree.longest_value)


def _is_too_long(handle: int) -> bool:
    """Whether a value does not fit the 16-bit length that its VR has in explicit VR."""
    length = lib.pgKitGetLength(handle)
    if length < _FIRST_TOO_LONG or length == _UNDEFINED_LENGTH or not lib.pgKitGetNodeType(handle):
        return False
    is_long_vr = vr_name(lib.pgKitGetValueRep(handle)) in _VRS_WITH_LONG_HEADER
    return not is_long_vr and not lib.pgKitIsEncodedPixelData(handle)


def _make_un(handle: int, longest_value: int) -> None:
    """Makes a value one of VR UN, whose bytes are little endian in every encoding."""
    is_number = vr_name(lib.pgKitGetValueRep(handle)) in _VRS_OF_SHORT_NUMBERS
    length = lib.pgKitGetLength(handle)
    # What is longer cannot be there in full: saving will say so.
    if is_number and length <= longest_value:
        buffer = ctypes.create_string_buffer(length + 1)
        if not lib.pgKitGetValue(handle, buffer):
            raise PgkitError("a long value cannot be read")
        lib.pgKitSetValueRep(handle, vr_code("UN"))
        if not lib.pgKitSetValue(handle, buffer.raw[:length], length):
            raise MemoryError
    lib.pgKitSetValueRep(handle, vr_code("UN"))
