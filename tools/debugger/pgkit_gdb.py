"""Shows pgkit's nodes and lists readably in gdb, from a running program or from a core file.

    (gdb) source pgkit_gdb.py
    (gdb) print *node
    $1 = (0010,0010) PN [8] "DOE^JANE"
    (gdb) print *dataSet
    $2 = data set, 3 children = {(0008,0060) CS [2] "CT", ...}

Nothing is called in the program, and nothing but the memory of nodes and loaded values is read:
values that are still in a file are shown as such.
"""

import gdb

MOST_CHILDREN = 200  # of a chain that is damaged, or just long
MOST_CHARACTERS = 64

VR_NAMES = ("UL UI US AE AT LO OB SH CS SQ DA TM DT ST PN IS DS LT FL AS SL FD SS USSS OW UT OF "
            "OWOB UN").split()
TEXTS = frozenset("UI AE LO SH CS DA TM DT ST PN IS DS LT AS UT".split())
NUMBERS = {"US": (2, False), "SS": (2, True), "UL": (4, False), "SL": (4, True),
           "USSS": (2, False)}
UNDEFINED_LENGTH = 0xFFFFFFFF


def vr_name(code):
    return VR_NAMES[code] if code < len(VR_NAMES) else "??"


def chain(node):
    """The siblings from a pointer on; a marker of None when there are more than are shown."""
    count = 0
    while int(node) != 0:
        if count == MOST_CHILDREN:
            yield None
            return
        yield node
        node = node["next"]
        count += 1


def memory(address, size):
    return bytes(gdb.selected_inferior().read_memory(int(address), size))


class NodePrinter:
    """A PGX_Node: what it is in one line, its children below."""

    def __init__(self, node):
        self.node = node

    def to_string(self):
        try:
            return self.describe()
        except gdb.MemoryError:
            return "<damaged node>"

    def describe(self):
        if int(self.node["nodeType"]) == 0:
            return f"data set, {self.count('children')}"
        tag = f"({int(self.node['group']):04X},{int(self.node['element']):04X})"
        vr = vr_name(int(self.node["valueRep"]))
        length = int(self.node["length"])
        size = "undefined" if length == UNDEFINED_LENGTH else length
        return f"{tag} {vr} [{size}] {self.content(vr, length)}"

    def content(self, vr, length):
        if int(self.node["encapsulated"]):
            return f"{int(self.node['fragmentCount'])} fragments"
        if vr == "SQ" or int(self.node["first"]):
            return self.count("items")
        address = int(self.node["value"])
        if not address:
            return self.elsewhere(length)
        if vr in TEXTS:
            shown = memory(address, min(length, MOST_CHARACTERS)).decode("latin-1")
            text = shown.rstrip("\0").encode("unicode_escape").decode("ascii")
            return f'"{text}"' + ("..." if length > MOST_CHARACTERS else "")
        if vr in NUMBERS:
            return self.numbers(address, length, *NUMBERS[vr])
        shown = memory(address, min(length, 16)).hex(" ")
        return shown + ("..." if length > 16 else "")

    def elsewhere(self, length):
        if int(self.node["contentFile"]):
            return f"in {self.node['contentFile'].string('latin-1')}"
        if int(self.node["file"]) and length:
            return f"in its file at {int(self.node['fileOffset'])}"
        return "no value"

    def numbers(self, address, length, size, signed):
        order = "little" if int(self.node["endian"]) == 0 else "big"
        data = memory(address, min(length, 8 * size))
        numbers = [str(int.from_bytes(data[i : i + size], order, signed=signed))
                   for i in range(0, len(data) - size + 1, size)]
        return "\\".join(numbers) + ("..." if length > 8 * size else "")

    def count(self, what):
        found = list(chain(self.node["first"]))
        if found and found[-1] is None:
            return f"more than {MOST_CHILDREN} {what}"
        return f"{len(found)} {what}"

    def children(self):
        try:
            for index, child in enumerate(chain(self.node["first"])):
                yield str(index), "..." if child is None else child.dereference()
        except gdb.MemoryError:
            yield "broken", "<damaged chain>"

    def display_hint(self):
        return "array"


class ListPrinter:
    """A PGX_List: the pointers in it."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"list of {int(self.value['count'])}"

    def children(self):
        for index, cell in enumerate(chain(self.value["head"])):
            yield str(index), "..." if cell is None else cell["data"]

    def display_hint(self):
        return "array"


def lookup(value):
    name = value.type.strip_typedefs().unqualified().name
    printers = {"PGX_Node": NodePrinter, "PGX_List": ListPrinter}
    return printers[name](value) if name in printers else None


lookup.name = "pgkit"
gdb.pretty_printers[:] = [each for each in gdb.pretty_printers
                          if getattr(each, "name", "") != "pgkit"] + [lookup]
