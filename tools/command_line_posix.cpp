#include "command_line.h"

namespace pgtool {

Arguments CommandLine(int argumentCount, char** arguments) {
    return Arguments(arguments + 1, arguments + argumentCount);
}

}  // namespace pgtool
