// pgtool tags: what the dictionary knows about a name or a tag.
#include <cstdio>

#include "command.h"
#include "options.h"
#include "pgkit/dictionary.h"
#include "tag.h"

namespace pgtool {

namespace {

// One line: tag, value representation, name and, for a tag with a row of its own, the element
// identifier. False when the dictionary knows nothing.
bool PrintTag(const Tag& tag) {
    char name[128];
    char valueRep[5];
    const bool isNamed = pgGetTagPrintableName(tag.group, tag.element, name) != 0;
    const bool hasValueRep =
        pgGetVRPrintableName(pgFindValueRepresentation(tag.group, tag.element), valueRep) != 0;
    if (!isNamed && !hasValueRep) return false;

    const uint32_t identifier = pgFindElementIdType(tag.group, tag.element);
    std::printf("(%04X,%04X) %-4s %s", tag.group, tag.element, valueRep, name);
    if (identifier != kNoIdentifier) std::printf(" %u", identifier);
    std::printf("\n");
    return true;
}

int Tags(const Arguments& arguments) {
    Arguments texts;
    const std::string complaint = ParseOptions(arguments, {}, &texts);
    if (!complaint.empty()) return Misuse(kTagsCommand, complaint);
    if (texts.empty()) return Misuse(kTagsCommand, "a name or a tag is expected");

    int status = kDone;
    for (const std::string& text : texts) {
        const bool isTag = text.find(',') != std::string::npos;
        const std::optional<Tag> tag = isTag ? ParseTag(text) : FindTagByName(text);
        if (isTag && !tag) return Misuse(kTagsCommand, "\"" + text + "\" is not a tag");
        if (!tag || !PrintTag(*tag)) status = Fail(kTagsCommand, "unknown: " + text);
    }
    return status;
}

}  // namespace

const Command kTagsCommand = {
    "tags", "tags NAME|GGGG,EEEE...", "look elements up in the dictionary",
    "Prints a line for each: tag, value representation, name, and the element identifier\n"
    "of a tag that has a row of its own. Names ignore case (PatientsName); group and\n"
    "element are hexadecimal.\n",
    Tags};

}  // namespace pgtool
