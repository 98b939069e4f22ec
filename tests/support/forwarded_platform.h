// Functions of the platform layer whose calls tests have in their hands: in the program that this
// is for, the layer's objects define them under these names (tests/support/CMakeLists.txt), and
// functions of their usual names, which this program brings, stand in front of them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/loaded_module.h"

namespace pgkit::platform {

FILE* SystemOpenForReading(const char* path);
FILE* SystemOpenForReading(const char* path, uint64_t& size);
FILE* SystemOpenForUpdate(const char* path);
FILE* SystemCreateBinary(const char* path);
FILE* SystemCreateText(const char* path);
FILE* SystemAppendText(const char* path);
FILE* SystemCreateReplacement(const char* path, std::string& replacement, const char* stem);
FILE* SystemCreateTemporary();
bool SystemFlushToDisk(const char* replacement);
bool SystemReplaceWith(const char* path, const char* replacement);
bool SystemSeek(FILE* stream, uint64_t position);
bool SystemSeekToEnd(FILE* stream);

void* SystemOpenModule(const char* name);
void SystemCloseModule(void* module);
ModuleFunction SystemFindFunction(void* module, const char* name);

}  // namespace pgkit::platform
