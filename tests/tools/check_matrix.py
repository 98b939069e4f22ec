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
            "browse": ["DICOMDIR"], "browse --json": ["DICOMDIR"], "verify": ["DICOMDIR"],
            "verify --json": ["DICOMDIR"], "dump --raw": ["good"], "save good": ["-"],
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


def check_made_medium(tool):
    """What mkdir makes of files that conform is sound."""
    with workplace() as place:
        (place / "medium/DIR").mkdir(parents=True)
        shutil.copyfile(IMAGE, place / "medium/DIR/A")
        found = complaint_about(run(tool, place, ["mkdir", "medium", "--no-list", "--fill-missing"]), 0)
        return found or complaint_about(run(tool, place, ["verify", "medium"]), 0, ["no findings"])


def check_colours(tool, arguments, environment, wanted):
    """Colours are for terminals, and for those who do not refuse them."""
    terminal, output = os.openpty()
    with workplace() as place, os.fdopen(terminal, "rb", buffering=0) as reader:
        done = run(tool, place, arguments, stdout=output,
                   env={**os.environ, "TERM": "xterm", "NO_COLOR": "", **environment})
        os.close(output)
        printed = reader.read(4096)
    if (b"\x1b[" in printed) != wanted:
        return f"printed {printed[:80]}"
    return complaint_about(done, 0)


def check_closed_medium(tool, user):
    """A file of a medium that may not be read is a finding; a folder that may not be written to keeps
    its DICOMDIR."""
    options = {"user": NOBODY, "group": NOBODY} if user else {}
    with workplace() as place:
        medium = place / "medium"
        medium.mkdir()
        shutil.copyfile(IMAGE, medium / "A")
        run(tool, place, ["mkdir", "medium", "--no-list"])
        former = (medium / "DICOMDIR").read_bytes()
        (medium / "A").chmod(0o000)
        done = run(tool, place, ["verify", "medium"], **options)
        (medium / "A").chmod(0o644)
        if b"A cannot be read\n" not in done.stdout:
            return f"printed {done.stdout}"
        shutil.copyfile(IMAGE, medium / "lowercase")
        medium.chmod(0o555)
        done = run(tool, place, ["verify", "medium", "--repair"], **options)
        medium.chmod(0o755)
        if (medium / "DICOMDIR").read_bytes() != former:
            return "the DICOMDIR is another"
        return complaint_about(done, 1, ["DICOMDIR: the file cannot be created"])


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
        yield "missing", name, check, (tool, [name, "no", "good", *rest], 1,
                                       ["cannot open no: no such file"], inner)
        below = ["OUT/a", "OUT/sub/b"] if out else []
        twice = 1 if name == "check" else 0  # the folder has the same instance twice
        yield "folder", name, check, (tool, [name, "-r", "dir", *rest], twice, [], below)
        if name != "scan":
            yield "folder", f"{name} without -r", check, (tool, [name, "dir", *rest], 1,
                                                          ["dir is a directory"])
        if name not in ("check", "scan"):
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
    yield "mixed", "browse --files", check, (tool, ["browse", "--files", "DICOMDIR"], 1, ["missing: "])
    yield "nothing", "verify", check, (tool, ["verify"], 2, ["usage: pgtool verify"])
    yield "missing", "verify", check, (tool, ["verify", "no"], 1, ["cannot open no: no such file"])
    yield "bad", "verify", check, (tool, ["verify", "dir"], 1, ["0 records, 0 files: 3 findings"])
    yield "mixed", "verify", check, (tool, ["verify", "DICOMDIR"], 1, ["52 records, 0 files: "])
    yield "good", "verify", check_made_medium, (tool,)
    yield "folder", "verify --repair", check, (tool, ["verify", "--repair", "dir"], 1,
                                               ["a new DICOMDIR is in place"], ["dir/DICOMDIR"])
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
    yield from checks_of_disc(tool)


def checks_of_disc(tool):
    made = ["OUT/DICOMDIR", "OUT/README.TXT", "OUT/DICOM/PAT00001/STU00001/SER00001/IM000001"]
    rest = ["-o", "OUT"]
    yield "nothing", "disc", check, (tool, ["disc", *rest], 2, ["usage: pgtool disc"])
    yield "nothing", "disc -o", check, (tool, ["disc", "good"], 2, ["-o DIR is expected"])
    yield "good", "disc", check, (tool, ["disc", "good", *rest], 0, [], made)
    yield "bad", "disc", check, (tool, ["disc", "bad", *rest], 1, ["there is nothing to store"])
    yield "mixed", "disc", check, (tool, ["disc", "bad", "good", *rest], 0, [], made)
    yield "missing", "disc", check, (tool, ["disc", "no", "good", *rest], 1,
                                     ["cannot open no: no such file"], made)
    yield "folder", "disc", check, (tool, ["disc", "dir", *rest], 0, [], made)
    yield "folder", "disc of a disc", check, (tool, ["disc", ".", *rest], 0, [], made)
    yield "full", "disc good -o OUT", check_full_disc, (tool, ["disc", "good", *rest])
    yield "closed", "disc good -o OUT", check_closed_pipe, (tool, ["disc", "good", *rest])
    root = os.getuid() == 0
    yield "locked", "disc", check_no_permission, (
        tool, ["disc", "good", "-o", "locked/out"], "locked", root)
    yield "locked", "disc: source", check_no_permission, (
        tool, ["disc", "good", *rest], "good", root)


def checks(tool):
    yield from checks_of_inputs(tool)
    for command, rest in PRINTERS.items():
        arguments = [*command.split(), *rest]
        yield "full", " ".join(arguments), check_full_disc, (tool, arguments)
        yield "closed", " ".join(arguments), check_closed_pipe, (tool, arguments)
    some = ["dump", "good", "-t", "PatientID"]
    yield "terminal", "dump", check_colours, (tool, some, {}, True)
    yield "terminal", "dump, NO_COLOR", check_colours, (tool, some, {"NO_COLOR": "1"}, False)
    yield "terminal", "dump, TERM=dumb", check_colours, (tool, some, {"TERM": "dumb"}, False)
    yield "terminal", "dump --raw", check_colours, (tool, ["dump", "--raw", "good"], {}, False)
    root = os.getuid() == 0
    for name, rest in {**WRITERS, **SINGLE}.items():
        if name == "image" and root:
            continue
        arguments = [name, "good", *("locked/out" if word == "OUT" else word for word in rest)]
        yield "locked", name, check_no_permission, (tool, arguments, "locked", root)
    yield "locked", "verify", check_closed_medium, (tool, root)
    for name in ("dump", "json", "scan", "set"):
        arguments = [name, "good", *WRITERS.get(name, [])]
        yield "locked", f"{name}: source", check_no_permission, (tool, arguments, "good", root)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: check_matrix.py PGTOOL")
    sys.exit(run_checks(list(checks(os.path.abspath(sys.argv[1])))))
