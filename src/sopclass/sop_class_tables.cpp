#include "sopclass/sop_class_tables.h"

#include <array>
#include <iterator>

#include "base/row_index.h"

namespace pgkit {

namespace {

constexpr ModalityRow kModalities[] = {
#define PGKIT_MODALITY(uid, mnemonic, size) {uid, mnemonic},
#include "sopclass/modalities.inc"
#undef PGKIT_MODALITY
};
static_assert(std::size(kModalities) == 139);

constexpr ModalityNameRow kModalityNames[] = {
#define PGKIT_MODALITY_NAME(code, description) {code, description},
#include "sopclass/modality_names.inc"
#undef PGKIT_MODALITY_NAME
};
static_assert(std::size(kModalityNames) == 57);

constexpr UidRow kUids[] = {
#define PGKIT_UID(uid, name) {uid, name},
#include "sopclass/uids.inc"
#undef PGKIT_UID
};
static_assert(std::size(kUids) == 350);

struct CategoryRow {
    SopCategory category;
    std::string_view uid;
};

constexpr CategoryRow kCategories[] = {
#define PGKIT_SOP_CATEGORY(category, uid) {SopCategory::category, uid},
#include "sopclass/sop_categories.inc"
#undef PGKIT_SOP_CATEGORY
};
static_assert(std::size(kCategories) == 77);

constexpr RowIndex<512> kModalityIndex(std::size(kModalities),
                                       [](size_t row) { return HashText(kModalities[row].uid); });

constexpr RowIndex<128> kModalityNameIndex(std::size(kModalityNames), [](size_t row) {
    return HashText(kModalityNames[row].code);
});

constexpr RowIndex<1024> kUidIndex(std::size(kUids),
                                   [](size_t row) { return HashText(kUids[row].uid); });

constexpr size_t FindModalityRow(std::string_view uid) {
    return kModalityIndex.Find(HashText(uid),
                               [uid](size_t row) { return kModalities[row].uid == uid; });
}

// The categories of each row of kModalities.
constexpr auto kCategorySets = [] {
    std::array<uint16_t, std::size(kModalities)> sets{};
    for (const CategoryRow& row : kCategories) {
        sets[FindModalityRow(row.uid)] |= static_cast<uint16_t>(row.category);
    }
    return sets;
}();

}  // namespace

const ModalityRow* FindModality(std::string_view sopClassUid) {
    const size_t row = FindModalityRow(sopClassUid);
    return row == kModalityIndex.kNoRow ? nullptr : &kModalities[row];
}

const ModalityNameRow* FindModalityName(std::string_view code) {
    const size_t row = kModalityNameIndex.Find(
        HashText(code), [code](size_t i) { return kModalityNames[i].code == code; });
    return row == kModalityNameIndex.kNoRow ? nullptr : &kModalityNames[row];
}

const UidRow* FindUid(std::string_view uid) {
    const size_t row =
        kUidIndex.Find(HashText(uid), [uid](size_t i) { return kUids[i].uid == uid; });
    return row == kUidIndex.kNoRow ? nullptr : &kUids[row];
}

uint16_t CategoriesOf(std::string_view sopClassUid) {
    const size_t row = FindModalityRow(sopClassUid);
    return row == kModalityIndex.kNoRow ? uint16_t{0} : kCategorySets[row];
}

}  // namespace pgkit
