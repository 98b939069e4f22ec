// The C++ layer: hierarchies of DICOMDIR files.
#include <gmock/gmock.h>

#include "data_set/opened.h"
#include "support/directory_builder.h"

namespace {

using namespace pgkit_test;
using testing::EndsWith;

constexpr pgkit::failure kNoDicomdir = pgkit::failure::not_a_data_set;

// Two patients, the first with a study of two images.
DirectoryBuilder Disc() {
    DirectoryBuilder disc;
    const size_t patient = disc.Patient("4711", "M\xFCller^Eva");
    disc[patient].Set(0x0008, 0x0005, "CS", "ISO_IR 100").Set(0x0010, 0x0030, "DA", "19700102");
    const size_t study = disc.Study(patient, "1.2");
    disc[study].Set(0x0008, 0x0005, "CS", "ISO_IR 192").Set(0x0008, 0x1030, "LO", "Schädel");
    disc[study].Set(0x0008, 0x0020, "DA", "20010203").Set(0x0020, 0x0010, "SH", "S1");
    const size_t series = disc.Series(study, "1.2.3", "CT");
    disc[series].Set(0x0020, 0x0011, "IS", "7");
    disc.Image(series, "1.2.3.5", 2, "IMG\\X2");
    disc.Image(series, "1.2.3.4", 1, "IMG\\X1");
    const size_t other = disc.Patient("4712", "DOE^JOHN");
    disc.Image(disc.Series(disc.Study(other, "1.3"), "1.3.1", "MR"), "1.3.1.1", 1, "IMG\\X3");
    return disc;
}

TEST(DataSetDirectory, IsRangesWithinRanges) {
    const TempDir directory;
    const auto disc = pgkit::directory::open(directory.Write("DICOMDIR", Disc().Build()));
    ASSERT_TRUE(disc) << disc.error().message;
    std::string all;
    for (const pgkit::patient patient : disc->patients()) {
        all += patient.id() + " " + patient.name() + "\n";
        for (const pgkit::study study : patient.studies())
            for (const pgkit::series series : study.series())
                for (const pgkit::leaf leaf : series.leaves())
                    all += study.uid() + " " + series.modality() + " " +
                           std::to_string(leaf.number()) + " " + leaf.instance_uid() + "\n";
    }
    EXPECT_EQ(all,
              "4711 Müller^Eva\n1.2 CT 1 1.2.3.4\n1.2 CT 2 1.2.3.5\n"
              "4712 DOE^JOHN\n1.3 MR 1 1.3.1.1\n");
}

TEST(DataSetDirectory, TextsAreUtf8ByTheirRecords) {
    const TempDir directory;
    const auto disc = pgkit::directory::open(directory.Write("DICOMDIR", Disc().Build()));
    const pgkit::patient patient = *disc->patients().begin();
    EXPECT_EQ(patient.name(), "Müller^Eva");
    EXPECT_EQ(patient.birth_date(), "19700102");
    EXPECT_EQ(patient.sex(), "");
    const pgkit::study study = *patient.studies().begin();
    EXPECT_EQ(study.description(), "Schädel");
    EXPECT_EQ(study.date(), "20010203");
    EXPECT_EQ(study.id(), "S1");
    EXPECT_EQ(study.modality(), "CT");
    const pgkit::series series = *study.series().begin();
    EXPECT_EQ(series.uid(), "1.2.3");
    EXPECT_EQ(series.number(), "7");
    EXPECT_EQ(series.leaves().size(), 2u);
    const pgkit::leaf leaf = *series.leaves().begin();
    EXPECT_EQ(leaf.type(), int32_t{PG_LEAF_IMAGE});
    EXPECT_EQ(leaf.record_type(), "IMAGE");
    EXPECT_THAT(leaf.path(), EndsWith("\\IMG\\X1"));
    // The rest is in the records.
    EXPECT_EQ(patient.record().find("PatientName").text(), "Müller^Eva");
    EXPECT_EQ(leaf.record().find("ReferencedFileID").texts(),
              (std::vector<std::string>{"IMG", "X1"}));
}

TEST(DataSetDirectory, EmptyHandlesHaveNothing) {
    EXPECT_FALSE(pgkit::patient());
    EXPECT_EQ(pgkit::patient().name(), "");
    EXPECT_TRUE(pgkit::patient().studies().empty());
    EXPECT_EQ(pgkit::study().description(), "");
    EXPECT_TRUE(pgkit::study().series().empty());
    EXPECT_EQ(pgkit::series().modality(), "");
    EXPECT_TRUE(pgkit::series().leaves().empty());
    EXPECT_EQ(pgkit::leaf().path(), "");
    EXPECT_EQ(pgkit::leaf().rows(), 0);
    EXPECT_FALSE(pgkit::leaf().record());
    EXPECT_TRUE(pgkit::directory().patients().empty());
}

TEST(DataSetDirectory, HandlesStayValidWhenItIsMoved) {
    const TempDir directory;
    auto opened = pgkit::directory::open(directory.Write("DICOMDIR", Disc().Build()));
    const pgkit::patient patient = *opened->patients().begin();
    pgkit::directory moved = *std::move(opened);
    EXPECT_EQ(patient.id(), "4711");
    EXPECT_TRUE(opened->patients().empty());  // NOLINT(bugprone-use-after-move)
    moved = pgkit::directory();
    EXPECT_TRUE(std::filesystem::remove(directory.Path("DICOMDIR")));
}

TEST(DataSetDirectory, WhatIsNoDicomdirIsAnErrorAndNothingIsPrinted) {
    const TempDir directory;
    const std::string missing = directory.Path("DICOMDIR");
    testing::internal::CaptureStdout();
    const auto none = pgkit::directory::open(missing);
    EXPECT_EQ(none.error().message, "cannot read " + missing + ": no such file");
    EXPECT_EQ(none.error().kind, pgkit::failure::no_such_file);
    EXPECT_TRUE(none->patients().empty());
    const std::string image = TestData("native/mr_implicit_le.dcm");
    EXPECT_EQ(pgkit::directory::open(image).error().message,
              "cannot read " + image + ": it is no DICOMDIR");
    EXPECT_EQ(pgkit::directory::open(directory.Write("short", "x")).error().kind, kNoDicomdir);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(DataSetDirectory, CirclesEnd) {
    const TempDir directory;
    DirectoryBuilder disc = Disc();
    disc[0].next = 0;
    testing::internal::CaptureStdout();
    const auto opened = pgkit::directory::open(directory.Write("DICOMDIR", disc.Build()));
    testing::internal::GetCapturedStdout();
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->patients().size(), 1u);
}

}  // namespace
