// The transfer syntaxes that are told apart by their UIDs.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/byte_order.h"
#include "pgkit/node.h"

namespace pgkit {

constexpr std::string_view kImplicitVrLittleEndianUid = "1.2.840.10008.1.2";
constexpr std::string_view kExplicitVrLittleEndianUid = "1.2.840.10008.1.2.1";
constexpr std::string_view kExplicitVrBigEndianUid = "1.2.840.10008.1.2.2";

struct Encoding {
    bool implicitVr;
    ByteOrder byteOrder;
};

// How a data set of this transfer syntax is decoded. Everything that is not listed, the compressed
// syntaxes included, is explicit VR little endian.
constexpr Encoding EncodingOf(std::string_view transferSyntaxUid) {
    constexpr Encoding kImplicitLittle{true, ByteOrder::Little};
    constexpr Encoding kExplicitLittle{false, ByteOrder::Little};
    constexpr Encoding kExplicitBig{false, ByteOrder::Big};

    if (transferSyntaxUid == kImplicitVrLittleEndianUid) return kImplicitLittle;
    if (transferSyntaxUid == kExplicitVrBigEndianUid) return kExplicitBig;
    // A private syntax of one maker: implicit VR little endian but for its big-endian pixels.
    if (transferSyntaxUid == "1.2.840.113619.5.2") return kImplicitLittle;
    // A private syntax of another: explicit VR big endian.
    if (transferSyntaxUid == "1.2.840.113704.7.0.4.5") return kExplicitBig;
    return kExplicitLittle;
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
