#include "data_set.h"

#include <array>

namespace pgtool {

std::string CannotOpen(const std::string& path) {
    return "cannot open " + path + ", or it is not a DICOM data set";
}

std::string DescribeSaveResult(uint32_t result) {
    constexpr std::array<const char*, 8> kTexts = {"saved",
                                                   "the file cannot be created",
                                                   "a value has no source",
                                                   "writing failed",
                                                   "a value cannot be read from its source",
                                                   "out of memory",
                                                   "a value is too long for its VR",
                                                   "the file cannot be opened again"};
    return result < kTexts.size() ? kTexts[result] : "result " + std::to_string(result);
}

}  // namespace pgtool
