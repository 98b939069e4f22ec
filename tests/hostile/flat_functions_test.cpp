// Flat functions that let exceptions pass, which ended hosts in C.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <stdexcept>
#include <string>

#include "hostile/every_failure.h"
#include "hostile/failing_jobs.h"
#include "support/browsed_directory.h"

namespace {

using namespace pgkit_test;

TEST(FlatFunction, LeavesAListAsItIsWithoutMemory) {
    int values[2] = {};
    PGX_List list;
    list.AddTail(&values[0]);
    {
        const FailingNew failing(0);
        EXPECT_NO_THROW(pgKitListAddTail(&list, &values[1]));
        EXPECT_NO_THROW(pgKitListAddHead(&list, &values[1]));
        EXPECT_NO_THROW(pgKitListInsertAt(&list, 1, &values[1]));
    }
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.GetHead(), &values[0]);
    EXPECT_EQ(list.GetTail(), &values[0]);
}

TEST(FlatFunction, CannotCompareNamesWithoutMemory) {
    constexpr char kName[] = "A NAME THAT IS TOO LONG FOR A SHORT STRING";
    EXPECT_EQ(pgComparePatientNames(kName, kName, 0), 0);
    const FailingNew failing(0);
    EXPECT_EQ(pgComparePatientNames(kName, kName, 0), -2);
}

TEST(FlatFunction, LoadsAWholePrivateDictionaryOrNone) {
    const TempDir directory;
    const std::string path = directory.Write("privdict.dic",
                                             "(0009,\"A MAKER\",01) LO AnElementOfALongName 1\n"
                                             "(0009,\"A MAKER\",02) LO AnotherElementOfIt 1\n");
    // What the dictionary keeps for good, it has after this.
    pgSetPrivateDictionaryFile(path.c_str());
    pgSetPrivateDictionaryFile("");
    const size_t allocations = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        pgSetPrivateDictionaryFile("");
        uint32_t isLoaded = 0;
        whileFailing([&] { EXPECT_NO_THROW(isLoaded = pgSetPrivateDictionaryFile(path.c_str())); });
        const uint32_t expected = isLoaded == 1 ? uint32_t{VR_LO} : uint32_t{VR_Unknown};
        EXPECT_EQ(pgFindValueRepresentation(0x0009, 0x0001), expected);
        EXPECT_EQ(pgFindValueRepresentation(0x0009, 0x0002), expected);
        pgSetPrivateDictionaryFile("");
    });
    EXPECT_GE(allocations, 4u);
}

class FlatBrowse : public testing::Test {
  protected:
    FlatBrowse() : directory_(pgKitOpenDicomDir(path_.c_str(), 0x20000)) {}
    ~FlatBrowse() override { pgKitCloseDicomDir(directory_); }

    TempDir files_;
    std::string path_ = files_.Write("DICOMDIR", RichDirectory().Build());
    PGX_DicomDir* directory_;
};

TEST_F(FlatBrowse, GivesAWholeHierarchyOrNull) {
    const std::string whole = Outline(pgKitDirBrowse(directory_, nullptr, nullptr));
    const size_t allocations = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        PGX_DicomDir* const directory = pgKitOpenDicomDir(path_.c_str(), 0x20000);
        PGX_List* patients = nullptr;
        whileFailing(
            [&] { EXPECT_NO_THROW(patients = pgKitDirBrowse(directory, nullptr, nullptr)); });
        if (patients != nullptr) {
            EXPECT_EQ(Outline(patients), whole);
        }
        EXPECT_EQ(Outline(pgKitDirBrowse(directory, nullptr, nullptr)), whole);
        pgKitCloseDicomDir(directory);
    });
    EXPECT_GE(allocations, 50u);
}

TEST_F(FlatBrowse, EndsWithAnExceptionOfTheHostsCallback) {
    const auto throws = [](PGX_DicomDirCallbackReason*, const char*, void*) -> int32_t {
        throw std::runtime_error("of the host");
    };
    EXPECT_NO_THROW(EXPECT_EQ(pgKitDirBrowse(directory_, throws, nullptr), nullptr));
}

TEST_F(FlatBrowse, GivesNoListOfPatientsWithoutMemory) {
    const size_t allocations = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        PGX_List* patients = nullptr;
        whileFailing([&] { EXPECT_NO_THROW(patients = pgGetPatientListFromFile(path_.c_str())); });
        pgEmptyPatientList(patients);
        pgKitListDelete(patients);
    });
    EXPECT_GE(allocations, 50u);
}

}  // namespace
