#include "dicomdir/record_copy.h"

#include <cstdio>
#include <new>
#include <utility>
#include <vector>

#include "base/byte_order.h"
#include "codec/part10_format.h"
#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "pgkit/dictionary.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr uint16_t kFirstDataSetGroup = 0x0008;
constexpr uint16_t kLastDataSetGroup = 0xFFFD;

constexpr EndianType kHostEndian =
    kHostByteOrder == ByteOrder::Big ? ET_BigEndian : ET_LittleEndian;

bool HasTagOfDataSets(const PGX_Node& element) {
    return element.group >= kFirstDataSetGroup && element.group <= kLastDataSetGroup &&
           element.element != 0x0000;
}

// Such a value is written as UN, the VR of what nobody knows; but somebody may.
bool MayBeTakenForSequence(const PGX_Node& element) {
    if (element.valueRep != VR_UN && element.valueRep != VR_Unknown) return false;
    return IsPrivateGroup(element.group) ||
           pgFindValueRepresentation(element.group, element.element) == VR_SQ;
}

uint64_t EvenLength(const PGX_Node& element) {
    return uint64_t{element.length} + element.length % 2;
}

// Bytes of one number; 1 for VRs whose values may have any length.
uint32_t NumberSize(uint32_t vr) {
    switch (vr) {
        case VR_AT:
            return 4;
        case VR_OW:
        case VR_OWOB:
        case VR_OF:
            return 1;
        default:
            return static_cast<uint32_t>(SwapUnit(vr));
    }
}

// What can be said without reading the value.
bool MayHaveValue(const PGX_Node& element) {
    if (element.valueRep != VR_Unknown && VrName(element.valueRep) == nullptr) return false;
    if (MayBeTakenForSequence(element) || element.encapsulated != 0) return false;
    if (element.length > kMaxRecordCopy) return false;
    if (element.length % NumberSize(element.valueRep) != 0) return false;
    return HasLongHeader(element.valueRep) || EvenLength(element) < kFirstTooLongForShortHeader;
}

// A text is padded with a blank, anything else with a NUL.
bool IsText(uint32_t vr) {
    return vr == VR_UT || (vr != VR_UI && !HasLongHeader(vr) && SwapUnit(vr) == 1);
}

// Copies a tree from its root on. Containers are open from when they are entered until they are
// left; a copy joins its parent when it is left, if it is worth it.
class RecordCopy {
  public:
    explicit RecordCopy(WantsItem wantsItem) : wantsItem_(wantsItem) {}

    // Null when the whole is too large.
    NodeTree Result() { return size_ <= kMaxRecordCopy ? std::move(result_) : nullptr; }

    WalkStep Enter(PGX_Node& node, size_t depth) {
        if (!IsInPlace(node)) return LeaveOut();
        if (depth == 1 && wantsItem_ != nullptr && !wantsItem_(node)) return WalkStep::SkipChildren;
        if (node.nodeType == NT_DataSet) return Open(node);
        if (!HasTagOfDataSets(node)) return LeaveOut();
        if (node.valueRep == VR_SQ) {
            const bool isTooDeep = openSequences_ == kMaxRecordNesting;
            return isTooDeep || IsPixelData(node.group, node.element) ? LeaveOut() : Open(node);
        }
        NodeTree copy = CopyElement(node);
        if (copy == nullptr) return LeaveOut();
        size_ += HeaderSize(copy->valueRep, true) + copy->length;
        Join(std::move(copy));
        return size_ <= kMaxRecordCopy ? WalkStep::SkipChildren : WalkStep::Unwind;
    }

    WalkStep Leave(PGX_Node& node, size_t) {
        if (open_.empty() || open_.back().source != &node) return WalkStep::Continue;
        Container done = std::move(open_.back());
        open_.pop_back();
        if (node.nodeType == NT_DataElement) --openSequences_;
        const bool isNothingLeft = done.isMissingSome && done.copy->first == nullptr;
        if (isNothingLeft) {
            LeaveOut();
        } else {
            Join(std::move(done.copy));
        }
        return WalkStep::Continue;
    }

  private:
    struct Container {
        const PGX_Node* source;
        NodeTree copy;
        PGX_Node** end;
        bool isMissingSome;
    };

    // Sequences hold items and items hold elements, unless a host has built something else.
    bool IsInPlace(const PGX_Node& node) const {
        return open_.empty() || open_.back().source->nodeType != node.nodeType;
    }

    WalkStep Open(const PGX_Node& node) {
        const bool isItem = node.nodeType == NT_DataSet;
        NodeTree copy(isItem ? new PGX_Node(NT_DataSet, ET_LittleEndian, 0, 0, VR_Unknown, 0)
                             : NewElement(node, VR_SQ));
        copy->length = node.length;  // counted anew when it is written
        size_ += isItem ? kItemHeaderSize : kLongHeaderSize;
        PGX_Node** const end = &copy->first;
        open_.push_back({&node, std::move(copy), end, false});
        if (!isItem) ++openSequences_;
        return size_ <= kMaxRecordCopy ? WalkStep::Continue : WalkStep::Unwind;
    }

    WalkStep LeaveOut() {
        if (!open_.empty()) open_.back().isMissingSome = true;
        return WalkStep::SkipChildren;
    }

    void Join(NodeTree copy) {
        if (open_.empty()) {
            result_ = std::move(copy);
            return;
        }
        PGX_Node** const end = open_.back().end;
        open_.back().end = &copy->next;
        *end = copy.release();
    }

    static PGX_Node* NewElement(const PGX_Node& source, uint32_t vr) {
        return new PGX_Node(NT_DataElement, kHostEndian, source.group, source.element,
                            static_cast<uint8_t>(vr), 0);
    }

    // Null for one that is to be left out.
    NodeTree CopyElement(const PGX_Node& source) {
        if (!MayHaveValue(source) || !HasValue(source) || !IsThere(source)) return nullptr;
        NodeTree copy(NewElement(source, source.valueRep));
        copy->bitsAllocated = source.bitsAllocated;
        copy->length = static_cast<uint32_t>(EvenLength(source));
        // Like every copy it has room for a terminator, also when it is empty.
        copy->value = NewValueBuffer(size_t{copy->length} + 2);
        if (copy->value == nullptr) throw std::bad_alloc();
        if (!IsEnough(ReadValueIntoZeros(source, copy->value), source)) return nullptr;
        if (copy->length > source.length && IsText(source.valueRep)) {
            copy->value[source.length] = ' ';
        }
        return copy;
    }

    // Values that the parser has loaded have zeros in the place of what the file does not hold.
    bool IsThere(const PGX_Node& source) {
        const bool wasLoaded = source.value != nullptr && source.file != nullptr;
        if (!wasLoaded || source.fileOffset == kUnreadablePosition) {
            return IsEnough(AvailableLength(source), source);
        }
        if (std::exchange(file_, source.file) != source.file) {
            fileSize_ = platform::StreamSize(source.file);
        }
        return fileSize_ >= source.fileOffset && IsEnough(fileSize_ - source.fileOffset, source);
    }

    // Writers forget the byte that makes a length even, at the end of a file.
    static bool IsEnough(uint64_t available, const PGX_Node& source) {
        return available + (source.length % 2 == 0 ? 1 : 0) >= source.length;
    }

    const WantsItem wantsItem_;
    std::vector<Container> open_;
    size_t openSequences_ = 0;
    uint64_t size_ = 0;  // as written in explicit VR
    NodeTree result_;
    FILE* file_ = nullptr;  // whose size is known
    uint64_t fileSize_ = 0;
};

}  // namespace

NodeTree CopyForRecord(PGX_Node* node, WantsItem wantsItem) {
    if (node == nullptr) return nullptr;
    RecordCopy copy(wantsItem);
    WalkTree(*node, copy);
    return copy.Result();
}

}  // namespace pgkit
