"""The data dictionary: tags, names, value representations and UIDs."""

from __future__ import annotations

import ctypes
import secrets
import sys
from typing import Any, Callable, Dict, Optional, Tuple, Union

from ._library import c_text, lib

Tag = Tuple[int, int]
# What names an element: a tag as a pair or as one number (0x00100010), a keyword of today
# ("PatientName"), a name of the built-in dictionary ("PatientsName"), or digits ("0010,0010").
TagLike = Union[Tag, int, str]

UNKNOWN_VR = "??"

# Names that were looked up once; there are no more of them than the dictionary has.
_tags: Dict[str, int] = {}
# Those that are attributes, with their tags as blocks have them.
attributes: Dict[str, bytes] = {}


def find_tag(key: TagLike) -> Tag:
    """The tag of a key: a pair, a 32-bit number, a keyword or a name, or digits.

    Raises KeyError for a name that the dictionary does not have, ValueError for numbers that are
    no tag.
    """
    number = tag_number(key)
    return number >> 16, number & 0xFFFF


def tag_number(key: TagLike) -> int:
    """The same as one number."""
    if isinstance(key, str):
        known = _tags.get(key)
        return known if known is not None else _number_of_name(key)
    if isinstance(key, int):
        if not 0 <= key <= 0xFFFFFFFF:
            raise ValueError(f"not a tag: {key!r}")
        return key
    group, element = key
    if not (0 <= group <= 0xFFFF and 0 <= element <= 0xFFFF):
        raise ValueError(f"not a tag: {key!r}")
    return group << 16 | element


def _number_of_name(name: str) -> int:
    group, element = ctypes.c_uint16(), ctypes.c_uint16()
    try:
        is_found = lib.pgxFindTag(c_text(name), group, element)
    except ValueError:
        is_found = 0
    if not is_found:
        raise KeyError(name)
    number: int = group.value << 16 | element.value
    if name in (keyword(number), element_name(number)):
        _tags[name] = number
    return number


def tag_of_attribute(name: str) -> Optional[int]:
    """The tag of a keyword or a built-in name as it is written; None for anything else."""
    if name in attributes:
        return _tags[name]
    if not name[:1].isalpha():
        return None
    try:
        number = _number_of_name(name)
    except KeyError:
        return None
    if name not in _tags:  # in another case, or digits
        return None
    attributes[name] = number.to_bytes(4, sys.byteorder)
    return number


def _text_of(function: Callable[..., int], *arguments: Any) -> str:
    """The text that a function of the library gives into a buffer."""
    buffer = ctypes.create_string_buffer(128)
    length = function(*arguments, buffer, len(buffer))
    if length >= len(buffer):
        buffer = ctypes.create_string_buffer(length + 1)
        function(*arguments, buffer, len(buffer))
    return buffer.value.decode("utf-8", "replace")


def keyword(key: TagLike) -> str:
    """The keyword of a tag in today's standard ("PatientName"), empty when it has none."""
    return _text_of(lib.pgxTagKeyword, *find_tag(key))


def multiplicity(key: TagLike) -> str:
    """How many values a tag may have in today's standard ("1", "1-n"), empty when it lists none."""
    return _text_of(lib.pgxTagMultiplicity, *find_tag(key))


def element_name(key: TagLike) -> str:
    """The dictionary's name of a tag, "<Unknown Tag>" when it has none."""
    return _text_of(lib.pgxGetTagPrintableName, *find_tag(key))


def name_of(tag: Tag, node: int) -> str:
    """The name of an element: of a private one that by its creator."""
    return _text_of(lib.pgxGetTagName, node) if tag[0] % 2 else element_name(tag)


_vr_names: Dict[int, str] = {}


def vr_name(code: int) -> str:
    """"OW" and the like; "??" for a code that names no value representation."""
    known = _vr_names.get(code)
    if known is None:
        buffer = ctypes.create_string_buffer(5)
        is_known = lib.pgGetVRPrintableName(code, buffer)
        known = buffer.value.decode("ascii") if is_known else UNKNOWN_VR
        if is_known:
            _vr_names[code] = known
    return known


def vr_code(name: str) -> int:
    """The code of a value representation; raises ValueError when there is none of this name."""
    code: int = lib.pgFindValueRepresentationVR(c_text(name))
    if code == 255:
        raise ValueError(f"not a value representation: {name!r}")
    return code


def value_representation(key: TagLike) -> str:
    """The value representation that the dictionary gives a tag, "??" when it knows none."""
    return vr_name(lib.pgFindValueRepresentation(*find_tag(key)))


def uid_name(uid: str) -> Optional[str]:
    """The name of a UID, None for one that the library does not know."""
    # Names of a site's own SOP classes may have any length.
    buffer = ctypes.create_string_buffer(128)
    length = lib.pgxGetUIDName(c_text(uid), buffer, len(buffer))
    if length >= len(buffer):
        buffer = ctypes.create_string_buffer(length + 1)
        lib.pgxGetUIDName(c_text(uid), buffer, len(buffer))
    # What is there and empty leaves no placeholder.
    return None if length == 0 and buffer.value else buffer.value.decode("utf-8", "replace")


def uid_keyword(uid: str) -> Optional[str]:
    """The keyword of a UID in today's standard ("CTImageStorage"), None when it lists none."""
    return _text_of(lib.pgxUidKeyword, c_text(uid)) or None


def is_valid_uid(text: str) -> bool:
    """Whether a text is a well-formed UID."""
    try:
        return bool(lib.pgCheckUID(c_text(text)))
    except ValueError:
        return False


_LONGEST_UID = 64


def generate_uid(prefix: Optional[str] = None) -> str:
    """A new UID, of random digits: under 2.25, or under a prefix of one's own ("1.2.3.").

    Raises ValueError for a prefix that is no beginning of a UID or leaves no room.
    """
    if prefix is None:
        return f"2.25.{secrets.randbits(128)}"
    room = _LONGEST_UID - len(prefix)
    if not prefix.endswith(".") or room < 20 or not is_valid_uid(prefix[:-1]):
        raise ValueError(f"not the beginning of a UID, with a point at its end: {prefix!r}")
    uid = prefix + str(secrets.randbits(128))[: min(room, 39)]
    assert is_valid_uid(uid)
    return uid
