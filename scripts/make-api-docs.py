#!/usr/bin/env python3
"""Makes one page, with an index, of the comments of the public headers: make-api-docs.py FILE

The build does that for packages, which have it as docs/api.md.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FIRST = ["pgkit.h", "dataset.h", "node.h", "list.h", "accessors.h"]
INTRODUCTION = """# The interface

Everything that the headers in `include/pgkit` declare, with what they say about it. This page is
made from them by `scripts/make-api-docs.py`: change the headers.
"""
HIDDEN = re.compile(r"#(if|ifndef|ifdef|else|elif|endif|include|pragma|define \w+_H$)|"
                    r"PGKIT_(BEGIN|END)_C$|extern \"C\"|static_assert")
SECTION = re.compile(r"// -{4} (.*?) -{4,}$")
LIST_ITEM = re.compile(r"( *)(\d+\.|-) +")
FUNCTION = re.compile(r"^PG(?:KIT|VIEW)_API [^;(]*?\b((?:pg|vw)\w+)\(", re.MULTILINE)
CLASS = re.compile(r"^(?:class|typedef struct|typedef enum|enum)(?: PGKIT_API)? (\w+)[^;]*?\{",
                   re.MULTILINE)


def headers():
    paths = {path.name: path for path in (ROOT / "include/pgkit").glob("*.h")}
    names = FIRST + sorted(paths.keys() - set(FIRST) - {"imaging.h", "export.h"}) + ["imaging.h"]
    return [paths[name] for name in names]


def escaped(text):
    """Prose, in which stars, underscores and angles mean themselves."""
    return re.sub(r"([*_<>|`\[\]])", r"\\\1", text)


def prose(lines):
    """A comment as Markdown: paragraphs, lists, and what is set in further as it stands."""
    source = shown = 0  # where the text of an open list item begins, in the comment and here
    for paragraph in re.split(r"\n\s*\n", "\n".join(lines)):
        paragraph = paragraph.split("\n")
        least = min(len(line) - len(line.lstrip()) for line in paragraph)
        starts_item = LIST_ITEM.match(paragraph[0])
        if not starts_item and least >= source + 2:
            yield " " * shown + "```"
            yield from (" " * shown + line[least:] for line in paragraph)
            yield " " * shown + "```"
        else:
            if not paragraph[0].startswith(" " * source):
                source = shown = 0
            for line in paragraph:
                item = LIST_ITEM.match(line)
                if item and (starts_item or shown):
                    source, shown = item.end(), len(item[2]) + 1
                    yield f"{item[2]} {escaped(line[source:])}"
                else:
                    yield " " * shown + escaped(line.strip())
        yield ""


def blocks(text):
    """The parts of a header between blank lines that are outside of braces."""
    depth, part = 0, []
    for line in text.split("\n"):
        bare = re.sub(r"//.*|/\*.*?\*/", "", line)
        if not line.strip() and depth == 0:
            yield part
            part = []
            continue
        if not (depth == 0 and HIDDEN.match(bare.strip())):
            part.append(line)
        depth += bare.count("{") - bare.count("}")
    yield part


def without_preprocessor(text):
    """Without directives and what only one of the languages sees of handles and layouts."""
    text = re.sub(r"(?ms)^#if defined\(__cplusplus\)\nclass \w+;\n#else\n.*?#endif\n", "", text)
    text = re.sub(r"(?ms)^#else\ntypedef struct.*?#endif\n", "", text)
    text = re.sub(r"(?ms)^// The layout is part of the interface[^\n]*\n", "", text)
    text = re.sub(r"(?ms)^static_assert\(.*?\);\n", "", text)
    text = re.sub(r"(?ms)^namespace \w+ \{.*?^\}\n", "", text)
    return re.sub(r"(?m)^#(?:[^\n]*\\\n)*[^\n]*\n", "", text)


def comment_and_code(part):
    comment = []
    while part and part[0].startswith("//"):
        comment.append(part.pop(0)[2:].removeprefix(" "))
    return comment, part


def page_of(header):
    yield f"## pgkit/{header.name}"
    yield ""
    for part in blocks(without_preprocessor(header.read_text())):
        section = SECTION.match(part[0]) if part else None
        if section:
            part = part[1:]
            yield f"### {section[1]}"
            yield ""
        comment, code = comment_and_code(part)
        if any(comment):
            yield from prose("\n".join(comment).strip("\n").split("\n"))
        if code:
            yield "```cpp"
            yield from code
            yield "```"
            yield ""


def index():
    yield "## Index"
    yield ""
    places = {}
    for header in headers():
        text = header.read_text()
        for name in FUNCTION.findall(text) + CLASS.findall(text):
            places.setdefault(name, header.name)
    for name in sorted(places, key=str.lower):
        anchor = "pgkit" + places[name].replace(".", "")
        yield f"- `{name}`: [{places[name]}](#{anchor})"


def page():
    lines = [INTRODUCTION]
    for header in headers():
        lines += page_of(header)
    return "\n".join([*lines, *index()]) + "\n"


def main(arguments):
    if len(arguments) != 1:
        sys.exit(__doc__)
    made = pathlib.Path(arguments[0])
    made.parent.mkdir(parents=True, exist_ok=True)  # make, unlike ninja, makes no folders
    made.write_text(page(), encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1:])
