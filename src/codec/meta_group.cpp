#include "codec/meta_group.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "codec/part10_format.h"
#include "codec/tag_header.h"
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
std::optional<Tag> PeekTag(StreamReader& reader) {
    const uint8_t* bytes = reader.Peek(kTagSize);
    if (bytes == nullptr) return std::nullopt;
    const Tag tag{NumberAt<uint16_t>(bytes, ByteOrder::Little),
                  NumberAt<uint16_t>(bytes + 2, ByteOrder::Little)};
    if (tag == Tag{0xFFFF, 0xFFFF}) return std::nullopt;
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
    MetaGroupReader(StreamReader& reader, TreeBuilder& builder, StreamStart& start)
        : reader_(reader), builder_(builder), start_(start) {}

    // False when a header cannot be read.
    bool Read() {
        if (!PeekTag(reader_)) return FailedAt(reader_.Position());
        const uint8_t* bytes = reader_.Peek(kTagSize + 2);
        implicitVr_ = bytes == nullptr ||
                      VrFromCharacters(static_cast<char>(bytes[4]), static_cast<char>(bytes[5])) ==
                          VR_Unknown;
        uint16_t previousElement = 0;
        while (true) {
            const std::optional<Tag> tag = PeekTag(reader_);
            if (!tag && !IsDeflatedDataNext()) return FailedAt(reader_.Position());
            if (!tag || tag->group != kMetaGroup || tag->element < previousElement) return true;
            previousElement = tag->element;
            if (!ReadElement()) return false;
        }
    }

  private:
    // Notes where the header stands that cannot be read.
    bool FailedAt(uint64_t position) {
        const uint64_t size = reader_.Size();
        const bool isAtEnd = reader_.Position() + kTagSize > size;
        start_.end.kind = isAtEnd ? EndKind::CutShort : EndKind::Broken;
        start_.end.offset = isAtEnd ? size : position;
        if (position > size && start_.lastMeta != nullptr) {
            start_.end.group = start_.lastMeta->group;
            start_.end.element = start_.lastMeta->element;
        }
        return false;
    }

    // A deflated data set may be shorter than a tag.
    bool IsDeflatedDataNext() {
        return start_.transferSyntax == kDeflatedUid && reader_.Remaining() > 0;
    }

    bool ReadElement() {
        const uint64_t headerStart = reader_.Position();
        TagHeader header;
        if (!ReadTagHeader(reader_, ByteOrder::Little, implicitVr_, header)) {
            return FailedAt(headerStart);
        }
        if (implicitVr_)
            header.valueRep = pgFindValueRepresentation(header.Group(), header.Element());
        PGX_Node* const node = builder_.NewElement(header, header.valueRep, ByteOrder::Little);
        Append(node);
        if (header.Element() == kTransferSyntaxElement) {
            const uint64_t valueStart = reader_.Position();
            start_.transferSyntax = ReadUid(reader_, header.length);
            reader_.Seek(valueStart);
        }
        constexpr uint32_t kNeverLoaded = 0;
        builder_.ReadValue(*node, kNeverLoaded);
        return true;
    }

    void Append(PGX_Node* node) {
        if (start_.lastMeta == nullptr) {
            start_.metaElements.reset(node);
        } else {
            start_.lastMeta->next = node;
        }
        start_.lastMeta = node;
    }

    StreamReader& reader_;
    TreeBuilder& builder_;
    StreamStart& start_;
    bool implicitVr_ = false;
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

StreamStart ReadStreamStart(StreamReader& reader, TreeBuilder& builder, uint32_t flags) {
    StreamStart start;
    start.hasMeta = SkipPreamble(reader);
    if (!start.hasMeta) {
        reader.Seek(0);
        start.hasMeta = StartsWithMetaElement(reader);
    }
    if (start.hasMeta) {
        if (!MetaGroupReader(reader, builder, start).Read()) {
            start.state = StreamStart::State::MetaCut;
        }
        start.encoding = EncodingOf(start.transferSyntax);
        return start;
    }
    const uint8_t* bytes = reader.Peek(6);
    if (bytes != nullptr) {
        start.encoding = GuessEncoding(bytes, flags);
    } else {
        start.state = StreamStart::State::Nothing;
    }
    return start;
}

}  // namespace pgkit
