// The gate that every file passes before it joins a hierarchy: a readable data set with the
// identifiers of the hierarchy, no DICOMDIR itself, and allowed by the profile.
#pragma once

#include <cstdint>

#include "dataset/node_ptr.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/node.h"

namespace pgkit {

struct FileToAdd {
    const char* referencedName;  // its path relative to the folder of the directory file
    const char* fullPath;
};

// A file that has passed, with what was read of it on the way.
struct Candidate {
    OpenedDataSet dataSet;
    char sopClassUid[65] = {};
    char instanceUid[65] = {};
    char studyInstanceUid[65] = {};
    char seriesInstanceUid[65] = {};
    char transferSyntaxUid[65] = {};
};

// The file is opened once and read through once. A file that is refused does not stay open.
PgAcceptanceCode PassFileGate(const FileToAdd& file, const char* profile, bool skipChecks,
                              Candidate& candidate);

}  // namespace pgkit
