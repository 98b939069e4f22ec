"""The data dictionary: tags, names, value representations and UIDs."""

from __future__ import annotations

import ctypes
from typing import Tuple, Union

from ._library import c_text, lib

Tag = Tuple[int, int]
# What names an element: a tag as a pair or as one number (0x00100010), or a dictionary name.
TagLike = Union[Tag, int, str]

UNKNOWN_VR = "??"


def find_tag(key: TagLike) -> Tag:
    """The tag of a key: a pair, a 32-bit number or a name of the dictionary ("PatientsName").

    Raises KeyError for a name that the dictionary does not have, ValueError for numbers that are
    no tag.
    """
    if isinstance(key, str):
        return _tag_of_name(key)
    group, element = divmod(key, 0x10000) if isinstance(key, int) else key
    if not (0 <= group <= 0xFFFF and 0 <= element <= 0xFFFF):
        raise ValueError(f"not a tag: {key!r}")
    return group, element


def _tag_of_name(name: str) -> Tag:
    try:
        identifier = lib.pgGetTagElementId(c_text(name))
    except ValueError:
        identifier = 0xFFFFFFFF
    group, element = ctypes.c_uint16(), ctypes.c_uint16()
    if identifier == 0xFFFFFFFF or not lib.pgFindElementIdInfo(identifier, group, element):
        raise KeyError(name)
    return group.value, element.value


def element_name(key: TagLike) -> str:
    """The dictionary's name of a tag, "<Unknown Tag>" when it has none."""
    buffer = ctypes.create_string_buffer(128)
    lib.pgGetTagPrintableName(*find_tag(key), buffer)
    return buffer.value.decode("latin-1")


def vr_name(code: int) -> str:
    """"OW" and the like; "??" for a code that names no value representation."""
    buffer = ctypes.create_string_buffer(5)
    return buffer.value.decode("ascii") if lib.pgGetVRPrintableName(code, buffer) else UNKNOWN_VR


def vr_code(name: str) -> int:
    """The code of a value representation; raises ValueError when there is none of this name."""
    code: int = lib.pgFindValueRepresentationVR(c_text(name))
    if code == 255:
        raise ValueError(f"not a value representation: {name!r}")
    return code


def value_representation(key: TagLike) -> str:
    """The value representation that the dictionary gives a tag, "??" when it knows none."""
    return vr_name(lib.pgFindValueRepresentation(*find_tag(key)))


def uid_name(uid: str) -> str | None:
    """The name of a UID, None for one that the library does not know."""
    # Names of a site's own SOP classes may have any length.
    buffer = ctypes.create_string_buffer(128)
    length = lib.pgxGetUIDName(c_text(uid), buffer, len(buffer))
    if length >= len(buffer):
        buffer = ctypes.create_string_buffer(length + 1)
        lib.pgxGetUIDName(c_text(uid), buffer, len(buffer))
    # What is there and empty leaves no placeholder.
    return None if length == 0 and buffer.value else buffer.value.decode("utf-8", "replace")


def is_valid_uid(text: str) -> bool:
    """Whether a text is a well-formed UID."""
    try:
        return bool(lib.pgCheckUID(c_text(text)))
    except ValueError:
        return False
