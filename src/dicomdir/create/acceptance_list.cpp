#include "dicomdir/create/acceptance_list.h"

#include <cstdio>
#include <iterator>

#include "base/paths.h"
#include "platform/file_handle.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr uint32_t kNoAcceptanceCode = 0xFFFFFFFF;

// By acceptance code.
constexpr const char* kCodeTexts[] = {"Dicom file accepted",
                                      "Invalid filename for file",
                                      "File is not DICOM Part 10 compliant",
                                      "Cannot open file for reading as a dataset",
                                      "File is a DICOMDIR",
                                      "Profile restriction don't match file",
                                      "SOPInstanceUID already found and registered",
                                      "SOPInstanceUID attribute was not found",
                                      "SeriesInstanceUID attribute was not found",
                                      "StudyInstanceUID attribute was not found"};

}  // namespace

void AcceptanceList::Start() {
    const platform::FileHandle stream(platform::CreateText(Path().c_str()));
    if (stream == nullptr) return;
    std::fputs(";*** DICOMDIR CODES SUMMARY ***\n;******************************\n", stream.get());
    for (size_t code = 0; code < std::size(kCodeTexts); ++code) {
        std::fprintf(stream.get(), "; %d\t%s\n", static_cast<int>(code), kCodeTexts[code]);
    }
    std::fputc('\n', stream.get());
}

void AcceptanceList::Append(uint32_t code, std::string_view fullPath) {
    if (code == kNoAcceptanceCode) return;
    const platform::FileHandle stream(platform::AppendText(Path().c_str()));
    if (stream == nullptr) return;
    const std::string path(RelativePath(fullPath));
    std::fprintf(stream.get(), "%d\t%s\n", static_cast<int>(code), path.c_str());
}

std::string_view AcceptanceList::RelativePath(std::string_view fullPath) const {
    if (!fullPath.starts_with(directory_)) return fullPath;
    const std::string_view rest = fullPath.substr(directory_.size());
    return !rest.empty() && IsSeparator(rest.front()) ? rest.substr(1) : fullPath;
}

}  // namespace pgkit
