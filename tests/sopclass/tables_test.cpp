// Every row of the built-in tables, through the exported lookups.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "pgkit/sopclass.h"
#include "sopclass/table_file.h"

namespace {

using pgkit_test::ReadTable;
using pgkit_test::TableRow;

using Predicate = bool (*)(const char*);

std::set<std::string> UidsOfCategory(const std::string& category) {
    std::set<std::string> uids;
    for (const TableRow& row : ReadTable("sop_categories.tsv")) {
        if (row[0] == category) uids.insert(row[2]);
    }
    return uids;
}

std::set<std::string> AllUids() {
    std::set<std::string> uids;
    for (const TableRow& row : ReadTable("uids.tsv"))
        uids.insert(row[1]);
    return uids;
}

// Holds for exactly the UIDs of the category, among all UIDs that the library knows.
void ExpectCategory(const std::string& category, size_t count, Predicate holds) {
    const std::set<std::string> members = UidsOfCategory(category);
    EXPECT_EQ(members.size(), count);
    const std::set<std::string> all = AllUids();
    ASSERT_TRUE(std::includes(all.begin(), all.end(), members.begin(), members.end()));
    for (const std::string& uid : all) {
        EXPECT_EQ(holds(uid.c_str()), members.count(uid) == 1) << uid;
    }
}

TEST(SopClassTables, EveryStorageClassHasItsMnemonic) {
    const auto rows = ReadTable("modalities.tsv");
    ASSERT_EQ(rows.size(), 139u);
    for (const TableRow& row : rows) {
        char mnemonic[6] = "";
        EXPECT_EQ(pgGetSOPClassUIDToModality(row[1].c_str(), mnemonic), 0) << row[1];
        EXPECT_EQ(mnemonic, row[2]) << row[1];
    }
}

TEST(SopClassTables, NoOtherUidHasAMnemonic) {
    const std::set<std::string> storage = UidsOfCategory("storage");
    for (const std::string& uid : AllUids()) {
        if (storage.count(uid) == 1) continue;
        char mnemonic[6] = "";
        EXPECT_EQ(pgGetSOPClassUIDToModality(uid.c_str(), mnemonic), 1) << uid;
        EXPECT_STREQ(mnemonic, "XX") << uid;
    }
}

TEST(SopClassTables, EveryModalityHasItsDescription) {
    const auto rows = ReadTable("modality_names.tsv");
    ASSERT_EQ(rows.size(), 57u);
    for (const TableRow& row : rows) {
        char description[51] = "";
        EXPECT_EQ(pgGetModalityName(row[0].c_str(), description), 0) << row[0];
        EXPECT_EQ(description, row[1]) << row[0];
    }
}

TEST(SopClassTables, EveryUidHasItsName) {
    const auto rows = ReadTable("uids.tsv");
    ASSERT_EQ(rows.size(), 350u);
    for (const TableRow& row : rows) {
        char name[67] = "";
        EXPECT_EQ(pgGetUIDName(row[1].c_str(), name), 0) << row[1];
        EXPECT_EQ(name, row[2]) << row[1];
    }
}

TEST(SopClassTables, Images) { ExpectCategory("image", 48, pgIsImageSOPClass); }

TEST(SopClassTables, Reports) { ExpectCategory("report", 8, pgIsReportSOPClass); }

TEST(SopClassTables, Waveforms) { ExpectCategory("waveform", 9, pgIsWaveformSOPClass); }

TEST(SopClassTables, KeyObjects) { ExpectCategory("keyobject", 1, pgIsKeyObjectSOPClass); }

TEST(SopClassTables, Presentations) { ExpectCategory("presentation", 1, pgIsPresentationSOPClass); }

TEST(SopClassTables, RadiotherapyDoses) { ExpectCategory("rtdose", 1, pgIsRTDoseSOPClass); }

TEST(SopClassTables, RadiotherapyStructureSets) {
    ExpectCategory("rtstruct", 1, pgIsRTStructureSetSOPClass);
}

TEST(SopClassTables, RadiotherapyPlans) { ExpectCategory("rtplan", 1, pgIsRTPlanSOPClass); }

TEST(SopClassTables, RadiotherapyClasses) {
    ExpectCategory("radiotherapy", 7, pgIsRadiotherapySOPClass);
}

TEST(SopClassTables, StorageClasses) { ExpectCategory("storage", 139, pgIsStorageSOPClass); }

}  // namespace
