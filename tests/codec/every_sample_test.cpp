// Every bundled file, cut short at many places.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/sample_files.h"
#include "support/tree.h"

namespace {

namespace fs = std::filesystem;
using pgkit_test::DataSet;
using pgkit_test::SampleFiles;
using pgkit_test::TempDir;
using pgkit_test::TestData;

constexpr size_t kCutsPerFile = 200;

size_t CountNodes(const PGX_Node* node) {
    size_t count = 0;
    for (; node != nullptr; node = node->next)
        count += 1 + CountNodes(node->first);
    return count;
}

// Cut from its end on, a file shows no more than before; until the prefix "DICM" is cut, without
// which the zeros before it are elements.
TEST(EverySample, ShowsLessTheShorterItIs) {
    const std::vector<std::string> samples = SampleFiles();
    EXPECT_GE(samples.size(), 24u);
    for (const std::string& sample : samples) {
        SCOPED_TRACE(sample);
        TempDir directory;
        const std::string path = directory.Path("cut");
        fs::copy_file(TestData(sample), path);
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
