#include <fcntl.h>
#include <io.h>

#include "binary_output.h"

void pgtool::MakeStandardOutputBinary() { _setmode(1, _O_BINARY); }
