// The one place in the module that writes diagnostics.
#pragma once

namespace pgkit {

// Prints like printf to the standard output.
__attribute__((format(printf, 1, 2))) void PrintOut(const char* format, ...);

// The same, while remarks are wanted: what is not wrong, or tells of patients. They can be switched
// off for the whole library.
__attribute__((format(printf, 1, 2))) void PrintRemark(const char* format, ...);

// Prints like printf to the standard error stream.
__attribute__((format(printf, 1, 2))) void PrintError(const char* format, ...);

}  // namespace pgkit
