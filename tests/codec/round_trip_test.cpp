// Reading, writing and reading again: the bundled files in every encoding.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
namespace fs = std::filesystem;

// Where the two trees differ for the first time; empty when they are equal in what the encodings
// can carry.
class Comparison {
  public:
    // Without VRs in the second file, those that its reader does not know have got lost.
    explicit Comparison(bool vrsWritten) : vrsWritten_(vrsWritten) {}

    std::string OfDataSets(const PGX_Node* a, const PGX_Node* b) {
        PGX_Node* x = Next(a->first);
        PGX_Node* y = Next(b->first);
        for (; x != nullptr && y != nullptr; x = Next(x->next), y = Next(y->next)) {
            const std::string difference = OfElements(x, y);
            if (!difference.empty()) return difference;
        }
        return x == y ? "" : "more elements than the other from " + Describe(x ? x : y);
    }

  private:
    // What saving sets is not compared: the meta group of the output and group lengths.
    static PGX_Node* Next(PGX_Node* element) {
        while (element != nullptr && (element->group == 0x0002 || element->element == 0)) {
            element = element->next;
        }
        return element;
    }

    std::string OfElements(PGX_Node* a, PGX_Node* b) {
        const std::string both = Describe(a).substr(0, 60) + " and " + Describe(b).substr(0, 60);
        if (a->group != b->group || a->element != b->element) return "tags: " + both;
        if (a->encapsulated != b->encapsulated) return "encapsulation: " + both;
        if (a->encapsulated != 0) return OfFragments(a, b);
        if (vrsWritten_ && !SameVr(a->valueRep, b->valueRep)) return "VRs: " + both;
        if (a->valueRep == VR_SQ) return b->valueRep == VR_SQ ? OfItems(a, b) : OfUnknown(b);
        return ValueOf(a) == ValueOf(b) ? "" : "values: " + both;
    }

    // The VRs that a header cannot show read as those it shows for them.
    static bool SameVr(uint32_t a, uint32_t b) {
        if (a == VR_USSS) return b == VR_US;
        if (a == VR_OWOB) return b == VR_OW;
        if (a == VR_Unknown) return b == VR_UN;
        return a == b;
    }

    std::string OfItems(const PGX_Node* a, const PGX_Node* b) {
        const PGX_Node* x = a->first;
        const PGX_Node* y = b->first;
        for (; x != nullptr && y != nullptr; x = x->next, y = y->next) {
            const std::string difference = OfDataSets(x, y);
            if (!difference.empty()) return difference;
        }
        return x == y ? "" : "number of items in " + Describe(a).substr(0, 60);
    }

    // A private sequence of defined length reads as bytes where its VR is not written.
    std::string OfUnknown(const PGX_Node* b) const {
        const bool lost = !vrsWritten_ && pgFindValueRepresentation(b->group, b->element) != VR_SQ;
        return lost ? "" : "no sequence: " + Describe(b);
    }

    static std::string OfFragments(PGX_Node* a, PGX_Node* b) {
        const std::vector<Bytes> fragments = Fragments(a);
        if (Indexed(a)) return fragments == Fragments(b) ? "" : "fragments";
        return Indexed(b) && b->fragmentCount > 0 ? "" : "no fragments";
    }

    static bool Indexed(const PGX_Node* pixelData) {
        return pixelData->fragments != reinterpret_cast<FragmentEntry*>(uintptr_t{1});
    }

    static std::vector<Bytes> Fragments(PGX_Node* pixelData) {
        std::vector<Bytes> fragments;
        uint32_t length = 0;
        uint32_t offset = 0;
        PGX_Node reader;
        reader.file = pixelData->file;
        for (uint32_t i = 0; pixelData->GetEncodedPixelInfo(i, &length, &offset) != 0; ++i) {
            fragments.emplace_back(length);
            EXPECT_EQ(reader.GetFileData(fragments.back().data(), offset, length), 1);
        }
        return fragments;
    }

    static Bytes ValueOf(PGX_Node* element) {
        Bytes value(size_t{element->length} + 1);
        EXPECT_EQ(element->GetValue(value.data()), 1);
        return value;
    }

    bool vrsWritten_;
};

// Files that are not read as what they are, or not written as what their reader takes them for.
bool IsLostInTranslation(const std::string& name) {
    // Implicit VR, read as explicit VR for want of a transfer syntax.
    if (name == "headerless/meta_without_transfer_syntax.dcm") return true;
    // A private syntax is written explicit VR like every syntax that is not one of the native ones,
    // and read as the implicit VR that it stands for.
    return name == "native/mr_ge_private_syntax_be_pixels.dcm";
}

std::vector<std::string> BundledFiles() {
    std::vector<std::string> names;
    const fs::path root(PGKIT_TEST_DATA);
    for (const char* folder :
         {"native", "encapsulated", "sequences", "charset", "headerless", "dicomdir"}) {
        for (const auto& entry : fs::directory_iterator(root / folder)) {
            const std::string name = std::string(folder) + "/" + entry.path().filename().string();
            if (entry.is_regular_file() && !IsLostInTranslation(name)) names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
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
        Comparison comparison((reread->syntaxFlags & PG_EXPLICIT_VR) != 0);
        EXPECT_EQ(comparison.OfDataSets(original.get(), reread.get()), "");

        const std::string second = directory_.Path("second");
        ASSERT_EQ(reread->SaveDataSetAsEx(second.c_str(), mode), 0u);
        EXPECT_TRUE(ReadFile(first) == ReadFile(second));
    }

    TempDir directory_;
};

TEST_P(RoundTrip, GivesAnEqualTreeAndThenIdenticalFiles) {
    for (const int32_t mode : {0, 0x2C, 0x34, 0x4C, 0x2D, 0x35, 0x4D}) {
        SCOPED_TRACE(testing::Message() << std::hex << mode);
        Check(mode, kLoadAll);
        Check(mode, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Bundled, RoundTrip, testing::ValuesIn(BundledFiles()),
                         [](const testing::TestParamInfo<std::string>& tested) {
                             std::string name = tested.param;
                             for (char& c : name) {
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             }
                             return name;
                         });

}  // namespace
