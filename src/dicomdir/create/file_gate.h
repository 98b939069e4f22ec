// The gate that every file passes before it joins a hierarchy: a readable data set with the
// identifiers of the hierarchy, no DICOMDIR itself, and allowed by the profile.
#pragma once

#include <cstdint>
#include <string_view>

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

// What the gate asks for.
struct GateRules {
    const char* profile = "";  // empty: none
    bool skipChecks = false;
    bool wantsStrictNames = false;
    // Whether files that belong to no patient may pass, as records of today's standard.
    bool admitsRootObjects = false;
};

// The file is opened once and read through once. A file that is refused does not stay open.
PgAcceptanceCode PassFileGate(const FileToAdd& file, const GateRules& rules, Candidate& candidate);

// Whether a name is that of one of the files that creations write themselves.
bool IsOwnFile(std::string_view name);

}  // namespace pgkit
