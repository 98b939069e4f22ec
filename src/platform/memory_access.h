// What the address sanitizer is told about memory that is handed out in pieces. In builds without
// it all of this is nothing.
#pragma once

#include <cstddef>

// GCC tells by a name of its own, clang by a feature.
#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#define PGKIT_WATCHES_MEMORY 1
#else
#define PGKIT_WATCHES_MEMORY 0
#endif

namespace pgkit::platform {

#if PGKIT_WATCHES_MEMORY

// Left free behind each piece, so that an access behind its end is none of the next piece.
inline constexpr size_t kGapBehindPieces = 16;

// From now on an access is an error, or is none.
inline void ForbidAccess(void* memory, size_t size) { __asan_poison_memory_region(memory, size); }
inline void AllowAccess(void* memory, size_t size) { __asan_unpoison_memory_region(memory, size); }

// The size of an allowed piece, which ends where access is forbidden; 0 for one that is forbidden.
inline size_t AllowedSize(const void* piece) {
    auto* const begin = static_cast<const char*>(piece);
    size_t size = 0;
    while (__asan_address_is_poisoned(begin + size) == 0)
        ++size;
    return size;
}

// Forbids a whole piece, which must be allowed.
inline void ForbidPiece(void* piece) {
    static_cast<void>(*static_cast<volatile char*>(piece));
    ForbidAccess(piece, AllowedSize(piece));
}

#else

inline constexpr size_t kGapBehindPieces = 0;
inline void ForbidAccess(void*, size_t) {}
inline void AllowAccess(void*, size_t) {}
inline void ForbidPiece(void*) {}

#endif

#undef PGKIT_WATCHES_MEMORY

}  // namespace pgkit::platform
