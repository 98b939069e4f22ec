#include "disc/size.h"

#include <array>
#include <cstdio>

#include "digits.h"

namespace pgtool {

namespace {

constexpr uint64_t kLargest = uint64_t{1} << 50;

// 1 without a unit, 0 for what is none.
uint64_t FactorOf(const std::string& unit) {
    const bool isBinary = unit.size() == 2 && unit[1] == 'i';
    if (unit.size() > 1 && !isBinary) return 0;
    const uint64_t step = isBinary ? 1024 : 1000;
    switch (unit.empty() ? '\0' : unit[0]) {
        case '\0':
            return 1;
        case 'k':
        case 'K':
            return step;
        case 'M':
            return step * step;
        case 'G':
            return step * step * step;
        default:
            return 0;
    }
}

}  // namespace

std::optional<uint64_t> ParseSize(const std::string& text) {
    constexpr size_t kMostDigits = 15;
    const size_t unitAt = text.find_first_not_of("0123456789.");
    const std::string number = text.substr(0, unitAt);
    const uint64_t factor = FactorOf(unitAt == text.npos ? "" : text.substr(unitAt));
    const size_t point = number.find('.');
    const std::string fraction = point == number.npos ? "" : number.substr(point + 1);
    const auto whole = ParseDigits<uint64_t>(number.substr(0, point), 10);
    if (factor == 0 || !whole || number.size() > kMostDigits || *whole > kLargest / factor) {
        return std::nullopt;
    }
    uint64_t size = *whole * factor;
    if (point != number.npos) {
        const auto part = ParseDigits<uint64_t>(fraction, 10);
        if (!part) return std::nullopt;
        uint64_t tens = 1;
        for (size_t i = 0; i < fraction.size(); ++i)
            tens *= 10;
        size += static_cast<uint64_t>(static_cast<double>(*part) / static_cast<double>(tens) *
                                      static_cast<double>(factor));
    }
    if (size == 0) return std::nullopt;
    return size;
}

std::string DescribeSize(uint64_t bytes) {
    constexpr std::array<const char*, 4> kUnits = {"kB", "MB", "GB", "TB"};
    if (bytes < 1000) return std::to_string(bytes) + " bytes";
    auto amount = static_cast<double>(bytes) / 1000;
    size_t unit = 0;
    while (amount >= 999.95 && unit + 1 < kUnits.size()) {
        amount /= 1000;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.1f %s", amount, kUnits[unit]);
    return text;
}

}  // namespace pgtool
