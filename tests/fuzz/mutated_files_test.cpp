// The fuzz targets on the bundled files and on broken variants of them, without a fuzzer.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/mutation.h"
#include "support/temp_dir.h"
#include "targets.h"
#include "violation.h"

namespace {

namespace fs = std::filesystem;
using pgkit_fuzz::Target;
using pgkit_test::Bytes;

constexpr uintmax_t kMaxFileSize = 16 * 1024;
constexpr uint32_t kVariantsPerFile = 50;

std::vector<fs::path> SmallFiles() {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(PGKIT_TEST_DATA)) {
        const bool isDicom = entry.is_regular_file() && entry.path().extension() != ".md" &&
                             entry.path().extension() != ".tsv";
        if (isDicom && entry.file_size() <= kMaxFileSize) paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

class FuzzTarget : public testing::TestWithParam<Target> {
  protected:
    // The name is for the report of a broken promise.
    static void Run(const Bytes& input, const std::string& name) {
        try {
            GetParam().run(input);
        } catch (const pgkit_fuzz::Violation& violation) {
            ADD_FAILURE() << name << ": " << violation.what();
        }
    }
};

TEST_P(FuzzTarget, KeepsItsPromisesOnFilesAndTheirVariants) {
    const std::vector<fs::path> files = SmallFiles();
    ASSERT_GE(files.size(), 10u);
    for (const fs::path& file : files) {
        const Bytes original = pgkit_test::ReadFile(file.string());
        Run(original, file.string());
        for (uint32_t seed = 0; seed < kVariantsPerFile; ++seed) {
            Run(pgkit_test::Mutator(seed).Mutate(original),
                file.string() + ", seed " + std::to_string(seed));
        }
    }
}

TEST_P(FuzzTarget, AcceptsNothing) { Run({}, "no bytes"); }

INSTANTIATE_TEST_SUITE_P(All, FuzzTarget, testing::ValuesIn(pgkit_fuzz::kTargets),
                         [](const testing::TestParamInfo<Target>& tested) {
                             return std::string(tested.param.name);
                         });

}  // namespace
