// The acceptance list file of a medium, dcmdir.lst: a line for every file that was judged. A file
// that cannot be written is skipped silently.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "pgkit/list.h"
#include "platform/file_handle.h"
#include "platform/file_replacement.h"

namespace pgkit {

inline constexpr std::string_view kAcceptanceListName = "dcmdir.lst";

class AcceptanceList {
  public:
    explicit AcceptanceList(std::string folder) : folder_(std::move(folder)) {}
    // A list that was started, and not kept, gives way to the one that was there before.
    ~AcceptanceList();
    AcceptanceList(const AcceptanceList&) = delete;
    AcceptanceList& operator=(const AcceptanceList&) = delete;

    // Puts a new file in place, which has a header that explains the codes. The former one is
    // copied beside it first: when a full disc makes the creation fail, nothing more can be
    // written.
    void Start();
    // Appends a line, which is in the file at once; none for the code that stands for no file at
    // all. A line that the disc has no room for is left out as a whole.
    void Append(uint32_t code, std::string_view fullPath);
    // Where the host acts between two lines, it may take the file away, or make its folder. Windows
    // forbids that for an open file: so it is open for one line at a time, unless somebody says
    // that the host does not act until the list is closed.
    void StayOpen() { staysOpen_ = true; }
    void Close();
    // Puts a file in place that has a line with code 0 for every leaf behind all others: its
    // referenced file ID. First those of the patients, then those that belong to none.
    void AppendAccepted(PGX_List& patients, PGX_List& rootLeaves);
    // The list stands, whatever happens from now on.
    void Keep();

  private:
    std::string Path() const { return folder_ + "\\" + std::string(kAcceptanceListName); }
    std::string_view RelativePath(std::string_view fullPath) const;
    void StartInPlace();
    [[nodiscard]] bool KeepFormer();

    std::string folder_;
    platform::FileReplacement former_;  // a copy of the list that was there
    platform::FileHandle lines_;        // while the file is open
    bool staysOpen_ = false;
    bool isSkipped_ = false;
};

}  // namespace pgkit
