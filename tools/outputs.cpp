#include "outputs.h"
#include "system_path.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace pgtool {

namespace {

namespace fs = std::filesystem;

}  // namespace

void AddOutputs(OptionSet& options, OutputOptions& outputs) {
    options.Text("-o,--output", "OUT", &outputs.output,
                 "the file to write; with several files, or a directory, the folder for them; - is "
                 "the standard output");
    options.Switch("--in-place", &outputs.inPlace,
                   "write each file over itself; it is replaced when the new one is complete");
}

std::string ComplaintAbout(const OutputOptions& outputs, const InputOptions& inputs) {
    std::string complaint = ComplaintAbout(inputs);
    if (!complaint.empty()) return complaint;
    if (outputs.inPlace == !outputs.output.empty()) {
        return outputs.inPlace ? "-o or --in-place, not both" : "-o OUT or --in-place is expected";
    }
    const auto& operands = inputs.operands;
    const bool readsStandardInput =
        std::find(operands.begin(), operands.end(), "-") != operands.end();
    if (outputs.inPlace && readsStandardInput) return "the standard input has no place: -o OUT";
    if (outputs.output == "-" && MayBeSeveral(inputs)) return "-o -: one file only";
    return "";
}

Targets::Targets(const OutputOptions& outputs, const InputOptions& inputs)
    : outputs_(outputs), isFolder_(MayBeSeveral(inputs)) {}

std::string Targets::For(const Input& input, std::string& complaint) {
    if (outputs_.inPlace) return input.path;
    if (outputs_.output == "-") return "-";
    std::error_code error;
    const bool isFolder = isFolder_ || fs::is_directory(SystemPath(outputs_.output), error);
    if (!isFolder) return outputs_.output;
    const std::string inner = input.path == "-" ? "stdin" : input.inner;
    std::string target = outputs_.output + (outputs_.output.ends_with('/') ? "" : "/") + inner;
    const auto [former, isNew] = written_.try_emplace(target, input.path);
    if (!isNew) {
        complaint = input.path + ": " + target + " has been written from " + former->second;
        return "";
    }
    fs::create_directories(SystemPath(target).parent_path(), error);
    if (!error) return target;
    complaint = target + ": its folder cannot be made: " + error.message();
    return "";
}

int RewriteEach(const Command& command, const InputOptions& inputs, const OutputOptions& outputs,
                const std::function<pgkit::error(const Input&, const std::string& target)>& work) {
    Targets targets(outputs, inputs);
    const InputCounts counts =
        ForEachInput(command, inputs, [&](const Input& input) -> pgkit::error {
            std::string complaint;
            const std::string target = targets.For(input, complaint);
            if (complaint.empty()) return work(input, target);
            return pgkit::error{pgkit::failure::cannot_create, complaint};
        });
    if (MayBeSeveral(inputs)) {
        std::fprintf(stderr, "pgtool %s: %zu written, %zu failed, %zu no DICOM files\n",
                     command.name, counts.done, counts.failed, counts.noDataSets);
    }
    return counts.failed == 0 ? kDone : kFailed;
}

}  // namespace pgtool
