// pgtool delete: removes elements of data sets.
#include <memory>
#include <utility>

#include "commands.h"
#include "data_set.h"
#include "outputs.h"
#include "places.h"
#include "text_options.h"

namespace pgtool {

namespace {

struct DeleteRequest {
    InputOptions inputs;
    OutputOptions outputs;
    TextOptions texts;
    Arguments places;
    bool isPrivate = false;
};

pgkit::error DeleteOne(const DeleteRequest& request, const Input& input,
                       const std::string& target) {
    auto root = Open(input.path);
    if (!root) return root.error();
    for (const std::string& text : request.places) {
        // From the last to the first: the numbers of the items before are still right.
        const auto places = ExpandedPlaces(*root, text);
        for (auto place = places.rbegin(); place != places.rend(); ++place)
            root->remove(*place);
    }
    if (request.isPrivate) {
        pgkit::walk(*root, [](const pgkit::element& element) {
            return element.tag().is_private() ? pgkit::visit::remove : pgkit::visit::go_on;
        });
    }
    return Save(*std::move(root), target, 0);
}

int Delete(const DeleteRequest& request) {
    std::string complaint = ComplaintAbout(request.outputs, request.inputs);
    if (complaint.empty()) complaint = UseTextOptions(request.texts);
    if (complaint.empty()) complaint = ComplaintAboutPlaces(request.places);
    if (complaint.empty() && request.places.empty() && !request.isPrivate) {
        complaint = "-t PATH or --private is expected";
    }
    if (!complaint.empty()) return Misuse(kDeleteCommand, complaint);
    return RewriteEach(kDeleteCommand, request.inputs, request.outputs,
                       [&](const Input& input, const std::string& target) {
                           return DeleteOne(request, input, target);
                       });
}

Work DefineDelete(OptionSet& options) {
    const auto request = std::make_shared<DeleteRequest>();
    AddInputs(options, request->inputs);
    options.Texts("-t,--tag", "PATH", &request->places,
                  "the element, or the item of a sequence, to remove; may be repeated");
    options.Switch("--private", &request->isPrivate,
                   "remove all private elements, in sequences, too");
    AddOutputs(options, request->outputs);
    AddEdition(options, request->texts);
    return [request] { return Delete(*request); };
}

}  // namespace

const Command kDeleteCommand = {
    "delete", "delete FILE... -t PATH... (-o OUT | --in-place) [-r] [--private]",
    "remove elements of data sets",
    "PATH is a name (PatientBirthDate), a tag (0010,0030), or a path whose items count from 0\n"
    "(ReferencedSeriesSequence[0].SeriesInstanceUID; [*] stands for all that there are). What\n"
    "is not there needs no removing and is no failure. The file keeps its encoding.\n",
    DefineDelete};

}  // namespace pgtool
