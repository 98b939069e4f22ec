// Directories whose links run in circles or share records, and files that are cut or empty.
#include <gtest/gtest.h>

#include <string>

#include "support/browsed_directory.h"
#include "support/cost.h"
#include "support/directory_builder.h"
#include "support/stream_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::Bytes;
using pgkit_test::DirectoryBuilder;
using pgkit_test::DirectoryRecordSpec;
using pgkit_test::StreamBuilder;

// Records: 0 patient P, 1 study S, 2 series E, 3 and 4 images.
DirectoryBuilder OnePatient() {
    DirectoryBuilder directory;
    const size_t series =
        directory.Series(directory.Study(directory.Patient("P", "DOE"), "S"), "E", "CT");
    directory.Image(series, "1", 1);
    directory.Image(series, "2", 2);
    return directory;
}

TEST(Circles, OfOneImageEndTheChain) {
    DirectoryBuilder directory = OnePatient();
    directory[4].next = 4;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 2)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(Circles, OfSeveralImagesEndTheChain) {
    DirectoryBuilder directory = OnePatient();
    directory[4].next = 3;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 2)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(Circles, OfThePatientsStudiesAndSeriesEndTheirChains) {
    DirectoryBuilder directory = OnePatient();
    directory[0].next = 0;
    directory[1].next = 1;
    directory[2].next = 2;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 2)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(Circles, DownwardsEndAtTheLeaves) {
    DirectoryBuilder directory = OnePatient();
    directory[4].lower = 0;
    directory[3].lower = 3;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 2)))");
}

// Each level reads the same record as its own.
TEST(Circles, OfARecordThatIsItsOwnChildEndToo) {
    DirectoryBuilder directory = OnePatient();
    directory[2].Set(0x0020, 0x000D, "UI", "7");
    directory[2].lower = 2;
    directory[0].lower = 2;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(7(E()))");
    EXPECT_EQ(browsed.Leaf().leafType, PG_LEAF_OTHER);
}

TEST(Circles, BackToAParentReadTheParentAsAChild) {
    DirectoryBuilder directory = OnePatient();
    directory[4].next = 0;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Series().leaves.GetCount(), 3);
    EXPECT_STREQ(browsed.Leaf().recordType, "PATIENT");
}

TEST(SharedRecords, BelongToAllTheirParents) {
    DirectoryBuilder directory = OnePatient();
    const size_t other = directory.Series(1, "F", "CT");
    directory[other].lower = 3;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 2) F(1 2)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(SharedRecords, OfStudiesInTwoPatientsToo) {
    DirectoryBuilder directory = OnePatient();
    directory[directory.Patient("Q", "ROE")].lower = 1;
    EXPECT_EQ(BrowsedDirectory(directory).Outline(), "P(S(E(1 2))) Q(S(E(1 2)))");
}

// count records of each upper level, each with all of the next as its children, and one image,
// which is the last record.
DirectoryBuilder FullyShared(size_t count) {
    DirectoryBuilder directory;
    for (size_t i = 0; i < count; ++i)
        directory.Patient(std::to_string(i), "DOE");
    for (size_t i = 0; i < count; ++i)
        directory.Study(0, std::to_string(i));
    for (size_t i = 0; i < count; ++i)
        directory.Series(count, std::to_string(i), "CT");
    directory.Image(2 * count, "1", 1);
    for (size_t i = 0; i < count; ++i) {
        directory[i].lower = count;
        directory[count + i].lower = 2 * count;
        directory[2 * count + i].lower = 3 * count;
    }
    return directory;
}

TEST(SharedRecords, AreBrowsedInFullWhileTheyAreFew) {
    BrowsedDirectory browsed(FullyShared(10));
    EXPECT_EQ(browsed->leafCount, 1000);
}

// 40 records of each level stand for 64,000 images; 12,100 records are handled, 100 for each one.
TEST(SharedRecords, AreBoundedByTheNumberOfRecords) {
    BrowsedDirectory browsed(FullyShared(40));
    EXPECT_GT(browsed->leafCount, 5000);
    EXPECT_LT(browsed->leafCount, 12100);
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(SharedRecords, ThatAreFewAreHandledTenThousandTimes) {
    const DirectoryBuilder directory = FullyShared(22);  // 10,648 images of 67 records
    BrowsedDirectory browsed(directory);
    EXPECT_GT(browsed->leafCount, 4500);
    EXPECT_LT(browsed->leafCount, 10000);
}

// A large record is shared less often, so that its copies do not use up the memory.
TEST(SharedRecords, ThatAreLargeAreBoundedByTheirSize) {
    DirectoryBuilder directory = FullyShared(20);
    StreamBuilder item;
    item.Item(0xF000).Header(0x0040, 0xA160, "UT", 0xF000 - 12).Zeros(0xF000 - 12);
    std::string content;
    for (int i = 0; i < 17; ++i)
        content.append(item.Data().begin(), item.Data().end());
    directory[60].Set(0x0004, 0x1430, "CS", "SR DOCUMENT").Set(0x0040, 0xA730, "SQ", content);
    BrowsedDirectory browsed(directory);
    EXPECT_GT(browsed->leafCount, 1);
    EXPECT_LT(browsed->leafCount, 100);
}

// The last value of the file claims what is not there; every leaf would have zeros of its own.
TEST(SharedRecords, DoNotCopyWhatALengthMerelyClaims) {
    for (const uint32_t claimed : {8000u, 60'000'000u, 0xF0000000u}) {
        DirectoryBuilder directory = FullyShared(20);
        StreamBuilder item;
        item.Item(0xFFFFFFFF).Header(0x0040, 0xA160, "UT", claimed);
        directory[60]
            .Set(0x0004, 0x1430, "CS", "SR DOCUMENT")
            .Set(0x0040, 0xA043, "SQ", "")
            .Set(0x0040, 0xA730, "SQ", std::string(item.Data().begin(), item.Data().end()));
        BrowsedDirectory browsed(directory.Build(), 0xFFFFFFFF);
        ASSERT_GT(browsed->leafCount, 4000);
        const auto& report = static_cast<PGX_DicomDirReportNode&>(browsed.Leaf());
        EXPECT_NE(report.conceptNameCodeSequence, nullptr);
        EXPECT_EQ(report.contentSequence, nullptr);
    }
}

TEST(BrokenFile, MissingSequence) {
    DirectoryBuilder directory = OnePatient();
    directory.hasSequence = false;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "");
    EXPECT_EQ(browsed.Output(),
              "ResolveDicomdirLinks DICOMDIR parsing error: DirectoryRecordSequence not found\n"
              "DICOMDIR parsing error: DirectoryRecordSequence not found\n");
}

TEST(BrokenFile, OfTwoSequencesTheFirstCounts) {
    const DirectoryBuilder directory = OnePatient();
    Bytes file = directory.Build();
    StreamBuilder second;
    second.Sequence(0x0004, 0x1220).Item(12).ElementUL(0x0004, 0x1400, 0).EndSequence();
    file.insert(file.end(), second.Data().begin(), second.Data().end());
    EXPECT_EQ(BrowsedDirectory(file).Outline(), "P(S(E(1 2)))");
}

TEST(BrokenFile, SequenceThatIsNone) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1")
        .ElementUL(0x0004, 0x1200, 100)
        .Element(0x0004, 0x1220, "OB", "not a sequence");
    BrowsedDirectory browsed(stream.Data());
    EXPECT_EQ(browsed.Outline(), "");
    EXPECT_EQ(browsed.Output(),
              "DICOMDIR parsing error: First patient not found (firstPatientOffset + 8 = 108)\n");
}

// Chains that lead from level to level through each other's records.
TEST(Circles, ThroughAllLevelsEndEverywhere) {
    DirectoryBuilder directory = OnePatient();
    directory[0].next = 1;
    directory[1].next = 2;
    directory[2].next = 3;
    directory[3].next = 4;
    directory[4].next = 0;
    BrowsedDirectory browsed(directory);
    EXPECT_STREQ(browsed.Patient().patientId, "P");
    EXPECT_LE(browsed->leafCount, 5 * 4);
}

TEST(BrokenFile, OffsetsOfZeroEverywhereLeaveThePatientAlone) {
    DirectoryBuilder directory = OnePatient();
    for (size_t i = 0; i < directory.Count(); ++i)
        directory[i].nextOffset = directory[i].lowerOffset = 0;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P()");
    EXPECT_EQ(browsed.Messages(), "DICOMDIR parsing error: Patient without Study\n");
}

// As of a file whose records were moved: the head grew, and nobody adjusted the offsets.
TEST(BrokenFile, OffsetsThatAreAllShiftedLeadNowhere) {
    for (const uint32_t shift : {2u, 8u, 0u - 8u}) {
        DirectoryBuilder directory = OnePatient();
        for (size_t i = 0; i < directory.Count(); ++i) {
            DirectoryRecordSpec& record = directory[i];
            if (record.next) record.nextOffset = directory.OffsetOf(*record.next) + shift;
            if (record.lower) record.lowerOffset = directory.OffsetOf(*record.lower) + shift;
        }
        const uint32_t study = *directory[0].lowerOffset;
        BrowsedDirectory browsed(directory);
        EXPECT_EQ(browsed.Outline(), "P()");
        EXPECT_EQ(browsed.Messages(),
                  "DICOMDIR resolve error : Item not found \n"
                  "DICOMDIR parsing error: First Study item not found at " +
                      std::to_string(study) +
                      "\n"
                      "DICOMDIR parsing error: Patient without Study\n");
    }
}

TEST(BrokenFile, RootOffsetsThatLeadNowhereGiveAnEmptyList) {
    for (const uint32_t offset : {0u, 1u, 200u, 0x7FFFFFFFu, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
        DirectoryBuilder directory = OnePatient();
        directory.rootOffset = offset;
        BrowsedDirectory browsed(directory);
        EXPECT_EQ(browsed.Outline(), "");
        EXPECT_EQ(browsed.Messages(),
                  "DICOMDIR parsing error: First patient not found (firstPatientOffset + 8 = " +
                      std::to_string(offset + 8) + ")\n");
    }
}

TEST(BrokenFile, KeysOf64KiBAreCutOnEveryLevel) {
    const std::string key(0xFFFE, 'K');
    DirectoryBuilder directory = OnePatient();
    directory[0].Set(0x0010, 0x0020, "LO", key).Set(0x0010, 0x0010, "PN", key);
    directory[1].Set(0x0020, 0x000D, "UI", key).Set(0x0008, 0x1030, "LO", key);
    directory[2].Set(0x0020, 0x000E, "UI", key).Set(0x0008, 0x0081, "ST", key);
    directory[3].Set(0x0004, 0x1511, "UI", key).Set(0x0004, 0x1500, "CS", key);
    for (const uint32_t loadLimit : {0u, 0x20000u}) {
        BrowsedDirectory browsed(directory.Build(), loadLimit);
        EXPECT_EQ(browsed.Patient().patientId, std::string(64, 'K'));
        EXPECT_EQ(browsed.Patient().patientsName, std::string(194, 'K'));
        EXPECT_EQ(browsed.Study().studyInstanceUid, std::string(64, 'K'));
        EXPECT_EQ(browsed.Study().studyDescription, std::string(64, 'K'));
        EXPECT_EQ(browsed.Series().seriesInstanceUid, std::string(64, 'K'));
        EXPECT_EQ(browsed.Series().institutionAddress, std::string(1024, 'K'));
        EXPECT_EQ(browsed.Leaf().instanceUid, std::string(64, 'K'));
        EXPECT_EQ(browsed.Leaf().referencedFileId, std::string(259, 'K'));
        EXPECT_EQ(std::string(browsed.Leaf().fullPath).size(), 259u);
    }
}

TEST(BrokenFile, EmptyItems) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").ElementUL(0x0004, 0x1200, 0).Sequence(0x0004, 0x1220);
    const uint32_t first = stream.Size();
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").ElementUL(0x0004, 0x1200, first).Sequence(0x0004, 0x1220);
    file.Item(0).Item(0).EndSequence();
    BrowsedDirectory browsed(file.Data());
    EXPECT_EQ(browsed.Outline(), "()");
    EXPECT_EQ(browsed.Messages(), "DICOMDIR parsing error: Patient without Study\n");
}

// Whatever is left of a file that was cut, its browse ends and the object can be used again.
TEST(BrokenFile, EveryPrefixIsBrowsed) {
    const Bytes file = OnePatient().Build();
    const pgkit_test::TempDir files;
    PGX_DicomDir directory;
    pgkit_test::CapturePrinted([&] {
        for (size_t size = file.size(); size-- > 0;) {
            directory.OpenDicomDir(nullptr, 0);
            const Bytes prefix(file.begin(), file.begin() + static_cast<ptrdiff_t>(size));
            const std::string path = files.Write("DICOMDIR", prefix);
            if (directory.OpenDicomDir(path.c_str(), 0x20000) == 0) continue;
            EXPECT_NE(directory.Browse(nullptr, nullptr), nullptr);
            EXPECT_LE(directory.leafCount, 2);
        }
    });
}

TEST(BrokenFile, FoldersOf300CharactersAreCut) {
    BrowsedDirectory browsed(OnePatient());
    const std::string folder(300, 'f');
    browsed->RelocateOffshoreDicomdir((folder + "\\x").c_str());
    pgkit_test::CapturePrinted([&] { browsed->Browse(nullptr, nullptr); });
    EXPECT_EQ(browsed.Leaf().fullPath, std::string(259, 'F'));
}

// Used to be a walk through the list for each of them.
TEST(ManyRecords, ThatAreAllDroppedTakeLinearTime) {
    DirectoryBuilder directory;
    const size_t kept = directory.Patient("KEPT", "DOE");
    for (int i = 0; i < 20000; ++i) {
        const std::string uid = std::to_string(i);
        if (i % 2 == 0) {
            const size_t series = directory.Series(directory.Study(kept, uid), uid, "CT");
            directory.Image(series, uid, 1);
        } else {
            directory.Child(directory.Study(kept, uid), "PRIVATE");
        }
    }
    BrowsedDirectory browsed(directory);
    pgkit_test::CapturePrinted(
        [&] { pgkit_test::ExpectQuick([&] { browsed->Browse(nullptr, nullptr); }); });
}

}  // namespace
