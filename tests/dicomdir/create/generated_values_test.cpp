#include "dicomdir/create/generated_values.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/threads.h"

namespace {

int NumberBehind(const std::string& text, char separator) {
    return std::stoi(text.substr(text.rfind(separator) + 1));
}

// Two DICOMDIRs made at the same time used to get the same UID at times.
TEST(GeneratedValues, AreNeverGivenTwiceToThreadsThatAskAtTheSameTime) {
    constexpr size_t kValues = 20000;
    std::vector<std::string> values[2];
    pgkit_test::RunOnThreads(2, [&values](size_t i) {
        while (values[i].size() < kValues)
            values[i].push_back(pgkit::NewPatientId());
    });
    std::set<std::string> all(values[0].begin(), values[0].end());
    all.insert(values[1].begin(), values[1].end());
    EXPECT_EQ(all.size(), 2 * kValues);
}

TEST(GeneratedValues, CountDicomdirsFromOneHundredTo32000) {
    int number = NumberBehind(pgkit::NewDicomdirUid(), '.');
    for (int i = 0; i < 32001; ++i) {
        const int next = NumberBehind(pgkit::NewDicomdirUid(), '.');
        ASSERT_EQ(next, number == 32000 ? 100 : number + 1);
        number = next;
    }
}

TEST(GeneratedValues, CountStudiesFromOneTo99999) {
    int number = NumberBehind(pgkit::NewStudyId(), '_');
    for (int i = 0; i < 100000; ++i) {
        const std::string id = pgkit::NewStudyId();
        ASSERT_EQ(id.size(), std::string("ZORVA_STID_00001").size());
        const int next = NumberBehind(id, '_');
        ASSERT_EQ(next, number == 99999 ? 1 : number + 1);
        number = next;
    }
}

TEST(GeneratedValues, CountPatientsFromOneTo999999) {
    int number = NumberBehind(pgkit::NewPatientId(), '_');
    for (int i = 0; i < 1000000; ++i) {
        const int next = NumberBehind(pgkit::NewPatientId(), '_');
        ASSERT_EQ(next, number == 999999 ? 1 : number + 1);
        number = next;
    }
}

TEST(GeneratedValues, CountSeriesWithoutLeadingZeros) {
    const std::string first = pgkit::NewSeriesNumber();
    EXPECT_EQ(pgkit::NewSeriesNumber(), std::to_string(std::stoi(first) + 1));
}

TEST(GeneratedValues, AreDatesAndTimesOfFixedWidth) {
    EXPECT_EQ(pgkit::CurrentDate().size(), 8u);
    EXPECT_EQ(pgkit::CurrentTime().size(), 6u);
    EXPECT_GE(std::stoi(pgkit::CurrentDate()), 20200101);
}

}  // namespace
