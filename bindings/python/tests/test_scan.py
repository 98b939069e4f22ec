"""A few values of many files."""

import shutil
import threading
import unittest

import pgkit

from test_data_set import DATA, MR, TemporaryDirectory

TAGS = ["PatientName", "StudyInstanceUID", "Rows", "PixelSpacing", "LargestImagePixelValue",
        (0x0008, 0x1140), "PixelData"]


class Scanning(TemporaryDirectory):
    def setUp(self):
        super().setUp()
        (self.directory / "B/C").mkdir(parents=True)
        for name in ("B/C/2", "B/1", "A"):
            shutil.copy(MR, self.directory / name)
        (self.directory / "B/notes.txt").write_text("no image, " * 50)
        (self.directory / "B/empty").write_bytes(b"")
        (self.directory / "cut").write_bytes(MR.read_bytes()[:1500])

    def test_rows_are_in_the_order_of_the_names(self):
        for jobs in (1, 4, None):
            scan = pgkit.scan(self.directory, TAGS, jobs=jobs)
            rows = list(scan)
            self.assertEqual([row["path"] for row in rows],
                             [str(self.directory / name) for name in ("A", "cut", "B/1", "B/C/2")])
            self.assertEqual(scan.left_out, 2)
            self.assertEqual(scan.failed, [])
            self.assertEqual([path for path, _ in scan.incomplete], [str(self.directory / "cut")])
            self.assertEqual(list(rows[0]), ["path", "PatientName", "StudyInstanceUID", "Rows",
                                             "PixelSpacing", "LargestImagePixelValue",
                                             "ReferencedImageSequence", "PixelData"])

    def test_values_are_those_of_elements(self):
        row = next(pgkit.scan([MR], TAGS))
        with pgkit.open(MR) as data_set:
            for key in TAGS[:5]:
                self.assertEqual(row[key], data_set[key].value, key)
        self.assertIsNone(row["PixelData"])
        self.assertIsNone(row["ReferencedImageSequence"])
        self.assertEqual(pgkit.read_values(MR, ["Rows", (0x0099, 0x0001)]),
                         {"Rows": 64, "00990001": None})

    def test_every_sample_gives_the_values_of_its_data_set(self):
        keys = ["PatientName", "SpecificCharacterSet", "ImageType", "SmallestImagePixelValue",
                "InstanceNumber", "FrameIncrementPointer", "SOPInstanceUID", "StudyDate"]
        compared = 0
        for row in pgkit.scan(DATA, keys, jobs=2):
            try:
                data_set = pgkit.open(row["path"])
            except pgkit.TruncatedWarning:
                continue
            with data_set:
                for key in keys:
                    if key in data_set:
                        try:
                            value = data_set[key].value
                        except ValueError:
                            value = data_set[key].text
                        self.assertEqual(row[key], value, (row["path"], key))
                        compared += 1
        self.assertGreater(compared, 100)

    def test_what_cannot_be_read_is_told(self):
        scan = pgkit.scan([MR, self.directory / "missing", "a\0b"], ["Rows"])
        self.assertEqual([row["Rows"] for row in scan], [64])
        self.assertEqual([path for path, _ in scan.failed], [str(self.directory / "missing"), "a\0b"])
        with self.assertRaises(FileNotFoundError):
            pgkit.read_values(self.directory / "missing", ["Rows"])
        with self.assertRaises(pgkit.PgkitError):
            pgkit.read_values(self.directory / "B/notes.txt", ["Rows"])

    def test_wrong_tags_raise_before_anything_is_read(self):
        for tags, error in ((["NoSuchName"], KeyError), ([-1], ValueError), ("Rows", TypeError)):
            with self.assertRaises(error):
                pgkit.scan(self.directory, tags)
        with self.assertRaises(ValueError):
            pgkit.scan(self.directory, ["Rows"], jobs=0)

    def test_a_scan_that_is_left_ends_its_threads(self):
        before = threading.active_count()
        rows = pgkit.scan([MR] * 1000, ["Rows"], jobs=3)
        self.assertEqual(next(rows)["Rows"], 64)
        del rows
        self.assertEqual(threading.active_count(), before)


class Threads(unittest.TestCase):
    def test_eight_threads_use_data_sets_of_their_own(self):
        with pgkit.open(MR) as data_set:
            expected = str(data_set)
        results = []

        def work(number):
            for _ in range(15):
                with pgkit.open(MR) as data_set:
                    whole = str(data_set) == expected
                    data_set.PatientID = f"{number}"
                    again = pgkit.open(data_set.to_bytes())
                    results.append(whole and again.PatientID == f"{number}")
                    again.close()

        threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual((results.count(True), len(results)), (120, 120))


if __name__ == "__main__":
    unittest.main()
