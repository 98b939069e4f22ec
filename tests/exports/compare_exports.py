#!/usr/bin/python3
"""Compares what modules export with what the public headers declare: nothing is missing, nothing
else is there. Members count with their overloads; flat functions must have C linkage.

    compare_exports.py INCLUDE_DIRECTORY MODULE...

The last line is "N passed, M failed"; each module is one check.
"""
import collections
import pathlib
import re
import subprocess
import sys

CLASS_START = re.compile(r"^class (PGKIT_API )?(\w+)[^;]*\{", re.MULTILINE)
DECLARATION = re.compile(r"PGKIT_API(?: virtual)?\s[^;{(]*?(~?\w+|operator=)\s*\(")
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/|^\s*#(?:[^\n]*\\\n)*[^\n]*", re.DOTALL | re.MULTILINE)


def output_of(*command, stdin=None):
    return subprocess.run(command, input=stdin, capture_output=True, check=True, text=True).stdout


class Interface:
    """The declarations of a directory of headers."""

    def __init__(self, directory):
        self.counts = collections.Counter()  # declarations of each qualified name
        self.exported_classes = set()  # classes that are exported as a whole
        for header in sorted(pathlib.Path(directory).rglob("*.h")):
            text = COMMENT.sub("", header.read_text())
            before = self._known()
            self._read(text)
            if self._known() - before != text.count("PGKIT_API"):
                sys.exit(f"{header}: a declaration has a form that this check cannot read")

    def _known(self):
        return self.counts.total() + len(self.exported_classes)

    def _read(self, text):
        flat = text
        for start in CLASS_START.finditer(text):
            body = text[start.end() : text.index("\n};", start.end())]
            flat = flat.replace(body, "")
            if start[1]:
                self.exported_classes.add(start[2])
            self._count(body, start[2] + "::")
        self._count(CLASS_START.sub("", flat), "")

    def _count(self, text, qualifier):
        for name in DECLARATION.findall(text):
            self.counts[qualifier + name] += 1


def exported_symbols(module):
    """The linker names in a module's export table."""
    if module.endswith(".dll"):
        listing = output_of("x86_64-w64-mingw32-objdump", "-p", module)
        table = listing.split("[Ordinal/Name Pointer] Table", 1)[1]
        return re.findall(r"^\t\[ *\d+\] (\S+)", table, re.MULTILINE)
    listing = output_of("nm", "-D", "--defined-only", "--format=posix", module)
    return [line.split()[0] for line in listing.splitlines()]


def differences(interface, symbols):
    readable = output_of("c++filt", stdin="\n".join(symbols)).splitlines()
    # Constructors and destructors have several symbols that read the same: a set counts them once.
    found = collections.Counter()
    for signature in set(readable):
        # "vtable for X", "typeinfo for X" and the members that the compiler adds to an exported
        # class come with that class.
        owner = re.sub(r"^(vtable|typeinfo|typeinfo name) for ", "", signature).split("::")[0]
        if owner in interface.exported_classes:
            found[owner] += 1
        elif "::" in signature:
            found[signature.split("(")[0]] += 1
        else:
            found[signature] += 1  # with its arguments, if it lacks C linkage
    for name in sorted(interface.exported_classes):
        if found.pop(name, 0) == 0:
            yield f"class {name}: nothing of it is exported"
    for name in sorted(found.keys() | interface.counts.keys()):
        if name.split("::")[0] in interface.exported_classes:
            continue
        if found[name] != interface.counts[name]:
            yield f"{name}: declared {interface.counts[name]}, exported {found[name]}"


def main(include_directory, modules):
    interface = Interface(include_directory)
    failed = 0
    for module in modules:
        found = list(differences(interface, exported_symbols(module)))
        if found or not interface.counts:
            failed += 1
            print(f"{module}:", *found, sep="\n  ")
    print(f"{len(modules) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
