// The acceptance list file of a medium, dcmdir.lst: a line for every file that was judged. A file
// that cannot be written is skipped silently.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pgkit {

class AcceptanceList {
  public:
    explicit AcceptanceList(std::string directory) : directory_(std::move(directory)) {}

    // Creates the file with its header, which explains the codes.
    void Start();
    // Appends a line; nothing for the code that stands for no file at all. The file is open only
    // meanwhile: the host may take it away, or make its directory, between two files.
    void Append(uint32_t code, std::string_view fullPath);

  private:
    std::string Path() const { return directory_ + "\\dcmdir.lst"; }
    std::string_view RelativePath(std::string_view fullPath) const;

    std::string directory_;
};

}  // namespace pgkit
