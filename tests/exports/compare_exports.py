#!/usr/bin/python3
"""Compares what the modules export with what the public headers declare and with the
module-definition file: nothing is missing, nothing else is there, ordinals are as they are written.

    compare_exports.py SHARED_OBJECT DLL

The last line is "N passed, M failed".
"""
import pathlib
import re
import sys

from declared import GCC_LINUX, GCC_WINDOWS, gcc_symbols, microsoft_symbols, output_of

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402

DEFINITIONS = pathlib.Path(__file__).resolve().parent.parent.parent / "src/pgkit.def"


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


def check_ordinals(entries, exported):
    for name, ordinal in entries:
        if exported.get(name) != ordinal:
            yield f"{name}: ordinal {exported.get(name)} instead of {ordinal}"


def main(shared_object, dll):
    entries = defined_ordinals()
    exported = ordinals_of_dll(dll)
    checks = {
        "the module-definition file": check_definitions(entries),
        f"{dll}, ordinals": check_ordinals(entries, exported),
        f"{dll}, names": differences(microsoft_symbols() | gcc_symbols(GCC_WINDOWS), set(exported)),
        shared_object: differences(gcc_symbols(GCC_LINUX), symbols_of_shared_object(shared_object)),
    }
    return report(("exports", subject, "\n       ".join(findings) or None)
                  for subject, findings in checks.items())


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
