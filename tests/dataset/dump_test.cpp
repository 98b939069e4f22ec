#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "support/comma_locale.h"
#include "support/host_order.h"
#include "support/nodes.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::CommaLocale;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::OpenedFile;
using pgkit_test::RawText;
using pgkit_test::TempDir;
using pgkit_test::Tree;

std::string DumpOf(PGX_Node& node, const char* prefix = "") {
    const TempDir directory;
    const std::string path = directory.Path("dump");
    FILE* stream = std::fopen(path.c_str(), "wb");
    EXPECT_EQ(node.Dump(stream, prefix), 1);
    std::fclose(stream);
    const pgkit_test::Bytes bytes = pgkit_test::ReadFile(path);
    return std::string(bytes.begin(), bytes.end());
}

// What an element's line has behind "Value: ", of a dump that has a single line.
std::string ShownValue(PGX_Node& node) {
    const std::string line = DumpOf(node);
    const std::string mark = "Value: ";
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    return line.substr(line.find(mark) + mark.size());
}

std::string ShownValue(ValueRepresentation vr, std::string_view value,
                       EndianType endian = ET_LittleEndian) {
    return ShownValue(*NewElement(0x0009, 0x1001, vr, value, endian));
}

// The bytes of count equal numbers.
template <typename Number>
std::string Repeated(Number number, size_t count) {
    std::string bytes;
    for (size_t i = 0; i < count; ++i) {
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    return bytes;
}

std::string Times(size_t count, std::string_view text) {
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

TEST(Dump, DataSetFramesItsElements) {
    const Tree root = NewDataSet();
    root->InsertNode(0x0010, 0x0010, "DOE^JOHN  ", 10);
    EXPECT_EQ(
        DumpOf(*root),
        "DATASET\n"
        " | (0010,0010) : PN   Len: 10     PatientsName                   Value: [DOE^JOHN  ]\n"
        "END-OF-DATASET\n");
}

TEST(Dump, EveryLineStandsBehindThePrefix) {
    const Tree root = NewDataSet();
    root->InsertNode(0x0010, 0x0020, "7 ", 2);
    EXPECT_EQ(DumpOf(*root, ">%s "),
              ">%s DATASET\n"
              ">%s  | (0010,0020) : LO   Len: 2      PatientID                      Value: [7 ]\n"
              ">%s END-OF-DATASET\n");
}

TEST(Dump, NullPrefixIsEmptyAndNullStreamFails) {
    const Tree element = NewElement(0x0010, 0x0020, VR_LO, "7 ");
    EXPECT_EQ(DumpOf(*element, nullptr),
              "(0010,0020) : LO   Len: 2      PatientID                      Value: [7 ]\n");
    EXPECT_EQ(element->Dump(nullptr, ""), 0);
}

TEST(Dump, ItemsStandBetweenTheSequencesChildPrefixes) {
    const Tree root = NewDataSet();
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    sequence->length = 0xFFFFFFFF;
    for (int i = 0; i < 2; ++i)
        sequence->SeqAddTail(NewDataSet().release());
    sequence->first->InsertNode(0x0008, 0x1155, "1.2", 3);
    root->InsertNode(0x0010, 0x0020, "7 ", 2);
    EXPECT_EQ(
        DumpOf(*root),
        "DATASET\n"
        " | (0008,1140) : SQ   Len: -1     ReferencedImageSequence        Value: [SEQUENCE]\n"
        " |  | DATASET\n"
        " |  |  | (0008,1155) : UI   Len: 4      ReferencedSOPInstanceUID       Value: [1.2]\n"
        " |  | END-OF-DATASET\n"
        " |  | DATASET\n"
        " |  | END-OF-DATASET\n"
        " | (0010,0020) : LO   Len: 2      PatientID                      Value: [7 ]\n"
        "END-OF-DATASET\n");
}

TEST(Dump, LoneElementIsDumpedWithThePrefixItself) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    sequence->SeqAddTail(NewDataSet().release());
    EXPECT_EQ(DumpOf(*sequence, "> "),
              "> (0008,1140) : SQ   Len: 0      ReferencedImageSequence        Value: [SEQUENCE]\n"
              ">  | DATASET\n"
              ">  | END-OF-DATASET\n");
}

TEST(Dump, SiblingsOfTheNodeAreNotDumped) {
    const Tree root = NewDataSet();
    root->next = NewDataSet().release();
    EXPECT_EQ(DumpOf(*root), "DATASET\nEND-OF-DATASET\n");
}

TEST(Dump, UnknownNamesHavePlaceholders) {
    EXPECT_EQ(DumpOf(*NewElement(0x00AB, 0xCDEF, VR_Unknown, "ab")),
              "(00AB,CDEF) : ???? Len: 2      <Unknown Tag>                  Value: [ab]\n");
}

TEST(Dump, LongNamesAndLengthsPushTheLineOut) {
    char name[] = "NameOfMoreThanThirtyCharactersInAll";
    const Tree element = NewElement(0x0009, 0x1001, VR_OWOB);
    element->tagName = name;
    element->length = 12345678;
    EXPECT_EQ(DumpOf(*element), std::string("(0009,1001) : OWOB Len: 12345678 ") + name +
                                    " Value: [OW/OB/OF Binary data]\n");
    element->tagName = nullptr;
}

TEST(DumpValue, LoneNumbers) {
    EXPECT_EQ(ShownValue(VR_US, Repeated<uint16_t>(512, 1)), "[512]\n");
    EXPECT_EQ(ShownValue(VR_US, Repeated<uint16_t>(0xFFFF, 1)), "[65535]\n");
    EXPECT_EQ(ShownValue(VR_SS, Repeated<int16_t>(-1, 1)), "[-1]\n");
    EXPECT_EQ(ShownValue(VR_SL, Repeated<int32_t>(INT32_MIN, 1)), "[-2147483648]\n");
    EXPECT_EQ(ShownValue(VR_UL, Repeated<uint32_t>(1234567, 1)), "[1234567]\n");
    EXPECT_EQ(ShownValue(VR_AT, Repeated<uint16_t>(0x7FE, 1)), "[0x07FE]\n");
    EXPECT_EQ(ShownValue(VR_FL, Repeated<float>(2.5f, 1)), "[     2.500]\n");
    EXPECT_EQ(ShownValue(VR_FD, Repeated<double>(-0.0625, 1)), "[    -0.062]\n");
    EXPECT_EQ(ShownValue(VR_FD, Repeated<double>(1e10, 1)), "[10000000000.000]\n");
}

TEST(DumpValue, UnsignedLongIsPrintedSigned) {
    EXPECT_EQ(ShownValue(VR_UL, Repeated<uint32_t>(0xFFFFFFFF, 1)), "[-1]\n");
    EXPECT_EQ(ShownValue(VR_UL, Repeated<uint32_t>(0x80000000, 2)), "[-2147483648 -2147483648 ]\n");
}

TEST(DumpValue, SeveralNumbersAreEachFollowedByABlank) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ShownValue(VR_US, Repeated<uint16_t>(7, 3)), "[7 7 7 ]\n");
    EXPECT_EQ(ShownValue(VR_SS, Repeated<int16_t>(-7, 2)), "[-7 -7 ]\n");
    EXPECT_EQ(ShownValue(VR_SL, Repeated<int32_t>(-7, 2)), "[-7 -7 ]\n");
    EXPECT_EQ(ShownValue(VR_UL, Repeated<uint32_t>(7, 2)), "[7 7 ]\n");
    EXPECT_EQ(ShownValue(VR_AT, RawText("\x10\x00\xEF\xCD")), "[0x0010 0xCDEF ]\n");
    EXPECT_EQ(ShownValue(VR_FL, Repeated<float>(2.5f, 2)), "[2.500000 2.500000 ]\n");
    EXPECT_EQ(ShownValue(VR_FD, Repeated<double>(-0.1, 2)), "[-0.100000 -0.100000 ]\n");
}

TEST(DumpValue, AtMostTwentyNumbersArePrinted) {
    EXPECT_EQ(ShownValue(VR_US, Repeated<uint16_t>(7, 20)), "[" + Times(20, "7 ") + "]\n");
    EXPECT_EQ(ShownValue(VR_US, Repeated<uint16_t>(7, 25)), "[" + Times(20, "7 ") + "...]\n");
    EXPECT_EQ(ShownValue(VR_UL, Repeated<uint32_t>(7, 21)), "[" + Times(20, "7 ") + "...]\n");
    EXPECT_EQ(ShownValue(VR_AT, Repeated<uint16_t>(7, 22)), "[" + Times(20, "0x0007 ") + "...]\n");
}

TEST(DumpValue, FloatingPointNumbersNeverShowThatThereAreMore) {
    EXPECT_EQ(ShownValue(VR_FL, Repeated<float>(1.5f, 40)), "[" + Times(20, "1.500000 ") + "]\n");
    EXPECT_EQ(ShownValue(VR_FD, Repeated<double>(1.5, 21)), "[" + Times(20, "1.500000 ") + "]\n");
}

TEST(DumpValue, FloatingPointNumbersLookAlikeOnAllPlatforms) {
    constexpr double kMax = std::numeric_limits<double>::max();
    EXPECT_EQ(ShownValue(VR_FD, Repeated<double>(HUGE_VAL, 1)), "[       inf]\n");
    EXPECT_EQ(ShownValue(VR_FD, Repeated<double>(-HUGE_VAL, 2)), "[-inf -inf ]\n");
    EXPECT_EQ(ShownValue(VR_FL, Repeated<float>(std::numeric_limits<float>::quiet_NaN(), 1)),
              "[       nan]\n");
    const std::string largest = ShownValue(VR_FD, Repeated<double>(kMax, 1));
    EXPECT_EQ(largest.size(), 309 + std::strlen("[.000]\n"));
    EXPECT_EQ(largest.substr(0, 18), "[17976931348623157");
}

TEST(DumpValue, FloatingPointNumbersHaveAPointInEveryLocale) {
    const CommaLocale locale;
    if (!locale.Found()) GTEST_SKIP() << "no locale with a decimal comma";
    EXPECT_EQ(ShownValue(VR_FL, Repeated<float>(2.5f, 1)), "[     2.500]\n");
}

TEST(DumpValue, LengthThatIsNoMultipleCountsWholeNumbersOnly) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ShownValue(VR_US, RawText("\x01\x00\x02")), "[1]\n");
    EXPECT_EQ(ShownValue(VR_US, RawText("\x01")), "[]\n");
    EXPECT_EQ(ShownValue(VR_FD, RawText("\1\2\3\4")), "[]\n");
}

TEST(DumpValue, EmptyValueShowsNothing) {
    for (const auto vr : {VR_UL, VR_US, VR_SS, VR_SL, VR_AT, VR_FL, VR_FD, VR_PN, VR_UN}) {
        EXPECT_EQ(ShownValue(vr, ""), "[]\n") << vr;
    }
}

TEST(DumpValue, BinaryIsNamedOnly) {
    for (const auto vr : {VR_OB, VR_OW, VR_OF, VR_OWOB}) {
        EXPECT_EQ(ShownValue(vr, "abcd"), "[OW/OB/OF Binary data]\n") << vr;
    }
    const Tree encapsulated = NewElement(0x7FE0, 0x0010, VR_OB);
    encapsulated->encapsulated = 1;
    encapsulated->length = 0xFFFFFFFF;
    EXPECT_EQ(DumpOf(*encapsulated),
              "(7FE0,0010) : OB   Len: -1     PixelData                      "
              "Value: [Encoded OW/OB/OF Binary data]\n");
}

TEST(DumpValue, EverythingElseIsText) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    for (const auto vr : {VR_UN, VR_Unknown, VR_USSS, VR_LT, VR_DS}) {
        EXPECT_EQ(ShownValue(vr, "a b "), "[a b ]\n") << vr;
    }
    EXPECT_EQ(ShownValue(VR_UI, " 1.2"), "[1.2]\n");
}

TEST(DumpValue, TextEndsAtItsFirstNul) {
    EXPECT_EQ(ShownValue(VR_UN, RawText("ab\0cd")), "[ab]\n");
    EXPECT_EQ(ShownValue(VR_UI, RawText("1.2\0")), "[1.2]\n");
}

TEST(DumpValue, BigEndianNumbersAreConverted) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ShownValue(VR_US, RawText("\x01\x02"), ET_BigEndian), "[258]\n");
    EXPECT_EQ(ShownValue(VR_USSS, "abcd", ET_BigEndian), "[badc]\n");
}

TEST(DumpValue, ComesFromTheFileToo) {
    const OpenedFile file("xxhello " + RawText("\x01\x02"));
    EXPECT_EQ(ShownValue(*file.Element(VR_LO, 2, 6)), "[hello ]\n");
    EXPECT_EQ(ShownValue(*file.Element(VR_US, 8, 2)), "[513]\n");
    EXPECT_EQ(ShownValue(*file.Element(VR_US, 8, 4)), "[513 0 ]\n");
}

TEST(DumpValue, LongTextIsPrintedWhole) {
    for (const size_t size : {0x7FFFu, 0x8000u, 0x8001u, 0x10000u, 0x20000u, 0x2ABCDu}) {
        const std::string text(size, 'x');
        const OpenedFile file(text);
        EXPECT_EQ(ShownValue(VR_UT, text), "[" + text + "]\n");
        const auto length = static_cast<uint32_t>(size);
        EXPECT_EQ(ShownValue(*file.Element(VR_UT, 0, length)), "[" + text + "]\n");
    }
}

TEST(DumpValue, UndefinedLengthWithoutAValueIsEmpty) {
    const OpenedFile file("abcd");
    for (const auto vr : {VR_UN, VR_US, VR_FD, VR_UI, VR_AT}) {
        EXPECT_EQ(ShownValue(*file.Element(vr, 0, 0xFFFFFFFF)), "[]\n") << vr;
    }
}

TEST(ClaimedLength, DumpShowsWhatTheFileHolds) {
    const OpenedFile file("ab" + RawText("\x01\x00"));
    EXPECT_EQ(ShownValue(*file.Element(VR_LO, 0, 0xFFFFFFF0)), RawText("[ab\1]\n"));
    EXPECT_EQ(ShownValue(*file.Element(VR_LO, 0, 0xFFFFFFFE)), RawText("[ab\1]\n"));
    EXPECT_EQ(ShownValue(*file.Element(VR_US, 2, 0xFFFFFFF0)), "[1 " + Times(19, "0 ") + "...]\n");
}

TEST(Dump, DeepTreesAreDumpedWithoutRecursion) {
    constexpr size_t kLevels = 2'000;
    Tree root = NewDataSet();
    for (size_t level = 0; level < kLevels; ++level) {
        PGX_Node* sequence = NewElement(0x0040, 0xA730, VR_SQ).release();
        sequence->SeqAddHead(root.release());
        root = NewDataSet();
        root->first = sequence;
    }
    const std::string dump = DumpOf(*root);
    const std::string innermost = "\n" + Times(2 * kLevels, " | ") + "DATASET\n";
    EXPECT_NE(dump.find(innermost), std::string::npos);
    EXPECT_EQ(dump.substr(dump.rfind("END")), "END-OF-DATASET\n");
}

TEST(DumpToFile, ReplacesTheFile) {
    const TempDir directory;
    const std::string path = directory.Write("dump.txt", std::string(1000, 'x'));
    const Tree root = NewDataSet();
    EXPECT_EQ(root->Dump(path.c_str()), 1);
    const pgkit_test::Bytes bytes = pgkit_test::ReadFile(path);
    std::string text(bytes.begin(), bytes.end());
    std::erase(text, '\r');  // the file is a text file
    EXPECT_EQ(text, "DATASET\nEND-OF-DATASET\n");
}

TEST(DumpToFile, FailsWhenTheFileCannotBeCreated) {
    const TempDir directory;
    const Tree root = NewDataSet();
    EXPECT_EQ(root->Dump(directory.Path("missing/dump.txt").c_str()), 0);
    EXPECT_EQ(root->Dump(static_cast<const char*>(nullptr)), 0);
}

}  // namespace
