"""Saving data sets."""

from __future__ import annotations

import ctypes
from typing import Any, Optional

from ._errors import PgkitError, SaveError
from ._library import StrPath, c_text, encoded_path, lib
from ._output import write_whole
from ._stored import value_at
from ._tree import Level

_TRANSFER_SYNTAX = 0x00020010

# Bits of a write mode.
_UNDEFINED_LENGTHS = 0x01
_PART_10 = 0x04
_ENCODINGS = {  # the mode and the transfer syntax of what ``save`` calls an encoding
    "explicit": (0x28, "1.2.840.10008.1.2.1"),
    "implicit": (0x30, "1.2.840.10008.1.2"),
    "big endian": (0x48, "1.2.840.10008.1.2.2"),
}


def save_to(level: Level, target: Any, encoding: Optional[str], part10: bool,
            undefined_lengths: bool) -> None:
    """Saves under a path, or into what has a ``write``."""
    if hasattr(target, "write"):
        target.write(saved_bytes(level, encoding, part10, undefined_lengths))
        return
    mode = _prepare(level, encoding, part10, undefined_lengths)
    _save_file(level, target, mode)


def saved_bytes(level: Level, encoding: Optional[str], part10: bool,
                undefined_lengths: bool) -> bytes:
    """The bytes of the file."""
    mode = _prepare(level, encoding, part10, undefined_lengths)
    node = level.live
    size = lib.pgxSaveToMemory(node, mode, None, 0)
    buffer = ctypes.create_string_buffer(max(size, 1))
    if size > 0:
        size = lib.pgxSaveToMemory(node, mode, buffer, size)
    _forget(level)  # saving completes group 0002 and lengths
    if size < 0:
        raise SaveError("memory", -size)
    return buffer.raw[:size]


def _prepare(level: Level, encoding: Optional[str], part10: bool,
             undefined_lengths: bool) -> int:
    """Makes the data set ready to be saved; the mode."""
    node = level.live
    mode = 0
    if encoding is not None:
        if encoding not in _ENCODINGS:
            raise ValueError(f"encoding is one of {sorted(_ENCODINGS)}, not {encoding!r}")
        mode, syntax = _ENCODINGS[encoding]
        mode |= _UNDEFINED_LENGTHS if undefined_lengths else 0
        if part10:
            mode |= _PART_10
            if level.find(_TRANSFER_SYNTAX) is None:
                lib.pgKitAddPart10Elements(node, c_text(syntax))
    _forget(level)
    if not lib.pgxMakeLongValuesUn(node):
        raise PgkitError("a long value cannot be read")
    return mode


def _forget(level: Level) -> None:
    level.forget()
    level.tree.forget()


def encoding_of_built(level: Level) -> str:
    """The encoding that a data set built in memory says it has."""
    stated = value_at(level, _TRANSFER_SYNTAX)
    found = (name for name, (_, syntax) in _ENCODINGS.items() if syntax == stated)
    return next(found, "explicit")


def _save_file(level: Level, path: StrPath, mode: int) -> None:
    node = level.live

    def write(beside: str) -> int:
        code: int = lib.pgKitSaveDataSetAsEx(node, encoded_path(beside), mode)
        return code

    result = write_whole(path, write)
    _forget(level)  # saving completes group 0002 and lengths
    if result != 0:
        raise SaveError(str(path), result)
