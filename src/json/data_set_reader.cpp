#include "json/data_set_reader.h"

#include <utility>

#include "dictionary/vr_properties.h"
#include "json/data_set_events.h"
#include "json/element_path.h"

namespace pgkit {

// Keeps the first failure.
bool DataSetEvents::Fail(int32_t error, uint64_t at) {
    if (reading_.error != 0) return false;
    reading_.error = error;
    reading_.offset = at;
    reading_.path = Path();
    return false;
}

std::string DataSetEvents::Path() const {
    std::string path;
    if (isArray_ && state_ != State::End) {
        AppendIndexToPath(path, static_cast<size_t>(reading_.count));
    }
    const std::string inDataSet = PathInDataSet();
    if (!path.empty() && !inDataSet.empty()) path += '.';
    return path + inDataSet;
}

std::string DataSetEvents::PathInDataSet() const {
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

bool DataSetEvents::StartObject() {
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

JsonMember DataSetEvents::Key(std::string_view name) {
    bool goesOn = false;
    if (state_ == State::Object) {
        const bool isName = Element().hasVr && Element().valueRep == VR_PN;
        if (isName || IsNameGroup(name)) {
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

bool DataSetEvents::EndObject() {
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

bool DataSetEvents::StartArray() {
    if (state_ == State::Start) {
        isArray_ = true;
        state_ = State::Array;
        return true;
    }
    if (state_ != State::Value) return Fail(PGX_JSON_WRONG_TYPE);
    state_ = State::Values;
    return true;
}

bool DataSetEvents::EndArray() {
    state_ = state_ == State::Array ? State::End : State::Element;
    return true;
}

bool DataSetEvents::Null() { return AddValue(JsonKind::Null); }

bool DataSetEvents::Number(std::string_view digits) { return AddValue(JsonKind::Number, digits); }

bool DataSetEvents::String(std::string_view text) {
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

bool DataSetEvents::Base64(std::string_view characters) {
    const int32_t error = Element().binary.Append(characters);
    return error == 0 || Fail(error);
}

bool DataSetEvents::AddValue(JsonKind kind, std::string_view text) {
    if (state_ != State::Values) {
        const bool isOutside = state_ == State::Start || state_ == State::Array;
        return Fail(isOutside ? PGX_JSON_NO_DATA_SET : PGX_JSON_WRONG_TYPE);
    }
    Element().values.Add(kind, offset, text);
    return true;
}

// ---- Data sets and items ------------------------------------------------------------------------

bool DataSetEvents::BeginDataSet() {
    if (depth_ == options_.depthLimit) return Fail(PGX_JSON_TOO_DEEP);
    if (depth_ == levels_.size()) levels_.emplace_back();
    levels_[depth_].Begin();
    ++depth_;
    state_ = State::DataSet;
    return true;
}

// The kind is that of an item; nothing encloses the others.
bool DataSetEvents::EndDataSet(JsonKind kind) {
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

bool DataSetEvents::HandOver(NodeTree dataSet) {
    state_ = isArray_ ? State::Array : State::End;
    if (take_ == nullptr) return false;
    ++reading_.count;
    return take_(context_, dataSet.release()) != 0;
}

// ---- The end ------------------------------------------------------------------------------------

JsonReading DataSetEvents::Finish(const JsonOutcome& outcome) {
    if (outcome.error != 0) Fail(outcome.error, outcome.offset);
    if (reading_.error == 0) reading_.offset = outcome.offset;
    return std::move(reading_);
}

JsonReading ReadDataSets(const JsonSource& source, const PgxJsonReadOptions& options,
                         PgxJsonDataSetFunction take, void* context) {
    DataSetEvents events(options, take, context);
    const JsonOutcome outcome = ParseJson(source, events);
    return events.Finish(outcome);
}

}  // namespace pgkit
