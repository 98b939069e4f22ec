"""The links of Markdown documents."""

import re

LINK = re.compile(r"\]\(([^)#:]+)(?:#[^)]*)?\)")


def dead_links(document):
    """The relative links of a document (a path) that lead nowhere."""
    return [target for target in LINK.findall(document.read_text(encoding="utf-8"))
            if not (document.parent / target).exists()]
