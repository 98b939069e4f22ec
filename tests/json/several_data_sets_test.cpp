// Arrays of data sets (PS3.18, F.2.1), handed over one by one.
#include <gtest/gtest.h>

#include <vector>

#include "support/json.h"

namespace {

using pgkit_test::DataSet;
using pgkit_test::JsonOf;
using pgkit_test::ParseJson;

struct Taken {
    std::vector<std::string> dataSets;
    size_t limit = SIZE_MAX;
};

int32_t Take(void* context, PGX_Node* dataSet) {
    auto& taken = *static_cast<Taken*>(context);
    const DataSet owned(dataSet);
    taken.dataSets.push_back(JsonOf(owned.get()));
    return taken.dataSets.size() < taken.limit ? 1 : 0;
}

int64_t ParseAll(std::string_view json, Taken& taken, PgxJsonPlace* place = nullptr) {
    return pgxParseJsonDataSets(json.data(), json.size(), nullptr, Take, &taken, place);
}

constexpr std::string_view kTwo =
    R"([{"00080060":{"vr":"CS","Value":["MR"]}}, {"00080060":{"vr":"CS","Value":["CT"]}}])";

TEST(AnnexF21SeveralDataSets, AreHandedOverOneByOne) {
    Taken taken;
    EXPECT_EQ(ParseAll(kTwo, taken), 2);
    EXPECT_EQ(taken.dataSets,
              (std::vector<std::string>{R"({"00080060":{"vr":"CS","Value":["MR"]}})",
                                        R"({"00080060":{"vr":"CS","Value":["CT"]}})"}));
}

TEST(AnnexF21SeveralDataSets, MayBeNoneOrOne) {
    Taken taken;
    EXPECT_EQ(ParseAll("[]", taken), 0);
    EXPECT_EQ(ParseAll("{}", taken), 1);
    EXPECT_EQ(ParseAll("[{}]", taken), 1);
    EXPECT_EQ(taken.dataSets, (std::vector<std::string>{"{}", "{}"}));
}

TEST(AnnexF21SeveralDataSets, EndWhereTheCallerWantsNoMore) {
    Taken taken;
    taken.limit = 1;
    EXPECT_EQ(ParseAll(std::string(kTwo) + "garbage", taken), 1);
    EXPECT_EQ(taken.dataSets.size(), 1u);
    EXPECT_EQ(pgxParseJsonDataSets("{}", 2, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST(AnnexF21SeveralDataSets, EndWithAnErrorInOneOfThem) {
    Taken taken;
    PgxJsonPlace place{};
    place.size = sizeof place;
    EXPECT_EQ(ParseAll(R"([{},{"00080060":{"vr":"CS","Value":[5]}}])", taken, &place),
              PGX_JSON_WRONG_TYPE);
    EXPECT_EQ(taken.dataSets.size(), 1u);
    EXPECT_STREQ(place.path, "[1].Modality");
    EXPECT_EQ(ParseAll("[{},5]", taken, &place), PGX_JSON_NO_DATA_SET);
    EXPECT_STREQ(place.path, "[1]");
    EXPECT_EQ(ParseAll("[{}", taken, &place), PGX_JSON_SYNTAX);
    EXPECT_STREQ(place.path, "[1]");
    EXPECT_EQ(ParseAll("[[{}]]", taken, &place), PGX_JSON_WRONG_TYPE);
    EXPECT_EQ(ParseAll("[{}]", taken, &place), 1);
    EXPECT_EQ(place.error, 0);
    EXPECT_STREQ(place.path, "");
}

TEST(AnnexF21SeveralDataSets, AreNotOne) {
    EXPECT_EQ(ParseJson(kTwo).Failure(), "several data sets in place of one");
    EXPECT_EQ(ParseJson("[]").Failure(), "no data set");
}

size_t GiveText(void* context, void* bytes, size_t size) {
    auto& rest = *static_cast<std::string_view*>(context);
    const size_t count = rest.copy(static_cast<char*>(bytes), std::min<size_t>(size, 7));
    rest.remove_prefix(count);
    return count;
}

TEST(AnnexF21SeveralDataSets, ComeFromAFunction) {
    Taken taken;
    std::string_view rest = kTwo;
    EXPECT_EQ(pgxReadJsonDataSets(GiveText, &rest, nullptr, Take, &taken, nullptr), 2);
    EXPECT_EQ(taken.dataSets.size(), 2u);
}

}  // namespace
