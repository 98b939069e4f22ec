#include "codec/tag_header.h"

#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"

namespace pgkit {

namespace {

constexpr size_t kDelimiterTagSize = 4;

// Writers that do not know a VR have put these characters into short headers.
bool IsPlaceholderVr(const uint8_t* vr) {
    return vr[0] == vr[1] && (vr[0] == '?' || vr[0] == '\0' || vr[0] == ' ');
}

bool FailAfter(StreamReader& reader, size_t count) {
    reader.Skip(count);
    return false;
}

bool FailAtEnd(StreamReader& reader) {
    reader.SeekToEnd();
    return false;
}

// Items and delimiters have no VR field, in explicit VR either.
bool HasNoVrField(const TagHeader& header) {
    return header.IsItem() || header.IsItemDelimitation() || header.IsSequenceDelimitation();
}

}  // namespace

bool ReadTagHeader(StreamReader& reader, ByteOrder order, bool implicitVr, TagHeader& header) {
    const uint8_t* bytes = reader.Peek(kShortHeaderSize);
    if (bytes == nullptr) return FailAtEnd(reader);
    header.tag = TagKey(NumberAt<uint16_t>(bytes, order), NumberAt<uint16_t>(bytes + 2, order));
    header.valueRep = VR_Unknown;
    if (header.tag == 0xFFFFFFFF) return FailAfter(reader, kDelimiterTagSize);

    if (implicitVr || HasNoVrField(header)) {
        header.length = NumberAt<uint32_t>(bytes + 4, order);
        reader.Skip(kShortHeaderSize);
        return true;
    }

    header.valueRep = VrFromCharacters(static_cast<char>(bytes[4]), static_cast<char>(bytes[5]));
    if (!HasLongHeader(header.valueRep) || IsPlaceholderVr(bytes + 4)) {
        header.length = NumberAt<uint16_t>(bytes + 6, order);
        reader.Skip(kShortHeaderSize);
        return true;
    }

    const bool reservedIsZero = bytes[6] == 0 && bytes[7] == 0;
    if (header.valueRep == VR_UT && !reservedIsZero) return FailAfter(reader, kShortHeaderSize);
    bytes = reader.Peek(kLongHeaderSize);
    if (bytes == nullptr) return FailAtEnd(reader);
    header.length = NumberAt<uint32_t>(bytes + 8, order);
    reader.Skip(kLongHeaderSize);
    return true;
}

bool ReadItemHeader(StreamReader& reader, TagHeader& header) {
    constexpr bool kImplicitVr = true;
    return ReadTagHeader(reader, ByteOrder::Little, kImplicitVr, header);
}

}  // namespace pgkit
