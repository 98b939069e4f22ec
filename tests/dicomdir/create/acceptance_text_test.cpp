// The texts of the acceptance codes, as a program shows them.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdint>
#include <string>

namespace {

std::string AcceptanceText(uint32_t code) {
    char text[100];
    const size_t length = pgxAcceptanceText(code, text, sizeof text);
    EXPECT_EQ(std::string(text).size(), length);
    return text;
}

TEST(AcceptanceText, IsThatOfTheListFile) {
    EXPECT_EQ(AcceptanceText(PG_ACCEPTED), "Dicom file accepted");
    EXPECT_EQ(AcceptanceText(PG_INVALID_FILE_NAME), "Invalid filename for file");
    EXPECT_EQ(AcceptanceText(PG_NOT_DICOM_PART_10), "File is not DICOM Part 10 compliant");
    EXPECT_EQ(AcceptanceText(PG_NOT_A_DATA_SET), "Cannot open file for reading as a dataset");
    EXPECT_EQ(AcceptanceText(PG_IS_A_DICOMDIR), "File is a DICOMDIR");
    EXPECT_EQ(AcceptanceText(PG_PROFILE_REFUSES), "Profile restriction don't match file");
    EXPECT_EQ(AcceptanceText(PG_INSTANCE_KNOWN), "SOPInstanceUID already found and registered");
    EXPECT_EQ(AcceptanceText(PG_NO_SOP_INSTANCE_UID), "SOPInstanceUID attribute was not found");
    EXPECT_EQ(AcceptanceText(PG_NO_SERIES_INSTANCE_UID),
              "SeriesInstanceUID attribute was not found");
    EXPECT_EQ(AcceptanceText(PG_NO_STUDY_INSTANCE_UID), "StudyInstanceUID attribute was not found");
}

TEST(AcceptanceText, IsCutToTheBuffer) {
    char text[5] = "####";
    EXPECT_EQ(pgxAcceptanceText(PG_ACCEPTED, text, 4), 19u);
    EXPECT_STREQ(text, "Dic");
    EXPECT_EQ(pgxAcceptanceText(PG_ACCEPTED, text, 0), 19u);
    EXPECT_STREQ(text, "Dic");
    EXPECT_EQ(pgxAcceptanceText(PG_ACCEPTED, nullptr, 100), 19u);
}

TEST(AcceptanceText, IsEmptyForWhatIsNoCode) {
    for (const uint32_t code : {10u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_EQ(AcceptanceText(code), "") << code;
}

}  // namespace
