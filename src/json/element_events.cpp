// The members of an element, and the groups of a name.
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "base/text.h"
#include "dictionary/current_table.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "json/ambiguous_vr.h"
#include "json/data_set_events.h"
#include "pgkit/dictionary.h"
#include "text/text_decoder.h"
#include "text/text_rules.h"

namespace pgkit {

namespace {

constexpr std::array<std::string_view, 3> kNameGroups = {"Alphabetic", "Ideographic", "Phonetic"};

// Eight hexadecimal digits; none for anything else.
std::optional<uint32_t> ParseTag(std::string_view name) {
    if (name.size() != 8) return std::nullopt;
    uint32_t tag = 0;
    for (const char c : name) {
        const char upper = ToUpper(c);
        const bool isDigit = c >= '0' && c <= '9';
        if (!isDigit && !(upper >= 'A' && upper <= 'F')) return std::nullopt;
        tag = tag << 4 | static_cast<uint32_t>(isDigit ? c - '0' : upper - 'A' + 10);
    }
    return tag;
}

constexpr uint16_t GroupOf(uint32_t tag) { return static_cast<uint16_t>(tag >> 16); }
constexpr uint16_t ElementOf(uint32_t tag) { return static_cast<uint16_t>(tag); }

// Those of today's standard whatever edition is used.
uint32_t VrOfTables(uint16_t group, uint16_t element) {
    const uint32_t valueRep = pgFindValueRepresentation(group, element);
    if (valueRep != VR_Unknown) return valueRep;
    const auto current = FindCurrentElement(group, element);
    return current ? current->valueRep : uint32_t{VR_Unknown};
}

bool HasNegative(const JsonValues& values) {
    for (size_t i = 0; i < values.Count(); ++i) {
        if (values[i].text.starts_with('-')) return true;
    }
    return false;
}

// Of a value that the caller supplied. What is in another file is not looked at.
bool MayNeedUtf8(const PGX_Node& element) {
    const TextRules* const rules = FindTextRules(element.valueRep);
    if (rules == nullptr || !rules->usesCharacterSet) return false;
    if (element.value == nullptr) return element.length != 0;
    return !IsPlainText({reinterpret_cast<const char*>(element.value), element.length});
}

}  // namespace

// ---- Elements -----------------------------------------------------------------------------------

bool DataSetEvents::BeginElement(std::string_view name) {
    const auto tag = ParseTag(name);
    if (!tag || !IsElementTag(GroupOf(*tag), ElementOf(*tag))) {
        Element().isOpen = false;
        return Fail(PGX_JSON_BAD_TAG);
    }
    Element().Open(GroupOf(*tag), ElementOf(*tag));
    if (!Current().NoteTag(GroupOf(*tag), ElementOf(*tag))) return Fail(PGX_JSON_DUPLICATE);
    state_ = State::Tag;
    return true;
}

JsonMember DataSetEvents::BeginMember(std::string_view name) {
    JsonElement& element = Element();
    bool goesOn = false;
    if (name == "vr") {
        goesOn = NoteMember(element.hasVr, State::Vr);
    } else if (name == "Value") {
        goesOn = NoteMember(element.hasValues, State::Value);
    } else if (name == "InlineBinary") {
        goesOn = NoteMember(element.hasBinary, State::InlineBinary);
    } else if (name == "BulkDataURI") {
        goesOn = NoteMember(element.hasUri, State::BulkDataUri);
    } else {
        Fail(PGX_JSON_UNKNOWN_MEMBER);
    }
    if (!goesOn) return JsonMember::Refused;
    if (element.hasValues + element.hasBinary + element.hasUri > 1) {
        Fail(PGX_JSON_SEVERAL_VALUES);
        return JsonMember::Refused;
    }
    return state_ == State::InlineBinary ? JsonMember::Base64 : JsonMember::Parsed;
}

bool DataSetEvents::NoteMember(bool& isThere, State next) {
    if (isThere) return Fail(PGX_JSON_DUPLICATE);
    isThere = true;
    state_ = next;
    return true;
}

bool DataSetEvents::EndElement() {
    state_ = State::DataSet;
    const auto valueRep = FindVr();
    if (!valueRep) return Fail(PGX_JSON_UNKNOWN_VR);
    const JsonElement& element = Element();
    NodeTree node(new PGX_Node(NT_DataElement, ET_LittleEndian, element.group, element.element,
                               static_cast<uint8_t>(*valueRep), 0));
    if (!StoreValue(*node)) return false;
    Element().isOpen = false;
    Current().Append(std::move(node));
    return true;
}

std::optional<uint32_t> DataSetEvents::FindVr() {
    const JsonElement& element = Element();
    if (element.hasVr) return element.valueRep;
    const uint32_t valueRep = VrOfTables(element.group, element.element);
    switch (valueRep) {
        case VR_USSS:
            return Current().IsSigned() || HasNegative(element.values) ? VR_SS : VR_US;
        case VR_OWOB:
            return OwOrOb(element.group);
        default:
            return valueRep < VrCount() ? std::optional(valueRep) : std::nullopt;
    }
}

bool DataSetEvents::StoreValue(PGX_Node& node) {
    JsonElement& element = Element();
    const uint32_t valueRep = node.valueRep;
    if (valueRep == VR_SQ) return StoreItems(node);
    if (element.hasUri) return FetchBulk(node);
    if (element.hasBinary) {
        if (!MayBeInlineBinary(valueRep)) return Fail(PGX_JSON_WRONG_TYPE);
        const bool isWhole =
            IsInlineBinary(valueRep) || element.binary.Size() % SwapUnit(valueRep) == 0;
        if (!isWhole) return Fail(PGX_JSON_BAD_BASE64);
        element.binary.MoveTo(node);
        return true;
    }
    if (element.values.Count() > 0 && IsInlineBinary(valueRep)) return Fail(PGX_JSON_WRONG_TYPE);
    const JsonFault fault = builder_.Store(element.values, node, Current().needsUtf8);
    return fault.error == 0 || Fail(fault.error, fault.offset);
}

bool DataSetEvents::StoreItems(PGX_Node& sequence) {
    JsonElement& element = Element();
    if (element.hasBinary || element.hasUri) return Fail(PGX_JSON_WRONG_TYPE);
    for (size_t i = 0; i < element.values.Count(); ++i) {
        const JsonValues::Value value = element.values[i];
        const bool isItem = value.kind == JsonKind::Item || value.kind == JsonKind::EmptyObject;
        if (!isItem) return Fail(PGX_JSON_WRONG_TYPE, value.offset);
    }
    sequence.first = element.items.release();
    return true;
}

bool DataSetEvents::FetchBulk(PGX_Node& node) {
    const JsonElement& element = Element();
    const bool isSupplied = options_.bulk != nullptr &&
                            options_.bulk(options_.bulkContext, &node, PathInDataSet().c_str(),
                                          element.uri.c_str()) == 1;
    if (!isSupplied) return Fail(PGX_JSON_NO_BULK_DATA);
    Current().needsUtf8 = Current().needsUtf8 || MayNeedUtf8(node);
    return true;
}

// ---- Names --------------------------------------------------------------------------------------

bool DataSetEvents::IsNameGroup(std::string_view name) {
    return std::ranges::find(kNameGroups, name) != kNameGroups.end();
}

bool DataSetEvents::BeginNameGroup(std::string_view name) {
    const auto found = std::ranges::find(kNameGroups, name);
    if (found == kNameGroups.end()) return Fail(PGX_JSON_UNKNOWN_MEMBER);
    nameGroup_ = static_cast<size_t>(found - kNameGroups.begin());
    return NoteMember(hasNameGroup_[nameGroup_], State::NameGroup);
}

bool DataSetEvents::EndName() {
    std::string joined = name_[0] + '=' + name_[1] + '=' + name_[2];
    joined.resize(joined.find_last_not_of('=') + 1);
    for (std::string& group : name_)
        group.clear();
    hasNameGroup_.fill(false);
    state_ = State::Values;
    return AddValue(JsonKind::Name, joined);
}

}  // namespace pgkit
