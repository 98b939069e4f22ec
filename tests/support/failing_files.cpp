#include "support/failing_files.h"

#include <cstdint>
#include <cstdio>
#include <string>

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

// The linker sends calls of a wrapped name to __wrap_name, and those of __real_name to the function
// itself. It knows functions of C++ by their mangled names.
#define REAL_NAME(mangled) __asm__("__real__ZN5pgkit8platform" mangled)
#define WRAPPED_NAME(mangled) __asm__("__wrap__ZN5pgkit8platform" mangled)

using Path = const char*;

FILE* RealOpenForReading(Path path) REAL_NAME("14OpenForReadingEPKc");
FILE* RealOpenWithSize(Path path, uint64_t& size)
    REAL_NAME("14OpenForReadingEPKcR" PGKIT_TEST_MANGLED_UINT64);
FILE* RealOpenForUpdate(Path path) REAL_NAME("13OpenForUpdateEPKc");
FILE* RealCreateBinary(Path path) REAL_NAME("12CreateBinaryEPKc");
FILE* RealCreateText(Path path) REAL_NAME("10CreateTextEPKc");
FILE* RealAppendText(Path path) REAL_NAME("10AppendTextEPKc");
FILE* RealCreateReplacement(Path path, std::string& replacement, Path stem)
    REAL_NAME("17CreateReplacementEPKcRNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES2_");
FILE* RealCreateTemporary() REAL_NAME("15CreateTemporaryEv");
bool RealFlushToDisk(Path path) REAL_NAME("11FlushToDiskEPKc");
bool RealReplaceWith(Path path, Path replacement) REAL_NAME("11ReplaceWithEPKcS2_");
bool RealSeek(FILE* stream, uint64_t position)
    REAL_NAME("4SeekE" PGKIT_TEST_MANGLED_FILE PGKIT_TEST_MANGLED_UINT64);
bool RealSeekToEnd(FILE* stream) REAL_NAME("9SeekToEndE" PGKIT_TEST_MANGLED_FILE);

FILE* WrappedOpenForReading(Path path) WRAPPED_NAME("14OpenForReadingEPKc");
FILE* WrappedOpenWithSize(Path path, uint64_t& size)
    WRAPPED_NAME("14OpenForReadingEPKcR" PGKIT_TEST_MANGLED_UINT64);
FILE* WrappedOpenForUpdate(Path path) WRAPPED_NAME("13OpenForUpdateEPKc");
FILE* WrappedCreateBinary(Path path) WRAPPED_NAME("12CreateBinaryEPKc");
FILE* WrappedCreateText(Path path) WRAPPED_NAME("10CreateTextEPKc");
FILE* WrappedAppendText(Path path) WRAPPED_NAME("10AppendTextEPKc");
FILE* WrappedCreateReplacement(Path path, std::string& replacement, Path stem)
    WRAPPED_NAME("17CreateReplacementEPKcRNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES2_");
FILE* WrappedCreateTemporary() WRAPPED_NAME("15CreateTemporaryEv");
bool WrappedFlushToDisk(Path path) WRAPPED_NAME("11FlushToDiskEPKc");
bool WrappedReplaceWith(Path path, Path replacement) WRAPPED_NAME("11ReplaceWithEPKcS2_");
bool WrappedSeek(FILE* stream, uint64_t position)
    WRAPPED_NAME("4SeekE" PGKIT_TEST_MANGLED_FILE PGKIT_TEST_MANGLED_UINT64);
bool WrappedSeekToEnd(FILE* stream) WRAPPED_NAME("9SeekToEndE" PGKIT_TEST_MANGLED_FILE);

#undef REAL_NAME
#undef WRAPPED_NAME

namespace {

pgkit_test::FailurePlan plan;
size_t filesOpened = 0;
size_t filesFlushed = 0;

template <typename Open>
FILE* CountedOpen(Open&& open) {
    ++filesOpened;
    return plan.Fails() ? nullptr : open();
}

}  // namespace

size_t __wrap_fread(void* out, size_t size, size_t count, FILE* stream) {
    return plan.Fails() ? 0 : __real_fread(out, size, count, stream);
}

size_t __wrap_fwrite(const void* bytes, size_t size, size_t count, FILE* stream) {
    return plan.Fails() ? 0 : __real_fwrite(bytes, size, count, stream);
}

int __wrap_fflush(FILE* stream) { return plan.Fails() ? EOF : __real_fflush(stream); }

int __wrap_fclose(FILE* stream) {
    const int result = __real_fclose(stream);
    return plan.Fails() ? EOF : result;
}

FILE* WrappedOpenForReading(Path path) {
    return CountedOpen([&] { return RealOpenForReading(path); });
}

FILE* WrappedOpenWithSize(Path path, uint64_t& size) {
    return CountedOpen([&] { return RealOpenWithSize(path, size); });
}

FILE* WrappedOpenForUpdate(Path path) {
    return CountedOpen([&] { return RealOpenForUpdate(path); });
}

FILE* WrappedCreateBinary(Path path) {
    return CountedOpen([&] { return RealCreateBinary(path); });
}

FILE* WrappedCreateText(Path path) {
    return CountedOpen([&] { return RealCreateText(path); });
}

FILE* WrappedAppendText(Path path) {
    return CountedOpen([&] { return RealAppendText(path); });
}

FILE* WrappedCreateReplacement(Path path, std::string& replacement, Path stem) {
    return CountedOpen([&] { return RealCreateReplacement(path, replacement, stem); });
}

FILE* WrappedCreateTemporary() {
    return CountedOpen([&] { return RealCreateTemporary(); });
}

bool WrappedFlushToDisk(Path path) {
    ++filesFlushed;
    return !plan.Fails() && RealFlushToDisk(path);
}

bool WrappedReplaceWith(Path path, Path replacement) {
    return !plan.Fails() && RealReplaceWith(path, replacement);
}

bool WrappedSeek(FILE* stream, uint64_t position) {
    return !plan.Fails() && RealSeek(stream, position);
}

bool WrappedSeekToEnd(FILE* stream) { return !plan.Fails() && RealSeekToEnd(stream); }

namespace pgkit_test {

FailingFiles::FailingFiles(size_t allowed, Failures failures) {
    filesOpened = 0;
    filesFlushed = 0;
    plan.Arm(allowed, failures);
}

FailingFiles::~FailingFiles() { plan.Disarm(); }

bool FailingFiles::HasFailed() const { return plan.HasFailed(); }

size_t FilesOpened() { return filesOpened; }

size_t FilesFlushedToDisk() { return filesFlushed; }

}  // namespace pgkit_test
