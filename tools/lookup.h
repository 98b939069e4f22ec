// Questions to the library's tables that are answered with a text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace pgtool {

// What a function of pgkit/lookup.h gives for a key. None when there is no such text.
std::optional<std::string> Lookup(size_t (*function)(const char* key, char* buffer, size_t size),
                                  const std::string& key);

}  // namespace pgtool
