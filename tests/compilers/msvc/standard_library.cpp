// What a program of Microsoft's ABI needs beside the headers of a C++ library, where no library of
// that ABI is at hand: its entry, memory, the functions that the headers count on, and std::string,
// compiled from the headers. The rest is the system's C library, msvcrt.dll.
#include <sys/stat.h>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

extern "C" {

int _fltused = 0;

__declspec(dllimport) int __getmainargs(int* count, char*** arguments, char*** environment,
                                        int expandWildcards, int* startupInfo);
__declspec(dllimport) FILE* __iob_func();
__declspec(dllimport) int _vsnprintf(char* buffer, size_t size, const char* format, va_list values);
__declspec(dllimport) int _stat64(const char* path, struct __stat64* found);
// The headers have a vfprintf of their own, which calls the function that is defined below.
int SystemVfprintf(FILE* stream, const char* format, va_list values) __asm__("vfprintf");

// The names under which the headers look for what msvcrt.dll calls otherwise.
FILE* __cdecl __acrt_iob_func(unsigned index) { return __iob_func() + index; }

int __cdecl __mingw_vsnprintf(char* buffer, size_t size, const char* format, va_list values) {
    return _vsnprintf(buffer, size, format, values);
}

int __cdecl __mingw_vfprintf(FILE* stream, const char* format, va_list values) {
    return SystemVfprintf(stream, format, values);
}

int __cdecl __mingw_vprintf(const char* format, va_list values) {
    return SystemVfprintf(__iob_func() + 1, format, values);
}

int __cdecl stat(const char* path, struct stat* found) {
    struct __stat64 full;
    if (_stat64(path, &full) != 0) return -1;
    *found = {};
    found->st_mode = full.st_mode;
    return 0;
}

int main(int argumentCount, char** arguments);

void Start() {
    int count = 0;
    int startupInfo = 0;
    char** arguments = nullptr;
    char** environment = nullptr;
    __getmainargs(&count, &arguments, &environment, 0, &startupInfo);
    exit(main(count, arguments));
}

}  // extern "C"

void* operator new(size_t size) { return malloc(size); }
void operator delete(void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }

namespace std {

void __throw_length_error(const char*) { abort(); }
void __throw_logic_error(const char*) { abort(); }
void __throw_out_of_range_fmt(const char*, ...) { abort(); }
void __throw_bad_alloc() { abort(); }
void __throw_bad_array_new_length() { abort(); }

}  // namespace std

template class std::basic_string<char>;
