"""Data sets, their elements, and the items of sequences.

Every node that Python knows is known to its tree by its address, so that closing a data set, or
removing an element, cuts the objects off from the memory that is freed: using them raises
ClosedError.
"""

from __future__ import annotations

import ctypes
import os
import tempfile
import weakref
from typing import Any, Iterator, NoReturn

from ._dictionary import (UNKNOWN_VR, Tag, TagLike, element_name, find_tag, value_representation,
                          vr_code, vr_name)
from ._errors import ClosedError, PgkitError, SaveError
from ._output import write_whole
from ._library import StrPath, c_text, encoded_path, lib
from ._values import Value, codec_of, decode, encode, split_text

_UNDEFINED_LENGTH = 0xFFFFFFFF
_LOAD_BELOW = 64

# In explicit VR the length of all others has 16 bits, and 65,535 is none.
_VRS_WITH_LONG_HEADER = {"OB", "OW", "OWOB", "OF", "SQ", "UN", "UT", UNKNOWN_VR}
_VRS_OF_SHORT_NUMBERS = {"US", "SS", "USSS", "UL", "SL", "AT", "FL", "FD"}
_FIRST_TOO_LONG = 65535

# Bits of a write mode.
_UNDEFINED_LENGTHS = 0x01
_PART_10 = 0x04
_ENCODINGS = {  # the mode and the transfer syntax of what ``save`` calls an encoding
    "explicit": (0x28, "1.2.840.10008.1.2.1"),
    "implicit": (0x30, "1.2.840.10008.1.2"),
    "big endian": (0x48, "1.2.840.10008.1.2.2"),
}


class _Tree:
    """A data set's memory, and the Python objects that refer to it."""

    def __init__(self, root: int, longest_value: int) -> None:
        self.root = root
        # No value is longer than what it can come from: the file or what was set. A length that
        # says otherwise is a lie, and not worth its memory.
        self.longest_value = longest_value
        self.nodes: weakref.WeakValueDictionary[int, _Node] = weakref.WeakValueDictionary()
        self.close = weakref.finalize(self, lib.pgKitCloseDataSet, root)

    def node(self, handle: int, parent: _Node | None) -> _Node:
        known = self.nodes.get(handle)
        if known is None:
            kind = Element if lib.pgKitGetNodeType(handle) == 1 else Item
            known = self.nodes[handle] = kind(self, handle, parent)
        return known

    def cut_off(self, handle: int) -> None:
        """Before a node is freed: no object refers to it, or to what is below it, any longer."""
        pending = [handle]
        while pending:
            current = pending.pop()
            node = self.nodes.pop(current, None)
            if node is not None:
                node._handle = None
            pending += _chain(lib.pgKitGetFirst(current))


def _chain(handle: int | None) -> Iterator[int]:
    while handle is not None:
        yield handle
        handle = lib.pgKitGetNext(handle)


class _Node:
    """What elements and items have in common. Made by the library's operations only."""

    __slots__ = ("_tree", "_handle", "_parent", "__weakref__")

    def __init__(self, tree: _Tree, handle: int, parent: _Node | None) -> None:
        self._tree = tree
        self._handle: int | None = handle
        self._parent = parent

    def __reduce__(self) -> NoReturn:
        raise TypeError(f"{type(self).__name__} objects cannot be copied or pickled")

    @property
    def _live(self) -> int:
        if self._handle is None or not self._tree.close.alive:
            raise ClosedError("the data set is closed or this part of it was removed")
        return self._handle

    def _children(self) -> list[Any]:
        return [self._tree.node(handle, self) for handle in _chain(lib.pgKitGetFirst(self._live))]

    def _remove(self, child: _Node) -> None:
        handle = child._live
        self._tree.cut_off(handle)
        lib.pgKitRemoveNode(self._live, handle)


class Item(_Node):
    """An item of a sequence, or a whole data set: elements by tag, in the order of the file.

    Keys are tags, as ``(0x0010, 0x0010)`` or ``0x00100010``, or names of the dictionary.
    """

    __slots__ = ()

    def __getitem__(self, key: TagLike) -> Element:
        """The first element of this tag; KeyError when there is none."""
        found = self.find(key)
        if found is None:
            raise KeyError(key)
        return found

    def find(self, key: TagLike) -> Element | None:
        """The first element of this tag, or None. Sequences are not searched."""
        handle = lib.pgKitFindNodeWithGroupElement(self._live, *find_tag(key))
        return None if handle is None else self._element(handle)

    def get(self, key: TagLike, default: Any = None) -> Any:
        """The value of the first element of this tag, or the default."""
        found = self.find(key)
        return default if found is None else found.value

    def __contains__(self, key: TagLike) -> bool:
        try:
            return self.find(key) is not None
        except KeyError:
            return False

    def __iter__(self) -> Iterator[Element]:
        """All elements, as they are now."""
        return iter(self._children())

    def __len__(self) -> int:
        return sum(1 for _ in _chain(lib.pgKitGetFirst(self._live)))

    def __bool__(self) -> bool:
        return True

    def __setitem__(self, key: TagLike, value: Any) -> None:
        self.set(key, value)

    def set(self, key: TagLike, value: Any, vr: str | None = None) -> Element:
        """Sets the value of an element, which is inserted in tag order when there is none.

        The value representation is that of the element, of the dictionary, or the given one;
        ValueError when a new element has none at all.
        """
        tag = find_tag(key)
        found = self.find(tag)
        new_vr = self._vr_to_set(tag, found, vr)
        # Everything that can be wrong, before the tree changes.
        if new_vr == "SQ":
            raise TypeError(f"{_tag_text(tag)} has items, not a value: use insert_sequence")
        if found is not None:
            found._refuse_parts()
        data = self._encoded(value, new_vr)
        if found is None:
            found = self._insert_empty(tag)
        if vr is not None:
            found._change_vr(vr)
        found._store(data)
        return found

    def _vr_to_set(self, tag: Tag, found: Element | None, wanted: str | None) -> str:
        if wanted is not None:
            return vr_name(vr_code(wanted))
        if found is not None:
            return found.vr
        known = value_representation(tag)
        if known == UNKNOWN_VR:
            raise ValueError(f"the dictionary does not know {_tag_text(tag)}: give its vr")
        return known

    def _encoded(self, value: Any, vr: str) -> bytes:
        data = encode(value, self._numeric_vr(vr), self._codec())
        if len(data) >= _UNDEFINED_LENGTH:
            raise ValueError("values are shorter than 4 GiB")
        return data

    def _insert_empty(self, tag: Tag) -> Element:
        handle = lib.pgKitInsertNodeWithGroupElement(self._live, *tag, None, 0)
        if handle is None:
            raise PgkitError(f"{_tag_text(tag)} cannot be inserted")
        return self._element(handle)

    def insert_sequence(self, key: TagLike) -> Element:
        """A new sequence without items. ValueError when there is an element of this tag."""
        tag = find_tag(key)
        if self.find(tag) is not None:
            raise ValueError(f"{_tag_text(tag)} is there already")
        known = value_representation(tag)
        if known not in ("SQ", "??"):
            raise TypeError(f"{_tag_text(tag)} is {known}, not a sequence")
        element = self._insert_empty(tag)
        element._change_vr("SQ")
        return element

    def __delitem__(self, key: TagLike) -> None:
        """Removes the first element of this tag; KeyError when there is none."""
        self._remove(self[key])

    def _element(self, handle: int) -> Element:
        node = self._tree.node(handle, self)
        assert isinstance(node, Element)
        return node

    def _codec(self) -> str:
        """The codec of this item's texts: its own, or inherited from the data set around it."""
        scope: _Node | None = self
        while scope is not None:
            if isinstance(scope, Item):
                found = scope.find((0x0008, 0x0005))
                if found is not None:
                    return codec_of(split_text(found.raw, "CS", "ascii"))
            scope = scope._parent
        return "ascii"

    def _numeric_vr(self, vr: str) -> str:
        """US or SS for what is either of them, as Pixel Representation (0028,0103) says."""
        if vr != "USSS":
            return vr
        scope: _Node | None = self
        while scope is not None:
            found = scope.find((0x0028, 0x0103)) if isinstance(scope, Item) else None
            if found is not None:
                return "SS" if found.raw[:1] == b"\1" else "US"
            scope = scope._parent
        return "US"

    def __repr__(self) -> str:
        if self._handle is None or not self._tree.close.alive:
            return f"<{type(self).__name__}: closed>"
        return f"<{type(self).__name__}: {len(self)} elements>"


class DataSet(Item):
    """A data set: the root of a tree, read from a file or built in memory.

    A context manager: it is closed at the end of ``with``. Values that were not asked for yet are
    still in the file, which stays open until then.
    """

    __slots__ = ("_is_built",)

    def __init__(self, root: int, longest_value: int, is_built: bool) -> None:
        tree = _Tree(root, longest_value)
        super().__init__(tree, root, None)
        tree.nodes[root] = self
        self._is_built = is_built

    def close(self) -> None:
        """Frees the tree and closes its file. Closing twice is allowed."""
        self._tree.close()

    @property
    def closed(self) -> bool:
        """Whether close was called."""
        return not self._tree.close.alive

    def __enter__(self) -> DataSet:
        self._live  # noqa: B018
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def save(self, path: StrPath, *, encoding: str | None = None, part10: bool = True,
             undefined_lengths: bool = False) -> None:
        """Saves as a file, which may be the one that the data set was read from.

        encoding is "explicit", "implicit" (both little endian) or "big endian"; None keeps the
        one of the file (then the other options do not count) and is "explicit" for a data set
        built in memory. Part 10 files have the File Meta Information, which is completed when it
        has no transfer syntax. Values of 65,535 bytes and more get the VR UN where theirs has no
        room for such a length. The new file takes the place of the former one as a whole, when it
        is complete. Raises SaveError; the former file is as it was then.
        """
        if encoding is None and self._is_built:
            encoding = "explicit"
        mode = 0
        if encoding is not None:
            if encoding not in _ENCODINGS:
                raise ValueError(f"encoding is one of {sorted(_ENCODINGS)}, not {encoding!r}")
            mode, syntax = _ENCODINGS[encoding]
            mode |= _UNDEFINED_LENGTHS if undefined_lengths else 0
            if part10:
                mode |= _PART_10
                if (0x0002, 0x0010) not in self:
                    lib.pgKitAddPart10Elements(self._live, c_text(syntax))
        self._make_long_values_un()
        live = self._live
        result = write_whole(path, lambda beside: lib.pgKitSaveDataSetAsEx(
            live, encoded_path(beside), mode))
        if result != 0:
            raise SaveError(str(path), result)

    def _make_long_values_un(self) -> None:
        parents = [self._live]
        while parents:
            for handle in _chain(lib.pgKitGetFirst(parents.pop())):
                if lib.pgKitGetFirst(handle) is not None:
                    parents.append(handle)
                elif _is_too_long(handle):
                    _make_un(handle, self._tree.longest_value)

    def dump(self) -> str:
        """The text form, a line for each element."""
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "dump.txt")
            if not lib.pgKitDumpToFile(self._live, encoded_path(path)):
                raise PgkitError("the data set cannot be dumped")
            with _builtin_open(path, encoding="latin-1") as file:
                return file.read()


def _is_too_long(handle: int) -> bool:
    """Whether a value does not fit the 16-bit length that its VR has in explicit VR."""
    length = lib.pgKitGetLength(handle)
    if length < _FIRST_TOO_LONG or length == _UNDEFINED_LENGTH or not lib.pgKitGetNodeType(handle):
        return False
    is_long_vr = vr_name(lib.pgKitGetValueRep(handle)) in _VRS_WITH_LONG_HEADER
    return not is_long_vr and not lib.pgKitIsEncodedPixelData(handle)


def _make_un(handle: int, longest_value: int) -> None:
    """Makes a value one of VR UN, whose bytes are little endian in every encoding."""
    is_number = vr_name(lib.pgKitGetValueRep(handle)) in _VRS_OF_SHORT_NUMBERS
    length = lib.pgKitGetLength(handle)
    # What is longer cannot be there in full: saving will say so.
    if is_number and length <= longest_value:
        buffer = ctypes.create_string_buffer(length + 1)
        if not lib.pgKitGetValue(handle, buffer):
            raise PgkitError("a long value cannot be read")
        lib.pgKitSetValueRep(handle, vr_code("UN"))
        if not lib.pgKitSetValue(handle, buffer.raw[:length], length):
            raise MemoryError
    lib.pgKitSetValueRep(handle, vr_code("UN"))


class Element(_Node):
    """A data element. Its ``value`` can be read and set."""

    __slots__ = ()

    @property
    def tag(self) -> Tag:
        """Group and element number."""
        return lib.pgKitGetGroup(self._live), lib.pgKitGetElement(self._live)

    @property
    def name(self) -> str:
        """The dictionary's name, "<Unknown Tag>" when there is none."""
        return element_name(self.tag)

    @property
    def vr(self) -> str:
        """The value representation ("PN"); "USSS" and "OWOB" where a file leaves it open."""
        return vr_name(lib.pgKitGetValueRep(self._live))

    @property
    def length(self) -> int | None:
        """The length of the value in bytes, None when it is undefined."""
        length: int = lib.pgKitGetLength(self._live)
        return None if length == _UNDEFINED_LENGTH else length

    @property
    def is_sequence(self) -> bool:
        """Whether the element has items."""
        return self.vr == "SQ" or lib.pgKitGetFirst(self._live) is not None

    @property
    def is_encapsulated(self) -> bool:
        """Whether it is Pixel Data in fragments."""
        return bool(lib.pgKitIsEncodedPixelData(self._live))

    @property
    def items(self) -> list[Item]:
        """The items of a sequence, as they are now; none for any other element."""
        return self._children()

    def append_item(self) -> Item:
        """Adds an empty item to a sequence."""
        if not self.is_sequence:
            raise TypeError(f"{_tag_text(self.tag)} is no sequence")
        handle = lib.pgKitAllocateDataSetNode()
        if handle is None:
            raise MemoryError
        lib.pgKitSeqAddTail(self._live, handle)
        item = self._tree.node(handle, self)
        assert isinstance(item, Item)
        return item

    def remove_item(self, item: Item) -> None:
        """Removes an item of this sequence."""
        if item not in self.items:
            raise ValueError("not an item of this sequence")
        self._remove(item)

    @property
    def raw(self) -> bytes:
        """The value as bytes, numbers in host byte order.

        What the file does not have of a value it declares reads as zeros. PgkitError for sequences
        and fragments, and for lengths that no value of this file can have.
        """
        length = self.length
        if length == 0:
            return b""
        if length is None or self.is_sequence or self.is_encapsulated:
            raise PgkitError(f"{_tag_text(self.tag)} has no value of its own")
        if length > self._tree.longest_value:
            raise PgkitError(f"{_tag_text(self.tag)} declares {length} bytes, more than its file has")
        buffer = ctypes.create_string_buffer(length + 1)
        if not lib.pgKitGetValue(self._live, buffer):
            raise PgkitError(f"the value of {_tag_text(self.tag)} cannot be read")
        return buffer.raw[:length]

    @property
    def values(self) -> list[Any]:
        """All values: str, int, float, bytes or tags; an empty one of several numbers is None."""
        return decode(self.raw, self._effective_vr, self._codec())

    @property
    def value(self) -> Value:
        """The value; a list of them when there are several, None when there is none.

        Texts are str, without padding; IS, US, SS, UL and SL are int; DS, FL and FD are float; AT
        are tags; everything else is bytes. A sequence gives the list of its items. An IS or DS
        that is no number raises ValueError: ``text`` has it.
        """
        if self.is_sequence:
            return list(self.items)
        values = self.values
        return None if not values else values[0] if len(values) == 1 else values

    @value.setter
    def value(self, value: Any) -> None:
        """Sets one value, a list of them, bytes as they are, or None for an empty value."""
        self._refuse_parts()
        if self.vr == "SQ":
            raise TypeError(f"{_tag_text(self.tag)} has items, not a value")
        assert isinstance(self._parent, Item)
        self._store(self._parent._encoded(value, self.vr))

    def _refuse_parts(self) -> None:
        if self.is_encapsulated or lib.pgKitGetFirst(self._live) is not None:
            raise TypeError(f"{_tag_text(self.tag)} has items or fragments, not a value")

    def _store(self, data: bytes) -> None:
        if not lib.pgKitSetValue(self._live, data, len(data)):
            raise MemoryError
        # An odd one is padded.
        self._tree.longest_value = max(self._tree.longest_value, len(data) + 1)

    @property
    def text(self) -> str:
        """The value of a text as one text, whatever it says."""
        return "\\".join(split_text(self.raw, self.vr, self._codec()))

    @property
    def fragments(self) -> list[bytes]:
        """Encapsulated Pixel Data as the file has it: its frames when there is an offset table, in
        which case the item headers within a frame are part of it, else its fragments."""
        found, index = [], 0
        length, offset = ctypes.c_uint32(), ctypes.c_uint32()
        while lib.pgKitGetEncodedPixelInfo(self._live, index, length, offset):
            if length.value > self._tree.longest_value:
                raise PgkitError(f"fragment {index} is longer than its file")
            buffer = ctypes.create_string_buffer(length.value + 1)
            if not lib.pgKitGetFileData(self._tree.root, buffer, offset.value, length.value):
                raise PgkitError(f"fragment {index} cannot be read")
            found.append(buffer.raw[: length.value])
            index += 1
        return found

    @property
    def _effective_vr(self) -> str:
        assert isinstance(self._parent, Item)
        return self._parent._numeric_vr(self.vr)

    def _codec(self) -> str:
        assert isinstance(self._parent, Item)
        return self._parent._codec()

    def _change_vr(self, vr: str) -> None:
        lib.pgKitSetValueRep(self._live, vr_code(vr))

    def __repr__(self) -> str:
        if self._handle is None or not self._tree.close.alive:
            return "<Element: closed>"
        return f"<Element {_tag_text(self.tag)} {self.vr} {self.name}>"


def _tag_text(tag: Tag) -> str:
    return "({:04X},{:04X})".format(*tag)


_builtin_open = open


def open(path: StrPath, *, load_below: int = _LOAD_BELOW, flags: int = 0) -> DataSet:  # noqa: A001
    """Opens a DICOM file. Raises OSError when it cannot be read, PgkitError when it is not DICOM.

    Values shorter than load_below bytes are loaded at once. flags are the library's PgOpenFlags.
    """
    root = lib.pgOpenDataSetFileEx(encoded_path(path), load_below, flags)
    if root is None:
        with _builtin_open(path, "rb"):  # says what is wrong with the file itself
            pass
        raise PgkitError(f"{path}: not a DICOM file")
    try:
        size = os.stat(path).st_size
    except OSError:  # the library also finds names in another case
        size = _size_of_file(root)
    return DataSet(root, size, is_built=False)


def _size_of_file(root: int) -> int:
    """How many bytes there are in the file that a data set was read from, up to 4 GiB."""
    byte = ctypes.create_string_buffer(1)
    size = 0
    for bit in reversed(range(32)):
        if lib.pgKitGetFileData(root, byte, size + (1 << bit) - 1, 1):
            size += 1 << bit
    return size


def new() -> DataSet:
    """A new empty data set."""
    root = lib.pgKitAllocateDataSetNode()
    if root is None:
        raise MemoryError
    return DataSet(root, 0, is_built=True)
