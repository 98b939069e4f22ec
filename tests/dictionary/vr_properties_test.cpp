#include "dictionary/vr_properties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

namespace {

std::set<uint32_t> CodesWithSwapUnit(size_t unit) {
    std::set<uint32_t> codes;
    for (uint32_t code = 0; code < 256; ++code) {
        if (pgkit::SwapUnit(code) == unit) codes.insert(code);
    }
    return codes;
}

TEST(VrProperties, LongHeadersAreThoseOfSevenCodesAndOfUnknownOnes) {
    std::set<uint32_t> longHeaders;
    for (uint32_t code = 0; code < 256; ++code) {
        if (pgkit::HasLongHeader(code)) longHeaders.insert(code);
    }
    EXPECT_EQ(longHeaders,
              (std::set<uint32_t>{VR_OB, VR_OW, VR_OWOB, VR_OF, VR_SQ, VR_UN, VR_UT, VR_Unknown}));
}

TEST(VrProperties, HeadersHaveTwelveBytesWhenTheyAreExplicitAndLong) {
    EXPECT_EQ(pgkit::HeaderSize(VR_OB, true), 12u);
    EXPECT_EQ(pgkit::HeaderSize(VR_Unknown, true), 12u);
    EXPECT_EQ(pgkit::HeaderSize(VR_US, true), 8u);
    EXPECT_EQ(pgkit::HeaderSize(VR_OB, false), 8u);
    EXPECT_EQ(pgkit::HeaderSize(VR_US, false), 8u);
}

TEST(VrProperties, SwapUnitsAreThoseOfTheNumbersInside) {
    EXPECT_EQ(CodesWithSwapUnit(2),
              (std::set<uint32_t>{VR_US, VR_AT, VR_SS, VR_USSS, VR_OW, VR_OWOB}));
    EXPECT_EQ(CodesWithSwapUnit(4), (std::set<uint32_t>{VR_UL, VR_FL, VR_SL, VR_OF}));
    EXPECT_EQ(CodesWithSwapUnit(8), (std::set<uint32_t>{VR_FD}));
    EXPECT_EQ(CodesWithSwapUnit(1).size(), 256u - 6 - 4 - 1);
}

TEST(VrProperties, EveryPairOfBytesIsATwoLetterNameOrUnknown) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            uint32_t expected = VR_Unknown;
            for (uint32_t code = 0; code < pgkit::VrCount(); ++code) {
                const char* name = pgkit::VrName(code);
                if (std::strlen(name) != 2) continue;
                if (name[0] == static_cast<char>(first) && name[1] == static_cast<char>(second)) {
                    expected = code;
                }
            }
            ASSERT_EQ(pgkit::VrFromCharacters(static_cast<char>(first), static_cast<char>(second)),
                      expected)
                << first << ' ' << second;
        }
    }
}

}  // namespace
