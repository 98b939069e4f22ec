"""Values between Python and an element, by value representation.

Texts are str here; the library converts them. Bytes are as the library gives and takes them:
numbers in host byte order.
"""

from __future__ import annotations

import ctypes
import datetime
import decimal
import struct
from typing import Any, Callable, Dict, Iterable, List, Union

from ._library import lib
from ._names import PersonName
from ._times import text_of_date, text_of_date_time, text_of_time

BINARY = frozenset(("OB", "OD", "OF", "OL", "OV", "OW", "OWOB", "UN", "??"))
NUMBERS = {"US": "H", "SS": "h", "UL": "I", "SL": "i", "UV": "Q", "SV": "q", "FL": "f", "FD": "d"}
# Whole texts, in which a backslash separates nothing.
_SINGLE_TEXTS = frozenset(("LT", "ST", "UT", "UR"))
_LEADING_BLANKS_COUNT = frozenset(("LT", "ST", "UT", "PN", "UC"))
_BY_CHARACTER_SET = frozenset(("SH", "LO", "ST", "LT", "PN", "UC", "UT"))
TEXTS = _BY_CHARACTER_SET | frozenset(
    ("AE", "AS", "CS", "DA", "DS", "DT", "IS", "TM", "UI", "UR"))

# What is read; what can be set is more: dates, times and decimal.Decimal, too.
Value = Union[None, str, int, float, bytes, "tuple[int, int]", List[Any]]


def split_text(text: str, vr: str) -> List[str]:
    """The values of a text, without padding."""
    if vr in _SINGLE_TEXTS:
        return [text.rstrip(" \0")]
    if "\\" not in text:
        text = text.rstrip(" \0")
        return [text if vr in _LEADING_BLANKS_COUNT else text.lstrip(" ")]
    parts = [part.rstrip(" \0") for part in text.split("\\")]
    return parts if vr in _LEADING_BLANKS_COUNT else [part.lstrip(" ") for part in parts]


def _numbers_of(kind: Callable[[str], Any]) -> Callable[[str], List[Any]]:
    def numbers(text: str) -> List[Any]:
        if "\\" not in text:
            text = text.strip(" \0")
            return [kind(text) if text else None]
        parts = [part.strip(" \0") for part in text.split("\\")]
        return [kind(part) if part else None for part in parts]

    return numbers


def _names(text: str) -> List[Any]:
    if "\\" not in text:
        return [PersonName(text)]
    return [PersonName(part) for part in split_text(text, "PN")]


def _texts_of(vr: str) -> Callable[[str], List[Any]]:
    return lambda text: split_text(text, vr)


# From text to values, by VR.
_TEXT_DECODERS: Dict[str, Callable[[str], List[Any]]] = {vr: _texts_of(vr) for vr in TEXTS}
_TEXT_DECODERS.update(IS=_numbers_of(int), DS=_numbers_of(float), PN=_names)


# The same for a text without a backslash and without padding at its end, straight to the only value.
ONE_VALUE: Dict[str, Any] = {"IS": int, "DS": float, "PN": PersonName}
# Texts that are the value as they stand, but for blanks in front of some.
LEADING_BLANKS_COUNT = _LEADING_BLANKS_COUNT
ONE_NUMBER: Dict[str, Callable[[bytes, int], Any]] = {
    vr: struct.Struct("=" + kind).unpack_from for vr, kind in NUMBERS.items()}
NUMBER_SIZES: Dict[str, int] = {vr: struct.calcsize("=" + kind) for vr, kind in NUMBERS.items()}


def decode_text(text: str, vr: str) -> List[Any]:
    """The values of a text. Raises ValueError for an IS or DS that is no number."""
    return _TEXT_DECODERS[vr](text)


def decode_bytes(data: bytes, vr: str) -> List[Any]:
    """The values of an element that is no text."""
    if not data:
        return []
    kind = NUMBERS.get(vr)
    if kind is not None:
        count = len(data) // struct.calcsize("=" + kind)
        return list(struct.unpack_from(f"={count}{kind}", data))
    if vr == "AT":
        return list(struct.iter_unpack("=HH", data[: len(data) // 4 * 4]))
    return [data]


def encode(value: Any, vr: str, code: int, character_set: bytes) -> bytes:
    """The bytes of a value: None, bytes, one value or a list of values. code is that of the VR.

    Raises TypeError for a value that this VR cannot have, ValueError for one out of range, and
    UnicodeEncodeError, which is one, for a text that the character set does not have.
    """
    if value is None:
        return b""
    if isinstance(value, (bytes, bytearray, memoryview)):
        return bytes(value)
    if vr in BINARY or vr not in TEXTS | NUMBERS.keys() | {"AT"}:
        raise TypeError(f"a value of {vr} is bytes, not {type(value).__name__}")
    values = list(value) if _is_list(value, vr) else [value]
    if vr == "AT":
        return b"".join(struct.pack("=HH", *_tag(tag)) for tag in values)
    if vr in NUMBERS:
        try:
            return struct.pack(f"={len(values)}{NUMBERS[vr]}", *values)
        except struct.error as error:
            raise ValueError(f"not {vr}: {value!r} ({error})") from None
    return _encoded("\\".join(_text(part, vr) for part in values), code, character_set)


def _encoded(text: str, code: int, character_set: bytes) -> bytes:
    utf8 = text.encode()
    # What is ASCII is so in every character set; the library copies it.
    buffer = ctypes.create_string_buffer(len(utf8) + 1)
    size = lib.pgxTextFromUtf8(character_set, code, utf8, len(utf8), buffer, len(buffer))
    if size >= len(buffer):
        buffer = ctypes.create_string_buffer(size + 1)
        size = lib.pgxTextFromUtf8(character_set, code, utf8, len(utf8), buffer, len(buffer))
    if size < 0:
        name = character_set.decode("ascii", "replace").strip(" \0") or "ASCII"
        raise UnicodeEncodeError(name, text, 0, len(text),
                                 "the character set of the data set does not have this text")
    return buffer.raw[:size]


def _is_list(value: Any, vr: str) -> bool:
    if vr == "AT" and isinstance(value, tuple):
        return False
    return isinstance(value, Iterable) and not isinstance(value, str)


def _tag(tag: Any) -> "tuple[int, int]":
    group, element = divmod(tag, 0x10000) if isinstance(tag, int) else tag
    if not (0 <= group <= 0xFFFF and 0 <= element <= 0xFFFF):
        raise ValueError(f"not a tag: {tag!r}")
    return group, element


def _text(value: Any, vr: str) -> str:
    if isinstance(value, str):
        return value
    if not isinstance(value, bool):  # an int to Python, but its text is no number
        if vr == "IS" and isinstance(value, int):
            return str(value)
        if vr == "DS" and isinstance(value, (int, float, decimal.Decimal)):
            return _decimal(value)
    if vr in ("DT", "DA", "TM"):
        text = _text_of_moment(value, vr)
        if text is not None:
            return text
    if value is None:  # an empty one of several
        return ""
    raise TypeError(f"a value of {vr} is a text, not {type(value).__name__}")


def _text_of_moment(value: Any, vr: str) -> "str | None":
    if vr == "DT" and isinstance(value, datetime.datetime):
        return text_of_date_time(value)
    if vr == "DA" and isinstance(value, datetime.date):
        return text_of_date(value)
    return text_of_time(value) if vr == "TM" and isinstance(value, datetime.time) else None


def _decimal(number: Union[int, float, decimal.Decimal]) -> str:
    """A number in at most 16 characters, which is what DS allows, with as many digits as fit."""
    text = str(number)
    digits = 16
    while len(text) > 16 and digits > 1:
        digits -= 1
        text = f"{number:.{digits}g}"
    if not text.strip("+-.0123456789eE") == "" or len(text) > 16:  # inf, nan
        raise ValueError(f"not DS: {number!r}")
    return text
