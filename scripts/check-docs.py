#!/usr/bin/env python3
"""Holds the documents against what they describe.

    check-docs.py DIRECTORY_OF_PROGRAMS

- A block behind "<!-- quote FILE -->" is part of that file, line by line.
- A block behind "<!-- transcript -->" is what its commands ("$ pgtool ...") really print; a line
  "..." stands for any number of lines. So is one behind "<!-- first-steps tool -->"; the other first
  steps need an installation, and tests/consumer takes them.
- Every text that docs/frozen.md has in the first column of its table is in the sources.
- Links between the documents lead somewhere, and paths in backquotes exist, in the root or in src/.

The last line is "N passed, M failed".
"""
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path += [str(ROOT / "tests/support"), str(ROOT / "tests/consumer")]
import first_steps  # noqa: E402
from check_runner import run_checks  # noqa: E402
from markdown_links import dead_links  # noqa: E402
from transcripts import is_printed, steps  # noqa: E402

DOCUMENTS = [ROOT / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md", "SECURITY.md",
                                      "bindings/python/README.md", "fuzz/README.md",
                                      "tests/data/README.md")]
QUOTE = re.compile(r"<!-- quote (\S+) -->\n+```\w*\n(.*?\n)```\n", re.DOTALL)
TRANSCRIPT = re.compile(r"<!-- transcript -->\n+```\w*\n(.*?\n)```\n", re.DOTALL)
FROZEN_TEXT = re.compile(r"^\| `([^`]+)` \|", re.MULTILINE)
PATH = re.compile(r"`((?:\w+/)+[\w.-]*)`")
FOLDERS = ("bench", "bindings", "cmake", "docs", "examples", "fuzz", "imaging", "include", "scripts",
           "src", "tests", "tools")
SOURCE_FOLDERS = tuple(path.name for path in (ROOT / "src").iterdir() if path.is_dir())


def check_frozen_text(text):
    sources = [path for folder in ("src", "include") for path in (ROOT / folder).rglob("*.*")]
    found = any(text in path.read_text() for path in sources)
    return None if found else "the sources have no such text"


def check_quote(name, text):
    return None if "\n" + text in "\n" + (ROOT / name).read_text() else f"{name} has other lines"


def check_transcript(text, programs):
    """Commands run in a directory of their own, from which tests/ can be seen."""
    with tempfile.TemporaryDirectory() as directory:
        (pathlib.Path(directory) / "tests").symlink_to(ROOT / "tests")
        (pathlib.Path(directory) / "image.dcm").symlink_to(first_steps.IMAGE)
        for command, expected in steps(text):
            program, *arguments = shlex.split(command)
            done = subprocess.run([os.path.join(programs, program), *arguments], cwd=directory,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
            printed = done.stdout.decode("utf-8", "replace")
            if not is_printed(expected, printed):
                return f"{command} prints:\n{printed[:1500]}"
    return None


def is_missing(path):
    """Paths begin in the root, those of the module's sources in src/, too."""
    folder = path.split("/")[0]
    return (folder in FOLDERS + SOURCE_FOLDERS and not (ROOT / path).exists()
            and not (folder in SOURCE_FOLDERS and (ROOT / "src" / path).exists()))


def check_references(document):
    text = document.read_text()
    missing = dead_links(document)
    missing += [path for path in PATH.findall(text) if is_missing(path)]
    marked = sum(len(form.findall(text)) for form in (QUOTE, TRANSCRIPT, first_steps.SECTION))
    if marked != text.count("\n<!-- "):
        return "a marked block has a form that this check cannot read"
    return f"do not exist: {missing}" if missing else None


def checks(programs):
    for document in [*DOCUMENTS, *sorted((ROOT / "docs").glob("*.md"))]:
        name = document.relative_to(ROOT).as_posix()
        text = document.read_text()
        yield "links", name, check_references, (document,)
        for quoted, block in QUOTE.findall(text):
            yield "quote", f"{name}: {quoted}", check_quote, (quoted, block)
        tool = [block for part, block in first_steps.SECTION.findall(text) if part == "tool"]
        for block in TRANSCRIPT.findall(text) + tool:
            yield "run", name, check_transcript, (block, programs)
    for text in FROZEN_TEXT.findall((ROOT / "docs/frozen.md").read_text()):
        yield "frozen", text, check_frozen_text, (text,)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: check-docs.py DIRECTORY_OF_PROGRAMS")
    sys.exit(run_checks(list(checks(os.path.abspath(sys.argv[1])))))
