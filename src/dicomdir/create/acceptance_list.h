// The acceptance list file of a medium, dcmdir.lst: a line for every file that was judged. A file
// that cannot be written is skipped silently.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "pgkit/list.h"
#include "platform/file_replacement.h"

namespace pgkit {

class AcceptanceList {
  public:
    explicit AcceptanceList(std::string directory) : directory_(std::move(directory)) {}
    // A list that was started, and not kept, gives way to the one that was there before.
    ~AcceptanceList();
    AcceptanceList(const AcceptanceList&) = delete;
    AcceptanceList& operator=(const AcceptanceList&) = delete;

    // Puts a new file in place, which has a header that explains the codes. The former one is
    // copied beside it first: when a full disc makes the creation fail, nothing more can be
    // written.
    void Start();
    // Appends a line, which is in the file at once; nothing for the code that stands for no file at
    // all. The file is open only meanwhile: the host may take it away, or make its directory,
    // between two files, which Windows forbids for an open file. A line that the disc has no room
    // for is left out as a whole.
    void Append(uint32_t code, std::string_view fullPath);
    // Puts a file in place that has a line with code 0 for every leaf behind all others: its
    // referenced file ID.
    void AppendAccepted(PGX_List& patients);
    // The list stands, whatever happens from now on.
    void Keep();

  private:
    std::string Path() const { return directory_ + "\\dcmdir.lst"; }
    std::string_view RelativePath(std::string_view fullPath) const;
    void StartInPlace();
    [[nodiscard]] bool KeepFormer();

    std::string directory_;
    platform::FileReplacement former_;  // a copy of the list that was there
    bool isSkipped_ = false;
};

}  // namespace pgkit
