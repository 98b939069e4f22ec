// The C++ layer: how elements and items are named.
#include "data_set/opened.h"

namespace {

using namespace pgkit_test;

StreamBuilder WithSeries() {
    StreamBuilder stream = Part10Stream();
    stream.Sequence(0x0008, 0x1115)
        .Item()
        .Element(0x0020, 0x000E, "UI", "1.2")
        .EndItem()
        .Item()
        .Sequence(0x0008, 0x114A)
        .Item()
        .Element(0x0008, 0x1155, "UI", "1.5")
        .EndItem()
        .EndSequence()
        .EndItem()
        .EndSequence()
        .Element(0x0010, 0x0010, "PN", "DOE^");
    return stream;
}

TEST(DataSetPaths, NameElementsInEitherSpellingAndByNumbers) {
    Opened file(WithSeries());
    for (const char* const path :
         {"PatientName", "PatientsName", "patientname", "0010,0010", "(0010,0010)", "00100010"})
        EXPECT_EQ(file->find(path).text(), "DOE^") << path;
    EXPECT_EQ(file->find({0x0010, 0x0010}).text(), "DOE^");
    EXPECT_EQ(file->find(pgkit::tag{0x0010, 0x0010}).text(), "DOE^");
    EXPECT_EQ(file->find(std::string("PatientName")).text(), "DOE^");
    EXPECT_EQ(file->find(std::string_view("PatientName^").substr(0, 11)).text(), "DOE^");
}

TEST(DataSetPaths, LeadThroughItemsCountedFromZero) {
    Opened file(WithSeries());
    EXPECT_EQ(file->find("ReferencedSeriesSequence[0].SeriesInstanceUID").text(), "1.2");
    EXPECT_EQ(file->find("0008,1115[1].(0008,114A)[0].00081155").text(), "1.5");
    EXPECT_TRUE(file->contains("ReferencedSeriesSequence"));
    EXPECT_TRUE(file->find_item("ReferencedSeriesSequence[1].ReferencedInstanceSequence[0]"));
    EXPECT_EQ(file->find_item("ReferencedSeriesSequence[0]").find("SeriesInstanceUID").text(),
              "1.2");
}

TEST(DataSetPaths, ThatLeadNowhereFindNothing) {
    Opened file(WithSeries());
    for (const char* const path : {"",
                                   ".",
                                   "NoSuchName",
                                   "PatientName.",
                                   ".PatientName",
                                   "PatientName ",
                                   "PatientName[0]",
                                   "PatientName.SeriesInstanceUID",
                                   "PatientName[0].SeriesInstanceUID",
                                   "ReferencedSeriesSequence.SeriesInstanceUID",
                                   "ReferencedSeriesSequence[0]",
                                   "ReferencedSeriesSequence[2].SeriesInstanceUID",
                                   "ReferencedSeriesSequence[].SeriesInstanceUID",
                                   "ReferencedSeriesSequence[-1].SeriesInstanceUID",
                                   "ReferencedSeriesSequence[0x0].SeriesInstanceUID",
                                   "ReferencedSeriesSequence[9999999999].SeriesInstanceUID",
                                   "ReferencedSeriesSequence[0]..SeriesInstanceUID",
                                   "ReferencedSeriesSequence0].SeriesInstanceUID",
                                   "ReferencedSeriesSequence[0.SeriesInstanceUID",
                                   "0010,001",
                                   "0010,00100"})
        EXPECT_FALSE(file->find(path)) << path;
    EXPECT_FALSE(file->find(std::string(1000, 'x')));
    EXPECT_FALSE(file->find(std::string("PatientName\0", 12)));
    EXPECT_FALSE(file->find(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(file->find_item("ReferencedSeriesSequence"));
    EXPECT_FALSE(file->find_item("ReferencedSeriesSequence[2]"));
    EXPECT_FALSE(file->find_item({0x0008, 0x1115}));
    EXPECT_FALSE(file->find_item("ReferencedSeriesSequence[0]."));
}

TEST(DataSetPaths, OfTagsAreTexts) {
    EXPECT_EQ(pgkit::tag::named("PixelData"), (pgkit::tag{0x7FE0, 0x0010}));
    EXPECT_EQ(pgkit::tag::named("Pixel Data"), std::nullopt);
    EXPECT_EQ((pgkit::tag{0xABCD, 0x00EF}).text(), "(ABCD,00EF)");
    EXPECT_EQ((pgkit::tag{0x7FE0, 0x0010}).keyword(), "PixelData");
    EXPECT_EQ((pgkit::tag{0x0009, 0x0010}).keyword(), "");
    EXPECT_TRUE((pgkit::tag{0x0008, 0x0018} < pgkit::tag{0x0010, 0x0010}));
    EXPECT_TRUE((pgkit::tag{0x0010, 0x0010} < pgkit::tag{0x0010, 0x0020}));
}

}  // namespace
