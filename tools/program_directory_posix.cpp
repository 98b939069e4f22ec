#include "program_directory.h"
#include "real_path.h"

namespace pgtool {

std::string ProgramDirectory() {
    const std::string path = RealPath("/proc/self/exe").value_or("");
    return path.substr(0, path.rfind('/') + 1);
}

}  // namespace pgtool
