#include "lookup.h"

#include <memory>

namespace pgtool {

namespace {

// Built-in texts are shorter than 70 characters, but a site's file may hold longer ones.
constexpr size_t kMaxText = size_t{16} << 20;

}  // namespace

std::optional<std::string> Lookup(int32_t (*function)(const char* key, char* buffer),
                                  const std::string& key) {
    const auto text = std::make_unique_for_overwrite<char[]>(kMaxText);
    if (function(key.c_str(), text.get()) != 0) return std::nullopt;
    return text.get();
}

}  // namespace pgtool
