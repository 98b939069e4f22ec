// Questions to the library's tables that are answered with a text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pgtool {

// What a function gives for a key: 0 and the text. Nothing for any other result.
std::optional<std::string> Lookup(int32_t (*function)(const char* key, char* buffer),
                                  const std::string& key);

}  // namespace pgtool
