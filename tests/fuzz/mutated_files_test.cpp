// The fuzz targets on the bundled files and on broken variants of them, without a fuzzer.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/captured.h"
#include "support/mutation.h"
#include "support/sample_files.h"
#include "support/temp_dir.h"
#include "targets.h"
#include "violation.h"

namespace {

using pgkit_fuzz::Target;
using pgkit_test::Bytes;

constexpr uintmax_t kMaxFileSize = 16 * 1024;
constexpr uint32_t kVariantsPerFile = PGKIT_TEST_VARIANTS;

std::vector<std::string> SmallFiles() {
    std::vector<std::string> paths;
    for (const std::string& name : pgkit_test::SampleFiles()) {
        const std::string path = pgkit_test::TestData(name);
        if (std::filesystem::file_size(path) <= kMaxFileSize) paths.push_back(path);
    }
    return paths;
}

class FuzzTarget : public testing::TestWithParam<Target> {
  protected:
    static void RunVariants(const std::string& path) {
        const Bytes original = pgkit_test::ReadFile(path);
        Run(original, path);
        for (uint32_t seed = 0; seed < kVariantsPerFile; ++seed) {
            Run(pgkit_test::Mutator(seed).Mutate(original),
                path + ", seed " + std::to_string(seed));
        }
    }

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
    const std::vector<std::string> files = SmallFiles();
    ASSERT_GE(files.size(), 10u);
    for (const std::string& file : files) {
        // What the library prints is not looked at here.
        pgkit_test::CapturePrinted([&] { RunVariants(file); });
    }
}

TEST_P(FuzzTarget, AcceptsNothing) { Run({}, "no bytes"); }

INSTANTIATE_TEST_SUITE_P(All, FuzzTarget, testing::ValuesIn(pgkit_fuzz::kTargets),
                         [](const testing::TestParamInfo<Target>& tested) {
                             return std::string(tested.param.name);
                         });

}  // namespace
