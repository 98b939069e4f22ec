"""The page for users of pydicom: what it says to write is run, on both sides."""

import ast
import contextlib
import copy
import io
import pickle
import re
import shutil
import unittest
import warnings

import pgkit

from test_data_set import DATA, MR, TemporaryDirectory
from test_package import PAGE

try:
    import numpy
    import pydicom
except ImportError:
    pydicom = None

# Words of the page that are no code to be run: options, classes and what is told in passing.
_WORDS = {"force=True", "read", "get", "str", "None", "config.datetime_conversion",
          "config.use_DS_decimal", "pydicom.fileset", "encoding=\"implicit\"", ".time", ".datetime",
          "FileDataset(...)", "Dataset.from_json(...)", "UID(...).name", "pickle", "\"\"", "UnicodeEncodeError",
          "PgkitError", "TruncatedWarning", "AttributeError"}
# Rows whose two sides give the same value.
_EQUAL = {"value", "is it there", "names of people", "several values", "sequence", "is it DICOM",
          "meta information"}


def rows():
    """Title, what is written with pydicom, and what is written here."""
    for line in PAGE.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip("|").split(" | ")]
        if line.startswith("| ") and len(cells) == 3 and cells[0] and not cells[0].startswith("---"):
            yield tuple(cells)


def snippets(cell):
    return [code for code in re.findall(r"`([^`]+)`", cell) if code not in _WORDS]


def run(code, names):
    """The value of an expression, None for a statement. What opens a block has an empty one."""
    if code.endswith(":"):
        code += " pass"
    tree = ast.parse(code)
    if isinstance(tree.body[0], ast.Expr):
        return eval(code, names)  # noqa: S307
    exec(code, names)  # noqa: S102
    return None


@unittest.skipUnless(pydicom, "pydicom is not installed")
class Page(TemporaryDirectory):
    def setUp(self):
        super().setUp()
        warnings.simplefilter("ignore")
        self.addCleanup(warnings.resetwarnings)
        self.file = self.directory / "image.dcm"
        quiet = contextlib.redirect_stdout(io.StringIO())  # the page prints a data set
        quiet.__enter__()
        self.addCleanup(quiet.__exit__, None, None, None)
        shutil.copy(MR, self.file)

    def names(self, module):
        """What the snippets of the page find: a data set with a sequence, an item, a stream."""
        is_ours = module is pgkit
        ds = pgkit.open(self.file) if is_ours else pydicom.dcmread(self.file)
        item = pgkit.new() if is_ours else pydicom.Dataset()
        item.Rows = 3
        ds.ReferencedImageSequence = [item]
        if is_ours:
            self.addCleanup(ds.close)
            self.addCleanup(item.close)
        return {"pgkit": pgkit, "pydicom": pydicom, "ds": ds, "item": item, "copy": copy, "pickle": pickle,
                "seq": ds.ReferencedImageSequence, "path": str(self.directory / "path.dcm"),
                "stream": io.BytesIO(), "folder": str(self.directory), "BytesIO": io.BytesIO,
                "Dataset": pydicom.Dataset, "dcmwrite": pydicom.dcmwrite,
                "generate_uid": pydicom.uid.generate_uid, "uid": "1.2.840.10008.1.2"}

    def test_what_it_says_to_write_runs(self):
        found = list(rows())
        self.assertGreater(len(found), 25)
        ran = 0
        for title, theirs, ours in found:
            if theirs == "pydicom":
                continue
            own, other = self.names(pgkit), self.names(pydicom)
            for names in (own, other):
                shutil.copy(MR, names["path"])
            same = snippets(theirs) if ours.startswith("the same") else []
            for code in same + [code for code in snippets(ours) if "..." not in code]:
                if "iterall" in code:  # the page names walk() for it
                    continue
                if "frames" in code:
                    own["ds"] = self.encapsulated()
                with self.subTest(title=title, code=code):
                    value = run(code, own)
                    if title in _EQUAL and code in same:
                        self.assertEqual(value, self.plain(run(code, other)))
                    ran += 1
            for code in snippets(theirs):
                # A deep copy of theirs does not end when items were put into what was read.
                if (code not in same or title not in _EQUAL) and "deepcopy" not in code:
                    with self.subTest(title=title, code=code):
                        run(code, other)
                        ran += 1
        self.assertGreater(ran, 55)

    def encapsulated(self):
        ds = pgkit.open(DATA / "encapsulated/rtdose_rle_15frames_no_bot.dcm")
        self.addCleanup(ds.close)
        return ds

    @staticmethod
    def plain(value):
        return str(value) if isinstance(value, pydicom.valuerep.PersonName) else value

    def test_the_words_that_are_not_run_are_on_it(self):
        text = PAGE.read_text(encoding="utf-8")
        for word in _WORDS:
            self.assertIn(f"`{word}`", text)
        self.assertLessEqual(_EQUAL, {title for title, _, _ in rows()})

    def test_exceptions_are_those_that_it_names(self):
        with self.assertRaises(pgkit.PgkitError):
            pgkit.open(b"no data set, but a text that is long enough to be taken for one" * 9)
        with self.assertWarns(pgkit.TruncatedWarning):
            pgkit.open(MR.read_bytes()[:1000])
        with pgkit.open(MR) as ds:
            with self.assertRaises(AttributeError):
                ds.PatientNames = "X"
            with self.assertRaises(UnicodeEncodeError):
                ds.PatientName = "Müller"
            ds.SpecificCharacterSet = "ISO_IR 192"
            ds.PatientName = "Müller"
            ds.save_as(self.file, encoding="implicit")
            self.assertIsNone(ds.PatientBirthDate)
            removed = ds["PatientID"]
            del ds.PatientID
            with self.assertRaises(pgkit.ClosedError):
                removed.value
        with self.assertRaises(pgkit.ClosedError):
            ds.Rows

    def test_differences_on_purpose_are_so(self):
        with pgkit.open(DATA / "native/all_vrs_explicit_be.dcm") as ds:
            other = pydicom.dcmread(DATA / "native/all_vrs_explicit_be.dcm")
            words = [element for element in ds if element.vr == "OW" and element.length]
            self.assertTrue(words)
            for element in words:
                its = other[element.tag].value
                self.assertEqual(numpy.frombuffer(element.value, "=u2").tolist(),
                                 numpy.frombuffer(its, ">u2").tolist())
        with pgkit.new() as ds:
            ds.set((0x0010, 0x0020), b"1234", vr="UN")
            self.assertEqual((ds["PatientID"].vr, ds.PatientID), ("UN", b"1234"))


if __name__ == "__main__":
    unittest.main()
