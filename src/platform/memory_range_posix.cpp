#include <sys/mman.h>

#include "platform/memory_range.h"

namespace pgkit::platform {

namespace {

// GCC tells by a name of its own, clang by a feature.
#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr bool kHasAddressSanitizer = true;
#else
constexpr bool kHasAddressSanitizer = false;
#endif

constexpr int kUnbacked = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;

}  // namespace

void* ReserveAddresses(size_t size) {
    if (kHasAddressSanitizer) return nullptr;
    void* range = ::mmap(nullptr, size, PROT_NONE, kUnbacked, -1, 0);
    return range == MAP_FAILED ? nullptr : range;
}

bool CommitMemory(void* piece, size_t size) {
    if (::mprotect(piece, size, PROT_READ | PROT_WRITE) != 0) return false;
#if defined(MADV_HUGEPAGE)
    ::madvise(piece, size, MADV_HUGEPAGE);
#endif
    return true;
}

// New pages without access in the place of the old ones: so the system takes back its promise of
// memory, too. When it cannot, they stay as they are.
void DecommitMemory(void* piece, size_t size) {
    static_cast<void>(::mmap(piece, size, PROT_NONE, kUnbacked | MAP_FIXED, -1, 0));
}

void ReleaseAddresses(void* range, size_t size) { ::munmap(range, size); }

}  // namespace pgkit::platform
