"""What users of other modules are used to."""

import copy
import datetime
import decimal
import gc
import io
import pathlib
import pickle
import unittest

import pgkit

from test_data_set import DATA, MR, TemporaryDirectory

SR = DATA / "sequences/sr_nested_explicit_undefined.dcm"
PLAN = DATA / "sequences/rtplan_implicit.dcm"


class Attributes(unittest.TestCase):
    def setUp(self):
        self.data_set = pgkit.open(MR)
        self.addCleanup(self.data_set.close)

    def test_keywords_and_built_in_names_are_the_same(self):
        for name in ("PatientName", "PatientsName", 0x00100010, (0x0010, 0x0010), "0010,0010"):
            self.assertEqual(self.data_set[name].value, "CompressedSamples^MR1")
            self.assertIn(name, self.data_set)
        self.assertEqual(self.data_set.PatientName, "CompressedSamples^MR1")
        self.assertEqual(self.data_set.PatientsName, self.data_set.PatientName)
        self.assertEqual(self.data_set["PatientName"].keyword, "PatientName")
        self.assertEqual(self.data_set.Rows, 64)
        self.assertIsNone(self.data_set.PatientBirthDate)

    def test_values_are_set_and_deleted(self):
        data_set = self.data_set
        data_set.PatientName = "DOE^JANE"
        self.assertEqual(data_set["PatientsName"].value, "DOE^JANE")
        data_set.PatientComments = "new"
        self.assertEqual(data_set.get("PatientComments"), "new")
        del data_set.PatientComments
        self.assertFalse(hasattr(data_set, "PatientComments"))
        with self.assertRaises(AttributeError):
            del data_set.PatientComments

    def test_what_is_no_name_is_an_attribute_error(self):
        for name in ("NoSuchName", "patientname", "abcdabcd", "_private", "x"):
            with self.assertRaises(AttributeError, msg=name):
                getattr(self.data_set, name)
            with self.assertRaises(AttributeError, msg=name):
                setattr(self.data_set, name, "x")
        with self.assertRaises(AttributeError):
            self.data_set.PatientTelephoneNumbers  # in the dictionary, not in the file

    def test_what_was_read_before_is_not_what_is_there_after(self):
        data_set = self.data_set
        for number in (1, 2, 3):
            data_set.InstanceNumber = number
            self.assertEqual(data_set.InstanceNumber, number)
            self.assertEqual(data_set["InstanceNumber"].value, number)
        element = data_set["InstanceNumber"]
        element.value = 7
        self.assertEqual(data_set.InstanceNumber, 7)
        data_set.close()
        with self.assertRaises(pgkit.ClosedError):
            data_set.InstanceNumber

    def test_completion_knows_the_elements(self):
        self.assertIn("PatientName", dir(self.data_set))
        self.assertIn("save_as", dir(self.data_set))


class Mapping(unittest.TestCase):
    def test_keys_values_and_items_are_in_the_order_of_the_file(self):
        with pgkit.open(MR) as data_set:
            keys = data_set.keys()
            self.assertEqual(len(keys), len(data_set))
            self.assertEqual(keys[0][0], 2)
            self.assertEqual(keys, [element.tag for element in data_set])
            self.assertEqual(data_set.items(), list(zip(keys, data_set.values())))
            self.assertEqual(data_set.pop("PatientID"), "4MR1")
            self.assertEqual(data_set.pop("PatientID", "gone"), "gone")
            with self.assertRaises(KeyError):
                data_set.pop("PatientID")

    def test_walk_goes_into_items(self):
        with pgkit.open(SR) as data_set:
            def count(item):
                return sum(1 + sum(map(count, element.items)) for element in item)

            walked = list(data_set.walk())
            self.assertEqual(len(walked), count(data_set))
            self.assertEqual(len(walked), data_set.report.elements)
            self.assertGreater(len(walked), len(data_set))

    def test_update_replaces_and_adds(self):
        with pgkit.open(MR) as data_set, pgkit.new() as other:
            other.PatientName = "ROE"
            other.PatientComments = "new"
            data_set.update(other)
            self.assertEqual((data_set.PatientName, data_set.PatientComments), ("ROE", "new"))

    def test_equal_is_what_has_the_same_values(self):
        with pgkit.open(MR) as one, pgkit.open(MR) as other:
            self.assertEqual(one, other)
            self.assertEqual(one["Rows"], other["Rows"])
            self.assertNotEqual(one["Rows"], other["Columns"])
            other.PatientName = "X"
            self.assertNotEqual(one, other)
            self.assertNotEqual(one, 1)


class Values(unittest.TestCase):
    def setUp(self):
        self.data_set = pgkit.new()
        self.addCleanup(self.data_set.close)

    def test_names_have_parts(self):
        self.data_set.SpecificCharacterSet = "ISO_IR 192"
        self.data_set.PatientName = "Yamada^Tarou^M^Dr^Jr=山田^太郎=やまだ^たろう"
        name = self.data_set.PatientName
        self.assertIsInstance(name, pgkit.PersonName)
        self.assertEqual((name.family_name, name.given_name, name.middle_name, name.name_prefix,
                          name.name_suffix), ("Yamada", "Tarou", "M", "Dr", "Jr"))
        self.assertEqual((name.alphabetic, name.ideographic, name.phonetic),
                         ("Yamada^Tarou^M^Dr^Jr", "山田^太郎", "やまだ^たろう"))
        self.assertEqual(name.components, (name.alphabetic, name.ideographic, name.phonetic))
        self.assertEqual(name.family_comma_given(), "Yamada, Tarou")
        self.assertEqual(pgkit.PersonName("").family_name, "")
        self.assertEqual(pgkit.PersonName("=山田^太郎").given_name, "太郎")

    def test_dates_and_times_on_request(self):
        cases = (("StudyDate", "date", "20240229", datetime.date(2024, 2, 29)),
                 ("StudyDate", "date", "2024.02.29", datetime.date(2024, 2, 29)),
                 ("StudyTime", "time", "142530.25", datetime.time(14, 25, 30, 250000)),
                 ("StudyTime", "time", "14", datetime.time(14)),
                 ("StudyTime", "time", "14:25:30", datetime.time(14, 25, 30)),
                 ("StudyTime", "time", "235960", datetime.time(23, 59, 59)),
                 ("AcquisitionDateTime", "datetime", "2024", datetime.datetime(2024, 1, 1)),
                 ("AcquisitionDateTime", "datetime", "20240229142530.000001-0330",
                  datetime.datetime(2024, 2, 29, 14, 25, 30, 1,
                                    datetime.timezone(-datetime.timedelta(hours=3, minutes=30)))))
        for key, kind, text, expected in cases:
            self.data_set[key] = text
            self.assertEqual(getattr(self.data_set[key], kind), expected, text)
        for key, kind, text in (("StudyDate", "date", "20240230"), ("StudyDate", "date", "today"),
                                ("StudyTime", "time", "2575"), ("StudyTime", "time", "x"),
                                ("AcquisitionDateTime", "datetime", "20")):
            self.data_set[key] = text
            with self.assertRaises(ValueError, msg=text):
                getattr(self.data_set[key], kind)
        with self.assertRaises(TypeError):
            self.data_set["StudyDate"].time
        self.data_set.StudyDate = None
        self.assertIsNone(self.data_set["StudyDate"].date)

    def test_dates_and_times_can_be_set(self):
        zone = datetime.timezone(datetime.timedelta(hours=1))
        for key, kind, value in (
                ("StudyDate", "date", datetime.date(999, 2, 3)),
                ("StudyTime", "time", datetime.time(1, 2, 3)),
                ("StudyTime", "time", datetime.time(1, 2, 3, 4)),
                ("AcquisitionDateTime", "datetime", datetime.datetime(2024, 2, 29, 1, 2, 3, 4, zone)),
                ("DateOfLastCalibration", "date", [datetime.date(2020, 1, 2),
                                                   datetime.date(2021, 1, 2)])):
            self.data_set[key] = value
            self.assertEqual(getattr(self.data_set[key], kind), value)

    def test_decimals_are_as_written(self):
        self.data_set.PixelSpacing = ["0.10", "1.5e-3"]
        self.assertEqual(self.data_set["PixelSpacing"].decimal,
                         [decimal.Decimal("0.10"), decimal.Decimal("0.0015")])
        self.assertEqual(self.data_set.PixelSpacing, [0.1, 0.0015])
        self.data_set.SliceThickness = decimal.Decimal("2.50")
        self.assertEqual(self.data_set["SliceThickness"].text, "2.50")
        for text in ("Infinity", "-Infinity", "NaN"):
            with self.assertRaises(ValueError):
                self.data_set.SliceThickness = decimal.Decimal(text)

    # The list was a copy: what was put in was lost without a word.
    def test_lists_of_values_write_through(self):
        data_set = self.data_set
        data_set.ImageType = ["ORIGINAL", "PRIMARY"]
        data_set.ImageType.append("AXIAL")
        data_set.ImageType[0] = "DERIVED"
        self.assertEqual(data_set["ImageType"].text, "DERIVED\\PRIMARY\\AXIAL")
        values = data_set.ImageType
        del values[1]
        values += ["X"]
        values.insert(0, "Y")
        values.reverse()
        self.assertEqual(values, ["X", "AXIAL", "DERIVED", "Y"])
        self.assertEqual(data_set.ImageType, values)
        with self.assertRaises(TypeError):
            values.append(5)
        self.assertEqual(values, data_set.ImageType)
        self.assertEqual(copy.deepcopy(values), list(values))
        data_set.close()
        with self.assertRaises(pgkit.ClosedError):
            values.append("Z")

    def test_values_of_the_current_edition(self):
        data_set = self.data_set
        for key, vr, value in (("SelectorUVValue", "UV", 1 << 63),
                               ("SelectorSVValue", "SV", -(1 << 63)),
                               ("SelectorURValue", "UR", "http://x/a\\b"),
                               ("SelectorUCValue", "UC", ["a", "b"]),
                               ("SelectorODValue", "OD", b"12345678")):
            element = data_set.set(key, value)
            self.assertEqual((element.vr, element.value), (vr, value), key)


class Sequences(unittest.TestCase):
    def setUp(self):
        self.data_set = pgkit.new()
        self.addCleanup(self.data_set.close)
        self.items = [self.item(uid) for uid in ("1.1", "1.2", "1.3")]
        self.data_set.ReferencedImageSequence = self.items

    def item(self, uid):
        item = pgkit.new()
        self.addCleanup(item.close)
        item.ReferencedSOPInstanceUID = uid
        return item

    def uids(self):
        return [item.ReferencedSOPInstanceUID for item in self.data_set.ReferencedImageSequence]

    def test_items_are_copied_in_and_are_a_list(self):
        self.assertEqual(self.uids(), ["1.1", "1.2", "1.3"])
        self.items[0].ReferencedSOPInstanceUID = "9"
        sequence = self.data_set.ReferencedImageSequence
        self.assertEqual(sequence[0].ReferencedSOPInstanceUID, "1.1")
        self.assertEqual(len(sequence), 3)
        self.assertIs(sequence[-1], self.data_set["ReferencedImageSequence"].items[2])
        self.assertEqual([item.ReferencedSOPInstanceUID for item in sequence[1:]], ["1.2", "1.3"])
        with self.assertRaises(IndexError):
            sequence[3]

    def test_items_are_inserted_replaced_and_removed(self):
        sequence = self.data_set.ReferencedImageSequence
        second = sequence[1]
        del sequence[0]
        self.assertEqual(self.uids(), ["1.2", "1.3"])
        sequence.append(self.item("1.4"))
        sequence.insert(0, self.item("1.0"))
        sequence.insert(2, self.item("1.25"))
        sequence[-2] = self.item("1.33")
        self.assertEqual(self.uids(), ["1.0", "1.2", "1.25", "1.33", "1.4"])
        self.assertEqual(second.ReferencedSOPInstanceUID, "1.2")
        del sequence[1:3]
        self.assertEqual(self.uids(), ["1.0", "1.33", "1.4"])
        with self.assertRaises(pgkit.ClosedError):
            second.ReferencedSOPInstanceUID
        sequence[:] = [sequence[2], sequence[0]]
        self.assertEqual(self.uids(), ["1.4", "1.0"])
        sequence.clear()
        self.assertEqual(self.uids(), [])

    def test_a_data_set_can_be_put_into_its_own_sequence(self):
        self.data_set.PatientID = "1"
        sequence = self.data_set.ReferencedImageSequence
        sequence.append(self.data_set)
        self.assertEqual(len(sequence), 4)
        self.assertEqual(len(sequence[3].ReferencedImageSequence), 3)
        self.assertEqual(sequence[3].PatientID, "1")

    def test_only_items_go_in(self):
        for value in ("x", 5, ["x"], [None], self.items[0]):
            with self.assertRaises(TypeError):
                self.data_set.ReferencedImageSequence = value
        with self.assertRaises(TypeError):
            self.data_set.ReferencedImageSequence.append("x")
        self.assertEqual(self.uids(), ["1.1", "1.2", "1.3"])

    def test_texts_of_items_follow_what_encloses_them(self):
        data_set = self.data_set
        item = data_set.ReferencedImageSequence[0]
        data_set.SpecificCharacterSet = "ISO_IR 100"
        item.PatientName = "Müller"
        self.assertEqual(item["PatientName"].raw, b"M\xfcller")
        self.assertEqual(item.PatientName, "Müller")
        data_set.SpecificCharacterSet = "ISO_IR 144"
        self.assertEqual(item.PatientName, "Mќller")
        alone = copy.copy(item)
        self.assertEqual(alone.PatientName, "Mќller")
        alone.close()


class Copies(TemporaryDirectory):
    def same_but_for_meta(self, one, other):
        def body(data_set):
            # Fragments are saved with the VR that the standard asks for.
            return [element.tag if element.is_encapsulated else element for element in data_set
                    if element.tag[0] != 2]

        self.assertEqual(body(one), body(other))
        if one.get("TransferSyntaxUID") == "1.2.840.10008.1.2.5":
            self.assertEqual(list(one.frames()), list(other.frames()))

    def test_copies_live_by_themselves(self):
        for path in (MR, SR, PLAN, DATA / "native/all_vrs_explicit_be.dcm",
                     DATA / "encapsulated/rtdose_rle_15frames_no_bot.dcm"):
            with pgkit.open(path) as data_set:
                copies = [copy.copy(data_set), copy.deepcopy(data_set), data_set.copy(),
                          pickle.loads(pickle.dumps(data_set))]
                for made in copies:
                    self.assertEqual(made, data_set, path)
                self.same_but_for_meta(copies[3], data_set)
            copies[0].set("PatientName", "X", vr="PN")
            self.assertNotEqual(copies[0].PatientName, copies[1].PatientName)
            with self.saved(copies[1]) as found:
                self.same_but_for_meta(found, copies[1])
            for made in copies:
                made.close()

    def test_what_was_built_can_be_pickled(self):
        with pgkit.new() as empty:
            self.assertEqual(len(pickle.loads(pickle.dumps(empty))), 0)
        with pgkit.new() as data_set:
            data_set.PatientID = "1"
            data_set.set((0x0099, 0x1001), [1.5], vr="FD")
            data_set.ReferencedImageSequence = [data_set]
            self.assertEqual(pickle.loads(pickle.dumps(data_set)), data_set)
            item = data_set.ReferencedImageSequence[0]
            self.assertEqual(pickle.loads(pickle.dumps(item)), item)

    # A pickle was a file: in implicit VR it had no VR of what no dictionary knows.
    def test_pickles_keep_every_vr(self):
        with pgkit.open(MR) as data_set:
            self.assertEqual(data_set.TransferSyntaxUID, "1.2.840.10008.1.2")
            data_set.set((0x0099, 0x1001), [1.5, -2.0], vr="FD")
            with pickle.loads(pickle.dumps(data_set)) as found:
                self.assertEqual((found[0x0099, 0x1001].vr, found[0x0099, 0x1001].value), ("FD", [1.5, -2.0]))
                self.assertEqual(found["PixelData"].vr, data_set["PixelData"].vr)
                found.PatientID = "7"
                self.assertNotEqual(found, data_set)

    def test_a_built_data_set_is_saved_in_the_transfer_syntax_it_names(self):
        for syntax in ("1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.2"):
            with pgkit.new() as data_set:
                data_set.TransferSyntaxUID = syntax
                data_set.PatientID = "1"
                data_set.Rows = 258
                with self.saved(data_set) as found:
                    self.assertEqual(found.TransferSyntaxUID, syntax)
                    self.assertEqual((found.PatientID, found.Rows), ("1", 258))


class Sources(TemporaryDirectory):
    def test_bytes_and_streams_are_opened(self):
        data = MR.read_bytes()
        with pgkit.open(MR) as expected:
            for source in (data, bytearray(data), memoryview(data), io.BytesIO(data)):
                with pgkit.open(source) as data_set:
                    self.assertEqual(data_set, expected)
            with MR.open("rb") as stream, pgkit.open(stream) as data_set:
                self.assertEqual(data_set, expected)
            self.assertEqual(pgkit.open(expected.to_bytes()), expected)
            stream = io.BytesIO()
            expected.save_as(stream)
            self.assertEqual(stream.getvalue(), expected.to_bytes())
            expected.save_as(self.directory / "saved")
            self.assertEqual((self.directory / "saved").read_bytes(), expected.to_bytes())
        for source in (5, None, io.StringIO("x")):
            with self.assertRaises(TypeError):
                pgkit.open(source)

    def test_what_is_no_data_set_says_so(self):
        text = self.directory / "notes.txt"
        text.write_text("Dear colleague, this is no image. " * 20)
        for source in (text, text.read_bytes()):
            with self.assertRaises(pgkit.PgkitError) as caught:
                pgkit.open(source)
            self.assertIn("not a DICOM data set", str(caught.exception))

    def test_what_is_cut_short_warns_and_tells_where(self):
        data = MR.read_bytes()[:1000]
        with self.assertWarns(pgkit.TruncatedWarning) as caught:
            data_set = pgkit.open(data)
        self.assertIn("at offset", str(caught.warning))
        self.assertEqual(data_set.report.result, pgkit.OpenResult.CUT_SHORT)
        self.assertFalse(data_set.report.is_complete)
        self.assertGreater(len(data_set), 5)
        with pgkit.open(MR) as whole:
            self.assertTrue(whole.report.is_complete)
            self.assertEqual(whole.report.transfer_syntax, "1.2.840.10008.1.2")
            self.assertEqual(whole.report.certainty, pgkit.Certainty.STATED)
        with pgkit.new() as built:
            self.assertIsNone(built.report)

    def test_is_dicom(self):
        self.assertTrue(pgkit.is_dicom(MR))
        self.assertFalse(pgkit.is_dicom(__file__))
        with self.assertRaises(FileNotFoundError):
            pgkit.is_dicom(self.directory / "missing")


class Errors(TemporaryDirectory):
    def assert_told(self, kind, call, *parts):
        with self.assertRaises(kind) as caught:
            call()
        for part in parts:
            self.assertIn(part, str(caught.exception))

    def test_say_what_and_where(self):
        text = self.directory / "notes.txt"
        text.write_text("Dear colleague, this is no image. " * 20)
        self.assert_told(pgkit.PgkitError, lambda: pgkit.open(text), str(text), "not a DICOM data set")
        self.assert_told(pgkit.PgkitError, lambda: pgkit.read_values(text, ["Rows"]), str(text),
                         "not a DICOM data set")
        missing = self.directory / "missing.dcm"
        self.assert_told(FileNotFoundError, lambda: pgkit.open(missing), str(missing))
        self.assert_told(pgkit.PgkitError, lambda: pgkit.open(b"x" * 500), "the bytes")
        with pgkit.new() as data_set:
            data_set.NumberOfFrames = b"1A"
            self.assert_told(ValueError, lambda: data_set.NumberOfFrames, "(0028,0008)", "IS", "1A")
            self.assert_told(ValueError, lambda: data_set["NumberOfFrames"].values, "(0028,0008)", "IS", "1A")
            self.assertEqual(data_set["NumberOfFrames"].text, "1A")
        with pgkit.open(MR) as data_set:
            nowhere = self.directory / "no/such/folder"
            self.assert_told(pgkit.SaveError, lambda: data_set.save(nowhere), str(nowhere))
            self.assert_told(KeyError, lambda: data_set["PatientComments"], "PatientComments")
            self.assert_told(AttributeError, lambda: data_set.PatientComments, "PatientComments")
            self.assert_told(AttributeError, lambda: setattr(data_set, "PatientNames", "X"), "PatientNames")
            self.assert_told(ValueError, lambda: data_set.set((0x0099, 0x1001), 1), "(0099,1001)", "vr")
            self.assert_told(ValueError, lambda: data_set.set("Rows", 70000), "(0028,0010)", "US", "70000")
            self.assert_told(TypeError, lambda: data_set.set("Modality", 5), "(0008,0060)", "CS", "int")
            self.assert_told(TypeError, lambda: data_set["Rows"].date, "(0028,0010)", "US", "DA")
            self.assert_told(TypeError, lambda: data_set["Rows"].append_item(), "(0028,0010)")
            self.assert_told(UnicodeEncodeError, lambda: data_set.set("PatientName", "山"),
                             "(0010,0010)", "u5c71")
            self.assert_told(pgkit.PgkitError, lambda: next(data_set.frames()), "encapsulated")
        self.assert_told(pgkit.ClosedError, lambda: data_set.Rows, "closed")
        with pgkit.open(self.jpeg()) as data_set:
            self.assert_told(pgkit.PgkitError, lambda: data_set.pixel_array, data_set.TransferSyntaxUID,
                             "frames()")

    @staticmethod
    def jpeg():
        """A sample whose pixels are in JPEG."""
        for path in sorted((DATA / "encapsulated").iterdir()):
            with pgkit.open(path) as data_set:
                syntax = data_set.get("TransferSyntaxUID", "")
                if syntax.startswith("1.2.840.10008.1.2.4") and "Rows" in data_set:
                    return path
        raise AssertionError("there is no sample in JPEG")


class DiscToDisc(TemporaryDirectory):
    def test_pixels_of_a_file_arrive_as_they_were(self):
        compared = 0
        for path in [MR, *sorted((DATA / "encapsulated").iterdir())]:
            with pgkit.open(path) as data_set:
                if "PixelData" not in data_set:
                    continue
                data_set.PatientComments = "new"
                with self.saved(data_set) as found:
                    self.assertEqual(found.PatientComments, "new")
            data, saved = path.read_bytes(), (self.directory / "saved.dcm").read_bytes()
            # The header has a VR in explicit VR; what follows it is the same to the end.
            at = data.rindex(b"\xe0\x7f\x10\x00")
            pixels = data[at + (12 if data[at + 4 : at + 6] in (b"OB", b"OW") else 8) :]
            with self.subTest(path=path.name):
                self.assertIn(pixels[: 1 << 20], saved)
                compared += 1
        self.assertGreater(compared, 2)


class Json(unittest.TestCase):
    def test_json_goes_both_ways(self):
        for path in (MR, PLAN, SR, DATA / "charset/japanese_ir87.dcm"):
            with pgkit.open(path) as data_set:
                made = pgkit.from_json(data_set.to_json())
                again = pgkit.from_json(data_set.to_json_dict())
                self.assertEqual(made.to_json_dict(), again.to_json_dict())  # 1.50 becomes 1.5
                self.assertEqual(made.get("PatientName"), data_set.get("PatientName"))
                self.assertEqual(made.to_json(), data_set.to_json())
        found = data_set if not data_set.closed else pgkit.open(MR)
        with found:
            self.assertEqual(found.to_json_dict()["00280010"], {"vr": "US", "Value": [64]})
            uri = found.to_json_dict(bulk_limit=1000, source_uri="http://x/1")["7FE00010"]
            self.assertRegex(uri["BulkDataURI"], r"^http://x/1\?offset=\d+&length=8192$")

    def test_items_have_their_texts(self):
        with pgkit.new() as data_set:
            data_set.SpecificCharacterSet = "ISO_IR 100"
            item = data_set.insert_sequence("ReferencedImageSequence").append_item()
            item.PatientName = "Müller"
            self.assertEqual(item.to_json_dict()["00100010"]["Value"], [{"Alphabetic": "Müller"}])

    def test_what_is_no_json_says_where(self):
        for text in ("", "x", '{"00100010":{"vr":"PN"},"00100010":{"vr":"PN"}}',
                     '{"00280010":{"vr":"US","Value":[70000]}}', {"x": 1}, b"\xff", "\ud800"):
            with self.assertRaises(pgkit.JsonError) as caught:
                pgkit.from_json(text)
            self.assertIn("at offset", str(caught.exception))
        with self.assertRaises(TypeError):
            pgkit.from_json(5)


class Texts(unittest.TestCase):
    def test_print_shows_the_data_set(self):
        with pgkit.open(PLAN) as data_set:
            text = str(data_set)
            self.assertEqual(len([line for line in text.splitlines() if line.lstrip().startswith("(")]),
                             sum(1 for _ in data_set.walk()))
            self.assertIn("(0008,0060) CS   Modality: 'RTPLAN'", text)
            self.assertRegex(text, r"\n    \([0-9A-F]{4},")
            self.assertIn("PatientName", repr(data_set["PatientName"]))
        self.assertEqual(str(data_set), "<DataSet: closed>")

    def test_control_characters_are_escaped(self):
        with pgkit.new() as data_set:
            data_set.PatientName = b"\x1b[31mX"
            self.assertNotIn("\x1b", str(data_set) + repr(data_set["PatientName"]))

    def test_every_sample_can_be_printed(self):
        for path in sorted(DATA.rglob("*.dcm")):
            with self.subTest(path=path.name):
                try:
                    data_set = pgkit.open(path)
                except (pgkit.PgkitError, pgkit.TruncatedWarning):
                    continue
                self.assertTrue(str(data_set))


class Deep(unittest.TestCase):
    # Python's limit of calls was reached.
    def test_items_nested_deeper_than_calls(self):
        depth = 1500
        sequence = b"\x08\x00\x40\x11SQ\0\0\xff\xff\xff\xff\xfe\xff\x00\xe0\xff\xff\xff\xff"
        end = b"\xfe\xff\x0d\xe0\0\0\0\0\xfe\xff\xdd\xe0\0\0\0\0"
        data = (b"\0" * 128 + b"DICM\x02\0\x10\0UI\x14\0" + b"1.2.840.10008.1.2.1\0"
                + b"\x08\0\x05\0CS\x0a\0ISO_IR 144" + sequence * depth
                + b"\x10\0\x10\0PN\x02\0\xbb\xee" + end * depth)
        with pgkit.open(data) as data_set, data_set.copy() as copied:
            self.assertEqual(pickle.loads(pickle.dumps(data_set)), data_set)
            self.assertEqual(sum(1 for _ in data_set.walk()), depth + 3)
            self.assertEqual(copied, data_set)
            *_, last = copied.walk()
            copied.PatientID = "1"
            copied.SpecificCharacterSet = "ISO_IR 144"
            self.assertEqual(last.value, "Лю")
            self.assertIn("Лю", str(data_set))
            self.assertNotEqual(copied, data_set)


class Uids(unittest.TestCase):
    def test_generated_ones_are_valid_and_differ(self):
        for prefix in (None, "1.2.3.", "1.2.826.0.1.3680043.8.498."):
            uids = {pgkit.generate_uid(prefix) for _ in range(200)}
            self.assertEqual(len(uids), 200)
            for uid in uids:
                self.assertTrue(pgkit.is_valid_uid(uid), uid)
                self.assertTrue(uid.startswith(prefix or "2.25."))
        for prefix in ("1.2.3", "x.", "1.02.", "1." * 30):
            with self.assertRaises(ValueError):
                pgkit.generate_uid(prefix)

    def test_names_of_today(self):
        self.assertEqual(pgkit.uid_keyword("1.2.840.10008.5.1.4.1.1.2"), "CTImageStorage")
        self.assertIsNone(pgkit.uid_keyword("1.2.3"))
        self.assertEqual(pgkit.keyword((0x0010, 0x0010)), "PatientName")
        self.assertEqual(pgkit.keyword((0x0099, 0x0010)), "")
        self.assertEqual(pgkit.multiplicity("ImageType"), "2-n")
        self.assertRegex(pgkit.__version__, r"^\d+\.\d+\.\d+$")


class Memory(unittest.TestCase):
    # No cycles: a data set that nobody refers to closes its file at once.
    def test_nothing_waits_for_the_collector(self):
        gc.disable()
        self.addCleanup(gc.enable)
        fds = pathlib.Path("/proc/self/fd")
        before = len(list(fds.iterdir())) if fds.exists() else 0
        for _ in range(20):
            data_set = pgkit.open(PLAN)
            str(data_set)
            item = next(element for element in data_set if element.is_sequence).items[0]
            del data_set
            self.assertGreater(len(item), 0)
        del item
        self.assertEqual(len(list(fds.iterdir())) if fds.exists() else 0, before)


if __name__ == "__main__":
    unittest.main()
