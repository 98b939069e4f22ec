// Testing and opening a file that is opened only once for both.
#pragma once

#include <cstdint>
#include <cstdio>

#include "pgkit/node.h"
#include "platform/file_handle.h"

namespace pgkit {

// Opens a file for the test below; one that cannot be opened is reported in the name of
// pgIsDicomFile, and gives null.
platform::FileHandle OpenToTest(const char* path);

// Whether "DICM" stands 128 bytes behind the stream's position, which is arbitrary afterwards.
bool IsDicomStream(FILE* stream);

// pgOpenDataSetFileEx on a stream, which is closed whenever there is no tree that owns it.
PGX_Node* OpenDataSet(platform::FileHandle stream, uint32_t maxLoadLength, uint32_t flags);

}  // namespace pgkit
