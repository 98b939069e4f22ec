// The disc under the files.
#pragma once

#include <cstdio>
#include <string>

namespace pgtool {

// Waits until what was written to a file is on the disc.
[[nodiscard]] bool FlushToDisk(const std::string& path);

// Whether the user may write to what is there.
[[nodiscard]] bool IsWritable(const std::string& path);

enum class Readers { Everybody, UserAlone };  // before the user's own mask, where there is one

struct NewFile {
    std::FILE* stream;  // null when it was not created
    bool isNameTaken;   // the reason: there is something already, be it a link that leads nowhere
};
NewFile CreateNewFile(const std::string& path, Readers readers);

}  // namespace pgtool
