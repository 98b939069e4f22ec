// Getters of one kind of leaf read behind the end of the others, or something else there.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "dicomdir/object_classes.h"
#include "pgkit/accessors.h"

namespace {

using namespace pgkit_test::object_classes;

struct TextGetter {
    int32_t kind;
    const char* (*get)(PGX_DicomDirLeafNode*);
};

const TextGetter kTexts[] = {
    {PG_LEAF_IMAGE, pgKitDirGetImagePhotoInterp},
    {PG_LEAF_IMAGE, pgKitDirGetImageType},
    {PG_LEAF_IMAGE, pgKitDirGetImageCalibrationObject},
    {PG_LEAF_REPORT, pgKitDirGetReportVerificationFlag},
    {PG_LEAF_REPORT, pgKitDirGetReportCompletionFlag},
    {PG_LEAF_REPORT, pgKitDirGetReportContentDate},
    {PG_LEAF_REPORT, pgKitDirGetReportContentTime},
    {PG_LEAF_KEY_OBJECT, pgKitDirGetKeyObjectContentDate},
    {PG_LEAF_KEY_OBJECT, pgKitDirGetKeyObjectContentTime},
    {PG_LEAF_PRESENTATION, pgKitDirGetPresentationCreationDate},
    {PG_LEAF_PRESENTATION, pgKitDirGetPresentationCreationTime},
    {PG_LEAF_PRESENTATION, pgKitDirGetPresentationCreatorsName},
    {PG_LEAF_PRESENTATION, pgKitDirGetPresentationLabel},
    {PG_LEAF_PRESENTATION, pgKitDirGetPresentationDescription},
    {PG_LEAF_WAVEFORM, pgKitDirGetWaveformContentDate},
    {PG_LEAF_WAVEFORM, pgKitDirGetWaveformContentTime},
    {PG_LEAF_RAW_DATA, pgKitDirGetRawDataContentDate},
    {PG_LEAF_RAW_DATA, pgKitDirGetRawDataContentTime},
};

int32_t (*const kNumbers[])(PGX_DicomDirLeafNode*) = {pgKitDirGetImageRows, pgKitDirGetImageColumns,
                                                      pgKitDirGetImageNumberOfFrames};

template <typename Object>
std::unique_ptr<PGX_DicomDirLeafNode> New() {
    return std::make_unique<Object>();
}

constexpr std::unique_ptr<PGX_DicomDirLeafNode> (*kNewLeaves[])() = {
    New<Leaf>,         New<Image>,    New<Report>,   New<KeyObject>,
    New<Presentation>, New<Waveform>, New<Document>, New<RawData>};

// Fills what follows the fields that all leaves have, so that a getter which reads it shows.
template <typename Object>
void Fill(Object& leaf) {
    char* const own = reinterpret_cast<char*>(&leaf) + sizeof(Leaf);
    std::memset(own, 'x', sizeof(Object) - sizeof(Leaf) - 1);
}

TEST(LeafKinds, ATextOfAnotherKindIsEmpty) {
    for (const auto newLeaf : kNewLeaves) {
        const std::unique_ptr<PGX_DicomDirLeafNode> leaf = newLeaf();
        for (const TextGetter& text : kTexts) {
            if (text.kind == leaf->leafType) continue;
            EXPECT_STREQ(text.get(leaf.get()), "") << text.kind << " of " << leaf->leafType;
        }
    }
}

TEST(LeafKinds, ANumberOfAnotherKindIsZero) {
    for (const auto newLeaf : kNewLeaves) {
        const std::unique_ptr<PGX_DicomDirLeafNode> leaf = newLeaf();
        if (leaf->leafType == PG_LEAF_IMAGE) continue;
        for (const auto number : kNumbers)
            EXPECT_EQ(number(leaf.get()), 0) << leaf->leafType;
        EXPECT_EQ(pgKitDirGetImageIconHDib(leaf.get()), nullptr);
    }
}

TEST(LeafKinds, WhatLiesInThePlaceOfAFieldIsNotRead) {
    Waveform waveform;
    Fill(waveform);
    EXPECT_EQ(pgKitDirGetImageRows(&waveform), 0);
    EXPECT_STREQ(pgKitDirGetReportContentDate(&waveform), "");
    EXPECT_STREQ(pgKitDirGetRawDataContentDate(&waveform), "");
    EXPECT_STRNE(pgKitDirGetWaveformContentDate(&waveform), "");
}

TEST(LeafKinds, AnEmptyTextLeavesTheOneBeforeAlone) {
    Image image;
    std::strcpy(image.imageType, "ORIGINAL");
    Report report;
    const char* const text = pgKitDirGetImageType(&image);
    pgKitDirGetImageType(&report);
    EXPECT_STREQ(text, "ORIGINAL");
}

}  // namespace
