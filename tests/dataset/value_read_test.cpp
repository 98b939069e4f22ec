#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
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
using pgkit_test::ValueOf;

constexpr uint32_t kClaimedLength = 0xFFFFFFF0;
constexpr uint32_t kUndefinedLength = 0xFFFFFFFF;

// The buffer that GetStringValue leaves behind, one byte longer than it may write.
std::string StringOf(PGX_Node& node, int32_t size) {
    std::string buffer(static_cast<size_t>(size) + 2, '?');
    EXPECT_EQ(node.GetStringValue(buffer.data(), size), 1);
    return buffer;
}

double DoubleOf(std::string_view text) {
    return NewElement(0x0018, 0x0050, VR_DS, text)->GetDSDoubleValue();
}

int32_t IntOf(std::string_view text) {
    return NewElement(0x0020, 0x0013, VR_IS, text)->GetDSIntValue();
}

TEST(GetTagName, IsTheDictionarys) {
    char name[128];
    EXPECT_EQ(NewElement(0x0010, 0x0010, VR_PN)->GetTagName(name), 1);
    EXPECT_STREQ(name, "PatientsName");
    EXPECT_EQ(NewElement(0x0007, 0x1234, VR_UN)->GetTagName(name), 0);
    EXPECT_STREQ(name, "<Unknown Tag>");
}

TEST(GetTagName, NameMadeByTheParserGoesFirst) {
    char parsersName[] = "PrivateCreator10xx";
    char name[128];
    const Tree node = NewElement(0x0010, 0x0010, VR_PN);
    node->tagName = parsersName;
    EXPECT_EQ(node->GetTagName(name), 1);
    EXPECT_STREQ(name, "PrivateCreator10xx");
    node->tagName = nullptr;  // not the node's to free
}

TEST(GetTagName, IsCutTo127Characters) {
    std::string parsersName(300, 'x');
    char name[128];
    const Tree node = NewElement(0x0009, 0x1001, VR_UN);
    node->tagName = parsersName.data();
    EXPECT_EQ(node->GetTagName(name), 1);
    EXPECT_EQ(name, std::string(127, 'x'));
    node->tagName = nullptr;
}

TEST(GetValue, GivesTheValueAndANul) {
    const OpenedFile file("xxabcdyy");
    const TempDir directory;
    const Tree inContentFile = NewElement(0x0009, 0x1001, VR_LO);
    inContentFile->SetFileContentValue(directory.Write("content", "abcd").c_str());
    EXPECT_EQ(ValueOf(*NewElement(0x0009, 0x1001, VR_LO, "abcd")), RawText("abcd\0"));
    EXPECT_EQ(ValueOf(*file.Element(VR_LO, 2, 4)), RawText("abcd\0"));
    EXPECT_EQ(ValueOf(*inContentFile), RawText("abcd\0"));
}

TEST(GetValue, LooksInMemoryThenInTheFileThenInTheContentFile) {
    const OpenedFile file("file");
    const TempDir directory;
    const Tree node = file.Element(VR_LO, 0, 4);
    node->SetFileContentValue(directory.Write("content", "cont").c_str());
    EXPECT_STREQ(ValueOf(*node).c_str(), "file");
    node->file = nullptr;
    EXPECT_STREQ(ValueOf(*node).c_str(), "cont");
    node->SetValue("memo", 4);
    node->file = file.Stream();
    EXPECT_STREQ(ValueOf(*node).c_str(), "memo");
}

TEST(GetValue, EmptyValueIsANul) {
    const OpenedFile file("abcd");
    EXPECT_EQ(ValueOf(*NewElement(0x0009, 0x1001, VR_LO)), RawText("\0"));
    EXPECT_EQ(ValueOf(*file.Element(VR_LO, 2, 0)), RawText("\0"));
}

TEST(GetValue, MissingBytesReadAsZeros) {
    const OpenedFile file("abcd");
    const TempDir directory;
    EXPECT_EQ(ValueOf(*file.Element(VR_LO, 2, 4)), RawText("cd\0\0\0"));
    EXPECT_EQ(ValueOf(*file.Element(VR_LO, 1000, 2)), RawText("\0\0\0"));

    const Tree contentGone = NewElement(0x0009, 0x1001, VR_LO);
    const std::string path = directory.Write("content", "1234");
    contentGone->SetFileContentValue(path.c_str());
    std::filesystem::remove(path);
    EXPECT_EQ(ValueOf(*contentGone), RawText("\0\0\0\0\0"));

    const Tree nowhere = NewElement(0x0009, 0x1001, VR_LO);
    nowhere->length = 2;
    EXPECT_EQ(ValueOf(*nowhere), RawText("\0\0\0"));
}

TEST(GetValue, LargeValueIsReadAsFarAsTheFileGoes) {
    const std::string content(300'001, 'x');
    const OpenedFile file(content);
    const std::string value = ValueOf(*file.Element(VR_OB, 1, 400'000));
    EXPECT_EQ(value, std::string(300'000, 'x') + std::string(100'001, '\0'));
}

TEST(GetValue, RefusesWhatHasNoValue) {
    char buffer[8] = "?";
    const Tree dataSet = NewDataSet();
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ, "abcd");
    const Tree encapsulated = NewElement(0x7FE0, 0x0010, VR_OB, "abcd");
    encapsulated->encapsulated = 1;
    for (PGX_Node* node : {dataSet.get(), sequence.get(), encapsulated.get()}) {
        EXPECT_EQ(node->GetValue(buffer), 0);
    }
    EXPECT_EQ(NewElement(0x0009, 0x1001, VR_LO, "abcd")->GetValue(nullptr), 0);
    EXPECT_EQ(buffer[0], '?');
}

TEST(GetValue, RefusesUndefinedLengthAndUnrepresentablePosition) {
    char buffer[8] = "?";
    const OpenedFile file("abcd");
    EXPECT_EQ(file.Element(VR_UN, 0, kUndefinedLength)->GetValue(buffer), 0);
    EXPECT_EQ(file.Element(VR_UN, 0xFFFFFFFF, 2)->GetValue(buffer), 0);
    EXPECT_EQ(buffer[0], '?');
}

TEST(GetValue, ConvertsNumbersUnitByUnit) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const auto fromBig = [](ValueRepresentation vr) {
        const std::string value =
            ValueOf(*NewElement(0x0009, 0x1001, vr, "12345678", ET_BigEndian));
        return value.substr(0, 8);
    };
    for (const auto vr : {VR_UL, VR_FL, VR_SL, VR_OF})
        EXPECT_EQ(fromBig(vr), "43218765") << vr;
    for (const auto vr : {VR_US, VR_AT, VR_SS, VR_USSS, VR_OWOB, VR_OW}) {
        EXPECT_EQ(fromBig(vr), "21436587") << vr;
    }
    EXPECT_EQ(fromBig(VR_FD), "87654321");
    for (const auto vr : {VR_OB, VR_UN, VR_LO, VR_DS, VR_Unknown}) {
        EXPECT_EQ(fromBig(vr), "12345678") << vr;
    }
}

TEST(GetValue, BytesBehindTheLastWholeUnitAreNotSwapped) {
    EXPECT_EQ(ValueOf(*NewElement(0x0009, 0x1001, VR_UL, "123456", ET_BigEndian)),
              RawText("432156\0"));
}

TEST(GetValue, NumberThatItsFileHoldsInPartIsCompletedBeforeItIsSwapped) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const OpenedFile file("123456");
    EXPECT_EQ(ValueOf(*file.Element(VR_UL, 0, 12, ET_BigEndian)), RawText("4321\0\0"
                                                                          "65\0\0\0\0\0"));
}

TEST(GetValue, OwIsSwappedOnReadingThoughNotOnSetting) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Tree node = NewElement(0x5400, 0x1010, VR_OW, {}, ET_BigEndian);
    node->SetValue("1234", 4);
    EXPECT_EQ(ValueOf(*node), RawText("2143\0"));
}

TEST(GetValue, UidLosesBlanksAtBothEndsAndIsFollowedByZeros) {
    EXPECT_EQ(ValueOf(*NewElement(0x0008, 0x0018, VR_UI, "  1.2.3 ")), RawText("1.2.3\0\0\0\0"));
    EXPECT_EQ(ValueOf(*NewElement(0x0008, 0x0018, VR_UI, RawText(" 1.2 \0"))),
              RawText("1.2\0\0\0\0"));
    EXPECT_EQ(ValueOf(*NewElement(0x0008, 0x0018, VR_UI, "    ")), RawText("\0\0\0\0\0"));
    EXPECT_EQ(ValueOf(*NewElement(0x0008, 0x0018, VR_UI, "1 2")), RawText("1 2\0"));
}

TEST(GetValue, OtherTextsKeepTheirBlanks) {
    EXPECT_EQ(ValueOf(*NewElement(0x0010, 0x0010, VR_PN, " A ")), RawText(" A \0"));
}

TEST(GetStringValue, GivesAtMostSizeBytesAndANulBehindThem) {
    const Tree node = NewElement(0x0010, 0x0010, VR_PN, "DOE^JOHN  ");
    EXPECT_EQ(StringOf(*node, 4), RawText("DOE^\0?"));
    EXPECT_EQ(StringOf(*node, 10), RawText("DOE^JOHN  \0?"));
    EXPECT_EQ(StringOf(*node, 12), RawText("DOE^JOHN  \0???"));
}

TEST(GetStringValue, KeepsAllValuesWithTheirBackslashes) {
    const Tree node = NewElement(0x0008, 0x0008, VR_CS, "ORIGINAL\\PRIMARY");
    EXPECT_STREQ(StringOf(*node, 64).c_str(), "ORIGINAL\\PRIMARY");
}

TEST(GetStringValue, UidIsStrippedBeforeItIsCut) {
    const Tree node = NewElement(0x0008, 0x0018, VR_UI, "  1.2.3 ");
    EXPECT_EQ(StringOf(*node, 3), RawText("1.2\0?"));
    EXPECT_EQ(StringOf(*node, 8), RawText("1.2.3\0\0\0\0?"));
}

TEST(GetStringValue, WithoutRoomOrValueTheTextIsEmpty) {
    char buffer[] = "??";
    const Tree node = NewElement(0x0010, 0x0010, VR_PN, "DOE ");
    EXPECT_EQ(node->GetStringValue(nullptr, 4), 0);
    EXPECT_EQ(node->GetStringValue(buffer, 0), 0);
    EXPECT_STREQ(buffer, "");
    buffer[0] = '?';
    EXPECT_EQ(node->GetStringValue(buffer, -1), 0);
    EXPECT_STREQ(buffer, "");
    buffer[0] = '?';
    EXPECT_EQ(NewElement(0x0008, 0x1140, VR_SQ)->GetStringValue(buffer, 1), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(GetStringValue, EmptyValueIsAText) {
    EXPECT_EQ(StringOf(*NewElement(0x0010, 0x0010, VR_PN), 2), RawText("\0???"));
}

TEST(GetStringValue, CutWithinAUnitOfABigEndianValueKeepsHostOrder) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Tree node = NewElement(0x0009, 0x1001, VR_UL, "1234567", ET_BigEndian);
    EXPECT_EQ(StringOf(*node, 2), RawText("43\0?"));
    EXPECT_EQ(StringOf(*node, 6), RawText("432156\0?"));
    EXPECT_EQ(StringOf(*node, 7), RawText("4321567\0?"));
    const Tree whole = NewElement(0x0009, 0x1001, VR_UL, "12345678", ET_BigEndian);
    EXPECT_EQ(StringOf(*whole, 6), RawText("432187\0?"));
}

TEST(GetNumbers, FirstNumberInEitherByteOrder) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Tree little = NewElement(0x0009, 0x1001, VR_US, RawText("\x02\x01\xFF\xFF"));
    EXPECT_EQ(little->GetUSValue(), 0x0102);
    const Tree big = NewElement(0x0009, 0x1001, VR_US, RawText("\x01\x02\xFF\xFF"), ET_BigEndian);
    EXPECT_EQ(big->GetUSValue(), 0x0102);
    const Tree signedBig = NewElement(0x0009, 0x1001, VR_SS, RawText("\xFF\xFE"), ET_BigEndian);
    EXPECT_EQ(signedBig->GetSSValue(), -2);
    const Tree longBig =
        NewElement(0x0009, 0x1001, VR_UL, RawText("\x01\x02\x03\x04"), ET_BigEndian);
    EXPECT_EQ(longBig->GetULValue(), 0x01020304u);
}

TEST(GetNumbers, UnitsOfTheVrAreSwappedWhateverIsAskedFor) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Tree node =
        NewElement(0x0009, 0x1001, VR_FD, RawText("\0\0\0\0\0\0\x01\x02"), ET_BigEndian);
    EXPECT_EQ(node->GetUSValue(), 0x0102);
}

TEST(GetNumbers, ComeFromTheFileToo) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const OpenedFile file(RawText("\xFF\xFF\x02\x01\x04\x03"));
    const Tree node = file.Element(VR_US, 2, 4);
    EXPECT_EQ(node->GetUSValue(), 0x0102);
    EXPECT_EQ(node->GetULValue(), 0x03040102u);
}

TEST(GetNumbers, ShortValueIsExtendedWithZeros) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(NewElement(0x0009, 0x1001, VR_UL, RawText("\x02\x01"))->GetULValue(), 0x0102u);
    EXPECT_EQ(NewElement(0x0009, 0x1001, VR_US, RawText("\x02"))->GetUSValue(), 2);
    EXPECT_EQ(NewElement(0x0009, 0x1001, VR_SS, RawText("\xFF"))->GetSSValue(), 0x00FF);
}

TEST(GetNumbers, AreZeroWithoutAValue) {
    const OpenedFile file("abcd");
    const Tree empty = NewElement(0x0009, 0x1001, VR_US);
    const Tree undefined = file.Element(VR_US, 0, kUndefinedLength);
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ, "abcd");
    const Tree dataSet = NewDataSet();
    for (PGX_Node* node : {empty.get(), undefined.get(), sequence.get(), dataSet.get()}) {
        EXPECT_EQ(node->GetUSValue(), 0);
        EXPECT_EQ(node->GetULValue(), 0u);
        EXPECT_EQ(node->GetSSValue(), 0);
        EXPECT_EQ(node->GetDSIntValue(), 0);
        EXPECT_EQ(node->GetDSDoubleValue(), 0.0);
    }
}

TEST(GetDecimal, IsTheFirstValue) {
    EXPECT_EQ(DoubleOf("12.9\\3.5"), 12.9);
    EXPECT_EQ(DoubleOf("-2.7 "), -2.7);
    EXPECT_EQ(DoubleOf("1.5e3\\2"), 1500.0);
    EXPECT_EQ(DoubleOf(RawText("42\0")), 42.0);
}

TEST(GetDecimal, LeadingBlanksAndPlusAreSkipped) {
    EXPECT_EQ(DoubleOf("  7"), 7.0);
    EXPECT_EQ(DoubleOf(" \t\r\n+7"), 7.0);
    EXPECT_EQ(DoubleOf("+.5"), 0.5);
    EXPECT_EQ(DoubleOf("5."), 5.0);
}

TEST(GetDecimal, IsZeroWithoutANumber) {
    for (const char* text : {"", " ", "+", "-", "+-5", "++5", "-+5", "\\5", "A1", ".", "e5"}) {
        EXPECT_EQ(DoubleOf(text), 0.0) << text;
    }
}

TEST(GetDecimal, StopsWhereTheNumberCannotGoOn) {
    EXPECT_EQ(DoubleOf("12abc"), 12.0);
    EXPECT_EQ(DoubleOf("1e"), 1.0);
    EXPECT_EQ(DoubleOf("1e+"), 1.0);
    EXPECT_EQ(DoubleOf("1,5"), 1.0);
    EXPECT_EQ(DoubleOf("1.2.3"), 1.2);
}

TEST(GetDecimal, MayBeHexadecimal) {
    EXPECT_EQ(DoubleOf("0x1A"), 26.0);
    EXPECT_EQ(DoubleOf(" -0X.8p4\\2"), -8.0);
    EXPECT_EQ(DoubleOf("0x1p-9999"), 0.0);
    EXPECT_EQ(DoubleOf("-0x1p9999"), -HUGE_VAL);
    for (const char* text : {"0x", "0x-1", "0xinf", "0xg"})
        EXPECT_EQ(DoubleOf(text), 0.0) << text;
}

TEST(GetDecimal, BeyondTheRangeOfDoubleIsInfiniteOrZero) {
    EXPECT_EQ(DoubleOf("1e400"), HUGE_VAL);
    EXPECT_EQ(DoubleOf("-1e400"), -HUGE_VAL);
    EXPECT_EQ(DoubleOf("0.001e999999999999999999999"), HUGE_VAL);
    EXPECT_EQ(DoubleOf("1e-400"), 0.0);
    EXPECT_EQ(DoubleOf("1234e-999999999999999999999"), 0.0);
    EXPECT_EQ(DoubleOf("0e999"), 0.0);
    EXPECT_EQ(DoubleOf(std::string(400, '9')), HUGE_VAL);
    EXPECT_EQ(DoubleOf("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(DoubleOf("0." + std::string(400, '0') + "1e401"), 1.0);
}

TEST(GetDecimal, DigitOfAHexadecimalNumberCountsFourBitsOfItsExponent) {
    EXPECT_EQ(DoubleOf("0x1" + std::string(499, '0') + "p-600"), HUGE_VAL);
    EXPECT_EQ(DoubleOf("-0x1" + std::string(499, '0') + "p-600"), -HUGE_VAL);
    EXPECT_EQ(DoubleOf("0x1" + std::string(499, '0') + "p-1996"), 1.0);
    EXPECT_EQ(DoubleOf("0x1" + std::string(499, '0') + "p-4000"), 0.0);
    EXPECT_EQ(DoubleOf("0x0." + std::string(400, '0') + "1p410"), 0.0);
}

TEST(GetDecimal, LongTextsAreReadAsFarAsTheNumberGoes) {
    EXPECT_EQ(DoubleOf(std::string(1000, ' ') + "7"), 7.0);
    EXPECT_EQ(DoubleOf("1" + std::string(290, '0') + "e-290 "), 1.0);
    EXPECT_EQ(DoubleOf(std::string(127, '0') + "1.5e1" + std::string(500, ' ')), 15.0);
    EXPECT_EQ(DoubleOf("5\\" + std::string(100'000, '1')), 5.0);
}

TEST(GetDecimal, PointIsThePointInEveryLocale) {
    const CommaLocale locale;
    if (!locale.Found()) GTEST_SKIP() << "no locale with a decimal comma";
    EXPECT_EQ(DoubleOf("2.5"), 2.5);
}

TEST(GetDecimal, IntegerIsTruncatedTowardZero) {
    EXPECT_EQ(IntOf("12.9\\3.5"), 12);
    EXPECT_EQ(IntOf("-2.7"), -2);
    EXPECT_EQ(IntOf("0.999"), 0);
    EXPECT_EQ(IntOf("1e3"), 1000);
}

TEST(GetDecimal, IntegerIsClamped) {
    EXPECT_EQ(IntOf("2147483647"), INT32_MAX);
    EXPECT_EQ(IntOf("2147483648"), INT32_MAX);
    EXPECT_EQ(IntOf("-2147483648"), INT32_MIN);
    EXPECT_EQ(IntOf("-3e9"), INT32_MIN);
    EXPECT_EQ(IntOf("1e400"), INT32_MAX);
    EXPECT_EQ(IntOf("-inf"), INT32_MIN);
    EXPECT_EQ(IntOf("nan"), 0);
}

// These lengths once made every getter allocate and fill as many bytes.
TEST(ClaimedLength, CostsTheGettersNothing) {
    const OpenedFile file("  1.50\\7");
    const Tree text = file.Element(VR_DS, 0, kClaimedLength);
    EXPECT_EQ(StringOf(*text, 6), RawText("  1.50\0?"));
    EXPECT_EQ(StringOf(*text, 10), RawText("  1.50\\7\0\0\0?"));
    EXPECT_EQ(text->GetDSDoubleValue(), 1.5);
    EXPECT_EQ(text->GetDSIntValue(), 1);
    EXPECT_EQ(text->GetUSValue(), 0x2020);
    const Tree uid = file.Element(VR_UI, 0, kClaimedLength);
    EXPECT_EQ(StringOf(*uid, 4), RawText("1.50\0?"));
    const Tree unfinished = file.Element(VR_DS, 7, kClaimedLength);
    EXPECT_EQ(unfinished->GetDSDoubleValue(), 7.0);
}

TEST(GetFileData, GivesRawBytesOfAnyPartOfTheFile) {
    char buffer[4];
    const OpenedFile file("0123456789");
    const Tree dataSet = NewDataSet();
    dataSet->file = file.Stream();
    dataSet->endian = ET_BigEndian;
    EXPECT_EQ(dataSet->GetFileData(buffer, 6, 4), 1);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    EXPECT_EQ(dataSet->GetFileData(buffer, 0, 2), 1);
    EXPECT_EQ(std::string(buffer, 4), "0189");
    EXPECT_EQ(dataSet->GetFileData(buffer, 3, 0), 1);
}

TEST(GetFileData, FailsUnlessEveryByteWasRead) {
    char buffer[4];
    const OpenedFile file("0123456789");
    const Tree dataSet = NewDataSet();
    dataSet->file = file.Stream();
    EXPECT_EQ(dataSet->GetFileData(buffer, 7, 4), 0);
    EXPECT_EQ(dataSet->GetFileData(buffer, 0xFFFFFFFF, 1), 0);
    EXPECT_EQ(dataSet->GetFileData(buffer, 6, 4), 1);
}

TEST(GetFileData, IsForDataSetsWithAFile) {
    char buffer[4];
    const OpenedFile file("0123");
    EXPECT_EQ(file.Element(VR_LO, 0, 4)->GetFileData(buffer, 0, 4), 0);
    EXPECT_EQ(NewDataSet()->GetFileData(buffer, 0, 4), 0);
}

}  // namespace
