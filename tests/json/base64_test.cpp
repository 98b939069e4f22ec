#include "json/base64.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using pgkit::Base64Decoder;

std::string Encode(std::string_view bytes) {
    std::string characters(pgkit::Base64Size(bytes.size()), '?');
    pgkit::EncodeBase64(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(),
                        characters.data());
    return characters;
}

// In pieces of a size; "broken" when it is.
std::string Decode(std::string_view characters, size_t pieceSize) {
    Base64Decoder decoder;
    std::string bytes;
    while (!characters.empty()) {
        const std::string_view piece = characters.substr(0, pieceSize);
        std::vector<uint8_t> room(Base64Decoder::RoomFor(piece.size()));
        const size_t count = decoder.Decode(piece, room.data());
        EXPECT_LE(count, room.size());
        bytes.append(room.begin(), room.begin() + static_cast<std::ptrdiff_t>(count));
        characters.remove_prefix(piece.size());
    }
    return decoder.IsComplete() ? bytes : "broken";
}

// The test vectors of RFC 4648, section 10.
TEST(Base64, HasTheCharactersOfTheStandard) {
    EXPECT_EQ(Encode(""), "");
    EXPECT_EQ(Encode("f"), "Zg==");
    EXPECT_EQ(Encode("fo"), "Zm8=");
    EXPECT_EQ(Encode("foo"), "Zm9v");
    EXPECT_EQ(Encode("foob"), "Zm9vYg==");
    EXPECT_EQ(Encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(Encode("foobar"), "Zm9vYmFy");
    EXPECT_EQ(Encode("\xFB\xEF\xBE\xFF\xFF\xFF"), "++++////");
}

TEST(Base64, DecodesWhatItEncodesInAnyPieces) {
    std::string bytes;
    for (int i = 0; i < 300; ++i) {
        for (const size_t piece : {1, 2, 3, 4, 5, 7, 1000})
            ASSERT_EQ(Decode(Encode(bytes), piece), bytes) << i << ", " << piece;
        bytes += static_cast<char>(i * 89 + i / 7);
    }
}

TEST(Base64, RefusesWhatNoEncoderWrites) {
    for (const char* characters : {"Z", "Zg", "Zg=", "Zh==", "Zm9=", "Z===", "=", "Zg==Zg==",
                                   "Zm9v=", "Zm 9", "Zm9\n", "Z-_v", "Zg=v", "\xFF\xFF\xFF\xFF"}) {
        for (const size_t piece : {1, 2, 100})
            EXPECT_EQ(Decode(characters, piece), "broken") << characters;
    }
}

}  // namespace
