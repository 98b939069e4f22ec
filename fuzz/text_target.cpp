#include <pgkit/text.h>
#include <pgkit/value_representation.h>

#include <string>
#include <string_view>

#include "base/utf8.h"
#include "input.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

constexpr const char* kCharacterSets[] = {
    "",
    "ISO_IR 6",
    "ISO_IR 100",
    "ISO_IR 13",
    "ISO_IR 166",
    "ISO_IR 192",
    "GB18030",
    "GBK",
    "\\ISO 2022 IR 87",
    "\\ISO 2022 IR 149",
    "\\ISO 2022 IR 58",
    "ISO 2022 IR 13\\ISO 2022 IR 87\\ISO 2022 IR 159",
    "ISO 2022 IR 100\\ISO 2022 IR 144\\ISO 2022 IR 149\\ISO 2022 IR 58\\ISO 2022 IR 87",
    "\\ISO 2022 IR 126\\ISO 2022 IR 127\\ISO 2022 IR 138\\ISO 2022 IR 203\\ISO 2022 IR 101",
};

constexpr uint32_t kValueReps[] = {VR_PN, VR_LO, VR_LT, VR_SH, VR_ST, VR_UT, VR_CS, VR_UC};

struct Converter {
    std::string characterSet;
    uint32_t valueRep;

    std::string Decode(std::string_view bytes) const {
        const auto length = Decode(bytes, nullptr, 0);
        Require(length >= 0, "reading a text does not fail");
        std::string utf8(static_cast<size_t>(length) + 1, '\0');
        Require(Decode(bytes, utf8.data(), utf8.size()) == length, "a length is told once");
        utf8.pop_back();
        return utf8;
    }
    int64_t Decode(std::string_view bytes, char* buffer, size_t size) const {
        return pgxTextToUtf8(characterSet.c_str(), valueRep, bytes.data(), bytes.size(), buffer,
                             size);
    }

    // Whether the text can be written.
    bool Encode(std::string_view utf8, std::string& bytes) const {
        const int64_t length =
            pgxTextFromUtf8(characterSet.c_str(), valueRep, utf8.data(), utf8.size(), nullptr, 0);
        if (length < 0) return false;
        bytes.assign(static_cast<size_t>(length) + 1, '\0');
        pgxTextFromUtf8(characterSet.c_str(), valueRep, utf8.data(), utf8.size(), bytes.data(),
                        bytes.size());
        bytes.pop_back();
        return true;
    }
};

std::string_view WithoutPadding(std::string_view text) {
    return text.substr(0, text.find_last_not_of(std::string_view(" \0", 2)) + 1);
}

// Any bytes as a value.
void ReadAndWrite(const Converter& converter, std::string_view bytes, size_t smallSize) {
    const std::string utf8 = converter.Decode(bytes);
    Require(pgkit::IsValidUtf8(utf8), "a text that was read is UTF-8");
    Require(utf8.size() <= 3 * bytes.size(), "a text is at most three times as long as its bytes");

    std::string cut(smallSize + 1, 'x');
    converter.Decode(bytes, cut.data(), smallSize);
    Require(cut[smallSize] == 'x', "a buffer is not exceeded");
    const std::string_view shown = std::string_view(cut).substr(0, cut.find('\0'));
    Require(smallSize == 0 || (pgkit::IsValidUtf8(shown) && utf8.starts_with(shown)),
            "a text that does not fit is cut between characters");

    const std::string field(bytes);
    char shortened[64];
    pgxFieldToUtf8(converter.characterSet.c_str(), converter.valueRep, field.c_str(), shortened,
                   sizeof shortened);
    Require(pgkit::IsValidUtf8(shortened), "a field that was read is UTF-8");

    std::string written;
    if (converter.Encode(utf8, written)) {
        // Blanks in front of a last escape sequence are none at the end; without it they are.
        Require(converter.Decode(written) == WithoutPadding(utf8),
                "what was read and written reads the same");
    }
}

// Any bytes as UTF-8.
void WriteAndRead(const Converter& converter, std::string_view utf8) {
    std::string written;
    if (!converter.Encode(utf8, written)) return;
    Require(pgkit::IsValidUtf8(utf8), "what is no UTF-8 is not written");
    Require(converter.Decode(written) == WithoutPadding(utf8), "what was written reads the same");
}

}  // namespace

void Text(Bytes bytes) {
    Input input(bytes);
    Converter converter;
    converter.valueRep = input.Pick(kValueReps);
    const uint8_t choice = input.Byte();
    converter.characterSet =
        choice < 0xF0 ? kCharacterSets[choice % std::size(kCharacterSets)] : input.Text(40).c_str();
    const size_t smallSize = input.Byte();
    const std::string_view rest(reinterpret_cast<const char*>(input.Rest().data()),
                                input.Rest().size());
    ReadAndWrite(converter, rest, smallSize);
    WriteAndRead(converter, rest);
}

}  // namespace pgkit_fuzz
