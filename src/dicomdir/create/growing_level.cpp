#include "dicomdir/create/growing_level.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace pgkit {

int32_t LeadingInteger(const char* text) {
    std::string_view rest(text);
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\v\f\r"), rest.size()));
    const bool hasPlus = rest.starts_with('+') && !rest.starts_with("+-");
    if (hasPlus) rest.remove_prefix(1);
    int32_t number = 0;
    const auto error = std::from_chars(rest.data(), rest.data() + rest.size(), number).ec;
    if (error == std::errc::result_out_of_range) return rest[0] == '-' ? INT32_MIN : INT32_MAX;
    return number;
}

}  // namespace pgkit
