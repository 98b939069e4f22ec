#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "codec/encoded.h"
#include "support/captured.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

class MetaHeader : public testing::Test {
  protected:
    // The text of an element of group 0002; "absent" when there is none.
    std::string Meta(uint16_t element) {
        PGX_Node* node = root_->FindNode(0x0002, element);
        if (node == nullptr) return "absent";
        std::string text(node->length + 2, '\0');
        EXPECT_EQ(node->GetStringValue(text.data(), static_cast<int32_t>(node->length)), 1);
        return text.c_str();
    }

    size_t Count(uint16_t element) {
        size_t count = 0;
        for (PGX_Node* node = root_->first; node != nullptr; node = node->next) {
            if (node->group == 0x0002 && node->element == element) ++count;
        }
        return count;
    }

    DataSet root_{pgAllocateDataSetNode()};
};

TEST_F(MetaHeader, OfAnEmptyDataSetIsTheLibrarysOwn) {
    EXPECT_EQ(root_->AddPart10Elements(nullptr), 1);
    EXPECT_EQ(Tags(root_.get()), "0002,0001 0002,0010 0002,0012 0002,0013");
    EXPECT_EQ(Meta(0x0012), "1.2.999.1.47.453.2865");
    EXPECT_EQ(Meta(0x0013), "KIT-ZORVA-2865");
    EXPECT_EQ(Meta(0x0010), "1.2.840.10008.1.2.1");
    const PGX_Node* version = root_->FindNode(0x0002, 0x0001);
    EXPECT_EQ(Bytes(version->value, version->value + version->length), (Bytes{0x00, 0x01}));
}

TEST_F(MetaHeader, TakesSopClassAndInstanceFromTheDataSet) {
    root_->InsertNode(0x0008, 0x0016, "1.2.840.10008.5.1.4.1.1.2", 25);
    root_->InsertNode(0x0008, 0x0018, "1.2.3", 5);
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(Meta(0x0002), "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_EQ(Meta(0x0003), "1.2.3");
}

TEST_F(MetaHeader, ReplacesSopClassAndInstance) {
    root_->InsertNode(0x0002, 0x0002, "1.1", 3);
    root_->InsertNode(0x0002, 0x0003, "1.1", 3);
    root_->InsertNode(0x0008, 0x0016, "1.2", 3);
    root_->InsertNode(0x0008, 0x0018, "1.3", 3);
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(Meta(0x0002), "1.2");
    EXPECT_EQ(Meta(0x0003), "1.3");
    EXPECT_EQ(Count(0x0002), 1u);
}

TEST_F(MetaHeader, KeepsSopClassAndInstanceWithoutASource) {
    root_->InsertNode(0x0002, 0x0002, "1.1", 3);
    root_->InsertNode(0x0002, 0x0003, "1.4", 3);
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(Meta(0x0002), "1.1");
    EXPECT_EQ(Meta(0x0003), "1.4");
}

TEST_F(MetaHeader, TakesAtMostSixtyFourCharactersOfAUid) {
    const std::string uid = "1." + std::string(70, '2');
    root_->InsertNode(0x0008, 0x0018, uid.data(), static_cast<uint32_t>(uid.size()));
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(Meta(0x0003), uid.substr(0, 64));
}

TEST_F(MetaHeader, KeepsTheImplementationThatIsThere) {
    root_->InsertNode(0x0002, 0x0012, "1.9", 3);
    root_->InsertNode(0x0002, 0x0013, "OTHER", 5);
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(Meta(0x0012), "1.9");
    EXPECT_EQ(Meta(0x0013), "OTHER ");
    EXPECT_EQ(Count(0x0012), 1u);
    EXPECT_EQ(Count(0x0013), 1u);
}

TEST_F(MetaHeader, AddedTwiceHasTwoVersions) {
    root_->AddPart10Elements(nullptr);
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(Tags(root_.get()), "0002,0001 0002,0001 0002,0010 0002,0012 0002,0013");
}

TEST_F(MetaHeader, TakesTheTransferSyntaxItIsGiven) {
    root_->syntaxFlags = kPart10Implicit;
    root_->AddPart10Elements("1.2.840.10008.1.2.4.70");
    EXPECT_EQ(Meta(0x0010), "1.2.840.10008.1.2.4.70");
}

TEST_F(MetaHeader, NeverReplacesATransferSyntax) {
    root_->InsertNode(0x0002, 0x0010, "1.2.840.10008.1.2", 17);
    root_->AddPart10Elements("1.2.840.10008.1.2.4.70");
    EXPECT_EQ(Meta(0x0010), "1.2.840.10008.1.2");
    EXPECT_EQ(Count(0x0010), 1u);
}

TEST_F(MetaHeader, TakesTheTransferSyntaxThatTheFileWasReadWith) {
    for (const auto& [flags, uid] :
         {std::pair(0xFFFFFFFFu, "1.2.840.10008.1.2.1"), std::pair(0x2Cu, "1.2.840.10008.1.2.1"),
          std::pair(0x28u, "1.2.840.10008.1.2.1"), std::pair(0x34u, "1.2.840.10008.1.2"),
          std::pair(0x30u, "1.2.840.10008.1.2"), std::pair(0x4Cu, "1.2.840.10008.1.2.2"),
          std::pair(0x48u, "1.2.840.10008.1.2.2"), std::pair(0x50u, "1.2.840.10008.1.2.1"),
          std::pair(0x00u, "1.2.840.10008.1.2.1"), std::pair(0x78u, "1.2.840.10008.1.2.1")}) {
        DataSet root(pgAllocateDataSetNode());
        root->syntaxFlags = flags;
        root->AddPart10Elements(nullptr);
        root_.swap(root);
        EXPECT_EQ(Meta(0x0010), uid) << flags;
    }
}

TEST_F(MetaHeader, HasNoGroupLength) {
    root_->AddPart10Elements(nullptr);
    EXPECT_EQ(root_->FindNode(0x0002, 0x0000), nullptr);
}

TEST_F(MetaHeader, OfAnElementIsRefusedPieceByPiece) {
    PGX_Node* element = root_->InsertNode(0x0008, 0x0060, "CT", 2);
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(element->AddPart10Elements(nullptr), 1); });
    const std::string line = "pgInsertNode: can only insert in a NT_DataSet type\n";
    EXPECT_EQ(printed.out, line + line + line + line);
    EXPECT_EQ(element->first, nullptr);
}

}  // namespace
