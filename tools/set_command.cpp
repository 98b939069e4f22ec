// pgtool set: changes values of a data set.
#include <charconv>
#include <optional>
#include <utility>

#include "command.h"
#include "data_set.h"
#include "long_values.h"
#include "options.h"
#include "pgkit/dictionary.h"
#include "tag.h"

namespace pgtool {

namespace {

constexpr uint32_t kLoadedOnSet = 4096;

struct Assignment {
    Tag tag;
    std::string value;
};

// "0010,0010=DOE^JOHN" or "PatientsName=DOE^JOHN".
std::optional<Assignment> ParseAssignment(const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const std::string name = text.substr(0, equals);
    const bool isTag = name.find(',') != std::string::npos;
    const std::optional<Tag> tag = isTag ? ParseTag(name) : FindTagByName(name);
    if (!tag) return std::nullopt;
    return Assignment{*tag, text.substr(equals + 1)};
}

// The numbers between backslashes; nothing at all is no number.
template <typename Number>
std::optional<std::string> Numbers(const std::string& text) {
    std::string bytes;
    const char* const end = text.data() + text.size();
    for (const char* next = text.data(); !text.empty(); ++next) {
        Number number{};
        const auto [stop, error] = std::from_chars(next, end, number);
        if (error != std::errc()) return std::nullopt;
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
        if (stop == end) break;
        if (*stop != '\\') return std::nullopt;
        next = stop;
    }
    return bytes;
}

// The bytes of a value: its text, or for a VR of binary numbers the numbers between its
// backslashes. Nothing for a text that is no such number, and for the VRs that have none.
std::optional<std::string> Encode(uint32_t valueRep, const std::string& text) {
    switch (valueRep) {
        case VR_US:
            return Numbers<uint16_t>(text);
        case VR_SS:
            return Numbers<int16_t>(text);
        case VR_UL:
            return Numbers<uint32_t>(text);
        case VR_SL:
            return Numbers<int32_t>(text);
        case VR_FL:
            return Numbers<float>(text);
        case VR_FD:
            return Numbers<double>(text);
        case VR_AT:
        case VR_OB:
        case VR_OF:
        case VR_OW:
        case VR_OWOB:
        case VR_SQ:
        case VR_UN:
        case VR_USSS:
        case VR_Unknown:
            return std::nullopt;
        default:
            return text;
    }
}

// What US or SS is: Pixel Representation (0028,0103) says whether pixels are signed.
uint32_t ValueRepOfPixels(PGX_Node& root) {
    PGX_Node* const representation = root.FindNode(0x0028, 0x0103);
    return representation != nullptr && representation->GetUSValue() == 1 ? VR_SS : VR_US;
}

// An element that exists keeps its VR; a new one has that of the dictionary.
uint32_t ValueRepOf(PGX_Node& root, const Tag& tag) {
    const PGX_Node* element = root.FindNode(tag.group, tag.element);
    const uint32_t valueRep =
        element != nullptr ? element->valueRep : pgFindValueRepresentation(tag.group, tag.element);
    return valueRep == VR_USSS ? ValueRepOfPixels(root) : valueRep;
}

bool Apply(PGX_Node& root, const Assignment& assignment) {
    const Tag& tag = assignment.tag;
    const auto bytes = Encode(ValueRepOf(root, tag), assignment.value);
    return bytes && root.AddOrReplaceNode(tag.group, tag.element, bytes->data(),
                                          static_cast<uint32_t>(bytes->size())) != nullptr;
}

int Set(const Arguments& arguments) {
    std::string output;
    Arguments operands;
    const std::string complaint = ParseOptions(arguments, {{"-o", &output}}, &operands);
    if (!complaint.empty()) return Misuse(kSetCommand, complaint);
    if (operands.size() < 2) return Misuse(kSetCommand, "a file and an assignment are expected");
    if (output.empty()) return Misuse(kSetCommand, "-o OUT is expected");

    DataSet root(pgOpenDataSetFile(operands[0].c_str(), kLoadedOnSet));
    if (root == nullptr) return Fail(kSetCommand, CannotOpen(operands[0]));
    for (size_t i = 1; i < operands.size(); ++i) {
        const auto assignment = ParseAssignment(operands[i]);
        if (!assignment) {
            return Misuse(kSetCommand, "\"" + operands[i] + "\" is not TAG=VALUE");
        }
        if (!Apply(*root, *assignment)) return Fail(kSetCommand, "cannot set " + operands[i]);
    }
    if (!MakeLongValuesUn(*root)) return Fail(kSetCommand, "a long value cannot be read");
    const uint32_t result = SaveWhole(std::move(root), output, 0);
    return result == 0 ? kDone : Fail(kSetCommand, output + ": " + DescribeSaveResult(result));
}

}  // namespace

const Command kSetCommand = {
    "set", "set FILE TAG=VALUE... -o OUT", "change values of a data set",
    "  -o OUT  the file to write, in the encoding of FILE; it may be FILE itself\n"
    "TAG is a name (PatientsName) or a group and an element (0010,0010). Elements that do\n"
    "not exist are inserted. VALUE is text; of numeric elements decimal numbers, several of\n"
    "them with backslashes between, signed where Pixel Representation decides and is 1.\n"
    "Sequences and binary values cannot be set. Values of 65,535 bytes and more get the VR\n"
    "UN where theirs has no room for such a length.\n",
    Set};

}  // namespace pgtool
