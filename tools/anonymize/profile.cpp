#include "anonymize/profile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace pgtool {

namespace {

struct Row {
    uint32_t tag;
    uint32_t mask;
    std::string_view action;
    std::string_view options;
};

// Rows of single tags come first, in ascending order.
constexpr Row kProfileRows[] = {
#define PGTOOL_CONFIDENTIALITY(tag, mask, action, options) {tag, mask, action, options},
#include "anonymize/confidentiality.inc"
#undef PGTOOL_CONFIDENTIALITY
};

// The columns of the options.
enum Option : size_t {
    kSafePrivate,
    kUids,
    kDevice,
    kInstitution,
    kPatient,
    kDates,
    kModifiedDates
};

const Row* FindRow(uint32_t tag) {
    constexpr uint32_t kSingle = 0xFFFFFFFF;
    const Row* const patterns = std::find_if(std::begin(kProfileRows), std::end(kProfileRows),
                                             [](const Row& row) { return row.mask != kSingle; });
    const Row* const row = std::lower_bound(
        std::begin(kProfileRows), patterns, tag,
        [](const Row& candidate, uint32_t wanted) { return candidate.tag < wanted; });
    if (row != patterns && row->tag == tag) return row;
    const Row* const pattern = std::find_if(
        patterns, std::end(kProfileRows),
        [tag](const Row& candidate) { return (tag & candidate.mask) == candidate.tag; });
    return pattern == std::end(kProfileRows) ? nullptr : pattern;
}

Action BasicAction(std::string_view action) {
    const size_t slash = action.rfind('/');
    const std::string_view last = slash == action.npos ? action : action.substr(slash + 1);
    switch (last.front()) {
        case 'D':
            return Action::Dummy;
        case 'Z':
            return Action::Empty;
        case 'U':
            return Action::NewUid;
        case 'K':
            return Action::Keep;
        default:
            return Action::Remove;
    }
}

}  // namespace

Action ActionFor(pgkit::tag tag, const ProfileOptions& options) {
    const Row* const row = FindRow(uint32_t{tag.group} << 16 | tag.element);
    if (row == nullptr) return Action::Keep;
    const auto keeps = [&](bool isChosen, Option option) {
        return isChosen && row->options[option] == 'K';
    };
    if (keeps(options.retainUids, kUids) || keeps(options.retainDevice, kDevice) ||
        keeps(options.retainInstitution, kInstitution) || keeps(options.retainPatient, kPatient) ||
        keeps(options.retainDates, kDates)) {
        return Action::Keep;
    }
    if (options.modifyDates && row->options[kModifiedDates] == 'C') return Action::MoveDate;
    return BasicAction(row->action);
}

size_t ProfileRowCount() { return std::size(kProfileRows); }

}  // namespace pgtool
