#!/usr/bin/env python3
"""Indexes the data sets of folders in an SQLite database: index_folder.py DATABASE FOLDER...

A row for each instance; a file that is indexed again replaces its row. Prints how many there are.
"""

import sqlite3
import sys

import pgkit

KEYS = ("SOPInstanceUID", "SOPClassUID", "PatientID", "PatientName", "StudyInstanceUID", "StudyDate",
        "StudyDescription", "SeriesInstanceUID", "Modality", "InstanceNumber", "Rows", "Columns")


def create(database):
    """The table, unless it is there."""
    columns = ", ".join(f"{key} TEXT" for key in KEYS)
    database.execute(f"CREATE TABLE IF NOT EXISTS instances (path TEXT PRIMARY KEY, {columns})")
    database.execute("CREATE INDEX IF NOT EXISTS by_study ON instances (StudyInstanceUID)")


def as_text(value):
    """What a column holds; values of several are joined by a backslash."""
    if value is None or isinstance(value, str):
        return value
    return "\\".join(map(str, value)) if isinstance(value, list) else str(value)


def row_of(values):
    """A row of a scan as one of the table."""
    return [values["path"], *(as_text(values[key]) for key in KEYS)]


def store(database, rows):
    """Puts rows in, many at a time."""
    marks = ", ".join("?" * (len(KEYS) + 1))
    with database:
        database.executemany(f"INSERT OR REPLACE INTO instances VALUES ({marks})", rows)


def main(path, folders):
    database = sqlite3.connect(path)
    create(database)
    scan = pgkit.scan(folders, KEYS)
    store(database, map(row_of, scan))
    (count,) = database.execute("SELECT count(*) FROM instances").fetchone()
    database.close()
    for name, reason in scan.failed + scan.incomplete:
        print(f"{name}: {reason}", file=sys.stderr)
    print(f"{count} instances, {scan.left_out} other files left out")
    return 1 if scan.failed else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2:]))
