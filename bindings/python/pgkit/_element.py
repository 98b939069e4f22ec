"""Data elements and their values, but for items."""

from __future__ import annotations

import datetime
import decimal
from typing import Any, Callable, Iterable, List, NoReturn, Optional, TypeVar, Union

from . import _values
from ._blocks import ENCAPSULATED, SEQUENCE, Record
from ._copying import equal_elements
from ._dictionary import Tag, keyword, name_of, vr_code, vr_name
from ._errors import ClosedError
from ._library import lib
from ._pixels import fragments_of
from ._printing import lines_of_element, value_text
from ._stored import UNDEFINED_LENGTH, bytes_of, tag_text, text_of, values_of
from ._times import date_of, date_time_of, time_of
from ._tree import Found, Level
from ._values import encode

_Moment = TypeVar("_Moment")


class ElementBase:
    """What an element is, without the items that it may have."""

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
        if not isinstance(other, ElementBase):
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

    def __init__(self, element: Any, values: Iterable[Any]) -> None:
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
