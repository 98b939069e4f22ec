// JSON to file to JSON is the identity, for every file that is bundled with the tests.
#include <gtest/gtest.h>

#include "support/current_edition.h"
#include "support/json.h"
#include "support/sample_files.h"
#include "support/save_modes.h"

namespace {

using pgkit_test::CurrentEdition;
using pgkit_test::DataSet;
using pgkit_test::JsonOf;
using pgkit_test::kInline;
using pgkit_test::ParseJson;
using pgkit_test::SampleFiles;
using pgkit_test::TempDir;
using pgkit_test::TestData;

// Encapsulated Pixel Data come back as this many bytes.
int32_t SupplyBytes(void*, PGX_Node* element, const char*, const char*) {
    return element->SetValue("\1\2\3\4", 4);
}

std::string ThroughAFile(PGX_Node& dataSet, const TempDir& directory) {
    const std::string path = directory.Path("written.dcm");
    EXPECT_EQ(dataSet.SaveDataSetAsEx(path.c_str(), pgkit_test::kPart10Explicit), 0u);
    return JsonOf(DataSet(pgOpenDataSetFile(path.c_str(), 64)).get());
}

class JsonRoundTrip : public testing::TestWithParam<std::string> {};

TEST_P(JsonRoundTrip, IsTheIdentity) {
    const CurrentEdition edition;
    const TempDir directory;
    // 64: other values are still in their file.
    const DataSet original(pgOpenDataSetFile(TestData(GetParam()).c_str(), 64));
    if (original == nullptr) return;
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.bulk = SupplyBytes;
    const auto first = ParseJson(JsonOf(original.get()), &options);
    ASSERT_EQ(first.Failure(), "");
    // What cannot be in a file is gone here: odd lengths, fragments.
    const std::string json = JsonOf(first.dataSet.get());
    EXPECT_GT(json.size(), 20u);
    EXPECT_EQ(ThroughAFile(*first.dataSet, directory), json);
    const auto second = ParseJson(json);
    ASSERT_EQ(second.Failure(), "");
    EXPECT_EQ(JsonOf(second.dataSet.get()), json);
    EXPECT_EQ(ThroughAFile(*second.dataSet, directory), json);
}

// Where all lengths are even and nothing is encapsulated nothing is lost on the way.
TEST_P(JsonRoundTrip, LosesNothing) {
    const CurrentEdition edition;
    const DataSet original(pgOpenDataSetFile(TestData(GetParam()).c_str(), 64));
    const bool hasFragments = GetParam().starts_with("encapsulated/");
    const bool isOdd = GetParam() == "headerless/meta_without_transfer_syntax.dcm";
    if (original == nullptr || hasFragments || isOdd) return;
    const std::string json = JsonOf(original.get());
    EXPECT_EQ(pgkit_test::Rewritten(json), json);
}

INSTANTIATE_TEST_SUITE_P(Samples, JsonRoundTrip, testing::ValuesIn(SampleFiles()),
                         [](const testing::TestParamInfo<std::string>& tested) {
                             std::string name = tested.param;
                             std::ranges::replace_if(
                                 name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
                             return name;
                         });

}  // namespace
