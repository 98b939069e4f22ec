#include "dicomdir/elements.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace pgkit {

void ReadText(PGX_Node& dataSet, Tag tag, std::span<char> field, const char* absent,
              size_t longest) {
    longest = std::min(longest, field.size() - 1);
    if (PGX_Node* const element = FindElement(dataSet, tag)) {
        element->GetStringValue(field.data(), static_cast<int32_t>(longest));
    } else {
        CopyBounded(field.data(), longest + 1, absent);
    }
}

void TrimField(std::span<char> field) {
    const std::string_view trimmed = TrimBlanks(field.data());
    if (!trimmed.empty()) std::memmove(field.data(), trimmed.data(), trimmed.size());
    field[trimmed.size()] = '\0';
}

int32_t ReadInteger(PGX_Node& dataSet, Tag tag, int32_t absent) {
    PGX_Node* const element = FindElement(dataSet, tag);
    return element == nullptr ? absent : element->GetDSIntValue();
}

uint16_t ReadUnsignedShort(PGX_Node& dataSet, Tag tag, uint16_t absent) {
    PGX_Node* const element = FindElement(dataSet, tag);
    return element == nullptr ? absent : element->GetUSValue();
}

void PutBytes(PGX_Node& dataSet, Tag tag, const void* data, uint32_t size) {
    if (dataSet.InsertNode(tag.group, tag.element, data, size) == nullptr) throw std::bad_alloc();
}

void PutText(PGX_Node& dataSet, Tag tag, std::string_view text) {
    PutBytes(dataSet, tag, text.data(), static_cast<uint32_t>(text.size()));
}

}  // namespace pgkit
