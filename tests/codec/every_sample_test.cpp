// Every bundled file, cut short at many places.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/tree.h"

namespace {

namespace fs = std::filesystem;
using pgkit_test::DataSet;
using pgkit_test::TempDir;
using pgkit_test::TestData;

constexpr const char* kFolders[] = {"bad",        "charset", "dicomdir", "encapsulated",
                                    "headerless", "native",  "sequences"};
constexpr size_t kCutsPerFile = 200;

std::vector<std::string> Samples() {
    std::vector<std::string> paths;
    for (const char* folder : kFolders)
        for (const fs::directory_entry& entry : fs::directory_iterator(TestData(folder)))
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

size_t CountNodes(const PGX_Node* node) {
    size_t count = 0;
    for (; node != nullptr; node = node->next)
        count += 1 + CountNodes(node->first);
    return count;
}

// Cut from its end on, a file shows no more than before; until the prefix "DICM" is cut, without
// which the zeros before it are elements.
TEST(EverySample, ShowsLessTheShorterItIs) {
    const std::vector<std::string> samples = Samples();
    EXPECT_GE(samples.size(), 24u);
    for (const std::string& sample : samples) {
        SCOPED_TRACE(sample);
        TempDir directory;
        const std::string path = directory.Path("cut");
        fs::copy_file(sample, path);
        fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
        const int32_t hasPrefix = pgIsDicomFile(path.c_str());
        const size_t size = fs::file_size(path);
        size_t shown = SIZE_MAX;
        for (size_t cut = 0; cut < kCutsPerFile; ++cut) {
            fs::resize_file(path, size - size * cut / kCutsPerFile);
            const DataSet root(pgOpenDataSetFile(path.c_str(), 64));
            if (pgIsDicomFile(path.c_str()) != hasPrefix) continue;
            const size_t nodes = CountNodes(root.get());
            EXPECT_LE(nodes, shown) << cut;
            shown = nodes;
        }
    }
}

}  // namespace
