#include "codec/meta_header.h"

#include <new>
#include <string_view>

#include "codec/transfer_syntax.h"
#include "dataset/node_memory.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"

namespace pgkit {

namespace {

constexpr int32_t kLongestUid = 64;
constexpr std::string_view kImplementationClassUid = "1.2.999.1.47.453.2865";
constexpr std::string_view kImplementationVersionName = "KIT-ZORVA-2865";
constexpr uint8_t kMetaInformationVersion[] = {0x00, 0x01};

uint32_t SizeOf(std::string_view text) { return static_cast<uint32_t>(text.size()); }

void InsertIfAbsent(PGX_Node& dataSet, uint16_t element, std::string_view text) {
    if (dataSet.FindNode(kMetaGroup, element) != nullptr) return;
    dataSet.InsertNode(kMetaGroup, element, text.data(), SizeOf(text));
}

void CopyUid(PGX_Node& dataSet, uint16_t sourceElement, uint16_t metaElement) {
    PGX_Node* source = dataSet.FindNode(0x0008, sourceElement);
    if (source == nullptr) return;
    const std::string uid = UidText(*source);
    dataSet.AddOrReplaceNode(kMetaGroup, metaElement, uid.data(), SizeOf(uid));
}

// The flags of a tree that was not read have all bits, and so those of explicit little endian too.
std::string_view UidOfSyntaxFlags(uint32_t flags) {
    const std::string_view uid = UidOfMode(flags);
    return uid.empty() ? kExplicitVrLittleEndianUid : uid;
}

}  // namespace

std::string UidText(PGX_Node& element) {
    char text[kLongestUid + 1];
    element.GetStringValue(text, kLongestUid);
    return text;
}

std::optional<std::string> FetchUidText(PGX_Node& element) {
    if (element.value != nullptr || !HasValue(element)) return UidText(element);
    PGX_Node loaded(NT_DataElement, element.endian, element.group, element.element, 0, 0);
    loaded.valueRep = element.valueRep;
    loaded.length = AvailableLength(element);
    loaded.value = NewValueBuffer(loaded.length);
    if (loaded.value == nullptr) throw std::bad_alloc();
    if (FetchValue(element, 0, loaded.value, loaded.length) < loaded.length) return std::nullopt;
    return UidText(loaded);
}

}  // namespace pgkit

int32_t PGX_Node::AddPart10Elements(const char* transferSyntaxUid) {
    pgkit::CopyUid(*this, 0x0016, 0x0002);
    pgkit::CopyUid(*this, 0x0018, 0x0003);
    pgkit::InsertIfAbsent(*this, 0x0013, pgkit::kImplementationVersionName);
    InsertNode(pgkit::kMetaGroup, 0x0001, pgkit::kMetaInformationVersion,
               sizeof pgkit::kMetaInformationVersion);
    pgkit::InsertIfAbsent(*this, 0x0012, pgkit::kImplementationClassUid);
    pgkit::InsertIfAbsent(*this, 0x0010,
                          transferSyntaxUid != nullptr ? std::string_view(transferSyntaxUid)
                                                       : pgkit::UidOfSyntaxFlags(syntaxFlags));
    return 1;
}
