// The bytes of one header: of an element, an item or a delimiter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/byte_order.h"
#include "dataset/node_memory.h"

namespace pgkit {

class ElementHeader {
  public:
    ElementHeader(ByteOrder order, uint16_t group, uint16_t element) : order_(order) {
        Put16(group);
        Put16(element);
    }

    // Items and delimiters have the same form in every encoding.
    static ElementHeader Item(ByteOrder order, uint32_t length) {
        return Undivided(order, 0xE000, length);
    }
    static ElementHeader ItemDelimitation(ByteOrder order) { return Undivided(order, 0xE00D, 0); }
    static ElementHeader SequenceDelimitation(ByteOrder order) {
        return Undivided(order, 0xE0DD, 0);
    }

    void Put16(uint16_t n) {
        PutNumber(bytes_.data() + size_, n, order_);
        size_ += sizeof n;
    }
    void Put32(uint32_t n) {
        PutNumber(bytes_.data() + size_, n, order_);
        size_ += sizeof n;
    }
    void PutVr(const char* characters) {
        bytes_[size_++] = static_cast<uint8_t>(characters[0]);
        bytes_[size_++] = static_cast<uint8_t>(characters[1]);
    }

    const uint8_t* Data() const { return bytes_.data(); }
    size_t Size() const { return size_; }

  private:
    static ElementHeader Undivided(ByteOrder order, uint16_t element, uint32_t length) {
        ElementHeader header(order, 0xFFFE, element);
        header.Put32(length);
        return header;
    }

    ByteOrder order_;
    size_t size_ = 0;
    std::array<uint8_t, 12> bytes_;
};

}  // namespace pgkit
