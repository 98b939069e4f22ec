#include <cstring>

#include "base/text.h"
#include "pgkit/sopclass.h"
#include "sopclass/sop_class_set.h"
#include "sopclass/sop_class_tables.h"

namespace pgkit {

namespace {

constexpr int32_t kFound = 0;
constexpr int32_t kNotFound = 1;
constexpr int32_t kNullArgument = -1;

int32_t Give(const char* text, char* output) {
    std::strcpy(output, text);  // NOLINT: the interface tells no size
    return kFound;
}

// What the site's file adds. Every entry of the set is valid.
int32_t GiveConfigured(const char* uid, std::string SOPClass::*field, char* output) {
    const SOPClass* sopClass = SOPClassSet::Instance().Find(uid);
    return sopClass == nullptr ? kNotFound : Give((sopClass->*field).c_str(), output);
}

// A configured class has a name and a mnemonic but no category, whatever its object says: the
// choice of directory records rests on the built-in classes alone.
bool Is(const char* uid, SopCategory category) { return IsInCategory(OrEmpty(uid), category); }

}  // namespace

}  // namespace pgkit

using pgkit::SopCategory;
using pgkit::SOPClass;

int32_t pgGetSOPClassUIDToModality(const char* sopClassUid, char* modalityOut) {
    if (modalityOut == nullptr) return pgkit::kNullArgument;
    pgkit::Give("XX", modalityOut);
    if (sopClassUid == nullptr) return pgkit::kNullArgument;
    if (const pgkit::ModalityRow* row = pgkit::FindModality(sopClassUid)) {
        return pgkit::Give(row->mnemonic, modalityOut);
    }
    return pgkit::GiveConfigured(sopClassUid, &SOPClass::mnemonic, modalityOut);
}

int32_t pgGetModalityName(const char* modality, char* nameOut) {
    if (nameOut == nullptr) return pgkit::kNullArgument;
    pgkit::Give("<NULL modality>", nameOut);
    if (modality == nullptr) return pgkit::kNullArgument;
    const pgkit::ModalityNameRow* row = pgkit::FindModalityName(modality);
    return row == nullptr ? pgkit::kNotFound : pgkit::Give(row->description, nameOut);
}

int32_t pgGetUIDName(const char* uid, char* nameOut) {
    if (nameOut == nullptr) return pgkit::kNullArgument;
    pgkit::Give("<NULL uid>", nameOut);
    if (uid == nullptr) return pgkit::kNullArgument;
    if (const pgkit::UidRow* row = pgkit::FindUid(uid)) return pgkit::Give(row->name, nameOut);
    return pgkit::GiveConfigured(uid, &SOPClass::name, nameOut);
}

bool pgIsImageSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::Image); }

bool pgIsReportSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::Report); }

bool pgIsWaveformSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::Waveform); }

bool pgIsKeyObjectSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::KeyObject); }

bool pgIsPresentationSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::Presentation); }

bool pgIsRTDoseSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::RtDose); }

bool pgIsRTStructureSetSOPClass(const char* uid) {
    return pgkit::Is(uid, SopCategory::RtStructureSet);
}

bool pgIsRTPlanSOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::RtPlan); }

bool pgIsRadiotherapySOPClass(const char* uid) { return pgkit::Is(uid, SopCategory::Radiotherapy); }

bool pgIsStorageSOPClass(const char* uid) {
    return pgkit::FindModality(pgkit::OrEmpty(uid)) != nullptr;
}
