// What JSON says of a value becomes the value of an element.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dataset/node_memory.h"
#include "json/base64.h"
#include "json/json_values.h"
#include "pgkit/node.h"

namespace pgkit {

// Why a value cannot be built, and where in the JSON.
struct [[nodiscard]] JsonFault {
    int32_t error;  // 0 or a PgxJsonError
    uint64_t offset;
};

// Whether values of the VR stand in JSON as base64 alone.
bool IsInlineBinary(uint32_t valueRep);
// Whether they may: the numbers, too.
bool MayBeInlineBinary(uint32_t valueRep);

class ValueBuilder {
  public:
    // Stores the values, which are none of a sequence, in an element whose VR is set. needsUtf8
    // becomes true when a text of the data set's character set is more than ASCII. Throws
    // std::bad_alloc.
    JsonFault Store(const JsonValues& values, PGX_Node& element, bool& needsUtf8);

  private:
    JsonFault StoreTexts(const JsonValues& values, PGX_Node& element, bool& needsUtf8);
    JsonFault StoreNumbers(const JsonValues& values, PGX_Node& element);
    int32_t AppendNumber(const JsonValues::Value& value, uint32_t valueRep);
    template <typename Number>
    void AppendBytes(Number number);

    std::string bytes_;
};

// A value that comes in base64, in pieces.
class BinaryValue {
  public:
    void Clear();

    // 0 or a PgxJsonError. Throws std::bad_alloc.
    int32_t Append(std::string_view characters);
    // Whether what came is complete.
    bool IsComplete() const { return decoder_.IsComplete(); }
    size_t Size() const { return size_; }

    // Gives the value, made even with a zero, to an element.
    void MoveTo(PGX_Node& element);

  private:
    void Resize(size_t capacity);

    Base64Decoder decoder_;
    ValueBuffer bytes_;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

}  // namespace pgkit
