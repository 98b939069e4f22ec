"""The dump format, written down a second time, and the legitimate differences between readers."""

import re
import struct

KNOWN_VRS = ("UL UI US AE AT LO OB SH CS SQ DA TM DT ST PN IS DS LT FL AS SL FD SS OW UT OF "
             "UN").split()
UNDEFINED = 0xFFFFFFFF

# Rule "younger elements": added to the standard after the edition of the library's dictionary. In
# implicit VR it cannot know them; those of defined length are texts to it, sequences included.
YOUNGER_ELEMENTS = {
    0x0062_0007, 0x0062_0013, 0x0062_0020, 0x0062_0021,
    0x0072_005E, 0x0072_005F, 0x0072_0061, 0x0072_0063, 0x0072_0065, 0x0072_0067, 0x0072_0069,
    0x0072_006B, 0x0072_006D, 0x0072_006F, 0x0072_0071, 0x0072_0073, 0x0072_0075, 0x0072_007F,
    0x0072_0081, 0x0072_0082, 0x0072_0083,
}

# Rule "dictionary rows of their own": elements that the standard dropped long ago, for which the
# dictionaries give different value representations.
OWN_ROWS = {
    0x0008_0010: "LO",
}

# struct code of the number, its format among several values, its format alone
NUMBERS = {
    "UL": ("i", "%d", "%d"),
    "US": ("H", "%d", "%d"),
    "SS": ("h", "%d", "%d"),
    "SL": ("i", "%d", "%d"),
    "AT": ("H", "0x%04X", "0x%04X"),
    "FL": ("f", "%f", "%10.3f"),
    "FD": ("d", "%f", "%10.3f"),
}
BINARY = ("OB", "OW", "OF", "OWOB")
MOST_VALUES = 20

HEAD = re.compile(rb"\(([0-9A-F]{4}),([0-9A-F]{4})\) : (.{4}) Len: (-?\d+) *", re.DOTALL)


def c_string(data):
    return data.split(b"\0")[0]


def numbers_text(vr, value, is_big_endian):
    code, among_several, alone = NUMBERS[vr]
    size = struct.calcsize(code)
    count = len(value) // size
    if count == 0:
        return b""
    numbers = struct.unpack_from((">" if is_big_endian else "<") + str(min(count, MOST_VALUES))
                                 + code, value)
    if count == 1:
        return (alone % numbers).encode()
    text = "".join(among_several % number + " " for number in numbers)
    if count > MOST_VALUES and vr not in ("FL", "FD"):
        text += "..."
    return text.encode()


def value_text(element, vr):
    """What stands between the brackets of an element that is no sequence."""
    if vr in NUMBERS:
        return numbers_text(vr, element.value, element.is_big_endian)
    if vr in BINARY:
        is_encapsulated = ((element.group, element.element) == (0x7FE0, 0x0010)
                           and element.length == UNDEFINED)
        return b"Encoded OW/OB/OF Binary data" if is_encapsulated else b"OW/OB/OF Binary data"
    value = element.value
    if vr == "USSS" and element.is_big_endian:
        value = b"".join(value[i:i + 2][::-1] for i in range(0, len(value), 2))
    text = c_string(value)
    return text.strip(b" ") if vr == "UI" else text


def vr_may_be(element, printed):
    """Whether a printed value representation is right for an element."""
    # A group length is UL whatever the stream says; a private creator in explicit VR keeps its own.
    if element.element == 0:
        return printed == "UL"

    # Rule "newer value representations": OD, OL, OV, SV, UC, UR and UV are younger than the library;
    # like any other text that names none of its own they are unknown.
    if not element.is_implicit:
        return printed == (element.vr if element.vr in KNOWN_VRS else "????")

    tag = element.group << 16 | element.element
    if tag in YOUNGER_ELEMENTS:
        return printed == "????"
    if tag in OWN_ROWS:
        return printed == OWN_ROWS[tag]

    # Rule "ambiguous rows": where the standard gives a choice the dictionary has a row of its own.
    if element.vr == "US or SS":
        return printed == "USSS"
    if element.vr == "OB or OW":
        return printed == "OWOB"

    # Rule "unknown private elements": there is no private dictionary in this test.
    if element.vr is None:
        return printed == "????"
    return printed == element.vr


class DumpReader:
    """Reads a dump from its start to its end beside the elements it should show."""

    def __init__(self, text):
        self.text = text
        self.position = 0

    def difference(self, data_set):
        """Returns the first difference as a text, or None."""
        try:
            self.expect_data_set(data_set.elements, b"")
            if self.position != len(self.text):
                raise Difference("more text than elements")
        except Difference as difference:
            line = self.text.count(b"\n", 0, self.position) + 1
            end = self.text.find(b"\n", self.position)
            return f"line {line}: {difference}; at {self.text[self.position:end]!r}"
        return None

    def expect(self, text):
        if not self.text.startswith(text, self.position):
            raise Difference(f"expected {text!r}")
        self.position += len(text)

    def expect_data_set(self, elements, prefix):
        self.expect(prefix + b"DATASET\n")
        for element in elements:
            self.expect_element(element, prefix + b" | ")
        self.expect(prefix + b"END-OF-DATASET\n")

    def expect_element(self, element, prefix):
        self.expect(prefix)
        head = HEAD.match(self.text, self.position)
        if not head:
            raise Difference(f"expected ({element.group:04X},{element.element:04X})")
        tag = (int(head[1], 16), int(head[2], 16))
        if tag != (element.group, element.element):
            raise Difference(f"expected ({element.group:04X},{element.element:04X})")
        vr = head[3].decode().strip()
        if not vr_may_be(element, vr):
            raise Difference(f"expected VR {element.vr}")
        length = -1 if element.length == UNDEFINED else element.length
        if int(head[4]) != length:
            raise Difference(f"expected length {length}")

        value_start = self.text.find(b" Value: [", head.end())
        if value_start < 0 or b"\n" in self.text[head.end():value_start]:
            raise Difference("no value")
        self.position = value_start + len(b" Value: [")
        if vr != "SQ":
            self.expect(value_text(element, vr) + b"]\n")
            return
        self.expect(b"SEQUENCE]\n")
        for item in element.items or []:
            self.expect_data_set(item, prefix + b" | ")


class Difference(Exception):
    pass
