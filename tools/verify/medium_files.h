// The files of a medium, and which of them are DICOM files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

namespace pgtool {

struct MediumFiles {
    std::string root;            // the real path of the medium
    std::string directoryFile;   // of its DICOMDIR; empty without one
    std::set<std::string> used;  // files that records refer to, by their paths below root

    // The path of a file by its path below root.
    std::string PathOf(const std::string& file) const;
    // The path below root of what has a real path there.
    std::string InnerPathOf(const std::string& realPath) const;
};

// What values of a file are loaded when it is opened: those that are compared are shorter.
inline constexpr uint32_t kLoadedOfFile = 256;

// Only regular files may be asked about: others might make us wait.
bool CanBeRead(const std::string& path);
// Whether a file has "DICM" behind a preamble.
bool IsDicomFile(const std::string& path);
// At most size bytes.
std::string BeginningOf(const std::string& path, size_t size);

}  // namespace pgtool
