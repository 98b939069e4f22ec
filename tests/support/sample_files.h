// The DICOM files that are bundled with the tests: all of them, for what must hold for any file.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace pgkit_test {

// Their names as TestData takes them ("native/mr_implicit_le.dcm"), in order. Those of the folder
// "bad" are broken on purpose.
inline std::vector<std::string> SampleFiles() {
    std::vector<std::string> names;
    for (const std::string folder :
         {"bad", "charset", "dicomdir", "encapsulated", "headerless", "native", "sequences"}) {
        for (const auto& entry : std::filesystem::directory_iterator(TestData(folder)))
            names.push_back(folder + "/" + entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace pgkit_test
