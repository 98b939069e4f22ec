// What each record of a DICOMDIR says by itself, and records that say the same.
#pragma once

#include "verify/directory.h"

namespace pgtool {

// Types, their places, keys of type 1, Referenced File IDs, and records of the same patient, study,
// series or instance. Only records in use are looked at; links must have been followed.
void CheckRecords(const Directory& directory, Findings& findings);

// The Study Instance UID of a STUDY record, which may stand in two places.
pgkit::element StudyUidOf(const DirectoryRecord& study);

}  // namespace pgtool
