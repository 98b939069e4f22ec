// Writes one JSON text to a stream, value by value. The caller keeps the order: in an object every
// value follows its key.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace pgtool {

class JsonWriter {
  public:
    explicit JsonWriter(std::FILE* stream) : stream_(stream) {}

    void BeginArray();
    void EndArray();
    void BeginObject();
    void EndObject();  // and the line

    void Key(std::string_view key);
    void Text(std::string_view utf8);  // must be well-formed
    void Number(int64_t number);
    void Boolean(bool value);

    // A member of an object: a key with its value.
    void Text(std::string_view key, std::string_view utf8);
    void Number(std::string_view key, int64_t number);
    void Boolean(std::string_view key, bool value);

  private:
    void BeginValue();
    void Write(std::string_view text);
    void WriteQuoted(std::string_view text);

    std::FILE* stream_;
    bool needsComma_ = false;
};

}  // namespace pgtool
