"""Files that are written beside the former one and then moved into its place."""

from __future__ import annotations

import contextlib
import itertools
import os
import stat
from typing import Callable

from ._library import StrPath

_CANNOT_CREATE = 1


def write_whole(path: StrPath, write: Callable[[str], int]) -> int:
    """Writes a file, which is there as a whole or as it was before: the result of write, which gets
    the path to write to and returns 0 for success.

    A link is followed. What is no regular file, such as a device, is written where it is.
    """
    # The library takes a backslash for a separator everywhere.
    target = os.fspath(path).replace("\\", "/")
    if os.path.islink(target) and os.path.exists(target):
        target = os.path.realpath(target)
    try:
        former = os.stat(target)
    except FileNotFoundError:
        former = None
    except (OSError, ValueError):
        return write(target)
    if former is not None and not stat.S_ISREG(former.st_mode):
        return write(target)
    if former is not None and not os.access(target, os.W_OK):
        return _CANNOT_CREATE
    try:
        beside = _create_beside(target, 0o666 if former is None else 0o600)
    except OSError:
        return _CANNOT_CREATE
    try:
        result = write(beside)
        if result == 0:
            result = _put_in_place(target, beside, former, write)
        return result
    finally:
        with contextlib.suppress(OSError):
            os.unlink(beside)  # unless it is in place


def _create_beside(target: str, mode: int) -> str:
    for number in itertools.count():
        candidate = f"{target}.new{number}"
        with contextlib.suppress(FileExistsError):
            os.close(os.open(candidate, os.O_WRONLY | os.O_CREAT | os.O_EXCL, mode))
            return candidate
    raise AssertionError


def _put_in_place(target: str, beside: str, former: os.stat_result | None,
                  write: Callable[[str], int]) -> int:
    try:
        descriptor = os.open(beside, os.O_RDWR)
        try:
            os.fsync(descriptor)
        finally:
            os.close(descriptor)
        if former is not None:
            os.chmod(beside, stat.S_IMODE(former.st_mode))
        os.replace(beside, target)
    except PermissionError:
        # Windows does not replace files that are open, such as the one that the data set reads from:
        # the library knows how to save over that.
        return write(target) if os.name == "nt" else _CANNOT_CREATE
    except OSError:
        return _CANNOT_CREATE
    return 0
