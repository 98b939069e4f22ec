// The gate that every file passes before it becomes a record: a readable data set with the
// identifiers of the hierarchy, no DICOMDIR itself, and allowed by the profile.
#pragma once

#include <cstdint>
#include <memory>

#include "pgkit/dataset.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/node.h"

namespace pgkit {

struct CloseOpened {
    void operator()(PGX_Node* root) const { pgCloseDataSet(root); }
};
using OpenedDataSet = std::unique_ptr<PGX_Node, CloseOpened>;

struct FileToAdd {
    const char* referencedName;  // its path relative to the directory of the DICOMDIR
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

// The file is opened once and read through once. Of a file that is refused nothing stays open.
PgAcceptanceCode PassFileGate(const FileToAdd& file, const char* profile, bool skipChecks,
                              Candidate& candidate);

}  // namespace pgkit
