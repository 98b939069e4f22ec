// The one buffer in which the accessors return texts. Every text overwrites the one before.
#pragma once

#include <string_view>

namespace pgkit {

// The text of what is not there, at one address.
inline constexpr char kNoText[] = "";

// A copy of the text, cut to 519 characters.
const char* ShareText(std::string_view text);

// The text of a field by that rule. The handle may be that of a base class of the field's owner. A
// null handle gives an empty text and leaves the buffer alone.
template <typename Handle, typename Object, size_t Size>
const char* TextOf(Handle* handle, char (Object::*field)[Size]) {
    return handle == nullptr ? kNoText : ShareText(static_cast<Object*>(handle)->*field);
}

}  // namespace pgkit
