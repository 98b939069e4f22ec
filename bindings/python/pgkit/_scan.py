"""A few values of many files."""

from __future__ import annotations

import collections
import concurrent.futures
import itertools
import os
from typing import Any, Deque, Dict, Iterable, Iterator, List, Optional, Sequence, Tuple, Union

from ._blocks import BYTES, TEXT, Record, read_file_values, records_of, tag_list, value_in, values_in
from ._dictionary import TagLike, keyword, tag_number, vr_name
from ._errors import PgkitError
from ._library import Report, StrPath, encoded_path
from ._opening import PAST_PIXEL_DATA, new_report
from ._reports import OpenReport, OpenResult

Row = Dict[str, Any]

# Fragments need not be indexed for the elements in front of Pixel Data.
_FLAGS = 0x01 | PAST_PIXEL_DATA
_PIXEL_REPRESENTATION = 0x00280103
# So many files are on their way for each thread.
_AHEAD = 64


def read_values(path: StrPath, tags: Iterable[TagLike]) -> Row:
    """The values of some tags of a file, which is opened and closed in one call of the library.

    The keys are the keywords of the tags (or eight digits where there is none), the values those of
    ``Element.value``: None for what is not there, a sequence, Pixel Data or longer than 1,024 bytes.
    Raises OSError when the file cannot be read, PgkitError with the reason when it is no data set.
    """
    columns = _columns(tags)
    row, report = _row(path, columns)
    if row is None:
        with open(path, "rb"):
            pass
        raise PgkitError(f"{os.fspath(path)}: {OpenResult(report.result).reason}")
    del row["path"]
    return row


class Scan(Iterator[Row]):
    """The rows of a scan, one after the other, and what became of the other files.

    ``left_out`` counts the files that are no data sets, ``failed`` has the paths of those that could
    not be read, with the reason, ``incomplete`` those of data sets that are cut short: they have
    rows. All grow while the rows are taken.
    """

    def __init__(self, rows: Iterator[Tuple[str, Optional[Row], Report]]) -> None:
        self._rows = rows
        self.left_out = 0
        self.failed: List[Tuple[str, str]] = []
        self.incomplete: List[Tuple[str, str]] = []

    def __iter__(self) -> Scan:
        return self

    def __next__(self) -> Row:
        for path, row, report in self._rows:
            if row is not None:
                if report.result != OpenResult.COMPLETE:
                    self.incomplete.append((path, str(OpenReport.of(report))))
                return row
            if report.result == OpenResult.NOT_A_DATA_SET:
                self.left_out += 1
            else:
                self.failed.append((path, OpenResult(report.result).reason))
        raise StopIteration


def scan(paths: Union[StrPath, Iterable[StrPath]], tags: Sequence[TagLike], *,
         jobs: Optional[int] = None) -> Scan:
    """Rows of values of many files: files, and folders with all that lies below them.

    A row is a dict of ``path`` and the keywords of the tags (see ``read_values``); the rows come in
    the order of the paths, those of a folder sorted by name. Files that are no data sets have none:
    the Scan counts them. jobs threads (as many as there are processors) read the files, each of
    which is one call of the library, during which other threads run. A row is read at most some
    hundred rows before it is taken. Links to folders are not followed. Raises KeyError or ValueError
    for what is no tag before anything is read.
    """
    columns = _columns(tags)
    wanted = [paths] if isinstance(paths, (str, os.PathLike)) else paths
    count = jobs if jobs is not None else os.cpu_count() or 1
    if count < 1:
        raise ValueError(f"jobs is at least 1, not {jobs}")
    return Scan(_read_all(_files(wanted), columns, count))


def _columns(tags: Iterable[TagLike]) -> Tuple[List[str], bytes]:
    """The names of the columns, and their tags with that of Pixel Representation behind them, which
    some values depend on."""
    if isinstance(tags, str):
        raise TypeError("tags is a list of them")
    numbers = [tag_number(tag) for tag in tags]
    names = [keyword(number) or f"{number:08X}" for number in numbers]
    return names, tag_list([*numbers, _PIXEL_REPRESENTATION])


def _files(paths: Iterable[StrPath]) -> Iterator[str]:
    for path in paths:
        name = os.fspath(path)
        if not os.path.isdir(name):
            yield name
            continue
        for folder, folders, files in os.walk(name):
            folders.sort()
            for file in sorted(files):
                yield os.path.join(folder, file)


def _read_all(paths: Iterator[str], columns: Tuple[List[str], bytes], jobs: int
              ) -> Iterator[Tuple[str, Optional[Row], Report]]:
    def read(path: str) -> Tuple[str, Optional[Row], Report]:
        return (path, *_row(path, columns))

    if jobs == 1:
        yield from map(read, paths)
        return
    with concurrent.futures.ThreadPoolExecutor(jobs, "pgkit-scan") as pool:
        pending: Deque[Any] = collections.deque(
            pool.submit(read, path) for path in itertools.islice(paths, jobs * _AHEAD))
        try:
            while pending:
                yield pending.popleft().result()
                pending.extend(pool.submit(read, path) for path in itertools.islice(paths, 1))
        finally:
            for future in pending:
                future.cancel()


def _row(path: StrPath, columns: Tuple[List[str], bytes]) -> Tuple[Optional[Row], Report]:
    names, tags = columns
    report = new_report()
    try:
        encoded = encoded_path(path)
    except ValueError:  # a name that no file can have
        report.result = OpenResult.CANNOT_OPEN
        return None, report
    block = read_file_values(encoded, _FLAGS, tags, report)
    if block is None or report.result < 0:
        return None, report
    records = list(records_of(block))
    is_signed = value_in(block, records[-1]) == 1
    row: Row = {"path": os.fspath(path)}
    row.update(zip(names, (_value(block, record, is_signed) for record in records)))
    return row, report


def _value(block: bytes, record: Record, is_signed: bool) -> Any:
    try:
        value = value_in(block, record)
    except ValueError:  # an IS or DS that is no number
        value = None
    if value is not None or record[4] not in (TEXT, BYTES) or record[3] == 0:
        return value
    vr = vr_name(record[2])
    if vr == "USSS":
        vr = "SS" if is_signed else "US"
    try:
        values = values_in(block, record, vr)
    except ValueError:
        return block[record[5] : record[5] + record[6]].decode("utf-8", "replace")
    return values if len(values) > 1 else values[0] if values else None
