// Values that are too long for the length field of their VR.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>
#include <vector>

#include "support/tree.h"

namespace {

using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::StreamBuilder;
using pgkit_test::VrMode;

constexpr uint32_t kLeftInFile = 64;

// An implicit data set with one value.
StreamBuilder ImplicitWith(uint16_t group, uint16_t element, const std::string& value) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "", "CT").Element(group, element, "", value);
    return stream;
}

// The VR of the last element afterwards.
uint32_t VrAfterwards(OpenedStream& opened) {
    EXPECT_EQ(pgxMakeLongValuesUn(opened.Root()), 1);
    PGX_Node* last = opened->first;
    while (last->next != nullptr)
        last = last->next;
    return last->valueRep;
}

TEST(LongValues, BecomeUnWhereTheLengthHas16Bits) {
    OpenedStream tooLong(ImplicitWith(0x0010, 0x4000, std::string(65536, 'x')));
    EXPECT_EQ(VrAfterwards(tooLong), uint32_t{VR_UN});
    OpenedStream longest(ImplicitWith(0x0010, 0x4000, std::string(65534, 'x')));
    EXPECT_EQ(VrAfterwards(longest), uint32_t{VR_LT});
}

TEST(LongValues, StayWhatTheyAreWhereItHas32) {
    OpenedStream bytes(ImplicitWith(0x7FE0, 0x0010, std::string(65536, 'x')));
    EXPECT_EQ(VrAfterwards(bytes), uint32_t{VR_OWOB});
    OpenedStream text(ImplicitWith(0x0040, 0xA160, std::string(65536, 'x')));
    EXPECT_EQ(VrAfterwards(text), uint32_t{VR_UT});
}

// pgtool made UN of values of today's VRs, whose length has 32 bits.
TEST(LongValues, OfTodaysVrsStayWhatTheyAre) {
    const int32_t former = pgxUseEdition(PGX_EDITION_CURRENT);
    for (const uint32_t vr : {VR_OD, VR_OL, VR_OV, VR_SV, VR_UC, VR_UR, VR_UV}) {
        OpenedStream opened(ImplicitWith(0x0010, 0x4000, std::string(65536, 'x')));
        opened->FindNode(0x0010, 0x4000)->valueRep = vr;
        EXPECT_EQ(VrAfterwards(opened), vr);
    }
    pgxUseEdition(former);
}

TEST(LongValues, ItemsHaveThemToo) {
    OpenedStream opened(StreamBuilder(VrMode::Implicit)
                            .Sequence(0x0008, 0x1140)
                            .Item()
                            .Element(0x0010, 0x4000, "", std::string(65536, 'x'))
                            .EndItem()
                            .EndSequence());
    ASSERT_EQ(pgxMakeLongValuesUn(opened.Root()), 1);
    const PGX_Node* const value = opened->first->first->first;
    EXPECT_EQ(value->valueRep, uint32_t{VR_UN});
}

TEST(LongValues, NumbersAreLittleEndianWhateverTheyWere) {
    std::string numbers;
    for (int i = 0; i < 40000; ++i)
        numbers += std::string("\x01\x02", 2);
    for (const uint32_t limit : {kLeftInFile, pgkit_test::kLoadAll}) {
        StreamBuilder stream(VrMode::Implicit, Order::Big);
        stream.Element(0x0028, 0x1101, "", numbers);
        OpenedStream opened(stream, limit, PG_OPEN_FORCE_IMPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
        PGX_Node* const element = opened->first;
        ASSERT_EQ(element->endian, ET_BigEndian);
        element->valueRep = VR_US;
        EXPECT_EQ(VrAfterwards(opened), uint32_t{VR_UN});
        std::string bytes(80001, '\0');
        ASSERT_EQ(element->GetValue(bytes.data()), 1);
        EXPECT_EQ(bytes.substr(0, 4), std::string("\x02\x01\x02\x01", 4));
    }
}

// The memory of a length is not taken for a value that is not there.
TEST(LongValues, WhatTheFileDoesNotHoldGetsTheVrOnly) {
    StreamBuilder stream(VrMode::Implicit, Order::Big);
    stream.Element(0x0028, 0x1101, "", std::string(80000, 'x'));
    std::vector<uint8_t> data = stream.Data();
    data.resize(1000);
    OpenedStream opened(data, kLeftInFile, PG_OPEN_FORCE_IMPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
    PGX_Node* const element = opened->first;
    element->valueRep = VR_US;
    element->value = nullptr;
    element->length = 0xF0000000;
    EXPECT_EQ(VrAfterwards(opened), uint32_t{VR_UN});
    EXPECT_EQ(element->value, nullptr);
}

TEST(LongValues, ANullRootHasNone) { EXPECT_EQ(pgxMakeLongValuesUn(nullptr), 0); }

}  // namespace
