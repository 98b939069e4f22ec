// What PS3.18, annex F, says of the JSON of a data set: a test for each of its rules, named by its
// section.
#include <gtest/gtest.h>

#include "support/current_edition.h"
#include "support/host_order.h"
#include "support/json.h"
#include "support/nodes.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using pgkit_test::CurrentEdition;
using pgkit_test::JsonOf;
using pgkit_test::OneElement;
using pgkit_test::OneItem;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::ParseJson;
using pgkit_test::RawText;
using pgkit_test::Rewritten;
using pgkit_test::StreamBuilder;
using pgkit_test::ValueFromJson;
using pgkit_test::ValueJson;
using pgkit_test::VrMode;

constexpr const char* kExplicitBigEndian = "1.2.840.10008.1.2.2";
constexpr const char* kImplicit = "1.2.840.10008.1.2";

// The value in a big-endian file.
std::string BigEndianValueJson(std::string_view vr, std::string_view value) {
    StreamBuilder file(VrMode::Explicit, Order::Big);
    file.Part10(kExplicitBigEndian).Element(0x0009, 0x1001, vr, value);
    const std::string json = JsonOf(file);
    const size_t begin = json.find("\"vr\"") + 9;
    return json.substr(begin, json.size() - begin - 2);
}

// ---- F.2.2 DICOM JSON Model object structure ----------------------------------------------------

TEST(AnnexF22ObjectStructure, IsAnObjectOfAttributesNamedByEightUpperCaseDigits) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0060, "CS", "MR");
    file.Element(0x0008, 0x103E, "LO", "Head").Element(0x7FE0, 0x0010, "OB", "ab");
    EXPECT_EQ(JsonOf(file), R"({"00080060":{"vr":"CS","Value":["MR"]},)"
                            R"("0008103E":{"vr":"LO","Value":["Head"]},)"
                            R"("7FE00010":{"vr":"OB","InlineBinary":"YWI="}})");
}

TEST(AnnexF22ObjectStructure, OrdersAttributesByTheirNames) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0010, 0x0020, "LO", "ID");
    file.Element(0x0008, 0x0060, "CS", "MR").Element(0x0009, 0x0010, "LO", "A MAKER ");
    EXPECT_EQ(JsonOf(file), R"({"00080060":{"vr":"CS","Value":["MR"]},)"
                            R"("00090010":{"vr":"LO","Value":["A MAKER"]},)"
                            R"("00100020":{"vr":"LO","Value":["ID"]}})");
}

// Names in an object are unique, and so are elements in a data set.
TEST(AnnexF22ObjectStructure, HasTheFirstOfSeveralElementsOfOneTag) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0010, 0x0020, "LO", "ID");
    file.Element(0x0010, 0x0020, "LO", "OTHER ");
    EXPECT_EQ(JsonOf(file), R"({"00100020":{"vr":"LO","Value":["ID"]}})");
    EXPECT_EQ(Rewritten(R"({"00100020":{"vr":"LO","Value":["ID"]},"00100020":{"vr":"LO"}})"),
              "the same element or member twice at PatientID");
}

TEST(AnnexF22ObjectStructure, HasNoGroupLengths) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").ElementUL(0x0008, 0x0000, 10);
    file.Element(0x0008, 0x0060, "CS", "MR");
    const std::string json = R"({"00080060":{"vr":"CS","Value":["MR"]}})";
    EXPECT_EQ(JsonOf(file), json);
    EXPECT_EQ(
        Rewritten(R"({"00080000":{"vr":"UL","Value":[10]},"00080060":{"vr":"CS","Value":["MR"]}})"),
        json);
}

// A data set is what follows the File Meta Information (PS3.10, 7.1).
TEST(AnnexF22ObjectStructure, HasNoFileMetaInformation) {
    EXPECT_EQ(JsonOf(StreamBuilder().Part10("1.2.840.10008.1.2.1").Element(8, 0x60, "CS", "MR")),
              R"({"00080060":{"vr":"CS","Value":["MR"]}})");
    EXPECT_EQ(Rewritten(R"({"00020010":{"vr":"UI","Value":["1.2.840.10008.1.2.1"]}})"), "{}");
}

TEST(AnnexF22ObjectStructure, IsUtf8AndSaysSo) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0005, "CS", "ISO_IR 100");
    file.Element(0x0008, 0x1030, "LO",
                 "Sch\xE4"
                 "del");
    EXPECT_EQ(JsonOf(file), R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},)"
                            R"("00081030":{"vr":"LO","Value":["Schädel"]}})");
}

TEST(AnnexF22ObjectStructure, DecodesItemsByTheirOwnCharacterSetOrTheInheritedOne) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0005, "CS", "ISO_IR 100");
    file.Sequence(0x0008, 0x1140);
    file.Item().Element(0x0008, 0x0005, "CS", "ISO_IR 144").Element(8, 0x1030, "LO", "\xB4\xB4");
    file.EndItem().Item().Element(0x0008, 0x1030, "LO", "\xE4\xE4").EndItem().EndSequence();
    EXPECT_EQ(JsonOf(file),
              R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},"00081140":{"vr":"SQ","Value":[)"
              R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},)"
              R"("00081030":{"vr":"LO","Value":["ДД"]}},)"
              R"({"00081030":{"vr":"LO","Value":["ää"]}}]}})");
}

// Without the attribute readers of the JSON would take the texts for ASCII.
TEST(AnnexF22ObjectStructure, AddsTheCharacterSetWhereTextsNeedOne) {
    EXPECT_EQ(JsonOf(OneElement(0x0008, 0x1030, "LO", "\xC3\xA4")),
              R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},)"
              R"("00081030":{"vr":"LO","Value":["ä"]}})");
    EXPECT_EQ(JsonOf(OneElement(0x0008, 0x0001, "LO", "\xC3\xA4")),
              R"({"00080001":{"vr":"LO","Value":["ä"]},)"
              R"("00080005":{"vr":"CS","Value":["ISO_IR 192"]}})");
}

TEST(AnnexF22ObjectStructure, KeepsPrivateElementsWithTheirCreators) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0009, 0x0010, "LO", "A MAKER ");
    file.Element(0x0009, 0x1001, "SH", "abcd");
    EXPECT_EQ(JsonOf(file), R"({"00090010":{"vr":"LO","Value":["A MAKER"]},)"
                            R"("00091001":{"vr":"SH","Value":["abcd"]}})");
}

TEST(AnnexF22ObjectStructure, HasAtMostOneOfTheThreeKindsOfValues) {
    constexpr const char* kError = "several of Value, InlineBinary and BulkDataURI at PixelData";
    EXPECT_EQ(Rewritten(R"({"7FE00010":{"vr":"OB","Value":[],"InlineBinary":"YWI="}})"), kError);
    EXPECT_EQ(Rewritten(R"({"7FE00010":{"vr":"OB","InlineBinary":"YWI=","Value":[]}})"), kError);
    EXPECT_EQ(Rewritten(R"({"7FE00010":{"vr":"OB","InlineBinary":"YWI=","BulkDataURI":"x"}})"),
              kError);
}

// ---- F.2.3 DICOM JSON Value Representation ------------------------------------------------------

TEST(AnnexF23ValueRepresentation, HasStringsForMostTexts) {
    const CurrentEdition edition;
    for (const std::string vr :
         {"AE", "AS", "CS", "DA", "DT", "LO", "LT", "SH", "ST", "TM", "UC", "UI", "UR", "UT"}) {
        EXPECT_EQ(ValueJson(vr, "1234"), R"(,"Value":["1234"])") << vr;
        EXPECT_EQ(ValueFromJson(vr, R"("Value":["1234"])"), "1234") << vr;
        EXPECT_EQ(ValueFromJson(vr, R"("Value":[1234])"), "a value of the wrong type at 00091001");
    }
}

TEST(AnnexF23ValueRepresentation, LeavesOutThePaddingOfTexts) {
    EXPECT_EQ(ValueJson("LO", " a \\b c \\ "), R"(,"Value":[" a","b c",null])");
    EXPECT_EQ(ValueJson("UI", std::string_view("1.2.3\0", 6)), R"(,"Value":["1.2.3"])");
    EXPECT_EQ(ValueJson("ST", " a\\b  "), R"(,"Value":[" a\\b"])");
}

TEST(AnnexF23ValueRepresentation, EscapesWhatStringsCannotHold) {
    EXPECT_EQ(ValueJson("LT", "\"a\"\r\n\t\x01\\\x7F/"),
              ",\"Value\":[\"\\\"a\\\"\\r\\n\\t\\u0001\\\\\x7F/\"]");
    EXPECT_EQ(ValueFromJson("LT", R"("Value":["\"a\"\r\n\t\u0001\\\/ä"])"),
              "\"a\"\r\n\t\x01\\/\xC3\xA4 ");
}

TEST(AnnexF23ValueRepresentation, HasATagAsEightDigits) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ValueJson("AT", RawText("\x10\x00\x10\x00\xE0\x7F\x0A\x0B")),
              R"(,"Value":["00100010","7FE00B0A"])");
    EXPECT_EQ(BigEndianValueJson("AT", RawText("\x7F\xE0\x0B\x0A")), R"(,"Value":["7FE00B0A"])");
    EXPECT_EQ(ValueFromJson("AT", R"("Value":["7FE00B0A"])"), "\xE0\x7F\x0A\x0B");
    EXPECT_EQ(ValueFromJson("AT", R"("Value":["7FE0B0A"])"), "no tag of an element at 00091001");
    EXPECT_EQ(ValueFromJson("AT", R"("Value":[7])"), "a value of the wrong type at 00091001");
}

TEST(AnnexF23ValueRepresentation, HasNumbersForIntegerStrings) {
    EXPECT_EQ(ValueJson("IS", " 12 \\-7\\+5\\007"), R"(,"Value":[12,-7,5,7])");
    EXPECT_EQ(ValueFromJson("IS", R"("Value":[12,-7,1e2,null,"007"])"), "12\\-7\\100\\\\007");
}

// "a JSON String representation can be used to preserve the original format"
TEST(AnnexF23ValueRepresentation, HasStringsForIntegerStringsThatAreNone) {
    EXPECT_EQ(ValueJson("IS", "1.5\\x\\2147483648\\-2147483648"),
              R"(,"Value":["1.5","x","2147483648",-2147483648])");
    EXPECT_EQ(ValueFromJson("IS", R"("Value":[1.5])"),
              "a number beyond the range of its value representation at 00091001");
    EXPECT_EQ(ValueFromJson("IS", R"("Value":[2147483648])"),
              "a number beyond the range of its value representation at 00091001");
}

TEST(AnnexF23ValueRepresentation, HasNumbersForDecimalStringsWithTheirDigits) {
    EXPECT_EQ(ValueJson("DS", "1.50\\ -.5\\+3.\\1E+05\\0"), R"(,"Value":[1.50,-0.5,3,1e+05,0])");
    EXPECT_EQ(ValueFromJson("DS", R"("Value":[1.50,-0.5,1e+05,"x",null])"),
              "1.50\\-0.5\\1e+05\\x\\");
}

// "or if needed to avoid losing precision of a decimal string"
TEST(AnnexF23ValueRepresentation, HasStringsForDecimalStringsBeyondThePrecisionOfNumbers) {
    EXPECT_EQ(ValueJson("DS", "9007199254740993\\9007199254740991\\1e999\\1e-320\\1.2.3"),
              R"(,"Value":["9007199254740993",9007199254740991,"1e999","1e-320","1.2.3"])");
    EXPECT_EQ(ValueJson("DS", "0.12345678901234567890"), R"(,"Value":["0.12345678901234567890"])");
}

TEST(AnnexF23ValueRepresentation, RoundsNumbersThatAreLongerThanDecimalStrings) {
    EXPECT_EQ(ValueFromJson("DS", R"("Value":[0.33333333333333331])"), "0.33333333333333");
    EXPECT_EQ(ValueFromJson("DS", R"("Value":[0.1000000000000000055])"), "0.1 ");
    EXPECT_EQ(ValueFromJson("DS", R"("Value":[-1.2345678901234567e-100])"), "-1.23456789e-100");
    EXPECT_EQ(ValueFromJson("DS", R"("Value":[-12345678901234567890])"), "-1.23456789e+19 ");
}

TEST(AnnexF23ValueRepresentation, HasNumbersForBinaryIntegers) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ValueJson("US", RawText("\xFF\xFF\x01\x00")), R"(,"Value":[65535,1])");
    EXPECT_EQ(ValueJson("SS", RawText("\xFF\xFF\x01\x00")), R"(,"Value":[-1,1])");
    EXPECT_EQ(ValueJson("UL", RawText("\xFF\xFF\xFF\xFF")), R"(,"Value":[4294967295])");
    EXPECT_EQ(ValueJson("SL", RawText("\xFE\xFF\xFF\xFF")), R"(,"Value":[-2])");
    EXPECT_EQ(BigEndianValueJson("US", RawText("\x01\x02")), R"(,"Value":[258])");
    EXPECT_EQ(ValueFromJson("US", R"("Value":[65535,2e0])"), RawText("\xFF\xFF\x02\x00"));
    EXPECT_EQ(ValueFromJson("SL", R"("Value":[-2])"), "\xFE\xFF\xFF\xFF");
    for (const char* number : {"65536", "-1", "0.5"}) {
        EXPECT_EQ(ValueFromJson("US", "\"Value\":[" + std::string(number) + "]"),
                  "a number beyond the range of its value representation at 00091001");
    }
    EXPECT_EQ(ValueFromJson("US", R"("Value":["1"])"), "a value of the wrong type at 00091001");
    EXPECT_EQ(ValueFromJson("US", R"("Value":[null])"), "a value of the wrong type at 00091001");
}

TEST(AnnexF23ValueRepresentation, HasLongIntegersAsStringsBeyondThePrecisionOfNumbers) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const CurrentEdition edition;
    EXPECT_EQ(ValueJson("UV", RawText("\0\0\0\0\0\0\x20\0\x01\0\0\0\0\0\x20\0")),
              R"(,"Value":[9007199254740992,"9007199254740993"])");
    EXPECT_EQ(ValueJson("SV", RawText("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\0\0\0\0\0\0\x80")),
              R"(,"Value":[-1,"-9223372036854775808"])");
    EXPECT_EQ(ValueFromJson("SV", R"("Value":["-9223372036854775808"])"),
              RawText("\0\0\0\0\0\0\0\x80"));
    EXPECT_EQ(ValueFromJson("UV", R"("Value":[18446744073709551615])"),
              "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
    EXPECT_EQ(ValueFromJson("UV", R"("Value":["-1"])"),
              "a number beyond the range of its value representation at 00091001");
}

TEST(AnnexF23ValueRepresentation, HasNumbersForFloats) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ValueJson("FL", RawText("\xCD\xCC\xCC\x3D\0\0\x80\x3F")),
              R"(,"Value":[0.10000000149011612,1])");
    EXPECT_EQ(ValueJson("FD", RawText("\x9A\x99\x99\x99\x99\x99\xB9\x3F")), R"(,"Value":[0.1])");
    EXPECT_EQ(BigEndianValueJson("FL", RawText("\x3F\x80\0\0")), R"(,"Value":[1])");
    EXPECT_EQ(ValueFromJson("FL", R"("Value":[0.10000000149011612])"), "\xCD\xCC\xCC\x3D");
    for (const auto& [vr, number] : {std::pair("FL", "1e39"), {"FL", "1e-50"}, {"FD", "1e-400"}}) {
        EXPECT_EQ(ValueFromJson(vr, "\"Value\":[" + std::string(number) + "]"),
                  "a number beyond the range of its value representation at 00091001");
    }
}

TEST(AnnexF23ValueRepresentation, HasNamesForWhatIsNoNumber) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const std::string floats = RawText("\0\0\xC0\x7F\0\0\x80\x7F\0\0\x80\xFF");
    EXPECT_EQ(ValueJson("FL", floats), R"(,"Value":["NaN","inf","-inf"])");
    EXPECT_EQ(ValueFromJson("FL", R"("Value":["NaN","inf","-inf"])"), floats);
    EXPECT_EQ(ValueFromJson("FD", R"("Value":["-inf"])"), RawText("\0\0\0\0\0\0\xF0\xFF"));
    EXPECT_EQ(ValueFromJson("FD", R"("Value":["1"])"), "a value of the wrong type at 00091001");
}

TEST(AnnexF23ValueRepresentation, HasTheComponentGroupsOfNames) {
    EXPECT_EQ(ValueJson("PN", "Yamada^Tarou=YT=yt"),
              R"(,"Value":[{"Alphabetic":"Yamada^Tarou","Ideographic":"YT","Phonetic":"yt"}])");
    EXPECT_EQ(ValueJson("PN", "A^^B ==c\\\\D=\\=E=\\ "),
              R"(,"Value":[{"Alphabetic":"A^^B","Phonetic":"c"},null,{"Alphabetic":"D"},)"
              R"({"Ideographic":"E"},null])");
    EXPECT_EQ(ValueFromJson("PN", R"("Value":[{"Phonetic":"c","Alphabetic":"A"},{},null])"),
              "A==c\\\\");
}

TEST(AnnexF23ValueRepresentation, LeavesOutWhatFollowsTheThirdGroupOfAName) {
    EXPECT_EQ(ValueJson("PN", "a=b=c=d=e "),
              R"(,"Value":[{"Alphabetic":"a","Ideographic":"b","Phonetic":"c"}])");
}

TEST(AnnexF23ValueRepresentation, KeepsDelimitersOutOfNamesAndOfSingleValues) {
    constexpr const char* kError =
        "a character that the value representation does not allow at 00091001";
    EXPECT_EQ(ValueFromJson("PN", R"("Value":[{"Alphabetic":"a=b"}])"), kError);
    EXPECT_EQ(ValueFromJson("PN", R"("Value":[{"Alphabetic":"a\\b"}])"), kError);
    EXPECT_EQ(ValueFromJson("LO", R"("Value":["a\\b"])"), kError);
    EXPECT_EQ(ValueFromJson("CS", R"("Value":["ä"])"), kError);
    EXPECT_EQ(ValueFromJson("LT", R"("Value":["a","b"])"), kError);
    EXPECT_EQ(ValueFromJson("LT", R"("Value":["a\\b"])"), "a\\b ");
}

TEST(AnnexF23ValueRepresentation, TakesAnUnknownVrForUn) {
    const std::string json =
        JsonOf(StreamBuilder(VrMode::Implicit).Part10(kImplicit).Element(9, 0x1001, "UN", "ab"));
    EXPECT_EQ(json, R"({"00091001":{"vr":"UN","InlineBinary":"YWI="}})");
}

// A dictionary leaves these open; in implicit VR, OW or OB is OW but for curves (PS3.5, A.1).
TEST(AnnexF23ValueRepresentation, SettlesVrsThatDependOnTheDataSet) {
    const auto file = [](uint16_t pixelRepresentation) {
        StreamBuilder stream(VrMode::Implicit);
        stream.Part10(kImplicit).ElementUS(0x0028, 0x0103, pixelRepresentation);
        stream.Element(0x0028, 0x0106, "US", "\xFF\xFF").Element(0x5000, 0x3000, "OB", "ab");
        stream.Element(0x5400, 0x1010, "OW", "ab");
        return stream;
    };
    EXPECT_EQ(JsonOf(file(0)),
              R"({"00280103":{"vr":"US","Value":[0]},"00280106":{"vr":"US","Value":[65535]},)"
              R"("50003000":{"vr":"OB","InlineBinary":"YWI="},)"
              R"("54001010":{"vr":"OW","InlineBinary":"YWI="}})");
    EXPECT_EQ(JsonOf(file(1)),
              R"({"00280103":{"vr":"US","Value":[1]},"00280106":{"vr":"SS","Value":[-1]},)"
              R"("50003000":{"vr":"OB","InlineBinary":"YWI="},)"
              R"("54001010":{"vr":"OW","InlineBinary":"YWI="}})");
}

// ---- F.2.4 DICOM JSON Value Multiplicity --------------------------------------------------------

TEST(AnnexF24Multiplicity, HasAnArrayAlsoOfOneValue) {
    EXPECT_EQ(ValueJson("CS", "A\\B "), R"(,"Value":["A","B"])");
    EXPECT_EQ(ValueJson("CS", "AB"), R"(,"Value":["AB"])");
    EXPECT_EQ(ValueFromJson("CS", R"("Value":"AB")"), "a value of the wrong type at 00091001");
}

// In GBK a character may have the byte of a backslash.
TEST(AnnexF24Multiplicity, CountsDelimitersNotTheirBytes) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0005, "CS", "GBK ");
    file.Element(0x0008, 0x1030, "LO", "\x81\x5C\\\x81\x40x");
    EXPECT_EQ(JsonOf(file), R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},)"
                            R"("00081030":{"vr":"LO","Value":["乗","丂x"]}})");
}

// ---- F.2.5 DICOM JSON Model null values ---------------------------------------------------------

TEST(AnnexF25NullValues, HasNoMemberForAnEmptyElement) {
    for (const std::string vr : {"LO", "IS", "US", "FD", "OB", "UN", "PN", "SQ", "AT", "UI"}) {
        EXPECT_EQ(ValueJson(vr, ""), "") << vr;
    }
    EXPECT_EQ(ValueJson("LO", "  "), "");
    EXPECT_EQ(ValueJson("DS", "  "), "");
    EXPECT_EQ(ValueJson("PN", "== "), "");
    EXPECT_EQ(ValueFromJson("LO", R"("Value":[])"), "");
}

TEST(AnnexF25NullValues, HasNullForAnEmptyOneOfSeveral) {
    EXPECT_EQ(ValueJson("SH", "bar\\\\foo"), R"(,"Value":["bar",null,"foo"])");
    EXPECT_EQ(ValueJson("IS", "\\ 1\\"), R"(,"Value":[null,1,null])");
    EXPECT_EQ(ValueFromJson("SH", R"("Value":["bar",null,"foo"])"), "bar\\\\foo");
    EXPECT_EQ(ValueFromJson("SH", R"("Value":[null,null])"), "\\ ");
}

TEST(AnnexF25NullValues, HasAnEmptyObjectForAnEmptyItem) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Sequence(0x0008, 0x1140).Item().EndItem();
    file.Item().Element(0x0008, 0x1150, "UI", "1.23").EndItem().Item().EndItem().EndSequence();
    const std::string json =
        R"({"00081140":{"vr":"SQ","Value":[{},{"00081150":{"vr":"UI","Value":["1.23"]}},{}]}})";
    EXPECT_EQ(JsonOf(file), json);
    EXPECT_EQ(Rewritten(json), json);
}

TEST(AnnexF25NullValues, HasNoMemberForASequenceWithoutItems) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Sequence(0x0008, 0x1140).EndSequence();
    EXPECT_EQ(JsonOf(file), R"({"00081140":{"vr":"SQ"}})");
    EXPECT_EQ(Rewritten(R"({"00081140":{"vr":"SQ","Value":[]}})"), R"({"00081140":{"vr":"SQ"}})");
}

TEST(AnnexF25NullValues, HasNestedItems) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Sequence(0x0040, 0xA730).Item();
    file.Sequence(0x0040, 0xA043).Item().Element(0x0008, 0x0100, "SH", "1234");
    file.EndItem().EndSequence().Element(0x0040, 0xA160, "UT", "text").EndItem().EndSequence();
    const std::string json = R"({"0040A730":{"vr":"SQ","Value":[{"0040A043":{"vr":"SQ","Value":[)"
                             R"({"00080100":{"vr":"SH","Value":["1234"]}}]},)"
                             R"("0040A160":{"vr":"UT","Value":["text"]}}]}})";
    EXPECT_EQ(JsonOf(file), json);
    EXPECT_EQ(Rewritten(json), json);
}

// Such an element is a sequence in implicit VR (PS3.5, 6.2.2).
TEST(AnnexF25NullValues, HasAnUnElementOfUndefinedLengthAsASequence) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Header(0x0009, 0x1001, "UN", pgkit_test::kUndefined);
    file.Item().Mode(VrMode::Implicit).Element(0x0008, 0x0060, "CS", "MR").EndItem();
    file.EndSequence();
    EXPECT_EQ(JsonOf(file),
              R"({"00091001":{"vr":"SQ","Value":[{"00080060":{"vr":"CS","Value":["MR"]}}]}})");
}

// ---- F.2.7 InlineBinary -------------------------------------------------------------------------

TEST(AnnexF27InlineBinary, IsTheWholeValueInBase64) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const CurrentEdition edition;
    for (const std::string vr : {"OB", "OD", "OF", "OL", "OV", "OW", "UN"}) {
        EXPECT_EQ(ValueJson(vr, "abcdefgh"), R"(,"InlineBinary":"YWJjZGVmZ2g=")") << vr;
        EXPECT_EQ(ValueFromJson(vr, R"("InlineBinary":"YWJjZGVmZ2g=")"), "abcdefgh") << vr;
        EXPECT_EQ(ValueFromJson(vr, R"("Value":["a"])"), "a value of the wrong type at 00091001");
    }
}

TEST(AnnexF27InlineBinary, HasWordsInLittleEndianWhateverTheFileHas) {
    const CurrentEdition edition;
    const std::string inOrder = ValueJson("OB", "abcdefgh");
    EXPECT_EQ(BigEndianValueJson("OB", "abcdefgh"), inOrder);
    EXPECT_EQ(BigEndianValueJson("UN", "abcdefgh"), inOrder);
    EXPECT_EQ(BigEndianValueJson("OW", "badcfehg"), inOrder);
    EXPECT_EQ(BigEndianValueJson("OF", "dcbahgfe"), inOrder);
    EXPECT_EQ(BigEndianValueJson("OL", "dcbahgfe"), inOrder);
    EXPECT_EQ(BigEndianValueJson("OD", "hgfedcba"), inOrder);
    EXPECT_EQ(BigEndianValueJson("OV", "hgfedcba"), inOrder);
}

// "a US VR with a VL of 8192 and a VM of 4096 would ... be represented as a single InlineBinary"
TEST(AnnexF27InlineBinary, MayStandForNumbers) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(ValueFromJson("US", R"("InlineBinary":"YWJj")"), "broken base64 at 00091001");
    EXPECT_EQ(ValueFromJson("US", R"("InlineBinary":"YWJjZA==")"), "abcd");
    EXPECT_EQ(ValueFromJson("LO", R"("InlineBinary":"YWI=")"),
              "a value of the wrong type at 00091001");
}

TEST(AnnexF27InlineBinary, IsMadeEvenWithAZero) {
    EXPECT_EQ(ValueFromJson("UN", R"("InlineBinary":"YWJj")"), std::string("abc\0", 4));
}

TEST(AnnexF27InlineBinary, IsEmptyWithoutBytes) {
    EXPECT_EQ(ValueFromJson("OB", R"("InlineBinary":"")"), "");
}

}  // namespace
