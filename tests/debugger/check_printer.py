#!/usr/bin/python3
"""Stops an example in gdb and looks at its tree through the pretty printers; checks that the natvis
file names fields that the classes have.

    check_printer.py DIRECTORY_OF_PROGRAMS

The last line is "N passed, M failed". Without a gdb that can run programs, those checks are left
out, and a line says why.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/support"))
from check_runner import run_checks  # noqa: E402

PRINTERS = ROOT / "tools/debugger/pgkit_gdb.py"
NATVIS = ROOT / "tools/debugger/pgkit.natvis"
EXPECTED = {  # by the file that is read, what gdb shows of it
    "native/mr_implicit_le.dcm": [
        "data set, 80 children = {", '(0010,0010) PN [22] "CompressedSamples^MR1 "',
        "(0028,0010) US [2] 64", "(0010,0030) DA [0] no value",
        "(7FE0,0010) OWOB [8192] in its file at 1510"],
    "native/mr_explicit_be.dcm": ["(0028,0010) US [2] 64"],
    "sequences/sr_nested_explicit_undefined.dcm": [
        "(0040,A730) SQ [undefined] 8 items = {", "(0008,0102) SH [4] \"UCUM\""],
    "encapsulated/rtdose_rle_15frames_no_bot.dcm": [
        "(7FE0,0010) OW [undefined] 15 fragments"],
}


def gdb(*commands, program=()):
    """What gdb prints; raises with it when gdb fails or a command has an error."""
    words = ["gdb", "--batch", "-nx", "-iex", "set debuginfod enabled off"]
    for command in commands:
        words += ["-ex", command]
    done = subprocess.run([*words, "--args", *program] if program else words, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120,
                          errors="replace", stdin=subprocess.DEVNULL, check=False)
    return done.returncode, done.stdout


def why_not(program):
    """Why gdb cannot be used, or None."""
    if shutil.which("gdb") is None:
        return "gdb is not installed"
    if "has python" not in gdb("python print('has python')")[1]:
        return "this gdb has no Python"
    status, printed = gdb("break main", "run", "continue", program=[program])
    if status != 0 or not re.search(r"Breakpoint 1, .*main", printed):
        return "gdb cannot run programs here: " + " ".join(printed.split())[-200:]
    return None


def check_tree(program, name, expected):
    status, printed = gdb(f"source {PRINTERS}", "set width 0", "set print elements 0",
                          "set breakpoint pending on", "break pgCloseDataSet", "run", "print *root", "kill",
                          program=[program, str(ROOT / "tests/data" / name)])
    missing = [text for text in expected if text not in printed]
    return f"not shown: {missing} in: {printed[-1500:]}" if status or missing else None


def check_natvis():
    headers = "".join(path.read_text() for path in ROOT.glob("include/pgkit/*.h"))
    space = {"n": "http://schemas.microsoft.com/vstudio/debugger/natvis/2010"}
    for kind in xml.etree.ElementTree.parse(NATVIS).getroot().findall("n:Type", space):
        found = re.search(rf"^class (?:PGKIT_API )?{kind.get('Name')} \{{(.*?)^\}};", headers,
                          re.MULTILINE | re.DOTALL)
        if not found:
            return f"no class {kind.get('Name')}"
        used = set()
        for part in kind.iter():
            used.update(re.findall(r"\{\(?(?:char\*\)|unsigned \w+\*\))?\*?(\w+)", part.text or "")
                        if "DisplayString" in part.tag else [])
            if part.tag.endswith(("HeadPointer", "Size")):
                used.add(part.text)
            used.update(re.findall(r"\b(\w+) [!=]= ", part.get("Condition", "")))
        missing = [name for name in used - {"unsigned", "char"}
                   if not re.search(rf"\b{name}\b(\[\d+\])?( = [^;]*)?;", found[1])]
        if missing:
            return f"{kind.get('Name')} has no {missing}"
    return None


def main(directory):
    program = str(pathlib.Path(directory).resolve() / "read_with_classes")
    checks = [("natvis", NATVIS.name, check_natvis, ())]
    reason = why_not(program)
    if reason:
        print(f"skipped: {reason}")
    else:
        checks += [("gdb", name, check_tree, (program, name, expected))
                   for name, expected in EXPECTED.items()]
    return run_checks(checks)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
