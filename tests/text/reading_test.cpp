// Values to UTF-8: which set holds, and what becomes of what is none.
#include <gtest/gtest.h>

#include <string>

#include "support/nodes.h"
#include "text/converted.h"

namespace {

using pgkit_test::Decoded;
using pgkit_test::DecodedField;
using pgkit_test::RawText;

constexpr const char* kNone = nullptr;

// ---- Terms --------------------------------------------------------------------------------------

TEST(TextTerms, AreComparedWithoutCaseBlanksHyphensAndUnderscores) {
    for (const char* term : {"ISO_IR 144", "ISO_IR_144", "ISO IR 144", "iso-ir_144", "ISO_IR144",
                             "ISO-IR 144", " ISO_IR 144 ", "ISO 2022 IR 144", "ISO_2022_IR_144",
                             "ISO2022IR144", "ISO 8859-5", "iso8859_5"}) {
        EXPECT_EQ(Decoded(term, VR_LO, "\273\356"), "Лю") << term;
    }
}

TEST(TextTerms, ThatAreNotOfTheStandardAreTakenForWhatTheyMean) {
    EXPECT_EQ(Decoded("UTF-8", VR_LO, "\303\251"), "é");
    EXPECT_EQ(Decoded("ISO 2022 IR 192", VR_LO, "\303\251"), "é");
    EXPECT_EQ(Decoded("latin1", VR_LO, "\303\251"), "Ã©");
    EXPECT_EQ(Decoded("ISO 2022 GBK", VR_LO, "\201\100"), "丂");
    EXPECT_EQ(Decoded("GB2312", VR_LO, "\326\320"), "中");
    EXPECT_EQ(Decoded("\\ISO 2022 58", VR_LO, "\033$)A\326\320"), "中");
    EXPECT_EQ(Decoded("\\ISO_IR 87", VR_LO, "\033$B;3\033(B"), "山");
    EXPECT_EQ(Decoded("ISO 2022 IR 149", VR_LO, "\310\253"), "홍");
    EXPECT_EQ(Decoded("ISO_IR 14", VR_LO, "\324"), "ﾔ");
    EXPECT_EQ(Decoded("ISO_IR 100\\ISO_IR 144", VR_LO, "\351\033-L\273"), "éЛ");
}

TEST(TextTerms, ThatNobodyKnowsCountAsAbsent) {
    EXPECT_EQ(Decoded("ISO_IR 999", VR_LO, "\351"), "é");
    EXPECT_EQ(Decoded("ISO_IR 999", VR_LO, "\303\251"), "é");
    EXPECT_EQ(Decoded("KLINGON\\ISO 2022 IR 87", VR_LO, "\033$B;3\033(B"), "山");
    EXPECT_EQ(Decoded("ISO_IR 144\\ISO 2022 IR 1", VR_LO, "\273\356"), "Лю");
    EXPECT_EQ(Decoded("ISO_IR 99999999999999999999", VR_LO, "\351"), "é");
    EXPECT_EQ(Decoded("ISO_IR 144x", VR_LO, "\351"), "é");
    EXPECT_EQ(Decoded(std::string(100, 'x').c_str(), VR_LO, "\351"), "é");
}

TEST(TextTerms, OfOtherKindsOfSetsCountOnlyInTheFirstPlaceAndAlone) {
    EXPECT_EQ(Decoded("ISO_IR 192\\ISO 2022 IR 87", VR_LO, "\303\251\033$B"), "é\033$B");
    EXPECT_EQ(Decoded("ISO_IR 144\\ISO_IR 192", VR_LO, "\273\356"), "Лю");
}

TEST(TextTerms, BeyondTheFirst1024BytesAreNotLookedAt) {
    const std::string manyTerms = std::string(2000, '\\') + "ISO 2022 IR 144";
    EXPECT_EQ(Decoded(manyTerms.c_str(), VR_LO, "\273"), "»");
}

// ---- Bytes that nothing was said about ----------------------------------------------------------

TEST(TextDefault, IsUtf8WhenAllOfTheValueIsAndLatin1ElseWise) {
    for (const char* characterSet : {kNone, "", "ISO_IR 6", "ISO 2022 IR 6", " "}) {
        EXPECT_EQ(Decoded(characterSet, VR_PN, "J\303\251r\303\264me"), "Jérôme");
        EXPECT_EQ(Decoded(characterSet, VR_PN, "J\351r\364me"), "Jérôme");
        EXPECT_EQ(Decoded(characterSet, VR_PN, "J\303\251r\364me"), "JÃ©rôme");
    }
}

TEST(TextDefault, IsTheFirstDeclaredSetWithBytesAbove7FWhereTheEscapeWasForgotten) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 149", VR_PN, "Hong=\033$)C\373\363^\321\316\324\327"),
              "Hong=洪^吉洞");
    EXPECT_EQ(Decoded("ISO 2022 IR 6\\ISO 2022 IR 100", VR_PN, "J\351r\364me"), "Jérôme");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87\\ISO 2022 IR 144", VR_PN, "\273\356"), "Лю");
}

TEST(TextDefault, FollowsEscapesOfSetsThatWereNotDeclared) {
    EXPECT_EQ(Decoded(kNone, VR_PN, "Yamada=\033$B;3ED\033(B"), "Yamada=山田");
    EXPECT_EQ(Decoded("ISO_IR 100", VR_LO, "\351\033-F\304"), "éΔ");
}

// ---- Escapes and delimiters ---------------------------------------------------------------------

TEST(TextEscapes, EndWithTheLinePageOrTab) {
    for (const std::string delimiter : {"\r", "\n", "\f", "\t"}) {
        EXPECT_EQ(
            Decoded("ISO 2022 IR 100\\ISO 2022 IR 144", VR_LT, "\033-L\351" + delimiter + "\351"),
            "щ" + delimiter + "é");
        EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LT, "\033$B;3" + delimiter + ";3"),
                  "山" + delimiter + ";3");
    }
}

TEST(TextEscapes, EndWithTheValueWhereThereAreSeveral) {
    constexpr const char* kSets = "ISO 2022 IR 100\\ISO 2022 IR 144";
    for (const uint32_t valueRep :
         {uint32_t{VR_SH}, uint32_t{VR_LO}, uint32_t{VR_PN}, uint32_t{VR_UC}}) {
        EXPECT_EQ(Decoded(kSets, valueRep, "\033-L\351\\\351"), "щ\\é") << valueRep;
    }
    for (const ValueRepresentation valueRep : {VR_ST, VR_LT, VR_UT})
        EXPECT_EQ(Decoded(kSets, valueRep, "\033-L\351\\\351"), "щ\\щ") << valueRep;
}

TEST(TextEscapes, EndWithNameComponentsAndGroups) {
    constexpr const char* kSets = "ISO 2022 IR 100\\ISO 2022 IR 144";
    EXPECT_EQ(Decoded(kSets, VR_PN, "\033-L\351^\351=\033-L\351=\351"), "щ^é=щ=é");
    EXPECT_EQ(Decoded(kSets, VR_LO, "\033-L\351^\351=\351"), "щ^щ=щ");
}

// The bytes of "\", "^" and "=" used to be delimiters inside of characters too.
TEST(TextEscapes, DelimitersInsideOfCharactersAreNone) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_PN, "\033$B%\\=U\033(B^x"), "ボ春^x");
    EXPECT_EQ(Decoded("GBK", VR_LO, "\201\134\\\201\136"), "乗\\乛");
    EXPECT_EQ(Decoded("GB18030", VR_PN, "\201\134^\201\136"), "乗^乛");
}

TEST(TextEscapes, BlanksAndControlCharactersMeanTheSameInEverySet) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LO, "\033$B;3 ED\001\033(B"), "山 田\001");
}

TEST(TextEscapes, BackslashAndTildeAreThemselvesInJisX0201) {
    EXPECT_EQ(Decoded("ISO_IR 13", VR_LO, "\324\\~\261"), "ﾔ\\~ｱ");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LO, "\033(J\\~\033$B;3\033(B"), "\\~山");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 13", VR_LO, "\033)I\324"), "ﾔ");
}

// ---- What cannot be decoded ---------------------------------------------------------------------

TEST(TextReplacement, StandsForEachByteOfASingleByteSet) {
    EXPECT_EQ(Decoded("ISO_IR 127", VR_LO, "a\241\242b"), "a\uFFFD\uFFFDb");
    EXPECT_EQ(Decoded("ISO_IR 13", VR_LO, "a\340b"), "a\uFFFDb");
    EXPECT_EQ(Decoded("ISO_IR 166", VR_LO, "a\200\333b"), "a\uFFFD\uFFFDb");
}

TEST(TextReplacement, StandsForEachPairThatIsNoCharacter) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LO, "\033$B)!;3\033(B"), "\uFFFD山");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 149", VR_LO, "\033$)C\311\241\310\253"), "\uFFFD홍");
    EXPECT_EQ(Decoded("GBK", VR_LO, "\252\241\326\320"), "\uFFFD中");
}

TEST(TextReplacement, StandsForABeginningThatIsNotGoneOnWith) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LT, "\033$B;\r\nx"), "\uFFFD\r\nx");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 149", VR_PN, "\033$)C\310^x"), "\uFFFD^x");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 149", VR_PN, "\033$)C\200\377x"), "\uFFFD\uFFFDx");
    EXPECT_EQ(Decoded("GBK", VR_LO, "\326 x"), "\uFFFD x");
    EXPECT_EQ(Decoded("GB18030", VR_LO, "\201\060x"), "\uFFFD0x");
    EXPECT_EQ(Decoded("GB18030", VR_LO, "\201\060\201!x"), "\uFFFD0\uFFFD!x");
    EXPECT_EQ(Decoded("ISO_IR 192", VR_LO, "\342\202x\300\200"), "\uFFFDx\uFFFD\uFFFD");
}

TEST(TextReplacement, StandsForWhatTheEndCutsInTwo) {
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LO, "\033$B;3E"), "山\uFFFD");
    EXPECT_EQ(Decoded("GB18030", VR_LO, "x\201\060\201"), "x\uFFFD");
    EXPECT_EQ(Decoded("ISO_IR 192", VR_LO, "x\342\202"), "x\uFFFD");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LO, "x\033$"), "x\uFFFD");
}

TEST(TextReplacement, StandsForAnEscapeThatBeginsNoSequence) {
    EXPECT_EQ(Decoded("ISO_IR 100", VR_LO, "a\033[1mb\351"), "a\uFFFD[1mbé");
    EXPECT_EQ(Decoded("ISO_IR 192", VR_LO, "a\033[1mb"), "a\033[1mb");
}

TEST(TextReplacement, StandsForBytesAbove7FWhereTheCharacterSetDoesNotHold) {
    for (const ValueRepresentation valueRep :
         {VR_AE, VR_AS, VR_CS, VR_DA, VR_DS, VR_DT, VR_IS, VR_TM, VR_UI}) {
        EXPECT_EQ(Decoded("ISO_IR 100", valueRep, "A\351\033$B"), "A\uFFFD\033$B") << valueRep;
    }
    EXPECT_EQ(Decoded("ISO_IR 192", VR_UR, "A\303\251"), "A\uFFFD\uFFFD");
}

// ---- Values that are no text, padding -----------------------------------------------------------

TEST(TextValues, OfOtherVrsAreNone) {
    for (const uint32_t valueRep : {uint32_t{VR_UL}, uint32_t{VR_OB}, uint32_t{VR_SQ},
                                    uint32_t{VR_UN}, uint32_t{VR_AT}, uint32_t{VR_Unknown}, 99u}) {
        EXPECT_EQ(Decoded("ISO_IR 100", valueRep, "text"), "error -1") << valueRep;
    }
    char buffer[] = "unchanged";
    EXPECT_EQ(pgxTextToUtf8(nullptr, VR_OB, "x", 1, buffer, sizeof buffer), PGX_TEXT_NOT_A_TEXT);
    EXPECT_STREQ(buffer, "");
}

TEST(TextValues, LoseThePaddingAtTheirEndOnly) {
    EXPECT_EQ(Decoded("ISO_IR 100", VR_LO, "  a \\ b  "), "  a \\ b");
    EXPECT_EQ(Decoded("ISO_IR 100", VR_PN, RawText("J\351r\0")), "Jér");
    EXPECT_EQ(Decoded(kNone, VR_UI, RawText("1.2\0\0 \0")), "1.2");
    EXPECT_EQ(Decoded(kNone, VR_LT, " \n "), " \n");
    EXPECT_EQ(Decoded(kNone, VR_LO, "   "), "");
    EXPECT_EQ(Decoded("\\ISO 2022 IR 87", VR_LO, "\033$B;3  "), "山");
}

TEST(TextValues, KeepANulInsideOfThem) {
    EXPECT_EQ(Decoded(kNone, VR_LO, RawText("a\0b")), RawText("a\0b"));
    EXPECT_EQ(Decoded("ISO_IR 100", VR_LO, RawText("\351\0b")), RawText("\303\251\0b"));
}

TEST(TextValues, MayBeNullOrEmpty) {
    char buffer[] = "x";
    EXPECT_EQ(pgxTextToUtf8(nullptr, VR_LO, nullptr, 5, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(pgxTextToUtf8(nullptr, VR_LO, "abc", 3, nullptr, 5), 3);
}

// ---- The buffer ---------------------------------------------------------------------------------

TEST(TextBuffer, IsFilledUpToTheLastWholeCharacterAndTerminated) {
    const char* expected[] = {"?", "", "a", "a", "aé", "aé", "aé", "aé山"};
    for (size_t size = 0; size < std::size(expected); ++size) {
        std::string buffer(16, '?');
        EXPECT_EQ(
            pgxTextToUtf8("ISO_IR 192", VR_LO, "a\303\251\345\261\261", 6, buffer.data(), size), 6);
        EXPECT_EQ(std::string(buffer.c_str()).substr(0, size == 0 ? 1 : 16), expected[size])
            << size;
        EXPECT_EQ(buffer.substr(size), std::string(16 - size, '?'));
    }
}

TEST(TextBuffer, HasNothingBehindACharacterThatDoesNotFit) {
    char buffer[4];
    EXPECT_EQ(pgxTextToUtf8("ISO_IR 192", VR_LO, "ab\303\251cde", 7, buffer, sizeof buffer), 7);
    EXPECT_STREQ(buffer, "ab");
}

TEST(TextBuffer, OfPlainTextIsCutAnywhere) {
    char buffer[4];
    EXPECT_EQ(pgxTextToUtf8(nullptr, VR_LO, "abcdef", 6, buffer, sizeof buffer), 6);
    EXPECT_STREQ(buffer, "abc");
}

// ---- Fields that were cut to fit ----------------------------------------------------------------

TEST(TextField, LosesWhatItsEndCutsInTwo) {
    EXPECT_EQ(DecodedField("ISO_IR 192", VR_PN, "x\342\202"), "x");
    EXPECT_EQ(DecodedField("GB18030", VR_PN, "x\201\060\201"), "x");
    EXPECT_EQ(DecodedField("\\ISO 2022 IR 87", VR_PN, "\033$B;3E"), "山");
    EXPECT_EQ(DecodedField("\\ISO 2022 IR 87", VR_PN, "x\033$"), "x");
    EXPECT_EQ(DecodedField("\\ISO 2022 IR 149", VR_PN, "\033$)C\310\253\310"), "홍");
    EXPECT_EQ(DecodedField("ISO_IR 192", VR_PN, "x\342\202y"), "x\uFFFDy");
}

TEST(TextField, ToleratesACharacterSetThatIsCutAsWell) {
    const std::string terms = "ISO 2022 IR 6\\ISO 2022 IR 87\\ISO 2022 IR 159\\ISO 2022 IR 149";
    EXPECT_EQ(DecodedField(terms.substr(0, 50).c_str(), VR_PN, "\033$)C\310\253"), "홍");
}

TEST(TextField, OfNullIsNoValue) {
    EXPECT_EQ(DecodedField("ISO_IR 192", VR_PN, nullptr), "error -2");
    EXPECT_EQ(DecodedField(nullptr, VR_PN, ""), "");
}

}  // namespace
