#include "binary_output.h"

// Streams have no text mode here.
void pgtool::MakeStandardOutputBinary() {}
