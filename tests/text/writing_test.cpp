// UTF-8 to values: which sets are chosen, where they are changed, and what is refused.
#include <gtest/gtest.h>

#include <string>

#include "support/nodes.h"
#include "text/converted.h"

namespace {

using pgkit_test::Encoded;
using pgkit_test::RawText;

constexpr const char* kNotExpressible = "error -3";
constexpr const char* kInvalid = "error -4";

TEST(TextWriting, LeavesPlainTextAsItIs) {
    for (const char* characterSet : {"", "ISO_IR 100", "ISO_IR 13", "\\ISO 2022 IR 87", "GBK"})
        EXPECT_EQ(Encoded(characterSet, VR_LO, " a\\b~ "), " a\\b~ ") << characterSet;
}

TEST(TextWriting, RefusesWhatTheSetLacks) {
    EXPECT_EQ(Encoded(nullptr, VR_LO, "é"), kNotExpressible);
    EXPECT_EQ(Encoded("ISO_IR 6", VR_LO, "é"), kNotExpressible);
    EXPECT_EQ(Encoded("ISO_IR 100", VR_LO, "Ł"), kNotExpressible);
    EXPECT_EQ(Encoded("ISO_IR 144", VR_LO, "é"), kNotExpressible);
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87", VR_LO, "홍"), kNotExpressible);
    EXPECT_EQ(Encoded("\\ISO 2022 IR 149", VR_LO, "갂"), kNotExpressible);
    EXPECT_EQ(Encoded("\\ISO 2022 IR 58", VR_LO, "東"), kNotExpressible);
    EXPECT_EQ(Encoded("GBK", VR_LO, "홍"), kNotExpressible);
}

TEST(TextWriting, RefusesWhatOnlyLooksLikeACharacterOfTheSet) {
    EXPECT_EQ(Encoded("ISO_IR 100", VR_LO, "\u2019"), kNotExpressible);
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87", VR_LO, "\uFF5E"), kNotExpressible);
    EXPECT_EQ(Encoded("ISO_IR 13", VR_LO, "\u00A5"), kNotExpressible);
}

TEST(TextWriting, RefusesTextBeyondAsciiWhereTheCharacterSetDoesNotHold) {
    EXPECT_EQ(Encoded("ISO_IR 192", VR_CS, "É"), kNotExpressible);
    EXPECT_EQ(Encoded("ISO_IR 192", VR_CS, "E"), "E");
}

TEST(TextWriting, RefusesEscapesWhereTheyWouldChangeTheSet) {
    EXPECT_EQ(Encoded("ISO_IR 100", VR_LO, "a\033$B"), kNotExpressible);
    EXPECT_EQ(Encoded(nullptr, VR_LO, "a\033b"), kNotExpressible);
    EXPECT_EQ(Encoded("ISO_IR 192", VR_LO, "a\033$B"), "a\033$B");
    EXPECT_EQ(Encoded("GB18030", VR_LO, "a\033$B"), "a\033$B");
}

TEST(TextWriting, RefusesWhatIsNoUtf8) {
    EXPECT_EQ(Encoded("ISO_IR 192", VR_LO, "J\351r"), kInvalid);
    EXPECT_EQ(Encoded("ISO_IR 100", VR_LO, "J\303"), kInvalid);
    EXPECT_EQ(Encoded("ISO_IR 100", VR_CS, "\200"), kInvalid);
    EXPECT_EQ(Encoded("ISO_IR 192", VR_LO, "\355\240\200"), kInvalid);
}

TEST(TextWriting, RefusesValuesThatAreNoText) {
    EXPECT_EQ(Encoded("ISO_IR 192", VR_OB, "a"), "error -1");
    EXPECT_EQ(Encoded("ISO_IR 192", VR_UN, "é"), "error -1");
}

TEST(TextWriting, TakesTheSetsInTheOrderOfTheirTerms) {
    // Both have the letter.
    EXPECT_EQ(Encoded("\\ISO 2022 IR 126\\ISO 2022 IR 87", VR_LO, "Δ"), "\033-F\304");
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87\\ISO 2022 IR 126", VR_LO, "Δ"), "\033$B&$\033(B");
}

TEST(TextWriting, KeepsTheActiveSetWhileItHasTheCharacters) {
    constexpr const char* kSets = "ISO 2022 IR 100\\ISO 2022 IR 101\\ISO 2022 IR 144";
    EXPECT_EQ(Encoded(kSets, VR_LO, "éŁéЛ"), "\351\033-B\243\351\033-L\273\033-A");
}

TEST(TextWriting, BringsTheFirstSetsBackBeforeDelimiters) {
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87", VR_LO, "山\\山"), "\033$B;3\033(B\\\033$B;3\033(B");
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87", VR_LT, "山\r\n山"), "\033$B;3\033(B\r\n\033$B;3\033(B");
    EXPECT_EQ(Encoded("ISO 2022 IR 13\\ISO 2022 IR 87", VR_PN, "山^山"),
              "\033$B;3\033(J^\033$B;3\033(J");
    EXPECT_EQ(Encoded("ISO 2022 IR 100\\ISO 2022 IR 144", VR_PN, "Л^é=Л"),
              "\033-L\273\033-A^\351=\033-L\273\033-A");
}

TEST(TextWriting, BringsTheFirstSetsBackBeforeOtherControlCharacters) {
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87", VR_LO, "山\001"), "\033$B;3\033(B\001");
    EXPECT_EQ(Encoded("\\ISO 2022 IR 149", VR_LO, "홍\001홍"),
              "\033$)C\310\253\001\033$)C\310\253");
}

TEST(TextWriting, TakesNoDelimitersForItsOwnVrFromOthers) {
    EXPECT_EQ(Encoded("ISO 2022 IR 100\\ISO 2022 IR 144", VR_LO, "Л^Л=Л"),
              "\033-L\273^\273=\273\033-A");
    EXPECT_EQ(Encoded("ISO 2022 IR 100\\ISO 2022 IR 144", VR_LT, "Л\\Л"), "\033-L\273\\\273\033-A");
}

TEST(TextWriting, GoesBackToSingleBytesForAsciiAndBlanks) {
    EXPECT_EQ(Encoded("\\ISO 2022 IR 87", VR_LO, "山 a田"), "\033$B;3\033(B a\033$BED\033(B");
}

// Readers that convert what stands between two escapes as a whole know one set at a time.
TEST(TextWriting, GoesBackToSingleBytesForCharactersAbove7F) {
    EXPECT_EQ(Encoded("ISO 2022 IR 13\\ISO 2022 IR 87", VR_LO, "山ﾔ"), "\033$B;3\033(J\324");
}

TEST(TextWriting, DesignatesOnceInALineAndAtItsBeginning) {
    EXPECT_EQ(Encoded("\\ISO 2022 IR 149", VR_LT, "a 홍 b 홍\nc"),
              "\033$)Ca \310\253 b \310\253\nc");
    EXPECT_EQ(Encoded("\\ISO 2022 IR 149\\ISO 2022 IR 126", VR_LO, "a홍bά홍"),
              "\033$)Ca\310\253b\033-F\334\033$)C\310\253");
}

TEST(TextWriting, OfALineThatUsesItsFirstSetAlreadyDesignatesWhereItIsNeeded) {
    EXPECT_EQ(Encoded("ISO 2022 IR 100\\ISO 2022 IR 144", VR_LO, "aéЛ"), "a\351\033-L\273\033-A");
    EXPECT_EQ(Encoded("ISO 2022 IR 100\\ISO 2022 IR 144", VR_LO, "aЛé"), "\033-La\273\033-A\351");
}

TEST(TextWriting, FillsTheBufferAsFarAsItFits) {
    char buffer[4];
    EXPECT_EQ(pgxTextFromUtf8("ISO_IR 100", VR_LO, "\303\251\303\251abc", 7, buffer, sizeof buffer),
              5);
    EXPECT_STREQ(buffer, "\351\351a");
    EXPECT_EQ(pgxTextFromUtf8("ISO_IR 100", VR_LO, "abcdef", 6, buffer, sizeof buffer), 6);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(pgxTextFromUtf8("ISO_IR 100", VR_LO, nullptr, 6, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(TextWriting, ClearsTheBufferWhenItFails) {
    char buffer[] = "before";
    EXPECT_EQ(pgxTextFromUtf8("ISO_IR 144", VR_LO, "\303\251", 2, buffer, sizeof buffer),
              PGX_TEXT_NOT_EXPRESSIBLE);
    EXPECT_STREQ(buffer, "");
}

TEST(TextWriting, KeepsNulsAndBlanks) {
    EXPECT_EQ(Encoded("ISO_IR 100", VR_LO, RawText("\303\251\0 ")), RawText("\351\0 "));
}

}  // namespace
