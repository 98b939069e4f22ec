#include "anonymize/new_uids.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>

#include "anonymize/sha256.h"
#include "disk.h"

namespace pgtool {

namespace {

constexpr size_t kKeySize = 32;
constexpr const char* kHexDigits = "0123456789abcdef";

std::string NewKey() {
    std::random_device random;
    std::string key;
    while (key.size() < kKeySize)
        key += static_cast<char>(random());
    return key;
}

// 128 bits, the most significant first, as a decimal number.
std::string Decimal(std::string bytes) {
    std::string digits;
    while (!bytes.empty()) {
        unsigned rest = 0;
        for (char& byte : bytes) {
            const unsigned value = rest * 256 + static_cast<uint8_t>(byte);
            byte = static_cast<char>(value / 10);
            rest = value % 10;
        }
        digits += static_cast<char>('0' + rest);
        bytes.erase(0, bytes.find_first_not_of('\0'));
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

int HexValue(char digit) {
    const std::string digits = kHexDigits;
    const size_t value = digits.find(digit);
    return value == digits.npos ? -1 : static_cast<int>(value);
}

// What a key file holds as a key; empty for anything else.
std::string KeyOf(const std::string& text) {
    if (text.size() != 2 * kKeySize) return "";
    std::string key;
    for (size_t i = 0; i < text.size(); i += 2) {
        const int high = HexValue(text[i]);
        const int low = HexValue(text[i + 1]);
        if (high < 0 || low < 0) return "";
        key += static_cast<char>(high * 16 + low);
    }
    return key;
}

std::string HexOf(const std::string& key) {
    std::string text;
    for (const char c : key) {
        text += kHexDigits[static_cast<uint8_t>(c) >> 4];
        text += kHexDigits[c & 0xF];
    }
    return text;
}

// Closes the file.
bool WriteKey(std::FILE* stream, const std::string& key) {
    const bool isWritten = std::fputs((HexOf(key) + "\n").c_str(), stream) >= 0;
    return std::fclose(stream) == 0 && isWritten;
}

}  // namespace

NewUids::NewUids() : key_(NewKey()) {}

std::string NewUids::UseKeyFile(const std::string& path) {
    const NewFile created = CreateNewFile(path, Readers::UserAlone);
    if (created.stream != nullptr) {
        return WriteKey(created.stream, key_) ? "" : path + ": the key cannot be written";
    }
    std::FILE* const stream = created.isNameTaken ? std::fopen(path.c_str(), "rb") : nullptr;
    if (stream == nullptr) return path + ": the key can be neither read nor made";
    char text[2 * kKeySize + 2] = {};
    const size_t size = std::fread(text, 1, sizeof text - 1, stream);
    std::fclose(stream);
    std::string line(text, size);
    while (line.ends_with('\n') || line.ends_with('\r'))
        line.pop_back();
    const std::string key = KeyOf(line);
    if (key.empty()) return path + ": this is no key";
    key_ = key;
    return "";
}

std::string NewUids::Of(const std::string& uid) const {
    if (uid.empty() || uid.starts_with("1.2.840.10008.")) return uid;
    const Digest digest = HmacSha256(key_, uid);
    std::string uuid(digest.begin(), digest.begin() + 16);
    // A UUID of one's own making (RFC 9562, version 8), of the usual variant.
    uuid[6] = static_cast<char>((uuid[6] & 0x0F) | 0x80);
    uuid[8] = static_cast<char>((uuid[8] & 0x3F) | 0x80);
    return "2.25." + Decimal(uuid);
}

}  // namespace pgtool
