// The content of a "Value" array before its VR, which may follow it, says what to make of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pgkit {

// A buffer of values that grew beyond this goes back at once: values of this size are rare.
inline constexpr size_t kKeptCapacity = 0x10000;

enum class JsonKind : uint8_t {
    Null,
    String,
    Number,
    Name,        // the groups of a name, joined
    Item,        // a data set, kept elsewhere
    EmptyObject  // an item or a name without any
};

class JsonValues {
  public:
    struct Value {
        JsonKind kind;
        uint64_t offset;  // in the JSON
        std::string_view text;
    };

    void Clear();

    // Throws std::bad_alloc.
    void Add(JsonKind kind, uint64_t offset, std::string_view text = {});

    size_t Count() const { return entries_.size(); }
    // Valid until something is added.
    Value operator[](size_t index) const;

  private:
    struct Entry {
        uint64_t kind : 8;
        uint64_t offset : 56;
        size_t end;  // of its text in all of the texts
    };

    std::vector<Entry> entries_;
    std::string texts_;
};

}  // namespace pgkit
