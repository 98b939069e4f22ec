"""Data sets as text for people."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator

from ._blocks import ENCAPSULATED, SEQUENCE
from ._errors import PgkitError

if TYPE_CHECKING:
    from ._data_set import Item
    from ._element import Element

_LONGEST_BYTES = 16
_LONGEST_TEXT = 120


def lines_of(item: Item, indent: str) -> Iterator[str]:
    """A line for each element, those of items further to the right."""
    return _flat(_parts_of_item(item, indent))


def lines_of_element(element: Element, indent: str) -> Iterator[str]:
    """The line of an element, and those of its items."""
    return _flat(_parts_of(element, indent))


def _flat(parts: Iterator[Any]) -> Iterator[str]:
    # Without recursion: items may be nested deeper than calls of Python.
    pending = [parts]
    while pending:
        for part in pending[-1]:
            if not isinstance(part, str):
                pending.append(part)
                break
            yield part
        else:
            pending.pop()


def _parts_of_item(item: Item, indent: str) -> Iterator[Any]:
    for element in item:
        yield _parts_of(element, indent)


def _parts_of(element: Element, indent: str) -> Iterator[Any]:
    """Lines, and what gives more of them."""
    group, number = element.tag
    name = element.keyword or element.name
    yield f"{indent}({group:04X},{number:04X}) {element.vr:<4} {name}: {value_text(element)}"
    if element._facts()[4] == SEQUENCE:
        for index, item in enumerate(element.items):
            yield f"{indent}  item {index}"
            yield _parts_of_item(item, indent + "    ")


def value_text(element: Element) -> str:
    """A value in a few words; control characters are escaped."""
    kind = element._facts()[4]
    if kind == SEQUENCE:
        return f"{len(element.items)} items"
    if kind == ENCAPSULATED:
        return "encapsulated"
    try:
        return _text_of(element.value)
    except ValueError:
        return _text_of(element.text)
    except PgkitError as error:
        return f"<{error}>"


def _text_of(value: Any) -> str:
    if value is None:
        return ""
    if isinstance(value, bytes) and len(value) > _LONGEST_BYTES:
        return f"{len(value)} bytes"
    if isinstance(value, (bytes, str)):
        text = repr(str(value) if isinstance(value, str) else value)
    elif isinstance(value, tuple):
        return "({:04X},{:04X})".format(*value)
    elif isinstance(value, list):
        text = "[" + ", ".join(map(_text_of, value[:_LONGEST_TEXT])) + "]"
    else:
        text = str(value)
    return text if len(text) <= _LONGEST_TEXT else f"{text[:_LONGEST_TEXT]}... ({len(text)} long)"
