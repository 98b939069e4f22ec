// JSON as a series of events. Nothing of the JSON library is seen here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "pgkit/json.h"

namespace pgkit {

// Where the JSON comes from: memory, or a function, which counts when it is not null.
struct JsonSource {
    std::string_view text;
    PgxReadFunction read = nullptr;
    void* context = nullptr;
    uint64_t sizeLimit = UINT64_MAX;
};

// What becomes of the value of a member.
enum class JsonMember {
    Refused,  // the parse ends
    Parsed,   // it comes as events
    Base64    // if it is a string, it comes in pieces to Base64, and as an empty string then
};

// What happens, in the order of the text. All but Key answer whether the parse goes on. Texts are
// valid UTF-8 and last until the function returns.
class JsonEvents {
  public:
    virtual ~JsonEvents() = default;

    virtual bool StartObject() = 0;
    virtual JsonMember Key(std::string_view name) = 0;
    virtual bool EndObject() = 0;
    virtual bool StartArray() = 0;
    virtual bool EndArray() = 0;
    virtual bool Null() = 0;
    virtual bool Bool() = 0;
    // As the text spells it, within the range of doubles.
    virtual bool Number(std::string_view digits) = 0;
    virtual bool String(std::string_view text) = 0;
    virtual bool Base64(std::string_view characters) = 0;

    // Behind what the event is about, in bytes from the beginning.
    uint64_t offset = 0;
};

struct JsonOutcome {
    bool wasStopped;  // by an event
    int32_t error;    // 0 or a PgxJsonError
    uint64_t offset;
};

// Memory is needed for the longest single string or number, and for the depth, which the events
// have to bound. Throws std::bad_alloc.
JsonOutcome ParseJson(const JsonSource& source, JsonEvents& events);

}  // namespace pgkit
