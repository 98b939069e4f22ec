#include "anonymize/sha256.h"

#include <bit>
#include <cstddef>
#include <string>

namespace pgtool {

namespace {

constexpr size_t kBlock = 64;
using State = std::array<uint32_t, 8>;

constexpr std::array<uint32_t, 64> kConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t WordAt(const char* bytes) {
    uint32_t word = 0;
    for (size_t i = 0; i < 4; ++i)
        word = word << 8 | static_cast<uint8_t>(bytes[i]);
    return word;
}

std::array<uint32_t, 64> ScheduleOf(const char* block) {
    std::array<uint32_t, 64> w{};
    for (size_t i = 0; i < 16; ++i)
        w[i] = WordAt(block + 4 * i);
    for (size_t i = 16; i < w.size(); ++i) {
        const uint32_t a = w[i - 15];
        const uint32_t b = w[i - 2];
        w[i] = w[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + w[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
    }
    return w;
}

void AddBlock(State& state, const char* block) {
    const auto w = ScheduleOf(block);
    auto [a, b, c, d, e, f, g, h] = state;
    for (size_t i = 0; i < w.size(); ++i) {
        const uint32_t t1 = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                            ((e & f) ^ (~e & g)) + kConstants[i] + w[i];
        const uint32_t t2 =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + t1;
        d = c;
        c = b;
        b = a;
        a = t1 + t2;
    }
    const State added = {a, b, c, d, e, f, g, h};
    for (size_t i = 0; i < state.size(); ++i)
        state[i] += added[i];
}

// The message, a 1 bit, zeros, and the number of bits in the last 8 bytes.
std::string Padded(std::string_view bytes) {
    std::string padded(bytes);
    padded += '\x80';
    while (padded.size() % kBlock != kBlock - 8)
        padded += '\0';
    const uint64_t bits = uint64_t{bytes.size()} * 8;
    for (int shift = 56; shift >= 0; shift -= 8)
        padded += static_cast<char>(bits >> shift);
    return padded;
}

std::string_view TextOf(const Digest& digest) {
    return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

}  // namespace

Digest Sha256(std::string_view bytes) {
    State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                   0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    const std::string padded = Padded(bytes);
    for (size_t at = 0; at < padded.size(); at += kBlock)
        AddBlock(state, padded.data() + at);
    Digest digest{};
    for (size_t i = 0; i < digest.size(); ++i)
        digest[i] = static_cast<uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
    return digest;
}

Digest HmacSha256(std::string_view key, std::string_view bytes) {
    const Digest shortened = Sha256(key);
    std::string block(key.size() > kBlock ? TextOf(shortened) : key);
    block.resize(kBlock, '\0');
    std::string inner = block;
    std::string outer = block;
    for (size_t i = 0; i < kBlock; ++i) {
        inner[i] = static_cast<char>(inner[i] ^ 0x36);
        outer[i] = static_cast<char>(outer[i] ^ 0x5C);
    }
    const Digest first = Sha256(inner + std::string(bytes));
    return Sha256(outer + std::string(TextOf(first)));
}

}  // namespace pgtool
