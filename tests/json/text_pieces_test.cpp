// Texts that are decoded piece by piece come out as those that are decoded as a whole.
#include <gtest/gtest.h>
#include <pgkit/value_representation.h>

#include <string>
#include <vector>

#include "base/utf8.h"
#include "text/text_decoder.h"

namespace {

using pgkit::CutEnd;
using pgkit::FindTextRules;
using pgkit::TextDecoder;
using pgkit::Utf8Output;

std::string Whole(const std::string& attribute, uint32_t valueRep, const std::string& text) {
    std::vector<char> room(3 * text.size() + 1);
    Utf8Output output(room.data(), room.size());
    pgkit::DecodeText(attribute, *FindTextRules(valueRep), text, CutEnd::Replace, output);
    return room.data();
}

std::string InPieces(const std::string& attribute, uint32_t valueRep, const std::string& text,
                     size_t size) {
    TextDecoder decoder(attribute);
    decoder.Begin(*FindTextRules(valueRep), CutEnd::Replace, pgkit::IsValidUtf8(text));
    std::string utf8;
    for (size_t offset = 0; offset < text.size();) {
        const std::string_view piece = std::string_view(text).substr(offset, size);
        std::vector<char> room(3 * piece.size() + 1);
        Utf8Output output(room.data(), room.size());
        const size_t taken = decoder.Decode(piece, offset + piece.size() == text.size(), output);
        EXPECT_GT(taken, 0u);
        utf8 += room.data();
        offset += taken;
    }
    return utf8;
}

TEST(TextPieces, GiveTheTextOfTheWhole) {
    const struct {
        std::string attribute;
        uint32_t valueRep;
        std::string text;
    } cases[] = {
        {"\\ISO 2022 IR 87", VR_PN,
         "Yamada^Tarou=\x1B$B;3ED\x1B(B^\x1B$BB@O:\x1B(B=\x1B$B$d$^$@\x1B(B^\x1B$B$?$m$&\x1B(B"},
        {"\\ISO 2022 IR 149", VR_LT, "first \x1B$)C\xB1\xE6\xB5\xBF line\r\nsecond \xB1\xE6 line"},
        {"ISO_IR 192", VR_LO, "a\xC3\xA4\xE5\xB1\xB1\xF0\x9F\x98\x82\\\xC3\xA4\xFF\xE5\xB1"},
        {"GB18030", VR_LT, "\xCD\xF5\x81\x30\x81\x30\xCD\xF5 text \x81\x30\x81"},
        {"", VR_LO, "plain, then \xC3\xA4\xC3\xA4 and more"},
        {"", VR_LO, "plain, then \xE4\xE4 and more"},
        {"ISO_IR 100", VR_CS,
         "ABC\xE4\xE4"
         "DEF\xE4XYZ and so on"},
        {"ISO_IR 13", VR_PN, "\xD4\xCF\xC0\xDE^\xC0\xDB\xB3=\x1B$B;3ED\x1B(J^\x1B$BB@O:\x1B(J"},
        {"\\ISO 2022 IR 87", VR_LO, "no end \x1B$B;3E"},
        {"\\ISO 2022 IR 87", VR_LO, "no sequence \x1B$Z \x1B"},
    };
    for (const auto& [attribute, valueRep, text] : cases) {
        for (size_t size = TextDecoder::kMaxHeldBack + 1; size < text.size() + 2; ++size) {
            EXPECT_EQ(InPieces(attribute, valueRep, text, size), Whole(attribute, valueRep, text))
                << text << " in pieces of " << size;
        }
    }
}

}  // namespace
