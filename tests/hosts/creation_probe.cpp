// A host program: makes the DICOMDIR of a directory, with icons for images and series. Its
// arguments are the directory, the edge of the icons and, if it is to go elsewhere first, the
// directory that becomes the current one; its exit status is the result.
#include <cstdlib>
#include <filesystem>

#include "pgkit/dicomdir_creation.h"

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) return 100;
    if (argc == 4) std::filesystem::current_path(argv[3]);
    PgDicomdirOptions options = {};
    options.iconSize = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 10));
    options.seriesIcons = 1;
    options.flags = PG_DICOMDIR_NO_LIST;
    return static_cast<int>(pgCreateDicomdirEx(argv[1], "", &options, nullptr, nullptr));
}
