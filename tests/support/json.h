// Data sets to and from JSON, as tests want them.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/json.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "support/stream_builder.h"
#include "support/tree.h"

namespace pgkit_test {

inline constexpr PgxJsonWriteOptions kInline = PGX_JSON_WRITE_OPTIONS;

// The JSON of a data set; "error N" when there is none.
inline std::string JsonOf(PGX_Node* dataSet, const PgxJsonWriteOptions& options = kInline) {
    const int64_t length = pgxGetJson(dataSet, &options, nullptr, 0);
    if (length < 0) return "error " + std::to_string(length);
    std::string json(static_cast<size_t>(length) + 1, '\0');
    EXPECT_EQ(pgxGetJson(dataSet, &options, json.data(), json.size()), length);
    json.pop_back();
    return json;
}

// Of a composed file.
inline std::string JsonOf(const StreamBuilder& stream,
                          const PgxJsonWriteOptions& options = kInline) {
    return JsonOf(OpenedStream(stream).Root(), options);
}

// A file of one element in explicit VR little endian.
inline StreamBuilder OneElement(uint16_t group, uint16_t element, std::string_view vr,
                                std::string_view value) {
    return StreamBuilder().Part10("1.2.840.10008.1.2.1").Element(group, element, vr, value);
}

// What stands in the JSON of an element behind its VR, without the closing brace: ",\"Value\":[1]".
// The tag is one that has no meaning for the writer.
inline std::string ValueJson(std::string_view vr, std::string_view value) {
    const std::string json = JsonOf(OneElement(0x0009, 0x1001, vr, value));
    const std::string head = "{\"00091001\":{\"vr\":\"" + std::string(vr) + "\"";
    EXPECT_TRUE(json.starts_with(head) && json.ends_with("}}")) << json;
    return json.substr(head.size(), json.size() - head.size() - 2);
}

// What a parse came to: the tree, or where it failed.
struct Parsed {
    DataSet dataSet;
    PgxJsonPlace place{};

    PGX_Node* operator->() const { return dataSet.get(); }
    // "" when nothing failed; else "error at path".
    std::string Failure() const {
        char text[100];
        pgxJsonErrorText(place.error, text, sizeof text);
        const std::string path = place.path;
        return std::string(text) + (path.empty() ? "" : " at " + path);
    }
};

inline Parsed ParseJson(std::string_view json, const PgxJsonReadOptions* options = nullptr) {
    Parsed parsed;
    parsed.place.size = sizeof parsed.place;
    parsed.dataSet.reset(pgxParseJson(json.data(), json.size(), options, &parsed.place));
    EXPECT_EQ(parsed.dataSet == nullptr, parsed.place.error != 0);
    return parsed;
}

// The JSON of what was read from JSON; how it failed otherwise.
inline std::string Rewritten(std::string_view json) {
    const Parsed parsed = ParseJson(json);
    return parsed.dataSet == nullptr ? parsed.Failure() : JsonOf(parsed.dataSet.get());
}

// The value of (0009,1001) of a VR after reading it from this JSON, the members behind the VR.
inline std::string ValueFromJson(std::string_view vr, std::string_view members) {
    const std::string json =
        R"({"00091001":{"vr":")" + std::string(vr) + "\"," + std::string(members) + "}}";
    const Parsed parsed = ParseJson(json);
    if (parsed.dataSet == nullptr) return parsed.Failure();
    PGX_Node* const element = Child(parsed.dataSet.get(), 0x0009, 0x1001);
    std::string value(element->length + 1, '\0');
    element->GetValue(value.data());
    value.pop_back();
    return value;
}

}  // namespace pgkit_test
