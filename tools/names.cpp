#include "names.h"

#include <set>

#include "pgkit/dictionary.h"

namespace pgtool {

namespace {

// Element identifiers of the built-in tables count up to it.
constexpr uint32_t kLastIdentifier = 3781;

// The library tells what a tag is called, not which tags there are. Elements of today are in the
// groups of the built-in ones and among the first; asking for all of these takes a moment.
std::vector<pgkit::tag> FindTags() {
    constexpr uint16_t kFirstGroups = 0x0100;
    std::set<pgkit::tag> tags;
    std::set<uint16_t> groups;
    for (uint16_t group = 0; group < kFirstGroups; group += 2)
        groups.insert(group);
    for (uint32_t identifier = 0; identifier <= kLastIdentifier; ++identifier) {
        pgkit::tag tag;
        if (pgFindElementIdInfo(static_cast<int32_t>(identifier), &tag.group, &tag.element) == 0)
            continue;
        tags.insert(tag);
        groups.insert(tag.group);
    }
    for (const uint16_t group : groups) {
        for (uint32_t number = 0; number <= 0xFFFF; ++number) {
            const pgkit::tag tag{group, static_cast<uint16_t>(number)};
            if (pgxTagKeyword(tag.group, tag.element, nullptr, 0) != 0) tags.insert(tag);
        }
    }
    return {tags.begin(), tags.end()};
}

}  // namespace

const std::vector<pgkit::tag>& KnownTags() {
    static const std::vector<pgkit::tag> tags = FindTags();
    return tags;
}

std::string BuiltInName(pgkit::tag tag) {
    const int32_t former = pgxUseEdition(PGX_EDITION_BUILT_IN);
    char name[128];
    const bool isNamed = pgGetTagPrintableName(tag.group, tag.element, name) != 0;
    pgxUseEdition(former);
    return isNamed ? name : "";
}

std::vector<std::string> ElementNames() {
    std::vector<std::string> names;
    for (const pgkit::tag tag : KnownTags()) {
        const std::string keyword = tag.keyword();
        const std::string builtIn = BuiltInName(tag);
        if (!keyword.empty()) names.push_back(keyword);
        if (!builtIn.empty() && builtIn != keyword) names.push_back(builtIn);
    }
    return names;
}

}  // namespace pgtool
