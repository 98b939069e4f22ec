// The little of the C library and of the system that the host uses, by its own declarations: there
// is no library of the compiler's to link.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

extern "C" {

__declspec(dllimport) void* malloc(size_t size);
__declspec(dllimport) void free(void* block);
__declspec(dllimport) int strcmp(const char* a, const char* b);
__declspec(dllimport) char* strcpy(char* to, const char* from);
__declspec(dllimport) FILE* fopen(const char* path, const char* mode);
__declspec(dllimport) int fclose(FILE* stream);
__declspec(dllimport) int fgetc(FILE* stream);
__declspec(dllimport) size_t fread(void* buffer, size_t size, size_t count, FILE* stream);
__declspec(dllimport) int fseek(FILE* stream, long offset, int origin);
__declspec(dllimport) void exit(int status);
__declspec(dllimport) int _heapchk(void);  // -2 when the heap is sound

__declspec(dllimport) void* GlobalAlloc(uint32_t flags, size_t size);
__declspec(dllimport) uint32_t GlobalFlags(void* block);  // 0x8000 once the block is freed
__declspec(dllimport) void* GetModuleHandleA(const char* name);
__declspec(dllimport) void* GetProcAddress(void* module, const char* name);

}  // extern "C"
