// Constant-time lookups in constant tables: indexes that the compiler makes.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace pgkit {

// FNV-1a over the characters, each folded first (to upper case, say).
template <typename Fold = std::identity>
constexpr uint32_t HashText(std::string_view text, Fold fold = {}) {
    uint32_t hash = 2166136261u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(fold(c))) * 16777619u;
    return hash;
}

// An open-addressing hash table of row numbers, at most half full. A row that comes later than one
// with an equal key is found later, so the first row wins every lookup, as in a scan from the top.
template <size_t kBuckets>
class RowIndex {
  public:
    static_assert(std::has_single_bit(kBuckets));
    static constexpr size_t kNoRow = 0xFFFF;

    template <typename HashOfRow>
    consteval RowIndex(size_t rows, HashOfRow hashOfRow) {
        // Not a constant expression, so the compiler stops here when the index is too small.
        if (rows * 2 > kBuckets) throw "more rows than half of the buckets";
        rows_.fill(kNoRow);
        for (size_t row = 0; row < rows; ++row) {
            size_t bucket = Bucket(hashOfRow(row));
            while (rows_[bucket] != kNoRow)
                bucket = Next(bucket);
            rows_[bucket] = static_cast<uint16_t>(row);
        }
    }

    // The first row of this hash that matches, or kNoRow.
    template <typename Matches>
    constexpr size_t Find(uint32_t hash, Matches matches) const {
        size_t bucket = Bucket(hash);
        while (rows_[bucket] != kNoRow && !matches(size_t{rows_[bucket]}))
            bucket = Next(bucket);
        return rows_[bucket];
    }

  private:
    static constexpr size_t Bucket(uint32_t hash) {
        return (hash * 0x9E3779B1u) >> (33 - std::bit_width(kBuckets));
    }
    static constexpr size_t Next(size_t bucket) { return (bucket + 1) % kBuckets; }

    std::array<uint16_t, kBuckets> rows_{};
};

}  // namespace pgkit
