// Testing and opening a file that is opened only once for both.
#pragma once

#include <cstdint>

#include "codec/opening.h"
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

// The root, which owns its file from then on. That is the stream that was read, which is released,
// or the temporary one, and the stream stays with its handle; a tree that keeps everything owns
// none. Null without a tree.
PGX_Node* HandOver(OpenedTree& opened, platform::FileHandle& stream);

// pgOpenDataSetFileEx on an open file, which is closed whenever there is no tree that owns it.
PGX_Node* OpenDataSet(InputFile file, uint32_t maxLoadLength, uint32_t flags);

// The same for a file that is opened only when it has "DICM" at offset 128, which costs no read of
// its own. Without it there is no tree, and isDicom says why.
PGX_Node* OpenIfDicom(InputFile file, uint32_t maxLoadLength, uint32_t flags, bool& isDicom);

}  // namespace pgkit
