// pgkit: what the library prints by itself.
#ifndef PGKIT_DIAGNOSTICS_H
#define PGKIT_DIAGNOSTICS_H

#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// Switches remarks of the library off (0) or on (any other value) for the whole process, and
// returns the former value: 1 when the library is loaded. Remarks are three lines on the standard
// output, all of the reader of DICOMDIR files: "Patient created %s" for every patient that a browse
// finds, "** PGX_DicomDir::OpenDicomDir file open failed... <%s>" and "** PGX_DicomDir::Patient
// list is empty (no DICOMDIR file)". With 0 nothing about patients is printed unless a dump is
// asked for. Misuse, and what is wrong with a file, is always reported.
//
// May be called by any thread at any time; the value is a single atomic one.
PGKIT_API int32_t pgxSetVerbosity(int32_t level);

PGKIT_END_C

#endif
