// What every accessor does with its handle: a null one has no effect and gives zero, and so does a
// leaf of another kind than the owner of a field; any other is followed. Results that differ from
// that are told where they occur.
#pragma once

#include <type_traits>

#include "base/firewall.h"
#include "pgkit/directory_records.h"

namespace pgkit {

// The kind of the leaves of a class.
template <typename Leaf>
inline constexpr PgLeafType kLeafTypeOf = PG_LEAF_OTHER;
template <>
inline constexpr PgLeafType kLeafTypeOf<PGX_DicomDirImageNode> = PG_LEAF_IMAGE;
template <>
inline constexpr PgLeafType kLeafTypeOf<PGX_DicomDirReportNode> = PG_LEAF_REPORT;
template <>
inline constexpr PgLeafType kLeafTypeOf<PGX_DicomDirKeyObjectNode> = PG_LEAF_KEY_OBJECT;
template <>
inline constexpr PgLeafType kLeafTypeOf<PGX_DicomDirPresentationNode> = PG_LEAF_PRESENTATION;
template <>
inline constexpr PgLeafType kLeafTypeOf<PGX_DicomDirWaveformNode> = PG_LEAF_WAVEFORM;
template <>
inline constexpr PgLeafType kLeafTypeOf<PGX_DicomDirRawDataNode> = PG_LEAF_RAW_DATA;

// The object behind a handle, which may be that of a base class: null for a null handle and for a
// leaf of another kind.
template <typename Object, typename Handle>
Object* ObjectOf(Handle* handle) noexcept {
    if constexpr (std::is_same_v<Object, Handle>) {
        return handle;
    } else {
        static_assert(kLeafTypeOf<Object> != PG_LEAF_OTHER);
        const bool isOne = handle != nullptr && handle->leafType == kLeafTypeOf<Object>;
        return isOne ? static_cast<Object*>(handle) : nullptr;
    }
}

template <typename Handle, typename Object, typename Value>
Value FieldOf(Handle* handle, Value Object::*field) noexcept {
    const Object* const object = ObjectOf<Object>(handle);
    return object == nullptr ? Value{} : object->*field;
}

// An object seen as the list of its children.
template <typename Object>
PGX_List* ListOf(Object* object, PGX_List Object::*list) noexcept {
    return object == nullptr ? nullptr : &(object->*list);
}

template <typename Object, typename Value>
void SetField(Object* object, Value Object::*field, Value value) noexcept {
    if (object != nullptr) object->*field = value;
}

// The result of a member that has no overloads.
template <typename Object, typename Result, typename... Parameters>
Result CallOn(Object* object, Result (Object::*member)(Parameters...),
              std::type_identity_t<Parameters>... arguments) noexcept {
    return Guarded([&] { return object == nullptr ? Result() : (object->*member)(arguments...); });
}

}  // namespace pgkit
