#include "verify/other_files.h"

#include <algorithm>
#include <string_view>

#include "data_set.h"
#include "library_path.h"
#include "verify/directory.h"
#include "words.h"

namespace pgtool {

namespace {

constexpr const char* kAutorun = "autorun.inf";
constexpr size_t kLongestAutorun = 0x10000;

// "open=VIEWER\RUN.EXE /cd" names viewer/run.exe.
std::string ProgramOf(std::string_view line) {
    const size_t equals = line.find('=');
    if (equals == line.npos || equals + 1 == line.size()) return "";
    std::string_view value = line.substr(equals + 1);
    value.remove_prefix(std::min(value.find_first_not_of(" \t\"\\/."), value.size()));
    return LowerAscii(WithSlashes(std::string(value.substr(0, value.find_first_of(" \t\",\r")))));
}

std::string FolderOf(const std::string& file) {
    const size_t slash = file.find('/');
    return slash == std::string::npos ? "" : file.substr(0, slash + 1);
}

// A folder that records refer into is no program's.
bool IsUsed(const MediumFiles& files, const std::string& folder) {
    return std::any_of(files.used.begin(), files.used.end(), [&](const std::string& file) {
        return LowerAscii(FolderOf(file)) == folder;
    });
}

// Also one that is cut short.
bool IsOtherDirectory(const MediumFiles& files, const std::string& file) {
    // The library would take the backslash for a separator, and read another file.
    if (file.find('\\') != std::string::npos) return false;
    std::string damage;
    const OpenRequest request = {kLoadedOfFile, PG_OPEN_SKIP_FRAGMENTS, false, &damage};
    const auto opened = Open(files.PathOf(file), request);
    return opened && IsDirectoryFile(*opened);
}

}  // namespace

Companions::Companions(const std::vector<std::string>& all, const MediumFiles& files)
    : names_({"readme.txt", "index.htm", "ihe_pdi/", kAutorun}) {
    const auto autorun = std::find_if(all.begin(), all.end(), [](const std::string& file) {
        return LowerAscii(file) == kAutorun;
    });
    if (autorun == all.end()) return;
    const std::string text = BeginningOf(files.PathOf(*autorun), kLongestAutorun);
    for (const std::string_view line : Split(text, '\n')) {
        const std::string program = ProgramOf(line);
        if (program.empty()) continue;
        names_.push_back(program);
        const std::string folder = FolderOf(program);
        if (!folder.empty() && !IsUsed(files, folder)) names_.push_back(folder);
    }
}

bool Companions::Contains(const std::string& file) const {
    const std::string lower = LowerAscii(file);
    return std::any_of(names_.begin(), names_.end(), [&](const std::string& name) {
        return name.ends_with('/') ? lower.starts_with(name) : lower == name;
    });
}

void CheckOtherFiles(const std::vector<std::string>& all, const MediumFiles& files,
                     Findings& findings) {
    const Companions companions(all, files);
    for (const std::string& file : all) {
        if (files.used.contains(file) || companions.Contains(file)) continue;
        if (!IsDicomFile(files.PathOf(file))) continue;
        if (IsOtherDirectory(files, file)) continue;
        findings.Add(AboutFile(file, FindingKind::Orphan, "no record refers to it"));
    }
}

}  // namespace pgtool
