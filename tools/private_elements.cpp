#include "private_elements.h"

#include <filesystem>
#include <system_error>

#include "pgkit/dictionary.h"
#include "program_directory.h"
#include "system_path.h"

namespace pgtool {

void UsePrivateElements(const TextOptions& texts) {
    const std::string directory = ProgramDirectory();
    std::error_code error;
    if (!IsCurrent(texts) || directory.empty()) return;
    if (std::filesystem::exists(SystemPath(directory + "privdict.dic"), error)) return;
    for (const char* const place : {"private.dic", "../share/pgkit/private.dic"}) {
        const std::string path = directory + place;
        if (!std::filesystem::is_regular_file(SystemPath(path), error)) continue;
        pgSetPrivateDictionaryFile(path.c_str());
        return;
    }
}

}  // namespace pgtool
