// Byte order and unaligned numbers: pure functions, the only place that knows how numbers lie in
// memory.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace pgkit {

enum class ByteOrder : uint8_t { Little, Big };

constexpr ByteOrder kHostByteOrder =
    std::endian::native == std::endian::little ? ByteOrder::Little : ByteOrder::Big;

constexpr uint16_t SwapBytes(uint16_t n) { return __builtin_bswap16(n); }
constexpr uint32_t SwapBytes(uint32_t n) { return __builtin_bswap32(n); }
constexpr uint64_t SwapBytes(uint64_t n) { return __builtin_bswap64(n); }

// Reads a number that stands at any address in host byte order.
template <typename Number>
Number HostNumberAt(const void* bytes) {
    Number n;
    std::memcpy(&n, bytes, sizeof n);
    return n;
}

template <typename Number>
Number NumberAt(const void* bytes, ByteOrder order) {
    const Number n = HostNumberAt<Number>(bytes);
    return order == kHostByteOrder ? n : SwapBytes(n);
}

template <typename Number>
void PutNumber(void* bytes, Number n, ByteOrder order) {
    if (order != kHostByteOrder) n = SwapBytes(n);
    std::memcpy(bytes, &n, sizeof n);
}

template <typename Number>
void SwapEach(uint8_t* bytes, size_t count) {
    for (; count >= sizeof(Number); bytes += sizeof(Number), count -= sizeof(Number)) {
        const Number swapped = SwapBytes(HostNumberAt<Number>(bytes));
        std::memcpy(bytes, &swapped, sizeof swapped);
    }
}

// Reverses the bytes of every whole unit (2, 4 or 8 bytes) of a block; a rest that fills no unit,
// and any block of unit 1, stays as it is.
inline void SwapUnits(uint8_t* bytes, size_t count, size_t unit) {
    switch (unit) {
        case 2:
            return SwapEach<uint16_t>(bytes, count);
        case 4:
            return SwapEach<uint32_t>(bytes, count);
        case 8:
            return SwapEach<uint64_t>(bytes, count);
        default:
            return;
    }
}

}  // namespace pgkit
