// How much a medium holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pgtool {

// "650M", "4.7G", "700Mi": bytes with k, M and G for thousands, millions and thousands of millions,
// as makers of discs count; with an "i" behind it for the powers of 1024. None for any other text,
// and for nothing at all.
std::optional<uint64_t> ParseSize(const std::string& text);

// "8.3 MB", in the units of the former.
std::string DescribeSize(uint64_t bytes);

// Media are filled in sectors of this size, and so are the discs of most computers.
constexpr uint64_t kSector = 2048;

constexpr uint64_t InSectors(uint64_t bytes) { return (bytes + kSector - 1) / kSector * kSector; }

}  // namespace pgtool
