#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/transfer_syntaxes.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class PgtoolJson : public testing::Test {
  protected:
    std::string Write(const std::string& name, const InstanceFile& file) {
        return files_.Write(name, file.Data());
    }
    static std::string Value(const std::string& file, const std::string& tag) {
        const std::string out = Pgtool({"dump", file, "-t", tag}).out;
        const size_t begin = out.find("Value: [") + 8;
        return out.substr(begin, out.find("]\n") - begin);
    }

    TempDir files_;
};

TEST_F(PgtoolJson, OneFileIsAnObjectAndSeveralAreAnArray) {
    const std::string a = Write("a", Instance(1).Patient("ID1", "DOE^JOHN"));
    const std::string b = Write("b", Instance(2).Patient("ID2", "DOE^JANE"));
    const Finished one = Pgtool({"json", a});
    EXPECT_EQ(one.exitStatus, 0);
    EXPECT_THAT(one.out, AllOf(StartsWith("{\"000"), EndsWith("}\n")));
    EXPECT_THAT(
        one.out,
        HasSubstr("\"00100010\":{\"vr\":\"PN\",\"Value\":[{\"Alphabetic\":\"DOE^JOHN\"}]}"));
    EXPECT_EQ(Pgtool({"dump", "--json", a}).out, one.out);
    const Finished several = Pgtool({"json", a, files_.Path("missing"), b});
    EXPECT_EQ(several.exitStatus, 1);
    std::string two = Pgtool({"json", b}).out;
    two.pop_back();
    EXPECT_EQ(several.out, "[" + one.out.substr(0, one.out.size() - 1) + ",\n" + two + "]\n");
}

TEST_F(PgtoolJson, WritesAFileAsAWhole) {
    const std::string a = Write("a", Instance(1));
    const std::string out = files_.Path("out.json");
    EXPECT_EQ(Pgtool({"json", a, "-o", out}).exitStatus, 0);
    const Bytes bytes = ReadFile(out);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), Pgtool({"json", a}).out);
    EXPECT_EQ(Pgtool({"json", a, "-o", files_.Path("no/out")}).exitStatus, 1);
}

TEST_F(PgtoolJson, LongValuesBecomeUrisOnDemand) {
    const std::string file =
        Write("a", Instance(1).Set(0x0042, 0x0011, "OB", std::string(100, 'x')));
    EXPECT_THAT(Pgtool({"json", file}).out, HasSubstr("InlineBinary"));
    const std::string uri = Pgtool({"json", file, "--bulk", "99"}).out;
    EXPECT_THAT(uri, HasSubstr("\"BulkDataURI\":\""));
    EXPECT_THAT(uri,
                HasSubstr("a?offset="));  // before it the folder, whose backslashes JSON escapes
    EXPECT_THAT(Pgtool({"json", file, "--bulk", "100"}).out, HasSubstr("InlineBinary"));
    EXPECT_EQ(Pgtool({"json", file, "--bulk", "many"}).exitStatus, 2);
}

TEST_F(PgtoolJson, FilesComeBack) {
    const std::string json = files_.Path("a.json");
    const std::string back = files_.Path("back");
    ASSERT_EQ(Pgtool({"json", TestData("native/mr_implicit_le.dcm"), "-o", json}).exitStatus, 0);
    const Finished run = Pgtool({"from-json", json, "-o", back});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(Value(back, "0002,0010"), "1.2.840.10008.1.2.1");
    EXPECT_EQ(Value(back, "PatientName"), "CompressedSamples^MR1");
    EXPECT_EQ(Value(back, "PixelData"), Value(TestData("native/mr_implicit_le.dcm"), "PixelData"));
}

TEST_F(PgtoolJson, AnArrayBecomesAFolder) {
    const std::string json = files_.Path("a.json");
    ASSERT_EQ(Pgtool({"json", Write("a", Instance(1).Patient("1", "A")),
                      Write("b", Instance(2).Patient("2", "B")), "-o", json})
                  .exitStatus,
              0);
    ASSERT_EQ(Pgtool({"from-json", json, "-o", files_.Path("folder")}).exitStatus, 0);
    EXPECT_EQ(Value(files_.Path("folder/000001.dcm"), "PatientID"), "1");
    EXPECT_EQ(Value(files_.Path("folder/000002.dcm"), "PatientID"), "2");
}

TEST_F(PgtoolJson, ErrorsHaveTheirPlace) {
    const auto error = [&](const std::string& json) {
        const std::string path = files_.Write("bad.json", json);
        const Finished run = Pgtool({"from-json", path, "-o", files_.Path("out")});
        EXPECT_EQ(run.exitStatus, 1) << json;
        EXPECT_FALSE(std::filesystem::exists(files_.Path("out")));
        return run.err;
    };
    EXPECT_THAT(error("no JSON"), HasSubstr("bad.json: at byte "));
    EXPECT_THAT(error(R"({"00280010":{"vr":"US","Value":[70000]}})"), HasSubstr("in Rows: "));
    EXPECT_THAT(error("[]"), HasSubstr("there is no data set in it"));
    EXPECT_EQ(Pgtool({"from-json", files_.Path("missing"), "-o", "x"}).exitStatus, 1);
    EXPECT_EQ(Pgtool({"from-json", files_.Path("bad.json")}).exitStatus, 2);
    EXPECT_EQ(Pgtool({"from-json"}).exitStatus, 2);
}

TEST_F(PgtoolJson, BulkDataComeFromTheirDirectoryOnly) {
    std::filesystem::create_directory(files_.Path("bulk"));
    files_.Write("bulk/value", "1234");
    files_.Write("secret", "5678");
    const auto read = [&](const std::string& uri, const std::string& directory) {
        const std::string json =
            files_.Write("a.json", R"({"00420011":{"vr":"OB","BulkDataURI":")" + uri + "\"}}");
        std::vector<std::string> arguments = {"from-json", json, "-o", files_.Path("out")};
        if (!directory.empty()) arguments.insert(arguments.end(), {"--bulk-dir", directory});
        return Pgtool(arguments).exitStatus;
    };
    EXPECT_EQ(read("http://somewhere/value?x=1", files_.Path("bulk")), 0);
    EXPECT_EQ(Value(files_.Path("out"), "EncapsulatedDocument"), "31 32 33 34");
    EXPECT_EQ(read("value", ""), 1);
    for (const char* uri : {"../secret", "..", "secret", "bulk/", ""})
        EXPECT_EQ(read(uri, files_.Path("bulk")), 1) << uri;
}

// The whole file became the value, from its preamble on.
TEST_F(PgtoolJson, BulkDataAreThePartOfTheFileThatTheUriSays) {
    std::filesystem::create_directory(files_.Path("bulk"));
    files_.Write("bulk/value", "0123456789");
    const auto read = [&](const std::string& query) {
        const std::string json = files_.Write(
            "a.json", R"({"00420011":{"vr":"OB","BulkDataURI":"value)" + query + "\"}}");
        return Pgtool(
            {"from-json", json, "-o", files_.Path("out"), "--bulk-dir", files_.Path("bulk")});
    };
    EXPECT_EQ(read("?offset=2&length=4").exitStatus, 0);
    EXPECT_EQ(Value(files_.Path("out"), "EncapsulatedDocument"), "32 33 34 35");
    EXPECT_EQ(read("?x=1&offset=8&length=2#page").exitStatus, 0);
    EXPECT_EQ(Value(files_.Path("out"), "EncapsulatedDocument"), "38 39");
    for (const char* query :
         {"?offset=2&length=9", "?offset=11&length=0", "?offset=18446744073709551615&length=2"}) {
        EXPECT_THAT(read(query).err, HasSubstr("value does not hold the bytes that its URI says"));
    }
    EXPECT_EQ(read("?offset=-1&length=9").exitStatus, 0);  // a query of another kind
}

TEST_F(PgtoolJson, ValuesComeBackFromTheFileThatTheyWereLeftIn) {
    files_.Write("mr.dcm", ReadFile(TestData("native/mr_implicit_le.dcm")));
    files_.Write("mr.json", Pgtool({"json", files_.Path("mr.dcm"), "--bulk", "1024"}).out);
    EXPECT_EQ(Pgtool({"from-json", files_.Path("mr.json"), "-o", files_.Path("again"), "--bulk-dir",
                      files_.Path("")})
                  .exitStatus,
              0);
    EXPECT_EQ(Value(files_.Path("again"), "PixelData"), Value(files_.Path("mr.dcm"), "PixelData"));
}

// They became native pixels.
TEST_F(PgtoolJson, CompressedPixelsDoNotComeBack) {
    files_.Write("rle.dcm", ReadFile(TestData("encapsulated/rtdose_rle_15frames_no_bot.dcm")));
    files_.Write("rle.json", Pgtool({"json", files_.Path("rle.dcm")}).out);
    const Finished run = Pgtool({"from-json", files_.Path("rle.json"), "-o", files_.Path("again"),
                                 "--bulk-dir", files_.Path("")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("holds compressed pixels, whose transfer syntax JSON does not"));
}

TEST_F(PgtoolJson, NoLinkLeadsOutOfTheDirectoryOfBulkData) {
    std::filesystem::create_directory(files_.Path("bulk"));
    files_.Write("secret", "5678");
    std::error_code error;
    std::filesystem::create_symlink(files_.Path("secret"), files_.Path("bulk/link"), error);
    if (error) GTEST_SKIP() << "no symbolic links";
    const std::string json =
        files_.Write("a.json", R"({"00420011":{"vr":"OB","BulkDataURI":"link"}})");
    EXPECT_EQ(
        Pgtool({"from-json", json, "-o", files_.Path("out"), "--bulk-dir", files_.Path("bulk")})
            .exitStatus,
        1);
}

TEST_F(PgtoolJson, MayHaveSomeElementsOnly) {
    const StreamBuilder stream = StreamBuilder()
                                     .Part10(kExplicitLittleUid)
                                     .Element(0x0008, 0x0005, "CS", "ISO_IR 100")
                                     .Element(0x0008, 0x0060, "CS", "MR")
                                     .Sequence(0x0008, 0x1140)
                                     .Item()
                                     .Element(0x0008, 0x1150, "UI", "1.2")
                                     .Element(0x0008, 0x1155, "UI", "1.3")
                                     .EndItem()
                                     .EndSequence()
                                     .Element(0x0010, 0x0010, "PN", "M\xFCller");
    const std::string file = files_.Write("file", stream.Data());
    const auto json = [&](const std::string& place) {
        return Pgtool({"dump", file, "--json", "-t", place}).out;
    };
    const std::string set = R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]})";
    EXPECT_EQ(json("PatientName"),
              set + R"(,"00100010":{"vr":"PN","Value":[{"Alphabetic":"Müller"}]}})" + "\n");
    const std::string nested =
        set + R"(,"00081140":{"vr":"SQ","Value":[{"00081155":{"vr":"UI","Value":["1.3"]}}]}})" +
        "\n";
    EXPECT_EQ(json("0008,1155"), nested);
    EXPECT_EQ(json("ReferencedImageSequence[0].ReferencedSOPInstanceUID"), nested);
    EXPECT_EQ(json("Rows"), set + "}\n");
    EXPECT_EQ(Pgtool({"dump", file, "--json", "--raw"}).exitStatus, 2);
}

}  // namespace
