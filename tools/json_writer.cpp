#include "json_writer.h"

#include <string>

namespace pgtool {

void JsonWriter::BeginArray() {
    BeginValue();
    Write("[");
    needsComma_ = false;
}

void JsonWriter::EndArray() {
    Write("]");
    needsComma_ = true;
}

void JsonWriter::BeginObject() {
    BeginValue();
    Write("{");
    needsComma_ = false;
}

void JsonWriter::EndObject() {
    Write("}\n");
    needsComma_ = true;
}

void JsonWriter::Key(std::string_view key) {
    BeginValue();
    WriteQuoted(key);
    Write(":");
    needsComma_ = false;
}

void JsonWriter::Text(std::string_view utf8) {
    BeginValue();
    WriteQuoted(utf8);
}

void JsonWriter::Number(int64_t number) {
    BeginValue();
    Write(std::to_string(number));
}

void JsonWriter::Boolean(bool value) {
    BeginValue();
    Write(value ? "true" : "false");
}

void JsonWriter::Text(std::string_view key, std::string_view utf8) {
    Key(key);
    Text(utf8);
}

void JsonWriter::Number(std::string_view key, int64_t number) {
    Key(key);
    Number(number);
}

void JsonWriter::Boolean(std::string_view key, bool value) {
    Key(key);
    Boolean(value);
}

void JsonWriter::BeginValue() {
    if (needsComma_) Write(",");
    needsComma_ = true;
}

void JsonWriter::Write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stream_); }

void JsonWriter::WriteQuoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            quoted += escape;
        } else {
            if (c == '"' || c == '\\') quoted += '\\';
            quoted += c;
        }
    }
    Write(quoted + "\"");
}

}  // namespace pgtool
