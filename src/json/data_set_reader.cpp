#include "json/data_set_reader.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "base/text.h"
#include "dictionary/current_table.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "json/ambiguous_vr.h"
#include "json/element_path.h"
#include "json/open_data_set.h"
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

class Reader : public JsonEvents {
  public:
    Reader(const PgxJsonReadOptions& options, PgxJsonDataSetFunction take, void* context)
        : options_(options), take_(take), context_(context) {}

    bool StartObject() override;
    JsonMember Key(std::string_view name) override;
    bool EndObject() override;
    bool StartArray() override;
    bool EndArray() override;
    bool Null() override;
    bool Bool() override { return Fail(PGX_JSON_WRONG_TYPE); }
    bool Number(std::string_view digits) override;
    bool String(std::string_view text) override;
    bool Base64(std::string_view characters) override;

    JsonReading Finish(const JsonOutcome& outcome);

  private:
    // Where in the JSON, which says what may come next.
    enum class State {
        Start,
        Array,    // of data sets
        DataSet,  // a tag, or its end
        Tag,      // behind one: the element
        Element,  // a member, or its end
        Vr,       // behind the names of these members
        Value,
        InlineBinary,
        BulkDataUri,
        Values,     // the content of a "Value" array
        Object,     // at the beginning of an object that is a value
        Name,       // a group of a name, or its end
        NameGroup,  // behind one
        End
    };

    bool Fail(int32_t error) { return Fail(error, offset); }
    bool Fail(int32_t error, uint64_t at);
    std::string Path() const;
    std::string PathInDataSet() const;
    OpenDataSet& Current() { return levels_[depth_ - 1]; }
    JsonElement& Element() { return Current().element; }

    bool BeginDataSet();
    bool EndDataSet(JsonKind kind);
    bool HandOver(NodeTree dataSet);
    bool BeginElement(std::string_view name);
    JsonMember BeginMember(std::string_view name);
    bool NoteMember(bool& isThere, State next);
    bool BeginNameGroup(std::string_view name);
    bool EndName();
    bool EndElement();
    std::optional<uint32_t> FindVr();
    bool StoreValue(PGX_Node& node);
    bool StoreItems(PGX_Node& sequence);
    bool FetchBulk(PGX_Node& node);
    bool AddValue(JsonKind kind, std::string_view text = {});

    const PgxJsonReadOptions& options_;
    PgxJsonDataSetFunction take_;
    void* context_;
    State state_ = State::Start;
    bool isArray_ = false;
    // Those that are not in use keep their memory for the next ones.
    std::vector<OpenDataSet> levels_;
    size_t depth_ = 0;
    std::array<std::string, kNameGroups.size()> name_;
    std::array<bool, kNameGroups.size()> hasNameGroup_{};
    size_t nameGroup_ = 0;
    ValueBuilder builder_;
    JsonReading reading_;
};

// Keeps the first failure.
bool Reader::Fail(int32_t error, uint64_t at) {
    if (reading_.error != 0) return false;
    reading_.error = error;
    reading_.offset = at;
    reading_.path = Path();
    return false;
}

std::string Reader::Path() const {
    std::string path;
    if (isArray_ && state_ != State::End) {
        AppendIndexToPath(path, static_cast<size_t>(reading_.count));
    }
    const std::string inDataSet = PathInDataSet();
    if (!path.empty() && !inDataSet.empty()) path += '.';
    return path + inDataSet;
}

std::string Reader::PathInDataSet() const {
    std::string path;
    for (size_t i = 0; i < depth_; ++i) {
        const JsonElement& element = levels_[i].element;
        if (!element.isOpen) break;
        if (!path.empty()) path += '.';
        AppendTagToPath(path, element.group, element.element);
        if (i + 1 < depth_) AppendIndexToPath(path, element.itemCount);
    }
    return path;
}

// ---- Events -------------------------------------------------------------------------------------

bool Reader::StartObject() {
    switch (state_) {
        case State::Start:
        case State::Array:
            return BeginDataSet();
        case State::Tag:
            state_ = State::Element;
            return true;
        case State::Values:
            state_ = State::Object;
            return true;
        default:
            return Fail(PGX_JSON_WRONG_TYPE);
    }
}

JsonMember Reader::Key(std::string_view name) {
    bool goesOn = false;
    if (state_ == State::Object) {
        const bool isName = std::ranges::find(kNameGroups, name) != kNameGroups.end();
        if (isName) {
            state_ = State::Name;
        } else if (!BeginDataSet()) {
            return JsonMember::Refused;
        }
    }
    if (state_ == State::Element) return BeginMember(name);
    if (state_ == State::DataSet) goesOn = BeginElement(name);
    if (state_ == State::Name) goesOn = BeginNameGroup(name);
    return goesOn ? JsonMember::Parsed : JsonMember::Refused;
}

bool Reader::EndObject() {
    switch (state_) {
        case State::DataSet:
            return EndDataSet(JsonKind::Item);
        case State::Element:
            return EndElement();
        case State::Object:
            // An item or a name.
            return BeginDataSet() && EndDataSet(JsonKind::EmptyObject);
        case State::Name:
            return EndName();
        default:
            return Fail(PGX_JSON_WRONG_TYPE);
    }
}

bool Reader::StartArray() {
    if (state_ == State::Start) {
        isArray_ = true;
        state_ = State::Array;
        return true;
    }
    if (state_ != State::Value) return Fail(PGX_JSON_WRONG_TYPE);
    state_ = State::Values;
    return true;
}

bool Reader::EndArray() {
    state_ = state_ == State::Array ? State::End : State::Element;
    return true;
}

bool Reader::Null() { return AddValue(JsonKind::Null); }

bool Reader::Number(std::string_view digits) { return AddValue(JsonKind::Number, digits); }

bool Reader::String(std::string_view text) {
    switch (state_) {
        case State::Vr:
            Element().valueRep =
                text.size() == 2 ? VrFromCharacters(text[0], text[1]) : uint32_t{VR_Unknown};
            if (Element().valueRep == VR_Unknown) return Fail(PGX_JSON_UNKNOWN_VR);
            break;
        case State::InlineBinary:  // its characters have come before
            if (!Element().binary.IsComplete()) return Fail(PGX_JSON_BAD_BASE64);
            break;
        case State::BulkDataUri:
            Element().uri = text;
            break;
        case State::NameGroup:
            if (text.find_first_of("\\=") != std::string_view::npos) return Fail(PGX_JSON_BAD_TEXT);
            name_[nameGroup_] = text;
            state_ = State::Name;
            return true;
        default:
            return AddValue(JsonKind::String, text);
    }
    state_ = State::Element;
    return true;
}

bool Reader::Base64(std::string_view characters) {
    const int32_t error = Element().binary.Append(characters);
    return error == 0 || Fail(error);
}

bool Reader::AddValue(JsonKind kind, std::string_view text) {
    if (state_ != State::Values) {
        const bool isOutside = state_ == State::Start || state_ == State::Array;
        return Fail(isOutside ? PGX_JSON_NO_DATA_SET : PGX_JSON_WRONG_TYPE);
    }
    Element().values.Add(kind, offset, text);
    return true;
}

// ---- Data sets and items ------------------------------------------------------------------------

bool Reader::BeginDataSet() {
    if (depth_ == options_.depthLimit) return Fail(PGX_JSON_TOO_DEEP);
    if (depth_ == levels_.size()) levels_.emplace_back();
    levels_[depth_].Begin();
    ++depth_;
    state_ = State::DataSet;
    return true;
}

// The kind is that of an item; nothing encloses the others.
bool Reader::EndDataSet(JsonKind kind) {
    const bool isItem = depth_ > 1;
    NodeTree dataSet = Current().End(isItem);
    const bool needsUtf8 = Current().needsUtf8;
    --depth_;
    if (!isItem) return HandOver(std::move(dataSet));
    Current().needsUtf8 = Current().needsUtf8 || needsUtf8;
    Element().AddItem(std::move(dataSet));
    state_ = State::Values;
    return AddValue(kind);
}

bool Reader::HandOver(NodeTree dataSet) {
    state_ = isArray_ ? State::Array : State::End;
    if (take_ == nullptr) return false;
    ++reading_.count;
    return take_(context_, dataSet.release()) != 0;
}

// ---- Elements -----------------------------------------------------------------------------------

bool Reader::BeginElement(std::string_view name) {
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

JsonMember Reader::BeginMember(std::string_view name) {
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

bool Reader::NoteMember(bool& isThere, State next) {
    if (isThere) return Fail(PGX_JSON_DUPLICATE);
    isThere = true;
    state_ = next;
    return true;
}

bool Reader::EndElement() {
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

std::optional<uint32_t> Reader::FindVr() {
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

bool Reader::StoreValue(PGX_Node& node) {
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

bool Reader::StoreItems(PGX_Node& sequence) {
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

bool Reader::FetchBulk(PGX_Node& node) {
    const JsonElement& element = Element();
    const bool isSupplied = options_.bulk != nullptr &&
                            options_.bulk(options_.bulkContext, &node, PathInDataSet().c_str(),
                                          element.uri.c_str()) == 1;
    if (!isSupplied) return Fail(PGX_JSON_NO_BULK_DATA);
    Current().needsUtf8 = Current().needsUtf8 || MayNeedUtf8(node);
    return true;
}

// ---- Names --------------------------------------------------------------------------------------

bool Reader::BeginNameGroup(std::string_view name) {
    const auto found = std::ranges::find(kNameGroups, name);
    if (found == kNameGroups.end()) return Fail(PGX_JSON_UNKNOWN_MEMBER);
    nameGroup_ = static_cast<size_t>(found - kNameGroups.begin());
    return NoteMember(hasNameGroup_[nameGroup_], State::NameGroup);
}

bool Reader::EndName() {
    std::string joined = name_[0] + '=' + name_[1] + '=' + name_[2];
    joined.resize(joined.find_last_not_of('=') + 1);
    for (std::string& group : name_)
        group.clear();
    hasNameGroup_.fill(false);
    state_ = State::Values;
    return AddValue(JsonKind::Name, joined);
}

// ---- The end ------------------------------------------------------------------------------------

JsonReading Reader::Finish(const JsonOutcome& outcome) {
    if (outcome.error != 0) Fail(outcome.error, outcome.offset);
    if (reading_.error == 0) reading_.offset = outcome.offset;
    return std::move(reading_);
}

}  // namespace

JsonReading ReadDataSets(const JsonSource& source, const PgxJsonReadOptions& options,
                         PgxJsonDataSetFunction take, void* context) {
    Reader reader(options, take, context);
    const JsonOutcome outcome = ParseJson(source, reader);
    return reader.Finish(outcome);
}

}  // namespace pgkit
