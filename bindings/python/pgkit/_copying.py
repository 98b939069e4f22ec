"""Copies of data sets and items, and whether two are the same."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, List, Tuple

from ._blocks import ENCAPSULATED, SEQUENCE
from ._library import lib
from ._pixels import parts_of
from ._tree import Level

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
    from ._data_set import item_of
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
        if record[4] == ENCAPSULATED:
            _copy_fragments(element, target)
            continue
        data = b"" if record[4] == SEQUENCE else element.raw
        node = lib.pgKitInsertNodeWithGroupElement(target.live, tag >> 16, tag & 0xFFFF, data,
                                                   len(data))
        if node is None:
            raise MemoryError
        lib.pgKitSetValueRep(node, record[2])
        target.tree.note_length(len(data) + 1)
        for item in element.items if record[4] == SEQUENCE else ():
            copy = lib.pgKitAllocateDataSetNode()
            if copy is None:
                raise MemoryError
            lib.pgKitSeqAddTail(node, copy)
            below.append((item._level, item_of(target, copy)._level))
        target.changed(tag)
    return below


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


def _copy_fragments(element: Any, target: Level) -> None:
    fragments = parts_of(element._level, element._live)
    node = lib.pgKitInsertEncodedPixelDataNode(target.live, len(fragments))
    if node is None:
        raise MemoryError
    for index, fragment in enumerate(fragments):
        if not lib.pgKitSetEncodedPixelData(node, index, len(fragment), fragment):
            raise MemoryError
    lib.pgKitSetValueRep(node, element._record[2])
    target.changed(element._record[1])


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
