// pgtool set: changes values of data sets.
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "commands.h"
#include "data_set.h"
#include "outputs.h"
#include "pgkit/dictionary.h"
#include "places.h"
#include "system_path.h"
#include "text_options.h"
#include "value_checks.h"

namespace pgtool {

namespace {

struct Assignment {
    std::string text;  // as it was given
    std::string place;
    std::string value;
};

struct SetRequest {
    InputOptions inputs;
    OutputOptions outputs;
    TextOptions texts;
    bool isForced = false;
    std::vector<Assignment> assignments;
};

// "0010,0010=DOE^JOHN", "PatientName=DOE^JOHN", "OtherPatientIDsSequence[0].PatientID=4711".
std::optional<Assignment> ParseAssignment(const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || !IsPlace(text.substr(0, equals))) return std::nullopt;
    return Assignment{text, text.substr(0, equals), text.substr(equals + 1)};
}

// Operands with a place before their "=" are assignments, the others files. Returns the complaint
// about one that is neither, or an empty text.
std::string SortOperands(SetRequest& request) {
    Arguments files;
    for (const std::string& operand : request.inputs.operands) {
        if (auto assignment = ParseAssignment(operand)) {
            request.assignments.push_back(*std::move(assignment));
            continue;
        }
        std::error_code error;
        const size_t equals = operand.find('=');
        if (equals != std::string::npos && !std::filesystem::exists(SystemPath(operand), error)) {
            return NoSuchPlace(operand.substr(0, equals));
        }
        files.push_back(operand);
    }
    request.inputs.operands = files;
    return request.assignments.empty() ? "an assignment, PATH=VALUE, is expected" : "";
}

// The data set or item that has the element of a place, and the element's tag.
pgkit::tag TagOf(const std::string& place) {
    const size_t point = place.rfind('.');
    const std::string last = point == std::string::npos ? place : place.substr(point + 1);
    return pgkit::tag::named(last).value_or(pgkit::tag{});
}

// US or SS of implicit VR is what Pixel Representation (0028,0103) says: it is stored as that, and
// remains what it is in the file.
pgkit::result<void> StoreUnsettled(const pgkit::data_set& root, pgkit::element& element,
                                   const std::string& value) {
    const bool isSigned = root.find({0x0028, 0x0103}).number<int>() == 1;
    pgKitSetValueRep(element.node(), isSigned ? VR_SS : VR_US);
    auto result = element.set_text(value);
    pgKitSetValueRep(element.node(), VR_USSS);
    return result;
}

pgkit::result<void> Store(pgkit::data_set& root, const std::string& place, const std::string& value,
                          bool raw) {
    pgkit::element present = root.find(place);
    if (present && present.vr() == VR_USSS) return StoreUnsettled(root, present, value);
    if (raw) return root.set_bytes(place, value.data(), value.size());
    return root.set_text(place, value);
}

// "cannot set (0010,0010) PatientName: REASON" of the library.
std::string ReasonOf(const pgkit::error& error) {
    const size_t colon = error.message.find(": ");
    return colon == std::string::npos ? error.message : error.message.substr(colon + 2);
}

// Returns the reason why a value cannot be set, or an empty text.
std::string Apply(pgkit::data_set& root, const Assignment& assignment, const SetRequest& request) {
    const auto refused = [&](const std::string& reason) {
        return "cannot set " + assignment.text + ": " + reason;
    };
    const auto places = ExpandedPlaces(root, assignment.place);
    if (places.empty()) return refused("there are no items");
    for (const std::string& place : places) {
        const pgkit::tag tag = TagOf(place);
        const pgkit::element present = root.find(place);
        const uint32_t valueRep =
            present ? present.vr() : pgFindValueRepresentation(tag.group, tag.element);
        const bool isChecked = !request.isForced && !request.texts.raw;
        const std::string complaint =
            isChecked ? ComplaintAboutValue(tag, valueRep, assignment.value) : "";
        if (!complaint.empty()) return refused(complaint);
        const auto stored = Store(root, place, assignment.value, request.texts.raw);
        if (!stored) return refused(ReasonOf(stored.error()));
    }
    return "";
}

// File Meta Information repeats the UIDs of the data set.
void RepeatUids(pgkit::data_set& root) {
    constexpr std::pair<pgkit::tag, pgkit::tag> kRepeated[] = {
        {{0x0002, 0x0002}, {0x0008, 0x0016}}, {{0x0002, 0x0003}, {0x0008, 0x0018}}};
    for (const auto& [copy, original] : kRepeated) {
        const std::string uid = root.find(original).text();
        pgkit::element repeated = root.find(copy);
        if (repeated && !uid.empty() && repeated.text() != uid) (void)repeated.set_text(uid);
    }
}

pgkit::error SetOne(const SetRequest& request, const Input& input, const std::string& target) {
    auto root = Open(input.path);
    if (!root) return root.error();
    for (const Assignment& assignment : request.assignments) {
        const std::string reason = Apply(*root, assignment, request);
        if (!reason.empty()) return {pgkit::failure::bad_value, input.path + ": " + reason};
    }
    RepeatUids(*root);
    return Save(*std::move(root), target, 0);
}

int Set(SetRequest& request) {
    std::string complaint = UseTextOptions(request.texts);
    if (complaint.empty()) complaint = SortOperands(request);
    if (complaint.empty()) complaint = ComplaintAbout(request.outputs, request.inputs);
    if (!complaint.empty()) return Misuse(kSetCommand, complaint);
    return RewriteEach(kSetCommand, request.inputs, request.outputs,
                       [&](const Input& input, const std::string& target) {
                           return SetOne(request, input, target);
                       });
}

Work DefineSet(OptionSet& options) {
    const auto request = std::make_shared<SetRequest>();
    AddInputs(options, request->inputs);
    AddOutputs(options, request->outputs);
    options.Switch("--force", &request->isForced,
                   "take values that their value representation or multiplicity does not allow");
    AddTextOptions(options, request->texts);
    return [request] { return Set(*request); };
}

}  // namespace

const Command kSetCommand = {
    "set", "set FILE... PATH=VALUE... (-o OUT | --in-place) [-r] [--force]",
    "change values of data sets",
    "PATH is a name (PatientName), a tag (0010,0010), or a path whose items count from 0\n"
    "(ReferencedSeriesSequence[0].SeriesInstanceUID; [*] stands for all that there are).\n"
    "Elements that do not exist are inserted, items too. VALUE is UTF-8, written in the\n"
    "character set of the file; of numeric elements decimal numbers, several of them with\n"
    "backslashes between, signed where Pixel Representation decides and is 1. Values are held\n"
    "against their value representation and multiplicity; a file with a value that is refused\n"
    "is not written. Sequences and binary values cannot be set. The file keeps its encoding.\n"
    "Values of 65,535 bytes and more get the VR UN where theirs has no room for such a length.\n"
    "SpecificCharacterSet is an element as any other: texts that are there keep their bytes.\n",
    DefineSet};

}  // namespace pgtool
