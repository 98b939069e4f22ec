#include "dicomdir/create/standard_kinds.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "dictionary/current_table.h"
#include "pgkit/value_representation.h"
#include "sopclass/sop_class_tables.h"

namespace {

using namespace pgkit;

constexpr const char* kClasses[] = {
#define PGKIT_STANDARD_CLASS(kind, sopClass) sopClass,
#include "dicomdir/create/standard_classes.inc"
#undef PGKIT_STANDARD_CLASS
};

TEST(StandardKinds, AreOfSopClassesOfTheStandard) {
    for (const char* const sopClass : kClasses) {
        ASSERT_NE(FindCurrentUid(sopClass), nullptr) << sopClass;
        EXPECT_NE(StandardKindOf(sopClass), nullptr) << sopClass;
    }
    EXPECT_EQ(StandardKindOf(""), nullptr);
    EXPECT_EQ(StandardKindOf("1.2.840.10008.5.1.4.1.1.2"), nullptr);
    EXPECT_EQ(StandardKindOf("1.2.840.10008.5.1.4.1.1.481.22.1"), nullptr);
}

// What has pixels is an image; what the other tables have no pixels for is none.
TEST(StandardKinds, AgreeWithTheCategories) {
    constexpr uint16_t kOthers = static_cast<uint16_t>(SopCategory::Report) |
                                 static_cast<uint16_t>(SopCategory::Waveform) |
                                 static_cast<uint16_t>(SopCategory::KeyObject) |
                                 static_cast<uint16_t>(SopCategory::Presentation) |
                                 static_cast<uint16_t>(SopCategory::Radiotherapy);
    int compared = 0;
    for (int i = 0; i < 1000; ++i) {
        for (const char* const arc : {"", "481.", "88.", "9.1.", "9.4.", "11.", "77.1.5."}) {
            const std::string uid = "1.2.840.10008.5.1.4.1.1." + (arc + std::to_string(i));
            const uint16_t categories = CategoriesOf(uid);
            if (categories == 0) continue;
            ++compared;
            const bool isImage = IsIn(categories, SopCategory::Image);
            EXPECT_EQ(StandardKindOf(uid) == nullptr, isImage || (categories & kOthers) == 0)
                << uid;
        }
    }
    EXPECT_GT(compared, 30);
}

TEST(StandardKinds, HaveKeysOfKnownElementsThatRecordsCanCarry) {
    std::set<const StandardKind*> kinds;
    for (const char* const sopClass : kClasses)
        kinds.insert(StandardKindOf(sopClass));
    EXPECT_EQ(kinds.size(), 29u);
    for (const StandardKind* const kind : kinds) {
        EXPECT_LE(kind->recordType.size(), 16u) << kind->recordType;
        for (const StandardKey& key : kind->keys) {
            const auto known = FindCurrentElement(key.tag.group, key.tag.element);
            ASSERT_TRUE(known) << kind->recordType;
            EXPECT_LE(known->valueRep, VR_UN) << known->keyword;
            EXPECT_LE(key.madeUp.size(), 64u) << known->keyword;
        }
    }
}

}  // namespace
