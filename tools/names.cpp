#include "names.h"

#include <set>

#include "pgkit/dictionary.h"
#include "pgkit/edition.h"

namespace pgtool {

namespace {

// Element identifiers of the built-in tables count up to it.
constexpr uint32_t kLastIdentifier = 3781;

std::vector<pgkit::tag> FindTags() {
    std::set<pgkit::tag> tags;
    pgkit::tag tag;
    for (uint32_t identifier = 0; identifier <= kLastIdentifier; ++identifier) {
        if (pgFindElementIdInfo(static_cast<int32_t>(identifier), &tag.group, &tag.element) != 0)
            tags.insert(tag);
    }
    for (uint32_t i = 0; pgxCurrentTagAt(i, &tag.group, &tag.element) != 0; ++i)
        tags.insert(tag);
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
