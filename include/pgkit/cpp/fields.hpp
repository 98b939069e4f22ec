// pgkit, the C++ layer (data_set.hpp): the fields of the library's objects that it reads.
//
// Everything else goes through flat functions. For these few things there is none; the layout of
// the classes is part of the interface (node.h, list.h, directory_records.h) and the same to every
// compiler, so nothing but this file is needed to read them. No member is called.
#ifndef PGKIT_CPP_FIELDS_HPP
#define PGKIT_CPP_FIELDS_HPP

#include <cstddef>
#include <cstdint>

#include "pgkit/accessors.h"
#include "pgkit/directory_records.h"
#include "pgkit/list.h"
#include "pgkit/node.h"
#include "pgkit/value_representation.h"

namespace pgkit {
inline namespace v1 {
namespace detail {

// The bytes of a value that is in memory, else null; and whether they are big endian.
inline const std::uint8_t* loaded_value(const PGX_Node* node) noexcept { return node->value; }
inline bool is_big_endian(const PGX_Node* node) noexcept { return node->endian == ET_BigEndian; }

// A value that this can be said of is still in the file that the tree was read from.
inline bool is_in_file(const PGX_Node* node) noexcept {
    return node->value == nullptr && node->file != nullptr;
}
inline std::uint32_t position_in_file(const PGX_Node* node) noexcept { return node->fileOffset; }

// False for a data set that was built in memory, which has no encoding yet.
inline bool was_read(const PGX_Node* root) noexcept { return root->syntaxFlags != 0xFFFFFFFF; }

// Bytes of the file that a node was read from. pgKitGetFileData wants a data set: one that has
// nothing but that file does.
inline bool read_file(const PGX_Node* node, std::uint32_t position, void* buffer,
                      std::uint32_t size) noexcept {
    if (node->file == nullptr) return false;
    PGX_Node* const reader = pgKitAllocEmptyNode();
    if (reader == nullptr) return false;
    reader->file = node->file;
    const bool is_read = pgKitGetFileData(reader, buffer, position, size) == 1;
    pgFreeNode(reader);  // which does not own the file
    return is_read;
}

// The cells of a list, which pgKitListGetElementAt would count from the head each time.
inline const PGX_ListElement* first_cell(const PGX_List* list) noexcept {
    return list == nullptr ? nullptr : list->head;
}

// The character sets of the records of a hierarchy.
inline const char* character_set_of(const PGX_DicomDirPatientNode* patient) noexcept {
    return patient->specificCharacterSet;
}
inline const char* character_set_of(const PGX_DicomDirStudyNode* study) noexcept {
    return study->specificCharacterSet;
}
inline const char* character_set_of(const PGX_DicomDirSeriesNode* series) noexcept {
    return series->specificCharacterSet;
}
inline const char* character_set_of(const PGX_DicomDirLeafNode* leaf) noexcept {
    return leaf->specificCharacterSet;
}

}  // namespace detail
}  // namespace v1
}  // namespace pgkit

#endif
