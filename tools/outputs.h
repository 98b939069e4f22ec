// Where a command that changes files writes them.
#pragma once

#include <map>
#include <string>

#include "inputs.h"

namespace pgtool {

struct OutputOptions {
    std::string output;
    bool inPlace = false;
};

// -o and --in-place.
void AddOutputs(OptionSet& options, OutputOptions& outputs);

// The complaint unless there is exactly one of both, and it fits the inputs; or an empty text.
std::string ComplaintAbout(const OutputOptions& outputs, const InputOptions& inputs);

// The targets of a run. -o names a file for one input, and a folder for several: that gets the
// files by their names, those of directories by their paths below these.
class Targets {
  public:
    Targets(const OutputOptions& outputs, const InputOptions& inputs);

    // Folders are made. An empty path with the reason in complaint when there is no place for it.
    std::string For(const Input& input, std::string& complaint);

  private:
    const OutputOptions& outputs_;
    bool isFolder_;
    std::map<std::string, std::string> written_;  // from where, by the target
};

// Does the work on each file, which gets its target, and sums up on the standard error stream when
// there may be several. Returns the exit status.
int RewriteEach(const Command& command, const InputOptions& inputs, const OutputOptions& outputs,
                const std::function<pgkit::error(const Input&, const std::string& target)>& work);

}  // namespace pgtool
