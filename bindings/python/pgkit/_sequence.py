"""The items of a sequence as a list."""

from __future__ import annotations

from typing import Any, Callable, Iterable, List, MutableSequence, TypeVar, Union, overload

from ._bases import ItemBase
from ._copying import copy_elements, detached_level
from ._element import ElementBase
from ._library import lib
from ._tree import Level, chain, level_of

_Item = TypeVar("_Item")


class Sequence(MutableSequence[_Item]):
    """The items of a sequence. Changing it changes the data set.

    What is put in is copied: afterwards ``sequence[-1]`` is what belongs to the data set. Items that
    are taken out are gone, and raise ClosedError when they are used.
    """

    __slots__ = ("_element", "_item_of", "_seen", "_handles")

    def __init__(self, element: ElementBase, item_of: Callable[[Level, int], _Item]) -> None:
        self._element = element
        self._item_of = item_of
        self._seen: Any = None
        self._handles: List[int] = []

    def _nodes(self) -> List[int]:
        node = self._element._live
        # There is a new block after every change.
        now = self._element._now()[0]
        if now is not self._seen:
            self._handles = list(chain(lib.pgKitGetFirst(node)))
            self._seen = now
        return self._handles

    def __len__(self) -> int:
        return len(self._nodes())

    @overload
    def __getitem__(self, index: int) -> _Item: ...

    @overload
    def __getitem__(self, index: slice) -> List[_Item]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[_Item, List[_Item]]:
        level = self._element._level
        nodes = self._nodes()[index]
        if isinstance(nodes, list):
            return [self._item_of(level, handle) for handle in nodes]
        return self._item_of(level, nodes)

    def __delitem__(self, index: Union[int, slice]) -> None:
        nodes = self._nodes()[index]
        for handle in nodes if isinstance(nodes, list) else [nodes]:
            self._element._remove_handle(handle)

    def __setitem__(self, index: Any, value: Any) -> None:
        if not isinstance(index, slice):
            index = range(len(self))[index]
            self.insert(index, value)
            del self[index + 1]
            return
        if index.step not in (None, 1):
            raise ValueError("items are replaced one by one, or side by side")
        start, stop, _ = index.indices(len(self))
        self._replace(start, stop, copies_of(value))

    def _replace(self, start: int, stop: int, copies: List[Level]) -> None:
        del self[start:stop]
        for offset, copy in enumerate(copies):
            self._insert(start + offset, copy)

    def insert(self, index: int, item: Any) -> None:
        """Puts a copy of an item, or of a data set, in front of the one at the index."""
        source = _level_of_item(item)
        if source.tree is self._element._level.tree:
            source = detached_level(source)  # it may be what the sequence stands in
        self._insert(index, source)

    def _insert(self, index: int, source: Level) -> None:
        element = self._element
        nodes = list(self._nodes())
        index = min(max(index + len(nodes) if index < 0 else index, 0), len(nodes))
        node = lib.pgKitAllocateDataSetNode()
        if node is None:
            raise MemoryError
        if index == len(nodes):
            lib.pgKitSeqAddTail(element._live, node)
        elif index == 0:
            lib.pgKitSeqAddHead(element._live, node)
        else:
            lib.pgKitSetNext(node, nodes[index])
            lib.pgKitSetNext(nodes[index - 1], node)
        element._changed()
        copy_elements(source, level_of(element._level, node))

    def assign(self, items: Iterable[Any]) -> None:
        """Makes copies of these items all that there are."""
        self._become(copies_of(items))

    def _become(self, copies: List[Level]) -> None:
        """Makes these copies, of ``copies_of``, all that there are."""
        self._replace(0, len(self), copies)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, (Sequence, list)):
            return NotImplemented
        return len(self) == len(other) and all(a == b for a, b in zip(self, other))

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"<Sequence: {len(self)} items>"


def _level_of_item(item: Any) -> Level:
    if not isinstance(item, ItemBase):
        raise TypeError(f"a sequence has items, not {type(item).__name__}")
    level: Level = item._level
    return level


def copies_of(items: Any) -> List[Level]:
    """What a sequence is to have, apart from any tree; TypeError for anything but items."""
    if isinstance(items, (str, bytes, ItemBase)) or not isinstance(items, Iterable):
        raise TypeError(f"a sequence has a list of items, not {type(items).__name__}")
    return [detached_level(level) for level in [_level_of_item(item) for item in items]]
