#include "support/failing_files.h"

#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/platform.h"
#include "platform/temporary_file.h"
#include "support/forwarded_platform.h"

// The linker sends calls of these functions to __wrap_name, and those of __real_name to the
// function itself.
extern "C" {
size_t __real_fread(void* out, size_t size, size_t count, FILE* stream);
size_t __real_fwrite(const void* bytes, size_t size, size_t count, FILE* stream);
int __real_fflush(FILE* stream);
int __real_fclose(FILE* stream);
size_t __wrap_fread(void* out, size_t size, size_t count, FILE* stream);
size_t __wrap_fwrite(const void* bytes, size_t size, size_t count, FILE* stream);
int __wrap_fflush(FILE* stream);
int __wrap_fclose(FILE* stream);
}

namespace {

pgkit_test::FailurePlan fileCalls;
size_t filesOpened = 0;
size_t filesFlushed = 0;

template <typename Open>
FILE* CountedOpen(Open&& open) {
    ++filesOpened;
    return fileCalls.Fails() ? nullptr : open();
}

}  // namespace

size_t __wrap_fread(void* out, size_t size, size_t count, FILE* stream) {
    return fileCalls.Fails() ? 0 : __real_fread(out, size, count, stream);
}

size_t __wrap_fwrite(const void* bytes, size_t size, size_t count, FILE* stream) {
    return fileCalls.Fails() ? 0 : __real_fwrite(bytes, size, count, stream);
}

int __wrap_fflush(FILE* stream) { return fileCalls.Fails() ? EOF : __real_fflush(stream); }

int __wrap_fclose(FILE* stream) {
    const int result = __real_fclose(stream);
    return fileCalls.Fails() ? EOF : result;
}

namespace pgkit::platform {

FILE* OpenForReading(const char* path) {
    return CountedOpen([&] { return SystemOpenForReading(path); });
}

FILE* OpenForReading(const char* path, uint64_t& size) {
    return CountedOpen([&] { return SystemOpenForReading(path, size); });
}

FILE* OpenForUpdate(const char* path) {
    return CountedOpen([&] { return SystemOpenForUpdate(path); });
}

FILE* CreateBinary(const char* path) {
    return CountedOpen([&] { return SystemCreateBinary(path); });
}

FILE* CreateText(const char* path) {
    return CountedOpen([&] { return SystemCreateText(path); });
}

FILE* AppendText(const char* path) {
    return CountedOpen([&] { return SystemAppendText(path); });
}

FILE* CreateReplacement(const char* path, std::string& replacement, const char* stem) {
    return CountedOpen([&] { return SystemCreateReplacement(path, replacement, stem); });
}

FILE* CreateTemporary() {
    return CountedOpen([&] { return SystemCreateTemporary(); });
}

bool FlushToDisk(const char* replacement) {
    ++filesFlushed;
    return !fileCalls.Fails() && SystemFlushToDisk(replacement);
}

bool ReplaceWith(const char* path, const char* replacement) {
    return !fileCalls.Fails() && SystemReplaceWith(path, replacement);
}

bool Seek(FILE* stream, uint64_t position) {
    return !fileCalls.Fails() && SystemSeek(stream, position);
}

bool SeekToEnd(FILE* stream) { return !fileCalls.Fails() && SystemSeekToEnd(stream); }

}  // namespace pgkit::platform

namespace pgkit_test {

FailingFiles::FailingFiles(size_t allowed, Failures failures) {
    filesOpened = 0;
    filesFlushed = 0;
    fileCalls.Arm(allowed, failures);
}

FailingFiles::~FailingFiles() { fileCalls.Disarm(); }

bool FailingFiles::HasFailed() const { return fileCalls.HasFailed(); }

size_t FilesOpened() { return filesOpened; }

size_t FilesFlushedToDisk() { return filesFlushed; }

}  // namespace pgkit_test
