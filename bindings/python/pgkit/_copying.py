"""Copies of data sets and items, and whether two are the same."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator, List, Optional, Tuple, Union

from ._blocks import ENCAPSULATED, SEQUENCE
from ._library import lib
from ._pixels import parts_of
from ._tree import Level, level_of

if TYPE_CHECKING:
    from ._data_set import DataSet, Item
    from ._element import Element


def copy_elements(source: Level, target: Level) -> None:
    """Gives a level copies of all elements of another one; those of the same tag are replaced."""
    # Without recursion: items may be nested deeper than calls of Python.
    pending = [(source, target)]
    while pending:
        pending += _copy_level(*pending.pop())


def _copy_level(source: Level, target: Level) -> List[Tuple[Level, Level]]:
    """Copies the elements; the items that are still to be copied."""
    from ._element import element_of

    block = source.block()
    replaced = set()
    below: List[Tuple[Level, Level]] = []
    for record in list(source.records()):
        tag = record[1]
        if tag not in replaced:  # the element may occur more than once
            replaced.add(tag)
            _remove_all(target, tag)
        element = element_of(source, block, record)
        made = insert(target, tag, record[2], value_of(element))
        below += zip([item._level for item in element.items], made)
    return below


# What a value is for a copy: bytes, how many items there are, or the fragments.
Stored = Union[bytes, int, List[bytes]]


def value_of(element: Element) -> Stored:
    """The value of an element, that of a sequence without its items."""
    kind = element._facts()[4]
    if kind == SEQUENCE:
        return len(element.items)
    if kind == ENCAPSULATED:
        return parts_of(element._level, element._live)
    return element.raw


def insert(level: Level, tag: int, vr: int, value: Stored) -> List[Level]:
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


def detached(item: Item) -> DataSet:
    """A data set of its own with copies of all elements."""
    from ._data_set import new

    copy = new()
    try:
        copy_elements(item._level, copy._level)
        # Its texts stay what they are.
        if (0x0008, 0x0005) not in item:
            inherited = item._level.character_set_text()
            if inherited:
                copy.set((0x0008, 0x0005), inherited)
    except BaseException:
        copy.close()
        raise
    return copy


# ---- Pickles ----------------------------------------------------------------------------------------


def state_of(data_set: Item) -> List[Any]:
    """A data set as a flat list: for each item the number of its elements, then tag, VR and value of each
    of them; the items of its sequences follow, in their order."""
    # Flat, and without recursion: items may be nested deeper than calls of Python.
    state: List[Any] = []
    pending = [data_set]
    while pending:
        elements = list(pending.pop())
        state.append(len(elements))
        below: List[Item] = []
        for element in elements:
            state.append((element._record[1], element._facts()[2], value_of(element)))
            below += element.items
        pending += reversed(below)
    return state


def from_state(state: List[Any]) -> DataSet:
    """What a pickled data set becomes."""
    from ._data_set import new

    data_set = new()
    parts: Iterator[Any] = iter(state)
    pending = [data_set._level]
    while pending:
        level = pending.pop()
        below: List[Level] = []
        for _ in range(next(parts)):
            below += insert(level, *next(parts))
        pending += reversed(below)
    return data_set


def equal_items(one: Item, other: Item) -> bool:
    """Whether two data sets or items have the same elements with the same values."""
    pending: List[Tuple[Item, Item]] = [(one, other)]
    while pending:
        a, b = pending.pop()
        mine, others = list(a), list(b)
        if len(mine) != len(others) or not all(
                _equal(mine[i], others[i], pending) for i in range(len(mine))):
            return False
    return True


def equal_elements(one: Element, other: Element) -> bool:
    """Whether tag, value representation and value are the same."""
    pending: List[Tuple[Item, Item]] = []
    return _equal(one, other, pending) and all(equal_items(a, b) for a, b in pending)


def _equal(one: Element, other: Element, pending: List[Tuple[Item, Item]]) -> bool:
    """The same, but for items, which are put to what is still to be compared."""
    if one.tag != other.tag or one.vr != other.vr:
        return False
    kinds = one._facts()[4], other._facts()[4]
    if SEQUENCE in kinds:
        mine, others = one.items, other.items
        pending += zip(mine, others)
        return kinds[0] == kinds[1] and len(mine) == len(others)
    if ENCAPSULATED in kinds:
        return kinds[0] == kinds[1] and (parts_of(one._level, one._live)
                                         == parts_of(other._level, other._live))
    return one.raw == other.raw
