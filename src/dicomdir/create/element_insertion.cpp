#include "dicomdir/create/element_insertion.h"

#include <new>

namespace pgkit {

void PutBytes(PGX_Node& dataSet, uint16_t group, uint16_t element, const void* data,
              uint32_t size) {
    if (dataSet.InsertNode(group, element, data, size) == nullptr) throw std::bad_alloc();
}

void PutText(PGX_Node& dataSet, uint16_t group, uint16_t element, std::string_view text) {
    PutBytes(dataSet, group, element, text.data(), static_cast<uint32_t>(text.size()));
}

}  // namespace pgkit
