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

constexpr char kTooMany[] = "DICOMDIR parsing error: too many shared records\n";

// 40 records of each level stand for 64,000 images; ten thousand of 121 records are visited.
TEST(SharedRecords, AreVisitedTenThousandTimesWhenThereAreFew) {
    BrowsedDirectory browsed(FullyShared(40));
    EXPECT_GT(browsed->leafCount, 4500);
    EXPECT_LT(browsed->leafCount, 10000);
    EXPECT_EQ(browsed.Messages(), kTooMany);
}

// Used to be visited 100 times as often as there are records.
TEST(SharedRecords, AreVisitedFourTimesAsOftenAsThereAreRecords) {
    constexpr int32_t kCount = 2000;
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("P", "DOE"), "S");
    const size_t first = directory.Series(study, "0", "CT");
    for (int32_t i = 0; i < kCount; ++i)
        directory.Image(first, std::to_string(i), i);
    for (int32_t i = 1; i < kCount; ++i)
        directory[directory.Series(study, std::to_string(i), "CT")].lower = first + 1;
    BrowsedDirectory browsed(directory);
    // 2 and 2 * 2,000 records. Seven whole series of one and 2,000 visits, and part of another.
    constexpr int32_t kVisits = 4 * (2 + 2 * kCount);
    EXPECT_EQ(browsed->leafCount, kVisits - 2 - 8);
    EXPECT_EQ(browsed.Messages(), kTooMany);
}

// 98 series with the same 100 images, and one with images of its own: with 99 of those, ten
// thousand visits.
DirectoryBuilder ManyVisits(int32_t ownImages) {
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("P", "DOE"), "S");
    const size_t first = directory.Series(study, "0", "CT");
    for (int32_t i = 0; i < 100; ++i)
        directory.Image(first, std::to_string(i), i);
    for (int32_t i = 1; i < 98; ++i)
        directory[directory.Series(study, std::to_string(i), "CT")].lower = first + 1;
    const size_t last = directory.Series(study, "98", "CT");
    for (int32_t i = 0; i < ownImages; ++i)
        directory.Image(last, std::to_string(i), i);
    return directory;
}

TEST(SharedRecords, AreReportedFromTheFirstThatIsLeftOut) {
    BrowsedDirectory whole(ManyVisits(99));
    EXPECT_EQ(whole->leafCount, 98 * 100 + 99);
    EXPECT_EQ(whole.Messages(), "");
    BrowsedDirectory cut(ManyVisits(100));
    EXPECT_EQ(cut->leafCount, 98 * 100 + 99);
    EXPECT_EQ(cut.Messages(), kTooMany);
}

TEST(SharedRecords, AreReportedOnceInEachBrowse) {
    BrowsedDirectory browsed(FullyShared(40));
    const std::string again =
        pgkit_test::CapturePrinted([&] { browsed->Browse(nullptr, nullptr); }).out;
    EXPECT_EQ(again.find(kTooMany), again.rfind(kTooMany));
    EXPECT_NE(again.find(kTooMany), std::string::npos);
}

// Each of 1,000 series shows the same record.
DirectoryBuilder SharedBySeries(const DirectoryRecordSpec& record) {
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("P", "DOE"), "S");
    const size_t first = directory.Series(study, "0", "CT");
    const size_t leaf = directory.Image(first, "1", 1);
    for (const auto& [tag, key] : record.keys)
        directory[leaf].keys[tag] = key;
    for (int i = 1; i < 1000; ++i)
        directory[directory.Series(study, std::to_string(i), "CT")].lower = leaf;
    return directory;
}

// Opens and browses a file within the memory that its size allows; the number of its leaves.
int32_t BrowseWithinBounds(const DirectoryBuilder& builder) {
    const Bytes file = builder.Build();
    int32_t leafCount = 0;
    pgkit_test::ExpectCheap((uint64_t{64} << 20) + 60 * file.size(), [&] {
        BrowsedDirectory browsed(file);
        leafCount = browsed->leafCount;
        EXPECT_EQ(browsed.Messages(), kTooMany);
    });
    return leafCount;
}

std::string Text(const StreamBuilder& stream) {
    return std::string(stream.Data().begin(), stream.Data().end());
}

// Used to take as much memory as 64 MiB of such sequences in the file: 1,900 times the file.
TEST(SharedRecords, WithSequencesAreBoundedByTheMemoryOfTheirCopies) {
    StreamBuilder items;
    items.Item(0xFFFFFFFF);
    for (uint16_t i = 0; i < 2000; ++i)
        items.Element(0x0040, static_cast<uint16_t>(0xA000 + i), "LO", "");
    items.EndItem();
    DirectoryRecordSpec record;
    record.Set(0x0004, 0x1430, "CS", "SR DOCUMENT").Set(0x0040, 0xA730, "SQ", Text(items));
    const int32_t leafCount = BrowseWithinBounds(SharedBySeries(record));
    EXPECT_GT(leafCount, 100);
    EXPECT_LT(leafCount, 1000);
}

// The rows of a bitmap are filled up to four bytes: it is four times as large as these pixels.
TEST(SharedRecords, WithIconsAreBoundedByTheMemoryOfTheirBitmaps) {
    constexpr uint16_t kRows = 30000;
    StreamBuilder item;
    item.Item(0xFFFFFFFF)
        .Element(0x0028, 0x0004, "CS", "MONOCHROME2 ")
        .ElementUS(0x0028, 0x0010, kRows)
        .ElementUS(0x0028, 0x0011, 1)
        .Header(0x7FE0, 0x0010, "OB", kRows)
        .Zeros(kRows)
        .EndItem();
    DirectoryRecordSpec record;
    record.Set(0x0088, 0x0200, "SQ", Text(item));
    const int32_t leafCount = BrowseWithinBounds(SharedBySeries(record));
    EXPECT_GT(leafCount, 300);
    EXPECT_LT(leafCount, 1000);
}

// A visit takes the longer the more elements the record has.
TEST(SharedRecords, ThatAreLargeAreVisitedAgainOnlyForSoManyBytes) {
    DirectoryRecordSpec record;
    record.Set(0x0009, 0x1000, "OB", std::string(size_t{1} << 20, ' '));
    const DirectoryBuilder directory = SharedBySeries(record);
    const auto size = static_cast<int32_t>(directory.Build().size() >> 20);
    EXPECT_NEAR(BrowseWithinBounds(directory), 64 + 4 * size, 3);
}

// A large record is shared less often, so that its copies do not use up the memory.
TEST(SharedRecords, ThatAreLargeAreBoundedByTheirSize) {
    DirectoryBuilder directory = FullyShared(20);
    StreamBuilder item;
    item.Item(0xF000).Header(0x0040, 0xA160, "UT", 0xF000 - 12).Zeros(0xF000 - 12);
    std::string content;
    for (int i = 0; i < 17; ++i)
        content += Text(item);
    directory[60].Set(0x0004, 0x1430, "CS", "SR DOCUMENT").Set(0x0040, 0xA730, "SQ", content);
    const int32_t leafCount = BrowseWithinBounds(directory);
    EXPECT_GT(leafCount, 1);
    EXPECT_LT(leafCount, 100);
}

// Icons of 128 by 128, descriptions at their full length, a patient for each few images.
TEST(SoundRecords, NeverReachTheBounds) {
    StreamBuilder icon;
    icon.Item(0xFFFFFFFF)
        .Element(0x0028, 0x0004, "CS", "MONOCHROME2 ")
        .ElementUS(0x0028, 0x0010, 128)
        .ElementUS(0x0028, 0x0011, 128)
        .Header(0x7FE0, 0x0010, "OB", 0x4000)
        .Zeros(0x4000)
        .EndItem();
    DirectoryBuilder directory;
    for (int i = 0; i < 1000; ++i) {
        const std::string uid = "1.2.840.113654.2.55." + std::to_string(i);
        const size_t study = directory.Study(directory.Patient(uid, "DOE^" + uid), uid);
        const size_t series = directory.Series(study, uid, "CT");
        directory[series].Set(0x0008, 0x0081, "ST", std::string(1024, 'A'));
        for (int image = 0; image < 10; ++image) {
            const size_t record = directory.Image(series, uid + "." + std::to_string(image), image);
            if (image == 0) directory[record].Set(0x0088, 0x0200, "SQ", Text(icon));
        }
    }
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed->leafCount, 10000);
    EXPECT_EQ(browsed.Messages(), "");
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
