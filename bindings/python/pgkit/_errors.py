"""What can go wrong."""


class PgkitError(Exception):
    """The library refused an operation."""


class TruncatedWarning(UserWarning):
    """A file is not there as a whole, or cannot be read to its end; what precedes can be used."""


class ClosedError(PgkitError):
    """The data set was closed, or the element was removed from it."""

    def __init__(self, message: str = "the data set is closed or this part of it was removed") -> None:
        super().__init__(message)


class SaveError(PgkitError):
    """A data set could not be saved; ``code`` is the library's result."""

    _REASONS = {
        1: "the file cannot be created",
        2: "a value has no source stream",
        3: "writing failed",
        4: "reading a value failed",
        5: "out of memory",
        6: "a value is too long for its length field",
        7: "the file cannot be reopened",
        8: "nothing is accepted: no DICOMDIR is written",
    }

    def __init__(self, path: str, code: int) -> None:
        super().__init__(f"{path}: {self._REASONS.get(code, f'result {code}')}")
        self.code = code


class CreateError(SaveError):
    """A DICOMDIR could not be written, or nothing was accepted that it would refer to."""


class UnknownProfileError(PgkitError, ValueError):
    """There is no media application profile of this name."""
