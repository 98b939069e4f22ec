"""DICOM data sets and media through the pgkit library.

    with pgkit.open("image.dcm") as data_set:
        print(data_set["PatientsName"].value)

``open`` and ``new`` give a ``DataSet``; ``browse`` reads a DICOMDIR, ``create`` makes one. The
library prints diagnostics of its own on the standard streams: that is its habit, not this module's.
"""

from ._data_set import DataSet, Element, Item, new, open  # noqa: A004
from ._dictionary import element_name, find_tag, is_valid_uid, uid_name, value_representation
from ._errors import ClosedError, CreateError, PgkitError, SaveError, UnknownProfileError
from ._library import library_path, library_version
from ._media import (AcceptanceCode, Leaf, LeafType, Patient, ScannedFile, Series, Study, browse,
                     create)

__all__ = [
    "AcceptanceCode", "ClosedError", "CreateError", "DataSet", "Element", "Item", "Leaf",
    "LeafType", "Patient", "PgkitError", "SaveError", "ScannedFile", "Series", "Study",
    "UnknownProfileError", "browse", "create", "element_name", "find_tag", "is_valid_uid",
    "library_path", "library_version", "new", "open", "uid_name", "value_representation",
]
