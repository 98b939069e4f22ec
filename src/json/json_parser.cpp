#include "json/json_parser.h"

#include <rapidjson/reader.h>

#include "json/json_stream.h"
#include "json/throwing_allocator.h"

namespace pgkit {

namespace {

// Turns what RapidJSON calls into events.
class Handler {
  public:
    Handler(JsonStream& stream, JsonEvents& events) : stream_(stream), events_(events) {}

    bool Null() { return Here().Null(); }
    bool Bool(bool) { return Here().Bool(); }
    bool RawNumber(const char* digits, rapidjson::SizeType length, bool) {
        return Here().Number({digits, length});
    }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        return Here().String({text, length});
    }
    bool StartObject() { return Here().StartObject(); }
    bool EndObject(rapidjson::SizeType) { return Here().EndObject(); }
    bool StartArray() { return Here().StartArray(); }
    bool EndArray(rapidjson::SizeType) { return Here().EndArray(); }

    bool Key(const char* name, rapidjson::SizeType length, bool) {
        switch (Here().Key({name, length})) {
            case JsonMember::Refused:
                return false;
            case JsonMember::Parsed:
                return true;
            case JsonMember::Base64:
                break;
        }
        return stream_.DivertString([this](std::string_view part) { return Here().Base64(part); });
    }

    // Numbers come as they are spelt.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(int64_t) { return false; }
    bool Uint64(uint64_t) { return false; }
    bool Double(double) { return false; }

  private:
    JsonEvents& Here() {
        events_.offset = stream_.Position();
        return events_;
    }

    JsonStream& stream_;
    JsonEvents& events_;
};

int32_t ErrorOf(rapidjson::ParseErrorCode code) {
    switch (code) {
        case rapidjson::kParseErrorNumberTooBig:
            return PGX_JSON_OUT_OF_RANGE;
        case rapidjson::kParseErrorStringInvalidEncoding:
        case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
            return PGX_JSON_NOT_UTF8;
        default:
            return PGX_JSON_SYNTAX;
    }
}

}  // namespace

JsonOutcome ParseJson(const JsonSource& source, JsonEvents& events) {
    constexpr unsigned kFlags = rapidjson::kParseIterativeFlag |
                                rapidjson::kParseValidateEncodingFlag |
                                rapidjson::kParseNumbersAsStringsFlag;
    constexpr size_t kStackCapacity = 1024;
    JsonStream stream(source);
    Handler handler(stream, events);
    ThrowingAllocator allocator;
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator> reader(
        &allocator, kStackCapacity);
    const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, handler);
    if (result.Code() == rapidjson::kParseErrorTermination) return {true, 0, stream.Position()};
    if (stream.Error() != 0) return {false, stream.Error(), stream.Position()};
    if (result.IsError()) return {false, ErrorOf(result.Code()), result.Offset()};
    // A NUL looks like the end.
    const int32_t error = stream.IsAtEnd() ? 0 : PGX_JSON_SYNTAX;
    return {false, error, stream.Position()};
}

}  // namespace pgkit
