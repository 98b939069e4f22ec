// Reading and writing by the tables of the current edition: the value representations that came
// after the built-in one, and sequences that only the current one knows.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>
#include <string_view>

#include "codec/encoded.h"
#include "support/current_edition.h"
#include "support/host_order.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

constexpr uint16_t kGroup = 0x0009;
constexpr uint16_t kElement = 0x1001;

struct NewVr {
    uint32_t code;
    const char* name;
    size_t unit;
};

void PrintTo(const NewVr& vr, std::ostream* out) { *out << vr.name; }

class NewValueRepresentation : public testing::TestWithParam<NewVr> {
  protected:
    // An explicit data set with one element of the VR, and one behind it.
    static StreamBuilder Stream(Order order, std::string_view value) {
        StreamBuilder stream(VrMode::Explicit, order);
        stream.Part10(order == Order::Big ? "1.2.840.10008.1.2.2" : "1.2.840.10008.1.2.1");
        stream.Element(kGroup, kElement, GetParam().name, value);
        stream.Element(0x0010, 0x0020, "LO", "ID");
        return stream;
    }

    const std::string value_ = "abcdefghijklmnop";  // in little endian
    const std::string inBigEndian_ = WithUnitsReversed(value_, GetParam().unit);
    const std::string inMemory_ = InHostOrder(value_, GetParam().unit);
};

TEST_P(NewValueRepresentation, IsReadInTheLongFormByItsName) {
    const CurrentEdition current;
    OpenedStream opened(Stream(Order::Little, value_));
    PGX_Node* element = Child(opened.Root(), kGroup, kElement);
    EXPECT_EQ(element->valueRep, GetParam().code);
    EXPECT_EQ(element->length, 16u);
    EXPECT_EQ(TextOf(Child(opened.Root(), 0x0010, 0x0020)), "ID");
}

TEST_P(NewValueRepresentation, IsUnknownInTheBuiltInEdition) {
    OpenedStream opened(Stream(Order::Little, value_));
    EXPECT_EQ(Child(opened.Root(), kGroup, kElement)->valueRep, uint32_t{VR_Unknown});
}

TEST_P(NewValueRepresentation, ShowsItsValueInHostByteOrder) {
    const CurrentEdition current;
    OpenedStream opened(Stream(Order::Big, inBigEndian_));
    char value[17];
    ASSERT_EQ(Child(opened.Root(), kGroup, kElement)->GetValue(value), 1);
    EXPECT_EQ(value, inMemory_);
}

TEST_P(NewValueRepresentation, IsWrittenUnderItsNameInEitherByteOrder) {
    const CurrentEdition current;
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* node = NewElement(*root, kGroup, kElement, GetParam().code, inMemory_);
    EXPECT_EQ(Encode(*node, kExplicitLittle).bytes,
              StreamBuilder().Element(kGroup, kElement, GetParam().name, value_).Data());
    EXPECT_EQ(Encode(*node, kExplicitBig).bytes,
              StreamBuilder(VrMode::Explicit, Order::Big)
                  .Element(kGroup, kElement, GetParam().name, inBigEndian_)
                  .Data());
    EXPECT_EQ(Encode(*node, kImplicitLittle).bytes,
              StreamBuilder(VrMode::Implicit).Element(kGroup, kElement, "", value_).Data());
}

TEST_P(NewValueRepresentation, IsSetInHostByteOrder) {
    const CurrentEdition current;
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* node = NewElement(*root, kGroup, kElement, GetParam().code, value_, ET_BigEndian);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(node->value), node->length),
              WithUnitsReversed(inMemory_, GetParam().unit));
}

// A short header has room for 65,534 bytes; all of these have the long one.
TEST_P(NewValueRepresentation, MayBeLong) {
    const CurrentEdition current;
    const DataSet root(pgAllocateDataSetNode());
    const std::string value(70000, 'x');
    PGX_Node* node = NewElement(*root, kGroup, kElement, GetParam().code, value);
    EXPECT_EQ(Encode(*node, kExplicitLittle).result, 0u);
    EXPECT_EQ(Encode(*node, kExplicitLittle).bytes.size(), 12 + value.size());
}

TEST_P(NewValueRepresentation, CountsTheLongHeaderInLengths) {
    const CurrentEdition current;
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    NewElement(*AddItem(*sequence), kGroup, kElement, GetParam().code, inMemory_);
    const TempDir directory;
    const std::string path = directory.Path("saved");
    ASSERT_EQ(root->SaveDataSetAsEx(path.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path), StreamBuilder()
                                  .Sequence(0x0008, 0x1140, 8 + 12 + 16)
                                  .Item(12 + 16)
                                  .Element(kGroup, kElement, GetParam().name, value_)
                                  .Data());
}

// Its code names nothing there: as ever, such a code is written as "??" in a short header.
TEST_P(NewValueRepresentation, HasNoNameInTheBuiltInEdition) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* node = NewElement(*root, kGroup, kElement, GetParam().code, "abcd");
    EXPECT_EQ(Encode(*node, kExplicitLittle).bytes,
              StreamBuilder().Element(kGroup, kElement, "??", "abcd").Data());
}

INSTANTIATE_TEST_SUITE_P(All, NewValueRepresentation,
                         testing::Values(NewVr{VR_OD, "OD", 8}, NewVr{VR_OL, "OL", 4},
                                         NewVr{VR_OV, "OV", 8}, NewVr{VR_SV, "SV", 8},
                                         NewVr{VR_UC, "UC", 1}, NewVr{VR_UR, "UR", 1},
                                         NewVr{VR_UV, "UV", 8}),
                         [](const auto& test) { return test.param.name; });

// ---- Numbers and texts --------------------------------------------------------------------------

template <typename Number>
std::string BytesOf(std::initializer_list<Number> numbers) {
    return {reinterpret_cast<const char*>(numbers.begin()), numbers.size() * sizeof(Number)};
}

TEST(NumbersOf64Bits, AreGotFromTheFirstValue) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* node =
        NewElement(*root, kGroup, kElement, VR_SV, BytesOf<int64_t>({INT64_MIN + 1, 7}));
    EXPECT_EQ(pgxGetSVValue(node), INT64_MIN + 1);
    EXPECT_EQ(pgxGetUVValue(node), 0x8000000000000001u);
}

TEST(NumbersOf64Bits, AreZeroWhereThereIsNoValue) {
    const DataSet root(pgAllocateDataSetNode());
    EXPECT_EQ(pgxGetSVValue(nullptr), 0);
    EXPECT_EQ(pgxGetUVValue(nullptr), 0u);
    EXPECT_EQ(pgxGetUVValue(root.get()), 0u);
    EXPECT_EQ(pgxGetSVValue(NewElement(*root, kGroup, kElement, VR_SV, "")), 0);
}

TEST(NumbersOf64Bits, SeeZerosBehindAShortValue) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* node = NewElement(*root, kGroup, kElement, VR_UL, BytesOf<uint32_t>({0x12345678}));
    EXPECT_EQ(pgxGetUVValue(node), 0x12345678u);
}

std::string ShownValue(uint32_t vr, std::string_view value) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* node = NewElement(*root, kGroup, kElement, vr, value);
    const TempDir directory;
    const std::string path = directory.Path("dump");
    node->Dump(OpenStream(path, "wb").get(), "");
    const Bytes bytes = ReadFile(path);
    const std::string line(bytes.begin(), bytes.end());
    return line.substr(line.find("Value: ") + 7);
}

TEST(DumpInTheCurrentEdition, ShowsValuesLikeThoseOfTheNearestRelative) {
    const CurrentEdition current;
    EXPECT_EQ(ShownValue(VR_SV, BytesOf<int64_t>({INT64_MIN})), "[-9223372036854775808]\n");
    EXPECT_EQ(ShownValue(VR_SV, BytesOf<int64_t>({-1, 2})), "[-1 2 ]\n");
    EXPECT_EQ(ShownValue(VR_UV, BytesOf<uint64_t>({UINT64_MAX})), "[18446744073709551615]\n");
    EXPECT_EQ(ShownValue(VR_UC, "text"), "[text]\n");
    EXPECT_EQ(ShownValue(VR_UR, "urn:x "), "[urn:x ]\n");
    for (const uint32_t vr : {VR_OD, VR_OL, VR_OV}) {
        EXPECT_EQ(ShownValue(vr, "abcdefgh"), "[OW/OB/OF Binary data]\n");
    }
}

TEST(DumpInTheCurrentEdition, CutsAfterTwentyNumbers) {
    const CurrentEdition current;
    std::string value;
    std::string expected;
    for (int64_t n = 0; n < 21; ++n)
        value += BytesOf<int64_t>({n});
    for (int n = 0; n < 20; ++n)
        expected += std::to_string(n) + " ";
    EXPECT_EQ(ShownValue(VR_SV, value), "[" + expected + "...]\n");
}

TEST(DumpInTheCurrentEdition, NamesWhatTheBuiltInOneDoesNot) {
    const CurrentEdition current;
    OpenedStream opened(StreamBuilder()
                            .Part10("1.2.840.10008.1.2.1")
                            .Element(0x0008, 0x0120, "UR", "urn:oid:1.2.3")
                            .Data());
    char name[128];
    EXPECT_EQ(Child(opened.Root(), 0x0008, 0x0120)->GetTagName(name), 1);
    EXPECT_STREQ(name, "URNCodeValue");
}

// ---- Implicit VR --------------------------------------------------------------------------------

// What stands in a sequence that the reader does not know is lost to whoever walks the tree: a
// name, say, that ought to be removed.
TEST(ImplicitVr, ShowsTheItemsOfASequenceThatOnlyTheCurrentEditionKnows) {
    StreamBuilder item(VrMode::Implicit);
    item.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    StreamBuilder stream(VrMode::Implicit);
    stream.Part10("1.2.840.10008.1.2").Sequence(0x0008, 0x009D, 8 + item.Size());
    stream.Item(item.Size()).Append(item.Data());
    stream.Element(0x0010, 0x0020, "LO", "ID");

    OpenedStream builtIn(stream);
    EXPECT_EQ(Child(builtIn.Root(), 0x0008, 0x009D)->first, nullptr);

    const CurrentEdition current;
    OpenedStream opened(stream);
    PGX_Node* sequence = Child(opened.Root(), 0x0008, 0x009D);
    EXPECT_EQ(sequence->valueRep, uint32_t{VR_SQ});
    ASSERT_NE(sequence->first, nullptr);
    EXPECT_EQ(TextOf(Child(sequence->first, 0x0010, 0x0010)), "DOE^JOHN");
    EXPECT_EQ(TextOf(Child(opened.Root(), 0x0010, 0x0020)), "ID");
}

TEST(ImplicitVr, SwapsNumbersThatOnlyTheCurrentEditionKnows) {
    const CurrentEdition current;
    OpenedStream opened(StreamBuilder(VrMode::Implicit)
                            .Part10("1.2.840.10008.1.2")
                            .Element(0x7FE0, 0x0001, "", "\x88\x77\x66\x55\x44\x33\x22\x11")
                            .Data());
    PGX_Node* table = Child(opened.Root(), 0x7FE0, 0x0001);
    EXPECT_EQ(table->valueRep, uint32_t{VR_OV});
    EXPECT_EQ(pgxGetUVValue(table), 0x1122334455667788u);
}

}  // namespace
