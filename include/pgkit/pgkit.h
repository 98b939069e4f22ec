// pgkit: read, edit, write and browse DICOM data sets and media.
//
// This header includes the whole public interface. C callers (C99 or later) get the flat functions,
// with handles as opaque pointers; C++ callers (C++17 or later) get the classes too.
//
// Conventions, valid for every operation unless its own documentation says otherwise:
//
//  1. Results. An operation that can fail and has nothing else to return gives a signed 32-bit 1
//     for success and 0 for failure. An operation that yields an object gives a pointer, null on
//     failure. Writing operations give 0 for success and a positive code for each kind of failure.
//  2. Ownership. Objects handed out (trees, lists, directory objects) are the caller's to release,
//     only through the library: pgFreeNode, pgFreeNodeHierarchy, pgCloseDataSet and the like.
//     Values and texts passed in are copied; buffers passed in stay the caller's.
//  3. Tags are a 16-bit group and a 16-bit element number, or an element identifier: the index of
//     a row of the built-in dictionary (0 to 3781).
//  4. Texts are narrow and zero-terminated. Paths are those of the system, on Windows also UTF-8
//     (paths.h); a backslash and a slash separate components on every platform. On POSIX systems a
//     file that is to be opened and does not exist as written is looked up again without regard to
//     case. Files are created under the very name that is given.
//  5. Diagnostics are single lines. Misuse is reported on the standard output, bad argument values
//     and files that cannot be opened on the standard error stream. There is no log file. Remarks
//     can be switched off (diagnostics.h).
//  6. Threads. The library starts none and takes no locks. A tree, and the file under it, belongs
//     to one thread at a time. The private dictionary must not change while another thread uses
//     the library. The UN-sequence switch may: whoever opens a file goes by it as it was then.
//  7. No exception leaves a flat function, whatever its cause, that of a callback of the host
//     included: the function gives what its other failures give. Exhausted memory so gives 0, null
//     or false where nothing else is documented. Out of the members of the classes std::bad_alloc
//     may come where no result is documented for it. Either way nothing is lost: trees and lists
//     are as they were, or as the operation says, and can be used and freed.
//  8. Null outputs are allowed: what they would have received is not told.
//  9. Streams are the C runtime's FILE*. Host and module must share one C runtime (on Windows, the
//     universal one, ucrtbase.dll).
#ifndef PGKIT_PGKIT_H
#define PGKIT_PGKIT_H

#include "pgkit/acceptance.h"
#include "pgkit/accessors.h"
#include "pgkit/bulk_values.h"
#include "pgkit/dataset.h"
#include "pgkit/diagnostics.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/dicomdir_update.h"
#include "pgkit/dictionary.h"
#include "pgkit/directory.h"
#include "pgkit/directory_records.h"
#include "pgkit/edition.h"
#include "pgkit/export.h"
#include "pgkit/frames.h"
#include "pgkit/json.h"
#include "pgkit/list.h"
#include "pgkit/long_values.h"
#include "pgkit/lookup.h"
#include "pgkit/node.h"
#include "pgkit/open_report.h"
#include "pgkit/paths.h"
#include "pgkit/patient_list.h"
#include "pgkit/profiles.h"
#include "pgkit/rle.h"
#include "pgkit/sopclass.h"
#include "pgkit/standard_records.h"
#include "pgkit/streams.h"
#include "pgkit/text.h"
#include "pgkit/uid.h"
#include "pgkit/value_representation.h"
#include "pgkit/version.h"

#endif
