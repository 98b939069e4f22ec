#include "dicomdir/create/generated_values.h"

#include <gtest/gtest.h>

#include <string>

namespace {

int NumberBehind(const std::string& text, char separator) {
    return std::stoi(text.substr(text.rfind(separator) + 1));
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
