// What a command tells of the files that it puts on a medium.
#pragma once

#include <cstdint>
#include <string>

#include "acceptance.h"
#include "command.h"
#include "progress_line.h"

namespace pgtool {

class FileTally {
  public:
    // A file by its path below the medium, with slashes or backslashes.
    void Count(const std::string& path, uint32_t code);

    uint32_t Accepted() const { return accepted_; }
    // Without the DICOMDIR and the acceptance list file of the medium itself.
    uint32_t Refused() const { return refused_; }

    // The summary on the standard output, and a warning about accepted files with names that are no
    // File IDs.
    void Print(const Command& command) const;

  private:
    AcceptanceSummary summary_;
    ProgressLine progress_;
    uint32_t accepted_ = 0;
    uint32_t refused_ = 0;
    uint32_t oddNames_ = 0;
    std::string firstOddName_;
};

}  // namespace pgtool
