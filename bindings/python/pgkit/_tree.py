"""The memory of a data set, and what Python knows of its levels.

A level is a data set or an item: the elements that stand beside each other. What the library says of
a level comes as one block and is kept until something changes it. Closing the data set, or removing a
part, cuts objects off from the memory that is freed: using them raises ClosedError. The levels of
items are known to their tree by address; a level knows which of its elements were removed, and when.

Objects refer to what encloses them, never to what is below: there are no cycles, and a data set that
nobody refers to closes its file at once.
"""

from __future__ import annotations

import ctypes
import weakref
from typing import Any, Dict, Iterator, Optional, Tuple

from ._bases import LevelBase
from ._blocks import (ABSENT, Record, character_set_of, find, read_level, read_values, records_of,
                      tag_list)
from ._errors import ClosedError
from ._library import lib

_SPECIFIC_CHARACTER_SET = 0x00080005
_PIXEL_REPRESENTATION = 0x00280103

# What saving adds to group 0002 is no longer.
_LONGEST_OF_META = 1024

_next_of = lib.pgKitGetNext

Found = Tuple[bytes, Record]


def chain(handle: Optional[int]) -> Iterator[int]:
    """A node and its following siblings."""
    while handle is not None:
        yield handle
        handle = _next_of(handle)


class Tree:
    """A data set's memory, which is freed when it is closed or nobody refers to it."""

    __slots__ = ("root", "levels", "_longest_value")

    def __init__(self, root: int, longest_value: Optional[int]) -> None:
        self.root: Optional[int] = root
        # Those of items; the root belongs to its data set.
        self.levels: Dict[int, weakref.ref[Level]] = {}
        self._longest_value = longest_value

    def close(self) -> None:
        root, self.root = self.root, None
        if root is not None:
            self.forget()
            lib.pgKitCloseDataSet(root)

    # Modules may be gone before the last data set is.
    def __del__(self, close: Any = lib.pgKitCloseDataSet) -> None:
        if self.root is not None:
            close(self.root)

    def forget(self) -> None:
        """What was read of items is no longer so."""
        for reference in list(self.levels.values()):
            level = reference()
            if level is not None:
                level.forget()

    @property
    def longest_value(self) -> int:
        """No value is longer than what it can come from: the file, or what was set. A length that
        says otherwise is a lie, and not worth its memory."""
        if self._longest_value is None:
            assert self.root is not None
            self._longest_value = _size_of_file(self.root)
        return max(self._longest_value, _LONGEST_OF_META)

    def note_length(self, length: int) -> None:
        """A value of this length was set."""
        self._longest_value = max(self.longest_value, length)

    def cut_off(self, handle: int) -> None:
        """Before a node is freed: no object refers to it, or to what is below it, any longer."""
        pending = [handle]
        while pending:
            current = pending.pop()
            reference = self.levels.pop(current, None)
            level = reference() if reference is not None else None
            if level is not None:
                level.cut_off()
            pending += chain(lib.pgKitGetFirst(current))


def _size_of_file(root: int) -> int:
    """How many bytes there are in the file that a data set was read from, up to 4 GiB."""
    byte = ctypes.create_string_buffer(1)
    size = 0
    for bit in reversed(range(32)):
        if lib.pgKitGetFileData(root, byte, size + (1 << bit) - 1, 1):
            size += 1 << bit
    return size


class Level(LevelBase):
    """A data set or an item, as the library sees it."""

    __slots__ = ("tree", "handle", "parent", "elements", "item", "removals", "_removed", "__weakref__")

    def __init__(self, tree: Tree, handle: int, parent: Optional[Level]) -> None:
        self.tree = tree
        self.handle: Optional[int] = handle
        self.parent = parent
        self.values = {}
        # The objects that stand for elements asked for by key, and for this level, while somebody
        # has them.
        self.elements: Optional[Dict[int, weakref.ref[Any]]] = None
        self.item: Optional[weakref.ref[Any]] = None
        # How many elements were removed, and how many had been before each of them, by address:
        # what is inserted later may have the same.
        self.removals = 0
        self._removed: Optional[Dict[int, int]] = None
        self._block = None
        self._stale = None
        if parent is not None:
            tree.levels[handle] = weakref.ref(self)

    @property
    def live(self) -> int:
        """The node. Raises ClosedError."""
        if self.handle is None or self.tree.root is None:
            raise ClosedError()
        return self.handle

    @property
    def is_live(self) -> bool:
        return self.handle is not None and self.tree.root is not None

    def cut_off(self) -> None:
        self.forget()
        self.handle = None

    def cut_off_element(self, handle: int) -> None:
        if self.elements is not None:
            self.elements.pop(handle, None)
        if self._removed is None:
            self._removed = {}
        self._removed[handle] = self.removals
        self.removals += 1

    def was_removed(self, handle: int, removals: int) -> bool:
        """Whether an element was removed since there had been so many removals."""
        return (self.removals != removals and self._removed is not None
                and self._removed.get(handle, -1) >= removals)

    # ---- What the library says ------------------------------------------------------------------

    def block(self) -> bytes:
        """All elements as they are now."""
        block = self._block
        if block is None or self._stale:
            inherited = None
            if self.parent is not None:
                self._read_enclosing()
                inherited = self.inherited()
            block = self._block = read_level(self.live, inherited)
            self._stale = None
        return block

    def _read_enclosing(self) -> None:
        # From the outside to the inside: items may be nested deeper than calls of Python.
        missing = []
        level = self.parent
        while level is not None and level._block is None:
            missing.append(level)
            level = level.parent
        for level in reversed(missing):
            level.block()

    def records(self) -> Iterator[Record]:
        return records_of(self.block())

    def find(self, tag: int) -> Optional[Found]:
        """The first element of a tag."""
        block = self._block
        if block is None:
            block = self.block()
        elif self._stale and tag in self._stale:
            block = read_values(self.live, self.inherited(), tag_list([tag]))
        record = find(block, tag)
        return None if record is None or record[4] == ABSENT else (block, record)

    def find_handle(self, handle: int) -> Found:
        """The element of a node that is one of this level."""
        block = self.block()
        for record in records_of(block):
            if record[0] == handle:
                return block, record
        raise ClosedError("this part of the data set was removed")

    def is_current(self, block: bytes, tag: int) -> bool:
        """Whether what a block says of a tag is still so."""
        return block is self._block and (self._stale is None or tag not in self._stale)

    def character_set(self) -> Optional[int]:
        """The element (0008,0005) that holds for texts here: its own, or an inherited one."""
        return character_set_of(self.block() if self._block is None else self._block)

    def inherited(self) -> Optional[int]:
        """The one that the level has from what encloses it."""
        return None if self.parent is None else self.parent.character_set()

    def character_set_text(self) -> bytes:
        """The text of that element."""
        node = self.character_set()
        length = 0 if node is None else lib.pgKitGetLength(node)
        if not 0 < length <= 0x10000:
            return b""
        buffer = ctypes.create_string_buffer(length + 1)
        lib.pgKitGetValue(node, buffer)
        return buffer.value

    def numeric_vr(self, vr: str) -> str:
        """US or SS for what is either of them, as Pixel Representation (0028,0103) says."""
        if vr != "USSS":
            return vr
        level: Optional[Level] = self
        while level is not None:
            found = level.find(_PIXEL_REPRESENTATION)
            if found is not None:
                block, record = found
                return "SS" if block[record[5] : record[5] + 1] == b"\1" else "US"
            level = level.parent
        return "US"

    # ---- What changes ---------------------------------------------------------------------------

    def forget(self) -> None:
        self._block = None
        self._stale = None
        self.values.clear()

    def changed(self, tag: int) -> None:
        """Elements of this tag were set, inserted or removed."""
        if tag in (_SPECIFIC_CHARACTER_SET, _PIXEL_REPRESENTATION):
            self.forget()
            self.tree.forget()  # items inherit them
            return
        if self._stale is None:
            self._stale = set()
        self._stale.add(tag)
        self.values.clear()


# All values of a tree in memory are there.
IN_MEMORY = 0xFFFFFFFE


def root_level(root: int, longest_value: Optional[int]) -> Level:
    """The level of a tree, which it owns from now on. longest_value is None when the file says how
    long values can be."""
    return Level(Tree(root, longest_value), root, None)


def new_level() -> Level:
    """The level of a new tree in memory, without elements."""
    root = lib.pgKitAllocateDataSetNode()
    if root is None:
        raise MemoryError
    return root_level(root, IN_MEMORY)


def level_of(parent: Level, handle: int) -> Level:
    """The level of an item of a sequence in a level."""
    reference = parent.tree.levels.get(handle)
    known = reference() if reference is not None else None
    return Level(parent.tree, handle, parent) if known is None else known
