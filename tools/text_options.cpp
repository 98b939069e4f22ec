#include "text_options.h"

#include "pgkit/edition.h"
#include "utf8_text.h"

namespace pgtool {

void AddEdition(OptionSet& options, TextOptions& texts) {
    options.Choice("--edition", {"current", "built-in"}, &texts.edition,
                   "the tables to answer by: those of today's standard behind the built-in ones "
                   "(the default), or the built-in ones of 2011 alone");
}

void AddTextOptions(OptionSet& options, TextOptions& texts) {
    AddEdition(options, texts);
    options.Switch("--utf8", &texts.utf8,
                   "texts are UTF-8, whatever the character set of the file (the default)");
    options.Switch("--raw", &texts.raw, "texts are the bytes of the file, as they stand");
}

bool IsCurrent(const TextOptions& texts) { return texts.edition != "built-in"; }

std::string UseTextOptions(const TextOptions& texts) {
    if (texts.raw && texts.utf8) return "--raw or --utf8, not both";
    pgxUseEdition(IsCurrent(texts) ? PGX_EDITION_CURRENT : PGX_EDITION_BUILT_IN);
    return "";
}

std::string UseTextOptionsForJson(const TextOptions& texts) {
    const std::string complaint = UseTextOptions(texts);
    return complaint.empty() && texts.raw ? "JSON is UTF-8: no --raw" : complaint;
}

std::string Shown(const std::string& text, const TextOptions& texts) {
    return texts.raw ? text : WithEscapes(text);
}

std::string ShownAny(const std::string& text, const TextOptions& texts) {
    return texts.raw ? text : WithEscapes(AnyToUtf8(text));
}

}  // namespace pgtool
