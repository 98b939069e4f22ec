#include "text/text_decoder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "base/utf8.h"
#include "text/set_converter.h"

namespace pgkit {

namespace {

constexpr bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

// In front of and behind the 94 places of a set: these mean the same in every set.
constexpr bool IsBlankOrControl(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
}

// The set for bytes above 7F that nothing was designated for. Files that say which other set they
// change to often forget the escape sequence; those that say nothing are in UTF-8 nowadays, and in
// Latin-1 before that.
const CodedSet& UndesignatedG1(const SpecificCharacterSet& sets, std::string_view text) {
    const auto declared = sets.Declared();
    const auto first = std::ranges::find(declared, CodeElement::G1, &CodedSet::element);
    if (first != declared.end()) return **first;
    return IsValidUtf8(text) ? Utf8Set() : Latin1Set();
}

class Decoder {
  public:
    Decoder(const TextRules& rules, std::string_view text, CutEnd cutEnd, Utf8Output& output)
        : rules_(rules), rest_(text), cutEnd_(cutEnd), output_(output) {}

    void DecodeAscii() {
        for (const char c : rest_)
            output_.Append(IsAscii(c) ? static_cast<char32_t>(c) : kReplacementCharacter);
    }

    void DecodeAlone(const CodedSet& set) {
        while (!rest_.empty()) {
            if (IsAscii(rest_[0])) {
                TakeAscii();
            } else {
                TakeCharacter(set);
            }
        }
    }

    void DecodeWithExtensions(const SpecificCharacterSet& sets) {
        const CodedSet* const initialG0 = &sets.InitialG0();
        const CodedSet* const initialG1 =
            sets.InitialG1() != nullptr ? sets.InitialG1() : &UndesignatedG1(sets, rest_);
        g0_ = initialG0;
        g1_ = initialG1;
        while (!rest_.empty()) {
            const char c = rest_[0];
            if (c == kEscape) {
                TakeEscape();
            } else if (!IsAscii(c)) {
                TakeCharacter(*g1_);
            } else if (g0_->shape != UnitShape::Ascii && !IsBlankOrControl(c)) {
                TakeCharacter(*g0_);
            } else {
                TakeAscii();
                if (!IsDelimiter(rules_, c)) continue;
                g0_ = initialG0;
                g1_ = initialG1;
            }
        }
    }

  private:
    void TakeAscii() {
        output_.Append(static_cast<char32_t>(rest_[0]));
        rest_.remove_prefix(1);
    }

    void TakeCharacter(const CodedSet& set) {
        const Unit unit = FirstUnit(set, rest_);
        const char32_t character =
            unit.isWhole ? converter_.Decode(set, rest_.substr(0, unit.size)) : 0;
        if (character != 0) {
            output_.Append(character);
        } else {
            Replace(unit.isCutShort);
        }
        rest_.remove_prefix(unit.size);
    }

    // Sets that were not declared are changed to all the same: the sequence says which one is
    // meant.
    void TakeEscape() {
        bool isCutShort = false;
        for (const CodedSet& set : CodedSets()) {
            if (set.designation.empty()) continue;
            if (rest_.starts_with(set.designation)) {
                (set.element == CodeElement::G0 ? g0_ : g1_) = &set;
                rest_.remove_prefix(set.designation.size());
                return;
            }
            isCutShort = isCutShort || set.designation.starts_with(rest_);
        }
        Replace(isCutShort);
        rest_.remove_prefix(isCutShort ? rest_.size() : 1);
    }

    void Replace(bool isCutShort) {
        if (!isCutShort || cutEnd_ == CutEnd::Replace) output_.Append(kReplacementCharacter);
    }

    const TextRules& rules_;
    std::string_view rest_;
    CutEnd cutEnd_;
    Utf8Output& output_;
    const CodedSet* g0_ = nullptr;
    const CodedSet* g1_ = nullptr;
    SetConverter converter_;
};

}  // namespace

std::string_view WithoutPadding(std::string_view text) {
    constexpr std::string_view kPadding(" \0", 2);
    return text.substr(0, text.find_last_not_of(kPadding) + 1);
}

bool IsPlainText(std::string_view text) {
    const char* bytes = text.data();
    size_t left = text.size();
    for (; left >= sizeof(uint64_t); left -= sizeof(uint64_t), bytes += sizeof(uint64_t)) {
        uint64_t word;
        std::memcpy(&word, bytes, sizeof word);
        if ((word & 0x8080808080808080u) != 0) return false;
    }
    for (; left > 0; --left, ++bytes) {
        if (!IsAscii(*bytes)) return false;
    }
    return text.empty() || std::memchr(text.data(), kEscape, text.size()) == nullptr;
}

void DecodeText(std::string_view attribute, const TextRules& rules, std::string_view text,
                CutEnd cutEnd, Utf8Output& output) {
    if (IsPlainText(text)) return output.AppendAscii(text);
    Decoder decoder(rules, text, cutEnd, output);
    if (!rules.usesCharacterSet) return decoder.DecodeAscii();
    const SpecificCharacterSet sets(attribute);
    if (sets.Alone() != nullptr) return decoder.DecodeAlone(*sets.Alone());
    decoder.DecodeWithExtensions(sets);
}

}  // namespace pgkit
