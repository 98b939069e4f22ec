// pgkit, the C++ layer (data_set.hpp): tags, and the places in a data set that paths name.
#ifndef PGKIT_CPP_TAG_HPP
#define PGKIT_CPP_TAG_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pgkit/edition.h"

namespace pgkit {
inline namespace v1 {

// The tag of an element.
struct tag {
    std::uint16_t group = 0;
    std::uint16_t element = 0;

    // The tag that a text names (pgxFindTag): "PatientName", "PatientsName", "0010,0010",
    // "(0010,0010)", "00100010". None for any other text.
    [[nodiscard]] static std::optional<tag> named(std::string_view name) noexcept;

    // "(0010,0010)".
    [[nodiscard]] std::string text() const;
    // "PatientName"; empty for private tags and those that today's standard does not list.
    [[nodiscard]] std::string keyword() const;
    [[nodiscard]] constexpr bool is_private() const noexcept { return group % 2 != 0; }

    friend constexpr bool operator==(tag a, tag b) noexcept {
        return a.group == b.group && a.element == b.element;
    }
    friend constexpr bool operator!=(tag a, tag b) noexcept { return !(a == b); }
    friend constexpr bool operator<(tag a, tag b) noexcept {
        return a.group != b.group ? a.group < b.group : a.element < b.element;
    }
};

// Where something is, seen from a data set or an item. Everything that takes a place can be given
//
//     "PatientName", "PatientsName", "0010,0010"              an element by its name or its tag
//     "ReferencedSeriesSequence[0].SeriesInstanceUID"         an element of an item of a sequence
//     "ReferencedSeriesSequence[0]"                           that item; items count from 0
//     {0x0010, 0x0010}, pgkit::tag{0x0010, 0x0010}            an element without a lookup of names
//
// A place refers to the text that it is made from.
class place {
  public:
    constexpr place(pgkit::tag tag) noexcept : tag_(tag), is_tag_(true) {}
    constexpr place(std::uint16_t group, std::uint16_t element) noexcept
        : tag_{group, element}, is_tag_(true) {}
    constexpr place(std::string_view path) noexcept : path_(path) {}
    place(const std::string& path) noexcept : path_(path) {}
    // Null is an empty path, which leads nowhere.
    constexpr place(const char* path) noexcept
        : path_(path == nullptr ? std::string_view() : std::string_view(path)) {}

    [[nodiscard]] constexpr bool is_tag() const noexcept { return is_tag_; }
    [[nodiscard]] constexpr pgkit::tag tag() const noexcept { return tag_; }
    [[nodiscard]] constexpr std::string_view path() const noexcept { return path_; }
    // As a text for messages.
    [[nodiscard]] std::string text() const { return is_tag_ ? tag_.text() : std::string(path_); }

  private:
    pgkit::tag tag_{};
    bool is_tag_ = false;
    std::string_view path_;
};

namespace detail {

// One step of a path: an element and, behind it in brackets, the number of one of its items.
struct step {
    pgkit::tag tag;
    bool has_index = false;
    std::uint32_t index = 0;
};

// Takes the first step off a path. None, when the path is empty or cannot be understood.
inline std::optional<step> take_step(std::string_view& path) noexcept;

// A NUL-terminated text of the library's through one of its functions for bounded texts.
template <typename Function>
std::string bounded_text(Function function) {
    char buffer[128];
    const std::size_t size = function(buffer, sizeof buffer);
    if (size < sizeof buffer) return std::string(buffer, size);
    std::string text(size, '\0');
    function(text.data(), size + 1);
    return text;
}

}  // namespace detail

// ---- Definitions --------------------------------------------------------------------------------

inline std::optional<tag> tag::named(std::string_view name) noexcept {
    // Longer than every name and every way to write the numbers.
    char buffer[128];
    if (name.size() >= sizeof buffer || name.find('\0') != name.npos) return std::nullopt;
    buffer[name.copy(buffer, sizeof buffer - 1)] = '\0';
    tag found;
    if (pgxFindTag(buffer, &found.group, &found.element) == 0) return std::nullopt;
    return found;
}

inline std::string tag::text() const {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text = "(0000,0000)";
    for (int i = 0; i < 4; ++i) {
        text[static_cast<std::size_t>(4 - i)] = digits[(group >> (4 * i)) & 0xF];
        text[static_cast<std::size_t>(9 - i)] = digits[(element >> (4 * i)) & 0xF];
    }
    return text;
}

inline std::string tag::keyword() const {
    return detail::bounded_text([this](char* buffer, std::size_t size) {
        return pgxTagKeyword(group, element, buffer, size);
    });
}

namespace detail {

// "[0]" at the end of a step: up to nine digits.
inline std::optional<std::uint32_t> item_index(std::string_view digits) noexcept {
    if (digits.empty() || digits.size() > 9) return std::nullopt;
    std::uint32_t index = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9') return std::nullopt;
        index = index * 10 + static_cast<std::uint32_t>(digit - '0');
    }
    return index;
}

inline std::optional<step> take_step(std::string_view& path) noexcept {
    const std::size_t point = path.find('.');
    std::string_view name = path.substr(0, point);
    // A point ends a step, and another one follows.
    if (point != path.npos && point + 1 == path.size()) return std::nullopt;
    path = point == path.npos ? std::string_view() : path.substr(point + 1);

    step taken;
    if (!name.empty() && name.back() == ']') {
        const std::size_t bracket = name.rfind('[');
        if (bracket == name.npos) return std::nullopt;
        const auto index = item_index(name.substr(bracket + 1, name.size() - bracket - 2));
        if (!index) return std::nullopt;
        taken.has_index = true;
        taken.index = *index;
        name = name.substr(0, bracket);
    }
    const std::optional<pgkit::tag> named = pgkit::tag::named(name);
    if (!named) return std::nullopt;
    taken.tag = *named;
    return taken;
}

}  // namespace detail

}  // namespace v1
}  // namespace pgkit

#endif
