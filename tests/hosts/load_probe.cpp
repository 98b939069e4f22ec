// A host program of the module: prints value representation and name of every tag given as two
// hexadecimal arguments, one line each, and so shows what the module found when it was loaded.
#include <pgkit/pgkit.h>

#include <cstdio>
#include <cstdlib>

namespace {

uint16_t Hexadecimal(const char* text) {
    return static_cast<uint16_t>(std::strtoul(text, nullptr, 16));
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i + 1 < argc; i += 2) {
        const uint16_t group = Hexadecimal(argv[i]);
        const uint16_t element = Hexadecimal(argv[i + 1]);
        char name[128];
        pgGetTagPrintableName(group, element, name);
        std::printf("%u %s\n", static_cast<unsigned>(pgFindValueRepresentation(group, element)),
                    name);
    }
    return 0;
}
