"""Data sets as text for people."""

from __future__ import annotations

from typing import Any, Iterator

from ._blocks import ENCAPSULATED, SEQUENCE, Record, records_of
from ._dictionary import keyword, name_of, vr_name
from ._errors import PgkitError
from ._library import lib
from ._stored import tag_text, text_of, value_of
from ._tree import Level, chain, level_of

_LONGEST_BYTES = 16
_LONGEST_TEXT = 120


def lines_of(level: Level, indent: str) -> Iterator[str]:
    """A line for each element of a data set or item, those of items further to the right."""
    return _flat(_parts_of_level(level, indent))


def lines_of_element(level: Level, block: bytes, record: Record, indent: str) -> Iterator[str]:
    """The line of an element, and those of its items."""
    return _flat(_parts_of(level, block, record, indent))


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


def _parts_of_level(level: Level, indent: str) -> Iterator[Any]:
    block = level.block()
    for record in records_of(block):
        yield _parts_of(level, block, record, indent)


def _parts_of(level: Level, block: bytes, record: Record, indent: str) -> Iterator[Any]:
    """Lines, and what gives more of them."""
    tag = record[1] >> 16, record[1] & 0xFFFF
    name = keyword(tag) or name_of(tag, record[0])
    value = value_text(level, block, record)
    yield f"{indent}{tag_text(tag)} {vr_name(record[2]):<4} {name}: {value}"
    if record[4] == SEQUENCE:
        for index, handle in enumerate(chain(lib.pgKitGetFirst(record[0]))):
            yield f"{indent}  item {index}"
            yield _parts_of_level(level_of(level, handle), indent + "    ")


def value_text(level: Level, block: bytes, record: Record) -> str:
    """A value in a few words; control characters are escaped."""
    if record[4] == SEQUENCE:
        return f"{sum(1 for _ in chain(lib.pgKitGetFirst(record[0])))} items"
    if record[4] == ENCAPSULATED:
        return "encapsulated"
    try:
        return _text_of(value_of(level, block, record))
    except ValueError:
        return _text_of(text_of(level, block, record))
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
        return tag_text((value[0], value[1]))
    elif isinstance(value, list):
        text = "[" + ", ".join(map(_text_of, value[:_LONGEST_TEXT])) + "]"
    else:
        text = str(value)
    return text if len(text) <= _LONGEST_TEXT else f"{text[:_LONGEST_TEXT]}... ({len(text)} long)"
