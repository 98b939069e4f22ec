// The programs of docs/data_set.md, which quotes them from here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <string>
#include <vector>

#include "data_set/opened.h"
#include "support/directory_builder.h"

// Whom an image shows, how large it is, and what it was made for.
std::string Summary(const std::string& path) {
    const auto image = pgkit::data_set::open(path);
    if (!image) return image.error().message;
    std::string text = image->find("PatientName").text();
    if (const auto rows = image->find("Rows").number<int>())
        text += ", " + std::to_string(*rows) + " rows";
    const std::string procedure =
        image->find("RequestAttributesSequence[0].RequestedProcedureDescription").text();
    return procedure.empty() ? text : text + ": " + procedure;
}

// The UIDs of all instances that a report refers to, however deep.
std::vector<std::string> ReferencedInstances(const pgkit::item& report) {
    std::vector<std::string> uids;
    pgkit::walk(report, [&](const pgkit::element& element) {
        if (element.tag() == pgkit::tag{0x0008, 0x1155}) uids.push_back(element.text());
    });
    return uids;
}

// The patient gets another name, and nobody learns a telephone number.
pgkit::result<void> Rename(const std::string& path, const std::string& name) {
    auto image = pgkit::data_set::open(path);
    if (!image) return image.error();
    pgkit::result<void> done = image->set_text("PatientName", name);
    pgkit::walk(*image, [](const pgkit::element& element) {
        const bool isTelephone = element.name().find("TelephoneNumbers") != std::string::npos;
        return isTelephone ? pgkit::visit::remove : pgkit::visit::go_on;
    });
    if (done) done &= image->save(path);
    return done;
}

// An image of two pixels, from nothing.
pgkit::result<void> MakeImage(const std::string& path) {
    pgkit::data_set image = pgkit::data_set::create();
    pgkit::result<void> done;
    done &= image.set_text("SpecificCharacterSet", "ISO_IR 192");
    done &= image.set_text("SOPClassUID", "1.2.840.10008.5.1.4.1.1.7");
    done &= image.set_text("SOPInstanceUID", "2.25.20861");
    done &= image.set_text("PatientName", "Müller^Eva");
    done &= image.set_texts("ImageType", {"DERIVED", "SECONDARY"});
    done &= image.set_numbers("PixelSpacing", {0.5, 0.5});
    done &= image.set_text("AnatomicRegionSequence[0].CodeMeaning", "Kopf");
    done &= image.set_number("SamplesPerPixel", 1);
    done &= image.set_number("Rows", 1);
    done &= image.set_number("Columns", 2);
    done &= image.set_number("BitsAllocated", 8);  // before the pixels, which then are bytes
    const std::uint8_t pixels[] = {0, 255};
    done &= image.set_bytes("PixelData", pixels, sizeof pixels);
    if (done) done &= image.save(path);
    return done;
}

// The brightest byte of each frame.
std::vector<int> Brightest(const pgkit::item& image) {
    std::vector<int> brightest;
    std::vector<std::uint8_t> room;  // where frames go that are not in memory
    for (const pgkit::frame frame : image.frames()) {
        int most = 0;
        for (const std::uint8_t byte : frame.bytes(room))
            if (byte > most) most = byte;
        brightest.push_back(most);
    }
    return brightest;
}

// One line for each series of a disc.
std::string Contents(const std::string& dicomdir) {
    const auto disc = pgkit::directory::open(dicomdir);
    if (!disc) return disc.error().message;
    std::string lines;
    for (const pgkit::patient patient : disc->patients())
        for (const pgkit::study study : patient.studies())
            for (const pgkit::series series : study.series())
                lines += patient.name() + ", " + study.date() + ", " + series.modality() + ": " +
                         std::to_string(series.leaves().size()) + "\n";
    return lines;
}

namespace {

using namespace pgkit_test;
using testing::ElementsAre;

TEST(DataSetGuide, LooksIntoAFile) {
    const TempDir directory;
    StreamBuilder stream = Part10Stream();
    stream.Element(0x0010, 0x0010, "PN", "DOE^")
        .ElementUS(0x0028, 0x0010, 64)
        .Sequence(0x0040, 0x0275)
        .Item()
        .Element(0x0032, 0x1060, "LO", "MR HEAD ")
        .EndItem()
        .EndSequence();
    EXPECT_EQ(Summary(directory.Write("image", stream.Data())), "DOE^, 64 rows: MR HEAD");
    const std::string missing = directory.Path("missing");
    EXPECT_EQ(Summary(missing), "cannot read " + missing + ": no such file");
}

TEST(DataSetGuide, WalksThroughAReport) {
    pgkit::data_set made = pgkit::data_set::create();
    for (const char* const path : {"ReferencedImageSequence[0].ReferencedSOPInstanceUID",
                                   "ContentSequence[0].ContentSequence[0]."
                                   "ReferencedSOPSequence[0].ReferencedSOPInstanceUID"})
        ASSERT_TRUE(made.set_text(path, "1.2.3"));
    EXPECT_THAT(ReferencedInstances(made), ElementsAre("1.2.3", "1.2.3"));
}

TEST(DataSetGuide, ChangesAFile) {
    const TempDir directory;
    StreamBuilder stream = Part10Stream();
    stream.Element(0x0010, 0x0010, "PN", "DOE^").Element(0x0010, 0x2154, "SH", "555 ");
    const std::string path = directory.Write("image", stream.Data());
    ASSERT_TRUE(Rename(path, "NEW^NAME"));
    const auto image = pgkit::data_set::open(path);
    EXPECT_EQ(image->find("PatientName").text(), "NEW^NAME");
    EXPECT_FALSE(image->contains("PatientTelephoneNumbers"));
    EXPECT_EQ(Rename(path, "Мозг").error().kind, pgkit::failure::not_expressible);
    EXPECT_EQ(Rename(directory.Path("missing"), "x").error().kind, pgkit::failure::no_such_file);
}

TEST(DataSetGuide, MakesAnImageAndLooksAtItsFrames) {
    const TempDir directory;
    const std::string path = directory.Path("image");
    const auto made = MakeImage(path);
    ASSERT_TRUE(made) << made.error().message;
    const auto image = pgkit::data_set::open(path);
    EXPECT_EQ(image->find("PatientName").text(), "Müller^Eva");
    EXPECT_EQ(image->find("AnatomicRegionSequence[0].CodeMeaning").text(), "Kopf");
    EXPECT_THAT(Brightest(*image), ElementsAre(255));
}

TEST(DataSetGuide, ListsADisc) {
    const TempDir directory;
    DirectoryBuilder disc;
    const size_t study = disc.Study(disc.Patient("ID", "DOE^"), "1.2");
    disc[study].Set(0x0008, 0x0020, "DA", "20010203");
    disc.Image(disc.Series(study, "1.2.3", "CT"), "1.2.3.4", 1, "IMG");
    EXPECT_EQ(Contents(directory.Write("DICOMDIR", disc.Build())), "DOE^, 20010203, CT: 1\n");
}

}  // namespace
