#include "dictionary/private_dictionary.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <utility>

#include "base/text.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "platform/file_handle.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr size_t kMaxShortField = 15;  // group, element, VR, multiplicity
constexpr size_t kMaxLongField = 127;  // creator, name

constexpr const char* kWhiteSpace = " \t\n\v\f\r";

// Takes the fields of one line from left to right. Every operation fails, and leaves the scanner of
// no further use, when the text is not there or longer than the limit.
class LineScanner {
  public:
    explicit LineScanner(std::string_view line) : rest_(line) {}

    bool Literal(std::string_view text) {
        if (rest_.substr(0, text.size()) != text) return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    // At least one character, up to the first stop character.
    std::optional<std::string> Until(char stop, size_t limit) {
        return Take(rest_.find(stop), limit);
    }

    // The next word, behind any white space.
    std::optional<std::string> Word(size_t limit) {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(kWhiteSpace), rest_.size()));
        return Take(rest_.find_first_of(kWhiteSpace), limit);
    }

  private:
    std::optional<std::string> Take(size_t end, size_t limit) {
        const std::string_view field = rest_.substr(0, end);
        if (field.empty() || field.size() > limit) return std::nullopt;
        rest_.remove_prefix(field.size());
        return std::string(field);
    }

    std::string_view rest_;
};

struct LineFields {
    std::string group;
    std::string creator;
    std::string element;
    std::string valueRep;
    std::string name;
};

// The six fields of (group,"creator",element) VR name multiplicity; the last is only required.
std::optional<LineFields> SplitLine(std::string_view line) {
    LineScanner scanner(line);
    if (!scanner.Literal("(")) return std::nullopt;
    const auto group = scanner.Until(',', kMaxShortField);
    if (!group || !scanner.Literal(",\"")) return std::nullopt;
    const auto creator = scanner.Until('"', kMaxLongField);
    if (!creator || !scanner.Literal("\",")) return std::nullopt;
    const auto element = scanner.Until(')', kMaxShortField);
    if (!element || !scanner.Literal(")")) return std::nullopt;
    const auto valueRep = scanner.Word(kMaxShortField);
    if (!valueRep) return std::nullopt;
    const auto name = scanner.Word(kMaxLongField);
    if (!name || !scanner.Word(kMaxShortField)) return std::nullopt;
    return LineFields{*group, *creator, *element, *valueRep, *name};
}

// A hexadecimal number, blanks around it allowed, of which a tag keeps the low 16 bits.
std::optional<uint16_t> ParseHex(const std::string& text) {
    char* end = nullptr;
    const unsigned long long number = std::strtoull(text.c_str(), &end, 16);
    if (end == text.c_str() || end[std::strspn(end, kWhiteSpace)] != '\0') return std::nullopt;
    return static_cast<uint16_t>(number);
}

}  // namespace

PrivateDictionary& PrivateDictionary::Instance() {
    static PrivateDictionary instance;
    return instance;
}

size_t PrivateDictionary::CreatorKeyHash::operator()(const CreatorKey& key) const {
    return std::hash<std::string_view>()(key.creator) ^ (size_t{key.tag} * 0x9E3779B97F4A7C15u);
}

bool PrivateDictionary::ReadFile(const char* path) {
    Clear();
    try {
        return ReadLines(path);
    } catch (...) {
        // An entry that the indexes do not know, or a part of a file, answers questions wrongly.
        Clear();
        throw;
    }
}

bool PrivateDictionary::ReadLines(const char* path) {
    if (!platform::PathExists(path) || platform::IsDirectory(path)) return false;
    // A device or a pipe might never end.
    if (!platform::FileSize(path)) return true;
    std::vector<char> buffer(1 << 16);  // outlives the stream
    const platform::FileHandle file(platform::OpenForReading(path));
    if (!file) return true;
    // Without a buffer given here a stream that was opened unbuffered would stay so.
    std::setvbuf(file.get(), buffer.data(), _IOFBF, buffer.size());
    // A longer line is read in pieces, each of which counts as a line.
    char line[1024];
    while (std::fgets(line, sizeof line, file.get()) != nullptr)
        AddLine(line);
    return true;
}

void PrivateDictionary::Clear() {
    firstByCreator_.clear();
    firstByTag_.clear();
    entries_.clear();
}

void PrivateDictionary::AddLine(const char* line) {
    std::optional<LineFields> fields = SplitLine(line);
    if (!fields) return;
    // A range such as 6000-60FF stands for its first group.
    if (fields->group.size() > 4 && fields->group[4] == '-') fields->group.resize(4);
    // The groups of Pixel Data, which is read by rules of its own.
    if (fields->group.starts_with("7F")) return;
    const std::optional<uint16_t> group = ParseHex(fields->group);
    const std::optional<uint16_t> element = ParseHex(fields->element);
    if (!group || !element) return;
    // Tables of other programs have names for more than VRs: ox is OW or OB, and up (a pointer), xs
    // (US or SS, which takes another element to tell) and na (none) do not say how to read a value.
    if (fields->valueRep == "ox") fields->valueRep = "OWOB";
    if (fields->valueRep == "up" || fields->valueRep == "xs" || fields->valueRep == "na") return;

    entries_.push_back({*group, *element, VrFromName(fields->valueRep), std::move(fields->name),
                        ToUpper(TrimBlanks(fields->creator))});
    const PrivateDictionaryEntry& entry = entries_.back();
    const uint32_t tag = TagKey(entry.group, entry.element);
    firstByTag_.try_emplace(tag, &entry);
    firstByCreator_.try_emplace(CreatorKey{tag, entry.creator}, &entry);
}

const PrivateDictionaryEntry* PrivateDictionary::FindExact(uint16_t group, uint16_t element) const {
    const auto found = firstByTag_.find(TagKey(group, element));
    return found == firstByTag_.end() ? nullptr : found->second;
}

const PrivateDictionaryEntry* PrivateDictionary::FindByCreator(uint16_t group, uint16_t element,
                                                               std::string_view creator) const {
    const auto found = firstByCreator_.find({TagKey(group, element), creator});
    return found == firstByCreator_.end() ? nullptr : found->second;
}

const PrivateDictionaryEntry* FindPrivateElement(uint16_t group, uint16_t element,
                                                 const std::vector<PrivateCreator>& creators) {
    if (element < 0x1000) return nullptr;
    const uint16_t block = element >> 8;
    const uint16_t offset = element & 0xFF;
    for (const PrivateCreator& creator : creators) {
        if (creator.block != block) continue;
        const PrivateDictionaryEntry* entry =
            PrivateDictionary::Instance().FindByCreator(group, offset, creator.text);
        if (entry != nullptr) return entry;
    }
    return nullptr;
}

}  // namespace pgkit
