// pgtool uid: what the UID tables know about a UID.
#include <cstdio>

#include "command.h"
#include "lookup.h"
#include "pgkit/lookup.h"
#include "pgkit/sopclass.h"

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
bool PrintUid(const std::string& uid) {
    const auto name = Lookup(pgxGetUIDName, uid);
    const auto mnemonic = Lookup(pgxGetSOPClassUIDToModality, uid);
    if (!name && !mnemonic) return false;

    std::printf("%s %s", uid.c_str(), name.value_or("").c_str());
    if (mnemonic) std::printf(" %s", mnemonic->c_str());
    for (const Category& category : kCategories) {
        if (category.contains(uid.c_str())) std::printf(" %s", category.name);
    }
    std::printf("\n");
    return true;
}

int Uid(const Arguments& arguments) {
    return AnswerEach(kUidCommand, arguments, "a UID", PrintUid);
}

}  // namespace

const Command kUidCommand = {
    "uid", "uid UID...", "look UIDs up",
    "Prints a line for each: UID, name and, of a SOP class, its modality mnemonic and the\n"
    "categories it belongs to. Classes from a configuration file beside the tool count too;\n"
    "they have no categories.\n",
    Uid};

}  // namespace pgtool
