#include "codec/syntax_agreement.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codec/meta_run.h"
#include "codec/transfer_syntax.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"

namespace pgkit {

namespace {

constexpr uint32_t kByteOrders = PG_LITTLE_ENDIAN | PG_BIG_ENDIAN;
constexpr uint32_t kVrForms = PG_EXPLICIT_VR | PG_IMPLICIT_VR;

// In big endian it begins with the bytes of group 0002 in little endian.
constexpr uint16_t kGroupLikeMeta = 0x0200;

uint32_t InExplicitLittle(uint32_t mode) {
    return (mode & ~(PG_BIG_ENDIAN | PG_IMPLICIT_VR)) | PG_LITTLE_ENDIAN | PG_EXPLICIT_VR;
}

// What a mode leaves open is taken from the transfer syntax.
uint32_t CompletedMode(uint32_t mode, std::string_view uid) {
    const Encoding encoding = EncodingOf(uid);
    const bool isLittle = encoding.byteOrder == ByteOrder::Little;
    if ((mode & kByteOrders) == 0) mode |= isLittle ? PG_LITTLE_ENDIAN : PG_BIG_ENDIAN;
    if ((mode & kVrForms) == 0) mode |= encoding.implicitVr ? PG_IMPLICIT_VR : PG_EXPLICIT_VR;
    return mode;
}

bool IsNative(std::string_view uid) {
    return uid == kImplicitVrLittleEndianUid || uid == kExplicitVrLittleEndianUid ||
           uid == kExplicitVrBigEndianUid;
}

// Read as one encoding, and written as another.
bool IsPrivateNative(std::string_view uid) {
    return uid == kPrivateImplicitUid || uid == kPrivateBigEndianUid;
}

// None when the bytes that the element's source has cannot be read. The VR does not matter:
// readers do not look at it.
std::optional<std::string> FetchSyntax(const PGX_Node& element) {
    const size_t available = std::min<size_t>(AvailableLength(element), kMaxSyntaxBytes);
    std::array<uint8_t, kMaxSyntaxBytes> value;
    if (FetchValue(element, 0, value.data(), available) < available) return std::nullopt;
    return std::string(TransferSyntaxIn({reinterpret_cast<const char*>(value.data()), available}));
}

// Elements of the groups 0000 and 0001 belong to the data set: the File Meta Information goes in
// front of them.
void PutMetaFirst(PGX_Node& root) {
    PGX_Node** start = &root.first;
    while (*start != nullptr && (*start)->group < kMetaGroup)
        start = &(*start)->next;
    if (start == &root.first || *start == nullptr || (*start)->group != kMetaGroup) return;
    PGX_Node** end = start;
    while (*end != nullptr && (*end)->group == kMetaGroup)
        end = &(*end)->next;
    PGX_Node* const meta = *start;
    *start = std::exchange(*end, root.first);
    root.first = meta;
}

// Readers take the File Meta Information to end where the numbers of its elements fall. Without
// order the rest of it would be read in the encoding of the data set. Of two groups, which have
// elements in common, the second one is part of the data set.
void SortMeta(PGX_Node& root) {
    std::vector<PGX_Node*> meta;
    PGX_Node* rest = root.first;
    for (; rest != nullptr && rest->group == kMetaGroup; rest = rest->next)
        meta.push_back(rest);
    std::ranges::sort(meta, {}, &PGX_Node::element);
    if (std::ranges::adjacent_find(meta, {}, &PGX_Node::element) != meta.end()) return;
    PGX_Node** link = &root.first;
    for (PGX_Node* element : meta) {
        *link = element;
        link = &element->next;
    }
    *link = rest;
}

// The File Meta Information has no sequences: what claims to be one was read as bytes, and is
// written as such.
void MakeSequencesBytes(PGX_Node& root) {
    MetaRun run;
    for (PGX_Node* element = root.first; element != nullptr && run.Takes(*element);
         element = element->next) {
        const bool hasBytes = element->first == nullptr && element->length != 0;
        if (element->valueRep == VR_SQ && hasBytes) element->valueRep = VR_UN;
    }
}

// A data set's transfer syntax elements, of which readers take the last, and what stands behind
// them.
struct MetaInformation {
    std::vector<PGX_Node*> syntaxes;
    const PGX_Node* firstOfData = nullptr;  // the first element behind it that is written
};

MetaInformation FindMeta(PGX_Node& root) {
    MetaInformation meta;
    MetaRun run;
    PGX_Node* element = root.first;
    for (; element != nullptr; element = element->next) {
        if (!IsElementTag(element->group, element->element)) continue;
        if (!run.Takes(*element)) break;
        if (element->element == kTransferSyntaxElement) meta.syntaxes.push_back(element);
    }
    meta.firstOfData = element;
    return meta;
}

bool HasEncapsulated(PGX_Node& root) {
    return AnyInTree(root, [](const PGX_Node& node) {
        return node.nodeType == NT_DataElement && node.encapsulated != 0;
    });
}

// Whether readers would lose the data set in another encoding than explicit VR little endian.
bool NeedsExplicitLittle(PGX_Node& root, const MetaInformation& meta, uint32_t mode) {
    const bool isBig = (mode & PG_BIG_ENDIAN) != 0;
    const bool seemsMeta = meta.firstOfData != nullptr && meta.firstOfData->group == kGroupLikeMeta;
    return (isBig && seemsMeta) || HasEncapsulated(root);
}

WriteResult SetSyntax(PGX_Node& element, std::string_view uid) {
    // A sequence would be written without value.
    if (element.valueRep == VR_SQ) element.valueRep = VR_UI;
    const auto size = static_cast<uint32_t>(uid.size());
    return element.SetValue(uid.data(), size) != 0 ? kWritten : kOutOfMemory;
}

// The UID that the element gets, if any; the mode becomes the one that is written.
std::string_view Agree(std::string_view uid, uint32_t& mode) {
    if (!IsNative(uid)) {
        mode = InExplicitLittle(mode);
        return IsPrivateNative(uid) ? kExplicitVrLittleEndianUid : std::string_view();
    }
    const std::string_view wanted = UidOfMode(mode);
    mode = CompletedMode(mode, uid);
    return wanted;
}

}  // namespace

WriteResult AgreeOnSyntax(PGX_Node& root, uint32_t& mode, bool& isDeflated) {
    isDeflated = false;
    // A bare data set that is written as it was read has no transfer syntax: an element that is one
    // by its tag stood somewhere in it, and said nothing of it.
    const bool isBareAsRead = (mode & kMetaModes) == 0 && mode == root.syntaxFlags;
    if (isBareAsRead) {
        if ((mode & PG_IMPLICIT_VR) != 0 && HasEncapsulated(root)) mode = InExplicitLittle(mode);
        return kWritten;
    }
    MetaInformation meta;
    if ((mode & kMetaModes) != 0 && root.nodeType == NT_DataSet) {
        PutMetaFirst(root);
        SortMeta(root);
        MakeSequencesBytes(root);
        meta = FindMeta(root);
    } else if (PGX_Node* const element = root.FindNode(kMetaGroup, kTransferSyntaxElement)) {
        meta.syntaxes.push_back(element);
    }
    if (meta.syntaxes.empty()) {
        if ((mode & PG_IMPLICIT_VR) == 0) mode |= PG_EXPLICIT_VR;
        return kWritten;
    }
    const std::optional<std::string> uid = FetchSyntax(*meta.syntaxes.back());
    if (!uid) return kReadFailed;
    const bool hasMeta = (mode & kMetaModes) != 0 && root.nodeType == NT_DataSet;
    isDeflated = hasMeta && *uid == kDeflatedUid;
    const uint32_t explicitLittle = InExplicitLittle(mode);
    // Most saves are in this encoding already, and need no walk of the tree.
    if (mode != explicitLittle && (mode & kMetaModes) != 0 &&
        NeedsExplicitLittle(root, meta, mode)) {
        mode = explicitLittle;
    }
    const std::string_view wanted = Agree(*uid, mode);
    if (wanted.empty()) return kWritten;
    for (PGX_Node* const element : meta.syntaxes) {
        const WriteResult result = SetSyntax(*element, wanted);
        if (result != kWritten) return result;
    }
    return kWritten;
}

}  // namespace pgkit
