"""Blocks: the elements of a data set, or some of them, as one call of the library gives them.

The layout is that of bulk_values.h of the library.
"""

from __future__ import annotations

import ctypes
import struct
import sys
import threading
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

from . import _values
from ._dictionary import vr_code
from ._library import Report, lib

# Node, tag, VR code, length of the stored value, kind, offset and size of the value in the block.
Record = Tuple[int, int, int, int, int, int, int]

ABSENT, TEXT, BYTES, SEQUENCE, ENCAPSULATED, LEFT_OUT, ITEM = range(7)

# Longer values are left out of blocks and fetched one by one.
LONGEST_VALUE = 1024

_HEADER = struct.Struct("=IIQ")
_RECORD = struct.Struct("=Q6I")
FIRST_TAG = _HEADER.size
_BYTE_ORDER = sys.byteorder


class _Buffer(threading.local):
    """Room for blocks: a thread's own, for other threads run during the calls."""

    def __init__(self) -> None:
        self.grow(0x10000)

    def grow(self, size: int) -> Tuple[int, int, memoryview]:
        memory = ctypes.create_string_buffer(size)
        # Address, size and bytes: one look at what belongs to the thread.
        self.room = ctypes.addressof(memory), size, memoryview(memory)
        return self.room


_buffer = _Buffer()
_read_level = lib.pgxReadLevel
_read_values = lib.pgxReadValues
_read_file_values = lib.pgxReadFileValues


def tag_list(tags: "list[int]") -> bytes:
    """Tags as the library takes a list of them."""
    return struct.pack(f"={len(tags)}I", *tags)


def read_level(node: int, character_set: Optional[int]) -> bytes:
    """The block of all elements of a data set, or of all items of a sequence."""
    address, room, memory = _buffer.room
    size = _read_level(node, character_set, LONGEST_VALUE, address, room)
    while size > room:
        address, room, memory = _buffer.grow(size)
        size = _read_level(node, character_set, LONGEST_VALUE, address, room)
    if not size:
        raise MemoryError
    return memory[:size].tobytes()


def read_values(node: int, character_set: Optional[int], tags: bytes) -> bytes:
    """The block of the first elements of a list of tags."""
    count = len(tags) // 4
    address, room, memory = _buffer.room
    size = _read_values(node, character_set, tags, count, LONGEST_VALUE, address, room)
    while size > room:
        address, room, memory = _buffer.grow(size)
        size = _read_values(node, character_set, tags, count, LONGEST_VALUE, address, room)
    if not size:
        raise MemoryError
    return memory[:size].tobytes()


def read_file_values(path: bytes, flags: int, tags: bytes, report: Report) -> Optional[bytes]:
    """The same of a file, which is opened and closed in one call; None when it gives no tree."""
    count = len(tags) // 4
    address, room, memory = _buffer.room
    size = _read_file_values(path, flags, tags, count, LONGEST_VALUE, address, room, report)
    while size > room:
        address, room, memory = _buffer.grow(size)
        size = _read_file_values(path, flags, tags, count, LONGEST_VALUE, address, room, report)
    return memory[:size].tobytes() if size else None


def records_of(block: bytes) -> Iterator[Record]:
    """All records, in their order."""
    first = (FIRST_TAG + 4 * count_of(block) + 7) & ~7
    count = count_of(block)
    return _RECORD.iter_unpack(memoryview(block)[first : first + count * _RECORD.size])  # type: ignore[return-value]


_COUNT = struct.Struct("=I")
count_in = _COUNT.unpack_from
record_at: Callable[[bytes, int], Record] = _RECORD.unpack_from  # type: ignore[assignment]


def count_of(block: bytes) -> int:
    """How many records there are."""
    count: int = count_in(block)[0]
    return count


def character_set_of(block: bytes) -> Optional[int]:
    """The element (0008,0005) that holds for the values, as a node."""
    node: int = _HEADER.unpack_from(block)[2]
    return node or None


def find(block: bytes, tag: int) -> Optional[Record]:
    """The first record of a tag."""
    end = FIRST_TAG + 4 * count_of(block)
    wanted = tag.to_bytes(4, _BYTE_ORDER)
    at = block.find(wanted, FIRST_TAG, end)
    while at & 3:
        if at < 0:
            return None
        # Four bytes of two tags.
        at = block.find(wanted, at + 1, end)
    # A record has eight times the size of a tag.
    return record_at(block, (end + 7 & ~7) + 8 * (at - FIRST_TAG))


# By the code of the VR.
_one_text: Dict[int, Callable[[str], Any]] = {
    vr_code(vr): decoder for vr, decoder in _values.ONE_VALUE.items()}
_one_number: Dict[int, Tuple[int, Callable[[bytes, int], Any]]] = {
    vr_code(vr): (_values.NUMBER_SIZES[vr], decoder)
    for vr, decoder in _values.ONE_NUMBER.items()}
_as_it_stands = frozenset(vr_code(vr) for vr in _values.LEADING_BLANKS_COUNT)


def value_in(block: bytes, record: Record) -> Any:
    """The value of an element that has exactly one, straight from the block; None where it takes
    more to say what the value is."""
    _, _, vr, _, kind, offset, size = record
    if kind == 1:  # TEXT
        text = block[offset : offset + size].decode()
        if text and "\\" not in text and "\0" not in text:
            if vr in _one_text:
                return _one_text[vr](text)
            return text if text[0] != " " or vr in _as_it_stands else text.lstrip(" ")
    elif kind == 2 and vr in _one_number:  # BYTES
        unit, unpack = _one_number[vr]
        if size == unit:
            return unpack(block, offset)[0]
    return None


def kinds_of_values() -> bytes:
    """What ``value_in`` makes of each VR, by its code, as speed/speed.cpp has it."""
    kinds = bytearray(b"-" * 256)
    for vr in _values.TEXTS:
        kinds[vr_code(vr)] = ord("w" if vr in _values.LEADING_BLANKS_COUNT else "t")
    for vr, kind in {**_values.NUMBERS, "IS": "Z", "DS": "R", "PN": "n"}.items():
        kinds[vr_code(vr)] = ord(kind)
    return bytes(kinds)


def values_in(block: bytes, record: Record, vr: str) -> List[Any]:
    """All values of an element whose value is in the block. vr is its VR, which a data set has to
    settle for USSS. Raises ValueError for an IS or DS that is no number."""
    _, _, _, length, kind, offset, size = record
    if length == 0:
        return []
    data = block[offset : offset + size]
    if kind == TEXT:
        return _values.decode_text(data.decode("utf-8", "replace"), vr)
    return _values.decode_bytes(data, vr)
