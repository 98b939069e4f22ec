// SHA-256 (FIPS 180-4), and HMAC with it (RFC 2104).
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace pgtool {

using Digest = std::array<uint8_t, 32>;

Digest Sha256(std::string_view bytes);
Digest HmacSha256(std::string_view key, std::string_view bytes);

}  // namespace pgtool
