"""What levels and items have in common with their counterparts in C++.

Values asked for as attributes (``ds.PatientName``) are found here. speed/speed.cpp has the same classes
in C++, several times as fast. It is optional: its build lies in the package or beside the library; the
environment variable ``PGKIT_PURE_PYTHON`` leaves it alone.
"""

from __future__ import annotations

import importlib.machinery
import importlib.util
import os
import pathlib
from typing import TYPE_CHECKING, Any, Dict, Optional, Set

from ._blocks import FIRST_TAG, count_in, kinds_of_values, record_at, value_in
from ._dictionary import attributes
from ._library import library_path
from ._names import PersonName

# Of what speed/speed.cpp and this file agree upon.
_INTERFACE = 1
_FILE = "_speed.pyd" if os.name == "nt" else "_speed.abi3.so"


class LevelBase:
    """What is known of the elements that stand beside each other."""

    __slots__ = ("values", "_block", "_stale")

    # Decoded values by name; none that could be changed.
    values: Dict[str, Any]
    # What the library says of the level, None when that was not asked.
    _block: Optional[bytes]
    # Tags whose elements were changed since then, None when there are none.
    _stale: Optional[Set[int]]

    def block(self) -> bytes:
        """All elements as they are now."""
        raise NotImplementedError


class ItemBase:
    """Gives values as attributes: what has exactly one, straight from the block of the level."""

    __slots__ = ("_level",)

    _level: Any

    def __getattr__(self, name: str) -> Any:
        level: LevelBase = self._level
        value = level.values.get(name)
        if value is not None:
            return value
        if name in attributes:
            block = level._block or level.block()
            if level._stale is None:
                (count,) = count_in(block)
                end = FIRST_TAG + 4 * count
                at = block.find(attributes[name], FIRST_TAG, end)
                if at < 0:
                    raise AttributeError(f"the data set has no {name}")
                if not at & 3:  # else it is four bytes of two tags
                    try:
                        value = value_in(block, record_at(block, (end + 7 & ~7) + 8 * (at - FIRST_TAG)))
                    except ValueError:
                        pass
                    if value is not None:
                        level.values[name] = value
                        return value
        return self._value_of(name)

    def _value_of(self, name: str) -> Any:
        """The same, where it takes more than to look at the block."""
        raise NotImplementedError


def _native() -> Any:
    """The module in C++; None where there is no build of it."""
    if os.environ.get("PGKIT_PURE_PYTHON"):
        return None
    for folder in (pathlib.Path(__file__).parent, pathlib.Path(library_path()).parent):
        file = folder / _FILE
        if not folder.is_absolute() or not file.is_file():
            continue
        loader = importlib.machinery.ExtensionFileLoader("pgkit._speed", str(file))
        spec = importlib.util.spec_from_loader("pgkit._speed", loader)
        try:
            assert spec is not None
            module: Any = importlib.util.module_from_spec(spec)
            loader.exec_module(module)
        except ImportError:  # a Python without the stable interface, or one of another kind
            continue
        if module.INTERFACE == _INTERFACE:
            module.set_up(attributes, PersonName, kinds_of_values())
            return module
    return None


is_native = False
if not TYPE_CHECKING:
    _module = _native()
    if _module is not None:
        LevelBase, ItemBase, is_native = _module.LevelBase, _module.ItemBase, True
