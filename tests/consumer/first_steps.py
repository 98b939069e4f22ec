#!/usr/bin/env python3
"""Types what docs/first-steps.md tells newcomers to type, and compares what is printed.

    first_steps.py ROOT    in a system below ROOT that has the Debian packages; as root

A section is a block behind "<!-- first-steps NAME -->". It is typed in a directory of its own with the
files that the page quotes and image.dcm. check_installation.py types the same against an installation,
and what is for Windows against the archive. The last line is "N passed, M failed".
"""
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/support"))
from check_runner import report  # noqa: E402
from transcripts import is_printed, steps  # noqa: E402

PAGE = ROOT / "docs/first-steps.md"
IMAGE = ROOT / "tests/data/native/mr_implicit_le.dcm"
QUOTED = re.compile(r"<!-- quote (\S+) -->")
SECTION = re.compile(r"<!-- first-steps (\S+) -->\n+```\w*\n(.*?\n)```\n", re.DOTALL)
FOR_WINDOWS = ("windows",)
# Builds the library, with nothing but a checkout.
FROM_SOURCES = ("wheel",)


def sections():
    """The transcripts of the page by their names."""
    return dict(SECTION.findall(PAGE.read_text()))


def prepare(directory):
    """Makes the directory in which a newcomer begins."""
    directory.mkdir(parents=True)
    for name in QUOTED.findall(PAGE.read_text()):
        shutil.copy(ROOT / name, directory)
    shutil.copyfile(IMAGE, directory / "image.dcm")


def complaint_about(transcript, run):
    """Gives each command of a transcript to run, which returns its exit status and what it printed."""
    for command, expected in steps(transcript):
        status, printed = run(command)
        if status != 0 or not is_printed(expected, printed):
            return f"{command}\ngives {status} and prints:\n{printed[-2000:]}"
    return None


def shell(*launcher, **options):
    """A way to run commands: a shell, started by this launcher."""
    def run(command):
        done = subprocess.run([*map(str, launcher), "bash", "-c", command], text=True, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=900, **options)
        return done.returncode, done.stdout
    return run


def in_root(root, name, transcript):
    """A section in a system below root. Nothing of it needs a network, and there is none."""
    directory = root / "first" / name
    prepare(directory)
    if name in FROM_SOURCES:
        archive = subprocess.run(["git", "archive", "HEAD"], cwd=ROOT, check=True,
                                 stdout=subprocess.PIPE).stdout
        (directory / "sources").mkdir()
        subprocess.run(["tar", "--extract", "--directory", directory / "sources"], input=archive,
                       check=True)
    inside = f"/first/{name}"
    return complaint_about(transcript, shell(
        "unshare", "--net", "chroot", root, "env", "-i", "PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8",
        "HOME=/root", "env", "-C", inside))


def main(root):
    root = pathlib.Path(root).resolve(strict=True)
    shutil.rmtree(root / "first", ignore_errors=True)
    return report(("first", name, in_root(root, name, transcript))
                  for name, transcript in sections().items() if name not in FOR_WINDOWS)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: first_steps.py ROOT")
    sys.exit(main(sys.argv[1]))
