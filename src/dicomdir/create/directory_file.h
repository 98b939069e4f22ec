// The file DICOMDIR of a directory, which is there as a whole or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "pgkit/node.h"
#include "platform/file_replacement.h"

namespace pgkit {

inline constexpr const char* kDicomdirName = "DICOMDIR";

// Whether a name in the directory of a DICOMDIR is one of the files that grow beside it.
bool IsReplacementOfDicomdir(std::string_view name);

class DirectoryFile {
  public:
    // Of a medium: the path of its directory.
    explicit DirectoryFile(const std::string& directory);

    // Removes what earlier creations left behind that came to an end in the middle. Where there is
    // no DICOMDIR it does nothing, and is to be called again when there is one: on Windows a
    // replacement of an open file may have stopped while both files had such names.
    void RemoveStrays();

    // False, with a message, when the directory cannot get a DICOMDIR. Throws std::bad_alloc.
    [[nodiscard]] bool Create();
    // Writes the tree and puts the file in place: the results of saving.
    [[nodiscard]] uint32_t Save(PGX_Node& root);

  private:
    std::string path_;
    bool hasNoStrays_ = false;
    platform::FileReplacement replacement_;  // unless the file has to be written where it is
};

}  // namespace pgkit
