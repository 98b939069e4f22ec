import copy
import gc
import pathlib
import pickle
import resource
import signal
import tempfile
import unittest

import pgkit

DATA = pathlib.Path(__file__).resolve().parents[3] / "tests/data"
MR = DATA / "native/mr_implicit_le.dcm"


class TemporaryDirectory(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def saved(self, data_set, **options):
        path = self.directory / "saved.dcm"
        data_set.save(path, **options)
        return pgkit.open(path)


class LongValues(TemporaryDirectory):
    def test_are_written_as_un_where_their_vr_has_no_room_for_the_length(self):
        data_set = pgkit.new()
        self.addCleanup(data_set.close)
        data_set.set("PatientComments", "x" * 70000)
        data_set.set((0x0028, 0x1101), [258] * 35000, vr="US")
        for encoding in ("explicit", "implicit", "big endian"):
            with self.saved(data_set, encoding=encoding) as saved:
                self.assertEqual(saved["PatientComments"].raw, b"x" * 70000)
                self.assertEqual(saved[0x0028, 0x1101].raw, b"\x02\x01" * 35000)
        with self.saved(data_set) as saved:
            self.assertEqual(saved["PatientComments"].vr, "UN")


class PrivateElements(TemporaryDirectory):
    def test_those_of_manufacturers_have_names_and_value_representations(self):
        data_set = pgkit.new()
        self.addCleanup(data_set.close)
        data_set.set((0x0019, 0x0010), "1.2.840.113681", vr="LO")
        data_set.set((0x0019, 0x1010), b"dull", vr="UN")
        with self.saved(data_set) as saved:
            element = saved[0x0019, 0x1010]
            self.assertEqual((element.vr, element.name, element.value),
                             ("ST", "CRImageParamsCommon", "dull"))


class Reading(unittest.TestCase):
    def setUp(self):
        self.data_set = pgkit.open(DATA / "native/all_vrs_explicit_le.dcm")
        self.addCleanup(self.data_set.close)

    def by_vr(self, vr):
        return [element for element in self.data_set if element.vr == vr and element.length]

    def test_a_value_has_the_type_of_its_vr(self):
        kinds = {"US": int, "SS": int, "UL": int, "SL": int, "FL": float, "FD": float, "IS": int,
                 "DS": float, "AT": tuple, "PN": str, "UI": str, "LO": str, "DA": str, "OB": bytes,
                 "OW": bytes, "UN": bytes}
        for vr, kind in kinds.items():
            elements = self.by_vr(vr)
            self.assertTrue(elements, vr)
            for element in elements:
                for value in element.values:
                    self.assertIsInstance(value, kind, element)

    def test_all_encodings_give_the_same_values(self):
        def values(name):
            with pgkit.open(DATA / "native" / name) as data_set:
                return {element.tag: element.value for element in data_set
                        if element.tag[0] != 2 and not element.tag[0] % 2
                        and not element.is_sequence and not isinstance(element.value, bytes)}

        expected = values("all_vrs_explicit_le.dcm")
        self.assertGreater(len(expected), 20)
        self.assertEqual(values("all_vrs_explicit_be.dcm"), expected)

    def test_several_values_are_a_list(self):
        with pgkit.open(MR) as data_set:
            self.assertEqual(data_set["ImageType"].value, ["DERIVED", "SECONDARY", "OTHER"])
            self.assertEqual(data_set["PixelSpacing"].value, [0.3125, 0.3125])

    def test_an_element_is_found_by_name_number_and_pair(self):
        with pgkit.open(MR) as data_set:
            element = data_set["PatientsName"]
            self.assertIs(data_set[0x00100010], element)
            self.assertIs(data_set[0x0010, 0x0010], element)
            self.assertEqual(element.value, "CompressedSamples^MR1")
            self.assertEqual((element.tag, element.name, element.vr, element.length),
                             ((0x0010, 0x0010), "PatientsName", "PN", 22))

    def test_what_is_missing_is_a_key_error_or_a_default(self):
        with pgkit.open(MR) as data_set:
            for key in ("PatientsTelephoneNumbers", (0x0099, 0x0001), "NoSuchName"):
                with self.assertRaises(KeyError):
                    data_set[key]
                self.assertNotIn(key, data_set)
            self.assertEqual(data_set.get("PatientsTelephoneNumbers", "none"), "none")
            self.assertIsNone(data_set["PatientsBirthDate"].value)

    def test_a_number_that_may_be_signed_follows_pixel_representation(self):
        with pgkit.open(MR) as data_set:
            self.assertEqual(data_set["LargestImagePixelValue"].value, 4000)
            self.assertEqual(data_set["PixelRepresentation"].value, 1)
            data_set["SmallestImagePixelValue"] = -5
            self.assertEqual(data_set["SmallestImagePixelValue"].value, -5)
            data_set["PixelRepresentation"] = 0
            self.assertEqual(data_set["SmallestImagePixelValue"].value, 0xFFFB)

    def test_items_are_walked_at_any_depth(self):
        names = []

        def walk(item):
            for element in item:
                names.append(element.name)
                for child in element.items:
                    walk(child)

        with pgkit.open(DATA / "sequences/sr_nested_explicit_undefined.dcm") as data_set:
            walk(data_set)
        self.assertIn("CodeMeaning", names)

    def test_texts_are_decoded_by_their_character_set(self):
        with pgkit.open(DATA / "charset/utf8_chinese.dcm") as data_set:
            self.assertEqual(data_set["PatientsName"].value, "Wang^XiaoDong=王^小東=")
        with pgkit.open(DATA / "charset/japanese_ir87.dcm") as data_set:
            self.assertEqual(data_set["PatientsName"].value,
                             "Yamada^Tarou=山田^太郎=やまだ^たろう")

    def test_fragments_come_as_bytes(self):
        with pgkit.open(DATA / "encapsulated/rtdose_rle_15frames_no_bot.dcm") as data_set:
            pixels = data_set["PixelData"]
            self.assertTrue(pixels.is_encapsulated)
            self.assertEqual(len(pixels.fragments), 15)
            self.assertTrue(all(pixels.fragments))
            with self.assertRaises(pgkit.PgkitError):
                pixels.value

    def test_a_length_that_no_file_can_have_is_refused(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "lie.dcm"
            path.write_bytes(b"\x10\x00\x10\x00\x04\x00\x00\x00DOE^"
                             b"\xe0\x7f\x10\x00\x00\x00\x00\xf0")
            with self.assertWarns(pgkit.TruncatedWarning):
                data_set = pgkit.open(path)
            with data_set:
                self.assertEqual(data_set["PatientsName"].value, "DOE^")
                with self.assertRaises(pgkit.PgkitError):
                    data_set["PixelData"].raw

    def test_a_file_named_in_another_case_has_its_own_size(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "lie.dcm"
            path.write_bytes(b"\x10\x00\x10\x00\x04\x00\x00\x00DOE^"
                             b"\x10\x00\x20\x00\x4c\x00\x00\x00" + b"7" * 76
                             + b"\xe0\x7f\x10\x00\x00\x00\x00\xf0")
            with self.assertWarns(pgkit.TruncatedWarning):
                data_set = pgkit.open(path.with_name("LIE.DCM"))
            with data_set:
                self.assertEqual(len(data_set["PatientID"].raw), 76)
                with self.assertRaises(pgkit.PgkitError):
                    data_set["PixelData"].raw

    def test_the_dump_is_text(self):
        with pgkit.open(MR) as data_set:
            lines = data_set.dump().splitlines()
        self.assertEqual(lines[0], "DATASET")
        self.assertIn("PixelData", lines[-2])

    def test_files_that_cannot_be_read_raise(self):
        with self.assertRaises(FileNotFoundError):
            pgkit.open(DATA / "missing")
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "empty"
            path.write_bytes(b"")
            with self.assertRaises(pgkit.PgkitError):
                pgkit.open(path)
        with self.assertRaises(ValueError):
            pgkit.open("a\0b")


class Editing(TemporaryDirectory):
    def setUp(self):
        super().setUp()
        self.data_set = pgkit.open(MR)
        self.addCleanup(self.data_set.close)

    # What was there was cut before it was known whether the new file can be written.
    def test_a_failing_save_leaves_the_former_file(self):
        path = self.directory / "saved.dcm"
        path.write_bytes(b"former")
        path.chmod(0o640)
        mode = path.stat().st_mode
        limit = resource.getrlimit(resource.RLIMIT_FSIZE)
        ignored = signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (1000, limit[1]))
        try:
            with self.assertRaises(pgkit.SaveError):
                self.data_set.save(path, encoding="explicit")
        finally:
            resource.setrlimit(resource.RLIMIT_FSIZE, limit)
            signal.signal(signal.SIGXFSZ, ignored)
        self.assertEqual(path.read_bytes(), b"former")
        self.data_set.save(path, encoding="explicit")
        self.assertGreater(path.stat().st_size, 100)
        self.assertEqual(path.stat().st_mode, mode)
        self.assertEqual([path.name for path in self.directory.iterdir()], ["saved.dcm"])

    def test_changes_are_saved_and_the_rest_stays(self):
        before = {element.tag: element.raw for element in self.data_set}
        self.data_set["PatientsName"] = "DOE^JANE"
        self.data_set["PatientsTelephoneNumbers"] = ["1", "22"]
        del self.data_set["PatientsSex"]
        with self.saved(self.data_set) as found:
            after = {element.tag: element.raw for element in found}
            self.assertEqual(found["TransferSyntaxUID"].value, "1.2.840.10008.1.2")
        before.update({(0x0010, 0x0010): b"DOE^JANE", (0x0010, 0x2154): b"1\\22"})
        del before[0x0010, 0x0040]
        for data in (before, after):
            del data[0x0002, 0x0000]
        self.assertEqual(after, before)

    def test_every_kind_of_value_reads_back(self):
        values = {"Rows": 7, "InstanceNumber": 12, "PixelSpacing": [0.1, 1e-20 / 3],
                  "ImageType": ["A", "B"], "FrameIncrementPointer": (0x0018, 0x1063),
                  "StudyDate": "20200101", "ReferencedSOPInstanceUID": "1.2.3",
                  "PixelData": b"\1\2\3\4", "ImageComments": "one\\text"}
        for key, value in values.items():
            self.data_set[key] = value
        with self.saved(self.data_set, encoding="big endian") as found:
            for key, value in values.items():
                if key == "PixelSpacing":
                    self.assertEqual(found[key].value[0], 0.1)
                    self.assertAlmostEqual(found[key].value[1], value[1], delta=1e-29)
                else:
                    self.assertEqual(found[key].value, value, key)

    def test_values_of_the_wrong_kind_change_nothing(self):
        for key, value, error in (("Rows", "x", ValueError), ("Rows", 70000, ValueError),
                                  ("PatientsName", 5, TypeError), ("PixelData", "text", TypeError),
                                  ("PatientsAge", 4, TypeError), ("ImageType", "Ä", ValueError),
                                  ("PixelSpacing", float("nan"), ValueError),
                                  ("PixelSpacing", [1.5, True], TypeError),
                                  ("InstanceNumber", True, TypeError),
                                  ("FrameIncrementPointer", (1, 70000), ValueError),
                                  ("ReferencedImageSequence", "x", TypeError)):
            count = len(self.data_set)
            with self.assertRaises(error, msg=key):
                self.data_set[key] = value
            self.assertEqual(len(self.data_set), count, key)
        self.assertEqual(self.data_set["Rows"].value, 64)

    def test_a_refused_value_leaves_the_element_and_its_vr_alone(self):
        for key, value, vr, error in (("PatientID", object(), "UL", ValueError),
                                      ("PatientID", 1 << 32, "UL", ValueError),
                                      ("PatientID", "X", "SQ", TypeError),
                                      ("PatientID", b"X", "ZZ", ValueError),
                                      ((0x0099, 0x1001), b"X", "ZZ", ValueError),
                                      ((0x0099, 0x1001), "X", "SQ", TypeError)):
            before = [(element.tag, element.vr, element.length) for element in self.data_set]
            with self.assertRaises(error, msg=(key, vr)):
                self.data_set.set(key, value, vr=vr)
            self.assertEqual([(element.tag, element.vr, element.length)
                              for element in self.data_set], before, (key, vr))

    def test_what_has_items_or_fragments_keeps_its_vr(self):
        sequence = self.data_set.insert_sequence("ReferencedImageSequence")
        sequence.append_item()
        with pgkit.open(DATA / "encapsulated/rtdose_rle_15frames_no_bot.dcm") as encapsulated:
            for data_set, key, vr in ((self.data_set, "ReferencedImageSequence", "LO"),
                                      (encapsulated, "PixelData", "UN")):
                before = data_set[key].vr
                with self.assertRaises(TypeError):
                    data_set.set(key, b"X", vr=vr)
                self.assertEqual(data_set[key].vr, before)

    def test_the_vr_of_an_element_can_be_changed(self):
        self.data_set.set("PatientID", [1, 2], vr="UL")
        self.assertEqual((self.data_set["PatientID"].vr, self.data_set["PatientID"].value),
                         ("UL", [1, 2]))
        self.data_set.insert_sequence("ReferencedImageSequence")
        self.data_set.set("ReferencedImageSequence", "text", vr="LO")
        self.assertEqual(self.data_set["ReferencedImageSequence"].value, "text")

    def test_texts_are_encoded_by_the_character_set(self):
        with self.assertRaises(UnicodeEncodeError):
            self.data_set["PatientsName"] = "Müller"
        self.data_set["SpecificCharacterSet"] = "ISO_IR 192"
        self.data_set["PatientsName"] = "Müller"
        with self.saved(self.data_set) as found:
            self.assertEqual(found["PatientsName"].raw, "Müller ".encode())
            self.assertEqual(found["PatientsName"].value, "Müller")

    def test_a_private_element_needs_its_vr(self):
        with self.assertRaises(ValueError):
            self.data_set[0x0099, 0x1001] = "x"
        self.data_set[0x0099, 0x0010] = "ACME"
        element = self.data_set.set((0x0099, 0x1001), [1.5, -2.0], vr="FD")
        self.assertEqual(element.vr, "FD")
        with self.saved(self.data_set, encoding="explicit") as found:
            self.assertEqual(found[0x0099, 0x1001].value, [1.5, -2.0])

    # What saving had added was not seen in a data set that had been looked at before.
    def test_saving_completes_the_data_set_itself(self):
        for save in (lambda data_set: data_set.save(self.directory / "x"), pgkit.DataSet.to_bytes):
            with pgkit.new() as data_set:
                data_set.SOPInstanceUID = "1.2.3"
                data_set.PatientComments = "x" * 70000
                self.assertNotIn((0x0002, 0x0010), data_set)
                self.assertEqual((len(data_set), data_set["PatientComments"].vr), (2, "LT"))
                save(data_set)
                self.assertEqual(data_set.TransferSyntaxUID, "1.2.840.10008.1.2.1")
                self.assertEqual(data_set.MediaStorageSOPInstanceUID, "1.2.3")
                self.assertEqual(data_set["PatientComments"].vr, "UN")
                self.assertEqual(data_set.keys()[0][0], 0x0002)

    def test_a_private_element_has_the_name_that_its_creator_gives_it(self):
        creator, number = "1.2.840.113681", (0x0019, 0x1010)
        self.data_set[0x0019, 0x0010] = creator
        self.data_set.set(number, b"PARAMETERS", vr="UN")
        self.data_set.set((0x0019, 0x10FE), b"??", vr="UN")
        self.assertEqual(self.data_set[number].name, "<Unknown Tag>")  # before it was read
        with self.saved(self.data_set, encoding="implicit") as found:
            self.assertEqual((found[number].name, found[number].vr), ("CRImageParamsCommon", "ST"))
            self.assertEqual(found[0x0019, 0x0010].name, "PrivateCreator10xx")
            self.assertEqual(found[0x0019, 0x10FE].name, "<Unknown Tag>")

    def test_sequences_are_built_and_pruned(self):
        sequence = self.data_set.insert_sequence("ReferencedImageSequence")
        for number in (1, 2, 3):
            sequence.append_item()["ReferencedSOPInstanceUID"] = f"1.2.{number}"
        sequence.remove_item(sequence.items[1])
        with self.saved(self.data_set) as found:
            self.assertEqual([item["ReferencedSOPInstanceUID"].value
                              for item in found["ReferencedImageSequence"].items],
                             ["1.2.1", "1.2.3"])
        with self.assertRaises(ValueError):
            self.data_set.insert_sequence("ReferencedImageSequence")
        with self.assertRaises(TypeError):
            self.data_set.insert_sequence("PatientsAge")
        with self.assertRaises(TypeError):
            self.data_set["Rows"].append_item()

    def test_a_data_set_is_built_from_nothing(self):
        with pgkit.new() as data_set:
            data_set["SOPClassUID"] = "1.2.840.10008.5.1.4.1.1.7"
            data_set["SOPInstanceUID"] = "1.2.3"
            with self.saved(data_set) as found:
                self.assertEqual(found["TransferSyntaxUID"].value, "1.2.840.10008.1.2.1")
                self.assertEqual(found["MediaStorageSOPInstanceUID"].value, "1.2.3")
            with self.saved(data_set, encoding="implicit", part10=False) as found:
                self.assertEqual(found["SOPInstanceUID"].value, "1.2.3")

    def test_a_file_can_be_saved_over_itself(self):
        path = self.directory / "image.dcm"
        path.write_bytes(MR.read_bytes())
        with pgkit.open(path) as data_set:
            pixels = data_set["PixelData"].raw
            data_set["PatientsName"] = "X"
            data_set.save(path)
        with pgkit.open(path) as data_set:
            self.assertEqual(data_set["PixelData"].raw, pixels)

    def test_a_failed_save_raises(self):
        with self.assertRaises(pgkit.SaveError) as caught:
            self.data_set.save(self.directory / "no" / "such" / "directory")
        self.assertEqual(caught.exception.code, 1)
        with self.assertRaises(ValueError):
            self.data_set.save(self.directory / "x", encoding="deflated")


class Lifetime(unittest.TestCase):
    def test_everything_of_a_closed_data_set_raises(self):
        data_set = pgkit.open(DATA / "sequences/rtplan_implicit.dcm")
        sequence = next(element for element in data_set if element.is_sequence)
        item = sequence.items[0]
        data_set.close()
        data_set.close()
        self.assertTrue(data_set.closed)
        for use in (lambda: data_set["PatientsName"], lambda: len(data_set), lambda: list(item),
                    lambda: sequence.value, lambda: sequence.append_item(), data_set.dump,
                    lambda: data_set.save("x"), data_set.__enter__,
                    lambda: item.set("Rows", 1), lambda: sequence.tag):
            with self.assertRaises(pgkit.ClosedError):
                use()
        self.assertEqual([repr(node) for node in (data_set, sequence, item)],
                         ["<DataSet: closed>", "<Element: closed>", "<Item: closed>"])

    def test_what_was_removed_raises_and_the_rest_lives(self):
        with pgkit.open(DATA / "sequences/rtplan_implicit.dcm") as data_set:
            sequence = next(element for element in data_set if element.is_sequence)
            tag, item = sequence.tag, sequence.items[0]
            inner = next(iter(item))
            del data_set[tag]
            for use in (lambda: sequence.items, lambda: len(item), lambda: inner.value):
                with self.assertRaises(pgkit.ClosedError):
                    use()
            self.assertNotIn(tag, data_set)
            self.assertIsNotNone(data_set["PatientsName"].value)

    def test_what_takes_the_place_of_a_removed_element_is_another_one(self):
        # Its memory is likely to be that of the former one.
        with pgkit.new() as data_set:
            former = []
            for number in range(50):
                data_set.PatientID = f"{number}"
                by_key, (by_iteration,) = data_set["PatientID"], list(data_set)
                self.assertEqual((by_key.value, by_iteration.value), (f"{number}", f"{number}"))
                del data_set.PatientID
                former += [by_key, by_iteration]
            data_set.PatientID = "last"
            for element in former:
                for use in (lambda: element.value, lambda: element.tag, lambda: element.raw,
                            lambda: setattr(element, "value", "X")):
                    with self.assertRaises(pgkit.ClosedError):
                        use()
                self.assertEqual(repr(element), "<Element: closed>")
            self.assertEqual([element.value for element in data_set], ["last"])

    def test_items_of_another_tree_cannot_be_removed(self):
        with pgkit.new() as first, pgkit.new() as second:
            item = first.insert_sequence("ReferencedImageSequence").append_item()
            with self.assertRaises(ValueError):
                second.insert_sequence("ReferencedImageSequence").remove_item(item)
            self.assertEqual(len(item), 0)

    def test_an_element_keeps_its_tree(self):
        element = pgkit.open(MR)["PatientsName"]
        gc.collect()
        self.assertEqual(element.value, "CompressedSamples^MR1")

    def test_elements_cannot_be_copied(self):
        with pgkit.open(MR) as data_set:
            for function in (copy.copy, copy.deepcopy, pickle.dumps):
                with self.assertRaises(TypeError):
                    function(data_set["Rows"])

    def test_a_thousand_data_sets_leave_no_file_open(self):
        for _ in range(1100):
            pgkit.open(MR)["Rows"].value


if __name__ == "__main__":
    unittest.main()
