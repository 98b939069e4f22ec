// The code sequences of leaves: copies of those of the record, owned by the leaf.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"
#include "support/stream_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;
using pgkit_test::DirectoryRecordSpec;
using pgkit_test::OneItem;
using pgkit_test::StreamBuilder;

struct SequenceKey {
    std::string name;
    std::string recordType;
    uint16_t group;
    uint16_t element;
    PGX_Node* (*read)(PGX_DicomDirLeafNode&);
};

void PrintTo(const SequenceKey& key, std::ostream* out) { *out << key.name; }

template <typename Class>
PGX_Node* ConceptName(PGX_DicomDirLeafNode& leaf) {
    return dynamic_cast<Class&>(leaf).conceptNameCodeSequence;
}

template <typename Class>
PGX_Node* Content(PGX_DicomDirLeafNode& leaf) {
    return dynamic_cast<Class&>(leaf).contentSequence;
}

PGX_Node* ReferencedSeries(PGX_DicomDirLeafNode& leaf) {
    return dynamic_cast<PGX_DicomDirPresentationNode&>(leaf).referencedSeriesSequence;
}

const SequenceKey kKeys[] = {
    {"ReportConceptName", "SR DOCUMENT", 0x0040, 0xA043, ConceptName<PGX_DicomDirReportNode>},
    {"ReportContent", "SR DOCUMENT", 0x0040, 0xA730, Content<PGX_DicomDirReportNode>},
    {"KeyObjectConceptName", "KEY OBJECT DOC", 0x0040, 0xA043,
     ConceptName<PGX_DicomDirKeyObjectNode>},
    {"KeyObjectContent", "KEY OBJECT DOC", 0x0040, 0xA730, Content<PGX_DicomDirKeyObjectNode>},
    {"PresentationReferencedSeries", "PRESENTATION", 0x0008, 0x1115, ReferencedSeries},
    {"DocumentConceptName", "ENCAP DOC", 0x0040, 0xA043,
     ConceptName<PGX_DicomDirEncapsulatedDocNode>},
};

// One item with a code value.
std::string CodeSequence(const std::string& value) {
    StreamBuilder code;
    code.Element(0x0008, 0x0100, "SH", value);
    return OneItem(code);
}

std::string CodeOf(PGX_Node* sequence) {
    char text[17];
    sequence->first->FindNode(0x0008, 0x0100)->GetStringValue(text, 16);
    return text;
}

// A leaf whose record has all sequences that any leaf may have, this one with a code of its own.
class SequenceOfLeaf : public testing::TestWithParam<SequenceKey> {
  protected:
    SequenceOfLeaf() {
        const size_t study = directory_.Study(directory_.Patient("P", "DOE"), "S");
        leaf_ = directory_.Child(directory_.Series(study, "E", "OT"), GetParam().recordType);
        for (const SequenceKey& key : kKeys)
            directory_[leaf_].Set(key.group, key.element, "SQ", CodeSequence("OTHER "));
        directory_[leaf_].Set(GetParam().group, GetParam().element, "SQ", CodeSequence("THIS"));
    }

    DirectoryBuilder directory_;
    size_t leaf_;
};

TEST_P(SequenceOfLeaf, HasTheItemsOfItsElement) {
    BrowsedDirectory browsed(directory_);
    PGX_Node* const sequence = GetParam().read(browsed.Leaf());
    ASSERT_NE(sequence, nullptr);
    EXPECT_EQ(CodeOf(sequence), "THIS");
}

TEST_P(SequenceOfLeaf, IsACopyThatStandsAlone) {
    directory_[leaf_].Set(0x7FE1, 0x0010, "LO", "a sibling behind it");
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirLeafNode& leaf = browsed.Leaf();
    PGX_Node* const original = leaf.record->FindNode(GetParam().group, GetParam().element);
    PGX_Node* const copy = GetParam().read(leaf);
    EXPECT_NE(copy, original);
    EXPECT_NE(original->next, nullptr);
    EXPECT_EQ(copy->next, nullptr);
    EXPECT_EQ(copy->first->file, nullptr);
}

TEST_P(SequenceOfLeaf, IsNullWithoutItsElement) {
    directory_[leaf_].Remove(GetParam().group, GetParam().element);
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(GetParam().read(browsed.Leaf()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Every, SequenceOfLeaf, testing::ValuesIn(kKeys),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
