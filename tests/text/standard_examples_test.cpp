// The examples of the standard's annexes, and a name or word for every other character set, byte by
// byte: read, and written again as they stand there.
#include <gtest/gtest.h>

#include "text/converted.h"

namespace {

using pgkit_test::Decoded;
using pgkit_test::Encoded;

struct Example {
    const char* name;
    const char* characterSet;
    ValueRepresentation valueRep;
    const char* bytes;
    const char* utf8;
};

class TextExample : public testing::TestWithParam<Example> {};

TEST_P(TextExample, IsRead) {
    const Example& example = GetParam();
    EXPECT_EQ(Decoded(example.characterSet, example.valueRep, example.bytes), example.utf8);
}

TEST_P(TextExample, IsWritten) {
    const Example& example = GetParam();
    EXPECT_EQ(Encoded(example.characterSet, example.valueRep, example.utf8), example.bytes);
}

constexpr Example kExamples[] = {
    // Japanese.
    {"JapaneseBehindAscii", "\\ISO 2022 IR 87", VR_PN,
     "Yamada^Tarou=\033$B;3ED\033(B^\033$BB@O:\033(B=\033$B$d$^$@\033(B^\033$B$?$m$&\033(B",
     "Yamada^Tarou=山田^太郎=やまだ^たろう"},
    {"JapaneseBehindKatakana", "ISO 2022 IR 13\\ISO 2022 IR 87", VR_PN,
     "\324\317\300\336^\300\333\263=\033$B;3ED\033(J^\033$BB@O:\033(J="
     "\033$B$d$^$@\033(J^\033$B$?$m$&\033(J",
     "ﾔﾏﾀﾞ^ﾀﾛｳ=山田^太郎=やまだ^たろう"},
    {"SupplementaryJapanese", "\\ISO 2022 IR 87\\ISO 2022 IR 159", VR_LO, "\033$(D0!\033$B0!\033(B",
     "丂亜"},
    {"KatakanaAlone", "ISO_IR 13", VR_PN, "\324\317\300\336^\300\333\263", "ﾔﾏﾀﾞ^ﾀﾛｳ"},
    // Korean.
    {"KoreanName", "\\ISO 2022 IR 149", VR_PN,
     "Hong^Gildong=\033$)C\373\363^\033$)C\321\316\324\327="
     "\033$)C\310\253^\033$)C\261\346\265\277",
     "Hong^Gildong=洪^吉洞=홍^길동"},
    {"KoreanText", "\\ISO 2022 IR 149", VR_LT,
     "\033$)CThe 1st line includes \261\346\265\277.\r\n"
     "\033$)CThe 2nd line includes \261\346\265\277, too.\r\n"
     "The 3rd line.",
     "The 1st line includes 길동.\r\nThe 2nd line includes 길동, too.\r\nThe 3rd line."},
    // Chinese.
    {"ChineseNameInUtf8", "ISO_IR 192", VR_PN,
     "Wang^XiaoDong=\347\216\213^\345\260\217\346\235\261=", "Wang^XiaoDong=王^小東="},
    {"ChineseNameInGb18030", "GB18030", VR_PN,
     "Wang^XiaoDong=\315\365^\320\241\266\253=", "Wang^XiaoDong=王^小东="},
    {"ChineseNameInGbk", "GBK", VR_PN,
     "Wang^XiaoDong=\315\365^\320\241\266\253=", "Wang^XiaoDong=王^小东="},
    {"ChineseTextInUtf8", "ISO_IR 192", VR_LT,
     "The first line includes\344\270\255\346\226\207.\r\nThe third line.",
     "The first line includes中文.\r\nThe third line."},
    {"ChineseTextInGb18030", "GB18030", VR_LT,
     "The first line includes\326\320\316\304.\r\nThe third line.",
     "The first line includes中文.\r\nThe third line."},
    {"ChineseNameWithExtensions", "\\ISO 2022 IR 58", VR_PN,
     "Zhang^XiaoDong=\033$)A\325\305^\033$)A\320\241\266\253=", "Zhang^XiaoDong=张^小东="},
    {"ChineseTextWithExtensions", "\\ISO 2022 IR 58", VR_LT,
     "\033$)A1. \265\332\322\273\320\320\316\304\327\326\241\243\r\n"
     "\033$)A2. \265\332\266\376\320\320\316\304\327\326\241\243\r\n",
     "1. 第一行文字。\r\n2. 第二行文字。\r\n"},
    // One byte to a character.
    {"WesternEuropean", "ISO_IR 100", VR_PN, "Buc^J\351r\364me", "Buc^Jérôme"},
    {"German", "ISO_IR 100", VR_PN, "\304neas^R\374diger", "Äneas^Rüdiger"},
    {"CentralEuropean", "ISO_IR 101", VR_PN, "Wa\263\352sa", "Wałęsa"},
    {"SouthEuropean", "ISO_IR 109", VR_LO, "\242u \241a", "˘u Ħa"},
    {"NorthEuropean", "ISO_IR 110", VR_PN, "Kalni\361\271", "Kalniņš"},
    {"Cyrillic", "ISO_IR 144", VR_PN, "\273\356\332ce\334\321yp\323", "Люкceмбypг"},
    {"Arabic", "ISO_IR 127", VR_PN, "\342\310\307\346\352^\344\346\322\307\321", "قباني^لنزار"},
    {"Greek", "ISO_IR 126", VR_PN, "\304\351\357\355\365\363\351\357\362", "Διονυσιος"},
    {"Hebrew", "ISO_IR 138", VR_PN, "\371\370\345\357^\343\341\345\370\344", "שרון^דבורה"},
    {"Turkish", "ISO_IR 148", VR_PN, "\335n\366n\374^\336\374kr\374", "İnönü^Şükrü"},
    {"Thai", "ISO_IR 166", VR_PN, "\312\301\252\322\302", "สมชาย"},
    {"EuroSign", "ISO_IR 203", VR_LO, "\244 \275uvre", "€ œuvre"},
    // Several sets of one byte.
    {"GreekBesideCyrillic", "ISO 2022 IR 144\\ISO 2022 IR 126", VR_LO, "\273\356 \033-F\304\033-L",
     "Лю Δ"},
};

INSTANTIATE_TEST_SUITE_P(All, TextExample, testing::ValuesIn(kExamples),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
