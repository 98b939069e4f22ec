#!/usr/bin/python3
"""Looks for flat functions that an exception could leave.

Every flat function of the library is one statement: a call of the firewall (base/firewall.h), of a
helper that is built on it or throws nothing itself (api/), or of another flat function. And the host
in C that runs out of memory (tests/hosts) calls every one of the library.

    check_firewall.py

The last line is "N passed, M failed".
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/support"))

from check_runner import report  # noqa: E402

# Each is noexcept, which the check looks for, too.
HELPERS = {
    "Guarded": "src/base/firewall.h",
    "CallOn": "src/api/handle_access.h",
    "FieldOf": "src/api/handle_access.h",
    "ListOf": "src/api/handle_access.h",
    "SetField": "src/api/handle_access.h",
    "TextOf": "src/api/shared_text.h",
}
HOST = "tests/hosts/every_function.c"


def flat_functions():
    """The names that the module-definition file exports, without the members of classes."""
    definitions = (ROOT / "src/pgkit.def").read_text()
    return re.findall(r"^    (pg\w+) @\d+$", definitions, re.MULTILINE)


def bodies():
    """Yields (name, body) of the flat functions that are defined in the sources."""
    pattern = re.compile(r"^[A-Za-z][\w*: ]*?[ *&](pgx?[A-Z]\w*)\(([^;{]*?)\) {(.*?)}$",
                         re.MULTILINE | re.DOTALL)
    for path in sorted((ROOT / "src").rglob("*.cpp")):
        # A definition ends with the first brace at the margin, or on its line.
        text = re.sub(r"\n(?!\S)[^\n]*}$", lambda line: line[0] + " ", path.read_text(),
                      flags=re.MULTILINE)
        for match in pattern.finditer(text):
            yield match[1], " ".join(match[3].split())


def complaint_about(body, flat):
    statement = re.fullmatch(r"(?:return )?(?:pgkit::)?(\w+)\((.*)\); ?", body + " ")
    if statement is None or not is_one_call(statement[2]):
        return f"is more than one statement: {body}"
    if statement[1] not in HELPERS and statement[1] not in flat:
        return f"calls {statement[1]}, which is no firewall"
    return None


def is_one_call(arguments):
    """Whether the parenthesis that was opened in front of the text is closed only behind it."""
    depth = 0
    for character in arguments:
        depth += {"(": 1, ")": -1}.get(character, 0)
        if depth < 0:
            return False
    return depth == 0


def check_helpers():
    for name, path in HELPERS.items():
        text = (ROOT / path).read_text()
        heads = re.findall(rf"^[^/\n]*\b{name}\([^{{;]*\{{", text, re.MULTILINE)
        throws = not heads or not all("noexcept" in head for head in heads)
        yield "helper", name, "is not noexcept" if throws else None


def check_functions(names):
    found = {}
    for name, body in bodies():
        found.setdefault(name, []).append(body)
    for name in names:
        definitions = found.get(name, [])
        if len(definitions) != 1:
            yield "function", name, f"{len(definitions)} definitions"
        else:
            yield "function", name, complaint_about(definitions[0], names)


def check_host(names):
    text = (ROOT / HOST).read_text()
    for name in names:
        yield "host", name, None if re.search(rf"\b{name}\b", text) else f"{HOST} leaves it out"


def main():
    names = flat_functions()
    return report([*check_helpers(), *check_functions(names), *check_host(names)])


if __name__ == "__main__":
    sys.exit(main())
