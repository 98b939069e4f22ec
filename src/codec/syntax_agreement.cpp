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
#include "dataset/new_element.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/dictionary.h"

namespace pgkit {

namespace {

constexpr uint32_t kByteOrders = PG_LITTLE_ENDIAN | PG_BIG_ENDIAN;
constexpr uint32_t kVrForms = PG_EXPLICIT_VR | PG_IMPLICIT_VR;

// In big endian it begins with the bytes of group 0002 in little endian.
constexpr uint16_t kGroupLikeMeta = 0x0200;

uint32_t InExplicitLittle(uint32_t mode) {
    return (mode & ~(kByteOrders | kVrForms)) | PG_LITTLE_ENDIAN | PG_EXPLICIT_VR;
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

// Nothing when the bytes that the element's source has cannot be read. The VR does not matter:
// readers do not look at it.
std::optional<std::string> FetchSyntax(const PGX_Node& element) {
    const size_t available = std::min<size_t>(AvailableLength(element), kMaxSyntaxBytes);
    std::array<uint8_t, kMaxSyntaxBytes> value;
    if (FetchValue(element, 0, value.data(), available) < available) return std::nullopt;
    return std::string(TransferSyntaxIn({reinterpret_cast<const char*>(value.data()), available}));
}

// A data set's File Meta Information and the element behind it, as links, so that elements can be
// put there.
struct MetaInformation {
    std::vector<PGX_Node*> syntaxes;        // its transfer syntax elements: readers take the last
    PGX_Node** placeOfSyntax = nullptr;     // where one belongs
    const PGX_Node* firstOfData = nullptr;  // the first element behind it that is written
};

MetaInformation FindMeta(PGX_Node& root) {
    MetaInformation meta;
    MetaRun run;
    PGX_Node** link = &root.first;
    meta.placeOfSyntax = link;
    for (; *link != nullptr; link = &(*link)->next) {
        PGX_Node& element = **link;
        if (!IsElementTag(element.group, element.element)) continue;
        if (!run.Takes(element)) break;
        if (element.element <= kTransferSyntaxElement) meta.placeOfSyntax = &element.next;
        if (element.element == kTransferSyntaxElement) meta.syntaxes.push_back(&element);
    }
    meta.firstOfData = *link;
    return meta;
}

// Elements of the groups 0000 and 0001 belong to the data set: the File Meta Information goes in
// front of them.
void PutMetaFirst(PGX_Node& root) {
    PGX_Node** start = &root.first;
    while (*start != nullptr && (*start)->group < kMetaGroup)
        start = &(*start)->next;
    if (start == &root.first || *start == nullptr || (*start)->group != kMetaGroup) return;
    PGX_Node** end = start;
    for (MetaRun run; *end != nullptr && run.Takes(**end);)
        end = &(*end)->next;
    PGX_Node* const meta = *start;
    *start = std::exchange(*end, root.first);
    root.first = meta;
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

bool HasEncapsulated(PGX_Node& root) {
    return AnyInTree(root, [](const PGX_Node& node) {
        return node.nodeType == NT_DataElement && node.encapsulated != 0;
    });
}

// The mode, made one whose result readers understand.
uint32_t ReadableMode(PGX_Node& root, const MetaInformation& meta, uint32_t mode) {
    if (EncodingOfMode(mode) == EncodingOf(kExplicitVrLittleEndianUid)) return mode;
    if (HasEncapsulated(root)) return InExplicitLittle(mode);
    const bool isBig = (mode & PG_LITTLE_ENDIAN) == 0;
    const bool isImplicit = (mode & PG_EXPLICIT_VR) == 0;
    const bool seemsMeta = meta.firstOfData != nullptr && meta.firstOfData->group == kGroupLikeMeta;
    if (isBig && (isImplicit || seemsMeta)) {
        mode = (mode & ~uint32_t{PG_BIG_ENDIAN}) | PG_LITTLE_ENDIAN;
    }
    return mode;
}

WriteResult SetSyntax(PGX_Node& element, std::string_view uid) {
    // A sequence is written without value.
    if (element.valueRep == VR_SQ) element.valueRep = VR_UI;
    const auto size = static_cast<uint32_t>(uid.size());
    return element.SetValue(uid.data(), size) != 0 ? kWritten : kOutOfMemory;
}

WriteResult InsertSyntax(PGX_Node& root, const MetaInformation& meta, std::string_view uid) {
    PGX_Node* const element = NewElement(root, kMetaGroup, kTransferSyntaxElement, uid.data(),
                                         static_cast<uint32_t>(uid.size()));
    if (element == nullptr) return kOutOfMemory;
    element->next = std::exchange(*meta.placeOfSyntax, element);
    return kWritten;
}

// Makes the encoding that readers will find in the File Meta Information that of the mode.
WriteResult AgreeWithReaders(PGX_Node& root, const MetaInformation& meta, bool isToBeSet,
                             uint32_t mode) {
    std::string uid;
    if (!meta.syntaxes.empty()) {
        const std::optional<std::string> last = FetchSyntax(*meta.syntaxes.back());
        if (!last) return kReadFailed;
        uid = *last;
    }
    isToBeSet = isToBeSet && !meta.syntaxes.empty();
    if (!isToBeSet && EncodingOf(uid) == EncodingOfMode(mode)) return kWritten;
    const std::string_view written = UidOf(EncodingOfMode(mode));
    if (meta.syntaxes.empty()) return InsertSyntax(root, meta, written);
    for (PGX_Node* const element : meta.syntaxes) {
        const WriteResult result = SetSyntax(*element, written);
        if (result != kWritten) return result;
    }
    return kWritten;
}

}  // namespace

WriteResult AgreeOnSyntax(PGX_Node& root, uint32_t& mode) {
    // A bare data set that is written as it was read has no transfer syntax: an element that is one
    // by its tag stood somewhere in it, and said nothing of it.
    const bool isBareAsRead = (mode & kMetaModes) == 0 && mode == root.syntaxFlags;
    if (isBareAsRead) return kWritten;
    const bool hasMeta = (mode & kMetaModes) != 0 && root.nodeType == NT_DataSet;
    if (hasMeta) {
        PutMetaFirst(root);
        MakeSequencesBytes(root);
    }
    const MetaInformation meta = hasMeta ? FindMeta(root) : MetaInformation{};
    PGX_Node* const element = meta.syntaxes.empty()
                                  ? root.FindNode(kMetaGroup, kTransferSyntaxElement)
                                  : meta.syntaxes.back();
    std::string_view wanted;  // what the element is set to
    if (element == nullptr) {
        if ((mode & PG_IMPLICIT_VR) == 0) mode |= PG_EXPLICIT_VR;
    } else {
        const std::optional<std::string> uid = FetchSyntax(*element);
        if (!uid) return kReadFailed;
        if (IsNative(*uid)) {
            wanted = UidOfMode(mode);
            mode = CompletedMode(mode, *uid);
        } else {
            mode = InExplicitLittle(mode);
            if (IsPrivateNative(*uid)) wanted = kExplicitVrLittleEndianUid;
        }
    }
    if (hasMeta) {
        mode = ReadableMode(root, meta, mode);
        return AgreeWithReaders(root, meta, !wanted.empty(), mode);
    }
    return element == nullptr || wanted.empty() ? kWritten : SetSyntax(*element, wanted);
}

}  // namespace pgkit
