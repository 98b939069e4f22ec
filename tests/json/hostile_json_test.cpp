// JSON that is no data set: every error has a code and a place, and costs little.
#include <gtest/gtest.h>

#include "support/cost.h"
#include "support/json.h"

namespace {

using pgkit_test::ExpectCheap;
using pgkit_test::Parsed;
using pgkit_test::ParseJson;

std::string FailureOf(std::string_view json, const PgxJsonReadOptions* options = nullptr) {
    return ParseJson(json, options).Failure();
}

TEST(HostileJson, IsNoJson) {
    for (const char* json :
         {"", " ", "{", "[", "[{},]", "{\"00080060\"}", "{\"00080060\":", "{} {}", "{}x", "nul",
          "{,}", R"({"00080060":{"vr":"CS",}})", R"({"00080060":{"vr":"C)",
          R"({"7FE00010":{"InlineBinary")", R"({"7FE00010":{"InlineBinary":"YWI)",
          R"({"00080060":{"Value":[1,]}})"}) {
        const std::string failure = FailureOf(json);
        EXPECT_TRUE(failure.starts_with("no valid JSON")) << json << ": " << failure;
    }
}

TEST(HostileJson, EndsAtItsEndAndNotAtANul) {
    EXPECT_EQ(FailureOf(std::string_view("{}\0", 3)), "no valid JSON");
    EXPECT_EQ(FailureOf(std::string_view("{}\0{}", 5)), "no valid JSON");
    EXPECT_EQ(FailureOf(std::string_view("{\0}", 3)), "no valid JSON");
}

TEST(HostileJson, IsNoDataSet) {
    for (const char* json : {"1", "\"a\"", "null", "true", "[]", "[1]"}) {
        const std::string failure = FailureOf(json);
        EXPECT_TRUE(failure.starts_with("no data set") || failure.starts_with("a value of the"))
            << json << ": " << failure;
    }
}

TEST(HostileJson, IsNotUtf8) {
    EXPECT_EQ(FailureOf("{\"00081030\":{\"vr\":\"LO\",\"Value\":[\"\xFF\"]}}"),
              "not UTF-8 at StudyDescription");
    EXPECT_EQ(FailureOf("{\"00081030\":{\"vr\":\"LO\",\"Value\":[\"\xC3\"]}}"),
              "not UTF-8 at StudyDescription");
    EXPECT_EQ(FailureOf(R"({"00081030":{"vr":"LO","Value":["\uD83D"]}})"),
              "not UTF-8 at StudyDescription");
}

TEST(HostileJson, HasATagThatIsNone) {
    for (const char* tag :
         {"PatientName", "0010001", "001000100", "0010001G", "", "FFFEE000", "FFFFFFFF"}) {
        EXPECT_EQ(FailureOf("{\"" + std::string(tag) + "\":{\"vr\":\"LO\"}}"),
                  "no tag of an element")
            << tag;
    }
}

TEST(HostileJson, HasTheSameElementTwice) {
    EXPECT_EQ(FailureOf(R"({"00080060":{"vr":"CS"},"00080060":{"vr":"CS"}})"),
              "the same element or member twice at Modality");
    EXPECT_EQ(FailureOf(R"({"00100010":{"vr":"PN"},"00080060":{"vr":"CS"},"0010103e":{"vr":"LO"},)"
                        R"("0010103E":{"vr":"LO"}})"),
              "the same element or member twice at 0010103E");
    EXPECT_EQ(
        FailureOf(R"({"00100010":{"vr":"PN"},"00080060":{"vr":"CS"},"00100010":{"vr":"PN"}})"),
        "the same element or member twice at PatientName");
    EXPECT_EQ(
        FailureOf(R"({"00080000":{"vr":"UL"},"00080060":{"vr":"CS"},"00080000":{"vr":"UL"}})"),
        "the same element or member twice at 00080000");
}

TEST(HostileJson, HasTheSameMemberTwice) {
    EXPECT_EQ(FailureOf(R"({"00080060":{"vr":"CS","vr":"CS"}})"),
              "the same element or member twice at Modality");
    EXPECT_EQ(FailureOf(R"({"00080060":{"vr":"CS","Value":[],"Value":[]}})"),
              "the same element or member twice at Modality");
    EXPECT_EQ(FailureOf(R"({"00100010":{"vr":"PN","Value":[{"Phonetic":"","Phonetic":""}]}})"),
              "the same element or member twice at PatientName");
}

TEST(HostileJson, HasAnUnknownMember) {
    EXPECT_EQ(FailureOf(R"({"00080060":{"vr":"CS","value":["MR"]}})"),
              "an unknown member at Modality");
    EXPECT_EQ(FailureOf(R"({"00100010":{"vr":"PN","Value":[{"Phonetic":"","alphabetic":""}]}})"),
              "an unknown member at PatientName");
    EXPECT_EQ(FailureOf(R"({"00100010":{"vr":"PN","Value":[{"Family":""}]}})"),
              "an unknown member at PatientName");
}

TEST(HostileJson, HasAnUnknownVr) {
    for (const char* vr : {"ZZ", "cs", "", "C", "CSS", "USSS", "OWOB"}) {
        EXPECT_EQ(FailureOf("{\"00080060\":{\"vr\":\"" + std::string(vr) + "\"}}"),
                  "an unknown value representation at Modality")
            << vr;
    }
}

TEST(HostileJson, HasValuesOfTheWrongType) {
    for (const char* element : {"1",
                                "null",
                                "true",
                                "[]",
                                "\"MR\"",
                                R"({"vr":5})",
                                R"({"vr":"CS","Value":[[]]})",
                                R"({"vr":"CS","Value":[true]})",
                                R"({"vr":"CS","Value":null})",
                                R"({"vr":"CS","Value":{}})",
                                R"({"vr":"CS","Value":[{}]})",
                                R"({"vr":"CS","Value":[{"Alphabetic":"a"}]})",
                                R"({"vr":"CS","Value":[{"00080060":{"vr":"CS"}}]})",
                                R"({"vr":"OB","InlineBinary":5})",
                                R"({"vr":"OB","InlineBinary":null})",
                                R"({"vr":"OB","InlineBinary":["YWI="]})",
                                R"({"vr":"OB","BulkDataURI":{}})",
                                R"({"vr":"PN","Value":["a"]})",
                                R"({"vr":"PN","Value":[{"Alphabetic":5}]})",
                                R"({"vr":"SQ","Value":["a"]})",
                                R"({"vr":"SQ","Value":[{},null]})",
                                R"({"vr":"SQ","Value":[{"Alphabetic":"a"}]})",
                                R"({"vr":"SQ","InlineBinary":"YWI="})",
                                R"({"vr":"SQ","BulkDataURI":"x"})"}) {
        EXPECT_EQ(FailureOf("{\"00080060\":" + std::string(element) + "}"),
                  "a value of the wrong type at Modality")
            << element;
    }
}

TEST(HostileJson, HasBrokenBase64) {
    for (const char* characters :
         {"Y", "YW", "YWI", "YWI==", "Y===", "====", "YWJ=", "YW=I", "YWI=YWI=", "YW I=", "YWI=\\n",
          "YWI-", "YW_=", "\\u00e4\\u00e4\\u00e4\\u00e4", "\xC3\xA4YW", "\\x"}) {
        EXPECT_EQ(FailureOf(R"({"7FE00010":{"vr":"OB","InlineBinary":")" + std::string(characters) +
                            "\"}}"),
                  "broken base64 at PixelData")
            << characters;
    }
}

TEST(HostileJson, HasNumbersThatNothingHolds) {
    EXPECT_EQ(FailureOf(R"({"00091001":{"vr":"FD","Value":[1e999]}})"),
              "a number beyond the range of its value representation at 00091001");
    EXPECT_EQ(FailureOf("{\"00091001\":{\"vr\":\"DS\",\"Value\":[" + std::string(400, '9') + "]}}"),
              "a number beyond the range of its value representation at 00091001");
}

TEST(HostileJson, TellsWhereItFailed) {
    const std::string json =
        R"({"00081140":{"vr":"SQ","Value":[{},{"00081150":{"vr":"UI","Value":["1.2",3]}}]}})";
    const Parsed parsed = ParseJson(json);
    EXPECT_EQ(parsed.place.error, PGX_JSON_WRONG_TYPE);
    EXPECT_STREQ(parsed.place.path, "ReferencedImageSequence[1].ReferencedSOPClassUID");
    // Behind the number.
    EXPECT_EQ(parsed.place.offset, json.find("3]}}") + 1);
    EXPECT_EQ(ParseJson("{\"00080060\":{\"vr\":\"CS\"} x").place.offset, 24u);
}

TEST(HostileJson, TellsTheEndOfALongPlace) {
    std::string json;
    for (int i = 0; i < 30; ++i)
        json += R"({"00081140":{"vr":"SQ","Value":[)";
    const Parsed parsed = ParseJson(json + "5");
    const std::string path = parsed.place.path;
    EXPECT_EQ(path.size(), PGX_JSON_PATH_SIZE - 1u);
    EXPECT_TRUE(path.starts_with("...")) << path;
    EXPECT_TRUE(path.ends_with("[0].ReferencedImageSequence")) << path;
}

std::string Nested(size_t depth) {
    std::string json;
    for (size_t i = 1; i < depth; ++i)
        json += R"({"00081140":{"vr":"SQ","Value":[)";
    json += "{}";
    for (size_t i = 1; i < depth; ++i)
        json += "]}}";
    return json;
}

TEST(HostileJson, IsNestedTooDeep) {
    // As deep as what is read from files, whose JSON was refused.
    EXPECT_EQ(FailureOf(Nested(2049)), "");
    EXPECT_TRUE(FailureOf(Nested(2050)).starts_with("data sets are nested too deep at "));
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.depthLimit = 2;
    EXPECT_EQ(FailureOf(Nested(2), &options), "");
    EXPECT_EQ(
        FailureOf(Nested(3), &options),
        "data sets are nested too deep at ReferencedImageSequence[0].ReferencedImageSequence");
    options.depthLimit = 5000;
    EXPECT_TRUE(FailureOf(Nested(2050), &options).starts_with("data sets are nested too deep"));
}

TEST(HostileJson, CostsLittleForDepthOfAnyKind) {
    for (const std::string piece :
         {"[", "{", R"({"00081140":{"Value":[)", R"({"00081140":{"Value":[[)"}) {
        std::string json;
        while (json.size() < 2000000)
            json += piece;
        ExpectCheap(16 << 20, [&] { EXPECT_NE(FailureOf(json), "") << piece; });
    }
}

TEST(HostileJson, CostsLittleForElementsInAnyOrder) {
    std::string json = "{";
    constexpr char kHex[] = "0123456789ABCDEF";
    for (uint32_t i = 0; i < 50000; ++i) {
        const uint32_t number = (i * 40503u) & 0xFFFF;
        json += i == 0 ? "\"0019" : ",\"0019";
        for (int shift = 12; shift >= 0; shift -= 4)
            json += kHex[(number >> shift) & 15];
        json += R"(":{"vr":"LO"})";
    }
    json += "}";
    ExpectCheap(64 << 20, [&] { EXPECT_EQ(FailureOf(json), ""); });
}

TEST(HostileJson, CostsMemoryInProportion) {
    std::string items = R"({"00081140":{"vr":"SQ","Value":[{})";
    while (items.size() < 300000)
        items += ",{}";
    ExpectCheap(items.size() * 60, [&] { EXPECT_EQ(FailureOf(items + "]}}"), ""); });
    std::string numbers = R"({"00281201":{"vr":"US","Value":[0)";
    while (numbers.size() < 1000000)
        numbers += ",0";
    ExpectCheap(numbers.size() * 60, [&] { EXPECT_EQ(FailureOf(numbers + "]}}"), ""); });
}

TEST(HostileJson, IsTooLarge) {
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    const std::string json = R"({"00080060":{"vr":"CS"}})";
    options.sizeLimit = json.size();
    EXPECT_EQ(FailureOf(json, &options), "");
    options.sizeLimit = json.size() - 1;
    EXPECT_EQ(FailureOf(json, &options), "too large");
}

size_t Endless(void*, void* bytes, size_t size) {
    std::memset(bytes, ' ', size);
    return size;
}
size_t Failing(void*, void*, size_t) { return PGX_READ_FAILED; }

TEST(HostileJson, ComesFromAFunctionThatDoesNotEndOrFails) {
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.sizeLimit = 1 << 20;
    PgxJsonPlace place{};
    place.size = sizeof place;
    EXPECT_EQ(pgxReadJson(Endless, nullptr, &options, &place), nullptr);
    EXPECT_EQ(place.error, PGX_JSON_TOO_LARGE);
    EXPECT_EQ(pgxReadJson(Failing, nullptr, nullptr, &place), nullptr);
    EXPECT_EQ(place.error, PGX_JSON_READ_FAILED);
    EXPECT_EQ(pgxReadJson(nullptr, nullptr, nullptr, &place), nullptr);
    EXPECT_EQ(place.error, PGX_JSON_READ_FAILED);
    EXPECT_EQ(pgxParseJson(nullptr, 5, nullptr, &place), nullptr);
    EXPECT_EQ(place.error, PGX_JSON_SYNTAX);
}

// A host that knows no member but the size and the error.
TEST(HostileJson, TellsAnOlderHostWhatItKnows) {
    struct {
        PgxJsonPlace place;
        char behind;
    } older{};
    older.place.size = offsetof(PgxJsonPlace, offset);
    older.place.path[0] = 'x';
    EXPECT_EQ(pgxParseJson("5", 1, nullptr, &older.place), nullptr);
    EXPECT_EQ(older.place.error, PGX_JSON_NO_DATA_SET);
    EXPECT_EQ(older.place.path[0], 'x');
}

TEST(HostileJson, HasATextForEveryError) {
    char text[80];
    for (int32_t error = -1; error >= PGX_JSON_SEVERAL_DATA_SETS; --error) {
        const size_t length = pgxJsonErrorText(error, text, sizeof text);
        EXPECT_GT(length, 5u);
        EXPECT_EQ(std::strlen(text), length);
    }
    EXPECT_EQ(pgxJsonErrorText(0, text, sizeof text), 0u);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(pgxJsonErrorText(PGX_JSON_SEVERAL_DATA_SETS - 1, text, sizeof text), 0u);
    EXPECT_EQ(pgxJsonErrorText(INT32_MIN, nullptr, 0), 0u);
}

}  // namespace
