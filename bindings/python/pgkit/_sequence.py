"""The items of a sequence as a list."""

from __future__ import annotations

from collections.abc import MutableSequence
from typing import Any, Iterable, List, Union, overload

from . import _element
from ._copying import copy_elements, detached_level
from ._data_set import Item, check_item, copies_of, item_of
from ._element import Element
from ._library import lib
from ._tree import chain


class Sequence(MutableSequence):  # type: ignore[type-arg]
    """The items of a sequence. Changing it changes the data set.

    What is put in is copied: afterwards ``sequence[-1]`` is what belongs to the data set. Items that
    are taken out are gone, and raise ClosedError when they are used.
    """

    __slots__ = ("_element", "_seen", "_handles")

    def __init__(self, element: Element) -> None:
        self._element = element
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
    def __getitem__(self, index: int) -> Item: ...

    @overload
    def __getitem__(self, index: slice) -> List[Item]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Item, List[Item]]:
        level = self._element._level
        nodes = self._nodes()[index]
        if isinstance(nodes, list):
            return [item_of(level, handle) for handle in nodes]
        return item_of(level, nodes)

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
        copies = copies_of(value)
        start, stop, _ = index.indices(len(self))
        del self[start:stop]
        for offset, copy in enumerate(copies):
            self.insert(start + offset, copy)

    def insert(self, index: int, item: Item) -> None:
        """Puts a copy of an item, or of a data set, in front of the one at the index."""
        check_item(item)
        element = self._element
        source = item._level
        if source.tree is element._level.tree:
            source = detached_level(source)  # it may be what the sequence stands in
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
        copy_elements(source, item_of(element._level, node)._level)

    def assign(self, items: Iterable[Item]) -> None:
        """Makes copies of these items all that there are."""
        self[:] = items

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, (Sequence, list)):
            return NotImplemented
        return len(self) == len(other) and all(a == b for a, b in zip(self, other))

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"<Sequence: {len(self)} items>"


_element.sequence_of = Sequence
