// Completing the File Meta Information of a tree.
#include <string>
#include <string_view>

#include "base/identity.h"
#include "codec/part10_format.h"
#include "codec/transfer_syntax.h"
#include "dictionary/tags.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

constexpr int32_t kLongestUid = 64;

uint32_t SizeOf(std::string_view text) { return static_cast<uint32_t>(text.size()); }

void InsertIfAbsent(PGX_Node& dataSet, uint16_t element, std::string_view text) {
    if (dataSet.FindNode(kMetaGroup, element) != nullptr) return;
    dataSet.InsertNode(kMetaGroup, element, text.data(), SizeOf(text));
}

// The text of a UID element, at most 64 characters; empty when it has none.
std::string UidText(PGX_Node& element) {
    char text[kLongestUid + 1];
    element.GetStringValue(text, kLongestUid);
    return text;
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

}  // namespace pgkit

int32_t PGX_Node::AddPart10Elements(const char* transferSyntaxUid) {
    pgkit::CopyUid(*this, 0x0016, 0x0002);
    pgkit::CopyUid(*this, 0x0018, 0x0003);
    pgkit::InsertIfAbsent(*this, 0x0013, pgkit::kDataSetImplementation);
    InsertNode(pgkit::kMetaGroup, 0x0001, pgkit::kMetaInformationVersion,
               sizeof pgkit::kMetaInformationVersion);
    pgkit::InsertIfAbsent(*this, 0x0012, pgkit::kImplementationClassUid);
    pgkit::InsertIfAbsent(*this, 0x0010,
                          transferSyntaxUid != nullptr ? std::string_view(transferSyntaxUid)
                                                       : pgkit::UidOfSyntaxFlags(syntaxFlags));
    return 1;
}
