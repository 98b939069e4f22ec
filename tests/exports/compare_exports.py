#!/usr/bin/python3
"""Compares what the modules export with what the public headers declare and with the
module-definition file: nothing is missing, nothing else is there, ordinals are as they are written.
There are two families of names: the first, which is complete and keeps its ordinals, and the
functions pgx..., which grows, from ordinal 2001 on. The list of symbols in the Debian package is held
against the module, too.

    compare_exports.py SHARED_OBJECT DLL

The last line is "N passed, M failed".
"""
import pathlib
import re
import sys

from declared import GCC_LINUX, GCC_WINDOWS, gcc_symbols, microsoft_symbols, output_of

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402

EXPORTS = pathlib.Path(__file__).resolve().parent
DEFINITIONS = EXPORTS.parent.parent / "src/pgkit.def"
FIRST_FAMILY = EXPORTS / "first_family.txt"
PACKAGE_SYMBOLS = EXPORTS.parent.parent / "packaging/debian/libpgkit2.symbols"

FIRST_FAMILY_SIZE = 331
LAST_OF_FIRST_FAMILY = 1702
FIRST_OF_SECOND_FAMILY = 2001
SECOND_FAMILY = re.compile(r"pgx[A-Z]\w*")


def defined_ordinals():
    """The entries of the module-definition file, as pairs."""
    entries = re.findall(r'^    "?([^\s"]+)"?(?: = \S+)? @(\d+)(?: DATA)?$',
                         DEFINITIONS.read_text(), re.MULTILINE)
    return [(name, int(ordinal)) for name, ordinal in entries]


def ordinals_of_dll(path):
    listing = output_of("x86_64-w64-mingw32-objdump", "-p", path)
    base = int(re.search(r"^Ordinal Base\s+(\d+)", listing, re.MULTILINE)[1])
    table = listing.split("[Ordinal/Name Pointer] Table", 1)[1]
    entries = re.findall(r"^\t\[ *(\d+)\] (\S+)", table, re.MULTILINE)
    return {name: base + int(index) for index, name in entries}


def symbols_of_shared_object(path):
    listing = output_of("nm", "-D", "--defined-only", "--format=posix", path)
    return {line.split()[0] for line in listing.splitlines()}


def differences(expected, found):
    for name in sorted(expected - found):
        yield f"missing: {name}"
    for name in sorted(found - expected):
        yield f"not declared: {name}"


def check_definitions(entries):
    """The file has every name once, each with an ordinal of its own."""
    names = [name for name, _ in entries]
    ordinals = [ordinal for _, ordinal in entries]
    yield from differences(microsoft_symbols(), set(names))
    for repeated in sorted({name for name in names if names.count(name) > 1}):
        yield f"more than once: {repeated}"
    for repeated in sorted({ordinal for ordinal in ordinals if ordinals.count(ordinal) > 1}):
        yield f"for several names: ordinal {repeated}"
    lines = DEFINITIONS.read_text().partition("EXPORTS\n")[2].splitlines()
    if len(entries) != sum(line.startswith("    ") for line in lines):
        yield "a line has a form that this check cannot read"


def first_family():
    """The names that every release has exported, with their ordinals."""
    lines = FIRST_FAMILY.read_text().splitlines()
    return {name: int(ordinal) for ordinal, name in map(str.split, lines)}


def check_families(entries):
    """The first family is whole, and what is not of it is of the second."""
    first = first_family()
    if len(first) != FIRST_FAMILY_SIZE or max(first.values()) != LAST_OF_FIRST_FAMILY:
        yield f"{FIRST_FAMILY.name} is no longer what it was"
    found = dict(entries)
    for name, ordinal in first.items():
        if found.get(name) != ordinal:
            yield f"{name}: ordinal {found.get(name)} instead of {ordinal}, for ever"
    for name, ordinal in entries:
        if name in first:
            continue
        if not SECOND_FAMILY.fullmatch(name):
            yield f"{name}: a new name begins with pgx"
        if ordinal < FIRST_OF_SECOND_FAMILY:
            yield f"{name}: a new ordinal is {FIRST_OF_SECOND_FAMILY} or above, not {ordinal}"


def check_ordinals(entries, exported):
    for name, ordinal in entries:
        if exported.get(name) != ordinal:
            yield f"{name}: ordinal {exported.get(name)} instead of {ordinal}"


def symbols_of_package():
    """What the package of the library promises to others."""
    return {line.split("@")[0].strip() for line in PACKAGE_SYMBOLS.read_text().splitlines()[1:]}


def main(shared_object, dll):
    entries = defined_ordinals()
    exported = ordinals_of_dll(dll)
    checks = {
        "the module-definition file": check_definitions(entries),
        "the two families of names": check_families(entries),
        f"{dll}, ordinals": check_ordinals(entries, exported),
        f"{dll}, names": differences(microsoft_symbols() | gcc_symbols(GCC_WINDOWS), set(exported)),
        shared_object: differences(gcc_symbols(GCC_LINUX), symbols_of_shared_object(shared_object)),
        PACKAGE_SYMBOLS.name: differences(symbols_of_shared_object(shared_object),
                                          symbols_of_package()),
    }
    return report(("exports", subject, "\n       ".join(findings) or None)
                  for subject, findings in checks.items())


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
