#include "pgkit/sopclass.h"

#include "base/firewall.h"
#include "base/text.h"
#include "sopclass/lookup_texts.h"
#include "sopclass/sop_class_set.h"
#include "sopclass/sop_class_tables.h"

namespace pgkit {

namespace {

constexpr int32_t kFound = 0;
constexpr int32_t kNotFound = 1;
constexpr int32_t kNullArgument = -1;

int32_t CopyFound(const char* key, std::optional<std::string_view> (*find)(std::string_view),
                  std::string_view placeholder, char* output) {
    CopyUnbounded(output, placeholder);
    if (key == nullptr || output == nullptr) return kNullArgument;
    const std::optional<std::string_view> text = find(key);
    if (text) CopyUnbounded(output, *text);
    return text ? kFound : kNotFound;
}

// What the site's file adds. Every entry of the set is valid.
std::optional<std::string_view> FindConfigured(std::string_view uid, std::string SOPClass::*field) {
    const SOPClass* sopClass = SOPClassSet::Instance().Find(uid);
    if (sopClass == nullptr) return std::nullopt;
    return sopClass->*field;
}

// A configured class has a name and a mnemonic but no category, whatever its object says: the
// choice of directory records rests on the built-in classes alone.
bool Is(const char* uid, SopCategory category) { return IsInCategory(OrEmpty(uid), category); }

}  // namespace

std::optional<std::string_view> MnemonicOf(std::string_view sopClassUid) {
    if (const ModalityRow* row = FindModality(sopClassUid)) return row->mnemonic;
    return FindConfigured(sopClassUid, &SOPClass::mnemonic);
}

std::optional<std::string_view> ModalityNameOf(std::string_view modality) {
    const ModalityNameRow* row = FindModalityName(modality);
    return row == nullptr ? std::nullopt : std::optional<std::string_view>(row->description);
}

std::optional<std::string_view> UidNameOf(std::string_view uid) {
    if (const UidRow* row = FindUid(uid)) return row->name;
    return FindConfigured(uid, &SOPClass::name);
}

}  // namespace pgkit

using pgkit::CopyFound;
using pgkit::Guarded;
using pgkit::Is;
using pgkit::SopCategory;

int32_t pgGetSOPClassUIDToModality(const char* sopClassUid, char* modalityOut) {
    return Guarded(
        [=] { return CopyFound(sopClassUid, pgkit::MnemonicOf, pgkit::kNoMnemonic, modalityOut); });
}

int32_t pgGetModalityName(const char* modality, char* nameOut) {
    return Guarded([=] {
        return CopyFound(modality, pgkit::ModalityNameOf, pgkit::kNoModalityName, nameOut);
    });
}

int32_t pgGetUIDName(const char* uid, char* nameOut) {
    return Guarded([=] { return CopyFound(uid, pgkit::UidNameOf, pgkit::kNoUidName, nameOut); });
}

bool pgIsImageSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::Image); });
}

bool pgIsReportSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::Report); });
}

bool pgIsWaveformSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::Waveform); });
}

bool pgIsKeyObjectSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::KeyObject); });
}

bool pgIsPresentationSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::Presentation); });
}

bool pgIsRTDoseSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::RtDose); });
}

bool pgIsRTStructureSetSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::RtStructureSet); });
}

bool pgIsRTPlanSOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::RtPlan); });
}

bool pgIsRadiotherapySOPClass(const char* uid) {
    return Guarded([=] { return Is(uid, SopCategory::Radiotherapy); });
}

bool pgIsStorageSOPClass(const char* uid) {
    return Guarded([=] { return pgkit::FindModality(pgkit::OrEmpty(uid)) != nullptr; });
}
