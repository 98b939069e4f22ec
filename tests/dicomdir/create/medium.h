// A folder that becomes a medium: files are written to it, and its DICOMDIR is read back.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/tree.h"

namespace pgkit_test {

class Medium {
  public:
    Medium() { std::filesystem::create_directory(Directory()); }

    std::string Directory() const { return directory_.Path("MEDIUM"); }
    std::string Path(const std::string& name) const { return directory_.Path("MEDIUM/" + name); }

    // Names may have directories, which are made.
    std::string Write(const std::string& name, const InstanceFile& file) const {
        return Write(name, file.Data());
    }
    std::string Write(const std::string& name, const Bytes& content) const {
        const std::filesystem::path path = Path(name);
        std::filesystem::create_directories(path.parent_path());
        return directory_.Write("MEDIUM/" + name, content);
    }

    // The written DICOMDIR.
    DataSet Open() const { return DataSet(pgOpenDataSetFile(Path("DICOMDIR").c_str(), kLoadAll)); }

  private:
    TempDir directory_;
};

// The directory records, as they stand in the file.
inline std::vector<PGX_Node*> ItemsOf(PGX_Node* dicomdir) {
    std::vector<PGX_Node*> records;
    for (PGX_Node* item = Child(dicomdir, 0x0004, 0x1220)->first; item != nullptr;
         item = item->next)
        records.push_back(item);
    return records;
}

// The record of the image in a file; a test failure when there is none.
inline PGX_Node* ImageRecord(PGX_Node* dicomdir, const std::string& fileId) {
    for (PGX_Node* record : ItemsOf(dicomdir)) {
        PGX_Node* const id = record->FindNode(0x0004, 0x1500);
        std::string text = id == nullptr ? "" : TextOf(id);
        if (text.ends_with(' ')) text.pop_back();
        if (id != nullptr && text == fileId) return record;
    }
    ADD_FAILURE() << "no record for " << fileId;
    return nullptr;
}

// The item of a record's icon; null when it has none.
inline PGX_Node* IconOf(PGX_Node* record) {
    PGX_Node* const sequence = record == nullptr ? nullptr : record->FindNode(0x0088, 0x0200);
    return sequence == nullptr ? nullptr : sequence->first;
}

// "64x32" for an icon of 64 columns, "none" for none.
inline std::string IconSize(PGX_Node* record) {
    PGX_Node* const icon = IconOf(record);
    if (icon == nullptr) return "none";
    return std::to_string(Child(icon, 0x0028, 0x0011)->GetUSValue()) + "x" +
           std::to_string(Child(icon, 0x0028, 0x0010)->GetUSValue());
}

inline Bytes IconPixels(PGX_Node* record) {
    PGX_Node* const icon = IconOf(record);
    if (icon == nullptr) return {};
    const std::string text = TextOf(Child(icon, 0x7FE0, 0x0010));
    return Bytes(text.begin(), text.end());
}

}  // namespace pgkit_test
