#include "support/stream_builder.h"

#include <algorithm>
#include <array>

namespace pgkit_test {

namespace {

bool HasLongForm(std::string_view vr) {
    constexpr auto kShort = std::to_array<std::string_view>(
        {"UL", "UI", "US", "AE", "AT", "LO", "SH", "CS",
         "DA", "TM", "DT", "ST", "PN", "IS", "DS", "LT",
         "FL", "AS", "SL", "FD", "SS", "??", "  ", std::string_view("\0\0", 2)});
    return std::find(kShort.begin(), kShort.end(), vr) == kShort.end();
}

}  // namespace

StreamBuilder& StreamBuilder::Mode(VrMode mode) {
    mode_ = mode;
    return *this;
}

StreamBuilder& StreamBuilder::U16(uint16_t n) {
    const uint8_t low = static_cast<uint8_t>(n & 0xFF);
    const uint8_t high = static_cast<uint8_t>(n >> 8);
    bytes_.push_back(order_ == Order::Little ? low : high);
    bytes_.push_back(order_ == Order::Little ? high : low);
    return *this;
}

StreamBuilder& StreamBuilder::U32(uint32_t n) {
    const uint16_t low = static_cast<uint16_t>(n & 0xFFFF);
    const uint16_t high = static_cast<uint16_t>(n >> 16);
    return order_ == Order::Little ? U16(low).U16(high) : U16(high).U16(low);
}

StreamBuilder& StreamBuilder::Text(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
}

StreamBuilder& StreamBuilder::Zeros(size_t count) {
    bytes_.insert(bytes_.end(), count, 0);
    return *this;
}

StreamBuilder& StreamBuilder::Append(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
}

StreamBuilder& StreamBuilder::Preamble() { return Zeros(128).Text("DICM"); }

StreamBuilder& StreamBuilder::MetaElement(uint16_t element, std::string_view vr,
                                          std::string_view value) {
    StreamBuilder meta;
    meta.Element(0x0002, element, vr, value);
    return Append(meta.Data());
}

StreamBuilder& StreamBuilder::Part10(std::string_view transferSyntaxUid) {
    return Preamble().MetaElement(0x0010, "UI", PaddedUid(transferSyntaxUid));
}

StreamBuilder& StreamBuilder::Header(uint16_t group, uint16_t element, std::string_view vr,
                                     uint32_t length) {
    U16(group).U16(element);
    if (mode_ == VrMode::Implicit || group == 0xFFFE) return U32(length);
    Text(vr);
    if (HasLongForm(vr)) return U16(0).U32(length);
    return U16(static_cast<uint16_t>(length));
}

StreamBuilder& StreamBuilder::Element(uint16_t group, uint16_t element, std::string_view vr,
                                      std::string_view value) {
    return Header(group, element, vr, static_cast<uint32_t>(value.size())).Text(value);
}

StreamBuilder& StreamBuilder::PaddedElement(uint16_t group, uint16_t element, std::string_view vr,
                                            std::string_view value) {
    return Element(group, element, vr, PaddedValue(vr, value));
}

StreamBuilder& StreamBuilder::ElementUS(uint16_t group, uint16_t element, uint16_t value) {
    return Header(group, element, "US", 2).U16(value);
}

StreamBuilder& StreamBuilder::ElementUL(uint16_t group, uint16_t element, uint32_t value) {
    return Header(group, element, "UL", 4).U32(value);
}

StreamBuilder& StreamBuilder::Sequence(uint16_t group, uint16_t element, uint32_t length) {
    return Header(group, element, "SQ", length);
}

StreamBuilder& StreamBuilder::Item(uint32_t length) { return Header(0xFFFE, 0xE000, "", length); }

StreamBuilder& StreamBuilder::EndItem() { return Header(0xFFFE, 0xE00D, "", 0); }

StreamBuilder& StreamBuilder::EndSequence() { return Header(0xFFFE, 0xE0DD, "", 0); }

std::string BytesOf(const StreamBuilder& stream) {
    return std::string(stream.Data().begin(), stream.Data().end());
}

std::string OneItem(const StreamBuilder& content) {
    StreamBuilder item;
    return BytesOf(item.Item(content.Size()).Append(content.Data()));
}

std::string PaddedValue(std::string_view vr, std::string_view value) {
    std::string padded(value);
    if (padded.size() % 2 != 0) padded += vr == "UI" || vr == "OB" ? '\0' : ' ';
    return padded;
}

}  // namespace pgkit_test
