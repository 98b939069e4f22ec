// JSON both ways, with memory running out at any allocation.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "hostile/every_failure.h"
#include "hostile/failing_jobs.h"
#include "support/json.h"

namespace {

using namespace pgkit_test;

constexpr std::string_view kJson =
    R"({"00100010":{"Value":[{"Alphabetic":"A name of some length","Ideographic":"山田"},null],)"
    R"("vr":"PN"},"00081140":{"vr":"SQ","Value":[{},{"00081150":{"vr":"UI","Value":["1.2.3.4"]},)"
    R"("00081030":{"vr":"LO","Value":["ä"]}}]},"00020000":{"vr":"UL","Value":[1]},)"
    R"("00280030":{"vr":"DS","Value":[0.25,0.50]},"00280106":{"Value":[-1]},)"
    R"("7FE00010":{"vr":"OW","InlineBinary":"AAECAwQFBgcICQoLDA0ODw=="}})";

TEST(JsonMemory, ThatRunsOutInWritingIsAResult) {
    TempDir directory;
    StreamBuilder file = RichFile();
    file.Element(0x0008, 0x1030, "LO", "out of order \xE4");
    const std::string path = directory.Write("file", file.Data());
    const std::string whole = JsonOf(DataSet(pgOpenDataSetFile(path.c_str(), 64)).get());
    EXPECT_GT(whole.size(), 500u);
    const size_t calls = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        const DataSet root(pgOpenDataSetFile(path.c_str(), 64));
        std::string buffer(whole.size() + 1, 'x');
        int64_t length = 0;
        whileFailing(
            [&] { length = pgxGetJson(root.get(), nullptr, buffer.data(), buffer.size()); });
        if (length == PGX_JSON_NO_MEMORY) {
            EXPECT_STREQ(buffer.c_str(), "");
        } else {
            EXPECT_EQ(buffer.c_str(), whole);
        }
    });
    EXPECT_GE(calls, 8u);
}

TEST(JsonMemory, ThatRunsOutInReadingLeavesNoTree) {
    const std::string whole = JsonOf(ParseJson(kJson).dataSet.get());
    EXPECT_GT(whole.size(), 400u);
    const size_t calls = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        DataSet root;
        PgxJsonPlace place{};
        place.size = sizeof place;
        whileFailing(
            [&] { root.reset(pgxParseJson(kJson.data(), kJson.size(), nullptr, &place)); });
        if (root == nullptr) {
            EXPECT_EQ(place.error, PGX_JSON_NO_MEMORY);
        } else {
            EXPECT_EQ(JsonOf(root.get()), whole);
        }
    });
    EXPECT_GE(calls, 30u);
}

TEST(JsonMemory, ThatRunsOutBetweenDataSetsLosesNone) {
    const std::string json = "[" + std::string(kJson) + "," + std::string(kJson) + "]";
    const size_t calls = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        size_t taken = 0;
        int64_t count = 0;
        const auto take = [](void* context, PGX_Node* dataSet) -> int32_t {
            pgCloseDataSet(dataSet);
            ++*static_cast<size_t*>(context);
            return 1;
        };
        whileFailing([&] {
            count = pgxParseJsonDataSets(json.data(), json.size(), nullptr, take, &taken, nullptr);
        });
        EXPECT_TRUE(count == 2 || count == PGX_JSON_NO_MEMORY);
        EXPECT_LE(taken, 2u);
    });
    EXPECT_GE(calls, 60u);
}

TEST(JsonMemory, ThatIsLostToAnExceptionOfTheCallerIsNone) {
    const OpenedStream file(OneElement(0x0008, 0x0060, "CS", "MR"));
    const auto refuse = [](void*, const void*, size_t) -> size_t { throw 1; };
    EXPECT_EQ(pgxWriteJson(file.Root(), nullptr, refuse, nullptr), PGX_JSON_NO_MEMORY);
    const auto fail = [](void*, void*, size_t) -> size_t { throw 1; };
    EXPECT_EQ(pgxReadJson(fail, nullptr, nullptr, nullptr), nullptr);
}

}  // namespace
