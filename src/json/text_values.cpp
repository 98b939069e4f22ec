#include "json/text_values.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "json/number_text.h"
#include "pgkit/value_representation.h"
#include "text/text_rules.h"

namespace pgkit {

namespace {

constexpr std::string_view kPadding(" \0", 2);

// A longer run of blanks is no padding, and a longer text no number.
constexpr size_t kMaxHeldBack = 0x10000;
constexpr size_t kMaxNumber = 64;

constexpr std::array<std::string_view, 3> kComponents = {"Alphabetic", "Ideographic", "Phonetic"};

bool IsNumber(uint32_t valueRep) { return valueRep == VR_IS || valueRep == VR_DS; }

}  // namespace

void TextValues::Begin(uint32_t valueRep) {
    valueRep_ = valueRep;
    isSplit_ = !FindTextRules(valueRep)->delimiters.empty();
    component_ = 0;
    isArrayOpen_ = isStringOpen_ = hasContent_ = false;
}

void TextValues::Put(std::string_view utf8) {
    if (!isSplit_) return PutContent(utf8);
    for (;;) {
        const auto found = std::ranges::find_if(utf8, [this](char c) { return IsDelimiter(c); });
        const auto end = static_cast<size_t>(found - utf8.begin());
        PutPart(utf8.substr(0, end));
        if (end == utf8.size()) return;
        EndComponent();
        if (utf8[end] == '\\') {
            EndValue(false);
        } else {
            ++component_;
        }
        utf8.remove_prefix(end + 1);
    }
}

// Between values; between the groups of a name, too. The "^" inside of these is kept.
bool TextValues::IsDelimiter(char c) const { return c == '\\' || (c == '=' && valueRep_ == VR_PN); }

void TextValues::End() {
    EndComponent();
    EndValue(true);
    if (isArrayOpen_) output_.EndArray();
}

// Of a value, or of a component of one, between delimiters.
void TextValues::PutPart(std::string_view text) {
    if (HoldsBackNumber(text) || component_ >= kComponents.size()) return;
    const size_t end = text.find_last_not_of(kPadding) + 1;
    if (end > 0) {
        PutContent(heldBack_);
        PutContent(text.substr(0, end));
        heldBack_.clear();
    }
    heldBack_ += text.substr(end);
    if (heldBack_.size() < kMaxHeldBack) return;
    PutContent(heldBack_);
    heldBack_.clear();
}

// Whether the text was added to what may be a number. When that has become too long it is put in
// front of the text's content.
bool TextValues::HoldsBackNumber(std::string_view& text) {
    if (!IsNumber(valueRep_) || isStringOpen_ || !heldBack_.empty()) return false;
    if (number_.size() + text.size() <= kMaxNumber) {
        number_ += text;
        return true;
    }
    // What is held back counts as content from here on, blanks included.
    PutContent(number_);
    number_.clear();
    return false;
}

void TextValues::PutContent(std::string_view text) {
    if (text.empty()) return;
    OpenString();
    output_.StringPiece(text);
}

void TextValues::OpenArray() {
    if (isArrayOpen_) return;
    output_.StartValues();
    isArrayOpen_ = true;
}

void TextValues::OpenString() {
    if (isStringOpen_) return;
    OpenArray();
    if (valueRep_ == VR_PN) {
        if (!hasContent_) output_.StartObject();
        output_.Key(kComponents[component_]);
    }
    output_.BeginString();
    isStringOpen_ = hasContent_ = true;
}

void TextValues::EndComponent() {
    if (isStringOpen_) output_.EndString();
    isStringOpen_ = false;
    heldBack_.clear();
}

void TextValues::EndValue(bool isLast) {
    const bool isWritten = hasContent_ || WriteNumber();
    if (hasContent_ && valueRep_ == VR_PN) output_.EndObject();
    // One of several values, then: a value alone that is empty is none.
    if (!isWritten && (isArrayOpen_ || !isLast)) {
        OpenArray();
        output_.Null();
    }
    hasContent_ = false;
    component_ = 0;
}

// False when there is nothing but padding.
bool TextValues::WriteNumber() {
    const std::string_view text =
        std::string_view(number_).substr(0, number_.find_last_not_of(kPadding) + 1);
    const std::string_view digits = TrimBlanks(text);
    if (digits.empty()) {
        number_.clear();
        return false;
    }
    OpenArray();
    const auto number = valueRep_ == VR_IS ? JsonNumberOfIS(digits) : JsonNumberOfDS(digits);
    if (number) {
        output_.Number(number->View());
    } else {
        output_.String(text);
    }
    number_.clear();
    return true;
}

}  // namespace pgkit
