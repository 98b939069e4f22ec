// The members of one element: its VR, and its value in the form that the VR has.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "json/json_output.h"
#include "json/text_values.h"
#include "json/value_pieces.h"
#include "pgkit/node.h"
#include "text/text_decoder.h"

namespace pgkit {

// The VR that an element has in JSON. isSigned: what "US or SS" is in its data set.
uint32_t JsonVrOf(const PGX_Node& element, bool isSigned);

// Whether the standard lets the value of a VR be somewhere else.
bool MayBeBulk(uint32_t valueRep);

class ElementWriter {
  public:
    // What writes throws std::bad_alloc.
    explicit ElementWriter(JsonOutput& output);

    // The members "Value" or "InlineBinary" of an element that is no sequence, if it has a value.
    // characterSet is the element (0008,0005) that holds for it, or null.
    void WriteValue(const PGX_Node& element, uint32_t valueRep, PGX_Node* characterSet);

    // Whether an element's text is more than ASCII.
    bool NeedsCharacterSet(const PGX_Node& element, uint32_t valueRep);

  private:
    ValuePieces PiecesOf(const PGX_Node& element);
    void NewPiece();
    void WriteText(const PGX_Node& element, uint32_t valueRep, PGX_Node* characterSet);
    void DecodeText(const ValuePieces& pieces, size_t offset, size_t length, const TextRules& rules,
                    PGX_Node* characterSet);
    TextDecoder& DecoderFor(PGX_Node* characterSet);
    void WriteBinary(const PGX_Node& element, uint32_t valueRep);
    template <typename Number, typename Write>
    void WriteNumbers(const PGX_Node& element, Write write);
    void WriteNumbers(const PGX_Node& element, uint32_t valueRep);
    template <typename Integer>
    void WriteIntegers(const PGX_Node& element);
    template <typename Float>
    void WriteFloats(const PGX_Node& element);
    void WriteTags(const PGX_Node& element);

    JsonOutput& output_;
    TextValues texts_;
    // For values that cannot be used where they are; made when the first one comes.
    std::unique_ptr<uint8_t[]> piece_;  // kValuePiece
    std::unique_ptr<char[]> utf8_;      // what a piece of text can become
    std::optional<TextDecoder> decoder_;
    PGX_Node* decodersSet_ = nullptr;
};

}  // namespace pgkit
