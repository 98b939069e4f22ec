#include "json/base64.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/byte_order.h"

namespace pgkit {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr char kPadding = '=';

// The two characters of every 12 bits.
struct CharacterPair {
    char first;
    char second;
};
constexpr auto kPairs = [] {
    std::array<CharacterPair, 4096> pairs{};
    for (size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {kAlphabet[i >> 6], kAlphabet[i & 63]};
    return pairs;
}();

constexpr uint8_t kNoDigit = 0xFF;
constexpr auto kDigits = [] {
    std::array<uint8_t, 256> digits{};
    digits.fill(kNoDigit);
    for (size_t i = 0; i < kAlphabet.size(); ++i)
        digits[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
    return digits;
}();

uint32_t DigitOf(char c) { return kDigits[static_cast<uint8_t>(c)]; }

void PutPair(uint64_t bits, char* characters) {
    std::memcpy(characters, &kPairs[bits & 0xFFF], sizeof(CharacterPair));
}

// The last one or two bytes.
void EncodeRest(const uint8_t* bytes, size_t count, char* characters) {
    const uint32_t second = count > 1 ? bytes[1] : 0;
    const uint32_t bits = uint32_t{bytes[0]} << 16 | second << 8;
    PutPair(bits >> 12, characters);
    PutPair(bits, characters + 2);
    characters[3] = kPadding;
    if (count == 1) characters[2] = kPadding;
}

}  // namespace

void EncodeBase64(const uint8_t* bytes, size_t count, char* characters) {
    // Six bytes at a time, of eight that are read.
    for (; count >= 8; count -= 6, bytes += 6, characters += 8) {
        const auto bits = NumberAt<uint64_t>(bytes, ByteOrder::Big);
        PutPair(bits >> 52, characters);
        PutPair(bits >> 40, characters + 2);
        PutPair(bits >> 28, characters + 4);
        PutPair(bits >> 16, characters + 6);
    }
    for (; count >= 3; count -= 3, bytes += 3, characters += 4) {
        const uint32_t bits = uint32_t{bytes[0]} << 16 | uint32_t{bytes[1]} << 8 | bytes[2];
        PutPair(bits >> 12, characters);
        PutPair(bits, characters + 2);
    }
    if (count > 0) EncodeRest(bytes, count, characters);
}

size_t Base64Decoder::Decode(std::string_view characters, uint8_t* bytes) {
    size_t written = 0;
    while (pendingCount_ > 0 && !characters.empty()) {
        pending_[pendingCount_++] = characters[0];
        characters.remove_prefix(1);
        if (pendingCount_ < kBase64Characters) continue;
        written += DecodeGroup(pending_, bytes + written);
        pendingCount_ = 0;
    }
    while (characters.size() > kBase64Characters && !isBroken_) {
        // All but the last group have nothing but digits.
        const uint32_t first = DigitOf(characters[0]);
        const uint32_t second = DigitOf(characters[1]);
        const uint32_t third = DigitOf(characters[2]);
        const uint32_t fourth = DigitOf(characters[3]);
        if ((first | second | third | fourth) > 63 || hasPadding_) break;
        const uint32_t bits = first << 18 | second << 12 | third << 6 | fourth;
        bytes[written] = static_cast<uint8_t>(bits >> 16);
        bytes[written + 1] = static_cast<uint8_t>(bits >> 8);
        bytes[written + 2] = static_cast<uint8_t>(bits);
        written += kBase64Bytes;
        characters.remove_prefix(kBase64Characters);
    }
    while (characters.size() >= kBase64Characters && !isBroken_) {
        written += DecodeGroup(characters.data(), bytes + written);
        characters.remove_prefix(kBase64Characters);
    }
    if (isBroken_) return 0;
    std::ranges::copy(characters, pending_ + pendingCount_);
    pendingCount_ += characters.size();
    return written;
}

size_t Base64Decoder::DecodeGroup(const char* group, uint8_t* bytes) {
    size_t digits = kBase64Characters;
    if (group[3] == kPadding) digits = group[2] == kPadding ? 2 : 3;
    uint32_t bits = 0;
    uint32_t seen = 0;
    for (size_t i = 0; i < kBase64Characters; ++i) {
        const uint32_t digit = i < digits ? DigitOf(group[i]) : 0;
        seen |= digit;
        bits = bits << 6 | (digit & 63);
    }
    const size_t count = digits - 1;
    // Only digits, nothing behind padding, and no bits that stand for no byte.
    const uint32_t rest = bits & (0xFFFFFFu >> (8 * count));
    isBroken_ = isBroken_ || seen > 63 || hasPadding_ || rest != 0;
    hasPadding_ = count < kBase64Bytes;
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(bits >> (16 - 8 * i));
    return count;
}

}  // namespace pgkit
