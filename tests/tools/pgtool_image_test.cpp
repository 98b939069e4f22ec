#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::HasSubstr;

uint32_t NumberAt(const Bytes& bytes, size_t at) {
    return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 |
           uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
}

struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> pixels;
};

// Reads a PNG file of 8-bit grays whose rows have the filters 0 (none) and 1 (left neighbour).
Picture ReadPng(const std::string& path) {
    const Bytes file = ReadFile(path);
    Picture picture;
    std::vector<uint8_t> data;
    EXPECT_EQ(std::string(file.begin(), file.begin() + 8), "\x89PNG\r\n\x1A\n");
    for (size_t at = 8; at + 12 <= file.size();) {
        const uint32_t size = NumberAt(file, at);
        const std::string type(file.begin() + static_cast<long>(at) + 4,
                               file.begin() + static_cast<long>(at) + 8);
        const uint8_t* const body = file.data() + at + 8;
        EXPECT_EQ(crc32(0, body - 4, size + 4), NumberAt(file, at + 8 + size)) << type;
        if (type == "IHDR") {
            picture.width = NumberAt(file, at + 8);
            picture.height = NumberAt(file, at + 12);
            EXPECT_EQ(std::vector<uint8_t>(body + 8, body + 13),
                      (std::vector<uint8_t>{8, 0, 0, 0, 0}));
        }
        if (type == "IDAT") data.insert(data.end(), body, body + size);
        at += 12 + size;
    }
    std::vector<uint8_t> rows((size_t{picture.width} + 1) * picture.height);
    uLongf size = static_cast<uLongf>(rows.size());
    EXPECT_EQ(uncompress(rows.data(), &size, data.data(), static_cast<uLong>(data.size())), Z_OK);
    for (size_t y = 0; y < picture.height; ++y) {
        const uint8_t* const row = rows.data() + y * (picture.width + 1);
        uint8_t left = 0;
        for (size_t x = 1; x <= picture.width; ++x) {
            left = static_cast<uint8_t>(row[x] + (row[0] == 1 ? left : 0));
            picture.pixels.push_back(left);
        }
    }
    return picture;
}

// Frames of 2 rows and 3 columns.
InstanceFile Gray(const std::string& pixels) {
    return Instance(1)
        .SetUS(0x0028, 0x0002, 1)
        .Set(0x0028, 0x0004, "CS", "MONOCHROME2")
        .Set(0x0028, 0x0008, "IS", std::to_string(pixels.size() / 6))
        .SetUS(0x0028, 0x0010, 2)
        .SetUS(0x0028, 0x0011, 3)
        .SetUS(0x0028, 0x0100, 8)
        .SetUS(0x0028, 0x0101, 8)
        .SetUS(0x0028, 0x0102, 7)
        .SetUS(0x0028, 0x0103, 0)
        .Set(0x7FE0, 0x0010, "OB", pixels);
}

class PgtoolImage : public testing::Test {
  protected:
    Finished Image(const InstanceFile& file, std::vector<std::string> options) {
        const std::string path = files_.Write("image", file.Data());
        options.insert(options.begin(), {"image", path, "-o", output_});
        return Pgtool(options);
    }

    TempDir files_;
    const std::string output_ = files_.Path("out.png");
};

TEST_F(PgtoolImage, WritesTheFrameAsAPicture) {
    const std::string pixels("\x00\x01\x02\x7F\xFE\xFF", 6);
    const Finished run = Image(Gray(pixels), {});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    const Picture picture = ReadPng(output_);
    EXPECT_EQ(picture.width, 3u);
    EXPECT_EQ(picture.height, 2u);
    EXPECT_EQ(picture.pixels, (std::vector<uint8_t>{0, 1, 2, 127, 254, 255}));
}

TEST_F(PgtoolImage, FramesCountFromOne) {
    const std::string pixels("\x00\x00\x00\x00\x00\xFF\xFF\x00\x00\x00\x00\x00", 12);
    EXPECT_EQ(Image(Gray(pixels), {"--frame", "2"}).exitStatus, 0);
    EXPECT_EQ(ReadPng(output_).pixels, (std::vector<uint8_t>{255, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Image(Gray(pixels), {"--frame", "0"}).exitStatus, 2);
    const Finished none = Image(Gray(pixels), {"--frame", "3"});
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_THAT(none.err, HasSubstr("it has 2 frames"));
}

TEST_F(PgtoolImage, ScalesTheLongerSide) {
    EXPECT_EQ(Image(Gray(std::string("\x00\x01\x02\x7F\xFE\xFF", 6)), {"--size", "9"}).exitStatus,
              0);
    const Picture picture = ReadPng(output_);
    EXPECT_EQ(picture.width, 9u);
    EXPECT_EQ(picture.height, 6u);
    EXPECT_EQ(picture.pixels.front(), 0);
    EXPECT_EQ(picture.pixels.back(), 255);
}

TEST_F(PgtoolImage, SaysWhyThereIsNoPicture) {
    const std::string former = "former";
    files_.Write("out.png", former);
    EXPECT_THAT(Image(Instance(1), {}).err, HasSubstr("no image"));
    InstanceFile colour = Gray(std::string(18, 'x')).SetUS(0x0028, 0x0002, 3);
    colour.Set(0x0028, 0x0004, "CS", "RGB").Set(0x0028, 0x0008, "IS", "1");
    EXPECT_THAT(Image(colour, {}).err, HasSubstr("no grayscale image"));
    EXPECT_THAT(Image(Gray("abcdef").Set(0x7FE0, 0x0010, "OB", "abcd"), {}).err,
                HasSubstr("does not hold the whole frame"));
    const Bytes kept = ReadFile(output_);
    EXPECT_EQ(std::string(kept.begin(), kept.end()), former);
    EXPECT_EQ(Pgtool({"image", "x"}).exitStatus, 2);
    EXPECT_EQ(Pgtool({"image", "-o", output_}).exitStatus, 2);
}

}  // namespace
