"""What was found when a file was opened."""

from __future__ import annotations

import dataclasses
import enum
from typing import Optional

from ._dictionary import Tag
from ._library import Report

_HAS_META, _DEFLATED, _GUESSED = 0x01, 0x02, 0x04
_NO_TAG = (0xFFFF, 0xFFFF)


class OpenResult(enum.IntEnum):
    """What became of a file."""

    COMPLETE = 0
    CUT_SHORT = 1
    BROKEN = 2
    LEFT_AFTER_FRAGMENTS = 3
    TOO_DEEP = 4
    READ_FAILED = 5
    CANNOT_OPEN = -1
    NOT_A_DATA_SET = -2
    TOO_LARGE = -3
    NO_TEMPORARY = -4
    NO_MEMORY = -5

    @property
    def reason(self) -> str:
        """What is wrong, in words."""
        return _REASONS.get(self, self.name)


class Certainty(enum.IntEnum):
    """How sure the encoding is."""

    NONE = 0
    LOW = 1
    HIGH = 2
    STATED = 3


_REASONS = {
    OpenResult.CUT_SHORT: "it is cut short",
    OpenResult.BROKEN: "it is broken",
    OpenResult.LEFT_AFTER_FRAGMENTS: "what follows its fragments was not read",
    OpenResult.TOO_DEEP: "its sequences are nested too deep",
    OpenResult.READ_FAILED: "reading failed",
    OpenResult.CANNOT_OPEN: "it cannot be opened",
    OpenResult.NOT_A_DATA_SET: "not a DICOM data set",
    OpenResult.TOO_LARGE: "it inflates to more than is allowed",
    OpenResult.NO_TEMPORARY: "no temporary file can be written for what it inflates to",
}


@dataclasses.dataclass(frozen=True)
class OpenReport:
    """What was found: result, how many elements there are on all levels, where it ends (or what is
    wrong is, and in which element), and how the encoding is known."""

    result: OpenResult
    elements: int
    offset: int
    tag: Optional[Tag]
    has_meta: bool
    is_deflated: bool
    is_guessed: bool
    certainty: Certainty
    transfer_syntax: str

    @property
    def is_complete(self) -> bool:
        """Whether the file was read to its end."""
        return self.result == OpenResult.COMPLETE

    @staticmethod
    def of(report: Report) -> OpenReport:
        """From what the library has filled in."""
        tag = (report.group, report.element)
        return OpenReport(
            OpenResult(report.result), report.elements, report.offset,
            None if tag == _NO_TAG else tag, bool(report.notes & _HAS_META),
            bool(report.notes & _DEFLATED), bool(report.notes & _GUESSED),
            Certainty(report.certainty), report.transfer_syntax.decode("latin-1"))

    def __str__(self) -> str:
        place = "" if self.tag is None else " in ({:04X},{:04X})".format(*self.tag)
        if self.is_complete:
            return f"complete, {self.elements} elements"
        return f"{self.result.reason} at offset {self.offset}{place}"
