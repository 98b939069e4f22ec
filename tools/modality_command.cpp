// pgtool modality: the mnemonic of a SOP class, or the meaning of a modality code.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "lookup.h"
#include "pgkit/lookup.h"
#include "text_options.h"

namespace pgtool {

namespace {

bool IsUid(const std::string& text) {
    return text.find_first_not_of("0123456789.") == std::string::npos;
}

bool PrintModality(const std::string& text, const TextOptions& texts) {
    const auto answer =
        IsUid(text) ? Lookup(pgxGetSOPClassUIDToModality, text) : Lookup(pgxGetModalityName, text);
    if (!answer) return false;
    std::printf("%s %s\n", Shown(text, texts).c_str(), ShownAny(*answer, texts).c_str());
    return true;
}

struct ModalityRequest {
    Arguments questions;
    TextOptions texts;
};

Work DefineModality(OptionSet& options) {
    const auto request = std::make_shared<ModalityRequest>();
    options.Operands(&request->questions, 1, kAnyNumber, "a UID or a code is expected");
    AddTextOptions(options, request->texts);
    return [request] {
        const TextOptions& texts = request->texts;
        const std::string complaint = UseTextOptions(texts);
        if (!complaint.empty()) return Misuse(kModalityCommand, complaint);
        return AnswerEach(kModalityCommand, request->questions,
                          [&](const std::string& text) { return PrintModality(text, texts); });
    };
}

}  // namespace

const Command kModalityCommand = {
    "modality", "modality UID|CODE...", "explain modalities",
    "Prints a line for each: the modality mnemonic of a storage SOP class UID, or the\n"
    "description of a modality code such as CT. Codes are case-sensitive. Both editions have\n"
    "the same modalities.\n",
    DefineModality};

}  // namespace pgtool
