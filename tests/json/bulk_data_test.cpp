// BulkDataURI (PS3.18, F.2.2 and F.2.6): values that stay where they are, and come from elsewhere.
#include <gtest/gtest.h>

#include <cstring>

#include "support/current_edition.h"
#include "support/host_order.h"
#include "support/json.h"
#include "support/nodes.h"

namespace {

using pgkit_test::Child;
using pgkit_test::CurrentEdition;
using pgkit_test::JsonOf;
using pgkit_test::kInline;
using pgkit_test::OneElement;
using pgkit_test::OpenedStream;
using pgkit_test::ParseJson;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::TextOf;

PgxJsonWriteOptions Limit(uint64_t limit, const char* source = "file:///x.dcm") {
    PgxJsonWriteOptions options = kInline;
    options.bulkLimit = limit;
    options.sourceUri = source;
    return options;
}

TEST(AnnexF26BulkDataUri, StandsForValuesAboveTheLimit) {
    const StreamBuilder file = OneElement(0x7FE0, 0x0010, "OB", "abcd");
    const std::string offset = std::to_string(file.Size() - 4);
    EXPECT_EQ(JsonOf(file, Limit(4)), R"({"7FE00010":{"vr":"OB","InlineBinary":"YWJjZA=="}})");
    EXPECT_EQ(JsonOf(file, Limit(3)),
              R"({"7FE00010":{"vr":"OB","BulkDataURI":"file:///x.dcm?offset=)" + offset +
                  R"(&length=4"}})");
    EXPECT_EQ(JsonOf(file, Limit(3, "http://h/x?a=b")),
              R"({"7FE00010":{"vr":"OB","BulkDataURI":"http://h/x?a=b&offset=)" + offset +
                  R"(&length=4"}})");
    EXPECT_EQ(JsonOf(file, Limit(3, nullptr)),
              R"({"7FE00010":{"vr":"OB","BulkDataURI":"?offset=)" + offset + R"(&length=4"}})");
}

TEST(AnnexF26BulkDataUri, StandsForTheVrsThatMayHaveOne) {
    const CurrentEdition edition;
    for (const std::string vr : {"DS", "FL", "FD", "IS", "LT", "OB", "OD", "OF", "OL", "OV", "OW",
                                 "SL", "SS", "ST", "SV", "UC", "UL", "UN", "US", "UT", "UV"}) {
        const std::string json = JsonOf(OneElement(0x0009, 0x1001, vr, "12345678"), Limit(0));
        EXPECT_NE(json.find("BulkDataURI"), std::string::npos) << json;
    }
    for (const std::string vr :
         {"AE", "AS", "AT", "CS", "DA", "DT", "LO", "PN", "SH", "TM", "UI", "UR"}) {
        const std::string json = JsonOf(OneElement(0x0009, 0x1001, vr, "12345678"), Limit(0));
        EXPECT_EQ(json.find("BulkDataURI"), std::string::npos) << json;
    }
}

TEST(AnnexF26BulkDataUri, StandsForNoEmptyValue) {
    EXPECT_EQ(JsonOf(OneElement(0x7FE0, 0x0010, "OB", ""), Limit(0)),
              R"({"7FE00010":{"vr":"OB"}})");
}

TEST(AnnexF26BulkDataUri, IsNotMadeForValuesInMemory) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const pgkit_test::Tree tree = pgkit_test::NewDataSet();
    tree->InsertNode(0x7FE0, 0x0010, "abcd", 4);
    EXPECT_EQ(JsonOf(tree.get(), Limit(0)),
              R"({"7FE00010":{"vr":"OW","InlineBinary":"YWJjZA=="}})");
}

// The first item begins behind the header of 12 bytes; table, two fragments and delimiter follow.
TEST(AnnexF26BulkDataUri, AlwaysStandsForEncapsulatedPixelData) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.5").Header(0x7FE0, 0x0010, "OB", pgkit_test::kUndefined);
    const std::string offset = std::to_string(file.Size());
    file.Item(0).Item(4).Text("abcd").Item(2).Text("ab").EndSequence();
    file.Element(0xFFFC, 0xFFFC, "OB", "ab");
    const std::string json = R"({"7FE00010":{"vr":"OB","BulkDataURI":"?offset=)" + offset +
                             R"(&length=38"},"FFFCFFFC":{"vr":"OB","InlineBinary":"YWI="}})";
    EXPECT_EQ(JsonOf(file), json);
    // Without a table of the fragments, which ends the data set for the reader.
    const OpenedStream notIndexed(file, 0, PG_OPEN_SKIP_FRAGMENTS);
    EXPECT_EQ(JsonOf(notIndexed.Root()),
              R"({"7FE00010":{"vr":"OB","BulkDataURI":"?offset=)" + offset + R"(&length=38"}})");
}

TEST(AnnexF26BulkDataUri, EndsWithTheFileThatIsCutShort) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.5").Header(0x7FE0, 0x0010, "OB", pgkit_test::kUndefined);
    const std::string offset = std::to_string(file.Size());
    file.Item(0).Item(4000).Text("abcd");
    EXPECT_EQ(JsonOf(file),
              R"({"7FE00010":{"vr":"OB","BulkDataURI":"?offset=)" + offset + R"(&length=20"}})");
}

TEST(AnnexF26BulkDataUri, HasNoPlaceForFragmentsInMemory) {
    const pgkit_test::Tree tree = pgkit_test::NewDataSet();
    PGX_Node* const pixels = tree->InsertEncodedPixelDataNode(1);
    pixels->SetEncodedPixelData(0, 4, "abcd");
    EXPECT_EQ(JsonOf(tree.get()), "error " + std::to_string(PGX_JSON_NO_URI));
}

// ---- URIs of the caller -------------------------------------------------------------------------

struct Asked {
    std::string path;
    uint64_t offset = 0;
    uint64_t length = 0;
    std::string answer;
};

size_t Answer(void* context, PGX_Node* element, const char* path, uint64_t offset, uint64_t length,
              char* uri, size_t size) {
    auto& asked = *static_cast<Asked*>(context);
    EXPECT_NE(element, nullptr);
    asked.path = path;
    asked.offset = offset;
    asked.length = length;
    const size_t copied = asked.answer.copy(uri, size - 1);
    uri[copied] = '\0';
    return asked.answer.size();
}

PgxJsonWriteOptions Ask(Asked& asked) {
    PgxJsonWriteOptions options = Limit(0);
    options.uri = Answer;
    options.uriContext = &asked;
    return options;
}

TEST(AnnexF26BulkDataUri, IsMadeByTheCaller) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Sequence(0x0008, 0x1140).Item().EndItem();
    file.Item().Element(0x0009, 0x1001, "OB", "abcdef");
    const uint32_t end = file.Size();
    file.EndItem().EndSequence();
    Asked asked;
    asked.answer = "a \"quoted\" URI";
    EXPECT_EQ(JsonOf(file, Ask(asked)),
              R"({"00081140":{"vr":"SQ","Value":[{},{"00091001":{"vr":"OB",)"
              R"("BulkDataURI":"a \"quoted\" URI"}}]}})");
    EXPECT_EQ(asked.path, "ReferencedImageSequence[1].00091001");
    EXPECT_EQ(asked.offset, end - 6);
    EXPECT_EQ(asked.length, 6u);
}

TEST(AnnexF26BulkDataUri, MayBeLong) {
    const StreamBuilder file = OneElement(0x7FE0, 0x0010, "OB", "abcd");
    Asked asked;
    asked.answer = std::string(60000, 'u');
    EXPECT_EQ(JsonOf(file, Ask(asked)),
              R"({"7FE00010":{"vr":"OB","BulkDataURI":")" + asked.answer + "\"}}");
}

TEST(AnnexF26BulkDataUri, IsLeftToTheCaller) {
    const StreamBuilder file = OneElement(0x7FE0, 0x0010, "OB", "abcd");
    const std::string json = R"({"7FE00010":{"vr":"OB","InlineBinary":"YWJjZA=="}})";
    Asked asked;
    EXPECT_EQ(JsonOf(file, Ask(asked)), json);
    asked.answer = std::string(70000, 'u');
    EXPECT_EQ(JsonOf(file, Ask(asked)), json);
    asked.answer = "\xFF";
    EXPECT_EQ(JsonOf(file, Ask(asked)), json);
}

TEST(AnnexF26BulkDataUri, MayStandForFragmentsInMemory) {
    const pgkit_test::Tree tree = pgkit_test::NewDataSet();
    PGX_Node* const pixels = tree->InsertEncodedPixelDataNode(2);
    pixels->SetEncodedPixelData(0, 4, "abcd");
    pixels->SetEncodedPixelData(1, 2, "ab");
    Asked asked;
    asked.answer = "x";
    EXPECT_EQ(JsonOf(tree.get(), Ask(asked)), R"({"7FE00010":{"vr":"OB","BulkDataURI":"x"}})");
    EXPECT_EQ(asked.offset, PGX_JSON_NO_OFFSET);
    EXPECT_EQ(asked.length, 6u);
}

// ---- Reading ------------------------------------------------------------------------------------

TEST(AnnexF26BulkDataUri, IsAnErrorWhenNobodySuppliesIt) {
    EXPECT_EQ(ParseJson(R"({"7FE00010":{"vr":"OB","BulkDataURI":"x"}})").Failure(),
              "bulk data that are not there at PixelData");
}

struct Supply {
    std::string content;  // of the file
    std::string path;
    std::string uri;
    TempDir directory;
};

int32_t GiveFile(void* context, PGX_Node* element, const char* path, const char* uri) {
    auto& supply = *static_cast<Supply*>(context);
    supply.path = path;
    supply.uri = uri;
    const std::string file = supply.directory.Write("bulk", supply.content);
    return element->SetFileContentValue(file.c_str());
}

int32_t GiveText(void*, PGX_Node* element, const char*, const char* uri) {
    return element->SetValue(uri, static_cast<uint32_t>(std::strlen(uri)));
}

TEST(AnnexF26BulkDataUri, IsSuppliedByTheCaller) {
    Supply supply{"0123456789", {}, {}, {}};
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.bulk = GiveFile;
    options.bulkContext = &supply;
    const auto parsed = ParseJson(
        R"({"00081140":{"vr":"SQ","Value":[{"00091001":{"BulkDataURI":"a\/b","vr":"OB"}}]}})",
        &options);
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(supply.path, "ReferencedImageSequence[0].00091001");
    EXPECT_EQ(supply.uri, "a/b");
    PGX_Node* const item = Child(parsed.dataSet.get(), 0x0008, 0x1140)->first;
    EXPECT_EQ(TextOf(Child(item, 0x0009, 0x1001)), "0123456789");
}

TEST(AnnexF26BulkDataUri, MayBeATextInUtf8) {
    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.bulk = GiveText;
    const auto parsed = ParseJson(R"({"00104000":{"vr":"LT","BulkDataURI":"ä"}})", &options);
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(JsonOf(parsed.dataSet.get()), R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},)"
                                            R"("00104000":{"vr":"LT","Value":["ä"]}})");
}

}  // namespace
