#include "data_set.h"

#include <array>

#include "output_file.h"

namespace pgtool {

std::string CannotOpen(const std::string& path) {
    return "cannot open " + path + ", or it is not a DICOM data set";
}

uint32_t SaveWhole(DataSet root, const std::string& path, uint32_t mode) {
    constexpr uint32_t kCannotCreate = 1;
    OutputFile output(path);
    if (output.Path().empty()) return kCannotCreate;
    const uint32_t result =
        root->SaveDataSetAsEx(output.Path().c_str(), static_cast<int32_t>(mode));
    root.reset();
    if (result != 0) return result;
    return output.PutInPlace() ? 0 : kCannotCreate;
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
