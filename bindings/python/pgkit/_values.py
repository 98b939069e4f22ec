"""Values between Python and the bytes of an element, by value representation.

Bytes are as the library gives and takes them: numbers in host byte order.
"""

from __future__ import annotations

import re
import struct
from typing import Any, Iterable, List, Sequence, Union

BINARY = frozenset(("OB", "OW", "OF", "OWOB", "UN", "??"))
NUMBERS = {"US": "H", "SS": "h", "UL": "I", "SL": "i", "FL": "f", "FD": "d"}
# Whole texts, in which a backslash separates nothing.
_SINGLE_TEXTS = frozenset(("LT", "ST", "UT"))
_LEADING_BLANKS_COUNT = frozenset(("LT", "ST", "UT", "PN"))
_BY_CHARACTER_SET = frozenset(("SH", "LO", "ST", "LT", "PN", "UT"))
TEXTS = _BY_CHARACTER_SET | frozenset(("AE", "AS", "CS", "DA", "DS", "DT", "IS", "TM", "UI"))

Value = Union[None, str, int, float, bytes, "tuple[int, int]", List[Any]]

_CODECS = {
    "6": "ascii", "100": "latin_1", "101": "iso8859_2", "109": "iso8859_3", "110": "iso8859_4",
    "144": "iso8859_5", "127": "iso8859_6", "126": "iso8859_7", "138": "iso8859_8",
    "148": "iso8859_9", "203": "iso8859_15", "13": "shift_jis", "166": "tis_620", "192": "utf_8",
    "87": "iso2022_jp_2", "159": "iso2022_jp_2", "149": "euc_kr", "58": "gb2312",
    "GB18030": "gb18030", "GBK": "gbk",
}
# What switches to a set of two bytes in the upper half, which the codecs above take for granted.
_ESCAPES = re.compile(rb"\x1b\$\)[AC]")
_CODE_EXTENSIONS_BY_ESCAPE = frozenset(("euc_kr", "gb2312"))


def codec_of(character_sets: Sequence[str]) -> str:
    """The codec of the values of Specific Character Set (0008,0005): that of the last one known.

    With code extensions the last one is the set that the others are extended by.
    """
    for name in reversed(character_sets):
        codec = _CODECS.get(name.split(" ")[-1])
        if codec:
            return codec
    return "ascii"


def split_text(data: bytes, vr: str, codec: str) -> list[str]:
    """The values of a text, without padding. Bytes that the codec does not know become U+FFFD."""
    if vr not in _BY_CHARACTER_SET:
        codec = "ascii"
    if codec in _CODE_EXTENSIONS_BY_ESCAPE:
        data = _ESCAPES.sub(b"", data)
    text = data.decode(codec, "replace")
    parts = [text] if vr in _SINGLE_TEXTS else text.split("\\")
    parts = [part.rstrip(" \0") for part in parts]
    return parts if vr in _LEADING_BLANKS_COUNT else [part.lstrip(" ") for part in parts]


def decode(data: bytes, vr: str, codec: str) -> list[Any]:
    """The values of an element. Raises ValueError for an IS or DS that is no number."""
    if not data:
        return []
    if vr in BINARY:
        return [data]
    if vr in NUMBERS:
        unit = struct.calcsize("=" + NUMBERS[vr])
        count = len(data) // unit
        return list(struct.unpack(f"={count}{NUMBERS[vr]}", data[: count * unit]))
    if vr == "AT":
        return list(struct.iter_unpack("=HH", data[: len(data) // 4 * 4]))
    parts = split_text(data, vr, codec)
    if vr in ("IS", "DS"):
        return [_number(part, int if vr == "IS" else float) for part in parts]
    return parts


def _number(text: str, kind: type) -> Any:
    return None if not text.strip() else kind(text.strip())


def encode(value: Any, vr: str, codec: str) -> bytes:
    """The bytes of a value: None, bytes, one value or a list of values.

    Raises TypeError for a value that this VR cannot have, ValueError for one out of range.
    """
    if value is None:
        return b""
    if isinstance(value, (bytes, bytearray, memoryview)):
        return bytes(value)
    if vr in BINARY or vr not in TEXTS | NUMBERS.keys() | {"AT"}:
        raise TypeError(f"a value of {vr} is bytes, not {type(value).__name__}")
    values = value if _is_list(value, vr) else [value]
    if vr == "AT":
        return b"".join(struct.pack("=HH", *_tag(tag)) for tag in values)
    if vr in NUMBERS:
        try:
            return struct.pack(f"={len(values)}{NUMBERS[vr]}", *values)
        except struct.error as error:
            raise ValueError(f"not {vr}: {value!r} ({error})") from None
    return "\\".join(_text(part, vr) for part in values).encode(
        codec if vr in _BY_CHARACTER_SET else "ascii")


def _is_list(value: Any, vr: str) -> bool:
    if vr == "AT" and isinstance(value, tuple):
        return False
    return isinstance(value, Iterable) and not isinstance(value, str)


def _tag(tag: Any) -> tuple[int, int]:
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
        if vr == "DS" and isinstance(value, (int, float)):
            return _decimal(value)
    raise TypeError(f"a value of {vr} is a text, not {type(value).__name__}")


def _decimal(number: float) -> str:
    """A number in at most 16 characters, which is what DS allows, with as many digits as fit."""
    text = str(number)
    digits = 16
    while len(text) > 16:
        digits -= 1
        text = f"{number:.{digits}g}"
    if "n" in text:  # inf, nan
        raise ValueError(f"not DS: {number!r}")
    return text
