"""Data elements and their values."""

from __future__ import annotations

import datetime
import decimal
import weakref
from typing import (TYPE_CHECKING, Any, Callable, Iterable, List, NoReturn, Optional, TypeVar,
                    Union)

from . import _values
from ._blocks import BYTES, ENCAPSULATED, SEQUENCE, TEXT, Record, value_in, values_in
from ._copying import equal_elements
from ._dictionary import Tag, keyword, name_of, vr_code, vr_name
from ._errors import ClosedError
from ._library import lib
from ._pixels import fragments_of
from ._printing import lines_of_element, value_text
from ._stored import UNDEFINED_LENGTH, bytes_of, tag_text, text_of, values_of
from ._times import date_of, date_time_of, time_of
from ._tree import Found, Level, chain
from ._values import Value, encode

if TYPE_CHECKING:
    from ._data_set import Item
    from ._sequence import Sequence

_Moment = TypeVar("_Moment")

_first_of = lib.pgKitGetFirst

# The modules of items and sequences, which need this one, put them here.
item_of: Callable[[Level, int], Item]
sequence_of: Callable[[Element], Sequence]


class Element:
    """A data element. Its ``value`` can be read and set."""

    __slots__ = ("_level", "_block", "_record", "_removals", "__weakref__")

    def __init__(self, level: Level, block: bytes, record: Record) -> None:
        self._level = level
        self._block = block
        self._record = record
        self._removals = level.removals

    def __reduce__(self) -> NoReturn:
        raise TypeError("an Element belongs to its data set: it cannot be copied or pickled")

    @property
    def _is_live(self) -> bool:
        level = self._level
        return level.is_live and not level.was_removed(self._record[0], self._removals)

    @property
    def _live(self) -> int:
        if not self._is_live:
            raise ClosedError()
        return self._record[0]

    def _now(self) -> Found:
        """What the library says of the element."""
        level = self._level
        if level.is_current(self._block, self._record[1]):
            return self._block, self._record
        handle = self._live
        found = level.find(self._record[1])
        if found is None or found[1][0] != handle:
            found = level.find_handle(handle)  # not the first one of its tag
        self._block, self._record = found
        return found

    def _facts(self) -> Record:
        self._live  # noqa: B018
        return self._now()[1]

    # ---- What it is -----------------------------------------------------------------------------

    @property
    def tag(self) -> Tag:
        """Group and element number."""
        self._live  # noqa: B018
        number = self._record[1]
        return number >> 16, number & 0xFFFF

    @property
    def name(self) -> str:
        """The dictionary's name, of a private element by its creator; "<Unknown Tag>" when there is
        none."""
        return name_of(self.tag, self._live)

    @property
    def keyword(self) -> str:
        """The keyword of the tag in today's standard, empty when there is none."""
        return keyword(self.tag)

    @property
    def vr(self) -> str:
        """The value representation ("PN"); "USSS" and "OWOB" where a file leaves it open."""
        return vr_name(self._facts()[2])

    @property
    def length(self) -> Optional[int]:
        """The length of the value in bytes, None when it is undefined."""
        length = self._facts()[3]
        return None if length == UNDEFINED_LENGTH else length

    @property
    def is_sequence(self) -> bool:
        """Whether the element has items."""
        return self._facts()[4] == SEQUENCE

    @property
    def is_encapsulated(self) -> bool:
        """Whether it is Pixel Data in fragments."""
        return self._facts()[4] == ENCAPSULATED

    @property
    def is_private(self) -> bool:
        """Whether its group is odd."""
        return self.tag[0] % 2 == 1

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

    def _remove_handle(self, handle: int) -> None:
        self._level.tree.cut_off(handle)
        lib.pgKitRemoveNode(self._live, handle)
        self._changed()

    def _changed(self) -> None:
        self._level.changed(self._record[1])

    # ---- Values ---------------------------------------------------------------------------------

    @property
    def raw(self) -> bytes:
        """The value as bytes, numbers in host byte order.

        What the file does not have of a value it declares reads as zeros. PgkitError for sequences
        and fragments, and for lengths that no value of this file can have.
        """
        self._live  # noqa: B018
        return bytes_of(self._level, *self._now())

    @property
    def values(self) -> List[Any]:
        """All values: str, int, float, bytes or tags; an empty one of several numbers is None."""
        self._live  # noqa: B018
        return values_of(self._level, *self._now())

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
                return sequence_of(self)  # type: ignore[return-value]
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
    def sequence(self) -> Sequence:
        """The items as a list that can be changed. TypeError for what is no sequence."""
        if not self.is_sequence:
            raise TypeError(f"{tag_text(self.tag)} is no sequence")
        return sequence_of(self)

    def _no_number(self) -> ValueError:
        return ValueError(f"{tag_text(self.tag)} is not {self.vr}: {self.text!r}")

    def _refuse_parts(self) -> None:
        if self.is_encapsulated or lib.pgKitGetFirst(self._live) is not None:
            raise TypeError(f"{tag_text(self.tag)} has items or fragments, not a value")

    def _store(self, data: bytes) -> None:
        is_stored = lib.pgKitSetValue(self._live, data, len(data))
        self._changed()
        if not is_stored:
            raise MemoryError
        # An odd one is padded.
        self._level.tree.note_length(len(data) + 1)

    def _change_vr(self, vr: str) -> None:
        lib.pgKitSetValueRep(self._live, vr_code(vr))
        self._changed()

    @property
    def text(self) -> str:
        """The value of a text as one text, whatever it says."""
        self._live  # noqa: B018
        return text_of(self._level, *self._now())

    # ---- On request -----------------------------------------------------------------------------

    @property
    def date(self) -> Union[None, datetime.date, List[Optional[datetime.date]]]:
        """The value of a DA as a date; a list when there are several."""
        return self._converted("DA", date_of)

    @property
    def time(self) -> Union[None, datetime.time, List[Optional[datetime.time]]]:
        """The value of a TM as a time; a list when there are several."""
        return self._converted("TM", time_of)

    @property
    def datetime(self) -> Union[None, datetime.datetime, List[Optional[datetime.datetime]]]:
        """The value of a DT as a datetime; a list when there are several."""
        return self._converted("DT", date_time_of)

    @property
    def decimal(self) -> Union[None, decimal.Decimal, List[Optional[decimal.Decimal]]]:
        """The value of a DS exactly as it is written; a list when there are several."""
        return self._converted("DS", decimal.Decimal)

    def _converted(self, vr: str, convert: Callable[[str], _Moment]
                   ) -> Union[None, _Moment, List[Optional[_Moment]]]:
        if self.vr != vr:
            raise TypeError(f"{tag_text(self.tag)} is {self.vr}, not {vr}")
        texts = self.text.split("\\")
        try:
            found = [convert(text.strip(" ")) if text.strip(" ") else None for text in texts]
        except decimal.InvalidOperation:
            raise ValueError(f"not DS: {self.text!r}") from None
        return found if len(found) > 1 else found[0]

    # ---- Fragments ------------------------------------------------------------------------------

    @property
    def fragments(self) -> List[bytes]:
        """Encapsulated Pixel Data as the file has it: its frames when there is an offset table, in
        which case the item headers within a frame are part of it, else its fragments."""
        self._live  # noqa: B018
        return fragments_of(self._level, self._live)

    # ---- Comparison and text --------------------------------------------------------------------

    def __eq__(self, other: object) -> bool:
        """Whether tag, VR and value are the same."""
        if self is other:
            return True
        if not isinstance(other, Element):
            return NotImplemented
        self._live, other._live  # noqa: B018
        return equal_elements(self._level, self._now(), other._level, other._now())

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        if not self._is_live:
            return "<Element: closed>"
        value = value_text(self._level, *self._now())
        return f"<Element {tag_text(self.tag)} {self.vr} {self.keyword or self.name}: {value}>"

    def __str__(self) -> str:
        self._live  # noqa: B018
        return "\n".join(lines_of_element(self._level, *self._now(), ""))


class MultiValue(List[Any]):
    """Several values of an element: a list. Changing it changes the element, or raises and leaves
    both as they are."""

    def __init__(self, element: Element, values: Iterable[Any]) -> None:
        super().__init__(values)
        self._element = element

    def __reduce__(self) -> Any:
        return list, (list(self),)

    def _become(self, values: List[Any]) -> None:
        self._element.value = values
        super().__init__(values)

    def _edit(self, change: Callable[[List[Any]], Any]) -> Any:
        values = list(self)
        result = change(values)
        self._become(values)
        return result

    def append(self, value: Any) -> None:
        self._edit(lambda values: values.append(value))

    def extend(self, more: Iterable[Any]) -> None:
        self._edit(lambda values: values.extend(more))

    def insert(self, index: Any, value: Any) -> None:
        self._edit(lambda values: values.insert(index, value))

    def remove(self, value: Any) -> None:
        self._edit(lambda values: values.remove(value))

    def pop(self, index: Any = -1) -> Any:
        return self._edit(lambda values: values.pop(index))

    def clear(self) -> None:
        self._become([])

    def sort(self, **options: Any) -> None:
        self._edit(lambda values: values.sort(**options))

    def reverse(self) -> None:
        self._edit(lambda values: values.reverse())

    def __setitem__(self, index: Any, value: Any) -> None:
        self._edit(lambda values: values.__setitem__(index, value))

    def __delitem__(self, index: Any) -> None:
        self._edit(lambda values: values.__delitem__(index))

    def __iadd__(self, more: Iterable[Any]) -> MultiValue:  # type: ignore[misc]
        self.extend(more)
        return self

    def __imul__(self, count: Any) -> MultiValue:  # type: ignore[misc]
        self._become(list(self) * count)
        return self


def encoded_for(level: Level, tag: Tag, value: Any, vr: str) -> bytes:
    """The bytes of a value for an element of a level."""
    try:
        data = encode(value, level.numeric_vr(vr), vr_code(vr) if vr in _values.TEXTS else 0,
                      b"" if _is_ascii(value) else level.character_set_text())
    except UnicodeEncodeError as error:
        raise UnicodeEncodeError(error.encoding, error.object, error.start, error.end,
                                 f"{tag_text(tag)}: {error.reason}") from None
    except (TypeError, ValueError) as error:
        raise type(error)(f"{tag_text(tag)}: {error}") from None
    if len(data) >= UNDEFINED_LENGTH:
        raise ValueError("values are shorter than 4 GiB")
    return data


def _is_ascii(value: Any) -> bool:
    return isinstance(value, str) and value.isascii() and "\x1b" not in value


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
