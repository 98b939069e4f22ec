"""Values of elements as the library has them: of a level, its block and a record there."""

from __future__ import annotations

import ctypes
from typing import Any, List

from . import _values
from ._blocks import BYTES, ENCAPSULATED, SEQUENCE, TEXT, Record
from ._dictionary import Tag, vr_name
from ._errors import PgkitError
from ._library import lib
from ._tree import Level

UNDEFINED_LENGTH = 0xFFFFFFFF


def tag_text(tag: Tag) -> str:
    """ "(0010,0020)"."""
    return "({:04X},{:04X})".format(*tag)


def name_in_errors(record: Record) -> str:
    """The tag of a record as errors have it."""
    return tag_text((record[1] >> 16, record[1] & 0xFFFF))


def length_of(level: Level, record: Record) -> int:
    """The length of a value that there can be. PgkitError for parts, and for lengths that no value of
    this file can have."""
    length = record[3]
    if length == 0:
        return 0
    if length == UNDEFINED_LENGTH or record[4] in (SEQUENCE, ENCAPSULATED):
        raise PgkitError(f"{name_in_errors(record)} has no value of its own")
    if length > level.tree.longest_value:
        raise PgkitError(f"{name_in_errors(record)} declares {length} bytes, more than its file has")
    return length


def read_into(record: Record, address: int) -> None:
    """The value and a zero behind it."""
    if record[3] and not lib.pgKitGetValue(record[0], address):
        raise PgkitError(f"the value of {name_in_errors(record)} cannot be read")


def bytes_of(level: Level, block: bytes, record: Record) -> bytes:
    """The value as bytes, numbers in host byte order."""
    if record[4] == BYTES:
        return block[record[5] : record[5] + record[6]]
    length = length_of(level, record)
    buffer = ctypes.create_string_buffer(length + 1)
    read_into(record, ctypes.addressof(buffer))
    return buffer.raw[:length]


def utf8_of(level: Level, block: bytes, record: Record) -> bytes:
    """The text of an element whose VR is one of texts."""
    if record[4] == TEXT:
        return block[record[5] : record[5] + record[6]]
    length_of(level, record)
    # No character takes more than three bytes for one of its own.
    buffer = ctypes.create_string_buffer(3 * record[3] + 1)
    size = lib.pgxGetUtf8Value(level.character_set(), record[0], buffer, len(buffer))
    if size < 0:
        raise PgkitError(f"the value of {name_in_errors(record)} cannot be read")
    return buffer.raw[:size]


def text_of(level: Level, block: bytes, record: Record) -> str:
    """The value of a text as one text, whatever it says. TypeError for what is no text."""
    vr = vr_name(record[2])
    if vr not in _values.TEXTS:
        raise TypeError(f"{name_in_errors(record)} is {vr}, no text")
    text = utf8_of(level, block, record).decode("utf-8", "replace")
    return "\\".join(_values.split_text(text, vr))


def values_of(level: Level, block: bytes, record: Record) -> List[Any]:
    """All values. ValueError for an IS or DS that is no number."""
    vr = vr_name(record[2])
    if vr not in _values.TEXTS or record[4] == SEQUENCE:
        return _values.decode_bytes(bytes_of(level, block, record), level.numeric_vr(vr))
    if record[3] == 0:
        return []
    try:
        return _values.decode_text(utf8_of(level, block, record).decode("utf-8", "replace"), vr)
    except ValueError:
        text = text_of(level, block, record)
        raise ValueError(f"{name_in_errors(record)} is not {vr}: {text!r}") from None


def value_of(level: Level, block: bytes, record: Record) -> Any:
    """The value; a list of them when there are several, None when there is none."""
    values = values_of(level, block, record)
    if len(values) > 1:
        return values
    return values[0] if values else None


def value_at(level: Level, tag: int) -> Any:
    """The value of the first element of a tag, None without one."""
    found = level.find(tag)
    return None if found is None else value_of(level, *found)
