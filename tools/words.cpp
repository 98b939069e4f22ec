#include "words.h"

namespace pgtool {

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (size_t end = 0; (end = text.find(separator)) != text.npos; text.remove_prefix(end + 1))
        parts.push_back(text.substr(0, end));
    parts.push_back(text);
    return parts;
}

std::string_view WithoutBlanks(std::string_view text) {
    const size_t begin = text.find_first_not_of(' ');
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string Counted(size_t count, const char* one, const char* several) {
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string Joined(const std::vector<std::string>& words, std::string_view separator) {
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) {
        if (i > 0) text += separator;
        text += words[i];
    }
    return text;
}

}  // namespace pgtool
