// pgkit: changing a DICOMDIR that is there: files are added, studies are removed.
//
// Every record that stays keeps all its elements, private ones and those of foreign makers too,
// also records of types that this library does not make. A new file gets records as a creation
// makes them (dicomdir_creation.h), behind those of its patient, study and series where these are
// listed. The DICOMDIR is replaced as a whole; until the update ends with 0 the former one is
// there, and when it ends with anything else it stays.
//
//   int32_t problem;
//   void* update = pgxStartDicomdirUpdate("C:\\MEDIA", NULL, NULL, &problem);
//   pgxUpdateAddFile(update, "ST2\\IM1", "C:\\MEDIA\\ST2\\IM1");
//   pgxUpdateRemoveStudy(update, "1.2.3.4");
//   uint32_t result = pgxEndDicomdirUpdate(update);
//
// Threads: one update, one thread at a time; several updates share nothing, unless they are of the
// same directory: then the last one to end counts. Reading a damaged DICOMDIR prints what is wrong
// on the standard output, as a browse does.
#ifndef PGKIT_DICOMDIR_UPDATE_H
#define PGKIT_DICOMDIR_UPDATE_H

#include <stdint.h>

#include "pgkit/dicomdir_creation.h"
#include "pgkit/export.h"

// Why there is no update.
typedef enum PgxUpdateProblem {
    PGX_UPDATE_STARTED = 0,
    PGX_UPDATE_NO_DICOMDIR = 1,    /* there is no such file, or it cannot be read */
    PGX_UPDATE_NOT_A_DICOMDIR = 2, /* the file DICOMDIR is no directory of a medium */
    PGX_UPDATE_DAMAGED = 3,        /* it is cut short, or a link between its records leads nowhere:
                                      what is behind would be lost */
    PGX_UPDATE_NO_MEMORY = 4
} PgxUpdateProblem;

PGKIT_BEGIN_C

// Reads the DICOMDIR of a directory, which is left alone until the end. Null when that is not
// possible; problem, which may be null, says why. The profile and the options are those of a
// creation and hold for the files that are added; the options are copied. Of the flags
// PG_DICOMDIR_NEVER_EMPTY and PG_DICOMDIR_ALL_OR_NOTHING hold for the end. A File-set ID of the
// options is not taken: that of the DICOMDIR stays.
//
// The caller ends or cancels the update, which is the only way to free it.
PGKIT_API void* pgxStartDicomdirUpdate(const char* directory, const char* profile,
                                       const PgDicomdirOptions* options, int32_t* problem);

// Adds the file fullPath, which may lie anywhere; referencedName is what the DICOMDIR calls it: its
// path below the directory, components separated by backslashes. Returns a PgAcceptanceCode, 1 also
// when a name is null, 3 also when memory runs out, 6 also for a file that is listed already: a
// record has this name, case ignored. 0xFFFFFFFF for a null update.
PGKIT_API uint32_t pgxUpdateAddFile(void* update, const char* referencedName, const char* fullPath);

// Removes every study of this UID, with all that is below it, and patients that have no study left.
// The files stay where they are. Returns 1, or 0 when no study of the DICOMDIR or of the added
// files has the UID, also for a null update, an empty UID and when memory runs out. Blanks around
// the UID do not count.
PGKIT_API int32_t pgxUpdateRemoveStudy(void* update, const char* studyInstanceUid);

// Writes the DICOMDIR and frees the update, whatever the result: that of pgCreateDicomdirEx,
// PG_CREATION_NOTHING_ACCEPTED when it would list nothing and must not,
// PG_CREATION_FILES_REFUSED when a file was refused and none must be, 0xFFFFFFFF for a null update.
// When it is written, the acceptance list file gets a line for each file that was refused, and then
// for each that was accepted, unless the options want none.
PGKIT_API uint32_t pgxEndDicomdirUpdate(void* update);

// Frees the update. Nothing has changed. Null is allowed.
PGKIT_API void pgxCancelDicomdirUpdate(void* update);

PGKIT_END_C

#endif
