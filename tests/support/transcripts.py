"""Transcripts in documents: what somebody types, and what that prints."""

import re

# "$ " is typed in a shell, "> " at a prompt of Windows.
_PROMPT = re.compile(r"(?m)^[$>] ")


def steps(transcript):
    """Yields the commands of a transcript, each with what stands below it."""
    for part in _PROMPT.split(transcript)[1:]:
        command, _, expected = part.partition("\n")
        yield command, expected


def is_printed(expected, printed):
    """Whether this is what was printed; a line "..." stands for any number of lines."""
    pattern = "".join("(?:.*\n)*" if line == "...\n" else re.escape(line)
                      for line in expected.splitlines(keepends=True))
    return re.fullmatch(pattern, printed) is not None
