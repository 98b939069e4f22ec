#include "verify/medium_walk.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "real_path.h"
#include "system_path.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

class MediumWalk {
  public:
    MediumWalk(const MediumFiles& medium, Findings& findings)
        : medium_(medium), findings_(findings) {}

    std::vector<std::string> Run() {
        std::vector<std::string> files;
        std::vector<std::string> open = {""};
        while (!open.empty()) {
            const std::string folder = open.back();
            open.pop_back();
            std::vector<std::string> folders;
            for (const std::string& name : NamesIn(folder))
                Sort(folder.empty() ? name : folder + "/" + name, files, folders);
            open.insert(open.end(), folders.rbegin(), folders.rend());
        }
        return files;
    }

  private:
    std::vector<std::string> NamesIn(const std::string& folder) {
        std::vector<std::string> names;
        std::error_code error;
        fs::directory_iterator entry(SystemPath(medium_.PathOf(folder)), error);
        for (; !error && entry != fs::directory_iterator(); entry.increment(error))
            names.push_back(entry->path().filename().string());
        if (error) {
            findings_.Add(AboutFile(folder.empty() ? "." : folder, FindingKind::Unreadable,
                                    "the directory cannot be read: " + error.message()));
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // What is by another path than its own is a link, of whatever kind the system has.
    void Sort(const std::string& inner, std::vector<std::string>& files,
              std::vector<std::string>& folders) {
        const std::string path = medium_.PathOf(inner);
        const std::optional<std::string>& real = realPaths_.Of(path);
        std::error_code unknown;
        if (!real) {
            const bool isLink = fs::is_symlink(fs::symlink_status(SystemPath(path), unknown));
            findings_.Add(isLink
                              ? AboutFile(inner, FindingKind::MissingFile, "the link leads nowhere")
                              : AboutFile(inner, FindingKind::Unreadable, "it cannot be read"));
        } else if (!IsBelow(*real, medium_.root)) {
            findings_.Add(
                AboutFile(inner, FindingKind::Outside, "the link leads out of the medium"));
        } else if (*real != path) {
            return;
        } else if (fs::is_directory(SystemPath(path), unknown)) {
            folders.push_back(inner);
        } else if (fs::is_regular_file(SystemPath(path), unknown)) {
            files.push_back(inner);
        }
    }

    const MediumFiles& medium_;
    Findings& findings_;
    RealPaths realPaths_;
};

}  // namespace

std::vector<std::string> FilesOnMedium(const MediumFiles& medium, Findings& findings) {
    return MediumWalk(medium, findings).Run();
}

}  // namespace pgtool
