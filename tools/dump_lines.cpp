#include "dump_lines.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdio>
#include <vector>

#include "kept_elements.h"
#include "pgkit/lookup.h"
#include "utf8_text.h"
#include "value_kinds.h"

namespace pgtool {

namespace {

constexpr const char* kIndent = " | ";
constexpr const char* kCyan = "\x1B[36m";
constexpr const char* kBold = "\x1B[1m";
constexpr const char* kNone = "\x1B[m";
constexpr size_t kMostNumbers = 20;
constexpr size_t kMostBytes = 16;
constexpr size_t kMostText = 512;

// At most count bytes of the beginning of a value; fewer when its file ends.
std::string Beginning(const pgkit::element& element, size_t count) {
    const size_t size = std::min<size_t>(pgkit::detail::available_length(element.node()), count);
    std::string bytes(size + 1, '\0');
    if (element.node()->GetStringValue(bytes.data(), static_cast<int32_t>(size)) == 0) return "";
    bytes.resize(size);
    return bytes;
}

std::string CharacterSetOf(const pgkit::element& element) {
    constexpr size_t kLongest = 1024;
    if (element.character_set() == nullptr) return "";
    return Beginning(pgkit::element(element.character_set()), kLongest);
}

std::string LengthNote(const pgkit::element& element) {
    return "... " + std::to_string(element.length()) + " bytes";
}

std::string TextValue(const pgkit::element& element, bool full) {
    if (full || element.length() <= kMostText) return WithEscapes(element.text());
    // The bytes are cut, perhaps within a character.
    const std::string bytes = Beginning(element, kMostText);
    std::string text(4 * kMostText, '\0');
    const int64_t size = pgxFieldToUtf8(CharacterSetOf(element).c_str(), element.vr(),
                                        bytes.c_str(), text.data(), text.size());
    text.resize(size < 0 ? 0 : std::min(static_cast<size_t>(size), text.size() - 1));
    return WithEscapes(text) + LengthNote(element);
}

size_t SizeOfWord(uint32_t valueRep) {
    switch (valueRep) {
        case VR_OB:
        case VR_UN:
        case VR_Unknown:
            return 1;
        default:
            return SizeOfNumber(valueRep);
    }
}

// Words are shown as little-endian machines have them, on every machine.
std::string WithLittleEndianWords(std::string bytes, size_t size) {
    if constexpr (std::endian::native == std::endian::little) return bytes;
    for (size_t i = 0; i + size <= bytes.size(); i += size)
        std::reverse(bytes.data() + i, bytes.data() + i + size);
    return bytes;
}

std::string HexValue(const pgkit::element& element, bool full) {
    if (element.is_encapsulated()) return "Encoded OW/OB/OF Binary data";
    const std::string bytes = WithLittleEndianWords(
        Beginning(element, full ? INT32_MAX : kMostBytes), SizeOfWord(element.vr()));
    std::string text;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        text += (text.empty() ? "" : " ") + std::string(digits);
    }
    return bytes.size() < element.length() ? text + LengthNote(element) : text;
}

// Values of unknown VR are often texts.
std::string UnknownValue(const pgkit::element& element, bool full) {
    std::string bytes = Beginning(element, kMostText);
    while (bytes.ends_with('\0'))
        bytes.pop_back();
    const bool isText =
        std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
    if (!isText || element.length() > kMostText) return HexValue(element, full);
    return bytes;
}

std::string TextOf(double number) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, number).ptr;
    return std::string(text, end);
}

// A lone number stands alone, of several each has a blank behind it.
template <typename Number, typename Print>
std::string Numbers(const pgkit::element& element, size_t unit, bool full, Print print) {
    const size_t count = element.length() == kUndefinedLength ? 0 : element.length() / unit;
    const size_t printed = full ? count : std::min(count, kMostNumbers);
    std::string text;
    for (size_t i = 0; i < printed; ++i) {
        const auto number = element.number<Number>(i);
        if (!number) break;
        text += print(*number) + (count == 1 ? "" : " ");
    }
    return printed < count ? text + LengthNote(element) : text;
}

std::string IntegerValue(const pgkit::element& element, bool full) {
    const size_t unit = SizeOfNumber(element.vr());
    if (element.vr() == VR_UV) {
        return Numbers<uint64_t>(element, unit, full,
                                 [](uint64_t number) { return std::to_string(number); });
    }
    return Numbers<int64_t>(element, unit, full,
                            [](int64_t number) { return std::to_string(number); });
}

std::string RealValue(const pgkit::element& element, bool full) {
    if (element.vr() == VR_FD) return Numbers<double>(element, 8, full, TextOf);
    return Numbers<float>(element, 4, full, [](float number) {
        char text[64];
        const auto end = std::to_chars(text, text + sizeof text, number).ptr;
        return std::string(text, end);
    });
}

std::string TagsValue(const pgkit::element& element, bool full) {
    return Numbers<uint32_t>(element, 4, full, [](uint32_t number) {
        const pgkit::tag tag{static_cast<uint16_t>(number >> 16), static_cast<uint16_t>(number)};
        const std::string keyword = tag.keyword();
        return tag.text() + (keyword.empty() ? "" : " " + keyword);
    });
}

std::string ValueOf(const pgkit::element& element, bool full) {
    switch (KindOf(element.vr())) {
        case ValueKind::Integer:
            return IntegerValue(element, full);
        case ValueKind::Real:
            return RealValue(element, full);
        case ValueKind::Tags:
            return TagsValue(element, full);
        case ValueKind::Bytes:
            return HexValue(element, full);
        case ValueKind::Unknown:
            return UnknownValue(element, full);
        case ValueKind::Sequence:
            return "SEQUENCE";
        default:
            return TextValue(element, full);
    }
}

// What is open while a data set is printed: an item, and the items behind it.
struct Level {
    pgkit::item::iterator element;
    pgkit::item_range::iterator nextItem;
};

class Printer {
  public:
    explicit Printer(const DumpStyle& style) : style_(style) {}

    void DataSet(const pgkit::item& root) {
        Line("DATASET");
        Print({root.begin(), {}});
        Line("END-OF-DATASET");
    }

    // An element and what is in its items.
    void Element(const pgkit::element& element) {
        ElementLine(element);
        if (!HasItems(element)) return;
        auto next = element.items().begin();
        const pgkit::item first = *next;
        ++next;
        depth_ = 1;
        Line("DATASET");
        Print({first.begin(), next});
        Line("END-OF-DATASET");
        depth_ = 0;
    }

  private:
    static bool HasItems(const pgkit::element& element) {
        return element.vr() == VR_SQ && !element.items().empty();
    }

    // The elements of an item and of the items behind it. Nesting takes no stack.
    void Print(Level start) {
        std::vector<Level> levels = {start};
        ++depth_;
        while (true) {
            Level& level = levels.back();
            if (level.element != pgkit::item::iterator()) {
                const pgkit::element element = *level.element;
                ++level.element;
                ElementLine(element);
                if (HasItems(element)) Open(levels, element);
            } else if (level.nextItem != pgkit::item_range::iterator()) {
                const pgkit::item item = *level.nextItem;
                ++level.nextItem;
                level.element = item.begin();
                --depth_;
                Line("END-OF-DATASET");
                Line("DATASET");
                ++depth_;
            } else {
                levels.pop_back();
                --depth_;
                if (levels.empty()) return;
                Line("END-OF-DATASET");
                --depth_;
            }
        }
    }

    void Open(std::vector<Level>& levels, const pgkit::element& sequence) {
        auto next = sequence.items().begin();
        const pgkit::item item = *next;
        ++next;
        ++depth_;
        Line("DATASET");
        ++depth_;
        levels.push_back({item.begin(), next});
    }

    void Indent() const {
        for (size_t i = 0; i < depth_; ++i)
            std::fputs(kIndent, stdout);
    }

    void Line(const char* text) const {
        Indent();
        std::puts(text);
    }

    void ElementLine(const pgkit::element& element) const {
        Head(element);
        const std::string value = ValueOf(element, style_.full);
        std::fwrite(value.data(), 1, value.size(), stdout);
        std::fputs("]\n", stdout);
    }

    void Head(const pgkit::element& element) const {
        Indent();
        const pgkit::tag tag = element.tag();
        const int length = static_cast<int>(element.length());  // -1 for an undefined one
        std::printf("%s(%04X,%04X)%s : %-4s Len: ", Colour(kCyan), tag.group, tag.element,
                    Colour(kNone), element.vr_name().c_str());
        if (length == -1) {
            std::printf("%-6d", length);
        } else {
            std::printf("%-6u", element.length());
        }
        std::printf(" %s%-30s%s Value: [", Colour(kBold), Name(element).c_str(), Colour(kNone));
    }

    const char* Colour(const char* sequence) const { return style_.coloured ? sequence : ""; }

    std::string Name(const pgkit::element& element) const {
        if (style_.currentNames) {
            std::string keyword = element.tag().keyword();
            if (!keyword.empty()) return keyword;
        }
        char name[128];
        element.node()->GetTagName(name);
        return WithEscapes(AnyToUtf8(name));
    }

    const DumpStyle& style_;
    size_t depth_ = 0;
};

}  // namespace

void PrintDataSet(const pgkit::data_set& root, const DumpStyle& style) {
    Printer(style).DataSet(root);
}

void PrintElements(const pgkit::data_set& root, const std::vector<std::string>& places,
                   const DumpStyle& style) {
    Printer printer(style);
    for (const pgkit::element& element : ElementsAt(root, places))
        printer.Element(element);
}

}  // namespace pgtool
