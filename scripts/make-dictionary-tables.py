#!/usr/bin/env python3
"""Makes the tables of the standard's current edition from tab-separated lists of its registry:

    make-dictionary-tables.py DIRECTORY

DIRECTORY holds elements.tsv (tag, VR, VM, keyword, name, RET when retired), uids.tsv (UID, keyword,
name, type, RET) and private.tsv (creator, tag, VR, VM, name), each with a line of column names. Run
this when the standard has a new edition; the results are committed.
"""
import csv
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
DICTIONARY = ROOT / "src" / "dictionary"
VALUE_REPRESENTATIONS = {"US or SS": "USSS", "OB or OW": "OWOB", "OB_OW": "OWOB",
                         "US or SS or OW": "OW", "US or OW": "OW", "NONE": "Unknown"}

ELEMENTS = """\
// The data elements of the standard's current edition, one row per line in ascending order of their
// tags: group, element, value representation, value multiplicity, keyword. Made by
// scripts/make-dictionary-tables.py.
"""
REPEATING = """\
// The elements of the standard's current edition that a range of tags shares, one row per line: the
// first tag of the range, the bits by which a tag of the range is known, value representation, value
// multiplicity, keyword. Made by scripts/make-dictionary-tables.py.
"""
UIDS = """\
// The UIDs of the standard's current edition, one row per line: UID, keyword, name. Made by
// scripts/make-dictionary-tables.py.
"""
PRIVATE = """\
Private elements of manufacturers, collected from published lists. Made by
scripts/make-dictionary-tables.py. Each line: (group,"creator",low byte) VR name multiplicity

"""


def rows_of(path):
    with open(path, encoding="utf-8", newline="") as table:
        yield from csv.DictReader(table, delimiter="\t", quoting=csv.QUOTE_NONE)


def vr_name(row):
    return VALUE_REPRESENTATIONS.get(row["vr"], row["vr"])


def write(name, head, lines):
    (ROOT / name).write_text(head + "".join(line + "\n" for line in lines), encoding="ascii")


def element_row(row):
    group, element = row["tag"].split(",")
    return (f'PGKIT_CURRENT_ELEMENT(0x{group}, 0x{element}, {vr_name(row)}, "{row["vm"]}", '
            f'"{row["keyword"]}")')


def repeating_row(row):
    digits = row["tag"].replace(",", "")
    tag = digits.replace("x", "0")
    mask = "".join("0" if digit == "x" else "F" for digit in digits)
    return (f'PGKIT_CURRENT_REPEATING(0x{tag}, 0x{mask}, {vr_name(row)}, "{row["vm"]}", '
            f'"{row["keyword"]}")')


def uid_row(row):
    # A few retired UIDs have lost their names.
    return f'PGKIT_CURRENT_UID("{row["uid"]}", "{row["keyword"]}", "{row["name"]}")'


def private_name(row):
    """One word of ASCII: what the format of the file has room for."""
    words = re.findall(r"[A-Za-z0-9]+", row["name"].replace("'", ""))
    return "".join(word[0].upper() + word[1:] for word in words)[:127] or "Unknown"


def private_row(row):
    group, element = row["tag"].upper().split(",")
    if "X" in group or "X" in element[2:]:
        return None
    return f'({group},"{row["creator"]}",{element[2:]}) {vr_name(row)} {private_name(row)} {row["vm"]}'


def main():
    tables = pathlib.Path(sys.argv[1])
    elements = list(rows_of(tables / "elements.tsv"))
    single = sorted((row for row in elements if "x" not in row["tag"]), key=lambda row: row["tag"])
    write("src/dictionary/current_elements.inc", ELEMENTS, map(element_row, single))
    write("src/dictionary/current_repeating_elements.inc", REPEATING,
          (repeating_row(row) for row in elements if "x" in row["tag"]))
    write("src/dictionary/current_uids.inc", UIDS, map(uid_row, rows_of(tables / "uids.tsv")))
    lines = filter(None, map(private_row, rows_of(tables / "private.tsv")))
    write("data/private.dic", PRIVATE, dict.fromkeys(lines))


if __name__ == "__main__":
    main()
