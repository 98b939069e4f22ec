"""Data sets, their elements, and the items that elements have: each holds the next."""

from __future__ import annotations

import itertools
import json
import os
import tempfile
import weakref
from typing import Any, BinaryIO, Callable, Dict, Iterator, List, Optional, Tuple, Union

from ._bases import ItemBase
from ._blocks import BYTES, SEQUENCE, TEXT, Record, count_of, records_of, value_in, values_in
from ._copying import (copy_elements, detached_level, equal_levels, level_of_state, remove_element,
                       state_of)
from ._dictionary import (UNKNOWN_VR, Tag, TagLike, find_tag, tag_number, tag_of_attribute,
                          value_representation, vr_code, vr_name)
from ._element import ElementBase, MultiValue, encoded_for
from ._errors import PgkitError
from ._json import json_of
from ._library import Report, StrPath, encoded_path, lib
from ._pixels import frames_of, pixel_array
from ._printing import lines_of
from ._reports import OpenReport
from ._saving import encoding_of_built, save_to, saved_bytes
from ._sequence import Sequence, copies_of
from ._stored import tag_text
from ._tree import Level, chain, level_of, new_level
from ._values import Value

_builtin_open = open
_first_of = lib.pgKitGetFirst


class Element(ElementBase):
    """A data element. Its ``value`` can be read and set."""

    __slots__ = ()

    @property
    def value(self) -> Value:
        """The value; a list of them when there are several, None when there is none.

        Texts are str, without padding, and PN a PersonName, which is one; IS, US, SS, UL, SL, UV
        and SV are int; DS, FL and FD are float; AT are tags; everything else is bytes. Changing the
        list changes the element. A sequence gives a Sequence of its items. An IS or DS that is no
        number raises ValueError: ``text`` has it.
        """
        level, block, record = self._level, self._block, self._record
        if block is level._block and level._stale is None:  # nothing has changed
            try:
                value = value_in(block, record)
                if value is not None:
                    return value  # type: ignore[no-any-return]
                values = (values_in(block, record, level.numeric_vr(vr_name(record[2])))
                          if record[4] in (TEXT, BYTES) else None)
            except ValueError:
                raise self._no_number() from None
            if values is not None:
                if len(values) > 1:
                    return MultiValue(self, values)
                return values[0] if values else None
            if record[4] == SEQUENCE:
                return Sequence(self, item_of)  # type: ignore[return-value]
        if self.is_sequence:
            return self.sequence  # type: ignore[return-value]
        values = self.values
        if len(values) > 1:
            return MultiValue(self, values)
        return values[0] if values else None

    @value.setter
    def value(self, value: Any) -> None:
        """Sets one value, a list of them, bytes as they are, or None for an empty value."""
        if self.vr == "SQ":
            self.sequence.assign(value)
            return
        self._refuse_parts()
        self._store(encoded_for(self._level, self.tag, value, self.vr))

    @property
    def sequence(self) -> Sequence[Item]:
        """The items as a list that can be changed. TypeError for what is no sequence."""
        if not self.is_sequence:
            raise TypeError(f"{tag_text(self.tag)} is no sequence")
        return Sequence(self, item_of)

    # ---- Items ----------------------------------------------------------------------------------

    @property
    def items(self) -> List[Item]:
        """The items of a sequence, as they are now; none for any other element."""
        level = self._level
        return [item_of(level, handle) for handle in chain(_first_of(self._live))]

    def append_item(self) -> Item:
        """Adds an empty item to a sequence."""
        if not self.is_sequence:
            raise TypeError(f"{tag_text(self.tag)} is no sequence")
        handle = lib.pgKitAllocateDataSetNode()
        if handle is None:
            raise MemoryError
        lib.pgKitSeqAddTail(self._live, handle)
        self._changed()
        return item_of(self._level, handle)

    def remove_item(self, item: Item) -> None:
        """Removes an item of this sequence."""
        handle = item._level.live
        if handle not in chain(lib.pgKitGetFirst(self._live)):
            raise ValueError("not an item of this sequence")
        self._remove_handle(handle)


def element_of(level: Level, block: bytes, record: Record) -> Element:
    """The object that stands for an element: the same while somebody has it."""
    if level.elements is None:
        level.elements = {}
    reference = level.elements.get(record[0])
    if reference is not None:
        known = reference()
        if known is not None:
            return known  # type: ignore[no-any-return]
    element = Element(level, block, record)
    level.elements[record[0]] = weakref.ref(element)
    return element


class Item(ItemBase):
    """An item of a sequence, or a whole data set: elements by tag, in the order of the file.

    Keys are tags, as ``(0x0010, 0x0010)`` or ``0x00100010``, or names: keywords of today
    ("PatientName") and those of the built-in dictionary ("PatientsName"). What a name of either kind
    stands for is an attribute, too: ``item.PatientName`` is the value, and can be set and deleted.
    """

    __slots__ = ("__weakref__",)

    _level: Level

    def __init__(self) -> None:
        raise TypeError("items are made by append_item, data sets by open, new and from_json")

    # ---- Elements by key ------------------------------------------------------------------------

    def __getitem__(self, key: TagLike) -> Element:
        """The first element of this tag; KeyError when there is none."""
        found = self.find(key)
        if found is None:
            raise KeyError(key)
        return found

    def find(self, key: TagLike) -> Optional[Element]:
        """The first element of this tag, or None. Sequences are not searched."""
        level = self._level
        found = level.find(tag_number(key))
        return None if found is None else element_of(level, *found)

    def get(self, key: TagLike, default: Any = None) -> Any:
        """The value of the first element of this tag, or the default."""
        try:
            found = self.find(key)
        except KeyError:
            return default
        return default if found is None else found.value

    def __contains__(self, key: object) -> bool:
        try:
            return self._level.find(tag_number(key)) is not None  # type: ignore[arg-type]
        except (KeyError, TypeError):
            return False

    def __setitem__(self, key: TagLike, value: Any) -> None:
        self.set(key, value.value if isinstance(value, Element) else value,
                 value.vr if isinstance(value, Element) else None)

    def __delitem__(self, key: TagLike) -> None:
        """Removes the first element of this tag; KeyError when there is none."""
        element = self[key]
        remove_element(self._level, element._live, element._record[1])

    def pop(self, key: TagLike, *default: Any) -> Any:
        """Removes the first element of this tag and returns its value, or the default."""
        found = self.find(key)
        if found is None:
            if default:
                return default[0]
            raise KeyError(key)
        value = found.value
        if found.is_sequence:
            value = [detached(item) for item in found.items]
        del self[key]
        return value

    # ---- Values as attributes -------------------------------------------------------------------

    def _value_of(self, name: str) -> Any:
        """The value of an attribute, where it takes more than to look at the block."""
        tag = tag_of_attribute(name)
        if tag is None:
            raise AttributeError(f"{type(self).__name__} has no attribute {name!r}")
        level = self._level
        found = level.find(tag)
        if found is None:
            raise AttributeError(f"the data set has no {name}")
        try:
            value = value_in(*found)
        except ValueError:  # the element tells where
            value = None
        if value is None:
            return element_of(level, *found).value
        level.values[name] = value
        return value

    def __setattr__(self, name: str, value: Any) -> None:
        tag = tag_of_attribute(name)
        if tag is None:
            raise AttributeError(f"no element is called {name!r}")
        self.set(tag, value)

    def __delattr__(self, name: str) -> None:
        tag = tag_of_attribute(name)
        if tag is None or tag not in self:
            raise AttributeError(f"the data set has no {name}")
        del self[tag]

    def __dir__(self) -> List[str]:
        names = [element.keyword for element in self] if self._level.is_live else []
        return sorted({*super().__dir__(), *filter(None, names)})

    # ---- All elements ---------------------------------------------------------------------------

    def __iter__(self) -> Iterator[Element]:
        """All elements, as they are now."""
        level = self._level
        block = level.block()
        return iter([Element(level, block, record) for record in records_of(block)])

    def __len__(self) -> int:
        return count_of(self._level.block())

    def __bool__(self) -> bool:
        return True

    def keys(self) -> List[Tag]:
        """The tags, in the order of the file."""
        return [(record[1] >> 16, record[1] & 0xFFFF) for record in self._level.records()]

    def values(self) -> List[Element]:
        """The elements, in the order of the file."""
        return list(self)

    def items(self) -> List[Tuple[Tag, Element]]:
        """Tags and elements, in the order of the file."""
        return list(zip(self.keys(), self))

    def walk(self) -> Iterator[Element]:
        """All elements, those of items behind their sequence."""
        pending = [iter(self)]
        while pending:
            for element in pending[-1]:
                yield element
                if element._record[4] == SEQUENCE and element._is_live:
                    pending.append(itertools.chain.from_iterable(element.items))
                    break
            else:
                pending.pop()

    # ---- Changes --------------------------------------------------------------------------------

    def set(self, key: TagLike, value: Any, vr: Optional[str] = None) -> Element:
        """Sets the value of an element, which is inserted in tag order when there is none.

        The value representation is that of the element, of the dictionary, or the given one;
        ValueError when a new element has none at all. A sequence takes a list of items or data sets,
        which are copied.
        """
        tag = find_tag(key)
        found = self.find(tag)
        new_vr = self._vr_to_set(tag, found, vr)
        # Everything that can be wrong, before the tree changes.
        if new_vr == "SQ":
            return self._set_items(tag, found, value)
        if found is not None:
            found._refuse_parts()
        data = encoded_for(self._level, tag, value, new_vr)
        if found is None:
            found = self._insert_empty(tag)
        if vr is not None:
            found._change_vr(vr)
        found._store(data)
        return found

    def _set_items(self, tag: Tag, found: Optional[Element], value: Any) -> Element:
        copies = copies_of(value)
        if found is not None and not found.is_sequence:
            found._refuse_parts()
            found._store(b"")
        element = self.insert_sequence(tag) if found is None else found
        if element.vr != "SQ":
            element._change_vr("SQ")
        element.sequence._become(copies)
        return element

    def _vr_to_set(self, tag: Tag, found: Optional[Element], wanted: Optional[str]) -> str:
        if wanted is not None:
            return vr_name(vr_code(wanted))
        if found is not None:
            return found.vr
        known = value_representation(tag)
        if known == UNKNOWN_VR:
            raise ValueError(f"the dictionary does not know {tag_text(tag)}: give its vr")
        return known

    def _insert_empty(self, tag: Tag) -> Element:
        level = self._level
        handle = lib.pgKitInsertNodeWithGroupElement(level.live, *tag, None, 0)
        if handle is None:
            raise PgkitError(f"{tag_text(tag)} cannot be inserted")
        number = tag_number(tag)
        level.changed(number)
        found = level.find(number)
        assert found is not None and found[1][0] == handle
        return element_of(level, *found)

    def insert_sequence(self, key: TagLike) -> Element:
        """A new sequence without items. ValueError when there is an element of this tag."""
        tag = find_tag(key)
        if self.find(tag) is not None:
            raise ValueError(f"{tag_text(tag)} is there already")
        known = value_representation(tag)
        if known not in ("SQ", UNKNOWN_VR):
            raise TypeError(f"{tag_text(tag)} is {known}, not a sequence")
        element = self._insert_empty(tag)
        element._change_vr("SQ")
        return element

    def update(self, other: Item) -> None:
        """Copies all elements of another data set or item; those of the same tags are replaced."""
        copy_elements(other._level, self._level)

    # ---- JSON -----------------------------------------------------------------------------------

    def to_json(self, *, bulk_limit: Optional[int] = None, source_uri: str = "") -> str:
        """DICOM JSON. Values of more than bulk_limit bytes become a BulkDataURI, the source's URI with
        offset and length in its file; encapsulated Pixel Data always do. None: all are inline."""
        return json_of(self._level, bulk_limit, source_uri)

    def to_json_dict(self, *, bulk_limit: Optional[int] = None, source_uri: str = ""
                     ) -> Dict[str, Any]:
        """The same as a dict."""
        found: Dict[str, Any] = json.loads(self.to_json(bulk_limit=bulk_limit,
                                                        source_uri=source_uri))
        return found

    # ---- Copies, comparison, text ---------------------------------------------------------------

    def copy(self) -> DataSet:
        """A data set of its own with copies of all elements, in memory."""
        return detached(self)

    def __copy__(self) -> DataSet:
        return self.copy()

    def __deepcopy__(self, _memo: Any) -> DataSet:
        return self.copy()

    def __reduce__(self) -> Any:
        return self.copy().__reduce__()

    def __eq__(self, other: object) -> bool:
        """Whether the other one has the same elements with the same values."""
        if self is other:
            return True
        if not isinstance(other, Item):
            return NotImplemented
        return equal_levels(self._level, other._level)

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        if not self._level.is_live:
            return f"<{type(self).__name__}: closed>"
        return f"<{type(self).__name__}: {len(self)} elements>"

    def __str__(self) -> str:
        if not self._level.is_live:
            return repr(self)
        return "\n".join(lines_of(self._level, ""))


# Assigning the attribute itself would set an element.
_set_level: Callable[[Item, Level], None] = vars(ItemBase)["_level"].__set__


def item_of(parent: Level, handle: int) -> Item:
    """The object that stands for an item of a sequence in a level."""
    level = level_of(parent, handle)
    known = level.item() if level.item is not None else None
    if known is None:
        known = Item.__new__(Item)
        _set_level(known, level)
        level.item = weakref.ref(known)
    return known


class DataSet(Item):
    """A data set: the root of a tree, read from a file or built in memory.

    A context manager: it is closed at the end of ``with``. Values that were not asked for yet are
    still in the file, which stays open until then.
    """

    __slots__ = ("_report",)

    _report: Optional[Report]

    # ---- Life -----------------------------------------------------------------------------------

    def close(self) -> None:
        """Frees the tree and closes its file. Closing twice is allowed."""
        self._level.forget()
        self._level.tree.close()

    @property
    def closed(self) -> bool:
        """Whether close was called."""
        return self._level.tree.root is None

    @property
    def report(self) -> Optional[OpenReport]:
        """What was found when the data set was opened; None for one that was built in memory."""
        return None if self._report is None else OpenReport.of(self._report)

    def __enter__(self) -> DataSet:
        self._level.live  # noqa: B018
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __copy__(self) -> DataSet:
        return self.copy()

    def copy(self) -> DataSet:
        """A data set of its own with copies of all elements, in memory."""
        return detached(self)

    def __reduce__(self) -> Any:
        return from_state, (state_of(self._level),)

    # ---- Saving ---------------------------------------------------------------------------------

    def save(self, path: Union[StrPath, BinaryIO], *, encoding: Optional[str] = None,
             part10: bool = True, undefined_lengths: bool = False) -> None:
        """Saves as a file, which may be the one that the data set was read from.

        encoding is "explicit", "implicit" (both little endian) or "big endian"; None keeps the
        one of the file (then the other options do not count); for a data set built in memory it is
        that of its (0002,0010), else "explicit". Part 10 files have the File Meta Information, which
        is completed when it has no transfer syntax. Values of 65,535 bytes and more get the VR UN
        where theirs has no room for such a length. The new file takes the place of the former one as
        a whole, when it is complete. Raises SaveError; the former file is as it was then. What has
        a ``write`` takes the bytes of the file.
        """
        save_to(self._level, path, self._encoding(encoding), part10, undefined_lengths)

    save_as = save

    def to_bytes(self, *, encoding: Optional[str] = None, part10: bool = True,
                 undefined_lengths: bool = False) -> bytes:
        """The bytes of the file that ``save`` would write."""
        return saved_bytes(self._level, self._encoding(encoding), part10, undefined_lengths)

    def _encoding(self, wanted: Optional[str]) -> Optional[str]:
        is_built = self._report is None
        return encoding_of_built(self._level) if wanted is None and is_built else wanted

    def dump(self) -> str:
        """The text form of the library, a line for each element."""
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "dump.txt")
            if not lib.pgKitDumpToFile(self._level.live, encoded_path(path)):
                raise PgkitError("the data set cannot be dumped")
            with _builtin_open(path, encoding="latin-1") as file:
                return file.read()

    # ---- Pixels ---------------------------------------------------------------------------------

    @property
    def pixel_array(self) -> Any:
        """The pixels as an array of numpy: native, or of RLE Lossless.

        The shape is (rows, columns), with the samples of a pixel behind and the frames in front
        where there are several. PgkitError for other encodings and for attributes that do not fit.
        """
        return pixel_array(self._level)

    def frames(self) -> Iterator[bytes]:
        """The bytes of each frame of encapsulated Pixel Data, one after the other.

        PgkitError when Pixel Data are not encapsulated, or nobody can tell which fragments make a
        frame."""
        return frames_of(self._level)


_set_report: Callable[[DataSet, Optional[Report]], None] = vars(DataSet)["_report"].__set__


def data_set_of(level: Level, report: Optional[Report]) -> DataSet:
    """The object that stands for a tree, by its root; the report is None for one that was built."""
    data_set = DataSet.__new__(DataSet)
    _set_level(data_set, level)
    _set_report(data_set, report)
    return data_set


def new() -> DataSet:
    """A new empty data set."""
    return data_set_of(new_level(), None)


def detached(item: Item) -> DataSet:
    """A data set of its own with copies of all elements."""
    return data_set_of(detached_level(item._level), None)


def from_state(state: List[Any]) -> DataSet:
    """What a pickled data set becomes."""
    return data_set_of(level_of_state(state), None)
