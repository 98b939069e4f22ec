"""DICOM data sets and media through the pgkit library.

    with pgkit.open("image.dcm") as data_set:
        print(data_set.PatientName)

``open`` and ``new`` give a ``DataSet``; ``browse`` reads a DICOMDIR, ``create`` makes one, ``scan``
reads a few values of many files. Importing this package makes the library know today's edition of
the standard, in the whole process.
"""

from . import _interpreter  # noqa: F401, I001  first of all
from ._data_set import DataSet, Element, Item, new
from ._dictionary import (element_name, find_tag, generate_uid, is_valid_uid, keyword,
                          multiplicity, uid_keyword, uid_name, value_representation)
from ._element import MultiValue
from ._errors import (ClosedError, CreateError, PgkitError, SaveError, TruncatedWarning,
                      UnknownProfileError)
from ._json import JsonError
from ._library import library_path, library_version
from ._media import (AcceptanceCode, Leaf, LeafType, Patient, ScannedFile, Series, Study, browse,
                     create)
from ._names import PersonName
from ._opening import from_json, is_dicom, open  # noqa: A004
from ._reports import Certainty, OpenReport, OpenResult
from ._scan import Row, Scan, read_values, scan
from ._sequence import Sequence

__version__ = "2.86.5"

__all__ = [
    "AcceptanceCode", "Certainty", "ClosedError", "CreateError", "DataSet", "Element", "Item", "JsonError", "Leaf",
    "LeafType", "MultiValue", "OpenReport", "OpenResult", "Patient", "PersonName", "PgkitError", "Row", "SaveError", "Scan", "ScannedFile",
    "Sequence", "Series", "Study", "TruncatedWarning", "UnknownProfileError", "__version__", "browse", "create",
    "element_name", "find_tag", "from_json", "generate_uid", "is_dicom", "is_valid_uid", "keyword",
    "library_path", "library_version", "multiplicity", "new", "open", "read_values", "scan", "uid_keyword", "uid_name",
    "value_representation",
]
