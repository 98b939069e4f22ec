// Which leaves the records of a series become, and in which order they stand.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;

// A directory with one series to which leaves are added.
struct LeafDirectory {
    // A leaf record of any type with an instance UID of its own.
    size_t Leaf(const std::string& type, const std::string& sopClass = "") {
        const size_t record = directory_.Child(series_, type);
        directory_[record].Set(0x0004, 0x1511, "UI", "1." + std::to_string(record));
        if (!sopClass.empty()) directory_[record].Set(0x0004, 0x1510, "UI", sopClass);
        return record;
    }

    DirectoryBuilder directory_;
    size_t series_ =
        directory_.Series(directory_.Study(directory_.Patient("P", "DOE"), "S"), "E", "OT");
};

class LeafLevel : public testing::Test, protected LeafDirectory {};

// What a record becomes; -1 for nothing.
int32_t TypeOf(const std::string& type, const std::string& sopClass = "") {
    LeafDirectory leaves;
    leaves.Leaf(type, sopClass);
    BrowsedDirectory browsed(leaves.directory_);
    return browsed->GetPatientList()->GetCount() == 0 ? -1 : browsed.Leaf().leafType;
}

// The modality of a series "OT" that holds such a record.
std::string ModalityAfter(const std::string& type, const std::string& sopClass) {
    LeafDirectory leaves;
    leaves.Leaf("IMAGE");
    leaves.Leaf(type, sopClass);
    return BrowsedDirectory(leaves.directory_).Series().modality;
}

constexpr char kCt[] = "1.2.840.10008.5.1.4.1.1.2";
constexpr char kKeyObject[] = "1.2.840.10008.5.1.4.1.1.88.59";
constexpr char kRawData[] = "1.2.840.10008.5.1.4.1.1.66";
constexpr char kPresentation[] = "1.2.840.10008.5.1.4.1.1.11.1";
constexpr char kDirectory[] = "1.2.840.10008.1.3.10";

TEST_F(LeafLevel, RecordTypesGiveTheirClasses) {
    EXPECT_EQ(TypeOf("IMAGE"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("SR DOCUMENT"), PG_LEAF_REPORT);
    EXPECT_EQ(TypeOf("KEY OBJECT DOC"), PG_LEAF_KEY_OBJECT);
    EXPECT_EQ(TypeOf("PRESENTATION"), PG_LEAF_PRESENTATION);
    EXPECT_EQ(TypeOf("WAVEFORM"), PG_LEAF_WAVEFORM);
    EXPECT_EQ(TypeOf("ENCAP DOC"), PG_LEAF_ENCAPSULATED_DOC);
    EXPECT_EQ(TypeOf("RAW DATA"), PG_LEAF_RAW_DATA);
}

TEST_F(LeafLevel, ObjectsAreOfTheClassForTheirType) {
    Leaf("IMAGE");
    Leaf("SR DOCUMENT");
    Leaf("KEY OBJECT DOC");
    Leaf("PRESENTATION");
    Leaf("WAVEFORM");
    Leaf("ENCAP DOC");
    Leaf("RAW DATA");
    BrowsedDirectory browsed(directory_);
    EXPECT_NE(dynamic_cast<PGX_DicomDirImageNode*>(&browsed.Leaf(0)), nullptr);
    EXPECT_NE(dynamic_cast<PGX_DicomDirReportNode*>(&browsed.Leaf(1)), nullptr);
    EXPECT_NE(dynamic_cast<PGX_DicomDirKeyObjectNode*>(&browsed.Leaf(2)), nullptr);
    EXPECT_NE(dynamic_cast<PGX_DicomDirPresentationNode*>(&browsed.Leaf(3)), nullptr);
    EXPECT_NE(dynamic_cast<PGX_DicomDirWaveformNode*>(&browsed.Leaf(4)), nullptr);
    EXPECT_NE(dynamic_cast<PGX_DicomDirEncapsulatedDocNode*>(&browsed.Leaf(5)), nullptr);
    EXPECT_NE(dynamic_cast<PGX_DicomDirRawDataNode*>(&browsed.Leaf(6)), nullptr);
}

TEST_F(LeafLevel, OtherTypesGivePlainLeaves) {
    EXPECT_EQ(TypeOf("HANGING PROTOCOL"), PG_LEAF_OTHER);
    EXPECT_EQ(TypeOf("RT DOSE"), PG_LEAF_OTHER);
    EXPECT_EQ(TypeOf("SERIES"), PG_LEAF_OTHER);
    EXPECT_EQ(TypeOf("image"), PG_LEAF_OTHER);
    EXPECT_EQ(TypeOf("SR DOC"), PG_LEAF_OTHER);
    EXPECT_EQ(TypeOf(""), PG_LEAF_OTHER);
}

TEST_F(LeafLevel, ARecordWithoutATypeGivesAPlainLeaf) {
    directory_[Leaf("IMAGE")].Remove(0x0004, 0x1430);
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Leaf().leafType, PG_LEAF_OTHER);
    EXPECT_STREQ(browsed.Leaf().recordType, "");
}

TEST_F(LeafLevel, TypesAreToldByTheirBeginning) {
    EXPECT_EQ(TypeOf("IMAGE BOX"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("SR DOCUMENTS"), PG_LEAF_REPORT);
    EXPECT_EQ(TypeOf("KEY OBJECT DOCUMENT"), PG_LEAF_KEY_OBJECT);
    EXPECT_EQ(TypeOf("PRESENTATIONS"), PG_LEAF_PRESENTATION);
    EXPECT_EQ(TypeOf("WAVEFORMS"), PG_LEAF_WAVEFORM);
    EXPECT_EQ(TypeOf("ENCAP DOCUMENT"), PG_LEAF_ENCAPSULATED_DOC);
    EXPECT_EQ(TypeOf("RAW DATAS"), PG_LEAF_RAW_DATA);
}

TEST_F(LeafLevel, BlanksAroundTypesAreDropped) {
    EXPECT_EQ(TypeOf("  IMAGE "), PG_LEAF_IMAGE);
    Leaf(" SR DOCUMENT ");
    EXPECT_STREQ(BrowsedDirectory(directory_).Leaf().recordType, "SR DOCUMENT");
}

TEST_F(LeafLevel, PrivateRecordsAreRefused) {
    Leaf("IMAGE");
    Leaf("PRIVATE");
    Leaf("PRIVATE THING");
    Leaf("IMAGE");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1.3 1.6)))");
    EXPECT_EQ(browsed.Messages(),
              "[Refused Private/Invalid LeafType] Skipping record type PRIVATE\n"
              "[Refused Private/Invalid LeafType] Skipping record type PRIVATE THING\n");
}

TEST_F(LeafLevel, ImagesOfDirectoriesAreRefused) {
    Leaf("IMAGE", kDirectory);
    Leaf("IMAGE", kCt);
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1.4)))");
    EXPECT_EQ(browsed.Messages(),
              "[Refused Private/Invalid LeafType] Skipping record type IMAGE\n");
}

TEST_F(LeafLevel, OnlyImagesAreReclassifiedByTheirSopClass) {
    EXPECT_EQ(TypeOf("SR DOCUMENT", kDirectory), PG_LEAF_REPORT);
    EXPECT_EQ(TypeOf("WAVEFORM", kRawData), PG_LEAF_WAVEFORM);
    EXPECT_EQ(TypeOf("HANGING PROTOCOL", kKeyObject), PG_LEAF_OTHER);
}

TEST_F(LeafLevel, ImagesOfReportsBecomeReports) {
    for (const char* uid : {"1.2.840.10008.5.1.4.1.1.88.11", "1.2.840.10008.5.1.4.1.1.88.22",
                            "1.2.840.10008.5.1.4.1.1.88.33", "1.2.840.10008.5.1.4.1.1.88.50",
                            "1.2.840.10008.5.1.4.1.1.88.65", "1.2.840.10008.5.1.4.1.1.88.40",
                            "1.2.840.10008.5.1.4.1.1.88.69", "1.2.840.10008.5.1.4.1.1.88.67"}) {
        EXPECT_EQ(TypeOf("IMAGE", uid), PG_LEAF_REPORT) << uid;
        EXPECT_EQ(ModalityAfter("IMAGE", uid), "SR") << uid;
    }
}

TEST_F(LeafLevel, ImagesOfOtherClassesBecomeTheirKindToo) {
    EXPECT_EQ(TypeOf("IMAGE", kKeyObject), PG_LEAF_KEY_OBJECT);
    EXPECT_EQ(TypeOf("IMAGE", kRawData), PG_LEAF_RAW_DATA);
    EXPECT_EQ(TypeOf("IMAGE", kPresentation), PG_LEAF_PRESENTATION);
    EXPECT_EQ(TypeOf("IMAGE", kCt), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("IMAGE", "1.2.840.10008.5.1.4.1.1.9.1.1"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("IMAGE", "1.2.840.10008.5.1.4.1.1.104.1"), PG_LEAF_IMAGE);
}

TEST_F(LeafLevel, SopClassesAreComparedAsAWhole) {
    EXPECT_EQ(TypeOf("IMAGE", "1.2.840.10008.5.1.4.1.1.66.1"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("IMAGE", "1.2.840.10008.5.1.4.1.1.11.2"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("IMAGE", "1.2.840.10008.1.3.1"), PG_LEAF_IMAGE);
}

TEST_F(LeafLevel, ImagesOfSomeClassesSetTheModalityOfTheirSeries) {
    EXPECT_EQ(ModalityAfter("IMAGE", kKeyObject), "KO");
    EXPECT_EQ(ModalityAfter("IMAGE", kPresentation), "PR");
    EXPECT_EQ(ModalityAfter("IMAGE", kRawData), "OT");
    EXPECT_EQ(ModalityAfter("IMAGE", kCt), "OT");
    EXPECT_EQ(ModalityAfter("IMAGE", kDirectory), "OT");
}

TEST_F(LeafLevel, OtherRecordTypesLeaveTheModalityAlone) {
    for (const char* type : {"SR DOCUMENT", "KEY OBJECT DOC", "PRESENTATION"})
        EXPECT_EQ(ModalityAfter(type, "1.2.840.10008.5.1.4.1.1.88.11"), "OT") << type;
}

TEST_F(LeafLevel, ADuplicateSetsTheModalityAllTheSame) {
    directory_[Leaf("IMAGE", kCt)].Set(0x0004, 0x1511, "UI", "7");
    directory_[Leaf("IMAGE", kKeyObject)].Set(0x0004, 0x1511, "UI", "7");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(7)))");
    EXPECT_EQ(browsed.Leaf().leafType, PG_LEAF_IMAGE);
    EXPECT_STREQ(browsed.Series().modality, "KO");
    EXPECT_EQ(browsed.Messages(), "Instance already found : (7)\n");
}

TEST_F(LeafLevel, EqualInstancesInTwoSeriesAreTwoLeaves) {
    directory_[Leaf("IMAGE")].Set(0x0004, 0x1511, "UI", "7");
    series_ = directory_.Series(1, "F", "OT");
    directory_[Leaf("IMAGE")].Set(0x0004, 0x1511, "UI", "7");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(7) F(7)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST_F(LeafLevel, MissingInstanceUidsAreEqual) {
    directory_[Leaf("IMAGE")].Remove(0x0004, 0x1511);
    directory_[Leaf("IMAGE")].Remove(0x0004, 0x1511);
    directory_[Leaf("IMAGE")].Set(0x0004, 0x1511, "UI", "");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Series().leaves.GetCount(), 1);
    EXPECT_EQ(browsed.Messages(), "Instance already found : ()\nInstance already found : ()\n");
}

TEST_F(LeafLevel, InstanceUidsAreComparedAfterCutting) {
    directory_[Leaf("IMAGE")].Set(0x0004, 0x1511, "UI", std::string(64, '1') + "2");
    directory_[Leaf("IMAGE")].Set(0x0004, 0x1511, "UI", std::string(64, '1') + "3");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(" + std::string(64, '1') + ")))");
}

TEST_F(LeafLevel, ALostNextRecordEndsTheLevel) {
    directory_[Leaf("IMAGE")].nextOffset = 3;
    Leaf("IMAGE");
    series_ = directory_.Series(1, "F", "OT");
    Leaf("IMAGE");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1.3) F(1.6)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Leaf item not found\n");
}

TEST_F(LeafLevel, AfterRefusedAndDuplicateRecordsItIsTheSame) {
    Leaf("IMAGE");
    directory_[Leaf("PRIVATE")].nextOffset = 3;
    BrowsedDirectory refused(directory_);
    EXPECT_EQ(refused.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "[Refused Private/Invalid LeafType] Skipping record type PRIVATE\n"
              "DICOMDIR parsing error: Next Leaf item not found\n");

    LeafDirectory other;
    other.directory_[other.Leaf("IMAGE")].Set(0x0004, 0x1511, "UI", "7");
    const size_t duplicate = other.Leaf("IMAGE");
    other.directory_[duplicate].Set(0x0004, 0x1511, "UI", "7").nextOffset = 3;
    BrowsedDirectory found(other.directory_);
    EXPECT_EQ(found.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "Instance already found : (7)\n"
              "DICOMDIR parsing error: Next Leaf item not found\n");
}

TEST_F(LeafLevel, ALeafWithoutANextRecordElementIsTheLast) {
    directory_[Leaf("IMAGE")].hasNext = false;
    Leaf("IMAGE");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1.3)))");
    EXPECT_EQ(browsed.Messages(), "");
}

class LeafOrder : public LeafLevel {};

// The instance UIDs in the order of the leaves, given the instance numbers in file order. UIDs are
// numbered from 1.
std::string OrderOf(const std::vector<int>& numbers) {
    LeafDirectory leaves;
    int uid = 0;
    for (const int number : numbers)
        leaves.directory_.Image(leaves.series_, std::to_string(++uid), number);
    const std::string outline = BrowsedDirectory(leaves.directory_).Outline();
    return outline.substr(6, outline.size() - 9);
}

TEST_F(LeafOrder, IsAscendingByInstanceNumber) {
    EXPECT_EQ(OrderOf({1, 2, 3}), "1 2 3");
    EXPECT_EQ(OrderOf({3, 2, 1}), "3 2 1");
    EXPECT_EQ(OrderOf({2, 3, 1}), "3 1 2");
    EXPECT_EQ(OrderOf({5, -1, 0, 7, 3}), "2 3 5 1 4");
}

TEST_F(LeafOrder, OfEqualNumbersAtTheEndIsThatOfTheFile) {
    EXPECT_EQ(OrderOf({1, 1, 1}), "1 2 3");
    EXPECT_EQ(OrderOf({0, 2, 2}), "1 2 3");
}

TEST_F(LeafOrder, OfEqualNumbersFurtherInIsReversed) {
    EXPECT_EQ(OrderOf({3, 1, 2, 2}), "2 4 3 1");
    EXPECT_EQ(OrderOf({9, 2, 2, 2, 1, 1}), "6 5 4 3 2 1");
}

TEST_F(LeafOrder, AppendsBehindEqualNumbersInsertsInFrontOfThem) {
    // 5; 5 5; 7; then a 5 is no longer last.
    EXPECT_EQ(OrderOf({5, 5, 7, 5, 7, 6, 6}), "4 1 2 7 6 3 5");
}

TEST_F(LeafOrder, MissingNumbersCountAsZero) {
    directory_.Image(series_, "1", 1);
    directory_[directory_.Image(series_, "2", 5)].Remove(0x0020, 0x0013);
    directory_[directory_.Image(series_, "3", 5)].Set(0x0020, 0x0013, "IS", "none");
    directory_.Image(series_, "4", -1);
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(S(E(4 3 2 1)))");
}

TEST_F(LeafOrder, GoesOnWhenASeriesIsMerged) {
    directory_.Image(series_, "1", 2);
    directory_.Image(series_, "2", 1);
    const size_t again = directory_.Series(1, "E", "OT");
    directory_.Image(again, "3", 2);
    directory_.Image(again, "4", 0);
    directory_.Image(again, "5", 2);
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(S(E(4 2 1 3 5)))");
}

// The order of the lists, walked leaf by leaf, for comparison with the faster way.
TEST_F(LeafOrder, IsThatOfTheWalkThroughTheList) {
    std::vector<int> numbers;
    std::vector<std::pair<int, int>> expected;  // number, UID
    uint32_t random = 12345;
    for (int uid = 1; uid <= 400; ++uid) {
        random = random * 1664525 + 1013904223;
        const int number = static_cast<int>(random >> 16) % 40;
        numbers.push_back(number);
        auto place = expected.end();
        if (!expected.empty() && expected.back().first > number) {
            place = expected.begin();
            while (place->first < number)
                ++place;
        }
        expected.insert(place, {number, uid});
    }
    std::string text;
    for (const auto& [number, uid] : expected)
        text += (text.empty() ? "" : " ") + std::to_string(uid);
    EXPECT_EQ(OrderOf(numbers), text);
}

}  // namespace
