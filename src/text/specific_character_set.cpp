#include "text/specific_character_set.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string>

#include "base/text.h"

namespace pgkit {

namespace {

// Longer terms are none.
constexpr size_t kMaxTerm = 32;

// A term without what people write differently: case, blanks, hyphens, underscores.
class TermKey {
  public:
    explicit TermKey(std::string_view term) {
        for (const char c : term) {
            if (c == ' ' || c == '_' || c == '-' || c == '\0') continue;
            if (length_ == kMaxTerm) {
                length_ = 0;
                return;
            }
            characters_[length_++] = ToUpper(c);
        }
    }
    std::string_view View() const { return {characters_, length_}; }

  private:
    char characters_[kMaxTerm];
    size_t length_ = 0;
};

// Terms that are no registration with "ISO_IR" or "ISO 2022 IR" in front: those of the standard,
// and others that files have all the same. Public text.h lists them.
struct NamedTerm {
    std::string_view key;
    const CodedSet* set;
};

constexpr struct {
    std::string_view part;
    int registration;
} kIso8859Parts[] = {{"1", 100}, {"2", 101}, {"3", 109}, {"4", 110},  {"5", 144}, {"6", 127},
                     {"7", 126}, {"8", 138}, {"9", 148}, {"11", 166}, {"15", 203}};

const CodedSet* FindIso8859Part(std::string_view part) {
    const auto* const found =
        std::ranges::find(kIso8859Parts, part, [](auto& row) { return row.part; });
    return found == std::end(kIso8859Parts) ? nullptr : FindRegistration(found->registration);
}

const CodedSet* FindNamed(std::string_view key) {
    const NamedTerm terms[] = {
        {"GB18030", &Gb18030Set()},
        {"GBK", &GbkSet()},
        {"ISO2022GBK", &GbkSet()},
        {"GB2312", &GbkSet()},
        {"UTF8", &Utf8Set()},
        {"LATIN1", &Latin1Set()},
        {"ISO202258", FindRegistration(58)},
    };
    const auto* const found = std::ranges::find(terms, key, &NamedTerm::key);
    return found == std::end(terms) ? nullptr : found->set;
}

const CodedSet* FindNumber(std::string_view digits) {
    int registration = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, registration);
    return error == std::errc() && stop == end ? FindRegistration(registration) : nullptr;
}

const CodedSet* FindTerm(std::string_view term) {
    const TermKey key(term);
    for (const std::string_view prefix : {"ISO2022IR", "ISOIR"}) {
        if (key.View().starts_with(prefix)) return FindNumber(key.View().substr(prefix.size()));
    }
    constexpr std::string_view kIso8859 = "ISO8859";
    if (key.View().starts_with(kIso8859))
        return FindIso8859Part(key.View().substr(kIso8859.size()));
    return FindNamed(key.View());
}

// JIS X 0201 is one term for two sets: Latin letters in G0 and katakana in G1.
constexpr int kLettersOfJisX0201 = 14;
constexpr int kKatakanaOfJisX0201 = 13;

}  // namespace

SpecificCharacterSet::SpecificCharacterSet(std::string_view attribute) {
    attribute = attribute.substr(0, kMaxCharacterSetText);
    for (bool isFirst = true;; isFirst = false) {
        const size_t end = attribute.find('\\');
        AddTerm(FindTerm(attribute.substr(0, end)), isFirst);
        if (end == std::string_view::npos || alone_ != nullptr) return;
        attribute.remove_prefix(end + 1);
    }
}

void SpecificCharacterSet::AddTerm(const CodedSet* set, bool isFirst) {
    if (set == nullptr) return;
    if (set->element == CodeElement::Alone) {
        if (isFirst) alone_ = set;
        return;
    }
    const bool isJisX0201 =
        set->registration == kLettersOfJisX0201 || set->registration == kKatakanaOfJisX0201;
    if (isJisX0201) set = FindRegistration(kKatakanaOfJisX0201);
    if (isFirst && isJisX0201) initialG0_ = FindRegistration(kLettersOfJisX0201);
    // Two bytes to a character cannot be the first set, but some write them there.
    if (isFirst && set->shape == UnitShape::SingleByte) initialG1_ = set;
    if (set->shape != UnitShape::Ascii) Declare(*set);
}

void SpecificCharacterSet::Declare(const CodedSet& set) {
    const auto declared = Declared();
    const bool isNew = std::ranges::find(declared, &set) == declared.end();
    if (isNew && count_ < kMaxDeclared) declared_[count_++] = &set;
}

}  // namespace pgkit
