// A directory with one file, for the operations on media; gone with everything in it at the end.
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "support/temp_dir.h"

namespace pgkit_fuzz {

class Medium {
  public:
    // With backslashes, as the library takes it.
    std::string Directory() const { return WithBackslashes(files_.Path("")); }

    // Writes a file and returns its path, likewise.
    std::string Write(const char* name, std::span<const uint8_t> content) const {
        return WithBackslashes(files_.Write(
            name, std::string_view(reinterpret_cast<const char*>(content.data()), content.size())));
    }

  private:
    static std::string WithBackslashes(std::string path) {
        std::replace(path.begin(), path.end(), '/', '\\');
        return path;
    }

    pgkit_test::TempDir files_;
};

}  // namespace pgkit_fuzz
