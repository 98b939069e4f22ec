// The characters of the coded sets.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/charset_conversion.h"
#include "text/coded_sets.h"

namespace pgkit {

constexpr size_t kMaxUnitSize = platform::kMaxCharsetUnit;

// Converts the characters of one text. What the system needs for a set is made ready when the first
// character of the set is met.
class SetConverter {
  public:
    // The character of a whole unit (FirstUnit); 0 when the set has none there.
    char32_t Decode(const CodedSet& set, std::string_view unit);

    // Writes a character above 7F as a unit of the set and returns its size; 0 when the set lacks
    // it.
    size_t Encode(const CodedSet& set, char32_t character, char (&unit)[kMaxUnitSize]);

  private:
    platform::CharsetConversion& System(platform::Charset charset);

    std::array<std::optional<platform::CharsetConversion>, platform::kCharsetCount> systems_;
};

}  // namespace pgkit
