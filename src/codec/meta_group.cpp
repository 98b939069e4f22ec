#include "codec/meta_group.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "codec/part10_format.h"
#include "codec/tag_header.h"
#include "dataset/node_memory.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "pgkit/dictionary.h"

namespace pgkit {

namespace {

constexpr size_t kTagSize = 4;

// The group length (0002,0000), or the SOP class (0002,0002), in explicit VR little endian.
bool StartsWithMetaElement(StreamReader& reader) {
    const uint8_t* bytes = reader.Peek(6);
    return bytes != nullptr && (std::memcmp(bytes, "\x02\x00\x00\x00UL", 6) == 0 ||
                                std::memcmp(bytes, "\x02\x00\x02\x00UI", 6) == 0);
}

// A tag that is not consumed; nothing at the end of the stream and for (FFFF,FFFF).
struct Tag {
    uint16_t group;
    uint16_t element;
};

std::optional<Tag> PeekTag(StreamReader& reader) {
    const uint8_t* bytes = reader.Peek(kTagSize);
    if (bytes == nullptr) return std::nullopt;
    const Tag tag{Load<uint16_t>(bytes, ByteOrder::Little),
                  Load<uint16_t>(bytes + 2, ByteOrder::Little)};
    if (tag.group == 0xFFFF && tag.element == 0xFFFF) return std::nullopt;
    return tag;
}

std::string ReadUid(StreamReader& reader, uint32_t length) {
    char text[kMaxSyntaxBytes];
    const size_t count =
        reader.Read(reinterpret_cast<uint8_t*>(text), std::min<size_t>(length, sizeof text));
    return std::string(TransferSyntaxIn({text, count}));
}

// Reads the elements of group 0002. They end where the group does, or where it starts over: two
// data sets behind each other, or a meta group that is not in order.
class MetaGroupReader {
  public:
    explicit MetaGroupReader(StreamReader& reader) : reader_(reader) {}

    // False when a header cannot be read.
    bool Read(StreamStart& start) {
        if (!PeekTag(reader_)) return false;
        const uint8_t* bytes = reader_.Peek(kTagSize + 2);
        implicitVr_ = bytes == nullptr ||
                      VrFromCharacters(static_cast<char>(bytes[4]), static_cast<char>(bytes[5])) ==
                          VR_Unknown;
        uint16_t previousElement = 0;
        while (true) {
            const std::optional<Tag> tag = PeekTag(reader_);
            if (!tag) return false;
            if (tag->group != kMetaGroup || tag->element < previousElement) break;
            previousElement = tag->element;
            if (!ReadElement(start)) return false;
        }
        start.encoding = EncodingOf(transferSyntaxUid_);
        return true;
    }

  private:
    bool ReadElement(StreamStart& start) {
        TagHeader header;
        if (!ReadTagHeader(reader_, ByteOrder::Little, implicitVr_, header)) return false;
        if (implicitVr_) header.valueRep = pgFindValueRepresentation(header.group, header.element);
        Append(start, header);
        const uint64_t end = reader_.Position() + header.length;
        if (header.element == kTransferSyntaxElement) {
            transferSyntaxUid_ = ReadUid(reader_, header.length);
        }
        reader_.Seek(end);
        return true;
    }

    void Append(StreamStart& start, const TagHeader& header) {
        PGX_Node* node = new PGX_Node(NT_DataElement, ET_LittleEndian, header.group, header.element,
                                      static_cast<uint8_t>(header.valueRep), header.length);
        node->file = reader_.Stream();
        node->fileOffset = ToFileOffset(reader_.Position());
        if (start.lastMeta == nullptr) {
            start.metaElements.reset(node);
        } else {
            start.lastMeta->next = node;
        }
        start.lastMeta = node;
    }

    StreamReader& reader_;
    bool implicitVr_ = false;
    std::string transferSyntaxUid_;
};

bool IsLetter(uint8_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Without File Meta Information a data set is taken for implicit VR, unless letters stand where
// explicit VR has them in a first element of group 0008.
Encoding GuessEncoding(const uint8_t* bytes, uint32_t flags) {
    Encoding encoding{true, ByteOrder::Little};
    if ((flags & PG_OPEN_FORCE_LITTLE_ENDIAN) == 0 && (flags & PG_OPEN_FORCE_BIG_ENDIAN) != 0) {
        encoding.byteOrder = ByteOrder::Big;
    }
    if ((flags & PG_OPEN_FORCE_EXPLICIT_VR) != 0) {
        encoding.implicitVr = false;
    } else if ((flags & PG_OPEN_FORCE_IMPLICIT_VR) == 0) {
        const bool isGroup8 = bytes[0] == 0x08 && bytes[1] == 0x00;
        encoding.implicitVr = !(isGroup8 && IsLetter(bytes[4]) && IsLetter(bytes[5]));
    }
    return encoding;
}

}  // namespace

bool SkipPreamble(StreamReader& reader) {
    constexpr size_t kPrefixEnd = kPreambleSize + kPrefix.size();
    const uint8_t* bytes = reader.Peek(kPrefixEnd);
    if (bytes == nullptr) return false;
    if (std::memcmp(bytes + kPreambleSize, kPrefix.data(), kPrefix.size()) != 0) return false;
    reader.Skip(kPrefixEnd);
    return true;
}

std::optional<StreamStart> ReadStreamStart(StreamReader& reader, uint32_t flags) {
    StreamStart start;
    start.hasMeta = SkipPreamble(reader);
    if (!start.hasMeta) {
        reader.Seek(0);
        start.hasMeta = StartsWithMetaElement(reader);
    }
    if (start.hasMeta) {
        if (!MetaGroupReader(reader).Read(start)) return std::nullopt;
    } else {
        const uint8_t* bytes = reader.Peek(6);
        if (bytes == nullptr) return std::nullopt;
        start.encoding = GuessEncoding(bytes, flags);
    }
    return start;
}

}  // namespace pgkit
