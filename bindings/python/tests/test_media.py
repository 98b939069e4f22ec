import os
import pathlib
import shutil
import subprocess
import sys
import threading
import unittest

import pgkit

from test_data_set import DATA, MR, TemporaryDirectory

DICOMDIR = DATA / "dicomdir/DICOMDIR_implicit"
PGTOOL = pathlib.Path(pgkit.library_path()).parent / "pgtool"


def leaves_of(dicomdir, **options):
    return [leaf for patient in pgkit.browse(dicomdir, **options) for study in patient.studies
            for series in study.series for leaf in series.leaves]


class Browsing(TemporaryDirectory):
    def test_the_hierarchy_is_plain_objects(self):
        patients = pgkit.browse(DICOMDIR)
        self.assertEqual([(patient.name, patient.id) for patient in patients],
                         [("Doe^Archibald", "77654033"), ("Doe^Peter", "98890234")])
        studies = [study for patient in patients for study in patient.studies]
        series = [one for study in studies for one in study.series]
        leaves = [leaf for one in series for leaf in one.leaves]
        self.assertEqual((len(studies), len(series), len(leaves)), (6, 13, 31))
        self.assertEqual(studies[0].date, "20010101")
        self.assertEqual(series[0].modality, "CR")
        self.assertEqual(leaves[0].type, pgkit.LeafType.IMAGE)
        self.assertTrue(leaves[0].path.endswith("\\77654033\\CR1\\6154"), leaves[0].path)
        self.assertEqual(leaves[0].keys["number_of_frames"], 1)

    # A palette was a patient without a name, and the last one that was found.
    def test_what_belongs_to_no_patient_is_passed_over(self):
        medium = self.directory / "disc"
        medium.mkdir()
        shutil.copy(MR, medium / "MR")
        with pgkit.new() as palette:
            palette.SOPClassUID = "1.2.840.10008.5.1.4.39.1"
            palette.SOPInstanceUID = "1.2.3"
            palette.ContentLabel = "HOT"
            palette.save(medium / "PALETTE")
        subprocess.run([PGTOOL, "mkdir", medium, "--standard-records"], check=True,
                       stdout=subprocess.DEVNULL)
        with pgkit.open(medium / "DICOMDIR") as directory:
            types = [item.DirectoryRecordType for item in directory.DirectoryRecordSequence]
        self.assertEqual(sorted(types), ["IMAGE", "PALETTE", "PATIENT", "SERIES", "STUDY"])
        self.assertEqual([patient.id for patient in pgkit.browse(medium / "DICOMDIR")], ["4MR1"])

    def test_progress_is_told_of_every_file(self):
        paths = []
        pgkit.browse(DICOMDIR, progress=paths.append)
        self.assertEqual(len(paths), 31)

    def test_what_progress_raises_arrives(self):
        def progress(_path):
            raise ZeroDivisionError

        with self.assertRaises(ZeroDivisionError):
            pgkit.browse(DICOMDIR, progress=progress)

    def test_threads_get_the_texts_of_their_own_directories(self):
        interval = sys.getswitchinterval()
        self.addCleanup(sys.setswitchinterval, interval)
        sys.setswitchinterval(1e-6)
        expected = pgkit.browse(DICOMDIR)
        are_right = []

        def browse_often():
            for _ in range(30):
                are_right.append(pgkit.browse(DICOMDIR) == expected)

        threads = [threading.Thread(target=browse_often) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual((are_right.count(True), are_right.count(False)), (120, 0))

    def test_what_is_no_dicomdir_raises(self):
        with self.assertRaises(FileNotFoundError):
            pgkit.browse(self.directory / "DICOMDIR")
        with self.assertRaises(pgkit.PgkitError):
            pgkit.browse(MR)


class Creation(TemporaryDirectory):
    def setUp(self):
        super().setUp()
        (self.directory / "SUB").mkdir()
        shutil.copy(MR, self.directory / "IM1")
        shutil.copy(DATA / "sequences/sr_nested_explicit_undefined.dcm", self.directory / "SUB/SR1")
        (self.directory / "NOTES").write_text("no image")

    def test_a_created_dicomdir_can_be_browsed(self):
        code = pgkit.AcceptanceCode
        seen = []
        scanned = pgkit.create(self.directory, file_set_id="TEST", acceptance_list=False,
                               progress=seen.append)
        self.assertEqual(scanned, [pgkit.ScannedFile("IM1", code.ACCEPTED),
                                   pgkit.ScannedFile("NOTES", code.NOT_DICOM_PART_10),
                                   pgkit.ScannedFile("SUB\\SR1", code.ACCEPTED)])
        self.assertEqual(seen, scanned)
        self.assertEqual(sorted(path.name for path in self.directory.iterdir()),
                         ["DICOMDIR", "IM1", "NOTES", "SUB"])
        with pgkit.open(self.directory / "DICOMDIR") as data_set:
            self.assertEqual(data_set["FilesetID"].value, "TEST")
        leaves = leaves_of(self.directory / "DICOMDIR")
        self.assertEqual(len(leaves), 2)
        image = next(leaf for leaf in leaves if leaf.type == pgkit.LeafType.IMAGE)
        self.assertEqual((image.keys["rows"], image.keys["columns"]), (64, 64))

    def test_the_files_of_leaves_can_be_opened(self):
        pgkit.create(self.directory)
        told = []
        leaves = leaves_of(self.directory / "DICOMDIR", progress=told.append)
        self.assertEqual(told, [leaf.path for leaf in leaves])
        for leaf in leaves:
            with pgkit.open(leaf.path) as data_set:
                self.assertEqual(data_set["SOPInstanceUID"].value, leaf.instance_uid)

    def test_leaves_beside_a_dicomdir_without_a_directory_can_be_opened(self):
        pgkit.create(self.directory)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.directory)
        for leaf in leaves_of("DICOMDIR"):
            with pgkit.open(leaf.path) as data_set:
                self.assertEqual(data_set["SOPInstanceUID"].value, leaf.instance_uid)

    def test_a_directory_may_end_in_a_slash_but_not_be_empty(self):
        pgkit.create(str(self.directory) + "/")
        self.assertEqual(len(leaves_of(self.directory / "DICOMDIR")), 2)
        with self.assertRaises(ValueError):
            pgkit.create("")

    def test_a_profile_refuses(self):
        scanned = pgkit.create(self.directory, "STD-DEN", recurse=False, allow_empty=True)
        self.assertEqual([file.code for file in scanned],
                         [pgkit.AcceptanceCode.PROFILE_REFUSES,
                          pgkit.AcceptanceCode.NOT_DICOM_PART_10,
                          pgkit.AcceptanceCode.NOT_DICOM_PART_10])
        self.assertTrue((self.directory / "dcmdir.lst").is_file())

    def test_codes_have_texts(self):
        self.assertEqual(pgkit.AcceptanceCode.IS_A_DICOMDIR.text, "File is a DICOMDIR")
        self.assertEqual(len({code.text for code in pgkit.AcceptanceCode}), 10)

    # The DICOMDIR used to be replaced by an empty one.
    def test_nothing_accepted_leaves_the_dicomdir(self):
        pgkit.create(self.directory)
        before = (self.directory / "DICOMDIR").read_bytes()
        with self.assertRaises(pgkit.CreateError) as raised:
            pgkit.create(self.directory, "STD-DEN")
        self.assertEqual(raised.exception.code, 8)
        self.assertEqual((self.directory / "DICOMDIR").read_bytes(), before)
        pgkit.create(self.directory, "STD-DEN", allow_empty=True)
        self.assertEqual(leaves_of(self.directory / "DICOMDIR"), [])

    def test_an_unknown_profile_raises_before_anything_is_touched(self):
        for name in ("STD-GEN-C", "std-gen-cd", "nö"):
            with self.assertRaises(pgkit.UnknownProfileError):
                pgkit.create(self.directory, name)
        self.assertEqual(sorted(path.name for path in self.directory.iterdir()),
                         ["IM1", "NOTES", "SUB"])

    @unittest.skipIf(os.name == "nt", "names have no backslashes here")
    def test_names_with_backslashes_are_refused(self):
        (self.directory / "SUB\\SR1").write_bytes((self.directory / "IM1").read_bytes())
        scanned = pgkit.create(self.directory, acceptance_list=False)
        self.assertIn(pgkit.ScannedFile("SUB\\SR1", pgkit.AcceptanceCode.INVALID_FILE_NAME),
                      scanned)

    def test_leaves_tell_their_file_ids_and_those_that_lead_outside(self):
        pgkit.create(self.directory)
        leaves = leaves_of(self.directory / "DICOMDIR")
        self.assertEqual(sorted(leaf.file_id for leaf in leaves), ["IM1", "SUB\\SR1"])
        self.assertFalse(any(leaf.is_outside for leaf in leaves))
        data = (self.directory / "DICOMDIR").read_bytes()
        for hostile, is_outside in ((b"..\\..\\X ", True), (b"A\\..\\..\\", True),
                                    (b"../../X ", True), (b"/ETC/X  ", True), (b"C:\\XYZ  ", True),
                                    (b"A\\..\\B  ", False), (b"..A\\B.. ", False)):
            (self.directory / "DICOMDIR").write_bytes(data.replace(b"SUB\\SR1 ", hostile))
            found = {leaf.file_id: leaf.is_outside
                     for leaf in leaves_of(self.directory / "DICOMDIR")}
            self.assertEqual(found[hostile.decode().rstrip(" ")], is_outside, hostile)

    def test_progress_can_end_the_scan(self):
        scanned = pgkit.create(self.directory, progress=lambda file: True, acceptance_list=False)
        self.assertEqual([file.path for file in scanned], ["IM1"])
        self.assertTrue((self.directory / "DICOMDIR").is_file())

    def test_what_progress_raises_arrives_and_ends_the_scan(self):
        calls = []

        def progress(file):
            calls.append(file)
            raise ZeroDivisionError

        with self.assertRaises(ZeroDivisionError):
            pgkit.create(self.directory, progress=progress)
        self.assertEqual(len(calls), 1)

    def test_a_dicomdir_that_cannot_be_written_raises(self):
        with self.assertRaises(pgkit.CreateError):
            pgkit.create(self.directory / "missing")
        with self.assertRaises(ValueError):
            pgkit.create(self.directory, file_set_id="FAR TOO LONG AN ID")


class Dictionary(unittest.TestCase):
    def test_tags_names_and_uids(self):
        self.assertEqual(pgkit.find_tag("PixelData"), (0x7FE0, 0x0010))
        self.assertEqual(pgkit.find_tag(0x7FE00010), (0x7FE0, 0x0010))
        self.assertEqual(pgkit.element_name((0x0010, 0x0010)), "PatientsName")
        self.assertEqual(pgkit.element_name((0x0099, 0x1234)), "<Unknown Tag>")
        self.assertEqual(pgkit.value_representation("Rows"), "US")
        self.assertEqual(pgkit.value_representation((0x0099, 0x1234)), "??")
        self.assertEqual(pgkit.uid_name("1.2.840.10008.1.2.1"), "LittleEndianExplicit")
        self.assertIsNone(pgkit.uid_name("1.2.3.4.5"))
        self.assertTrue(pgkit.is_valid_uid("1.2.3"))
        self.assertFalse(pgkit.is_valid_uid("1.02.3"))

    def test_what_is_no_tag_raises(self):
        for key, error in (("NoName", KeyError), ("Nö", KeyError), (-1, ValueError),
                           (1 << 32, ValueError), ((1, 0x10000), ValueError)):
            with self.assertRaises(error, msg=key):
                pgkit.find_tag(key)

    def test_the_library_names_itself(self):
        self.assertEqual(pgkit.library_version(), "2.86e 24-mar-2o15")
        self.assertTrue(pathlib.Path(pgkit.library_path()).name)


if __name__ == "__main__":
    unittest.main()
