#include "inputs.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "data_set.h"
#include "progress_line.h"
#include "system_path.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

using Visit = std::function<bool(const Input&)>;
using Complain = std::function<void(const std::string&)>;

struct Entry {
    std::string name;
    bool isDirectory;
};

// What is in a directory, in the byte order of the names.
std::vector<Entry> EntriesOf(const std::string& directory, std::error_code& error) {
    std::vector<Entry> entries;
    fs::directory_iterator entry(SystemPath(directory), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code unknown;
        const bool isDirectory = entry->is_directory(unknown);
        if (isDirectory && entry->is_symlink(unknown)) continue;
        if (!isDirectory && !entry->is_regular_file(unknown)) continue;
        entries.push_back({entry->path().filename().string(), isDirectory});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

// A directory that is being walked through.
struct OpenFolder {
    std::string path;
    std::string inner;  // with a slash at its end, unless it is empty
    std::vector<Entry> entries;
    size_t next = 0;
};

class Walk {
  public:
    Walk(const Visit& visit, const Complain& complain) : visit_(visit), complain_(complain) {}

    bool Directory(const std::string& path) {
        Enter(path, "");
        while (!folders_.empty()) {
            OpenFolder& folder = folders_.back();
            if (folder.next == folder.entries.size()) {
                folders_.pop_back();
                continue;
            }
            const Entry entry = folder.entries[folder.next++];
            const std::string entryPath = folder.path + entry.name;
            const std::string inner = folder.inner + entry.name;
            if (entry.isDirectory) {
                Enter(entryPath, inner + "/");
            } else if (!visit_({entryPath, inner, true})) {
                return false;
            }
        }
        return true;
    }

  private:
    void Enter(const std::string& path, const std::string& inner) {
        std::error_code error;
        std::vector<Entry> entries = EntriesOf(path, error);
        if (error) complain_("cannot read the directory " + path + ": " + error.message());
        const std::string separator = path.ends_with('/') ? "" : "/";
        folders_.push_back({path + separator, inner, std::move(entries)});
    }

    const Visit& visit_;
    const Complain& complain_;
    std::vector<OpenFolder> folders_;
};

bool WalkOne(const std::string& operand, bool recursive, const Visit& visit,
             const Complain& complain) {
    std::error_code error;
    if (operand == "-" || !fs::is_directory(SystemPath(operand), error)) {
        return visit({operand, SystemPath(operand).filename().string(), false});
    }
    if (recursive) return Walk(visit, complain).Directory(operand);
    complain(operand + " is a directory; -r works on the files in it");
    return true;
}

bool WalkList(std::istream& list, bool recursive, const Visit& visit, const Complain& complain) {
    for (std::string line; std::getline(list, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty() && !WalkOne(line, recursive, visit, complain)) return false;
    }
    return true;
}

}  // namespace

void AddInputs(OptionSet& options, InputOptions& inputs) {
    options.Operands(&inputs.operands, 0, kAnyNumber, "");
    options.Switch("-r,--recursive", &inputs.recursive, "work on the files in directories, too");
    options.Text("--files-from", "LIST", &inputs.filesFrom,
                 "work on the files that a file names, one on each line; - is the standard input");
}

void WalkInputs(const InputOptions& inputs, const Visit& visit, const Complain& complain) {
    for (const std::string& operand : inputs.operands) {
        if (!WalkOne(operand, inputs.recursive, visit, complain)) return;
    }
    if (inputs.filesFrom == "-") {
        WalkList(std::cin, inputs.recursive, visit, complain);
    } else if (!inputs.filesFrom.empty()) {
        std::ifstream list(SystemPath(inputs.filesFrom));
        if (!list) return complain(CannotOpen(inputs.filesFrom));
        WalkList(list, inputs.recursive, visit, complain);
    }
}

std::string ComplaintAbout(const InputOptions& inputs) {
    const bool isNothing = inputs.operands.empty() && inputs.filesFrom.empty();
    return isNothing ? "a file is expected" : "";
}

bool MayBeSeveral(const InputOptions& inputs) {
    std::error_code error;
    return inputs.operands.size() != 1 || !inputs.filesFrom.empty() ||
           fs::is_directory(SystemPath(inputs.operands[0]), error);
}

InputCounts ForEachInput(const Command& command, const InputOptions& inputs,
                         const std::function<pgkit::error(const Input&)>& work) {
    InputCounts counts;
    ProgressLine progress;
    const auto fail = [&](const std::string& reason) {
        ++counts.failed;
        Fail(command, reason);
    };
    const auto visit = [&](const Input& input) {
        progress.Show(std::to_string(counts.done + counts.failed) + " files");
        const pgkit::error error = work(input);
        if (error.kind == pgkit::failure::none) {
            ++counts.done;
        } else if (input.isFound && error.kind == pgkit::failure::not_a_data_set) {
            ++counts.noDataSets;
        } else {
            fail(error.message);
        }
        return std::ferror(stdout) == 0;
    };
    WalkInputs(inputs, visit, fail);
    return counts;
}

}  // namespace pgtool
