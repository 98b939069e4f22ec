// Frames of RLE Lossless, right and damaged ones.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// A frame of these segments, at their places.
std::string Frame(const std::vector<std::string>& segments) {
    std::string header(64, '\0');
    const auto put = [&](size_t index, size_t value) {
        for (size_t i = 0; i < 4; ++i)
            header[index * 4 + i] = static_cast<char>(value >> (8 * i));
    };
    std::string body;
    put(0, segments.size());
    for (size_t i = 0; i < segments.size(); ++i) {
        put(i + 1, header.size() + body.size());
        body += segments[i];
    }
    return header + body;
}

struct Decoded {
    int32_t result;
    std::string samples;
};

Decoded Decode(const std::string& frame, uint32_t segments, uint32_t bytesPerSample, size_t size) {
    std::string samples(size + 1, '#');
    const int32_t result =
        pgxDecodeRle(frame.data(), frame.size(), segments, bytesPerSample, samples.data(), size);
    EXPECT_EQ(samples.back(), '#');
    samples.pop_back();
    return {result, samples};
}

TEST(Rle, HasRunsAndLiterals) {
    // Three literal bytes, nothing, four times the same.
    const Decoded decoded = Decode(Frame({"\x02"
                                          "abc"
                                          "\x80\xFD"
                                          "x"}),
                                   1, 1, 7);
    EXPECT_EQ(decoded.result, 1);
    EXPECT_EQ(decoded.samples, "abcxxxx");
}

TEST(Rle, SamplesOfTwoBytesHaveASegmentForEachByte) {
    const Decoded decoded =
        Decode(Frame({std::string("\xFF\x01", 2), std::string("\x01\x02\x03", 3)}), 2, 2, 4);
    uint16_t samples[2] = {};
    std::memcpy(samples, decoded.samples.data(), sizeof samples);
    EXPECT_EQ(decoded.result, 1);
    EXPECT_EQ(samples[0], 0x0102);
    EXPECT_EQ(samples[1], 0x0103);
}

TEST(Rle, SamplesOfAPixelAreInPlanes) {
    EXPECT_EQ(Decode(Frame({"\xFFr", "\xFFg",
                            "\xFF"
                            "b"}),
                     3, 1, 6)
                  .samples,
              "rrggbb");
}

TEST(Rle, WhatASegmentHasTooMuchIsPassedOver) {
    const Decoded decoded = Decode(Frame({"\x05"
                                          "abcdef"}),
                                   1, 1, 4);
    EXPECT_EQ(decoded.result, 1);
    EXPECT_EQ(decoded.samples, "abcd");
}

TEST(Rle, WhatIsDamagedGivesWhatThereIs) {
    EXPECT_EQ(Decode(Frame({"\x05"
                            "ab"}),
                     1, 1, 4)
                  .samples,
              std::string("ab\0\0", 4));
    EXPECT_EQ(Decode(Frame({"\x05"
                            "ab"}),
                     1, 1, 4)
                  .result,
              0);
    EXPECT_EQ(Decode(Frame({"\xF0"}), 1, 1, 4).result, 0);  // a run of nothing
    EXPECT_EQ(Decode(Frame({"\x01"
                            "ab"}),
                     2, 1, 4)
                  .result,
              0);  // another number of segments
    EXPECT_EQ(Decode(std::string(63, '\1'), 1, 1, 4).result, 0);
    for (const char offset : {'\x20', '\x7F'}) {  // in the header; behind the end
        std::string frame =
            Frame({"\x01"
                   "ab"});
        frame[4] = offset;
        EXPECT_EQ(Decode(frame, 1, 1, 2).result, 0);
    }
}

TEST(Rle, NumbersThatDoNotFitAreRefused) {
    const std::string frame =
        Frame({"\x01"
               "ab"});
    EXPECT_EQ(Decode(frame, 0, 1, 2).result, 0);
    EXPECT_EQ(Decode(frame, 16, 1, 16).result, 0);
    EXPECT_EQ(Decode(frame, 1, 0, 2).result, 0);
    EXPECT_EQ(Decode(frame, 1, 2, 2).result, 0);
    EXPECT_EQ(pgxDecodeRle(nullptr, 100, 1, 1, nullptr, 100), 0);
    EXPECT_EQ(pgxDecodeRle(frame.data(), frame.size(), 1, 1, nullptr, 100), 0);
}

}  // namespace
