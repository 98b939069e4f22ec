// The profile test: which data sets a medium may carry.
#include <gtest/gtest.h>

#include <cstddef>

#include "dicomdir/create/sop_classes.h"
#include "pgkit/dicomdir_creation.h"

namespace {

using namespace pgkit_test;

constexpr char kExplicit[] = "1.2.840.10008.1.2.1";
constexpr char kRle[] = "1.2.840.10008.1.2.5";
constexpr char kJpegBaseline[] = "1.2.840.10008.1.2.4.50";
constexpr char kJpegLossless[] = "1.2.840.10008.1.2.4.70";

int32_t Accept(const char* profile, const char* sopClass, const char* transferSyntax,
               const char* photometricInterpretation, const char* modality) {
    return pgDirAcceptDataset2(transferSyntax, sopClass, photometricInterpretation, modality,
                               profile);
}

TEST(ProfileTest, AcceptsEverythingWithoutAProfile) {
    EXPECT_EQ(Accept("", "1.2.3", "4.5.6", "?", "??"), 1);
    EXPECT_EQ(Accept(nullptr, "1.2.3", "4.5.6", "?", "??"), 1);
    EXPECT_EQ(Accept(nullptr, nullptr, nullptr, nullptr, nullptr), 1);
}

TEST(ProfileTest, AcceptsNothingForAnUnknownProfile) {
    EXPECT_EQ(Accept("STD-GEN-XYZ", kCt, kExplicit, "MONOCHROME2", "CT"), 0);
    EXPECT_EQ(Accept("STD-GEN-XYZ", kReport, kExplicit, "", "SR"), 0);
}

TEST(ProfileTest, FindsProfilesByTheirExactName) {
    EXPECT_EQ(Accept("STD-GEN-CD", kCt, kExplicit, "MONOCHROME2", "CT"), 1);
    EXPECT_EQ(Accept("std-gen-cd", kCt, kExplicit, "MONOCHROME2", "CT"), 0);
    EXPECT_EQ(Accept("STD-GEN-CD ", kCt, kExplicit, "MONOCHROME2", "CT"), 0);
    EXPECT_EQ(Accept("STD-GEN", kCt, kExplicit, "MONOCHROME2", "CT"), 0);
}

TEST(ProfileTest, AcceptsNothingForProfilesWithoutLists) {
    for (const char* profile :
         {"STD-GEN-MIME", "STD-GEN-ZIP-MAIL", "STD-GEN-SEC-ZIP-MAIL", "STD-DTL-SEC-ZIP-MAIL"}) {
        EXPECT_EQ(Accept(profile, kCt, kExplicit, "MONOCHROME2", "CT"), 0) << profile;
        EXPECT_EQ(Accept(profile, kReport, kExplicit, "", "SR"), 0) << profile;
    }
}

TEST(ProfileTest, LooksAtTheTransferSyntaxOfAnImage) {
    EXPECT_EQ(Accept("STD-GEN-CD", kCt, kExplicit, "MONOCHROME2", "CT"), 1);
    EXPECT_EQ(Accept("STD-GEN-CD", kCt, kJpegBaseline, "MONOCHROME2", "CT"), 0);
    EXPECT_EQ(Accept("STD-GEN-DVD-JPEG", kCt, kJpegBaseline, "MONOCHROME2", "CT"), 1);
}

TEST(ProfileTest, LooksAtThePhotometricInterpretationWhereTheProfileHasAListOfThem) {
    EXPECT_EQ(Accept("STD-CTMR", kCt, kJpegLossless, "MONOCHROME2", "CT"), 1);
    EXPECT_EQ(Accept("STD-CTMR", kCt, kJpegLossless, "PALETTE COLOR", "CT"), 1);
    EXPECT_EQ(Accept("STD-CTMR", kCt, kJpegLossless, "RGB", "CT"), 0);
    EXPECT_EQ(Accept("STD-CTMR", kCt, kJpegLossless, nullptr, "CT"), 0);
    EXPECT_EQ(Accept("STD-GEN-CD", kCt, kExplicit, "anything", "CT"), 1);
}

TEST(ProfileTest, TakesThePhotometricInterpretationTogetherWithTheTransferSyntax) {
    EXPECT_EQ(Accept("STD-US-ID-MF", kUsMultiFrame, kJpegBaseline, "YBR_FULL_422", "US"), 1);
    EXPECT_EQ(Accept("STD-US-ID-MF", kUsMultiFrame, kJpegBaseline, "YBR_FULL", "US"), 0);
    EXPECT_EQ(Accept("STD-US-ID-MF", kUsMultiFrame, kRle, "YBR_FULL", "US"), 1);
}

TEST(ProfileTest, LooksAtTheSopClassOfAnImage) {
    EXPECT_EQ(Accept("STD-US-ID-SF", kUsMultiFrame, kExplicit, "RGB", "US"), 0);
    EXPECT_EQ(Accept("STD-US-ID-SF", kUs, kExplicit, "RGB", "US"), 1);
}

TEST(ProfileTest, LooksAtTheModalityOfAnImage) {
    EXPECT_EQ(Accept("STD-XABC", kXa, kJpegLossless, "", "XA"), 1);
    EXPECT_EQ(Accept("STD-XABC", kXa, kJpegLossless, "", "RF"), 0);
    EXPECT_EQ(Accept("STD-XABC", kXa, kJpegLossless, "", "xa"), 0);
}

TEST(ProfileTest, TakesAnImageWithoutModalityForAnyModality) {
    EXPECT_EQ(Accept("STD-XABC", kXa, kJpegLossless, "", ""), 1);
    EXPECT_EQ(Accept("STD-XABC", kXa, kJpegLossless, "", nullptr), 1);
    EXPECT_EQ(pgDirAcceptDataset(kJpegLossless, kXa, "", "STD-XABC"), 1);
}

TEST(ProfileTest, LooksAtTheModalityOfOtherObjects) {
    EXPECT_EQ(Accept("STD-XA1K", kPresentation, kExplicit, "", "PR"), 1);
    EXPECT_EQ(Accept("STD-XA1K", kPresentation, kExplicit, "", "OT"), 0);
}

TEST(ProfileTest, TakesAnotherObjectWithoutModalityForNoneThatARuleNames) {
    EXPECT_EQ(Accept("STD-XA1K", kPresentation, kExplicit, "", ""), 0);
    EXPECT_EQ(Accept("STD-XA1K", kPresentation, kExplicit, "", nullptr), 0);
    EXPECT_EQ(pgDirAcceptDataset(kExplicit, kPresentation, "", "STD-XA1K"), 0);
    EXPECT_EQ(pgDirAcceptDataset(kExplicit, kReport, "", "STD-GEN-CD"), 1);
}

TEST(ProfileTest, RefusesOtherObjectsWhereTheProfileHasNoListForThem) {
    EXPECT_EQ(Accept("STD-CTMR", kReport, kExplicit, "MONOCHROME2", "CT"), 0);
    EXPECT_EQ(Accept("STD-XABC", kPresentation, kExplicit, "", "PR"), 0);
}

TEST(ProfileTest, DoesNotAskOtherObjectsForTheirPhotometricInterpretation) {
    EXPECT_EQ(Accept("STD-GEN-DVD-J2K", kReport, kExplicit, "anything", "SR"), 1);
}

TEST(ProfileTest, TakesAnUnknownSopClassForNoImage) {
    EXPECT_EQ(Accept("STD-DVD-MPEG2-MPML", "1.2.3", "1.2.840.10008.1.2.4.100", "", ""), 0);
    EXPECT_EQ(Accept("STD-GEN-CD", "1.2.3", kExplicit, "", ""), 1);
    EXPECT_EQ(Accept("STD-GEN-CD", nullptr, kExplicit, "", ""), 1);
}

TEST(ProfileTest, IgnoresBlanksAroundValues) {
    EXPECT_EQ(Accept("STD-CTMR", kCt, " 1.2.840.10008.1.2.4.70 ", " MONOCHROME2 ", "CT  "), 1);
    EXPECT_EQ(Accept("STD-XA1K", kPresentation, kExplicit, "", "PR "), 1);
}

TEST(CreationOptions, HaveTheLayoutThatHostsWereBuiltWith) {
    EXPECT_EQ(sizeof(PgDicomdirOptions), 40u);
    EXPECT_EQ(offsetof(PgDicomdirOptions, fileSetId), 16u);
    EXPECT_EQ(offsetof(PgDicomdirOptions, flags), 36u);
}

}  // namespace
