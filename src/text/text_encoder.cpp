#include "text/text_encoder.h"

#include "base/utf8.h"
#include "text/set_converter.h"
#include "text/specific_character_set.h"

namespace pgkit {

namespace {

constexpr bool IsControl(char32_t character) { return character < ' '; }

// Encodes with one set for all characters, without escapes.
class PlainEncoder {
  public:
    // No set: ASCII.
    PlainEncoder(const CodedSet* set, std::string& result) : set_(set), result_(result) {}

    bool Put(char32_t character) {
        if (character < 0x80) {
            result_.push_back(static_cast<char>(character));
            return true;
        }
        char unit[kMaxUnitSize];
        const size_t size = set_ == nullptr ? 0 : converter_.Encode(*set_, character, unit);
        result_.append(unit, size);
        return size != 0;
    }

    void Finish() {}

  private:
    const CodedSet* set_;
    std::string& result_;
    SetConverter converter_;
};

// Encodes with code extensions. A text consists of segments with a delimiter or control character
// behind each: between them, and at the end, the initial sets are active.
//
// Sets are changed as late as possible, with one exception: the first change of G1 in a segment
// stands at the segment's beginning, in front of its ASCII characters. So the standard's examples
// have it, and readers that convert a run between two escapes as a whole get all of it. For them,
// too, characters of G1 are written only while G0 is back to single bytes.
class ExtendedEncoder {
  public:
    ExtendedEncoder(const SpecificCharacterSet& sets, const TextRules& rules, std::string& result)
        : sets_(sets),
          rules_(rules),
          result_(result),
          segment_(result.size()),
          g0_(&sets.InitialG0()),
          g1_(sets.InitialG1()) {}

    bool Put(char32_t character) {
        if (character == static_cast<char32_t>(kEscape)) return false;
        if (character < 0x80) {
            PutAscii(static_cast<char>(character));
            return true;
        }
        // What is active already needs no escape; of the others the first one holds.
        if (g1_ != nullptr && PutIn(*g1_, character)) return true;
        if (g0_->shape != UnitShape::Ascii && PutIn(*g0_, character)) return true;
        for (const CodedSet* set : sets_.Declared()) {
            if (PutIn(*set, character)) return true;
        }
        return false;
    }

    void Finish() {
        RestoreG0();
        if (sets_.InitialG1() != nullptr && g1_ != sets_.InitialG1()) {
            result_ += sets_.InitialG1()->designation;
        }
    }

  private:
    void PutAscii(char c) {
        const bool endsSegment = IsControl(static_cast<unsigned char>(c)) || IsDelimiter(rules_, c);
        if (!endsSegment) {
            RestoreG0();
            result_.push_back(c);
            return;
        }
        Finish();
        result_.push_back(c);
        g1_ = sets_.InitialG1();
        segment_ = result_.size();
        hasG1_ = false;
    }

    // False when the set lacks the character.
    bool PutIn(const CodedSet& set, char32_t character) {
        char unit[kMaxUnitSize];
        const size_t size = converter_.Encode(set, character, unit);
        if (size == 0) return false;
        if (set.element == CodeElement::G1) {
            RestoreG0();
            DesignateG1(set);
            hasG1_ = true;
        } else if (g0_ != &set) {
            result_ += set.designation;
            g0_ = &set;
        }
        result_.append(unit, size);
        return true;
    }

    void DesignateG1(const CodedSet& set) {
        if (g1_ == &set) return;
        result_.insert(hasG1_ ? result_.size() : segment_, set.designation);
        g1_ = &set;
    }

    void RestoreG0() {
        if (g0_ == &sets_.InitialG0()) return;
        g0_ = &sets_.InitialG0();
        result_ += g0_->designation;
    }

    const SpecificCharacterSet& sets_;
    const TextRules& rules_;
    std::string& result_;
    size_t segment_;  // where the present one begins
    const CodedSet* g0_;
    const CodedSet* g1_;  // null while nothing is designated
    bool hasG1_ = false;  // in the present segment
    SetConverter converter_;
};

template <typename Encoder>
EncodeResult EncodeAll(Encoder encoder, std::string_view utf8) {
    while (!utf8.empty()) {
        const Utf8Character first = FirstUtf8Character(utf8);
        if (!first.isValid) return EncodeResult::InvalidUtf8;
        if (!encoder.Put(first.character)) return EncodeResult::NotExpressible;
        utf8.remove_prefix(first.size);
    }
    encoder.Finish();
    return EncodeResult::Done;
}

}  // namespace

EncodeResult EncodeText(std::string_view attribute, const TextRules& rules, std::string_view utf8,
                        std::string& result) {
    if (!rules.usesCharacterSet) return EncodeAll(PlainEncoder(nullptr, result), utf8);
    const SpecificCharacterSet sets(attribute);
    if (sets.Alone() != nullptr) return EncodeAll(PlainEncoder(sets.Alone(), result), utf8);
    return EncodeAll(ExtendedEncoder(sets, rules, result), utf8);
}

}  // namespace pgkit
