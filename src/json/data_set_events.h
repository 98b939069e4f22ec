// The events of a JSON text, as they make data sets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/data_set_reader.h"
#include "json/json_parser.h"
#include "json/open_data_set.h"
#include "json/value_builder.h"

namespace pgkit {

// A state machine: what may come next depends on where in the JSON the last event was. Data sets
// are in data_set_reader.cpp, elements and names in element_events.cpp.
class DataSetEvents : public JsonEvents {
  public:
    DataSetEvents(const PgxJsonReadOptions& options, PgxJsonDataSetFunction take, void* context)
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
    [[nodiscard]] bool HandOver(NodeTree dataSet);
    bool BeginElement(std::string_view name);
    JsonMember BeginMember(std::string_view name);
    bool NoteMember(bool& isThere, State next);
    static bool IsNameGroup(std::string_view name);
    bool BeginNameGroup(std::string_view name);
    bool EndName();
    bool EndElement();
    std::optional<uint32_t> FindVr();
    [[nodiscard]] bool StoreValue(PGX_Node& node);
    [[nodiscard]] bool StoreItems(PGX_Node& sequence);
    [[nodiscard]] bool FetchBulk(PGX_Node& node);
    bool AddValue(JsonKind kind, std::string_view text = {});

    const PgxJsonReadOptions& options_;
    PgxJsonDataSetFunction take_;
    void* context_;
    State state_ = State::Start;
    bool isArray_ = false;
    // Those that are not in use keep their memory for the next ones.
    std::vector<OpenDataSet> levels_;
    size_t depth_ = 0;
    std::array<std::string, 3> name_;  // its groups
    std::array<bool, 3> hasNameGroup_{};
    size_t nameGroup_ = 0;
    ValueBuilder builder_;
    JsonReading reading_;
};

}  // namespace pgkit
