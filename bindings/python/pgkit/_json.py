"""Data sets as DICOM JSON, and back."""

from __future__ import annotations

import ctypes
import json
from typing import Any, Dict, Optional, Union

from ._errors import PgkitError
from ._library import JsonPlace, JsonReadOptions, JsonWriteOptions, lib
from ._tree import IN_MEMORY, Level, root_level

_ALL_INLINE = 0xFFFFFFFFFFFFFFFF
_NO_URI = -6


class JsonError(PgkitError, ValueError):
    """What is no DICOM JSON; ``offset`` and ``path`` say where."""

    def __init__(self, reason: str, offset: int, path: str) -> None:
        place = f" in {path}" if path else ""
        super().__init__(f"{reason} at offset {offset}{place}")
        self.offset = offset
        self.path = path


def _reason(error: int) -> str:
    buffer = ctypes.create_string_buffer(200)
    lib.pgxJsonErrorText(error, buffer, len(buffer))
    return buffer.value.decode("utf-8", "replace")


def json_of(level: Level, bulk_limit: Optional[int], source_uri: str) -> str:
    """The JSON of a data set or item."""
    limit = _ALL_INLINE if bulk_limit is None else bulk_limit
    if limit < 0:
        raise ValueError("bulk_limit is a number of bytes")
    uri = source_uri.encode()
    if b"\0" in uri:
        raise ValueError("a URI has no NUL")
    options = JsonWriteOptions(ctypes.sizeof(JsonWriteOptions), limit, uri or None, None, None,
                               level.inherited())
    size = 0x10000
    while True:
        buffer = ctypes.create_string_buffer(size)
        length = lib.pgxGetJson(level.live, options, buffer, size)
        if length < size:
            break
        size = length + 1
    if length == -1:
        raise MemoryError
    if length == _NO_URI:
        raise PgkitError("encapsulated Pixel Data in memory are in no file that a URI could name")
    if length < 0:
        raise PgkitError(_reason(length))
    return buffer.raw[:length].decode()


def level_of_json(source: Union[str, bytes, Dict[str, Any]]) -> Level:
    """The data set in memory of a JSON text, or of what ``json.loads`` makes of one."""
    if isinstance(source, dict):
        source = json.dumps(source, ensure_ascii=False)
    if not isinstance(source, (str, bytes)):
        raise TypeError(f"JSON is a text or a dict, not {type(source).__name__}")
    data = source.encode("utf-8", "surrogatepass") if isinstance(source, str) else source
    options = JsonReadOptions(ctypes.sizeof(JsonReadOptions), 0, 0, None, None)
    place = JsonPlace(ctypes.sizeof(JsonPlace))
    root = lib.pgxParseJson(data, len(data), options, place)
    if root is None:
        if place.error == -1:
            raise MemoryError
        raise JsonError(_reason(place.error), place.offset, place.path.decode("utf-8", "replace"))
    return root_level(root, IN_MEMORY)
