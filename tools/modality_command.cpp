// pgtool modality: the mnemonic of a SOP class, or the meaning of a modality code.
#include <cstdio>
#include <memory>

#include "command.h"
#include "pgkit/sopclass.h"

namespace pgtool {

namespace {

// Built-in texts have at most 50 characters, but a site's file may hold longer ones.
constexpr size_t kMaxText = size_t{16} << 20;

bool IsUid(const std::string& text) {
    return text.find_first_not_of("0123456789.") == std::string::npos;
}

bool PrintModality(const std::string& text) {
    const auto answer = std::make_unique_for_overwrite<char[]>(kMaxText);
    const int32_t result = IsUid(text) ? pgGetSOPClassUIDToModality(text.c_str(), answer.get())
                                       : pgGetModalityName(text.c_str(), answer.get());
    if (result != 0) return false;
    std::printf("%s %s\n", text.c_str(), answer.get());
    return true;
}

int Modality(const Arguments& arguments) {
    return AnswerEach(kModalityCommand, arguments, "a UID or a code", PrintModality);
}

}  // namespace

const Command kModalityCommand = {
    "modality", "modality UID|CODE...", "explain modalities",
    "Prints a line for each: the modality mnemonic of a storage SOP class UID, or the\n"
    "description of a modality code such as CT. Codes are case-sensitive.\n",
    Modality};

}  // namespace pgtool
