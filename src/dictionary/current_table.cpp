#include "dictionary/current_table.h"

#include <array>
#include <cstddef>
#include <iterator>

#include "base/row_index.h"
#include "dictionary/name_hash.h"
#include "dictionary/tags.h"
#include "pgkit/value_representation.h"

namespace pgkit {

namespace {

// ---- Rows ---------------------------------------------------------------------------------------

// Thousands of pointers to texts would have to be relocated whenever the module is loaded. So all
// keywords stand in one object, a member for each row, and rows have their positions in it.
struct Keywords {
#define PGKIT_JOINED(a, b) a##b
#define PGKIT_MEMBER(prefix, line) PGKIT_JOINED(prefix, line)
#define PGKIT_CURRENT_ELEMENT(group, element, vr, vm, keyword) \
    char PGKIT_MEMBER(single, __LINE__)[sizeof(keyword)];
#define PGKIT_CURRENT_REPEATING(tag, mask, vr, vm, keyword) \
    char PGKIT_MEMBER(range, __LINE__)[sizeof(keyword)];
#include "dictionary/current_elements.inc"
#include "dictionary/current_repeating_elements.inc"
#undef PGKIT_CURRENT_ELEMENT
#undef PGKIT_CURRENT_REPEATING
};

constexpr Keywords kKeywords = {
#define PGKIT_CURRENT_ELEMENT(group, element, vr, vm, keyword) keyword,
#define PGKIT_CURRENT_REPEATING(tag, mask, vr, vm, keyword) keyword,
#include "dictionary/current_elements.inc"
#include "dictionary/current_repeating_elements.inc"
#undef PGKIT_CURRENT_ELEMENT
#undef PGKIT_CURRENT_REPEATING
};

constexpr const char* kMultiplicities[] = {"1",   "2",   "3",    "4",    "6",    "9",   "16",
                                           "1-2", "1-3", "1-8",  "1-n",  "2-n",  "2-4", "3-n",
                                           "4-5", "6-n", "2-2n", "3-3n", "1-32", "1-99"};

// The compiler stops where a row has a multiplicity that the list above lacks.
consteval uint8_t MultiplicityIndex(std::string_view text) {
    uint8_t index = 0;
    while (kMultiplicities[index] != text)
        ++index;
    return index;
}

struct Row {
    uint32_t tag;
    uint32_t keywordAt;
    uint8_t keywordLength;
    uint8_t valueRep;
    uint8_t multiplicity;
};

constexpr Row kRows[] = {
#define PGKIT_CURRENT_ELEMENT(group, element, vr, vm, keyword)                   \
    {TagKey(group, element), offsetof(Keywords, PGKIT_MEMBER(single, __LINE__)), \
     sizeof(keyword) - 1, VR_##vr, MultiplicityIndex(vm)},
#include "dictionary/current_elements.inc"
#undef PGKIT_CURRENT_ELEMENT
};

struct Range {
    Row row;
    uint32_t mask;
};

constexpr Range kRanges[] = {
#define PGKIT_CURRENT_REPEATING(tag, mask, vr, vm, keyword)                                 \
    {{tag, offsetof(Keywords, PGKIT_MEMBER(range, __LINE__)), sizeof(keyword) - 1, VR_##vr, \
      MultiplicityIndex(vm)},                                                               \
     mask},
#include "dictionary/current_repeating_elements.inc"
#undef PGKIT_CURRENT_REPEATING
};

// ---- Indexes ------------------------------------------------------------------------------------

constexpr size_t kRowCount = std::size(kRows);
constexpr size_t kRangeCount = std::size(kRanges);

constexpr RowIndex<16384> kRowIndex(kRowCount, [](size_t i) { return kRows[i].tag; });
constexpr RowIndex<256> kRangeIndex(kRangeCount, [](size_t i) { return kRanges[i].row.tag; });

// The kinds of ranges: a whole group, a byte or a digit of either number.
constexpr uint32_t kMasks[] = {0xFF00FFFF, 0xFFFFFF0F, 0xFFFFFF00, 0xFFFF000F, 0xFFFF0000};

consteval bool HasOnlyTheseMasks() {
    for (const Range& range : kRanges) {
        bool isKnown = false;
        for (const uint32_t mask : kMasks)
            isKnown = isKnown || range.mask == mask;
        if (!isKnown) return false;
    }
    return true;
}
static_assert(HasOnlyTheseMasks());

// Evaluated row by row: all rows in one are more than compilers are willing to.
template <size_t Size>
consteval uint32_t KeywordHash(const char (&keyword)[Size]) {
    return NameHash({keyword, Size - 1});
}

// Of the rows, and of the ranges behind them.
constexpr uint32_t kKeywordHashes[] = {
#define PGKIT_CURRENT_ELEMENT(group, element, vr, vm, keyword) KeywordHash(keyword),
#define PGKIT_CURRENT_REPEATING(tag, mask, vr, vm, keyword) KeywordHash(keyword),
#include "dictionary/current_elements.inc"
#include "dictionary/current_repeating_elements.inc"
#undef PGKIT_CURRENT_ELEMENT
#undef PGKIT_CURRENT_REPEATING
};

constexpr RowIndex<16384> kKeywordIndex(std::size(kKeywordHashes),
                                        [](size_t i) { return kKeywordHashes[i]; });

constexpr const Row& RowAt(size_t i) {
    return i < kRowCount ? kRows[i] : kRanges[i - kRowCount].row;
}

std::string_view KeywordOf(const Row& row) {
    return {reinterpret_cast<const char*>(&kKeywords) + row.keywordAt, row.keywordLength};
}

CurrentElement ElementOf(const Row& row) {
    return {row.tag, row.valueRep, kMultiplicities[row.multiplicity], KeywordOf(row)};
}

// ---- UIDs ---------------------------------------------------------------------------------------

constexpr CurrentUid kUidRows[] = {
#define PGKIT_CURRENT_UID(uid, keyword, name) {uid, keyword, name},
#include "dictionary/current_uids.inc"
#undef PGKIT_CURRENT_UID
};

using UidIndex = RowIndex<1024>;
constexpr UidIndex kUidIndex(std::size(kUidRows),
                             [](size_t i) { return HashText(kUidRows[i].uid); });

}  // namespace

std::optional<CurrentElement> FindCurrentElement(uint16_t group, uint16_t element) {
    const uint32_t tag = TagKey(group, element);
    const size_t row = kRowIndex.Find(tag, [tag](size_t i) { return kRows[i].tag == tag; });
    if (row < kRowCount) return ElementOf(kRows[row]);
    if (IsPrivateGroup(group)) return std::nullopt;
    for (const uint32_t mask : kMasks) {
        const uint32_t first = tag & mask;
        const size_t range = kRangeIndex.Find(first, [first, mask](size_t i) {
            return kRanges[i].row.tag == first && kRanges[i].mask == mask;
        });
        if (range < kRangeCount) return ElementOf(kRanges[range].row);
    }
    return std::nullopt;
}

std::optional<CurrentElement> CurrentElementAt(size_t index) {
    if (index >= kRowCount + kRangeCount) return std::nullopt;
    return ElementOf(RowAt(index));
}

std::optional<CurrentElement> FindCurrentKeyword(std::string_view keyword) {
    if (keyword.empty() || keyword.size() > kMaxElementNameLength) return std::nullopt;
    const size_t row = kKeywordIndex.Find(NameHash(keyword), [keyword](size_t i) {
        return EqualIgnoringCase(KeywordOf(RowAt(i)), keyword);
    });
    if (row == kKeywordIndex.kNoRow) return std::nullopt;
    return ElementOf(RowAt(row));
}

const CurrentUid* FindCurrentUid(std::string_view uid) {
    const size_t row =
        kUidIndex.Find(HashText(uid), [uid](size_t i) { return kUidRows[i].uid == uid; });
    return row == UidIndex::kNoRow ? nullptr : &kUidRows[row];
}

}  // namespace pgkit
