"""The elements of a DICOM file as pydicom reads them, with their values as raw bytes."""

import io
import zlib

import pydicom
from pydicom import filereader
from pydicom.datadict import dictionary_VR

UNDEFINED = 0xFFFFFFFF
DEFLATED = "1.2.840.10008.1.2.1.99"


class Element:
    """One element. A sequence has items; only one of undefined length has no value."""

    def __init__(self, tag, vr, length, is_big_endian, is_implicit, value=None, items=None):
        self.group = tag >> 16
        self.element = tag & 0xFFFF
        self.vr = vr  # None when the stream does not carry it and no dictionary row has it
        self.length = length
        self.is_big_endian = is_big_endian
        self.is_implicit = is_implicit
        self.value = value
        self.items = items


class DataSet:
    def __init__(self, elements, is_bare, is_implicit, is_big_endian):
        self.elements = elements
        self.is_bare = is_bare  # no meta group
        self.is_implicit = is_implicit
        self.is_big_endian = is_big_endian


def implicit_vr(tag):
    """The value representation of an element whose header has none, or None."""
    group, element = tag >> 16, tag & 0xFFFF
    if element == 0:
        return "UL"
    if group % 2 == 1:
        return "LO" if 0x10 <= element <= 0xFF else None
    try:
        return dictionary_VR(tag)
    except KeyError:
        return None


def convert_items(items):
    return [convert(item) for item in items]


def convert_element(raw):
    tag = int(raw.tag)
    if isinstance(raw, pydicom.DataElement):  # a sequence of undefined length
        return Element(tag, "SQ", UNDEFINED, False, False, items=convert_items(raw.value))

    is_implicit = raw.VR is None
    vr = implicit_vr(tag) if is_implicit else raw.VR
    value = raw.value or b""
    if vr == "SQ":
        items = filereader.read_sequence(io.BytesIO(value), raw.is_implicit_VR,
                                         raw.is_little_endian, raw.length, "iso8859")
        return Element(tag, vr, raw.length, not raw.is_little_endian, is_implicit, value,
                       convert_items(items))
    return Element(tag, vr, raw.length, not raw.is_little_endian, is_implicit, value)


def convert(data_set):
    # values() gives what was read, in file order, without interpreting it.
    return [convert_element(raw) for raw in data_set.values()]


def syntax_of(meta):
    if 0x00020010 not in meta:
        return None
    return meta.get_item(0x00020010).value.decode().rstrip("\0 ")


def encoding_of(stream, meta):
    """(implicit VR, big endian) of the data set at the stream's position."""
    syntax = syntax_of(meta)
    if syntax is not None:
        # GE's private syntax is implicit VR little endian, apart from the pixels.
        return syntax in ("1.2.840.10008.1.2", "1.2.840.113619.5.2"), syntax == "1.2.840.10008.1.2.2"
    start = stream.read(6)
    stream.seek(-len(start), io.SEEK_CUR)
    return not start[4:6].isalpha(), start[0] == 0 and start[1] != 0


def read_head(stream):
    """Reads up to the data set: (meta group, implicit VR, big endian).

    Not with dcmread(), which follows the links of a media directory, also those of a cycle.
    """
    if filereader.read_preamble(stream, force=True) is None:
        stream.seek(0)
    meta = filereader.read_dataset(stream, is_implicit_VR=False, is_little_endian=True,
                                   stop_when=lambda tag, vr, length: tag.group != 2)
    return (meta, *encoding_of(stream, meta))


def read_raw(path):
    with open(path, "rb") as stream:
        meta, is_implicit, is_big_endian = read_head(stream)
        if syntax_of(meta) == DEFLATED:
            stream = io.BytesIO(zlib.decompress(stream.read(), -zlib.MAX_WBITS))
        elements = convert(meta)
        elements += convert(filereader.read_dataset(stream, is_implicit, not is_big_endian))
        return DataSet(elements, len(meta) == 0, is_implicit, is_big_endian)
