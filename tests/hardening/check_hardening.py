#!/usr/bin/python3
"""Checks that built modules and programs have their protections against exploits, and that Windows
files need nothing but the system's own libraries and this project's.

    check_hardening.py FILE...

Each protection of each file is one check. The last line is "N passed, M failed".
"""
import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402


def output_of(*command):
    return subprocess.run(command, capture_output=True, check=True, text=True).stdout


def checks_buffers(path, symbols):
    """Only the library makes copies whose bounds are known but not proved when it is compiled."""
    if "pgkit" in pathlib.Path(path).name:
        yield "checks its buffers", re.search(r"__mem\w+_chk\b", symbols) is not None


def checks_of_elf(path):
    segments = output_of("readelf", "--wide", "--program-headers", path)
    dynamic = output_of("readelf", "--wide", "--dynamic", path)
    kind = re.search(r"Elf file type is (\w+)", segments)[1]
    stack = re.search(r"^ +GNU_STACK +(?:0x\w+ +){5}(\S+)", segments, re.MULTILINE)
    loaded = re.findall(r"^ +LOAD +(?:0x\w+ +){5}(.{3}) ", segments, re.MULTILINE)
    imports = output_of("nm", "-D", "--undefined-only", path)
    yield "can be loaded anywhere", kind == "DYN"
    yield "has no executable stack", stack is not None and "E" not in stack[1]
    yield "has no memory to write and execute", bool(loaded) and not any(
        "W" in flags and "E" in flags for flags in loaded)
    yield "has read-only relocations", "GNU_RELRO" in segments
    yield "resolves its imports at start", re.search(r"\(FLAGS(_1)?\).*\bNOW\b", dynamic) is not None
    yield "checks its stack frames", "__stack_chk_fail" in imports
    yield from checks_buffers(path, imports)


# The universal C runtime is a part of the system; so its streams and heap are the host's too.
UNIVERSAL_RUNTIME = re.compile(r"api-ms-win-crt-[a-z]+-l1-1-0\.dll")
SYSTEM_LIBRARIES = {"ADVAPI32.dll", "KERNEL32.dll", "SHELL32.dll", "USER32.dll"}


def is_allowed(library):
    return library in SYSTEM_LIBRARIES | {"pgkit.dll", "pgview32.dll"} or UNIVERSAL_RUNTIME.fullmatch(library)


def checks_of_pe(path):
    headers = output_of("x86_64-w64-mingw32-objdump", "-p", path)
    sections = output_of("x86_64-w64-mingw32-objdump", "-h", path)
    symbols = output_of("x86_64-w64-mingw32-nm", path)
    characteristics = int(re.search(r"^DllCharacteristics\s+(\w+)", headers, re.MULTILINE)[1], 16)
    # A base that moves needs the places that depend on it.
    yield "can be loaded anywhere", characteristics & 0x40 != 0 and " .reloc " in sections
    yield "can be loaded above 4 GiB", characteristics & 0x20 != 0
    yield "executes no data", characteristics & 0x100 != 0
    yield "checks its stack frames", "__stack_chk_fail" in symbols
    imports = re.findall(r"^\s*DLL Name: (\S+)", headers, re.MULTILINE)
    yield "has the universal C runtime", any(map(UNIVERSAL_RUNTIME.fullmatch, imports))
    yield "needs the system's libraries only", all(map(is_allowed, imports))
    yield from checks_buffers(path, symbols)


def results_of(paths):
    for path in paths:
        checks = checks_of_pe if path.endswith((".dll", ".exe")) else checks_of_elf
        for protection, holds in checks(path):
            yield "protects", f"{path}: {protection}", None if holds else "not so"


if __name__ == "__main__":
    sys.exit(report(results_of(sys.argv[1:])))
