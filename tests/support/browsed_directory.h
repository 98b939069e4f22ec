// A composed DICOMDIR as a file, opened and browsed.
#pragma once

#include <pgkit/pgkit.h>

#include <string>

#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/temp_dir.h"

namespace pgkit_test {

// The hierarchy as keys: "4711(1.2(1.2.3(1.2.3.4 1.2.3.5))) 4712(...)", which are patient IDs,
// study UIDs, series UIDs and instance UIDs. "null" for no list.
std::string Outline(PGX_List* patients);

// A path with the letters of ASCII in upper case.
std::string Upper(std::string path);

class BrowsedDirectory {
  public:
    explicit BrowsedDirectory(const DirectoryBuilder& builder)
        : BrowsedDirectory(builder.Build()) {}
    explicit BrowsedDirectory(const Bytes& file, uint32_t maxLoadLength = 0x20000);

    PGX_DicomDir* operator->() { return &directory_; }
    PGX_DicomDir& operator*() { return directory_; }

    // The directory of the file, with backslashes.
    const std::string& Folder() const { return folder_; }
    // What the browse printed, without the lines about new patients.
    const std::string& Messages() const { return messages_; }
    // All that it printed.
    const std::string& Output() const { return output_; }
    std::string Outline() { return pgkit_test::Outline(directory_.GetPatientList()); }

    // The object at an index of its level; a test failure when there is none.
    PGX_DicomDirPatientNode& Patient(int32_t patient = 0);
    PGX_DicomDirStudyNode& Study(int32_t patient = 0, int32_t study = 0);
    PGX_DicomDirSeriesNode& Series(int32_t patient = 0, int32_t study = 0, int32_t series = 0);
    // The leaf at an index of the first series.
    PGX_DicomDirLeafNode& Leaf(int32_t leaf = 0);

    // The item of a record, in the order of the file; there has to be one.
    PGX_Node* Record(int index);

  private:
    TempDir files_;
    std::string folder_;
    PGX_DicomDir directory_;
    std::string output_;
    std::string messages_;
};

}  // namespace pgkit_test
