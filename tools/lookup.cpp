#include "lookup.h"

namespace pgtool {

std::optional<std::string> Lookup(size_t (*function)(const char* key, char* buffer, size_t size),
                                  const std::string& key) {
    // Built-in texts are shorter, but a site's file may hold longer ones.
    std::string text(128, '\0');
    const size_t length = function(key.c_str(), text.data(), text.size());
    // What is there and empty leaves no placeholder.
    if (length == 0 && text[0] != '\0') return std::nullopt;
    if (length >= text.size()) {
        text.resize(length + 1);
        function(key.c_str(), text.data(), text.size());
    }
    text.resize(length);
    return text;
}

}  // namespace pgtool
