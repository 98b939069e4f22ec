// Reading, writing and reading again: the bundled files in every encoding.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cctype>
#include <string>
#include <vector>

#include "support/sample_files.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/tree.h"
#include "support/tree_comparison.h"

namespace {

using namespace pgkit_test;

// Implicit VR, read as explicit VR for want of a transfer syntax.
bool IsLostInTranslation(const std::string& name) {
    return name == "headerless/meta_without_transfer_syntax.dcm";
}

std::vector<std::string> WholeFiles() {
    std::vector<std::string> names = SampleFiles();
    std::erase_if(names, [](const std::string& name) {
        return name.starts_with("bad/") || IsLostInTranslation(name);
    });
    return names;
}

uint32_t OpenFlags(const std::string& name) {
    const bool bare = name == "headerless/explicit_be_no_meta.dcm";
    return bare ? PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN : 0u;
}

class RoundTrip : public testing::TestWithParam<std::string> {
  protected:
    void Check(int32_t mode, uint32_t maxLoadLength) {
        const DataSet original(pgOpenDataSetFileEx(TestData(GetParam()).c_str(), maxLoadLength,
                                                   OpenFlags(GetParam())));
        ASSERT_NE(original, nullptr);
        // A Part 10 file without transfer syntax would be read as explicit VR little endian.
        const bool hasSyntax = original->FindNode(0x0002, 0x0010) != nullptr;
        if (mode != 0 && !hasSyntax) original->AddPart10Elements(nullptr);
        const std::string first = directory_.Path("first");
        ASSERT_EQ(original->SaveDataSetAsEx(first.c_str(), mode), 0u);
        // A file without File Meta Information does not say how it is encoded.
        const uint32_t written = mode == 0 ? original->syntaxFlags : static_cast<uint32_t>(mode);
        const uint32_t flags =
            written & (PG_EXPLICIT_VR | PG_IMPLICIT_VR | PG_LITTLE_ENDIAN | PG_BIG_ENDIAN);
        const DataSet reread(pgOpenDataSetFileEx(first.c_str(), maxLoadLength, flags));
        ASSERT_NE(reread, nullptr);
        EXPECT_EQ(FirstDifference(*original, *reread), "");

        // A private syntax becomes a native one, which obeys the mode from then on.
        if (GetParam() == "native/mr_ge_private_syntax_be_pixels.dcm") return;
        const std::string second = directory_.Path("second");
        ASSERT_EQ(reread->SaveDataSetAsEx(second.c_str(), mode), 0u);
        EXPECT_TRUE(ReadFile(first) == ReadFile(second));
    }

    TempDir directory_;
};

TEST_P(RoundTrip, GivesAnEqualTreeAndThenIdenticalFiles) {
    for (const int32_t mode :
         {kAsRead, kPart10Explicit, kPart10Implicit, kPart10Big,
          kPart10Explicit | PG_UNDEFINED_LENGTHS, kPart10Implicit | PG_UNDEFINED_LENGTHS,
          kPart10Big | PG_UNDEFINED_LENGTHS}) {
        SCOPED_TRACE(testing::Message() << std::hex << mode);
        Check(mode, kLoadAll);
        Check(mode, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Bundled, RoundTrip, testing::ValuesIn(WholeFiles()),
                         [](const testing::TestParamInfo<std::string>& tested) {
                             std::string name = tested.param;
                             for (char& c : name) {
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             }
                             return name;
                         });

}  // namespace
