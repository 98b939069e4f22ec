#include "json/json_values.h"

namespace pgkit {

namespace {

template <typename Container>
void Empty(Container& container) {
    if (container.capacity() > kKeptCapacity) Container().swap(container);
    container.clear();
}

}  // namespace

void JsonValues::Clear() {
    Empty(entries_);
    Empty(texts_);
}

void JsonValues::Add(JsonKind kind, uint64_t offset, std::string_view text) {
    texts_ += text;
    Entry entry{};
    entry.kind = static_cast<uint8_t>(kind);
    entry.offset = offset & ((uint64_t{1} << 56) - 1);
    entry.end = texts_.size();
    entries_.push_back(entry);
}

JsonValues::Value JsonValues::operator[](size_t index) const {
    const size_t begin = index == 0 ? 0 : entries_[index - 1].end;
    const Entry& entry = entries_[index];
    return {static_cast<JsonKind>(entry.kind), entry.offset,
            std::string_view(texts_).substr(begin, entry.end - begin)};
}

}  // namespace pgkit
