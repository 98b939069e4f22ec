// Keys: elements of records and instances that are fields of hierarchy objects. What there is to
// know of one is a row. Every level has a table of its keys, and every way of a key goes through
// it: from a record and from an instance into the object, and from the object into a record.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "dicomdir/elements.h"
#include "pgkit/directory_records.h"

namespace pgkit {

using Patient = PGX_DicomDirPatientNode;
using Study = PGX_DicomDirStudyNode;
using Series = PGX_DicomDirSeriesNode;
using Leaf = PGX_DicomDirLeafNode;

// Where blanks at both ends are no part of a text.
enum class Trimmed : uint8_t { Never, InRecords, Always };

// The ways that a key goes, as bits.
enum KeyWays : uint8_t {
    kFromRecord = 1,
    kFromInstance = 2,
    kIntoRecord = 4,
    kFromBoth = kFromRecord | kFromInstance,
    kEveryWay = kFromBoth | kIntoRecord
};

template <typename Object>
struct TextKey {
    Tag tag;
    std::span<char> (*field)(Object& object);
    Trimmed trimmed = Trimmed::Never;
    KeyWays ways = kEveryWay;
    // What the object has of a record, or an instance, without the element.
    const char* absentInRecord = "";
    const char* absentInInstance = "";
    size_t longestInRecord = SIZE_MAX;
};

// Numbers are keys of leaves alone.
struct NumberKey {
    enum class Form : uint8_t { Text, UnsignedShort };

    Tag tag;
    int32_t& (*field)(Leaf& leaf);
    Form form;
    int32_t absent = 0;
};

// So are sequences, of which an object has copies.
struct SequenceKey {
    Tag tag;
    PGX_Node*& (*field)(Leaf& leaf);
    bool (*wantsItemOfInstance)(PGX_Node& item) = nullptr;  // null: all of them
};

// ---- Fields -------------------------------------------------------------------------------------

template <auto Member>
struct MemberTraits;
template <typename OwnClass, typename FieldType, FieldType OwnClass::*Member>
struct MemberTraits<Member> {
    using Class = OwnClass;
    using Field = FieldType;
};

// A member of an object, as a function for the rows above. Of leaves it may be one of a class that
// the leaf is known to have.
template <auto Member, typename Object>
typename MemberTraits<Member>::Field& FieldOf(Object& object) {
    return static_cast<typename MemberTraits<Member>::Class&>(object).*Member;
}
template <auto Member, typename Object>
std::span<char> TextOf(Object& object) {
    return FieldOf<Member>(object);
}

// ---- Reading ------------------------------------------------------------------------------------

template <typename Object>
using TextKeysOf = std::span<const TextKey<std::type_identity_t<Object>>>;

template <typename Object>
void ReadRecordTexts(PGX_Node& record, TextKeysOf<Object> keys, Object& object) {
    for (const TextKey<Object>& key : keys) {
        if ((key.ways & kFromRecord) == 0) continue;
        const std::span<char> field = key.field(object);
        ReadText(record, key.tag, field, key.absentInRecord, key.longestInRecord);
        if (key.trimmed != Trimmed::Never) TrimField(field);
    }
}

template <typename Object>
void ReadInstanceTexts(PGX_Node& dataSet, TextKeysOf<Object> keys, Object& object) {
    for (const TextKey<Object>& key : keys) {
        if ((key.ways & kFromInstance) == 0) continue;
        const std::span<char> field = key.field(object);
        ReadText(dataSet, key.tag, field, key.absentInInstance);
        if (key.trimmed == Trimmed::Always) TrimField(field);
    }
}

// The numbers of records and instances are alike.
inline void ReadNumbers(PGX_Node& source, std::span<const NumberKey> keys, Leaf& leaf) {
    for (const NumberKey& key : keys) {
        key.field(leaf) = key.form == NumberKey::Form::Text
                              ? ReadInteger(source, key.tag, key.absent)
                              : ReadUnsignedShort(source, key.tag);
    }
}

}  // namespace pgkit
