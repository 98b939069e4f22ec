// Every row of the built-in tables, through the exported lookups.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "pgkit/sopclass.h"
#include "support/row_checksum.h"

namespace {

using pgkit_test::RowChecksum;

using Predicate = bool (*)(const char*);

struct ModalityRow {
    const char* uid;
    const char* mnemonic;
    const char* size;
};

const std::vector<ModalityRow> kModalities = {
#define PGKIT_MODALITY(uid, mnemonic, size) {uid, mnemonic, #size},
#include "sopclass/modalities.inc"
#undef PGKIT_MODALITY
};

struct NamedRow {
    const char* key;
    const char* name;
};

const std::vector<NamedRow> kModalityNames = {
#define PGKIT_MODALITY_NAME(code, description) {code, description},
#include "sopclass/modality_names.inc"
#undef PGKIT_MODALITY_NAME
};

const std::vector<NamedRow> kUids = {
#define PGKIT_UID(uid, name) {uid, name},
#include "sopclass/uids.inc"
#undef PGKIT_UID
};

struct CategoryRow {
    std::string_view category;
    const char* uid;
};

const std::vector<CategoryRow> kCategories = {
#define PGKIT_SOP_CATEGORY(category, uid) {#category, uid},
#include "sopclass/sop_categories.inc"
#undef PGKIT_SOP_CATEGORY
};

std::set<std::string> StorageClasses() {
    std::set<std::string> uids;
    for (const ModalityRow& row : kModalities)
        uids.insert(row.uid);
    return uids;
}

std::set<std::string> UidsOfCategory(std::string_view category) {
    std::set<std::string> uids;
    for (const CategoryRow& row : kCategories) {
        if (row.category == category) uids.insert(row.uid);
    }
    return uids;
}

std::set<std::string> AllUids() {
    std::set<std::string> uids;
    for (const NamedRow& row : kUids)
        uids.insert(row.key);
    return uids;
}

// Holds for exactly these UIDs, among all that the library knows.
void ExpectExactly(const std::set<std::string>& members, size_t count, Predicate holds) {
    EXPECT_EQ(members.size(), count);
    const std::set<std::string> all = AllUids();
    ASSERT_TRUE(std::includes(all.begin(), all.end(), members.begin(), members.end()));
    for (const std::string& uid : all) {
        EXPECT_EQ(holds(uid.c_str()), members.count(uid) == 1) << uid;
    }
}

void ExpectCategory(std::string_view category, size_t count, Predicate holds) {
    ExpectExactly(UidsOfCategory(category), count, holds);
}

// Hosts compare these texts. Whoever means to change a row changes the number with it.
TEST(SopClassTables, RowsStayAsTheyAre) {
    RowChecksum modalities;
    for (const ModalityRow& row : kModalities)
        modalities.Add({row.uid, row.mnemonic, row.size});
    EXPECT_EQ(modalities.Value(), 0x008C56ADu);
    RowChecksum modalityNames;
    for (const NamedRow& row : kModalityNames)
        modalityNames.Add({row.key, row.name});
    EXPECT_EQ(modalityNames.Value(), 0xD59973A5u);
    RowChecksum uids;
    for (const NamedRow& row : kUids)
        uids.Add({row.key, row.name});
    EXPECT_EQ(uids.Value(), 0xC06B74B9u);
    RowChecksum categories;
    for (const CategoryRow& row : kCategories)
        categories.Add({row.category, row.uid});
    EXPECT_EQ(categories.Value(), 0x23302C48u);
}

TEST(SopClassTables, EveryStorageClassHasItsMnemonic) {
    ASSERT_EQ(kModalities.size(), 139u);
    for (const ModalityRow& row : kModalities) {
        char mnemonic[6] = "";
        EXPECT_EQ(pgGetSOPClassUIDToModality(row.uid, mnemonic), 0) << row.uid;
        EXPECT_STREQ(mnemonic, row.mnemonic) << row.uid;
    }
}

TEST(SopClassTables, NoOtherUidHasAMnemonic) {
    const std::set<std::string> storage = StorageClasses();
    for (const std::string& uid : AllUids()) {
        if (storage.count(uid) == 1) continue;
        char mnemonic[6] = "";
        EXPECT_EQ(pgGetSOPClassUIDToModality(uid.c_str(), mnemonic), 1) << uid;
        EXPECT_STREQ(mnemonic, "XX") << uid;
    }
}

TEST(SopClassTables, EveryModalityHasItsDescription) {
    ASSERT_EQ(kModalityNames.size(), 57u);
    for (const NamedRow& row : kModalityNames) {
        char description[51] = "";
        EXPECT_EQ(pgGetModalityName(row.key, description), 0) << row.key;
        EXPECT_STREQ(description, row.name) << row.key;
    }
}

TEST(SopClassTables, EveryUidHasItsName) {
    ASSERT_EQ(kUids.size(), 350u);
    for (const NamedRow& row : kUids) {
        char name[67] = "";
        EXPECT_EQ(pgGetUIDName(row.key, name), 0) << row.key;
        EXPECT_STREQ(name, row.name) << row.key;
    }
}

TEST(SopClassTables, Images) { ExpectCategory("Image", 48, pgIsImageSOPClass); }

TEST(SopClassTables, Reports) { ExpectCategory("Report", 8, pgIsReportSOPClass); }

TEST(SopClassTables, Waveforms) { ExpectCategory("Waveform", 9, pgIsWaveformSOPClass); }

TEST(SopClassTables, KeyObjects) { ExpectCategory("KeyObject", 1, pgIsKeyObjectSOPClass); }

TEST(SopClassTables, Presentations) { ExpectCategory("Presentation", 1, pgIsPresentationSOPClass); }

TEST(SopClassTables, RadiotherapyDoses) { ExpectCategory("RtDose", 1, pgIsRTDoseSOPClass); }

TEST(SopClassTables, RadiotherapyStructureSets) {
    ExpectCategory("RtStructureSet", 1, pgIsRTStructureSetSOPClass);
}

TEST(SopClassTables, RadiotherapyPlans) { ExpectCategory("RtPlan", 1, pgIsRTPlanSOPClass); }

TEST(SopClassTables, RadiotherapyClasses) {
    ExpectCategory("Radiotherapy", 7, pgIsRadiotherapySOPClass);
}

TEST(SopClassTables, StorageClasses) { ExpectExactly(StorageClasses(), 139, pgIsStorageSOPClass); }

}  // namespace
