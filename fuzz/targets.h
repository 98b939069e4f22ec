// The fuzz targets. Each takes any bytes, uses the library with them as a host would, and throws a
// Violation when a promise does not hold. What the bytes are is said with each.
#pragma once

#include <cstdint>
#include <span>

namespace pgkit_fuzz {

using Bytes = std::span<const uint8_t>;

struct Target {
    const char* name;
    void (*run)(Bytes input);
};

// A data set file, open flags and load limit: every getter, the dump, the copy.
void Read(Bytes input);
// A data set file and a write mode: saved, read again and saved again, nothing changes.
void RoundTrip(Bytes input);
// A data set file and a series of edits; what comes of them is dumped and saved.
void Edit(Bytes input);

inline constexpr Target kTargets[] = {
    {"read", Read},
    {"round_trip", RoundTrip},
    {"edit", Edit},
};

}  // namespace pgkit_fuzz
