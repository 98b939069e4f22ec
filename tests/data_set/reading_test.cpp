// The C++ layer: texts, numbers and bytes of elements.
#include "data_set/opened.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "support/comma_locale.h"
#include "support/current_edition.h"
#include "support/peak_memory.h"

namespace {

using namespace pgkit_test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr pgkit::tag kSpacing{0x0028, 0x0030};

// One element of an explicit little-endian file.
Opened WithElement(uint16_t group, uint16_t element, std::string_view vr, std::string_view value,
                   uint32_t loadBelow = 64) {
    return Opened(Part10Stream().Element(group, element, vr, value), loadBelow);
}

TEST(DataSetReading, TheHeadersExampleReadsAnImage) {
    Opened image(
        Part10Stream().Element(0x0010, 0x0010, "PN", "DOE^JANE").ElementUS(0x0028, 0x0010, 64));
    EXPECT_EQ(image->find("PatientName").text(), "DOE^JANE");
    EXPECT_EQ(image->find("Rows").number<int>(), 64);
    EXPECT_EQ(image->find("Columns").number<int>(), std::nullopt);
}

TEST(DataSetReading, ElementsTellWhatTheyAre) {
    Opened file(Part10Stream()
                    .Element(0x0010, 0x0010, "PN", "DOE^")
                    .Sequence(0x0040, 0x0275)
                    .EndSequence()
                    .Element(0x0041, 0x1001, "LO", "AB"));
    const pgkit::element name = file->find("PatientName");
    EXPECT_EQ(name.tag(), (pgkit::tag{0x0010, 0x0010}));
    EXPECT_EQ(name.tag().text(), "(0010,0010)");
    EXPECT_EQ(name.vr(), uint32_t{VR_PN});
    EXPECT_EQ(name.vr_name(), "PN");
    EXPECT_EQ(name.name(), "PatientName");
    EXPECT_EQ(name.length(), 4u);
    EXPECT_FALSE(name.is_sequence());
    EXPECT_FALSE(name.empty());
    const pgkit::element sequence = file->find({0x0040, 0x0275});
    EXPECT_TRUE(sequence.is_sequence());
    EXPECT_TRUE(sequence.empty());
    EXPECT_EQ(file->find({0x0041, 0x1001}).name(), "");
    EXPECT_TRUE(file->find({0x0041, 0x1001}).tag().is_private());
}

TEST(DataSetReading, NothingThereAnswersAsNothing) {
    const pgkit::element none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.text(), "");
    EXPECT_THAT(none.texts(), IsEmpty());
    EXPECT_EQ(none.number<double>(), std::nullopt);
    EXPECT_THAT(none.numbers<int>(), IsEmpty());
    EXPECT_THAT(none.bytes(), IsEmpty());
    EXPECT_TRUE(none.items().empty());
    EXPECT_EQ(none.item_count(), 0u);
    EXPECT_FALSE(none[0]);
    EXPECT_EQ(none.tag(), pgkit::tag());
    EXPECT_EQ(none.vr(), uint32_t{VR_Unknown});
    EXPECT_EQ(none.vr_name(), "????");
    EXPECT_EQ(none.name(), "");
    EXPECT_TRUE(none.empty());
    const pgkit::item nowhere;
    EXPECT_FALSE(nowhere.find("PatientName"));
    EXPECT_TRUE(nowhere.begin() == nowhere.end());
    EXPECT_TRUE(nowhere.frames().empty());
}

TEST(DataSetReading, TextsAreUtf8ByTheCharacterSetOfTheirItem) {
    Opened file(Part10Stream()
                    .Element(0x0008, 0x0005, "CS", "ISO_IR 100")
                    .Element(0x0010, 0x0010, "PN", "M\xFCller")
                    .Sequence(0x0040, 0x0275)
                    .Item()
                    .Element(0x0040, 0x0007, "LO",
                             "Sch\xE4"
                             "del")
                    .EndItem()
                    .Item()
                    .Element(0x0008, 0x0005, "CS", "ISO_IR 144")
                    .Element(0x0040, 0x0007, "LO", "\xBC\xDE\xD7\xD3")
                    .EndItem()
                    .EndSequence());
    EXPECT_EQ(file->find("PatientName").text(), "Müller");
    const pgkit::element requests = file->find("RequestAttributesSequence");
    EXPECT_EQ(requests[0].find({0x0040, 0x0007}).text(), "Schädel");
    EXPECT_EQ(requests[1].find({0x0040, 0x0007}).text(), "Мозг");
    EXPECT_EQ(file->find("RequestAttributesSequence[1].0040,0007").text(), "Мозг");
}

TEST(DataSetReading, LongTextsAreWhole) {
    const std::string comment(100'001, 'x');
    Opened file = WithElement(0x0020, 0x4000, "LT", comment.substr(0, 65'534));
    EXPECT_EQ(file->find("ImageComments").text(), comment.substr(0, 65'534));
    Opened unlimited = WithElement(0x0040, 0xA160, "UT", comment + " ");
    EXPECT_EQ(unlimited->find("TextValue").text(), comment);
}

TEST(DataSetReading, SeveralValuesComeOneByOneOrWithBackslashes) {
    Opened file(Part10Stream()
                    .Element(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY \\\\AXIAL ")
                    .Element(0x0020, 0x4000, "LT", "C:\\NOTES ")
                    .Element(0x0028, 0x0030, "DS", "0.5\\ .25 "));
    EXPECT_EQ(file->find("ImageType").text(), "ORIGINAL\\PRIMARY \\\\AXIAL");
    EXPECT_THAT(file->find("ImageType").texts(), ElementsAre("ORIGINAL", "PRIMARY", "", "AXIAL"));
    EXPECT_THAT(file->find("ImageComments").texts(), ElementsAre("C:\\NOTES"));
    EXPECT_THAT(file->find("PixelSpacing").numbers<double>(), ElementsAre(0.5, 0.25));
    EXPECT_EQ(file->find("PixelSpacing").number<double>(1), 0.25);
    EXPECT_EQ(file->find("PixelSpacing").number<double>(2), std::nullopt);
}

// ---- Numbers ------------------------------------------------------------------------------------

struct BinaryNumber {
    const char* vr;
    std::string bytes;
    double number;
    const char* text;
};

TEST(DataSetReading, EveryBinaryValueRepresentationHasNumbers) {
    const CurrentEdition current;
    const BinaryNumber cases[] = {
        {"US", BytesOf(uint16_t{65535}), 65535, "65535"},
        {"SS", BytesOf(int16_t{-2}), -2, "-2"},
        {"UL", BytesOf(uint32_t{4294967295}), 4294967295.0, "4294967295"},
        {"SL", BytesOf(int32_t{-3}), -3, "-3"},
        {"UV", BytesOf(uint64_t{1} << 63), 9223372036854775808.0, "9223372036854775808"},
        {"SV", BytesOf(int64_t{-5}), -5, "-5"},
        {"FL", BytesOf(0.1f), double{0.1f}, "0.1"},
        {"FD", BytesOf(1e-300), 1e-300, "1e-300"},
        {"AT", BytesOf(uint16_t{0x0010}) + BytesOf(uint16_t{0x0020}), 0x00100020, "(0010,0020)"},
        {"OW", BytesOf(uint16_t{513}), 513, ""},
        {"OL", BytesOf(uint32_t{7}), 7, ""},
        {"OV", BytesOf(uint64_t{8}), 8, ""},
        {"OF", BytesOf(0.5f), 0.5, ""},
        {"OD", BytesOf(0.25), 0.25, ""},
    };
    for (const BinaryNumber& c : cases) {
        Opened file = WithElement(0x0009, 0x1001, c.vr, c.bytes + c.bytes);
        const pgkit::element element = file->find({0x0009, 0x1001});
        EXPECT_EQ(element.number<double>(), c.number) << c.vr;
        EXPECT_THAT(element.numbers<double>(), ElementsAre(c.number, c.number)) << c.vr;
        EXPECT_EQ(element.number<double>(2), std::nullopt) << c.vr;
        EXPECT_EQ(element.text(), *c.text == 0 ? "" : std::string(c.text) + "\\" + c.text) << c.vr;
    }
    Opened bytes = WithElement(0x0009, 0x1001, "OB", "\x01\xFF");
    EXPECT_THAT(bytes->find({0x0009, 0x1001}).numbers<int>(), ElementsAre(1, 255));
}

TEST(DataSetReading, NumbersOfBigEndianFilesAreInHostOrder) {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Part10("1.2.840.10008.1.2.2").ElementUS(0x0028, 0x0010, 513);
    stream.Header(0x0018, 0x9073, "FD", 8).U32(0x3FF80000).U32(0);
    Opened file(stream);
    EXPECT_EQ(file->find("Rows").number<int>(), 513);
    EXPECT_EQ(file->find("AcquisitionDuration").number<double>(), 1.5);
}

TEST(DataSetReading, ANumberThatTheTypeCannotHoldIsNone) {
    Opened file(Part10Stream()
                    .ElementUS(0x0028, 0x0010, 300)
                    .Element(0x0028, 0x0106, "SS", BytesOf(int16_t{-1}))
                    .Element(0x0028, 0x0030, "DS", "2.0\\2.5\\-1\\1e400 ")
                    .Element(0x0018, 0x9073, "FD", BytesOf(1e300)));
    EXPECT_EQ(file->find("Rows").number<uint8_t>(), std::nullopt);
    EXPECT_EQ(file->find("Rows").number<int8_t>(), std::nullopt);
    EXPECT_EQ(file->find("SmallestImagePixelValue").number<unsigned>(), std::nullopt);
    EXPECT_EQ(file->find("SmallestImagePixelValue").number<int8_t>(), -1);
    EXPECT_EQ(file->find(kSpacing).number<int>(0), 2);
    EXPECT_EQ(file->find(kSpacing).number<int>(1), std::nullopt);
    EXPECT_EQ(file->find(kSpacing).number<unsigned>(2), std::nullopt);
    EXPECT_EQ(file->find(kSpacing).number<int>(3), std::nullopt);
    EXPECT_EQ(file->find("AcquisitionDuration").number<float>(), std::nullopt);
    EXPECT_EQ(file->find("AcquisitionDuration").number<int64_t>(), std::nullopt);
    // All or none.
    EXPECT_THAT(file->find(kSpacing).numbers<int>(), IsEmpty());
    EXPECT_EQ(file->find(kSpacing).numbers<double>().size(), 4u);
}

TEST(DataSetReading, DecimalTextsAreReadByTheirWholeText) {
    const struct {
        const char* text;
        std::optional<double> number;
    } cases[] = {
        {"1", 1},
        {" 1 ", 1},
        {"+1.50", 1.5},
        {"-.5", -0.5},
        {"5.", 5},
        {"1e3 ", 1000},
        {"1E-3", 0.001},
        {"0x10", std::nullopt},
        {"", std::nullopt},
        {" ", std::nullopt},
        {"1a", std::nullopt},
        {"1 2 ", std::nullopt},
        {".", std::nullopt},
        {"1.2.3", std::nullopt},
        {"1e", std::nullopt},
        {"--1", std::nullopt},
        {"1,5", std::nullopt},
        {"nan ", std::nullopt},
        {"inf ", std::nullopt},
        {"0.1234567890123456789", 0.1234567890123456789},
        {"179769313486231570000e288 ", 1.7976931348623157e308},
        {"0.3", 0.3},
        {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
    };
    for (const auto& c : cases) {
        Opened file = WithElement(0x0028, 0x0030, "DS", c.text);
        EXPECT_EQ(file->find(kSpacing).number<double>(), c.number) << '"' << c.text << '"';
    }
}

TEST(DataSetReading, IntegerTextsAreExactToTheirLastDigit) {
    Opened file(Part10Stream().Element(
        0x0020, 0x0013, "IS",
        "9223372036854775807\\-9223372036854775808\\18446744073709551615\\18446744073709551616 "));
    const pgkit::element number = file->find("InstanceNumber");
    EXPECT_EQ(number.number<int64_t>(0), INT64_MAX);
    EXPECT_EQ(number.number<int64_t>(1), INT64_MIN);
    EXPECT_EQ(number.number<int64_t>(2), std::nullopt);
    EXPECT_EQ(number.number<uint64_t>(2), UINT64_MAX);
    EXPECT_EQ(number.number<uint64_t>(3), std::nullopt);
}

TEST(DataSetReading, TheLocaleDoesNotMatter) {
    const CommaLocale locale;
    if (!locale.Found()) GTEST_SKIP() << "no locale with a comma";
    Opened file(Part10Stream()
                    .Element(0x0018, 0x9073, "FD", BytesOf(0.3))
                    .Element(0x0028, 0x0030, "DS", "0.12345678901234567\\1.5"));
    EXPECT_EQ(file->find("AcquisitionDuration").text(), "0.3");
    EXPECT_EQ(file->find(kSpacing).number<double>(0), 0.12345678901234567);
    EXPECT_EQ(file->find(kSpacing).number<double>(1), 1.5);
    ASSERT_TRUE(file->set_number("PixelSpacing", 0.75));
    EXPECT_EQ(file->find(kSpacing).text(), "0.75");
}

TEST(DataSetReading, AValueFarBehindOthersIsFound) {
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += std::to_string(i) + ".5\\";
    Opened file = WithElement(0x0009, 0x1001, "DS", text + "7 ");
    const pgkit::element numbers = file->find({0x0009, 0x1001});
    EXPECT_EQ(numbers.number<double>(999), 999.5);
    EXPECT_EQ(numbers.number<int>(1000), 7);
    EXPECT_EQ(numbers.number<int>(1001), std::nullopt);
    EXPECT_EQ(numbers.number<int>(SIZE_MAX), std::nullopt);
    EXPECT_EQ(numbers.numbers<double>().size(), 1001u);
}

// ---- Bytes --------------------------------------------------------------------------------------

TEST(DataSetReading, BytesAreTheValueWithItsPadding) {
    Opened file(Part10Stream()
                    .Element(0x0009, 0x1001, "OB", std::string_view("\1\2\0\4", 4))
                    .Element(0x0009, 0x1002, "UN", "AB"));
    EXPECT_THAT(file->find({0x0009, 0x1001}).bytes(), ElementsAre(1, 2, 0, 4));
    EXPECT_THAT(file->find({0x0009, 0x1002}).bytes(), ElementsAre('A', 'B'));
    EXPECT_EQ(file->find({0x0009, 0x1002}).text(), "");
}

TEST(DataSetReading, ValuesThatStayInTheFileAreReadFromThere) {
    std::string value(100'000, 'a');
    value.back() = '\0';
    Opened file = WithElement(0x0009, 0x1001, "OB", value, 0);
    const std::vector<uint8_t> bytes = file->find({0x0009, 0x1001}).bytes();
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), value);
    EXPECT_EQ(file->find({0x0009, 0x1001}).number<int>(99'998), 'a');
    EXPECT_EQ(file->find({0x0009, 0x1001}).number<int>(99'999), 0);
}

TEST(DataSetReading, WhatTheFileLacksOfAValueIsLeftOut) {
    StreamBuilder stream = Part10Stream();
    stream.Header(0x0009, 0x1001, "OB", 1000).Text("short");
    Opened file(stream);
    EXPECT_EQ(file->find({0x0009, 0x1001}).length(), 1000u);
    EXPECT_THAT(file->find({0x0009, 0x1001}).bytes(), ElementsAre('s', 'h', 'o', 'r', 't'));
    EXPECT_EQ(file->find({0x0009, 0x1001}).number<int>(4), 't');
    EXPECT_EQ(file->find({0x0009, 0x1001}).number<int>(5), std::nullopt);
}

TEST(DataSetReading, AClaimOfGigabytesCostsNoMemory) {
    StreamBuilder stream = Part10Stream();
    stream.Header(0x0009, 0x1001, "OB", 0xFFFFFFF0).Text("short");
    Opened file(stream);
    const pgkit::element element = file->find({0x0009, 0x1001});
    EXPECT_EQ(element.length(), 0xFFFFFFF0u);
    EXPECT_EQ(element.bytes().size(), 5u);
    EXPECT_LT(element.bytes().capacity(), 100'000u);
    EXPECT_THAT(element.numbers<int>(), ElementsAre('s', 'h', 'o', 'r', 't'));
    EXPECT_EQ(element.number<int>(SIZE_MAX), std::nullopt);
}

TEST(DataSetReading, BigEndianValuesThatAreCutShortLoseTheirLastNumber) {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Part10("1.2.840.10008.1.2.2");
    stream.Header(0x0009, 0x1001, "US", 6).U16(1).U16(2);
    Opened file(stream, 0);
    EXPECT_THAT(file->find({0x0009, 0x1001}).numbers<int>(), ElementsAre(1, 2));
}

// ---- Items --------------------------------------------------------------------------------------

TEST(DataSetReading, DataSetsAreRangesOfElementsAndSequencesOfItems) {
    Opened file(Part10Stream()
                    .Sequence(0x0008, 0x1115)
                    .Item()
                    .Element(0x0020, 0x000E, "UI", "1.2\0")
                    .EndItem()
                    .Item()
                    .Element(0x0020, 0x000E, "UI", "1.3\0")
                    .EndItem()
                    .EndSequence()
                    .Element(0x0010, 0x0020, "LO", "ID"));
    std::string found;
    for (const pgkit::element element : *file)
        found += element.tag().text();
    EXPECT_EQ(found, "(0002,0010)(0008,1115)(0010,0020)");
    found.clear();
    for (const pgkit::item item : file->find("ReferencedSeriesSequence").items())
        found += item.find("SeriesInstanceUID").text() + " ";
    EXPECT_EQ(found, "1.2 1.3 ");
    EXPECT_EQ(file->find("ReferencedSeriesSequence").item_count(), 2u);
    EXPECT_TRUE(file->find("PatientID").items().empty());
}

}  // namespace
