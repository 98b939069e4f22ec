"""The same files through pydicom, element by element: every difference has its explanation.

PGKIT_SAMPLES names another folder of files to compare.
"""

import copy
import os
import pathlib
import random
import unittest
import warnings

import pgkit

from test_data_set import DATA, TemporaryDirectory

try:
    import numpy
    import pydicom
except ImportError:
    pydicom = None

_FOLDERS = ("native", "sequences", "charset", "encapsulated")


def samples():
    roots = [DATA / folder for folder in _FOLDERS]
    if os.environ.get("PGKIT_SAMPLES"):
        roots += [pathlib.Path(os.environ["PGKIT_SAMPLES"]) / folder for folder in _FOLDERS]
    return [path for root in roots for path in sorted(root.iterdir()) if path.is_file()]


def plain(value):
    """A value of pydicom as this module has it."""
    if isinstance(value, (list, pydicom.multival.MultiValue)):
        return [plain(one) for one in value] or None
    if isinstance(value, pydicom.valuerep.PersonName):
        return str(value) or None
    if isinstance(value, pydicom.tag.BaseTag):
        return value.group, value.element
    return None if value in ("", b"") else value


@unittest.skipUnless(pydicom, "pydicom is not installed")
class Peer(unittest.TestCase):
    def setUp(self):
        warnings.simplefilter("ignore")
        self.addCleanup(warnings.resetwarnings)
        # Values of VR UN stay bytes here; pydicom would guess.
        former = pydicom.config.replace_un_with_known_vr
        pydicom.config.replace_un_with_known_vr = False
        self.addCleanup(setattr, pydicom.config, "replace_un_with_known_vr", former)
        self.equal = 0

    def compare(self, item, other, is_big_endian):
        # Group lengths say nothing; pydicom keeps group 0002 elsewhere.
        mine = {element.tag: element for element in item
                if element.tag[0] != 2 and element.tag[1] != 0}
        theirs = [(tag.group, tag.element) for tag in other.keys() if tag.element != 0]
        self.assertEqual(list(mine), theirs)
        for tag in theirs:
            with self.subTest(tag="%04X,%04X" % tag):
                self.compare_element(mine[tag], other[tag], is_big_endian)

    def compare_element(self, element, other, is_big_endian):
        if element.is_encapsulated:
            return
        if element.is_sequence:
            self.assertEqual(other.VR, "SQ")
            self.assertEqual(len(element.items), len(other.value))
            for item, its in zip(element.items, other.value):
                self.compare(item, its, is_big_endian)
            return
        if element.vr == "??" or element.tag[0] % 2 and element.vr == "UN":
            # Implicit VR does not say, and the tag is in no dictionary of the library: bytes.
            # pydicom has one of private tags.
            self.assertEqual(element.value or b"", element.raw)
            return
        if element.vr == "SQ" or element.vr == "UN":
            self.assertIn(other.VR, ("SQ", "UN"))
            return
        # Where a dictionary says "US or SS" or "OW or OB", the VR stays open here.
        expected = {"USSS": ("US", "SS"), "OWOB": ("OW", "OB", "OB or OW")}
        self.assertIn(other.VR, expected.get(element.vr, (element.vr,)))
        value, its = element.value, plain(other.value)
        if is_big_endian and isinstance(value, bytes) and element.vr != "OB":
            # Words are in host order here, and as they are in the file there.
            unit = {"OW": 2, "OWOB": 2, "OF": 4, "OL": 4, "OD": 8, "OV": 8}.get(element.vr, 1)
            its = b"".join(its[at : at + unit][::-1] for at in range(0, len(its), unit))
        if element.vr == "PN" and isinstance(value, str):
            value, its = value.rstrip("^="), (its or "").rstrip("^=") or None
        if isinstance(value, list) and isinstance(value[0], str):
            # pydicom leaves the padding between values.
            its = [one.strip(" ") if isinstance(one, str) else one or "" for one in its]
            value = [one.strip(" ") if isinstance(one, str) else one for one in value]
        if isinstance(value, bytes) and isinstance(its, bytes) and element.vr not in ("OB", "OW"):
            value, its = value.rstrip(b"\0"), its.rstrip(b"\0")
        self.assertEqual(value or None if isinstance(value, (str, bytes)) else value, its)
        self.equal += 1

    def test_values_are_the_same(self):
        files = 0
        for path in samples():
            try:
                other = pydicom.dcmread(path)
            except pydicom.errors.InvalidDicomError:
                continue
            with self.subTest(path=path.name), pgkit.open(path) as data_set:
                syntax = data_set.get("TransferSyntaxUID")
                self.compare(data_set, other, syntax in ("1.2.840.10008.1.2.2",))
                files += 1
        self.assertGreater(files, 15)
        self.assertGreater(self.equal, 1000)


@unittest.skipUnless(pydicom, "pydicom is not installed")
class Pixels(unittest.TestCase):
    def test_arrays_are_the_same(self):
        compared = set()
        for path in samples():
            try:
                other = pydicom.dcmread(path)
                expected = other.pixel_array
            except Exception:  # no pixels, or none that it decodes without help
                continue
            syntax = other.file_meta.TransferSyntaxUID
            if syntax.is_compressed and syntax != pydicom.uid.RLELossless:
                continue
            if syntax == pydicom.uid.ExplicitVRBigEndian and other.BitsAllocated == 8:
                # Bytes in words of OW: swapped with them here, not so there.
                continue
            with self.subTest(path=path.name), pgkit.open(path) as data_set:
                array = data_set.pixel_array
                self.assertEqual(array.shape, expected.shape)
                self.assertEqual(array.dtype.kind, expected.dtype.kind)
                self.assertEqual(array.dtype.itemsize, expected.dtype.itemsize)
                self.assertTrue(numpy.array_equal(array, expected))
                compared.add(str(syntax))
        self.assertIn("1.2.840.10008.1.2.5", compared)
        self.assertGreaterEqual(len(compared), 3)

    def test_every_layout_has_its_shape(self):
        generator = random.Random(7)
        for bits in (1, 8, 16, 32):
            for samples_per_pixel, planar, frames in ((1, 0, 1), (1, 0, 3), (3, 0, 1), (3, 1, 2)):
                if bits == 1 and samples_per_pixel > 1:
                    continue
                other = self.image(generator, bits, samples_per_pixel, planar, frames)
                with pgkit.new() as data_set:
                    for element in other:
                        data_set[element.tag.group, element.tag.element] = element.value
                    self.assertTrue(numpy.array_equal(data_set.pixel_array, other.pixel_array),
                                    (bits, samples_per_pixel, planar, frames))
                    self.assertEqual(data_set.pixel_array.shape, other.pixel_array.shape)

    @staticmethod
    def image(generator, bits, samples_per_pixel, planar, frames):
        other = pydicom.Dataset()
        other.file_meta = pydicom.dataset.FileMetaDataset()
        other.file_meta.TransferSyntaxUID = pydicom.uid.ExplicitVRLittleEndian
        other.is_little_endian, other.is_implicit_VR = True, False
        other.SamplesPerPixel = samples_per_pixel
        other.PhotometricInterpretation = "RGB" if samples_per_pixel == 3 else "MONOCHROME2"
        if samples_per_pixel == 3:
            other.PlanarConfiguration = planar
        other.NumberOfFrames, other.Rows, other.Columns = frames, 4, 6
        other.BitsAllocated = other.BitsStored = bits
        other.PixelRepresentation = 1 if bits == 16 else 0
        size = frames * 24 * samples_per_pixel * bits // 8
        other.PixelData = bytes(generator.randrange(256) for _ in range(size + size % 2))
        return other

    def test_frames_are_those_of_the_file(self):
        from pydicom.encaps import generate_pixel_data_frame

        compared = 0
        for path in samples():
            if path.parent.name != "encapsulated":
                continue
            other = pydicom.dcmread(path)
            count = int(other.get("NumberOfFrames", 1) or 1)
            with self.subTest(path=path.name), pgkit.open(path) as data_set:
                if "PixelData" not in data_set or not data_set["PixelData"].is_encapsulated:
                    continue
                try:
                    frames = list(data_set.frames())
                except pgkit.PgkitError:
                    continue
                expected = list(generate_pixel_data_frame(other.PixelData, count))
                if len(expected) == count:
                    self.assertEqual(frames, expected)
                    compared += 1
        self.assertGreater(compared, 2)

    def test_what_cannot_be_an_array_says_why(self):
        with pgkit.new() as data_set:
            with self.assertRaises(pgkit.PgkitError):
                data_set.pixel_array
            data_set.PixelData = b"1234"
            with self.assertRaises(pgkit.PgkitError):
                data_set.pixel_array
            for key, value in (("Rows", 60000), ("Columns", 60000), ("BitsAllocated", 16)):
                data_set[key] = value
            with self.assertRaises(pgkit.PgkitError):  # more than there is
                data_set.pixel_array
            data_set.BitsAllocated = 12
            with self.assertRaises(pgkit.PgkitError):
                data_set.pixel_array
            with self.assertRaises(pgkit.PgkitError):
                list(data_set.frames())


@unittest.skipUnless(pydicom, "pydicom is not installed")
class Edits(TemporaryDirectory):
    """Random edits, with a data set of pydicom as the model."""

    def setUp(self):
        super().setUp()
        warnings.simplefilter("ignore")  # of pydicom, about texts like "^1"
        self.addCleanup(warnings.resetwarnings)

    TEXTS = ("PatientName", "PatientID", "StudyDescription", "ImageType", "StudyDate", "AccessionNumber")
    NUMBERS = ("Rows", "Columns", "BitsAllocated")

    def edit(self, generator, data_set, model, depth):
        kind = generator.randrange(7)
        key = generator.choice(self.TEXTS)
        if kind <= 1:
            value = "".join(generator.choice("ABC^ 12") for _ in range(generator.randrange(6))).strip()
            if key == "ImageType":
                value = [value + "X", "Y"]
            elif key == "StudyDate":
                value = "20240131"
            setattr(data_set, key, value)
            setattr(model, key, value)
        elif kind == 2:
            key, value = generator.choice(self.NUMBERS), generator.randrange(65536)
            data_set[key] = value
            setattr(model, key, value)
        elif kind == 3 and key in model:
            del data_set[key]
            delattr(model, key)
        elif depth < 3:
            self.edit_sequence(generator, data_set, model, depth)

    def edit_sequence(self, generator, data_set, model, depth):
        name = generator.choice(("ReferencedImageSequence", "RequestAttributesSequence"))
        if name not in model:
            setattr(model, name, pydicom.Sequence())
            data_set.insert_sequence(name)
        items, theirs = getattr(data_set, name), getattr(model, name)
        kind = generator.randrange(4)
        if kind == 0 or not len(theirs):
            index = generator.randrange(len(theirs) + 1)
            with pgkit.new() as item:
                items.insert(index, item)
            theirs.insert(index, pydicom.Dataset())
        elif kind == 1 and len(theirs) > 1:
            index = generator.randrange(len(theirs))
            del items[index]
            del theirs[index]
        else:
            index = generator.randrange(len(theirs))
            self.edit(generator, items[index], theirs[index], depth + 1)

    def same(self, item, model):
        tags = [tag for tag in item.keys() if tag[0] != 2]
        self.assertEqual(tags, [(tag.group, tag.element) for tag in sorted(model.keys())])
        for element in model:
            mine = item[element.tag.group, element.tag.element]
            if element.VR == "SQ":
                self.assertEqual(len(mine.items), len(element.value))
                for one, other in zip(mine.items, element.value):
                    self.same(one, other)
            else:
                self.assertEqual(mine.value or None, plain(element.value) or None, mine)

    def test_the_model_agrees_after_each_edit_and_after_saving(self):
        for seed in range(25):
            generator = random.Random(seed)
            data_set, model = pgkit.new(), pydicom.Dataset()
            for _ in range(60):
                self.edit(generator, data_set, model, 0)
                if generator.randrange(5) == 0:
                    with self.subTest(seed=seed):
                        self.same(data_set, model)
            encoding = generator.choice(("explicit", "implicit", "big endian"))
            path = self.directory / "saved.dcm"
            data_set.save(path, encoding=encoding, undefined_lengths=bool(seed % 2))
            with self.subTest(seed=seed, encoding=encoding), pgkit.open(path) as reread:
                self.same(data_set, model)
                self.same(reread, model)
                self.same(reread, pydicom.dcmread(path))
            duplicate = copy.deepcopy(data_set)
            data_set.close()
            self.same(duplicate, model)
            duplicate.close()


if __name__ == "__main__":
    unittest.main()
