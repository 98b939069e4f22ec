// The transfer syntaxes that are told apart by their UIDs.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "base/byte_order.h"
#include "pgkit/node.h"

namespace pgkit {

// Its element in the group of the File Meta Information.
constexpr uint16_t kTransferSyntaxElement = 0x0010;

constexpr std::string_view kImplicitVrLittleEndianUid = "1.2.840.10008.1.2";
constexpr std::string_view kExplicitVrLittleEndianUid = "1.2.840.10008.1.2.1";
constexpr std::string_view kExplicitVrBigEndianUid = "1.2.840.10008.1.2.2";

// Two private syntaxes that are read, and never written. One maker's is implicit VR little endian
// but for its big-endian pixels, another's is explicit VR big endian.
constexpr std::string_view kPrivateImplicitUid = "1.2.840.113619.5.2";
constexpr std::string_view kPrivateBigEndianUid = "1.2.840.113704.7.0.4.5";

// Explicit VR little endian behind File Meta Information, deflated.
constexpr std::string_view kDeflatedUid = "1.2.840.10008.1.2.1.99";

// Of a transfer syntax element no more bytes than these are looked at.
constexpr size_t kMaxSyntaxBytes = 127;

// The UID in the bytes of a transfer syntax element: their first word, so that padding of any kind
// drops off, whatever the VR says of it.
constexpr std::string_view TransferSyntaxIn(std::string_view value) {
    constexpr std::string_view kPadding(" \t\n\v\f\r\0", 7);
    value = value.substr(0, kMaxSyntaxBytes);
    const size_t start = std::min(value.find_first_not_of(kPadding), value.size());
    const size_t end = std::min(value.find_first_of(kPadding, start), value.size());
    return value.substr(start, end - start);
}

struct Encoding {
    bool implicitVr;
    ByteOrder byteOrder;

    bool operator==(const Encoding&) const = default;
};

// How a data set of this transfer syntax is decoded. Everything that is not listed, the compressed
// syntaxes included, is explicit VR little endian.
constexpr Encoding EncodingOf(std::string_view transferSyntaxUid) {
    constexpr Encoding kImplicitLittle{true, ByteOrder::Little};
    constexpr Encoding kExplicitLittle{false, ByteOrder::Little};
    constexpr Encoding kExplicitBig{false, ByteOrder::Big};

    if (transferSyntaxUid == kImplicitVrLittleEndianUid) return kImplicitLittle;
    if (transferSyntaxUid == kExplicitVrBigEndianUid) return kExplicitBig;
    if (transferSyntaxUid == kPrivateImplicitUid) return kImplicitLittle;
    if (transferSyntaxUid == kPrivateBigEndianUid) return kExplicitBig;
    return kExplicitLittle;
}

// How a data set is written in a mode (PgSyntaxFlags).
constexpr Encoding EncodingOfMode(uint32_t mode) {
    return {(mode & PG_EXPLICIT_VR) == 0,
            (mode & PG_LITTLE_ENDIAN) != 0 ? ByteOrder::Little : ByteOrder::Big};
}

// The native syntax that a set of PgSyntaxFlags asks for in full; empty when it leaves something
// open.
constexpr std::string_view UidOfMode(uint32_t mode) {
    const auto hasAll = [mode](uint32_t bits) { return (mode & bits) == bits; };
    if (hasAll(PG_LITTLE_ENDIAN | PG_EXPLICIT_VR)) return kExplicitVrLittleEndianUid;
    if (hasAll(PG_LITTLE_ENDIAN | PG_IMPLICIT_VR)) return kImplicitVrLittleEndianUid;
    if (hasAll(PG_BIG_ENDIAN | PG_EXPLICIT_VR)) return kExplicitVrBigEndianUid;
    return {};
}

}  // namespace pgkit
