// The buffer in which the accessors return texts: each thread has one, and every text overwrites
// the one before.
#pragma once

#include <string_view>

#include "api/handle_access.h"

namespace pgkit {

// The text of what is not there, at one address.
inline constexpr char kNoText[] = "";

// A copy of the text, cut to 519 characters; no text when a thread's first one finds no memory.
const char* ShareText(std::string_view text) noexcept;

// The text of a field by that rule. No text for what handle_access.h gives no field of, and the
// buffer is left alone then.
template <typename Handle, typename Object, size_t Size>
const char* TextOf(Handle* handle, char (Object::*field)[Size]) noexcept {
    Object* const object = ObjectOf<Object>(handle);
    return object == nullptr ? kNoText : ShareText(object->*field);
}

}  // namespace pgkit
