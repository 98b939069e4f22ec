// Icons of images and series in DICOMDIRs, from images of every shape.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "dicomdir/create/medium.h"
#include "support/captured.h"
#include "support/patient_list.h"
#include "support/save_modes.h"

namespace {

using namespace pgkit_test;

// 8-bit pixels that a window leaves as they are.
InstanceFile Image(int number, uint16_t columns, uint16_t rows, const Bytes& pixels) {
    return Instance(number)
        .SetUS(0x0028, 0x0002, 1)
        .SetUS(0x0028, 0x0010, rows)
        .SetUS(0x0028, 0x0011, columns)
        .SetUS(0x0028, 0x0100, 8)
        .SetUS(0x0028, 0x0101, 8)
        .SetUS(0x0028, 0x0102, 7)
        .SetUS(0x0028, 0x0103, 0)
        .Set(0x0028, 0x1050, "DS", "128")
        .Set(0x0028, 0x1051, "DS", "256")
        .Set(0x7FE0, 0x0010, "OB", std::string(pixels.begin(), pixels.end()));
}

InstanceFile PlainImage(int number, uint16_t columns, uint16_t rows, uint8_t gray = 100) {
    return Image(number, columns, rows, Bytes(size_t{columns} * rows, gray));
}

// Two pixels for each frame, whose gray is the frame's number.
InstanceFile Frames(uint32_t count) {
    Bytes pixels;
    for (uint32_t frame = 0; frame < count; ++frame)
        pixels.insert(pixels.end(), 2, static_cast<uint8_t>(frame));
    return Image(1, 2, 1, pixels).Set(0x0028, 0x0008, "IS", std::to_string(count));
}

InstanceFile ColourImage(int number) {
    return Image(number, 4, 4, Bytes(48, 9))
        .SetUS(0x0028, 0x0002, 3)
        .Set(0x0028, 0x0004, "CS", "RGB")
        .SetUS(0x0028, 0x0006, 0);
}

class IconCreation : public testing::Test {
  protected:
    IconCreation() {
        options_.iconSize = 64;
        options_.flags = PG_DICOMDIR_NO_LIST;
    }

    DataSet Create() {
        uint32_t result = 1;
        const Printed printed = CapturePrinted([&] {
            result =
                pgCreateDicomdirEx(medium_.Directory().c_str(), "", &options_, nullptr, nullptr);
        });
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(printed.out + printed.err, "");
        return medium_.Open();
    }

    // The size of the icon of a medium's only image.
    std::string SizeOf(const InstanceFile& image) {
        medium_.Write("IMAGE", image);
        return IconSize(ImageRecord(Create().get(), "IMAGE"));
    }
    Bytes PixelsOf(const InstanceFile& image) {
        medium_.Write("IMAGE", image);
        return IconPixels(ImageRecord(Create().get(), "IMAGE"));
    }

    PGX_Node* SeriesRecord(PGX_Node* dicomdir) { return RecordsOf(dicomdir).at(2); }

    Medium medium_;
    PgDicomdirOptions options_ = {};
};

TEST_F(IconCreation, FitsTheImageIntoTheSquare) {
    EXPECT_EQ(SizeOf(PlainImage(1, 512, 256)), "64x32");
    EXPECT_EQ(SizeOf(PlainImage(1, 256, 512)), "32x64");
    EXPECT_EQ(SizeOf(PlainImage(1, 128, 128)), "64x64");
    EXPECT_EQ(SizeOf(PlainImage(1, 2, 1)), "64x32");
}

// Used to round the height down, and the width that followed from it once more.
TEST_F(IconCreation, RoundsTheShorterSideToTheNearestPixel) {
    EXPECT_EQ(SizeOf(PlainImage(1, 512, 300)), "64x38");
    EXPECT_EQ(SizeOf(PlainImage(1, 300, 512)), "38x64");
    EXPECT_EQ(SizeOf(PlainImage(1, 300, 200)), "64x43");
    EXPECT_EQ(SizeOf(PlainImage(1, 300, 199)), "64x42");
    EXPECT_EQ(SizeOf(PlainImage(1, 100, 101)), "63x64");
}

// Used to make none when the height would have been rounded down to 0.
TEST_F(IconCreation, NoSideIsShorterThanAPixel) {
    EXPECT_EQ(SizeOf(PlainImage(1, 128, 1)), "64x1");
    EXPECT_EQ(SizeOf(PlainImage(1, 1000, 3)), "64x1");
    EXPECT_EQ(SizeOf(PlainImage(1, 3, 1000)), "1x64");
    EXPECT_EQ(SizeOf(PlainImage(1, 64, 1)), "64x1");
    EXPECT_EQ(SizeOf(PlainImage(1, 1, 128)), "1x64");
}

TEST_F(IconCreation, MakesNoneUnasked) {
    options_.iconSize = 0;
    options_.seriesIcons = 1;
    medium_.Write("IMAGE", PlainImage(1, 8, 8));
    const DataSet root = Create();
    EXPECT_EQ(IconOf(ImageRecord(root.get(), "IMAGE")), nullptr);
    EXPECT_EQ(IconOf(SeriesRecord(root.get())), nullptr);
}

TEST_F(IconCreation, MakesNoneOfMoreThan256Pixels) {
    options_.iconSize = 256;
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8)), "256x256");
    for (const uint32_t size : {257u, 300u, 0xFFFFFFFFu}) {
        options_.iconSize = size;
        EXPECT_EQ(SizeOf(PlainImage(1, 8, 8)), "none");
    }
}

TEST_F(IconCreation, WritesTheItemOfAnIcon) {
    options_.iconSize = 4;
    medium_.Write("IMAGE", Image(1, 4, 2, {0, 50, 100, 150, 10, 60, 110, 255}));
    const DataSet root = Create();
    PGX_Node* const record = ImageRecord(root.get(), "IMAGE");
    EXPECT_EQ(Tags(record),
              "0004,1400 0004,1410 0004,1420 0004,1430 0004,1500 0004,1510 0004,1511 0004,1512 "
              "0008,0005 0008,0008 0020,0013 0028,0008 0028,0010 0028,0011 0088,0200");
    PGX_Node* const icon = IconOf(record);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->next, nullptr);
    EXPECT_EQ(Describe(icon),
              "[(0028,0002)US:2 (0028,0004)CS:12 (0028,0010)US:2 (0028,0011)US:2 (0028,0100)US:2 "
              "(0028,0101)US:2 (0028,0102)US:2 (0028,0103)US:2 (7FE0,0010)OB:8]");
    const auto number = [&](uint16_t element) {
        return Child(icon, 0x0028, element)->GetUSValue();
    };
    EXPECT_EQ(TextOf(Child(icon, 0x0028, 0x0004)), "MONOCHROME2 ");
    EXPECT_EQ(number(0x0002), 1);
    EXPECT_EQ(number(0x0010), 2);
    EXPECT_EQ(number(0x0011), 4);
    EXPECT_EQ(number(0x0100), 8);
    EXPECT_EQ(number(0x0101), 8);
    EXPECT_EQ(number(0x0102), 7);
    EXPECT_EQ(number(0x0103), 0);
    EXPECT_EQ(IconPixels(record), (Bytes{0, 50, 100, 150, 10, 60, 110, 255}));
}

TEST_F(IconCreation, WritesRowsWithoutPaddingFromTheTopDown) {
    options_.iconSize = 3;
    EXPECT_EQ(PixelsOf(Image(1, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9})),
              (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 0}));
}

TEST_F(IconCreation, ShowsTheImageReduced) {
    options_.iconSize = 2;
    EXPECT_EQ(PixelsOf(Image(1, 4, 2, {0, 20, 100, 100, 20, 40, 100, 140})), (Bytes{20, 110}));
}

TEST_F(IconCreation, TakesTheFrameAThirdIntoTheImage) {
    options_.iconSize = 2;
    EXPECT_EQ(PixelsOf(Frames(1)), (Bytes{0, 0}));
    EXPECT_EQ(PixelsOf(Frames(2)), (Bytes{0, 0}));
    EXPECT_EQ(PixelsOf(Frames(3)), (Bytes{1, 1}));
    EXPECT_EQ(PixelsOf(Frames(30)), (Bytes{10, 10}));
}

TEST_F(IconCreation, CountsFramesIn16Bits) {
    options_.iconSize = 2;
    EXPECT_EQ(PixelsOf(Frames(0x10000 + 21)), (Bytes{7, 7}));
}

TEST_F(IconCreation, MakesNoneOfColourImages) {
    medium_.Write("IMAGE", ColourImage(1));
    const DataSet root = Create();
    PGX_Node* const record = ImageRecord(root.get(), "IMAGE");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->FindNode(0x0088, 0x0200), nullptr);
}

TEST_F(IconCreation, MakesNoneWithoutPixelsThatTheModuleReads) {
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8).Remove(0x7FE0, 0x0010)), "none");
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8).SetUS(0x0028, 0x0010, 9)), "none");
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8).SetUS(0x0028, 0x0011, 0)), "none");
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8)), "64x64");
}

TEST_F(IconCreation, MakesIconsOfRealImagesThatTheModuleReads) {
    medium_.Write("RLE", ReadFile(TestData("encapsulated/rtdose_rle_15frames_no_bot.dcm")));
    medium_.Write("J2K",
                  ReadFile(TestData("encapsulated/nm_j2k_delimiter_bytes_inside_fragment.dcm")));
    medium_.Write("MR", ReadFile(TestData("native/mr_explicit_be.dcm")));
    const DataSet root = Create();
    EXPECT_EQ(IconSize(ImageRecord(root.get(), "RLE")), "64x64");
    EXPECT_EQ(IconSize(ImageRecord(root.get(), "J2K")), "none");
    EXPECT_EQ(IconSize(ImageRecord(root.get(), "MR")), "64x64");
}

TEST_F(IconCreation, GivesIconsToImagesAlone) {
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8).SopClass("1.2.840.10008.5.1.4.1.1.66")), "none");
    EXPECT_EQ(SizeOf(PlainImage(1, 8, 8).SopClass("1.2.840.10008.5.1.4.1.1.481.2")), "64x64");
}

TEST_F(IconCreation, ReadsFilesInSubdirectories) {
    medium_.Write("SUB/DEEP/image.dcm", PlainImage(1, 8, 8));
    EXPECT_EQ(IconSize(ImageRecord(Create().get(), "SUB\\DEEP\\image.dcm")), "64x64");
}

TEST_F(IconCreation, GivesSeriesNoneUnasked) {
    medium_.Write("IMAGE", PlainImage(1, 8, 8));
    EXPECT_EQ(IconOf(SeriesRecord(Create().get())), nullptr);
}

TEST_F(IconCreation, GivesSeriesTheIconOfTheFirstImageAddedOnDemand) {
    options_.iconSize = 2;
    options_.seriesIcons = 1;
    medium_.Write("A", PlainImage(5, 2, 2, 50));
    medium_.Write("B", PlainImage(1, 2, 2, 10));
    const DataSet root = Create();
    EXPECT_EQ(IconPixels(SeriesRecord(root.get())), Bytes(4, 50));
    EXPECT_EQ(Describe(IconOf(SeriesRecord(root.get()))),
              Describe(IconOf(ImageRecord(root.get(), "A"))));
    EXPECT_EQ(IconPixels(ImageRecord(root.get(), "B")), Bytes(4, 10));
}

TEST_F(IconCreation, PassesOverImagesWithoutIconForTheSeries) {
    options_.iconSize = 2;
    options_.seriesIcons = 1;
    medium_.Write("A", ColourImage(1));
    medium_.Write("B", PlainImage(2, 2, 2, 70));
    const DataSet root = Create();
    EXPECT_EQ(IconPixels(SeriesRecord(root.get())), Bytes(4, 70));
}

TEST_F(IconCreation, GivesEverySeriesItsOwn) {
    options_.iconSize = 2;
    options_.seriesIcons = 1;
    medium_.Write("A", PlainImage(1, 2, 2, 50));
    medium_.Write("B", PlainImage(2, 2, 2, 60).Series("1.2.3.5").Set(0x0020, 0x0011, "IS", "2"));
    const DataSet root = Create();
    std::vector<Bytes> icons;
    for (PGX_Node* record : RecordsOf(root.get())) {
        if (TextOf(Child(record, 0x0004, 0x1430)) == "SERIES") icons.push_back(IconPixels(record));
    }
    EXPECT_EQ(icons, (std::vector<Bytes>{Bytes(4, 50), Bytes(4, 60)}));
}

// A DICOMDIR written from the hierarchy of another one.
class IconsOfAnotherDicomdir : public IconCreation {
  protected:
    // Photometric interpretation of all icons.
    void Turn(PGX_Node* dicomdir, const char* interpretation) {
        for (PGX_Node* record : RecordsOf(dicomdir)) {
            if (PGX_Node* const icon = IconOf(record)) {
                icon->AddOrReplaceNode(0x0028, 0x0004, interpretation,
                                       static_cast<uint32_t>(std::strlen(interpretation)));
            }
        }
        EXPECT_EQ(dicomdir->SaveDataSetAsEx(medium_.Path("DICOMDIR").c_str(), kPart10Explicit), 0u);
    }

    DataSet Rebuild() {
        PatientList patients;
        CapturePrinted(
            [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
        EXPECT_NE(patients, nullptr);
        std::filesystem::create_directory(medium_.Path("AGAIN"));
        EXPECT_EQ(pgBuildDicomdir(patients.get(), medium_.Path("AGAIN").c_str()), 0u);
        return DataSet(pgOpenDataSetFile(medium_.Path("AGAIN/DICOMDIR").c_str(), kLoadAll));
    }
};

TEST_F(IconsOfAnotherDicomdir, AreKept) {
    options_.iconSize = 3;
    options_.seriesIcons = 1;
    medium_.Write("A", Image(1, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}));
    medium_.Write("B", PlainImage(2, 3, 1, 9));
    medium_.Write("C", ColourImage(3));
    const DataSet first = Create();
    const DataSet second = Rebuild();
    EXPECT_EQ(Describe(second.get()), Describe(first.get()));
    EXPECT_EQ(IconPixels(ImageRecord(second.get(), "A")), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 0}));
    EXPECT_EQ(IconPixels(ImageRecord(second.get(), "B")), (Bytes{9, 9, 9, 0}));
    EXPECT_EQ(IconPixels(SeriesRecord(second.get())), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 0}));
}

TEST_F(IconsOfAnotherDicomdir, BecomeMonochrome2) {
    options_.iconSize = 2;
    medium_.Write("A", Image(1, 2, 2, {0, 55, 200, 255}));
    Turn(Create().get(), "MONOCHROME1");
    const DataSet root = Rebuild();
    EXPECT_EQ(TextOf(Child(IconOf(ImageRecord(root.get(), "A")), 0x0028, 0x0004)), "MONOCHROME2 ");
    EXPECT_EQ(IconPixels(ImageRecord(root.get(), "A")), (Bytes{255, 200, 55, 0}));
}

TEST_F(IconsOfAnotherDicomdir, AreDroppedWhenTheyAreInColours) {
    options_.iconSize = 3;
    medium_.Write("A", PlainImage(1, 3, 3));
    const DataSet first = Create();
    PGX_Node* const icon = IconOf(ImageRecord(first.get(), "A"));
    const Bytes colours(27, 1);
    icon->AddOrReplaceNode(0x7FE0, 0x0010, colours.data(), 27);
    Turn(first.get(), "RGB");
    EXPECT_EQ(ImageRecord(Rebuild().get(), "A")->FindNode(0x0088, 0x0200), nullptr);
}

}  // namespace
