// Many values in one block.
#include "pgkit/bulk_values.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

#include "base/byte_order.h"
#include "base/firewall.h"
#include "dataset/find_element.h"
#include "dataset/node_ptr.h"
#include "dataset/value_source.h"
#include "dictionary/vr_properties.h"
#include "pgkit/node.h"
#include "pgkit/text.h"
#include "pgkit/value_representation.h"
#include "platform/platform.h"
#include "text/specific_character_set.h"
#include "text/text_decoder.h"
#include "text/text_rules.h"

namespace pgkit {

namespace {

constexpr size_t kAlignment = 8;
constexpr uint32_t kItemTag = 0xFFFEE000;
constexpr size_t kLargestBlock = std::numeric_limits<uint32_t>::max();

// A value that its file holds only in part.
constexpr int64_t kNotWhole = -1;

constexpr size_t kShortText = 1024;

static_assert(sizeof(PgxLevelHeader) == 16 && sizeof(PgxElementRecord) == 32);

constexpr size_t Aligned(size_t offset) {
    return (offset + kAlignment - 1) / kAlignment * kAlignment;
}

uint64_t HandleOf(PGX_Node* node) { return reinterpret_cast<uintptr_t>(node); }

uint32_t TagOf(const PGX_Node& node) {
    if (node.nodeType == NT_DataSet) return kItemTag;
    return static_cast<uint32_t>(node.group) << 16 | node.element;
}

// The part of a tree's file that was read last: values that are still in the file stand near each
// other, and asking the C runtime for each of them costs more than reading them.
class FileWindow {
  public:
    // Whether the file holds the value as a whole. At most kShortText bytes.
    bool Fetch(const PGX_Node& node, uint8_t* out) {
        if (node.file == nullptr) return FetchValue(node, 0, out, node.length) == node.length;
        const bool isInside = node.file == file_ && node.fileOffset >= begin_ &&
                              node.fileOffset - begin_ + node.length <= size_;
        if (!isInside) Read(node);
        if (node.fileOffset - begin_ + node.length > size_) return false;
        std::memcpy(out, &bytes_[node.fileOffset - begin_], node.length);
        return true;
    }

  private:
    void Read(const PGX_Node& node) {
        file_ = node.file;
        begin_ = node.fileOffset;
        size_ = platform::ReadAt(file_, begin_, bytes_.data(), node.length, bytes_.size());
    }

    FILE* file_ = nullptr;
    uint64_t begin_ = 0;
    uint64_t size_ = 0;
    std::array<uint8_t, 4096> bytes_;
};

// Fills the caller's buffer, and goes on counting when it is full.
class BlockWriter {
  public:
    BlockWriter(PGX_Node* characterSet, uint32_t count, uint32_t longestValue,
                std::span<uint8_t> buffer)
        : header_{count, 0, HandleOf(characterSet)},
          characterSet_(characterSet),
          longestValue_(longestValue),
          buffer_(buffer),
          records_(Aligned(sizeof header_ + size_t{count} * sizeof(uint32_t))),
          end_(records_ + size_t{count} * sizeof(PgxElementRecord)) {}

    void Add(uint32_t tag, PGX_Node* node) {
        PgxElementRecord record = {HandleOf(node), tag, VR_Unknown, 0, PGX_VALUE_ABSENT, 0, 0};
        if (node != nullptr) {
            record.valueRep = node->valueRep;
            record.length = node->length;
            AddValue(*node, record);
        }
        Put(sizeof header_ + added_ * sizeof tag, &tag, sizeof tag);
        Put(records_ + added_ * sizeof record, &record, sizeof record);
        ++added_;
    }

    // The size of the whole, 0 when nothing can be that large.
    size_t Finish() {
        if (end_ > kLargestBlock) return 0;
        if (end_ > buffer_.size()) header_.count = 0;
        header_.size = static_cast<uint32_t>(end_);
        Put(0, &header_, sizeof header_);
        if (added_ % 2 != 0 && header_.count != 0) {
            std::memset(&buffer_[records_ - sizeof(uint32_t)], 0, sizeof(uint32_t));
        }
        return end_;
    }

  private:
    void AddValue(PGX_Node& node, PgxElementRecord& record) {
        record.kind = KindOf(node);
        if (record.kind != PGX_VALUE_BYTES) return;
        const size_t offset = Aligned(end_);
        const bool isText = FindTextRules(node.valueRep) != nullptr;
        const int64_t size = isText ? AddText(node, offset) : AddBytes(node, offset);
        if (size < 0 || static_cast<uint64_t>(size) > kLargestBlock) {
            record.kind = PGX_VALUE_LEFT_OUT;
            return;
        }
        if (isText) record.kind = PGX_VALUE_TEXT;
        record.offset = static_cast<uint32_t>(offset);
        record.size = static_cast<uint32_t>(size);
        end_ = offset + record.size + 1;
    }

    PgxValueKind KindOf(const PGX_Node& node) const {
        if (node.nodeType == NT_DataSet) return PGX_VALUE_ITEM;
        if (node.encapsulated != 0) return PGX_VALUE_ENCAPSULATED;
        if (node.valueRep == VR_SQ || node.first != nullptr) return PGX_VALUE_SEQUENCE;
        const bool hasRoom = HasValue(node) && node.length <= longestValue_;
        return hasRoom ? PGX_VALUE_BYTES : PGX_VALUE_LEFT_OUT;
    }

    int64_t AddText(PGX_Node& node, size_t offset) {
        const bool isShort = node.length <= kShortText;
        if (node.value == nullptr && !isShort) {
            if (AvailableLength(node) < node.length) return kNotWhole;
            return pgxGetUtf8Value(characterSet_, &node, At(offset), RoomAt(offset));
        }
        // Asking how long the file is costs more than reading a short text of it.
        std::array<uint8_t, kShortText> fetched;
        if (node.value == nullptr && !window_.Fetch(node, fetched.data())) return kNotWhole;
        const uint8_t* const bytes = node.value != nullptr ? node.value : fetched.data();
        const std::string_view text(reinterpret_cast<const char*>(bytes), node.length);
        if (IsPlainText(text)) return AddPlainText(WithoutPadding(text), offset);
        return pgxTextToUtf8(CharacterSetText(), node.valueRep, text.data(), text.size(),
                             At(offset), RoomAt(offset));
    }

    int64_t AddPlainText(std::string_view text, size_t offset) {
        if (RoomAt(offset) > text.size()) At(offset)[text.copy(At(offset), text.size())] = '\0';
        return static_cast<int64_t>(text.size());
    }

    const char* CharacterSetText() {
        if (characterSet_ != nullptr && attribute_[0] == '\0') {
            characterSet_->GetStringValue(attribute_.data(), kMaxCharacterSetText);
        }
        return attribute_.data();
    }

    int64_t AddBytes(const PGX_Node& node, size_t offset) {
        const bool hasRoom = RoomAt(offset) > node.length;
        const bool isShort = node.length <= kShortText;
        if (!(hasRoom && isShort) && AvailableLength(node) < node.length) return kNotWhole;
        if (!hasRoom) return node.length;
        uint8_t* const bytes = &buffer_[offset];
        bytes[node.length] = 0;
        if (node.value != nullptr || !isShort) {
            ReadValue(node, bytes);
        } else if (!window_.Fetch(node, bytes)) {
            return kNotWhole;
        } else if (!IsHostOrder(node.endian)) {
            SwapUnits(bytes, node.length, SwapUnit(node.valueRep));
        }
        return node.length;
    }

    size_t RoomAt(size_t offset) const {
        return offset < buffer_.size() ? buffer_.size() - offset : 0;
    }

    char* At(size_t offset) {
        return RoomAt(offset) == 0 ? nullptr : reinterpret_cast<char*>(&buffer_[offset]);
    }

    void Put(size_t offset, const void* bytes, size_t size) {
        if (RoomAt(offset) >= size) std::memcpy(&buffer_[offset], bytes, size);
    }

    PgxLevelHeader header_;
    PGX_Node* characterSet_;
    uint32_t longestValue_;
    std::span<uint8_t> buffer_;
    size_t records_;
    size_t end_;
    size_t added_ = 0;
    std::array<char, kMaxCharacterSetText + 1> attribute_ = {};
    FileWindow window_;
};

std::span<uint8_t> BufferOf(void* buffer, size_t size) {
    return {static_cast<uint8_t*>(buffer), buffer == nullptr ? 0 : size};
}

PGX_Node* CharacterSetOf(PGX_Node& dataSet, PGX_Node* inherited) {
    return pgxFindCharacterSet(dataSet.nodeType == NT_DataSet ? &dataSet : nullptr, inherited);
}

size_t ReadLevel(PGX_Node& parent, PGX_Node* inherited, uint32_t longestValue,
                 std::span<uint8_t> buffer) {
    uint32_t count = 0;
    for (const PGX_Node* child = parent.first; child != nullptr; child = child->next)
        ++count;
    BlockWriter block(CharacterSetOf(parent, inherited), count, longestValue, buffer);
    for (PGX_Node* child = parent.first; child != nullptr; child = child->next)
        block.Add(TagOf(*child), child);
    return block.Finish();
}

size_t ReadValues(PGX_Node& dataSet, PGX_Node* inherited, std::span<const uint32_t> tags,
                  uint32_t longestValue, std::span<uint8_t> buffer) {
    BlockWriter block(CharacterSetOf(dataSet, inherited), static_cast<uint32_t>(tags.size()),
                      longestValue, buffer);
    for (const uint32_t tag : tags) {
        block.Add(tag, FindElement(dataSet,
                                   {static_cast<uint16_t>(tag >> 16), static_cast<uint16_t>(tag)}));
    }
    return block.Finish();
}

// The nodes are gone when the caller looks at their records.
void ForgetNodes(std::span<uint8_t> buffer, size_t size) {
    PgxLevelHeader header = {};
    if (buffer.size() < size) return;
    std::memcpy(&header, buffer.data(), sizeof header);
    header.characterSet = 0;
    std::memcpy(buffer.data(), &header, sizeof header);
    size_t record = Aligned(sizeof header + size_t{header.count} * sizeof(uint32_t));
    for (uint32_t i = 0; i < header.count; ++i, record += sizeof(PgxElementRecord))
        std::memset(&buffer[record + offsetof(PgxElementRecord, node)], 0, sizeof(uint64_t));
}

size_t ReadFileValues(PGX_Node* opened, std::span<const uint32_t> tags, uint32_t longestValue,
                      std::span<uint8_t> buffer) {
    const OpenedDataSet root(opened);
    if (root == nullptr) return 0;
    const size_t size = ReadValues(*root, nullptr, tags, longestValue, buffer);
    ForgetNodes(buffer, size);
    return size;
}

std::span<const uint32_t> ListOf(const uint32_t* tags, uint32_t count) {
    return {tags, tags == nullptr ? 0 : count};
}

}  // namespace

}  // namespace pgkit

using pgkit::BufferOf;
using pgkit::Guarded;

size_t pgxReadLevel(PGX_Node* dataSet, PGX_Node* characterSet, uint32_t longestValue, void* buffer,
                    size_t size) {
    return Guarded([=]() -> size_t {
        if (dataSet == nullptr) return 0;
        return pgkit::ReadLevel(*dataSet, characterSet, longestValue, BufferOf(buffer, size));
    });
}

size_t pgxReadValues(PGX_Node* dataSet, PGX_Node* characterSet, const uint32_t* tags,
                     uint32_t count, uint32_t longestValue, void* buffer, size_t size) {
    return Guarded([=]() -> size_t {
        if (dataSet == nullptr) return 0;
        return pgkit::ReadValues(*dataSet, characterSet, pgkit::ListOf(tags, count), longestValue,
                                 BufferOf(buffer, size));
    });
}

size_t pgxReadFileValues(const char* path, uint32_t flags, const uint32_t* tags, uint32_t count,
                         uint32_t longestValue, void* buffer, size_t size, PgxOpenReport* report) {
    return Guarded([=] {
        // What is asked for is read in any case; the rest need not be loaded.
        return pgkit::ReadFileValues(pgxOpenFile(path, 0, flags, report),
                                     pgkit::ListOf(tags, count), longestValue,
                                     BufferOf(buffer, size));
    });
}
