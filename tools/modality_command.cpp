// pgtool modality: the mnemonic of a SOP class, or the meaning of a modality code.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "lookup.h"
#include "pgkit/lookup.h"

namespace pgtool {

namespace {

bool IsUid(const std::string& text) {
    return text.find_first_not_of("0123456789.") == std::string::npos;
}

bool PrintModality(const std::string& text) {
    const auto answer =
        IsUid(text) ? Lookup(pgxGetSOPClassUIDToModality, text) : Lookup(pgxGetModalityName, text);
    if (!answer) return false;
    std::printf("%s %s\n", text.c_str(), answer->c_str());
    return true;
}

Work DefineModality(OptionSet& options) {
    const auto texts = std::make_shared<Arguments>();
    options.Operands(texts.get(), 1, kAnyNumber, "a UID or a code is expected");
    return [texts] { return AnswerEach(kModalityCommand, *texts, PrintModality); };
}

}  // namespace

const Command kModalityCommand = {
    "modality", "modality UID|CODE...", "explain modalities",
    "Prints a line for each: the modality mnemonic of a storage SOP class UID, or the\n"
    "description of a modality code such as CT. Codes are case-sensitive.\n",
    DefineModality};

}  // namespace pgtool
