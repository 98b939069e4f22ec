#!/usr/bin/env python3
"""Makes the table of the Basic Application Level Confidentiality Profile (PS3.15, Table E.1-1):

    make-confidentiality-table.py FILE

FILE is a tab-separated list of its rows: tag (x for any digit), name, action of the profile, and the
actions of its options, empty where those change nothing. Run this when the standard has a new
edition; the result is committed.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TARGET = ROOT / "tools" / "anonymize" / "confidentiality.inc"
COLUMNS = 13
HEAD = """\
// The attributes of the Basic Application Level Confidentiality Profile (PS3.15, Table E.1-1), one
// row per line: tag, the bits by which a tag of the row is known, action of the profile, actions of
// its options. Made by scripts/make-confidentiality-table.py.
//
// The options, a character for each, "." where an option changes nothing: retain safe private,
// retain UIDs, retain device identity, retain institution identity, retain patient characteristics,
// retain dates, modify dates, clean descriptors, clean structured content, clean graphics.
"""


def rows_of(path):
    """Some rows are broken into lines, by notes within them."""
    pending = []
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines()[1:]:
        cells = line.split("\t")
        if pending:
            pending[-1] += " " + cells[0]
            pending += cells[1:]
        else:
            pending = cells
        if len(pending) == COLUMNS:
            yield pending
            pending = []
    if pending:
        sys.exit(f"the last row has {len(pending)} cells")


def number_and_mask(tag):
    if tag == "odd groups":
        return "0x00010000", "0x00010000"
    digits = tag.replace(",", "")
    if not re.fullmatch("[0-9A-Fa-fx]{8}", digits):
        sys.exit(f"no tag: {tag}")
    mask = "".join("0" if digit == "x" else "F" for digit in digits)
    return "0x" + digits.replace("x", "0").upper(), "0x" + mask


def row(cells):
    number, mask = number_and_mask(cells[0])
    options = "".join(cell or "." for cell in cells[3:])
    return f'PGTOOL_CONFIDENTIALITY({number}, {mask}, "{cells[2]}", "{options}")'


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make-confidentiality-table.py FILE")
    lines = sorted((row(cells) for cells in rows_of(sys.argv[1])),
                   key=lambda line: ("0xFFFFFFFF" not in line, line))
    TARGET.write_text(HEAD + "".join(line + "\n" for line in lines), encoding="ascii")
