#include "support/host_directory.h"

#include <filesystem>

namespace pgkit_test {

namespace fs = std::filesystem;

std::string FileName(const std::string& path) { return fs::path(path).filename().string(); }

HostDirectory::HostDirectory(const std::string& program) : program_(Path(FileName(program))) {
    Copy(program, FileName(program));
    Copy(PGKIT_TEST_MODULE, FileName(PGKIT_TEST_MODULE));
}

void HostDirectory::Write(std::string_view name, std::string_view content) const {
    directory_.Write(name, content);
}

void HostDirectory::Copy(const std::string& file, std::string_view name) const {
    const fs::path copy = Path(name);
    fs::create_directories(copy.parent_path());
    fs::copy_file(file, copy);
}

Finished HostDirectory::Run(const std::vector<std::string>& arguments) const {
    Finished run = RunProgram(program_, arguments);
    std::erase(run.out, '\r');
    return run;
}

}  // namespace pgkit_test
