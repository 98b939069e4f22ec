#include "disc/catalogue.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using pgtool::Catalogue;

TEST(DiscCatalogue, GivesFileIdsInTheOrderOfAppearance) {
    Catalogue catalogue;
    catalogue.Add({"ID1", "DOE", "1.2", "1.2.1", "1.2.1.1"}, {});
    catalogue.Add({"ID2", "DOE", "1.2", "1.2.1", "1.2.1.2"}, {});
    catalogue.Add({"ID1", "DOE", "1.2", "1.2.2", "1.2.2.1"}, {});
    catalogue.Add({"ID1", "DOE", "1.2", "1.2.1", "1.2.1.3"}, {});
    const auto& instances = catalogue.Instances();
    EXPECT_EQ(catalogue.FileOf(instances[0]), "DICOM/PAT00001/STU00001/SER00001/IM000001");
    EXPECT_EQ(catalogue.FileOf(instances[1]), "DICOM/PAT00002/STU00001/SER00001/IM000001");
    EXPECT_EQ(catalogue.FileOf(instances[2]), "DICOM/PAT00001/STU00001/SER00002/IM000001");
    EXPECT_EQ(catalogue.FileOf(instances[3]), "DICOM/PAT00001/STU00001/SER00001/IM000002");
    EXPECT_EQ(catalogue.Find("1.2.2.1"), &instances[2]);
    EXPECT_EQ(catalogue.Find("1.2.2.2"), nullptr);
}

TEST(DiscCatalogue, HasAFolderForWhatBelongsToNoPatient) {
    Catalogue catalogue;
    catalogue.AddCommon({"", "", "", "", "1.2.1"}, {});
    catalogue.Add({"ID1", "DOE", "1.2", "1.2.1", "1.2.1.1"}, {});
    catalogue.AddCommon({"", "", "", "", "1.2.2"}, {});
    const auto& instances = catalogue.Instances();
    EXPECT_EQ(catalogue.FileOf(instances[0]), "DICOM/COMMON/OB000001");
    EXPECT_EQ(catalogue.FolderOf(instances[0]), "DICOM/COMMON");
    EXPECT_EQ(catalogue.FileOf(instances[1]), "DICOM/PAT00001/STU00001/SER00001/IM000001");
    EXPECT_EQ(catalogue.FileOf(instances[2]), "DICOM/COMMON/OB000002");
    EXPECT_EQ(catalogue.Find("1.2.2"), &instances[2]);
}

TEST(DiscCatalogue, KnowsPatientIdsAlsoWhenTheyAreCut) {
    Catalogue catalogue;
    catalogue.Add({"LONG ID", "DOE", "1.2", "1.2.1", "1.2.1.1"}, {});
    EXPECT_TRUE(catalogue.KnowsPatientId("LONG ID"));
    EXPECT_TRUE(catalogue.KnowsPatientId("LONG"));
    EXPECT_FALSE(catalogue.KnowsPatientId("LONG ID 2"));
    EXPECT_FALSE(catalogue.KnowsPatientId("A"));
}

// The hundred thousandth would have nine characters.
TEST(DiscCatalogue, SaysWhenNumbersRunOut) {
    Catalogue catalogue;
    for (int number = 1; number <= 99999; ++number) {
        const std::string uid = "1.2." + std::to_string(number);
        catalogue.Add({uid, "", uid, uid, uid}, {});
    }
    EXPECT_EQ(catalogue.ComplaintAboutNumbers(), "");
    EXPECT_EQ(catalogue.FileOf(catalogue.Instances().back()),
              "DICOM/PAT99999/STU00001/SER00001/IM000001");
    catalogue.Add({"ID", "", "1", "1", "1"}, {});
    EXPECT_NE(catalogue.ComplaintAboutNumbers(), "");
}

}  // namespace
