#!/usr/bin/env python3
"""Runs every command of pgtool in every situation that scripts meet: nothing to work on, a good file,
a bad one, both, a directory, the standard input, a full disc, a closed pipe, no permission.

    check_matrix.py PGTOOL

Exit statuses are 0 done, 1 something failed, 2 wrong command line. Each failure is named with its
reason on the standard error stream, and the other files are still done. The last line is "N passed,
M failed".
"""
import contextlib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/support"))
from check_runner import run_checks  # noqa: E402

IMAGE = ROOT / "tests/data/native/mr_implicit_le.dcm"
DICOMDIR = ROOT / "tests/data/dicomdir/DICOMDIR_implicit"
NOBODY = 65534

# Each command with what comes behind its files. OUT is a file, or with several files a folder.
READERS = {"dump": [], "json": [], "scan": [], "check": []}
WRITERS = {"set": ["PatientID=7", "-o", "OUT"], "delete": ["-t", "PatientID", "-o", "OUT"],
           "anonymize": ["-o", "OUT"]}
SINGLE = {"image": ["-o", "OUT"], "save": ["OUT"]}
ANSWERS = {"tags": "PatientName", "uid": "1.2.840.10008.1.2", "modality": "CT"}
PRINTERS = {**{name: [word] for name, word in ANSWERS.items()}, "profiles": [],
            "profiles --names": [],
            "documentation": ["man"], "dump": ["good"], "json": ["good"], "scan": ["good"], "check": ["good"],
            "browse": ["DICOMDIR"], "dump --raw": ["good"], "save good": ["-"],
            "set good PatientID=7 -o": ["-"], "image good -o": ["-"]}


@contextlib.contextmanager
def workplace():
    """A directory with a good file, a bad one, a directory with both, a DICOMDIR, and JSON."""
    with tempfile.TemporaryDirectory() as directory:
        place = pathlib.Path(directory)
        place.chmod(0o777)
        (place / "dir/sub").mkdir(parents=True)
        for name in ("good", "dir/a", "dir/sub/b"):
            shutil.copyfile(IMAGE, place / name)
        for name in ("bad", "dir/text"):
            (place / name).write_text("this is no DICOM file, however long one looks at it\n")
        shutil.copyfile(DICOMDIR, place / "DICOMDIR")
        (place / "json").write_text('{"00100020":{"vr":"LO","Value":["4711"]}}\n')
        yield place


def run(tool, place, arguments, **options):
    options.setdefault("stdin", subprocess.DEVNULL)
    options.setdefault("stdout", subprocess.PIPE)
    return subprocess.run([tool, *arguments], cwd=place, stderr=subprocess.PIPE, timeout=60,
                          check=False, **options)


def complaint_about(done, status, texts=()):
    error = done.stderr.decode(errors="replace")
    if done.returncode != status:
        return f"exit status {done.returncode}, not {status}: {error}"
    for text in texts:
        if text not in error:
            return f"the errors lack \"{text}\": {error}"
    return f"errors: {error}" if status == 0 and "failed" in error.replace(", 0 failed", "") else None


def check(tool, arguments, status, texts, made=(), **options):
    """made are files that the command has to leave."""
    with workplace() as place:
        found = complaint_about(run(tool, place, arguments, **options), status, texts)
        missing = [name for name in made if not (place / name).is_file()]
        return found or (f"{missing} not written" if missing else None)


def check_standard_input(tool, arguments):
    with workplace() as place, open(place / "good", "rb") as good:
        found = complaint_about(run(tool, place, arguments, stdin=good), 0)
        # What comes from a pipe cannot be read again.
        piped = run(tool, place, arguments, stdin=None, input=IMAGE.read_bytes())
        return found or complaint_about(piped, 0)


def check_full_disc(tool, arguments):
    with workplace() as place, open("/dev/full", "wb") as full:
        return complaint_about(run(tool, place, arguments, stdout=full), 1, ["pgtool"])


def check_closed_pipe(tool, arguments):
    """Nobody reads: the command ends soon, by the signal or with status 1, and says nothing else."""
    reader, writer = os.pipe()
    os.close(reader)
    with workplace() as place, os.fdopen(writer, "wb") as pipe:
        done = run(tool, place, arguments, stdout=pipe)
    return None if done.returncode in (1, -13) else f"exit status {done.returncode}"


def check_no_permission(tool, arguments, closed, user):
    """A file that may not be read, or a folder that may not be written to."""
    with workplace() as place:
        (place / "locked").mkdir()
        (place / closed).chmod(0o000 if closed == "good" else 0o555)
        options = {"user": NOBODY, "group": NOBODY} if user else {}
        done = run(tool, place, arguments, **options)
        left = list((place / "locked").iterdir())
        (place / closed).chmod(0o755)
        if left:
            return f"{left} is there"
        return complaint_about(done, 1, ["good" if closed == "good" else "locked/out"])


def checks_of_inputs(tool):
    for name, rest in {**READERS, **WRITERS}.items():
        out = ["OUT"] if "OUT" in rest else []
        yield "nothing", name, check, (tool, [name, *rest], 2, [f"usage: pgtool {name}"])
        yield "good", name, check, (tool, [name, "good", *rest], 0, [], out)
        both = [] if name in ("check", "scan") else ["bad: it is no DICOM data set"]
        status = 0 if name == "scan" else 1
        yield "bad", name, check, (tool, [name, "bad", *rest], status, both)
        inner = ["OUT/good"] if out else []
        yield "mixed", name, check, (tool, [name, "bad", "good", *rest], status, both, inner)
        if name == "check":
            continue
        yield "missing", name, check, (tool, [name, "no", "good", *rest], 1,
                                       ["cannot open no: no such file"], inner)
        below = ["OUT/a", "OUT/sub/b"] if out else []
        yield "folder", name, check, (tool, [name, "-r", "dir", *rest], 0, [], below)
        if name != "scan":
            yield "folder", f"{name} without -r", check, (tool, [name, "dir", *rest], 1,
                                                          ["dir is a directory"])
            yield "stdin", name, check_standard_input, (tool, [name, "-", *rest])
    for name, rest in SINGLE.items():
        yield "nothing", name, check, (tool, [name, *rest], 2, [f"usage: pgtool {name}"])
        yield "good", name, check, (tool, [name, "good", *rest], 0, [], ["OUT"])
        yield "bad", name, check, (tool, [name, "bad", *rest], 1, ["bad: it is no DICOM data set"])
        yield "folder", name, check, (tool, [name, "dir", *rest], 1, ["dir: it is a directory"])
    yield "nothing", "from-json", check, (tool, ["from-json"], 2, ["usage: pgtool from-json"])
    yield "good", "from-json", check, (tool, ["from-json", "json", "-o", "OUT"], 0, [], ["OUT"])
    yield "bad", "from-json", check, (tool, ["from-json", "bad", "-o", "OUT"], 1, ["bad: at byte"])
    yield "folder", "from-json", check, (tool, ["from-json", "dir", "-o", "OUT"], 1, ["dir"])
    yield "stdin", "save", check_standard_input, (tool, ["save", "-", "OUT"])
    for name, word in ANSWERS.items():
        yield "nothing", name, check, (tool, [name], 2, [f"usage: pgtool {name}"])
        yield "good", name, check, (tool, [name, word], 0, [])
        yield "mixed", name, check, (tool, [name, "nosuchthing", word], 1, ["unknown: nosuchthing"])
    yield "nothing", "browse", check, (tool, ["browse"], 2, ["usage: pgtool browse"])
    yield "good", "browse", check, (tool, ["browse", "DICOMDIR"], 0, [])
    yield "bad", "browse", check, (tool, ["browse", "good"], 1, ["good is not a DICOMDIR"])
    yield "folder", "browse", check, (tool, ["browse", "."], 0, [])
    yield "nothing", "mkdir", check, (tool, ["mkdir"], 2, ["usage: pgtool mkdir"])
    yield "folder", "mkdir", check, (tool, ["mkdir", "dir"], 0, [], ["dir/DICOMDIR"])
    yield "bad", "mkdir", check, (tool, ["mkdir", "no"], 1, ["pgtool mkdir: "])
    yield "mixed", "mkdir", check, (tool, ["mkdir", "dir", "--strict"], 1, ["refused files: 2"])
    yield "bad", "mkdir", check, (tool, ["mkdir", "dir", "--profile", "STD-GEN-DC"], 2,
                                  ["did you mean STD-GEN-CD"])
    yield "nothing", "mkdir --add", check, (tool, ["mkdir", "dir", "--add"], 2,
                                            ["a file is expected"])
    yield "bad", "mkdir --add", check, (tool, ["mkdir", "dir", "--add", "good"], 1,
                                        ["cannot open dir/DICOMDIR"])
    yield "bad", "mkdir --remove", check, (tool, ["mkdir", ".", "--remove", "1.2"], 1,
                                           ["no such study: 1.2"])
    yield "good", "profiles", check, (tool, ["profiles", "STD-GEN-CD"], 0, [])
    yield "bad", "profiles", check, (tool, ["profiles", "NOTHING"], 2, ["unknown profile"])


def checks(tool):
    yield from checks_of_inputs(tool)
    for command, rest in PRINTERS.items():
        arguments = [*command.split(), *rest]
        yield "full", " ".join(arguments), check_full_disc, (tool, arguments)
        yield "closed", " ".join(arguments), check_closed_pipe, (tool, arguments)
    root = os.getuid() == 0
    for name, rest in {**WRITERS, **SINGLE}.items():
        if name == "image" and root:
            continue
        arguments = [name, "good", *("locked/out" if word == "OUT" else word for word in rest)]
        yield "locked", name, check_no_permission, (tool, arguments, "locked", root)
    for name in ("dump", "json", "scan", "set"):
        arguments = [name, "good", *WRITERS.get(name, [])]
        yield "locked", f"{name}: source", check_no_permission, (tool, arguments, "good", root)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: check_matrix.py PGTOOL")
    sys.exit(run_checks(list(checks(os.path.abspath(sys.argv[1])))))
