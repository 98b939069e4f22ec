#!/usr/bin/python3
"""Makes discs of real files with pgtool disc and has independent readers judge them.

    judge_discs.py PGTOOL [WINDOWS_PGTOOL COMMAND...]

The sources are folders of tests/data and, when the environment variable PGKIT_SAMPLES names a
directory, the media and files in it. Kinds of checks, a line each:

  stored     every instance of the sources that pydicom finds is on the disc once, and nothing else;
             what was copied has the same bytes.
  names      File IDs have at most 8 components of at most 8 characters, all names are 8.3.
  pydicom    its FileSet loads the disc, warns of nothing, and has the hierarchy of the files.
  dcmdump    reads the DICOMDIR without a warning, and its records are that hierarchy.
  dcdirdmp   reads the DICOMDIR without a complaint, and lists that hierarchy.
  dciodvfy   finds no error in the DICOMDIR, but for values that the files have.
  gdcm       gdcmgendir, where it can, makes a DICOMDIR of the same instances.
  explicit   re-encoded, every native file is explicit little endian with the values that pydicom
             reads in the original.
  image      the image has the same files, as a program for ISO 9660 level 1 reads them.
  killed     killed at any time, no DICOMDIR stands anywhere; interrupted, nothing does.
  windows    the Windows build makes the same disc, but for the UID of the DICOMDIR.
  pages      see index_pages.py; so has a disc of files whose texts are markup and scripts.

What needs a program that is not installed says SKIPPED. The last line is "N passed, M failed"; the
exit status tells the same.
"""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import warnings

import pydicom
from pydicom import fileset
from pydicom.fileset import FileSet

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402
from index_pages import Page, check_pages  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
SECONDS = 300
NATIVE = ("1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.1.99",
          "1.2.840.10008.1.2.2")
# The bytes of a number where pydicom leaves the order of the file.
UNITS = {"OW": 2, "OF": 4, "OL": 4, "OD": 8, "OV": 8}
EXPLICIT = "1.2.840.10008.1.2.1"
OWN_UID = re.compile(rb"1\.2\.999\.1\.47\.453\.2865\.\d{14}\.\d+\0?")


# A type of record that is newer than the readers' releases; pydicom asks for a letter for each.
NEW_RECORD = "ANNOTATION"
fileset._PREFIXES.setdefault(NEW_RECORD, "AN")
# Of a spectroscopy record, where the file refers to images; dciodvfy always asks for it.
EVIDENCE = "ReferencedImageEvidenceSequence"


class Complaint(Exception):
    pass


class Skipped(Exception):
    pass


def run(command, **options):
    return subprocess.run(command, capture_output=True, timeout=SECONDS, check=False, **options)


def read(path, **options):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return pydicom.dcmread(path, force=True, **options)


def plain(uid):
    return str(uid).strip(" \0")


# SOP classes, and types of records, of what belongs to no patient.
ROOT_CLASSES = tuple(f"1.2.840.10008.5.1.4.{number}." for number in
                     ("38", "39", "43", "44", "45", "1.1.200", "1.1.201"))
ROOT_RECORDS = {"HANGING PROTOCOL", "PALETTE", "IMPLANT", "IMPLANT GROUP", "IMPLANT ASSY", "INVENTORY"}


def key_of(file):
    """(study UID, series UID, instance UID), the first two empty for what belongs to no patient."""
    if str(file.SOPClassUID).startswith(ROOT_CLASSES):
        return "", "", plain(file.SOPInstanceUID)
    return tuple(map(plain, (file.StudyInstanceUID, file.SeriesInstanceUID, file.SOPInstanceUID)))


def hierarchy_of_files(folder):
    """The keys of the instances below a folder."""
    found = set()
    for path in sorted(path for path in folder.rglob("*") if path.is_file()):
        try:
            file = read(path, stop_before_pixels=True)
            key = key_of(file)
        except Exception:  # what pydicom cannot read, or what is none
            continue
        if "DirectoryRecordSequence" not in file and (all(key) or not any(key[:2])):
            found.add(key)
    return found


def instances_of(keys):
    return {instance for _, _, instance in keys}


def difference(found, expected):
    extra = sorted(found - expected)[:2]
    missing = sorted(expected - found)[:2]
    return f"{len(found)} instances, expected {len(expected)}; extra {extra}, missing {missing}"


def records_of_dump(text):
    """{(study UID, series UID, instance UID)} of what dcmdump prints, by the order of the items:
    children follow their parents in the files that pgtool writes."""
    study = series = ""
    keys = set()
    kind = None
    for line in text.splitlines():
        value = re.search(r"\[(.*)\]", line)
        value = value[1].strip() if value else ""
        if "(0004,1430)" in line:
            kind = value
            if kind in ROOT_RECORDS:
                study = series = ""
        elif "(0020,000d)" in line and kind == "STUDY":
            study = value
        elif "(0020,000e)" in line and kind == "SERIES":
            series = value
        elif "(0004,1511)" in line:
            keys.add((study, series, value))
    return keys


class Disc:
    """A disc that pgtool has made of some folders."""

    def __init__(self, tool, sources, work, name):
        self.tool = tool
        self.name = name.replace("/", "-")
        self.sources = sources
        self.work = work
        self.folder = work / "disc"
        self.done = self.make(self.folder, "--web", "--icons", "64")
        self.expected = hierarchy_of_files(self.folder / "DICOM")

    def make(self, folder, *options, command=None):
        arguments = ["disc", *map(str, self.sources), "-o", str(folder), *options]
        done = run([*(command or [self.tool]), *arguments])
        # 1: some files cannot be stored, which are named.
        if done.returncode not in (0, 1) or not (folder / "DICOMDIR").is_file():
            raise Complaint(f"pgtool: exit status {done.returncode}: {done.stderr.decode()}")
        return done

    def check_stored(self, _):
        sources = {plain(uid) for folder in self.sources
                   for uid in instances_of(hierarchy_of_files(folder))}
        found = instances_of(self.expected)
        if found != sources:
            return difference(found, sources)
        files = [path for path in (self.folder / "DICOM").rglob("*") if path.is_file()]
        if len(files) != len(found):
            return f"{len(files)} files of {len(found)} instances"
        known = {path.read_bytes() for folder in self.sources for path in folder.rglob("*")
                 if path.is_file()}
        made = re.search(rb"given file meta information: (\d+)", self.done.stdout)
        changed = sum(path.read_bytes() not in known for path in files)
        if changed != (int(made[1]) if made else 0):
            return f"{changed} files have other bytes than their sources"
        return None

    def check_names(self, _):
        name = re.compile(r"[A-Z0-9_]{1,8}(\.[A-Z0-9_]{1,3})?")
        for path in self.folder.rglob("*"):
            parts = path.relative_to(self.folder).parts
            if len(parts) > 8 or not name.fullmatch(path.name):
                return str(path)
        for path in (self.folder / "DICOM").rglob("*"):
            if "." in path.name:
                return str(path)
        return None

    def check_pydicom(self, _):
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            warnings.simplefilter("ignore", DeprecationWarning)
            warnings.simplefilter("ignore", ResourceWarning)
            # Values that the files themselves have: names of persons and dates of old forms.
            warnings.filterwarnings("ignore", message=".*(PN|DA|TM|UI|charset|encod|characters).*")
            file_set = FileSet(self.folder / "DICOMDIR")
        found = set()
        for instance in file_set:
            if not os.path.isfile(instance.path):
                return f"{instance.path} is not there"
            found.add(key_of(instance))
        return None if found == self.expected else difference(found, self.expected)

    def check_dcmdump(self, _):
        done = run(["dcmdump", "-Un", "+L", "+R", "4096", str(self.folder / "DICOMDIR")])
        if done.returncode != 0 or done.stderr:
            return done.stderr.decode(errors="replace")
        found = records_of_dump(done.stdout.decode(errors="replace"))
        return None if found == self.expected else difference(found, self.expected)

    def check_dcdirdmp(self, _):
        done = run(["dcdirdmp", str(self.folder / "DICOMDIR")])
        output = (done.stdout + done.stderr).decode(errors="replace")
        if done.returncode != 0 or re.search(r"\b(error|warning)\b", output, re.IGNORECASE):
            return output[-500:]
        files = re.findall(r"-> (\S+)", output)
        there = {path.relative_to(self.folder).as_posix().replace("/", "\\")
                 for path in (self.folder / "DICOM").rglob("*") if path.is_file()}
        if sorted(files) != sorted(there):
            return f"{len(files)} files, expected {len(there)}"
        levels = {"STUDY": {study for study, _, _ in self.expected} - {""},
                  "SERIES": {series for _, series, _ in self.expected} - {""}}
        for level, expected in levels.items():
            count = len(re.findall(rf"^\t+{level}\b", output, re.MULTILINE))
            if count < len(expected):
                return f"{count} records {level}, expected {len(expected)}"
        return None

    def check_dciodvfy(self, _):
        output = run(["dciodvfy", str(self.folder / "DICOMDIR")]).stderr.decode(errors="replace")
        if "BasicDirectory" not in output:
            return output
        lines = output.splitlines()
        errors = [line for line in lines if line.startswith("Error") and not self.is_of_file(line)]
        summary = "Error - Dicom dataset contains invalid data values for Value Representations"
        if summary in errors and any("Value invalid" in line for line in lines):
            errors.remove(summary)
        return errors[0] if errors else None

    def is_of_file(self, line):
        """Whether an error is about a value that a file has like that, or about a key that a file
        lacks and nobody may make up: whether a report is complete, and what it is. A Study ID of
        blanks counts as one, and so does a type of record that the reader is too old for."""
        if "Value invalid for this VR" in line or "Illegal root for UID" in line:
            return True
        if f"Unrecognized enumerated value <{NEW_RECORD}>" in line:
            return True
        missing = re.search(r"(?:Empty|Missing) attribute .*Required Element=<(\w+)>", line)
        if not missing or missing[1] not in ("CompletionFlag", "VerificationFlag", "StudyID",
                                             "ConceptNameCodeSequence", EVIDENCE):
            return False
        for path in (self.folder / "DICOM").rglob("IM*"):
            file = read(path, stop_before_pixels=True)
            if missing[1] == "StudyID":
                # As it stands in the file: pydicom drops the blanks of values that it converts.
                raw = file.get_item(0x00200010)
                if raw is not None and raw.value and not raw.value.strip(b" \0"):
                    return True
            elif missing[1] == EVIDENCE or "ContentSequence" in file:
                if not file.get(missing[1]):
                    return True
        return False

    def check_gdcm(self, _):
        if not shutil.which("gdcmgendir"):
            raise Skipped("gdcmgendir is not installed")
        target = self.work / "gdcm"
        done = run(["gdcmgendir", "-r", "-i", str(self.folder / "DICOM"), "-o", str(target)])
        if done.returncode != 0 or not target.is_file():
            raise Skipped("gdcmgendir cannot: " + done.stderr.decode(errors="replace").strip())
        data_set = read(target)
        found = {plain(item.ReferencedSOPInstanceUIDInFile)
                 for item in data_set.DirectoryRecordSequence
                 if "ReferencedSOPInstanceUIDInFile" in item}
        expected = instances_of(self.expected)
        return None if found == expected else f"{len(found)} instances, expected {len(expected)}"

    def check_explicit(self, _):
        folder = self.work / "explicit"
        self.make(folder, "--transfer-syntax", "explicit")
        originals = {}
        for source in self.sources:
            for path in sorted(path for path in source.rglob("*") if path.is_file()):
                try:
                    originals.setdefault(plain(read(path, stop_before_pixels=True).SOPInstanceUID),
                                         path)
                except Exception:  # no DICOM
                    continue
        recoded = 0
        for path in sorted(path for path in (folder / "DICOM").rglob("*") if path.is_file()):
            stored = read(path)
            syntax = stored.file_meta.TransferSyntaxUID
            if syntax in NATIVE and syntax != EXPLICIT:
                return f"{path} is {syntax}"
            original = read(originals[plain(stored.SOPInstanceUID)])
            was = original.file_meta.get("TransferSyntaxUID", "")
            if was == syntax or was not in NATIVE:
                continue
            recoded += 1
            for element in original:
                if element.tag.element == 0 or element.VR in ("SQ", "UN") or \
                        element.tag.is_private:
                    continue
                value = element.value
                unit = UNITS.get(element.VR)
                if unit and was == "1.2.840.10008.1.2.2":
                    value = b"".join(value[i:i + unit][::-1] for i in range(0, len(value), unit))
                if stored.get(element.tag) is None or stored[element.tag].value != value:
                    return f"{path}: {element.tag} differs"
        has_some = DATA in self.sources[0].parents
        return None if recoded or not has_some else "nothing was re-encoded"

    def check_image(self, _):
        if not shutil.which("xorriso") and not shutil.which("genisoimage"):
            raise Skipped("neither xorriso nor genisoimage is installed")
        if not shutil.which("xorriso"):
            raise Skipped("xorriso, which reads images, is not installed")
        image = self.work / "disc.iso"
        self.make(self.work / "imaged", "--web", "--image", str(image))
        out = self.work / "extracted"
        done = run(["xorriso", "-osirrox", "on", "-indev", f"stdio:{image}", "-extract", "/", str(out)])
        if done.returncode != 0:
            return done.stderr.decode(errors="replace")[-300:]
        def files(folder):
            return {path.relative_to(folder).as_posix(): path.read_bytes()
                    for path in folder.rglob("*") if path.is_file()}
        found, expected = files(out), files(self.work / "imaged")
        if found != expected:
            return f"{sorted(found.keys() ^ expected.keys())[:3]} differ"
        subprocess.run(["chmod", "-R", "u+w", str(out)], check=False)
        return None

    def check_windows(self, command):
        folder = self.work / "windows"
        self.make(folder, "--web", "--icons", "64", command=command)
        def files(where):
            found = {}
            for path in where.rglob("*"):
                if path.is_file():
                    content = OWN_UID.sub(b"", path.read_bytes())
                    name = path.relative_to(where).as_posix()
                    # The times of creation, and those that are made up.
                    found[name] = b"" if name == "DICOMDIR" else content
            return found
        native, windows = files(self.folder), files(folder)
        differing = [name for name in sorted(native.keys() | windows.keys())
                     if native.get(name) != windows.get(name)]
        if differing:
            return f"{len(differing)} files differ: {differing[:3]}"
        dumped = [run(["dcmdump", "+L", str(where / "DICOMDIR")]).stdout
                  for where in (self.folder, folder)]
        keys = [records_of_dump(text.decode(errors="replace")) for text in dumped]
        return None if keys[0] == keys[1] else difference(keys[1], keys[0])

    def check_pages(self, _):
        return check_pages(self.folder, self.name)


# ---- Interruption -------------------------------------------------------------------------------

def traces(parent, before):
    """What a run has left in a folder."""
    return sorted(str(path.relative_to(parent)) for path in parent.iterdir() if path not in before)


def check_killed(tool, sources, work):
    """Kills runs at times spread over the whole of one, and interrupts others."""
    parent = work / "killed"
    parent.mkdir()
    command = [tool, "disc", *map(str, sources), "-o", str(parent / "disc"), "--web", "--icons", "64"]
    begin = time.monotonic()
    run(command)
    whole = time.monotonic() - begin
    shutil.rmtree(parent / "disc")
    halfway = 0
    for step in range(24):
        how = signal.SIGKILL if step % 2 == 0 else signal.SIGINT
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(whole * step / 20)
        process.send_signal(how)
        status = process.wait(timeout=SECONDS)
        left = traces(parent, ())
        if status >= 0:  # it was done before
            if "disc" not in left or not (parent / "disc/DICOMDIR").is_file():
                return f"exit status {status}, and there is {left}"
        elif status != -how:
            return f"ended by signal {-status}"
        elif how == signal.SIGINT and left and left != ["disc"]:
            return f"interrupted, it has left {left}"
        else:
            # Killed behind its last step, it may be complete.
            stray = [path for path in parent.rglob("DICOMDIR")
                     if path != parent / "disc/DICOMDIR"]
            if stray and not is_momentary(stray):
                return f"killed, it has left {stray}"
            halfway += any(name.startswith("disc.new") for name in left)
        for name in left:
            shutil.rmtree(parent / name)
    return None if halfway else "no run was killed in the middle"


def is_momentary(stray):
    """The library has put the DICOMDIR in place, and the next thing that happens is that it is set
    aside: it stands in a folder of another name, and all that it refers to is there."""
    folder = stray[0].parent
    keys = records_of_dump(run(["dcmdump", "+L", str(stray[0])]).stdout.decode(errors="replace"))
    return keys == hierarchy_of_files(folder / "DICOM")


# ---- Markup -------------------------------------------------------------------------------------

MARKUP = ("<script>document.title='owned'</script>", "</bdi></p><img src=x onerror=alert(1)>",
          "\"><svg onload=alert(1)>", "<!-- '", "&lt;b&gt;", "</style></title><h1>", "]]>javascript:")


def write_hostile_files(folder):
    """Every text of a file that a page may show is markup, in turn."""
    folder.mkdir()
    for number, markup in enumerate(MARKUP):
        for name in ("native/mr_implicit_le.dcm", "sequences/sr_nested_explicit_undefined.dcm"):
            file = read(DATA / name)
            for keyword in ("PatientName", "PatientID", "StudyDescription", "SeriesDescription",
                            "AccessionNumber", "InstitutionName", "ReferringPhysicianName", "StudyID",
                            "Modality", "StudyTime", "PatientSex", "CompletionFlag"):
                setattr(file, keyword, markup)
            for level in ("Study", "Series", "SOP"):
                uid = f"1.2.{number}.{len(name)}.{len(level)}"
                setattr(file, level + "InstanceUID", uid)
            for item in file.get("ContentSequence", []):
                item.ConceptNameCodeSequence[0].CodeMeaning = markup
            file.save_as(folder / f"{number}-{pathlib.Path(name).name}")


def check_hostile_pages(tool, work):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # pydicom says that no such value is allowed
        write_hostile_files(work / "hostile")
    run([tool, "disc", str(work / "hostile"), "-o", str(work / "disc"), "--web"])
    complaint = check_pages(work / "disc", "hostile", limit=20)
    text = Page((work / "disc/INDEX.HTM").read_text(encoding="utf-8")).text
    lost = [markup for markup in MARKUP if markup not in text]
    return complaint or (f"not shown: {lost}" if lost else None)


# ---- All of it ----------------------------------------------------------------------------------

KINDS = ("stored", "names", "pydicom", "dcmdump", "dcdirdmp", "dciodvfy", "gdcm", "explicit", "image",
         "windows", "pages")


def sources():
    """Yields (name, folders)."""
    yield "data", [DATA / name for name in ("charset", "encapsulated", "sequences", "native")]
    samples = os.environ.get("PGKIT_SAMPLES")
    if samples:
        samples = pathlib.Path(samples)
        media = sorted((samples / "media").iterdir())
        yield "media", media
        for folder in media:
            yield "media/" + folder.name, [folder]
        yield "samples", [samples / name for name in ("charset", "encapsulated", "native", "sequences")]


def outcome(check, *arguments):
    """A complaint, None, or a text that begins with SKIPPED."""
    try:
        return check(*arguments)
    except Skipped as reason:
        return f"SKIPPED: {reason}"
    except Complaint as complaint:
        return str(complaint)
    except Exception as error:  # the other reader may fail in its own ways
        return f"{type(error).__name__}: {error}"


def judged(kind, name, complaint):
    if complaint and complaint.startswith("SKIPPED"):
        print(f"{complaint} ({kind} {name})")
        return []
    return [(kind, name, complaint)]


def check_disc(tool, windows, folders, name):
    with tempfile.TemporaryDirectory(prefix="pgkit-disc-") as work:
        work = pathlib.Path(work)
        try:
            disc = Disc(tool, folders, work, name)
        except Complaint as complaint:
            yield "made", name, str(complaint)
            return
        for kind in KINDS:
            if kind == "windows" and not windows:
                continue
            yield from judged(kind, name, outcome(getattr(disc, "check_" + kind), windows))
        if name in ("data", "media"):
            yield from judged("killed", name, outcome(check_killed, tool, folders, work))


def check_hostile(tool):
    with tempfile.TemporaryDirectory(prefix="pgkit-disc-") as work:
        yield from judged("pages", "hostile", outcome(check_hostile_pages, tool, pathlib.Path(work)))


def main():
    if len(sys.argv) < 2:
        sys.exit("usage: judge_discs.py PGTOOL [WINDOWS_PGTOOL COMMAND...]")
    tool = os.path.abspath(sys.argv[1])
    windows = sys.argv[2:]
    results = list(check_hostile(tool))
    for name, folders in sources():
        results += check_disc(tool, windows, folders, name)
    return report(results)


if __name__ == "__main__":
    sys.exit(main())
