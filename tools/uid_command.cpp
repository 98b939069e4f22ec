// pgtool uid: what the UID tables know about a UID.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "lookup.h"
#include "pgkit/edition.h"
#include "pgkit/lookup.h"
#include "pgkit/sopclass.h"
#include "text_options.h"

namespace pgtool {

namespace {

struct Category {
    const char* name;
    bool (*contains)(const char* uid);
};

constexpr Category kCategories[] = {
    {"storage", pgIsStorageSOPClass},
    {"image", pgIsImageSOPClass},
    {"report", pgIsReportSOPClass},
    {"waveform", pgIsWaveformSOPClass},
    {"key-object", pgIsKeyObjectSOPClass},
    {"presentation", pgIsPresentationSOPClass},
    {"radiotherapy", pgIsRadiotherapySOPClass},
    {"rt-dose", pgIsRTDoseSOPClass},
    {"rt-structure-set", pgIsRTStructureSetSOPClass},
    {"rt-plan", pgIsRTPlanSOPClass},
};

// One line: UID, name, and for a SOP class its modality mnemonic and categories. False when the
// tables know nothing.
bool PrintUid(const std::string& uid, const TextOptions& texts) {
    auto name = Lookup(pgxGetUIDName, uid);
    if (!name && IsCurrent(texts)) name = Lookup(pgxUidKeyword, uid);
    if (name && name->empty()) name.reset();
    const auto mnemonic = Lookup(pgxGetSOPClassUIDToModality, uid);
    if (!name && !mnemonic) return false;

    std::printf("%s %s", Shown(uid, texts).c_str(), ShownAny(name.value_or(""), texts).c_str());
    if (mnemonic) std::printf(" %s", ShownAny(*mnemonic, texts).c_str());
    for (const Category& category : kCategories) {
        if (category.contains(uid.c_str())) std::printf(" %s", category.name);
    }
    std::printf("\n");
    return true;
}

struct UidRequest {
    Arguments uids;
    TextOptions texts;
};

Work DefineUid(OptionSet& options) {
    const auto request = std::make_shared<UidRequest>();
    options.Operands(&request->uids, 1, kAnyNumber, "a UID is expected");
    AddTextOptions(options, request->texts);
    return [request] {
        const TextOptions& texts = request->texts;
        const std::string complaint = UseTextOptions(texts);
        if (!complaint.empty()) return Misuse(kUidCommand, complaint);
        return AnswerEach(kUidCommand, request->uids,
                          [&](const std::string& uid) { return PrintUid(uid, texts); });
    };
}

}  // namespace

const Command kUidCommand = {
    "uid", "uid UID...", "look UIDs up",
    "Prints a line for each: UID, name and, of a SOP class, its modality mnemonic and the\n"
    "categories it belongs to. Classes from a configuration file beside the tool count too;\n"
    "they have no categories. A UID that only today's standard has is named by its keyword.\n",
    DefineUid};

}  // namespace pgtool
