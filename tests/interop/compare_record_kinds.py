#!/usr/bin/python3
"""Compares the records of today's standard with those that pydicom makes of the same files.

    compare_record_kinds.py PGTOOL

pydicom composes one file of every kind, with all keys and with those only that it asks for, and
"pgtool mkdir --standard-records" lists them. Four kinds of checks, a line each:

  keys    the record that pydicom's FileSet makes of the file has the type of the library's record, and
          no key that the library's has not, with its value.
  walk    along the links pydicom finds every record once, those of no patient at the root behind all
          patients; the last one is where (0004,1202) leads.
  dump    dcmdump shows the whole DICOMDIR, with the record types in the same order, and complains
          about nothing.
  update  what is removed and added again by "mkdir --remove" and "--add" has the same records.

Kinds that pydicom does not know as such (it takes them for images, or gives them no keys) are compared with what is written
here. The last line is "N passed, M failed"; the exit status tells the same.
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import warnings

import pydicom
from pydicom.datadict import dictionary_VR, tag_for_keyword
from pydicom.dataset import Dataset, FileMetaDataset
from pydicom.fileset import FileSet
from pydicom.uid import ExplicitVRLittleEndian

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))

from check_runner import report  # noqa: E402

STORAGE = "1.2.840.10008.5.1.4."
DATED = ["ContentDate", "ContentTime"]
IDENTIFIED = DATED + ["ContentLabel", "ContentDescription", "ContentCreatorName"]
PRESENTED = ["PresentationCreationDate", "PresentationCreationTime", "ContentLabel",
             "ContentDescription", "ContentCreatorName"]
DOCUMENT = DATED + ["DocumentTitle", "MIMETypeOfEncapsulatedDocument"]
REPORT = DATED + ["CompletionFlag", "VerificationFlag", "ConceptNameCodeSequence"]

# SOP class, record type, keywords of the keys; whether pydicom knows the kind; whether it is of no
# patient.
KINDS = [
    ("1.1.481.2", "RT DOSE", ["DoseSummationType"], True, False),
    ("1.1.481.3", "RT STRUCTURE SET", ["StructureSetLabel", "StructureSetDate", "StructureSetTime"],
     True, False),
    ("1.1.481.5", "RT PLAN", ["RTPlanLabel", "RTPlanDate", "RTPlanTime"], False, False),
    ("1.1.481.8", "RT PLAN", ["RTPlanLabel", "RTPlanDate", "RTPlanTime"], False, False),
    ("1.1.481.4", "RT TREAT RECORD", ["TreatmentDate", "TreatmentTime"], True, False),
    ("1.1.481.10", "RADIOTHERAPY", ["UserContentLabel"], False, False),
    ("34.7", "PLAN", [], False, False),
    ("1.1.11.1", "PRESENTATION", PRESENTED, True, False),
    ("1.1.11.4", "PRESENTATION", PRESENTED + ["BlendingSequence"], True, False),
    ("1.1.11.8", "PRESENTATION", PRESENTED, False, False),
    ("1.1.131", "PRESENTATION", PRESENTED, True, False),
    ("1.1.9.1.1", "WAVEFORM", DATED, True, False),
    ("1.1.9.7.4", "WAVEFORM", DATED, True, False),
    ("1.1.88.33", "SR DOCUMENT", REPORT, True, False),
    ("1.1.88.59", "KEY OBJECT DOC", DATED + ["ConceptNameCodeSequence"], True, False),
    ("1.1.4.2", "SPECTROSCOPY", ["ImageType", "NumberOfFrames", "Rows", "Columns", "DataPointRows",
                                 "DataPointColumns", "ReferencedImageEvidenceSequence"] + DATED,
     True, False),
    ("1.1.66", "RAW DATA", DATED, True, False),
    ("1.1.66.1", "REGISTRATION", IDENTIFIED, True, False),
    ("1.1.66.2", "FIDUCIAL", IDENTIFIED, True, False),
    ("1.1.104.1", "ENCAP DOC", DOCUMENT, False, False),
    ("1.1.104.2", "ENCAP DOC", DOCUMENT + ["HL7InstanceIdentifier"], False, False),
    ("1.1.67", "VALUE MAP", IDENTIFIED, True, False),
    ("1.1.77.1.5.3", "STEREOMETRIC", ["ContentLabel", "ContentDescription", "ContentCreatorName"], False,
     False),
    ("1.1.78.1", "MEASUREMENT", IDENTIFIED, True, False),
    ("1.1.66.5", "SURFACE", IDENTIFIED, True, False),
    ("1.1.68.1", "SURFACE SCAN", DATED, True, False),
    ("1.1.66.6", "TRACT", IDENTIFIED, True, False),
    ("1.1.90.1", "ASSESSMENT", ["InstanceCreationDate", "InstanceCreationTime"], True, False),
    ("1.1.91.1", "ANNOTATION", IDENTIFIED, False, False),
    ("38.1", "HANGING PROTOCOL",
     ["HangingProtocolName", "HangingProtocolDescription", "HangingProtocolLevel",
      "HangingProtocolCreator", "HangingProtocolCreationDateTime",
      "HangingProtocolDefinitionSequence", "NumberOfPriorsReferenced"], True, True),
    ("39.1", "PALETTE", ["ContentLabel", "ContentDescription"], True, True),
    ("43.1", "IMPLANT", ["Manufacturer", "ImplantName", "ImplantPartNumber", "ImplantSize"], True,
     True),
    ("44.1", "IMPLANT ASSY", ["ImplantAssemblyTemplateName", "Manufacturer",
                              "ProcedureTypeCodeSequence"], True, True),
    ("45.1", "IMPLANT GROUP", ["ImplantTemplateGroupName", "ImplantTemplateGroupIssuer"], True,
     True),
    ("1.1.201.1", "INVENTORY", DATED, False, True),
    ("1.1.66.4", "IMAGE", ["InstanceNumber"], True, False),
    ("1.1.2", "IMAGE", ["InstanceNumber"], True, False),
]
# What the directory itself says of a record.
OF_RECORDS = {0x00041400, 0x00041410, 0x00041420, 0x00041430, 0x00041500}


def value_of(keyword):
    code = Dataset()
    code.CodeValue, code.CodingSchemeDesignator, code.CodeMeaning = "113000", "DCM", "Meaning"
    return {"DA": "20240229", "TM": "115959", "DT": "20240229115959", "IS": 3, "US": 5, "UL": 7,
            "CS": "VALUE", "SQ": [code]}.get(dictionary_VR(tag_for_keyword(keyword)), "A value")


def compose(number, kind):
    sop_class, _, keys, _, is_at_root = kind
    file = Dataset()
    file.file_meta = FileMetaDataset()
    file.file_meta.TransferSyntaxUID = ExplicitVRLittleEndian
    file.file_meta.MediaStorageSOPClassUID = file.SOPClassUID = STORAGE + sop_class
    file.SOPInstanceUID = f"1.2.3.4.{number}"
    file.file_meta.MediaStorageSOPInstanceUID = file.SOPInstanceUID
    file.InstanceNumber = number
    if not is_at_root:
        file.PatientID, file.PatientName = "4711", "DOE^JOHN"
        file.StudyDate, file.StudyTime, file.StudyID = "20240229", "1200", "1"
        file.StudyInstanceUID, file.SeriesInstanceUID = "1.2.3", "1.2.3.4"
        file.Modality, file.SeriesNumber = "OT", 1
    for keyword in keys:
        if keyword != "InstanceNumber":
            setattr(file, keyword, value_of(keyword))
    file.is_little_endian, file.is_implicit_VR = True, False
    return file


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120,
                          check=False, text=True)


def walk(records, offset, depth=0):
    """Yields (depth, record) along the links."""
    while offset:
        record = records[offset]
        yield depth, record
        yield from walk(records, record[0x00041420].value, depth + 1)
        offset = record[0x00041400].value


def read_directory(path):
    directory = pydicom.dcmread(path)
    records = {item.seq_item_tell: item for item in directory.DirectoryRecordSequence}
    return directory, list(walk(records, directory[0x00041200].value))


def text_of(element):
    return "" if element.value is None else str(element.value)


def check_keys(kind, expected, record):
    """expected is pydicom's record, or the file where pydicom has none of the kind."""
    if record.DirectoryRecordType != kind[1]:
        return f"the type is {record.DirectoryRecordType}"
    for element in expected:
        if element.tag in OF_RECORDS or element.tag.element == 0:
            continue
        found = record.get(element.tag)
        if found is None and text_of(element):
            return f"{element.tag} {element.keyword} is missing"
        if found is not None and text_of(found) != text_of(element):
            return f"{element.tag} {element.keyword} is {text_of(found)!r}, not {text_of(element)!r}"
    return None


def expected_record(kind, file):
    if kind[3]:
        return FileSet().add(file).node._record
    keys = Dataset()
    for keyword in kind[2] + ["InstanceNumber"]:
        keys[keyword] = file[keyword]
    return keys


def check_walk(kinds, directory, steps):
    count = len(directory.DirectoryRecordSequence)
    if len(steps) != count:
        return f"{len(steps)} records of {count}"
    types = [(depth, record.DirectoryRecordType) for depth, record in steps]
    at_root = [kind[1] for kind in kinds if kind[4]]
    if types[:3] != [(0, "PATIENT"), (1, "STUDY"), (2, "SERIES")]:
        return f"it begins with {types[:3]}"
    if types[-len(at_root):] != [(0, kind) for kind in at_root]:
        return f"it ends with {types[-len(at_root):]}"
    if directory[0x00041202].value != steps[-1][1].seq_item_tell:
        return "(0004,1202) leads elsewhere"
    return None


def check_dump(medium, directory):
    dumped = run("dcmdump", "+L", str(medium / "DICOMDIR"))
    if dumped.returncode != 0 or dumped.stderr:
        return f"dcmdump: {dumped.stderr or dumped.returncode}"
    types = re.findall(r"\(0004,1430\) CS \[([^\]]*)\]", dumped.stdout)
    expected = [item.DirectoryRecordType for item in directory.DirectoryRecordSequence]
    return None if types == expected else f"dcmdump shows {types}"


def check_update(tool, medium, kinds):
    """The study goes and comes again; what belongs to no patient stays."""
    def described():
        return sorted(record.to_json() for depth, record in read_directory(medium / "DICOMDIR")[1]
                      if [record.pop(tag, None) for tag in sorted(OF_RECORDS - {0x00041500})])

    before = described()
    files = [str(medium / f"F{number}") for number, kind in enumerate(kinds) if not kind[4]]
    for arguments in (["--remove", "1.2.3"], ["--add", *files, "--standard-records"]):
        done = run(tool, "mkdir", str(medium), *arguments)
        if done.returncode != 0:
            return f"{arguments[0]}: {done.stderr}"
    return None if described() == before else "the records differ"


def checks(tool, medium):
    files = [compose(number, kind) for number, kind in enumerate(KINDS)]
    for number, file in enumerate(files):
        file.save_as(medium / f"F{number}", write_like_original=False)
    done = run(tool, "mkdir", str(medium), "--standard-records", "--strict", "--strict-names")
    if done.returncode != 0:
        yield "mkdir", "all", done.stderr
        return
    directory, steps = read_directory(medium / "DICOMDIR")
    records = {str(record.ReferencedFileID): record for _, record in steps
               if "ReferencedFileID" in record}
    for number, kind in enumerate(KINDS):
        record = records.get(f"F{number}")
        complaint = "there is no record"
        if record is not None:
            complaint = check_keys(kind, expected_record(kind, files[number]), record)
        yield "keys", f"{kind[1]} of {kind[0]}", complaint
    yield "walk", "pydicom", check_walk(KINDS, directory, steps)
    yield "dump", "dcmdump", check_dump(medium, directory)
    yield "update", "pgtool", check_update(tool, medium, KINDS)


def main(tool):
    warnings.simplefilter("ignore")
    with tempfile.TemporaryDirectory() as place:
        return report(checks(tool, pathlib.Path(place)))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
