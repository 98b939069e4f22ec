// Composes the files that benchmarks read.
#pragma once

#include <cstdint>
#include <string>

namespace pgkit_bench {

enum class Encoding { kExplicit, kImplicit };

// Little endian data sets, element by element.
class Encoder {
  public:
    explicit Encoder(Encoding encoding) : encoding_(encoding) {}

    Encoder& Element(uint16_t group, uint16_t element, const char* vr, std::string value) {
        if (value.size() % 2 != 0) value += std::string(vr) == "UI" ? '\0' : ' ';
        Number(group, 2);
        Number(element, 2);
        const uint32_t length = static_cast<uint32_t>(value.size());
        const bool isLong = std::string("OB OW SQ UN UT").find(vr) != std::string::npos;
        if (encoding_ == Encoding::kExplicit) {
            bytes_ += vr;
            if (isLong) Number(0, 2);
            Number(length, isLong ? 4 : 2);
        } else {
            Number(length, 4);
        }
        bytes_ += value;
        return *this;
    }

    Encoder& Item(const std::string& content) {
        Number(0xFFFE, 2);
        Number(0xE000, 2);
        Number(static_cast<uint32_t>(content.size()), 4);
        bytes_ += content;
        return *this;
    }

    void Number(uint32_t number, int size) {
        for (int i = 0; i < size; ++i)
            bytes_ += static_cast<char>(number >> (8 * i) & 0xFF);
    }

    const std::string& Bytes() const { return bytes_; }

  private:
    Encoding encoding_;
    std::string bytes_;
};

// A file: preamble, meta information and a data set.
inline std::string Part10(const std::string& sopClass, const std::string& transferSyntax,
                          const std::string& dataSet) {
    Encoder meta(Encoding::kExplicit);
    meta.Element(0x0002, 0x0001, "OB", std::string("\0\1", 2))
        .Element(0x0002, 0x0002, "UI", sopClass)
        .Element(0x0002, 0x0003, "UI", "1.2.826.0.1.3680043.2.1143.1")
        .Element(0x0002, 0x0010, "UI", transferSyntax)
        .Element(0x0002, 0x0012, "UI", "1.2.826.0.1.3680043.2.1143");
    Encoder length(Encoding::kExplicit);
    Encoder value(Encoding::kExplicit);
    value.Number(static_cast<uint32_t>(meta.Bytes().size()), 4);
    length.Element(0x0002, 0x0000, "UL", value.Bytes());
    return std::string(128, '\0') + "DICM" + length.Bytes() + meta.Bytes() + dataSet;
}

}  // namespace pgkit_bench
