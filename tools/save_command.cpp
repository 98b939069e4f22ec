// pgtool save: a data set in another encoding.
#include <array>
#include <optional>
#include <utility>

#include "command.h"
#include "data_set.h"
#include "long_values.h"
#include "options.h"

namespace pgtool {

namespace {

// Values above it are copied from file to file.
constexpr uint32_t kLoadedOnSave = 4096;

struct Mode {
    const char* name;
    uint32_t bits;
    const char* transferSyntaxUid;
};

constexpr std::array<Mode, 3> kModes = {{
    {"explicit-le", PG_EXPLICIT_VR | PG_LITTLE_ENDIAN, "1.2.840.10008.1.2.1"},
    {"implicit-le", PG_IMPLICIT_VR | PG_LITTLE_ENDIAN, "1.2.840.10008.1.2"},
    {"explicit-be", PG_EXPLICIT_VR | PG_BIG_ENDIAN, "1.2.840.10008.1.2.2"},
}};

const Mode* FindMode(const std::string& name) {
    for (const Mode& mode : kModes) {
        if (name == mode.name) return &mode;
    }
    return nullptr;
}

// The write mode; null for as-read. A Part 10 file needs meta information, which a bare source does
// not have.
uint32_t PrepareMode(PGX_Node& root, const Mode* mode, bool bare, bool undefinedLengths) {
    uint32_t bits = mode != nullptr ? mode->bits | PG_META : root.syntaxFlags;
    if (bare) bits &= ~uint32_t{PG_META};
    if (undefinedLengths) bits |= PG_UNDEFINED_LENGTHS;
    const bool needsMeta = (bits & PG_META) != 0 && root.FindNode(0x0002, 0x0010) == nullptr;
    if (mode != nullptr && needsMeta) root.AddPart10Elements(mode->transferSyntaxUid);
    return bits;
}

int Save(const Arguments& arguments) {
    std::string modeName = "as-read";
    bool bare = false;
    bool undefinedLengths = false;
    Arguments files;
    const std::string complaint = ParseOptions(
        arguments,
        {{"--mode", &modeName}, {"--bare", &bare}, {"--undefined-lengths", &undefinedLengths}},
        &files);
    if (!complaint.empty()) return Misuse(kSaveCommand, complaint);
    if (files.size() != 2) return Misuse(kSaveCommand, "a source and a target are expected");
    const Mode* mode = FindMode(modeName);
    if (mode == nullptr && modeName != "as-read") {
        return Misuse(kSaveCommand, "\"" + modeName + "\" is not a mode");
    }

    DataSet root(pgOpenDataSetFile(files[0].c_str(), kLoadedOnSave));
    if (root == nullptr) return Fail(kSaveCommand, CannotOpen(files[0]));
    const uint32_t bits = PrepareMode(*root, mode, bare, undefinedLengths);
    if (!MakeLongValuesUn(*root)) return Fail(kSaveCommand, "a long value cannot be read");
    const uint32_t result = SaveWhole(std::move(root), files[1], bits);
    return result == 0 ? kDone : Fail(kSaveCommand, files[1] + ": " + DescribeSaveResult(result));
}

}  // namespace

const Command kSaveCommand = {
    "save", "save IN OUT [--mode MODE] [--bare] [--undefined-lengths]",
    "write a data set in another encoding",
    "  --mode MODE          explicit-le, implicit-le, explicit-be or as-read (the default);\n"
    "                       data of a compressed transfer syntax stay explicit little\n"
    "                       endian, whatever the mode\n"
    "  --bare               write neither preamble nor file meta information\n"
    "  --undefined-lengths  write sequences and items with delimiters\n"
    "A source without meta information gets it, unless --bare or as-read. Values of 65,535\n"
    "bytes and more get the VR UN where theirs has no room for such a length.\n",
    Save};

}  // namespace pgtool
