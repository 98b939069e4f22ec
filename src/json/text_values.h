// The "Value" array of a text: what stands between its delimiters becomes strings, numbers or
// names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "json/json_output.h"

namespace pgkit {

// Takes the text in pieces of UTF-8, writes member and array when there is something to be in it,
// and holds back no more than blanks, which may be padding, and what may be a number.
class TextValues {
  public:
    explicit TextValues(JsonOutput& output) : output_(output) {}

    // The VR is one of texts.
    void Begin(uint32_t valueRep);
    void Put(std::string_view utf8);
    void End();

  private:
    bool IsDelimiter(char c) const;
    void PutPart(std::string_view text);
    void PutContent(std::string_view text);
    bool HoldsBackNumber(std::string_view& text);
    void OpenArray();
    void OpenString();
    void EndComponent();
    void EndValue(bool isLast);
    bool WriteNumber();

    JsonOutput& output_;
    uint32_t valueRep_ = 0;
    bool isSplit_ = false;  // at delimiters
    std::string heldBack_;  // blanks
    std::string number_;    // all of a value that may be one
    size_t component_ = 0;  // of a name
    bool isArrayOpen_ = false;
    bool isStringOpen_ = false;
    bool hasContent_ = false;  // of the present value
};

}  // namespace pgkit
