#include "codec/plausible_start.h"

#include <array>

#include "codec/tag_header.h"
#include "dataset/node_memory.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "pgkit/dictionary.h"
#include "pgkit/edition.h"

namespace pgkit {

namespace {

// Elements that are looked at; more of them make nothing surer.
constexpr int kEnoughElements = 8;
constexpr int kElementsToBeSure = 3;

bool IsKnownTag(const TagHeader& header) {
    if (header.Group() == 0x0002 || header.Group() == 0x0004 || header.Group() == 0x0008)
        return true;
    return pgFindValueRepresentation(header.Group(), header.Element()) != VR_Unknown ||
           pgxTagKeyword(header.Group(), header.Element(), nullptr, 0) != 0;
}

bool IsUpper(uint8_t c) { return c >= 'A' && c <= 'Z'; }

enum class Look {
    Element,  // one that fits, and another may follow
    Last,     // the end of the bytes, or an element that reaches beyond it or has no defined length
    Nothing   // no element
};

// Goes from element to element in one encoding.
class Walk {
  public:
    Walk(StreamReader& reader, Encoding encoding) : reader_(reader), encoding_(encoding) {}

    // The number of elements that fit; 0 when this is not the encoding.
    int Count() {
        Look look = Look::Element;
        while (look == Look::Element && count_ < kEnoughElements)
            look = Next();
        // What follows the first element must be one, too.
        return look == Look::Nothing && count_ < 2 ? 0 : count_;
    }
    bool HasReadAll() const { return position_ == reader_.Size(); }

  private:
    Look Next() {
        reader_.Seek(position_);
        const uint64_t remaining = reader_.Remaining();
        if (remaining < kShortHeaderSize) return count_ > 0 ? Look::Last : Look::Nothing;
        const uint8_t* vr = reader_.Peek(kShortHeaderSize) + 4;
        const bool hasVr = encoding_.implicitVr || (IsUpper(vr[0]) && IsUpper(vr[1]));
        TagHeader header;
        if (!hasVr || !ReadTagHeader(reader_, encoding_.byteOrder, encoding_.implicitVr, header)) {
            return Look::Nothing;
        }
        return IsPlausible(header) ? LookAtLength(header) : Look::Nothing;
    }

    bool IsPlausible(const TagHeader& header) {
        const uint32_t key = header.tag;
        const bool isFirst = count_ == 0;
        if (!isFirst && key <= previous_) return false;
        previous_ = key;
        if (!IsElementTag(header.Group(), header.Element())) return false;
        if (header.Element() == 0x0000 && header.length != sizeof(uint32_t)) return false;
        return IsKnownTag(header) || (!isFirst && IsPrivateGroup(header.Group()));
    }

    Look LookAtLength(const TagHeader& header) {
        if (header.length == kUndefinedLength) {
            if (!StandsBeforeItem()) return Look::Nothing;
            ++count_;
            return Look::Last;
        }
        if (header.length > reader_.Remaining()) return count_ > 0 ? Look::Last : Look::Nothing;
        position_ = reader_.Position() + header.length;
        ++count_;
        return position_ == reader_.Size() ? Look::Last : Look::Element;
    }

    bool StandsBeforeItem() {
        TagHeader item;
        constexpr bool kHasNoVr = true;
        if (!ReadTagHeader(reader_, encoding_.byteOrder, kHasNoVr, item)) return false;
        return item.IsItem() || item.IsSequenceDelimitation();
    }

    StreamReader& reader_;
    const Encoding encoding_;
    uint64_t position_ = 0;
    uint32_t previous_ = 0;
    int count_ = 0;
};

bool IsLeft(Encoding encoding, uint32_t flags, bool detectsBigEndian) {
    const bool isBig = encoding.byteOrder == ByteOrder::Big;
    if ((flags & PG_OPEN_FORCE_EXPLICIT_VR) != 0) {
        if (encoding.implicitVr) return false;
    } else if ((flags & PG_OPEN_FORCE_IMPLICIT_VR) != 0 && !encoding.implicitVr) {
        return false;
    }
    if ((flags & PG_OPEN_FORCE_LITTLE_ENDIAN) != 0) return !isBig;
    if ((flags & PG_OPEN_FORCE_BIG_ENDIAN) != 0) return isBig;
    return !isBig || detectsBigEndian;
}

bool IsForced(uint32_t flags) {
    return (flags & (PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_IMPLICIT_VR)) != 0 &&
           (flags & (PG_OPEN_FORCE_LITTLE_ENDIAN | PG_OPEN_FORCE_BIG_ENDIAN)) != 0;
}

}  // namespace

std::optional<EncodingGuess> GuessEncoding(StreamReader& reader, uint32_t flags,
                                           bool detectsBigEndian) {
    constexpr std::array kEncodings = {
        Encoding{false, ByteOrder::Little}, Encoding{true, ByteOrder::Little},
        Encoding{false, ByteOrder::Big}, Encoding{true, ByteOrder::Big}};
    std::optional<EncodingGuess> best;
    int most = 0;
    for (const Encoding encoding : kEncodings) {
        if (!IsLeft(encoding, flags, detectsBigEndian)) continue;
        Walk walk(reader, encoding);
        const int count = walk.Count();
        if (count <= most) continue;
        most = count;
        const bool isSure = count >= kElementsToBeSure || walk.HasReadAll();
        best = {encoding, isSure ? PGX_CERTAINTY_HIGH : PGX_CERTAINTY_LOW};
    }
    if (best && IsForced(flags)) best->certainty = PGX_CERTAINTY_STATED;
    return best;
}

}  // namespace pgkit
