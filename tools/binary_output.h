// The standard output as bytes: the same on every platform, for files, pipes and comparisons.
#pragma once

namespace pgtool {

void MakeStandardOutputBinary();

}  // namespace pgtool
