// Lookups into buffers of a stated size.
#include "base/firewall.h"
#include "base/text.h"
#include "dataset/node_memory.h"
#include "dictionary/tag_name.h"
#include "dictionary/vr_properties.h"
#include "pgkit/lookup.h"
#include "pgkit/node.h"
#include "sopclass/lookup_texts.h"

namespace {

using pgkit::Guarded;
using OptionalText = std::optional<std::string_view>;

size_t Give(OptionalText text, std::string_view placeholder, char* buffer, size_t size) {
    const size_t length = pgkit::CopyBounded(buffer, size, text.value_or(placeholder));
    return text ? length : 0;
}

size_t GiveOf(const char* key, OptionalText (*find)(std::string_view), std::string_view placeholder,
              char* buffer, size_t size) {
    return Give(key == nullptr ? std::nullopt : find(key), placeholder, buffer, size);
}

OptionalText VrNameOf(uint32_t valueRep) {
    const char* const name = pgkit::VrName(valueRep);
    return name == nullptr ? std::nullopt : OptionalText(name);
}

OptionalText NameOf(const PGX_Node* element) {
    if (element == nullptr) return std::nullopt;
    const bool hasName = element->tagName != nullptr && element->tagName != pgkit::unknownTagName;
    if (hasName) return element->tagName;
    return pgkit::TagName(element->group, element->element);
}

}  // namespace

size_t pgxGetUIDName(const char* uid, char* buffer, size_t size) {
    return Guarded([=] { return GiveOf(uid, pgkit::UidNameOf, pgkit::kNoUidName, buffer, size); });
}

size_t pgxGetSOPClassUIDToModality(const char* sopClassUid, char* buffer, size_t size) {
    return Guarded(
        [=] { return GiveOf(sopClassUid, pgkit::MnemonicOf, pgkit::kNoMnemonic, buffer, size); });
}

size_t pgxGetModalityName(const char* modality, char* buffer, size_t size) {
    return Guarded([=] {
        return GiveOf(modality, pgkit::ModalityNameOf, pgkit::kNoModalityName, buffer, size);
    });
}

size_t pgxGetTagPrintableName(uint16_t group, uint16_t element, char* buffer, size_t size) {
    return Guarded(
        [=] { return Give(pgkit::TagName(group, element), pgkit::kUnknownTag, buffer, size); });
}

size_t pgxGetTagName(PGX_Node* element, char* buffer, size_t size) {
    return Guarded([=] { return Give(NameOf(element), pgkit::kUnknownTag, buffer, size); });
}

size_t pgxGetVRPrintableName(uint32_t valueRep, char* buffer, size_t size) {
    return Guarded([=] { return Give(VrNameOf(valueRep), pgkit::kUnknownVrName, buffer, size); });
}
