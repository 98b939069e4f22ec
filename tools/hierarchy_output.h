// A browsed hierarchy on the standard output, as a tree for people, as JSON or as a
// list of files for programs.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "medium.h"
#include "pgkit/data_set.hpp"
#include "pgkit/pgkit.h"
#include "text_options.h"

namespace pgtool {

// What became of the file that a leaf refers to.
enum class LeafFile { Present, Missing, Outside, None };

struct HierarchyCounts {
    size_t patients = 0;
    size_t studies = 0;
    size_t series = 0;
    size_t instances = 0;
    size_t missingFiles = 0;  // leaves whose file is not on the medium
    size_t outsideFiles = 0;  // leaves whose file ID leads outside of it

    void Count(LeafFile file) {
        if (file == LeafFile::Missing) ++missingFiles;
        if (file == LeafFile::Outside) ++outsideFiles;
    }
};

struct FileOfLeaf {
    LeafFile state;
    std::string path;  // one that opens; empty unless present
};

// The hierarchy must have its records still.
FileOfLeaf FileOf(const PGX_DicomDirLeafNode& leaf, Medium& medium);

// "image", "report", ...
const char* NameOfType(const PGX_DicomDirLeafNode& leaf);

struct Hierarchy {
    PGX_List& patients;
    const std::vector<pgkit::item>& common;  // records that belong to no patient
};

// What the record of an instance that belongs to no patient says of it. The name is in UTF-8; all
// others are the bytes of the record, without padding.
struct CommonInstance {
    std::string type;
    std::string name;  // of a palette or a hanging protocol
    std::string fileId;
    std::string instanceUid;
    std::string sopClassUid;
    std::string transferSyntaxUid;
    FileOfLeaf file;
};
CommonInstance ReadCommon(const pgkit::item& record, Medium& medium);

// With raw texts are the bytes of the records, as they stand.
void PrintTree(const Hierarchy& hierarchy, Medium& medium, bool raw);
void PrintJson(const Hierarchy& hierarchy, Medium& medium);
// The paths of the files that are there. Calls complain for each one that is not.
void PrintFiles(const Hierarchy& hierarchy, Medium& medium, const TextOptions& texts,
                const std::function<void(const std::string&)>& complain);

template <typename Object, typename Use>
void ForEach(PGX_List& list, Use use) {
    for (PGX_ListElement* cell = list.GetFirstPosition(); cell != nullptr; cell = cell->next)
        use(*static_cast<Object*>(cell->data));
}

}  // namespace pgtool
