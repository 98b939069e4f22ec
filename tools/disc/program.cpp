#include "disc/program.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "system_path.h"
#include "words.h"

namespace pgtool {

std::string FindProgram(const std::string& name) {
    const char* const path = std::getenv("PATH");
    if (path == nullptr) return "";
    for (const std::string_view folder : Split(path, kPathSeparator)) {
        if (folder.empty()) continue;
        std::string program = std::string(folder) + "/" + name + kProgramSuffix;
        std::error_code error;
        if (std::filesystem::is_regular_file(SystemPath(program), error)) return program;
    }
    return "";
}

}  // namespace pgtool
