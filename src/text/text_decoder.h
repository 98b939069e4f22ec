// Text of a data set to UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/set_converter.h"
#include "text/specific_character_set.h"
#include "text/text_rules.h"
#include "text/utf8_output.h"

namespace pgkit {

// What becomes of a character, or an escape sequence, that the end of the text cuts in two.
enum class CutEnd { Replace, Drop };

// The text without the blanks and NULs that fill it up at its end.
std::string_view WithoutPadding(std::string_view text);

// Whether the bytes are UTF-8 as they stand in every character set: ASCII without escapes.
bool IsPlainText(std::string_view text);

// Decodes texts of one character set, each as a whole or piece by piece, so that a text may be
// longer than memory.
//
//     decoder.Begin(rules, cutEnd, isUtf8);
//     while (there is a piece) taken = decoder.Decode(piece, isLast, output);
//
// Every byte sequence gives some text.
class TextDecoder {
  public:
    // The attribute is that of (0008,0005).
    explicit TextDecoder(std::string_view attribute) : sets_(attribute) {}

    // Whether bytes above 7F in a text of these rules, for which no set is designated, have to be
    // judged by the whole text: files that say nothing are in UTF-8 nowadays, and in Latin-1 before
    // that.
    bool DependsOnUtf8(const TextRules& rules) const;

    // isUtf8 says whether the whole text is valid UTF-8; it counts only where DependsOnUtf8. The
    // rules must outlive the text.
    void Begin(const TextRules& rules, CutEnd cutEnd, bool isUtf8);

    // Decodes the piece that comes next and returns how many bytes of it were taken: all of the
    // last one, and of others all but a few that may be the beginning of something. Those come
    // again, in front of the next piece. A piece of at least kMaxHeldBack + 1 bytes is never
    // refused.
    size_t Decode(std::string_view piece, bool isLast, Utf8Output& output);
    static constexpr size_t kMaxHeldBack = 7;

  private:
    void TakeAscii(Utf8Output& output);
    void TakeCharacter(const CodedSet& set, Utf8Output& output);
    void TakeEscape(Utf8Output& output);
    void TakeWithExtensions(Utf8Output& output);
    void Replace(bool isCutShort, Utf8Output& output);

    SpecificCharacterSet sets_;
    SetConverter converter_;
    // Of the present text.
    const TextRules* rules_ = nullptr;
    CutEnd cutEnd_ = CutEnd::Replace;
    const CodedSet* initialG1_ = nullptr;
    const CodedSet* g0_ = nullptr;
    const CodedSet* g1_ = nullptr;
    std::string_view rest_;  // of the present piece
};

// A whole text.
void DecodeText(std::string_view attribute, const TextRules& rules, std::string_view text,
                CutEnd cutEnd, Utf8Output& output);

}  // namespace pgkit
