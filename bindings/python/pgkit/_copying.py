"""Copies of data sets and items, and whether two are the same."""

from __future__ import annotations

from typing import Any, Iterator, List, Optional, Tuple, Union

from ._blocks import ENCAPSULATED, SEQUENCE, Record, records_of
from ._dictionary import vr_code
from ._library import lib
from ._pixels import parts_of
from ._stored import bytes_of
from ._tree import Found, Level, chain, level_of, new_level

_SPECIFIC_CHARACTER_SET = 0x00080005
_VR_CS = vr_code("CS")


def items_of(level: Level, record: Record) -> List[Level]:
    """The items of a sequence; none of any other element."""
    return [level_of(level, handle) for handle in chain(lib.pgKitGetFirst(record[0]))]


def copy_elements(source: Level, target: Level) -> None:
    """Gives a level copies of all elements of another one; those of the same tag are replaced."""
    # Without recursion: items may be nested deeper than calls of Python.
    pending = [(source, target)]
    while pending:
        pending += _copy_level(*pending.pop())


def _copy_level(source: Level, target: Level) -> List[Tuple[Level, Level]]:
    """Copies the elements; the items that are still to be copied."""
    block = source.block()
    replaced = set()
    below: List[Tuple[Level, Level]] = []
    for record in list(records_of(block)):
        tag = record[1]
        if tag not in replaced:  # the element may occur more than once
            replaced.add(tag)
            _remove_all(target, tag)
        made = _insert(target, tag, record[2], _stored(source, block, record))
        if record[4] == SEQUENCE:
            below += zip(items_of(source, record), made)
    return below


# What a value is for a copy: bytes, how many items there are, or the fragments.
_Stored = Union[bytes, int, List[bytes]]


def _stored(level: Level, block: bytes, record: Record) -> _Stored:
    """The value of an element, that of a sequence without its items."""
    if record[4] == SEQUENCE:
        return len(items_of(level, record))
    if record[4] == ENCAPSULATED:
        return parts_of(level, record[0])
    return bytes_of(level, block, record)


def _insert(level: Level, tag: int, vr: int, value: _Stored) -> List[Level]:
    """Inserts an element beside those of the same tag; the items of a sequence, which are empty."""
    if isinstance(value, list):
        node = _insert_fragments(level, value)
    else:
        data = b"" if isinstance(value, int) else value
        node = lib.pgKitInsertNodeWithGroupElement(level.live, tag >> 16, tag & 0xFFFF, data, len(data))
        level.tree.note_length(len(data) + 1)
    if node is None:
        raise MemoryError
    lib.pgKitSetValueRep(node, vr)
    handles = [_append_item(node) for _ in range(value)] if isinstance(value, int) else []
    level.changed(tag)
    return [level_of(level, handle) for handle in handles]


def _append_item(node: int) -> int:
    handle: Optional[int] = lib.pgKitAllocateDataSetNode()
    if handle is None:
        raise MemoryError
    lib.pgKitSeqAddTail(node, handle)
    return handle


def _insert_fragments(level: Level, fragments: List[bytes]) -> Optional[int]:
    node: Optional[int] = lib.pgKitInsertEncodedPixelDataNode(level.live, len(fragments))
    for index, fragment in enumerate(fragments if node is not None else ()):
        if not lib.pgKitSetEncodedPixelData(node, index, len(fragment), fragment):
            raise MemoryError
    return node


def _remove_all(level: Level, tag: int) -> None:
    found = level.find(tag)
    while found is not None:
        remove_element(level, found[1][0], tag)
        found = level.find(tag)


def remove_element(level: Level, handle: int, tag: int) -> None:
    """Removes an element of a level."""
    level.tree.cut_off(handle)
    level.cut_off_element(handle)
    lib.pgKitRemoveNode(level.live, handle)
    level.changed(tag)


def detached_level(source: Level) -> Level:
    """A data set of its own with copies of all elements."""
    copy = new_level()
    try:
        copy_elements(source, copy)
        # Its texts stay what they are.
        if source.find(_SPECIFIC_CHARACTER_SET) is None:
            inherited = source.character_set_text()
            if inherited:
                _insert(copy, _SPECIFIC_CHARACTER_SET, _VR_CS, inherited)
    except BaseException:
        copy.tree.close()
        raise
    return copy


# ---- Pickles ----------------------------------------------------------------------------------------


def state_of(level: Level) -> List[Any]:
    """A data set as a flat list: for each item the number of its elements, then tag, VR and value of each
    of them; the items of its sequences follow, in their order."""
    # Flat, and without recursion: items may be nested deeper than calls of Python.
    state: List[Any] = []
    pending = [level]
    while pending:
        current = pending.pop()
        block = current.block()
        records = list(records_of(block))
        state.append(len(records))
        below: List[Level] = []
        for record in records:
            state.append((record[1], record[2], _stored(current, block, record)))
            if record[4] == SEQUENCE:
                below += items_of(current, record)
        pending += reversed(below)
    return state


def level_of_state(state: List[Any]) -> Level:
    """What a pickled data set becomes."""
    level = new_level()
    parts: Iterator[Any] = iter(state)
    pending = [level]
    while pending:
        current = pending.pop()
        below: List[Level] = []
        for _ in range(next(parts)):
            below += _insert(current, *next(parts))
        pending += reversed(below)
    return level


# ---- Comparison -------------------------------------------------------------------------------------


def equal_levels(one: Level, other: Level) -> bool:
    """Whether two data sets or items have the same elements with the same values."""
    pending: List[Tuple[Level, Level]] = [(one, other)]
    while pending:
        a, b = pending.pop()
        blocks = a.block(), b.block()
        mine, others = list(records_of(blocks[0])), list(records_of(blocks[1]))
        if len(mine) != len(others) or not all(
                _equal(a, (blocks[0], mine[i]), b, (blocks[1], others[i]), pending)
                for i in range(len(mine))):
            return False
    return True


def equal_elements(level: Level, one: Found, others: Level, other: Found) -> bool:
    """Whether tag, value representation and value are the same."""
    pending: List[Tuple[Level, Level]] = []
    return (_equal(level, one, others, other, pending)
            and all(equal_levels(a, b) for a, b in pending))


def _equal(level: Level, one: Found, others: Level, other: Found,
           pending: List[Tuple[Level, Level]]) -> bool:
    """The same, but for items, which are put to what is still to be compared."""
    mine, theirs = one[1], other[1]
    if mine[1:3] != theirs[1:3]:
        return False
    kinds = mine[4], theirs[4]
    if SEQUENCE in kinds:
        items, more = items_of(level, mine), items_of(others, theirs)
        pending += zip(items, more)
        return kinds[0] == kinds[1] and len(items) == len(more)
    if ENCAPSULATED in kinds:
        return kinds[0] == kinds[1] and parts_of(level, mine[0]) == parts_of(others, theirs[0])
    return bytes_of(level, *one) == bytes_of(others, *other)
