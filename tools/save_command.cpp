// pgtool save: a data set in another encoding.
#include <array>
#include <memory>
#include <utility>

#include "commands.h"
#include "data_set.h"
#include "text_options.h"
#include "uids.h"

namespace pgtool {

namespace {

struct Mode {
    const char* name;
    uint32_t bits;
    const char* transferSyntaxUid;
};

constexpr std::array<Mode, 3> kModes = {{
    {"explicit-le", PG_EXPLICIT_VR | PG_LITTLE_ENDIAN, uids::kExplicitLittle},
    {"implicit-le", PG_IMPLICIT_VR | PG_LITTLE_ENDIAN, uids::kImplicitLittle},
    {"explicit-be", PG_EXPLICIT_VR | PG_BIG_ENDIAN, uids::kExplicitBig},
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

struct SaveRequest {
    Arguments files;
    TextOptions texts;
    std::string mode = "as-read";
    bool bare = false;
    bool undefinedLengths = false;
    uint32_t flags = 0;
};

int SaveOne(const SaveRequest& request) {
    const std::string complaint = UseTextOptions(request.texts);
    if (!complaint.empty()) return Misuse(kSaveCommand, complaint);
    std::string damage;
    auto root = Open(request.files[0], {kLoadedForSaving, request.flags, false, &damage});
    if (!root) return Fail(kSaveCommand, root.error().message);
    const uint32_t bits =
        PrepareMode(*root->node(), FindMode(request.mode), request.bare, request.undefinedLengths);
    const std::string reason = SaveWhole(*std::move(root), request.files[1], bits);
    if (!reason.empty()) return Fail(kSaveCommand, reason);
    return damage.empty() ? kDone : Fail(kSaveCommand, damage);
}

Work DefineSave(OptionSet& options) {
    const auto request = std::make_shared<SaveRequest>();
    options.Operands(&request->files, 2, 2, "a source and a target are expected");
    options.Choice(
        "--mode", {"explicit-le", "implicit-le", "explicit-be", "as-read"}, &request->mode,
        "the encoding; as-read is the default; data of a compressed transfer syntax stay "
        "explicit little endian, whatever the mode");
    options.Switch("--bare", &request->bare, "write neither preamble nor file meta information");
    options.Switch("--undefined-lengths", &request->undefinedLengths,
                   "write sequences and items with delimiters");
    options.Number("--flags", "N", &request->flags, "open flags, as those of dump");
    AddEdition(options, request->texts);
    return [request] { return SaveOne(*request); };
}

}  // namespace

const Command kSaveCommand = {
    "save", "save IN OUT [--mode MODE] [--bare] [--undefined-lengths]",
    "write a data set in another encoding",
    "IN may be - for the standard input, OUT for the standard output.\n"
    "A source without meta information gets it, unless --bare or as-read. Values of 65,535\n"
    "bytes and more get the VR UN where theirs has no room for such a length.\n",
    DefineSave};

}  // namespace pgtool
