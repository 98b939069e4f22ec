// Composes DICOM streams field by field, right or deliberately wrong.
//
//   StreamBuilder stream(VrMode::Explicit, Order::Little);
//   stream.Part10("1.2.840.10008.1.2.1");
//   stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
//   stream.Sequence(0x0008, 0x1140).Item().EndItem().EndSequence();
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/temp_dir.h"
#include "support/transfer_syntaxes.h"

namespace pgkit_test {

enum class VrMode { Explicit, Implicit };
enum class Order { Little, Big };

constexpr uint32_t kUndefined = 0xFFFFFFFF;

class StreamBuilder {
  public:
    explicit StreamBuilder(VrMode mode = VrMode::Explicit, Order order = Order::Little)
        : mode_(mode), order_(order) {}

    const Bytes& Data() const { return bytes_; }
    uint32_t Size() const { return static_cast<uint32_t>(bytes_.size()); }
    StreamBuilder& Mode(VrMode mode);

    // Raw parts, in the stream's byte order.
    StreamBuilder& U16(uint16_t n);
    StreamBuilder& U32(uint32_t n);
    StreamBuilder& Text(std::string_view text);
    StreamBuilder& Zeros(size_t count);
    StreamBuilder& Append(const Bytes& bytes);

    // 128 zero bytes and "DICM".
    StreamBuilder& Preamble();
    // One element of File Meta Information: always little endian, explicit VR.
    StreamBuilder& MetaElement(uint16_t element, std::string_view vr, std::string_view value);
    // Preamble and a meta group that holds the transfer syntax alone.
    StreamBuilder& Part10(std::string_view transferSyntaxUid);

    // Tag, VR (in explicit mode; in the long form where the VR has it) and length.
    StreamBuilder& Header(uint16_t group, uint16_t element, std::string_view vr, uint32_t length);
    // A header and its value, as it stands: no padding.
    StreamBuilder& Element(uint16_t group, uint16_t element, std::string_view vr,
                           std::string_view value);
    // The same with the byte that makes the length even.
    StreamBuilder& PaddedElement(uint16_t group, uint16_t element, std::string_view vr,
                                 std::string_view value);
    StreamBuilder& ElementUS(uint16_t group, uint16_t element, uint16_t value);
    StreamBuilder& ElementUL(uint16_t group, uint16_t element, uint32_t value);

    StreamBuilder& Sequence(uint16_t group, uint16_t element, uint32_t length = kUndefined);
    StreamBuilder& Item(uint32_t length = kUndefined);
    StreamBuilder& EndItem();
    StreamBuilder& EndSequence();

  private:
    VrMode mode_;
    Order order_;
    Bytes bytes_;
};

// A stream so far, as a value or a content.
std::string BytesOf(const StreamBuilder& stream);

// The value of a sequence of one item with this content.
std::string OneItem(const StreamBuilder& content);

// A value with the byte that makes its length even: a NUL or a blank, as its VR demands.
std::string PaddedValue(std::string_view vr, std::string_view value);
inline std::string PaddedUid(std::string_view uid) { return PaddedValue("UI", uid); }

// A Part 10 file of one element, in explicit VR little endian.
inline StreamBuilder SmallFile() {
    StreamBuilder file;
    return file.Part10(kExplicitLittleUid).Element(0x0008, 0x0060, "CS", "CT");
}

}  // namespace pgkit_test
