#include "codec/tree_builder.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "base/text.h"

namespace pgkit {

namespace {

// A value that the stream does not hold in full is loaded all the same, zeros at its end, up to
// this length. What exceeds it stays where it is: a declared length is not worth any memory.
constexpr uint32_t kAlwaysLoadable = 64 << 20;

}  // namespace

char* TreeBuilder::NewTagName(std::string_view name) {
    if (name.data() == unknownTagName) return unknownTagName;
    auto* cell = static_cast<char*>(memory_.Allocate(name.size() + 1));
    if (cell == nullptr) return NewText(name);
    CopyUnbounded(cell, name);
    return cell;
}

uint8_t* TreeBuilder::NewValue(uint32_t length) {
    auto* value = static_cast<uint8_t*>(memory_.Allocate(length));
    if (value == nullptr) value = NewUnfilledValueBuffer(length);
    if (value == nullptr) throw std::bad_alloc();
    return value;
}

// Of which no more memory is used than is written to.
uint8_t* TreeBuilder::NewZeroedValue(uint32_t length) {
    uint8_t* value = NewValueBuffer(length);
    if (value == nullptr) throw std::bad_alloc();
    return value;
}

void TreeBuilder::ReadValue(PGX_Node& element, uint32_t limit) {
    const uint32_t length = element.length;
    if (length == 0) return;
    const bool isWanted = length < limit || keepsEverything_;
    if (!isWanted) return reader_.Skip(length);
    if (length != kUndefinedLength && reader_.Holds(length)) {
        element.value = NewValue(length);
        const size_t available = reader_.Read(element.value, length);
        if (available == length) return;
        std::memset(element.value + available, 0, length - available);
        return reader_.Skip(length - available);
    }
    if (length <= kAlwaysLoadable || keepsEverything_) return LoadInPart(element);
    reader_.Skip(length);
}

// A long length that nothing else could bear out later is made the true one.
void TreeBuilder::LoadInPart(PGX_Node& element) {
    const uint64_t end = reader_.Position() + element.length;
    const auto available =
        static_cast<uint32_t>(std::min<uint64_t>(reader_.Remaining(), kUndefinedLength - 1));
    if (element.length > kAlwaysLoadable) element.length = available;
    if (element.length > 0) {
        element.value = NewZeroedValue(element.length);
        reader_.Read(element.value, std::min(available, element.length));
    }
    reader_.Seek(end);
}

}  // namespace pgkit
