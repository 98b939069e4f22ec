// pgtool anonymize: data sets without whom they are about.
#include <charconv>
#include <cstdio>
#include <memory>
#include <utility>

#include "anonymize/anonymizer.h"
#include "commands.h"
#include "data_set.h"
#include "outputs.h"
#include "text_options.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

struct AnonymizeRequest {
    InputOptions inputs;
    OutputOptions outputs;
    ProfileOptions profile;
    std::string days;
    std::string keyFile;
    NewUids uids;
};

// File Meta Information tells who sent and received the file, and its preamble may hold anything:
// both are made anew, with the transfer syntax that the data set has.
uint32_t RenewMeta(pgkit::data_set& root, const std::string& transferSyntax) {
    root.node()->AddPart10Elements(transferSyntax.empty() ? nullptr : transferSyntax.c_str());
    return root.node()->syntaxFlags | PG_META;
}

pgkit::error AnonymizeOne(const AnonymizeRequest& request, const Input& input,
                          const std::string& target) {
    auto root = Open(input.path);
    if (!root) return root.error();
    if (root->contains({0x0004, 0x1220})) {
        return {pgkit::failure::wrong_type,
                input.path + ": it is a DICOMDIR; make a new one of the files (mkdir)"};
    }
    for (const std::string& warning : Warnings(*root)) {
        std::fprintf(stderr, "pgtool anonymize: %s: warning: %s\n", WithEscapes(input.path).c_str(),
                     warning.c_str());
    }
    const std::string transferSyntax = root->find({0x0002, 0x0010}).text();
    Anonymizer(request.profile, request.uids).Apply(*root);
    const uint32_t mode = RenewMeta(*root, transferSyntax);
    return Save(*std::move(root), target, mode);
}

// "30", "-400".
bool ReadDays(AnonymizeRequest& request) {
    constexpr int kMost = 36525;
    const char* const end = request.days.data() + request.days.size();
    const auto [stop, error] = std::from_chars(request.days.data(), end, request.profile.days);
    request.profile.modifyDates = true;
    return error == std::errc() && stop == end && request.profile.days >= -kMost &&
           request.profile.days <= kMost;
}

int Anonymize(AnonymizeRequest& request) {
    std::string complaint = ComplaintAbout(request.outputs, request.inputs);
    if (complaint.empty()) complaint = UseTextOptions({});
    if (complaint.empty() && !request.days.empty() && !ReadDays(request)) {
        complaint = "--modify-dates: a number of days is expected, at most 36525";
    }
    if (complaint.empty() && request.profile.modifyDates && request.profile.retainDates) {
        complaint = "--retain-dates or --modify-dates, not both";
    }
    if (!complaint.empty()) return Misuse(kAnonymizeCommand, complaint);
    if (!request.keyFile.empty()) {
        const std::string reason = request.uids.UseKeyFile(request.keyFile);
        if (!reason.empty()) return Fail(kAnonymizeCommand, reason);
    }
    return RewriteEach(kAnonymizeCommand, request.inputs, request.outputs,
                       [&](const Input& input, const std::string& target) {
                           return AnonymizeOne(request, input, target);
                       });
}

void AddProfileOptions(OptionSet& options, AnonymizeRequest& request) {
    ProfileOptions& profile = request.profile;
    options.Switch("--retain-uids", &profile.retainUids, "keep the UIDs of instances");
    options.Switch("--retain-dates", &profile.retainDates, "keep dates and times");
    options.Text("--modify-dates", "DAYS", &request.days,
                 "move dates by so many days (--modify-dates=-30: back) and keep times; what is no "
                 "date is treated as without the option");
    options.Switch("--retain-device-identity", &profile.retainDevice,
                   "keep what identifies devices");
    options.Switch("--retain-institution-identity", &profile.retainInstitution,
                   "keep what identifies institutions");
    options.Switch("--retain-patient-characteristics", &profile.retainPatient,
                   "keep age, sex, size, weight and the like");
    options.Switch("--retain-safe-private", &profile.retainSafePrivate,
                   "keep the private elements of blocks that the data set itself calls safe "
                   "(0008,0300)");
}

Work DefineAnonymize(OptionSet& options) {
    const auto request = std::make_shared<AnonymizeRequest>();
    AddInputs(options, request->inputs);
    AddOutputs(options, request->outputs);
    AddProfileOptions(options, *request);
    options.Text("--key", "FILE", &request->keyFile,
                 "the secret that new UIDs are made with: with the same key they are the same in "
                 "every run; a file that does not exist is made");
    return [request] { return Anonymize(*request); };
}

}  // namespace

const Command kAnonymizeCommand = {
    "anonymize", "anonymize FILE... (-o OUT | --in-place) [-r] [--key FILE] [--retain-...]",
    "remove from data sets whom they are about",
    "Applies the Basic Application Level Confidentiality Profile of DICOM PS3.15 (edition 2024b)\n"
    "to all elements, in sequences too: attributes that identify are removed, emptied or\n"
    "replaced, UIDs become new ones, the same for the same UID in all files of a run. Private\n"
    "elements, overlays and elements that today's standard does not know are removed; preamble\n"
    "and file meta information are made anew. The result says what was done (0012,0062),\n"
    "(0012,0063), (0012,0064), (0028,0303). Pixels, and names of files, are not changed: images\n"
    "that may have texts burnt into them are warned about. Values that an option of the profile\n"
    "would have somebody clean are treated as without the option.\n",
    DefineAnonymize};

}  // namespace pgtool
