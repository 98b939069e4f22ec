#include "text/text_decoder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "base/utf8.h"

namespace pgkit {

namespace {

constexpr bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

// In front of and behind the 94 places of a set: these mean the same in every set.
constexpr bool IsBlankOrControl(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
}

// The first declared set that has bytes above 7F, if there is one. Files that say which other set
// they change to often forget the escape sequence.
const CodedSet* FirstDeclaredG1(const SpecificCharacterSet& sets) {
    const auto declared = sets.Declared();
    const auto first = std::ranges::find(declared, CodeElement::G1, &CodedSet::element);
    return first == declared.end() ? nullptr : *first;
}

// The set for bytes above 7F in front of every escape sequence.
const CodedSet& InitialG1Of(const SpecificCharacterSet& sets, bool isUtf8) {
    if (sets.InitialG1() != nullptr) return *sets.InitialG1();
    const CodedSet* const declared = FirstDeclaredG1(sets);
    if (declared != nullptr) return *declared;
    return isUtf8 ? Utf8Set() : Latin1Set();
}

}  // namespace

bool TextDecoder::DependsOnUtf8(const TextRules& rules) const {
    return rules.usesCharacterSet && sets_.Alone() == nullptr && sets_.InitialG1() == nullptr &&
           FirstDeclaredG1(sets_) == nullptr;
}

void TextDecoder::Begin(const TextRules& rules, CutEnd cutEnd, bool isUtf8) {
    rules_ = &rules;
    cutEnd_ = cutEnd;
    initialG1_ = &InitialG1Of(sets_, isUtf8);
    g0_ = &sets_.InitialG0();
    g1_ = initialG1_;
}

size_t TextDecoder::Decode(std::string_view piece, bool isLast, Utf8Output& output) {
    const size_t heldBack = isLast ? 0 : kMaxHeldBack;
    const CodedSet* const alone = sets_.Alone();
    rest_ = piece;
    while (rest_.size() > heldBack) {
        if (!rules_->usesCharacterSet) {
            output.Append(IsAscii(rest_[0]) ? static_cast<char32_t>(rest_[0])
                                            : kReplacementCharacter);
            rest_.remove_prefix(1);
        } else if (alone == nullptr) {
            TakeWithExtensions(output);
        } else if (IsAscii(rest_[0])) {
            TakeAscii(output);
        } else {
            TakeCharacter(*alone, output);
        }
    }
    return piece.size() - rest_.size();
}

void TextDecoder::TakeWithExtensions(Utf8Output& output) {
    const char c = rest_[0];
    if (c == kEscape) {
        TakeEscape(output);
    } else if (!IsAscii(c)) {
        TakeCharacter(*g1_, output);
    } else if (g0_->shape != UnitShape::Ascii && !IsBlankOrControl(c)) {
        TakeCharacter(*g0_, output);
    } else {
        TakeAscii(output);
        if (!IsDelimiter(*rules_, c)) return;
        g0_ = &sets_.InitialG0();
        g1_ = initialG1_;
    }
}

void TextDecoder::TakeAscii(Utf8Output& output) {
    output.Append(static_cast<char32_t>(rest_[0]));
    rest_.remove_prefix(1);
}

void TextDecoder::TakeCharacter(const CodedSet& set, Utf8Output& output) {
    const Unit unit = FirstUnit(set, rest_);
    const char32_t character =
        unit.isWhole ? converter_.Decode(set, rest_.substr(0, unit.size)) : 0;
    if (character != 0) {
        output.Append(character);
    } else {
        Replace(unit.isCutShort, output);
    }
    rest_.remove_prefix(unit.size);
}

// Sets that were not declared are changed to all the same: the sequence says which one is meant.
void TextDecoder::TakeEscape(Utf8Output& output) {
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
    Replace(isCutShort, output);
    rest_.remove_prefix(isCutShort ? rest_.size() : 1);
}

void TextDecoder::Replace(bool isCutShort, Utf8Output& output) {
    if (!isCutShort || cutEnd_ == CutEnd::Replace) output.Append(kReplacementCharacter);
}

std::string_view WithoutPadding(std::string_view text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0'))
        text.remove_suffix(1);
    return text;
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
    TextDecoder decoder(attribute);
    decoder.Begin(rules, cutEnd, decoder.DependsOnUtf8(rules) && IsValidUtf8(text));
    decoder.Decode(text, true, output);
}

}  // namespace pgkit
