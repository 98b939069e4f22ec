// Testing and opening a file that is opened only once for both.
#pragma once

#include <cstdint>

#include "pgkit/node.h"
#include "platform/file_handle.h"

namespace pgkit {

// A file open for reading, and its size, which opening has learnt anyway.
struct InputFile {
    platform::FileHandle stream;  // null when the file cannot be opened
    uint64_t size = 0;
};

InputFile OpenInput(const char* path);

// The same for the test below; a file that cannot be opened is reported in the name of
// pgIsDicomFile.
InputFile OpenToTest(const char* path);

// Whether "DICM" stands 128 bytes behind the stream's position, which is arbitrary afterwards.
bool IsDicomStream(const InputFile& file);

// pgOpenDataSetFileEx on an open file, which is closed whenever there is no tree that owns it.
PGX_Node* OpenDataSet(InputFile file, uint32_t maxLoadLength, uint32_t flags);

}  // namespace pgkit
