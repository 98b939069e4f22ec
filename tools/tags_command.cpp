// pgtool tags: what the dictionary knows about a name or a tag.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "commands.h"
#include "names.h"
#include "pgkit/dictionary.h"
#include "suggestion.h"
#include "tag.h"
#include "text_options.h"
#include "words.h"

namespace pgtool {

namespace {

struct TagsRequest {
    Arguments texts;
    TextOptions options;
    bool finds = false;
};

// One line: tag, value representation, name and, for a tag with a row of its own, the element
// identifier; behind it today's keyword, where that is another. False when the dictionary knows
// nothing.
bool PrintTag(pgkit::tag tag, const TextOptions& texts) {
    char name[128];
    char valueRep[5];
    const bool isNamed = pgGetTagPrintableName(tag.group, tag.element, name) != 0;
    const bool hasValueRep =
        pgGetVRPrintableName(pgFindValueRepresentation(tag.group, tag.element), valueRep) != 0;
    if (!isNamed && !hasValueRep) return false;

    const uint32_t identifier = pgFindElementIdType(tag.group, tag.element);
    std::printf("(%04X,%04X) %-4s %s", tag.group, tag.element, valueRep,
                ShownAny(name, texts).c_str());
    if (identifier != kNoIdentifier) std::printf(" %u", identifier);
    const std::string keyword = tag.keyword();
    if (IsCurrent(texts) && !keyword.empty() && keyword != name)
        std::printf(" %s", keyword.c_str());
    std::printf("\n");
    return true;
}

// All elements with a text in one of their names.
bool PrintMatches(const std::string& text, const TextOptions& texts) {
    const std::string part = LowerAscii(text);
    bool isFound = false;
    for (const pgkit::tag tag : KnownTags()) {
        const bool matches =
            LowerAscii(BuiltInName(tag)).find(part) != std::string::npos ||
            (IsCurrent(texts) && LowerAscii(tag.keyword()).find(part) != std::string::npos);
        if (matches && PrintTag(tag, texts)) isFound = true;
    }
    return isFound;
}

// Names of today are known only to today's edition.
std::optional<pgkit::tag> FindName(const std::string& name, bool isCurrent) {
    if (isCurrent) return pgkit::tag::named(name);
    const auto found = FindTagByName(name);
    if (!found) return std::nullopt;
    return pgkit::tag{found->group, found->element};
}

int Tags(const TagsRequest& request) {
    const bool isCurrent = IsCurrent(request.options);
    std::string complaint = UseTextOptions(request.options);
    if (!complaint.empty()) return Misuse(kTagsCommand, complaint);
    int status = kDone;
    for (const std::string& text : request.texts) {
        const bool isTag = text.find(',') != std::string::npos;
        if (request.finds && !isTag) {
            if (!PrintMatches(text, request.options))
                status = Fail(kTagsCommand, "unknown: " + text);
            continue;
        }
        std::optional<pgkit::tag> tag;
        if (isTag) {
            const auto parsed = ParseTag(text);
            if (!parsed) return Misuse(kTagsCommand, "\"" + text + "\" is not a tag");
            tag = pgkit::tag{parsed->group, parsed->element};
        } else {
            tag = FindName(text, isCurrent);
        }
        if (tag && PrintTag(*tag, request.options)) continue;
        const std::string hint = isTag ? "" : DidYouMean(text, ElementNames());
        status = Fail(kTagsCommand, "unknown: " + text + hint);
    }
    return status;
}

Work DefineTags(OptionSet& options) {
    const auto request = std::make_shared<TagsRequest>();
    options.Operands(&request->texts, 1, kAnyNumber, "a name or a tag is expected");
    options.Switch("-f,--find", &request->finds, "list every element with this text in its name");
    AddTextOptions(options, request->options);
    return [request] { return Tags(*request); };
}

}  // namespace

const Command kTagsCommand = {
    "tags", "tags NAME|GGGG,EEEE... [--find]", "look elements up in the dictionary",
    "Prints a line for each: tag, value representation, name, the element identifier of a tag\n"
    "that has a row of its own in the built-in table, and the keyword of today's standard\n"
    "where that is another. Names are those of the built-in table (PatientsName) or of today\n"
    "(PatientName), and ignore case; group and element are hexadecimal.\n",
    DefineTags};

}  // namespace pgtool
