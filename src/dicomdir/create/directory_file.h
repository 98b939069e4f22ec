// The directory file of a medium, which is there as a whole or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "pgkit/node.h"
#include "platform/file_replacement.h"

namespace pgkit {

inline constexpr const char* kDicomdirName = "DICOMDIR";

// A folder as callers name it: one separator at the end does not count.
std::string WithoutTrailingSeparator(std::string_view folder);

// Whether a name in the folder of a directory file is one of the files that grow beside it.
bool IsReplacementOfDicomdir(std::string_view name);

class DirectoryFile {
  public:
    explicit DirectoryFile(const std::string& folder);

    // Removes what earlier creations left behind that came to an end in the middle. Where there is
    // no directory file it does nothing, and is to be called again when there is one: on Windows a
    // replacement of an open file may have stopped while both files had such names.
    void RemoveStrays();

    // False, with a message, when the folder cannot get a directory file. Throws std::bad_alloc.
    [[nodiscard]] bool Create();
    // Writes the tree and puts the file in place: the results of saving.
    [[nodiscard]] uint32_t Save(PGX_Node& root);

  private:
    std::string path_;
    bool hasNoStrays_ = false;
    platform::FileReplacement replacement_;  // unless the file has to be written where it is
};

}  // namespace pgkit
