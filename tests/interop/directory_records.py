"""The hierarchy of a DICOMDIR from the directory records that pydicom reads.

pydicom gives the records, their places in the file and their values. What pgkit makes of them is
written here a second time, as short as it can be said:

  links     an offset of 0 or none ends a chain, and so does one where no record begins, or one that
            leads back into the chain. A record without a lower level that can be found ends its
            chain, but stays.
  merging   patients of equal ID and name are one, and so are studies of equal UID in one patient and
            series of equal UID in one study; the keys are those of the first. Of the leaves with
            equal instance UID in one series the first counts.
  pruning   patients, studies and series all of whose children proved to be nothing are left out.
            Records other than SERIES are passed over among the series, PRIVATE ones and references
            to other DICOMDIRs among the leaves.
  order     leaves stand in ascending order of their instance numbers. One with a number that is there
            already goes behind those at the end of the list, in front of those further in.
  texts     are cut to the size of their field; where pgkit says so blanks around them are dropped,
            those at the end always. They are in the character set of the record, names of files in
            UTF-8 if they can be.
"""

import io
import re

from pydicom import charset, filereader

from raw_elements import read_head

ROOT, NEXT, LOWER = 0x00041200, 0x00041400, 0x00041420
RECORDS, RECORD_TYPE = 0x00041220, 0x00041430
FILE_ID = 0x00041500
INSTANCE_UID, SOP_CLASS_UID = 0x00041511, 0x00041510
CHARACTER_SET, INSTANCE_NUMBER = 0x00080005, 0x00200013
DIRECTORY_CLASS = "1.2.840.10008.1.3.10"

# key: (tag, longest text, trimmed?, text when missing)
PATIENT = {
    "patientId": (0x00100020, 64, True, ""),
    "patientsName": (0x00100010, 194, True, ""),
    "birthDate": (0x00100030, 8, False, ""),
    "sex": (0x00100040, 16, False, ""),
    "specificCharacterSet": (CHARACTER_SET, 50, False, ""),
}
STUDY = {
    "studyId": (0x00200010, 16, True, ""),
    "studyDate": (0x00080020, 8, True, ""),
    "studyTime": (0x00080030, 16, True, ""),
    "accessionNumber": (0x00080050, 16, True, ""),
    "studyDescription": (0x00081030, 64, True, ""),
    "manufacturer": (0x00080070, 64, True, ""),
    "referringPhysiciansName": (0x00080090, 194, True, ""),
    "specificCharacterSet": (CHARACTER_SET, 50, True, ""),
}
SERIES = {
    "seriesInstanceUid": (0x0020000E, 64, True, ""),
    "seriesDescription": (0x0008103E, 64, True, ""),
    "seriesNumber": (0x00200011, 16, True, ""),
    "modality": (0x00080060, 16, True, ""),
    "institutionName": (0x00080080, 64, True, ""),
    "institutionAddress": (0x00080081, 1024, True, ""),
    "performingPhysiciansName": (0x00081050, 194, True, ""),
    "specificCharacterSet": (CHARACTER_SET, 50, True, ""),
}
LEAF = {
    "recordType": (RECORD_TYPE, 16, True, ""),
    "referencedFileId": (FILE_ID, 259, False, "No.ReferencedFileID"),
    "instanceUid": (INSTANCE_UID, 64, True, ""),
    "sopClassUid": (SOP_CLASS_UID, 64, False, "No.SOPClass.UID"),
    "transferSyntaxUid": (0x00041512, 64, False, "No.TransferSyntax.UID"),
    "specificCharacterSet": (CHARACTER_SET, 50, False, ""),
}


def read_records(data_set):
    """The items of the Directory Record Sequence, which know where their tags stand in the file."""
    if RECORDS not in data_set:
        return []
    raw = data_set.get_item(RECORDS)
    if not isinstance(raw.value, bytes):  # of undefined length
        return raw.value or []
    stream = io.BytesIO(raw.value)
    records = []
    try:
        while stream.tell() < len(raw.value):
            records.append(filereader.read_sequence_item(
                stream, raw.is_implicit_VR, raw.is_little_endian, "iso8859", raw.value_tell))
    except OSError:  # the file ends in the middle of a record
        pass
    return records


def raw_value(record, tag):
    """The bytes of an element, or None when the record has none."""
    if tag not in record:
        return None
    return record.get_item(tag).value or b""


def number(record, tag):
    return int.from_bytes((raw_value(record, tag) or b"")[:4], "little")


def read_text(record, tag, size, is_trimmed, missing):
    value = raw_value(record, tag)
    if value is None:
        return missing
    text = value.split(b"\0")[0][:size].rstrip(b" ")
    if is_trimmed:
        text = text.strip(b" ")
    return decoded(text, b"" if tag == FILE_ID else raw_value(record, CHARACTER_SET) or b"")


def decoded(text, character_set):
    terms = [term.strip() for term in character_set.decode("ascii", "replace").rstrip("\0").split("\\")]
    if terms == [""]:
        try:
            return text.decode("utf-8")
        except UnicodeDecodeError:
            return text.decode("latin-1")
    return charset.decode_bytes(text, charset.convert_encodings(terms), {"\\", "^", "="})


def read_keys(record, keys):
    return {name: read_text(record, *how) for name, how in keys.items()}


class Hierarchy:
    def __init__(self, path):
        with open(path, "rb") as stream:
            _, is_implicit, is_big_endian = read_head(stream)
            data_set = filereader.read_dataset(stream, is_implicit, not is_big_endian)
        self.by_offset = {}
        for record in read_records(data_set):
            self.by_offset.setdefault(record.seq_item_tell, record)
        self.patients = []
        root = self.by_offset.get(number(data_set, ROOT))
        if root is not None:
            self.read_chain(root, self.add_patient, self.patients)

    def read_chain(self, record, add, *target):
        """Hands the records of a chain to a function until that returns False."""
        seen = set()
        while record is not None and id(record) not in seen:
            seen.add(id(record))
            if not add(record, *target):
                return
            record = self.by_offset.get(number(record, NEXT))

    def descend(self, record, siblings, node, children, add):
        """Fills a node that stands among its siblings. False when it has no lower level."""
        first = self.by_offset.get(number(record, LOWER)) if number(record, LOWER) else None
        if first is None:
            return False
        self.read_chain(first, add, node)
        if not node[children]:
            siblings.remove(node)
        return True

    @staticmethod
    def find_or_append(siblings, node, keys):
        for known in siblings:
            if all(known[key] == node[key] for key in keys):
                return known
        siblings.append(node)
        return node

    def add_patient(self, record, patients):
        node = self.find_or_append(patients, {**read_keys(record, PATIENT), "studies": []},
                                   ["patientId", "patientsName"])
        return self.descend(record, patients, node, "studies", self.add_study)

    def add_study(self, record, patient):
        uid = (read_text(record, INSTANCE_UID, 64, True, "")
               or read_text(record, 0x0020000D, 64, True, ""))
        node = {"studyInstanceUid": uid, **read_keys(record, STUDY), "series": []}
        node = self.find_or_append(patient["studies"], node, ["studyInstanceUid"])
        return self.descend(record, patient["studies"], node, "series", self.add_series)

    def add_series(self, record, study):
        if read_text(record, RECORD_TYPE, 64, False, "") != "SERIES":
            return True
        node = self.find_or_append(study["series"], {**read_keys(record, SERIES), "leaves": []},
                                   ["seriesInstanceUid"])
        return self.descend(record, study["series"], node, "leaves", self.add_leaf)

    def add_leaf(self, record, series):
        leaf = read_keys(record, LEAF)
        leaf["referencedFileId"] = leaf["referencedFileId"].removeprefix("\\")
        digits = re.match(r" *[+-]?\d+", read_text(record, INSTANCE_NUMBER, 64, False, ""))
        leaf["instanceNumber"] = int(digits.group()) if digits else 0
        leaves = series["leaves"]
        if (leaf["recordType"].startswith("PRIVATE") or leaf["sopClassUid"] == DIRECTORY_CLASS
                or any(known["instanceUid"] == leaf["instanceUid"] for known in leaves)):
            return True
        numbers = [known["instanceNumber"] for known in leaves]
        place = len(leaves)
        if numbers and numbers[-1] > leaf["instanceNumber"]:
            place = next(i for i, n in enumerate(numbers) if n >= leaf["instanceNumber"])
        leaves.insert(place, leaf)
        return True
