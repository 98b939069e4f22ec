#include "sopclass/xml_nesting.h"

#include <cstring>
#include <string_view>

namespace pgkit {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

bool IsOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

enum class TagEnd { Opened, Empty, Broken };

// Follows the markup exactly as the parser does: an end tag inside a comment, a quoted value or an
// odd name that only one of the two took for an end tag would hide a level of nesting. Where the
// parser gives up with an error, the scan may stop too.
class MarkupScanner {
  public:
    explicit MarkupScanner(const char* text) : next_(text) {}

    // Moves behind the next '<'; false at the end of the text.
    bool ToMarkup() {
        next_ = std::strchr(next_, '<');
        if (next_ == nullptr) return false;
        ++next_;
        return true;
    }

    char Peek() const { return *next_; }

    // Everything from "<!" to its end; false when it has none.
    bool SkipDeclaration() {
        if (StartsWith("!--")) return SkipBehind(3, "-->");
        if (StartsWith("![CDATA[")) return SkipBehind(8, "]]>");
        if (StartsWith("!DOCTYPE") && IsOneOf(next_[8], kWhiteSpace)) return SkipDoctype();
        return SkipBehind(1, ">");
    }

    bool SkipInstruction() { return SkipBehind(1, "?>"); }

    bool SkipEndTag() {
        ++next_;
        SkipUntil(" \t\r\n/>?");
        SkipWhiteSpace();
        return Take('>');
    }

    TagEnd SkipStartTag() {
        if (SkipUntil(" \t\r\n/>?") == 0) return TagEnd::Broken;
        SkipWhiteSpace();
        while (*next_ != '\0' && !IsOneOf(*next_, kNoAttributeName)) {
            if (!SkipAttribute()) return TagEnd::Broken;
        }
        if (Take('>')) return TagEnd::Opened;
        return Take('/') && Take('>') ? TagEnd::Empty : TagEnd::Broken;
    }

  private:
    static constexpr std::string_view kNoAttributeName = " \t\r\n/<>=?!";

    bool StartsWith(std::string_view prefix) const {
        return std::strncmp(next_, prefix.data(), prefix.size()) == 0;
    }

    bool SkipBehind(size_t offset, const char* end) {
        next_ = std::strstr(next_ + offset, end);
        if (next_ == nullptr) return false;
        next_ += std::strlen(end);
        return true;
    }

    // A document type may hold an internal subset in brackets, in which '>' does not end it.
    bool SkipDoctype() {
        size_t brackets = 0;
        for (; *next_ != '\0'; ++next_) {
            if (*next_ == '[') ++brackets;
            if (*next_ == ']' && brackets > 0) --brackets;
            if (*next_ == '>' && brackets == 0) {
                ++next_;
                return true;
            }
        }
        return false;
    }

    bool SkipAttribute() {
        SkipUntil(kNoAttributeName);
        SkipWhiteSpace();
        if (!Take('=')) return false;
        SkipWhiteSpace();
        const char quote = *next_;
        if (!Take('"') && !Take('\'')) return false;
        next_ = std::strchr(next_, quote);
        if (next_ == nullptr) return false;
        ++next_;
        SkipWhiteSpace();
        return true;
    }

    // Returns the number of characters skipped.
    size_t SkipUntil(std::string_view stops) {
        const char* start = next_;
        while (*next_ != '\0' && !IsOneOf(*next_, stops))
            ++next_;
        return static_cast<size_t>(next_ - start);
    }

    void SkipWhiteSpace() {
        while (IsOneOf(*next_, kWhiteSpace))
            ++next_;
    }

    bool Take(char c) {
        if (*next_ != c) return false;
        ++next_;
        return true;
    }

    const char* next_;
};

}  // namespace

bool IsNestedAtMost(const char* text, size_t maxDepth) {
    MarkupScanner scanner(text);
    size_t depth = 0;
    while (scanner.ToMarkup()) {
        bool whole = true;
        if (scanner.Peek() == '!') {
            whole = scanner.SkipDeclaration();
        } else if (scanner.Peek() == '?') {
            whole = scanner.SkipInstruction();
        } else if (scanner.Peek() == '/') {
            whole = depth > 0 && scanner.SkipEndTag();
            if (whole) --depth;
        } else {
            // A start tag counts as soon as it is met: the parser descends before it looks at it.
            if (depth == maxDepth) return false;
            const TagEnd end = scanner.SkipStartTag();
            whole = end != TagEnd::Broken;
            if (end == TagEnd::Opened) ++depth;
        }
        if (!whole) return true;
    }
    return true;
}

}  // namespace pgkit
