#include "acceptance.h"

#include <cstdio>

namespace pgtool {

namespace {

// By code, in the words of the acceptance list file.
constexpr std::array<const char*, kAcceptanceCodes> kTexts = {
    "Dicom file accepted",
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

std::string DescribeAcceptance(uint32_t code) {
    const std::string number = std::to_string(code);
    return code < kTexts.size() ? number + " " + kTexts[code] : number;
}

void AcceptanceSummary::Count(uint32_t code) {
    if (code < counts_.size()) ++counts_[code];
    ++files_;
}

void AcceptanceSummary::Print() const {
    for (uint32_t code = 0; code < counts_.size(); ++code) {
        if (counts_[code] == 0) continue;
        std::printf("%s: %u\n", DescribeAcceptance(code).c_str(), counts_[code]);
    }
}

}  // namespace pgtool
