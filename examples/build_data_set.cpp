// Builds an image in memory, a gray wedge with a sequence that says what it is, and saves it as a
// DICOM file.
//
//   build_data_set NEW_FILE
#include <pgkit/pgkit.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr uint16_t kEdge = 64;

void InsertText(PGX_Node* dataSet, uint16_t group, uint16_t element, const char* text) {
    dataSet->InsertNode(group, element, text, static_cast<uint32_t>(std::strlen(text)));
}

void InsertNumber(PGX_Node* dataSet, uint16_t group, uint16_t element, uint16_t number) {
    // Numbers are in the byte order of this machine; saving brings them into that of the file.
    dataSet->InsertNode(group, element, &number, sizeof(number));
}

void InsertIdentification(PGX_Node* dataSet) {
    InsertText(dataSet, 0x0008, 0x0016, "1.2.840.10008.5.1.4.1.1.7");  // Secondary Capture
    InsertText(dataSet, 0x0008, 0x0018, "2.25.20861");
    InsertText(dataSet, 0x0008, 0x0060, "OT");
    InsertText(dataSet, 0x0008, 0x0064, "SYN");
    InsertText(dataSet, 0x0008, 0x0020, "20240229");
    InsertText(dataSet, 0x0008, 0x0030, "120000");
    InsertText(dataSet, 0x0010, 0x0010, "TEST^WEDGE");
    InsertText(dataSet, 0x0010, 0x0020, "WEDGE-1");
    InsertText(dataSet, 0x0020, 0x000D, "2.25.20862");
    InsertText(dataSet, 0x0020, 0x000E, "2.25.20863");
    InsertText(dataSet, 0x0020, 0x0010, "1");
    InsertText(dataSet, 0x0020, 0x0011, "1");
    InsertText(dataSet, 0x0020, 0x0013, "1");
}

// What an image must have, with a value or without. Elements find their places in tag order.
void InsertUnknown(PGX_Node* dataSet) {
    constexpr uint16_t tags[][2] = {
        {0x0008, 0x0050},  // Accession Number
        {0x0008, 0x0090},  // Referring Physician's Name
        {0x0010, 0x0030},  // Patient's Birth Date
        {0x0010, 0x0040},  // Patient's Sex
        {0x0020, 0x0020}   // Patient Orientation
    };
    for (const auto& [group, element] : tags)
        dataSet->InsertNode(group, element, nullptr, 0);
}

// Anatomic Region Sequence (0008,2218), with one item. What is added belongs to the tree.
void InsertSequence(PGX_Node* dataSet) {
    PGX_Node* const sequence = dataSet->InsertNode(0x0008, 0x2218, nullptr, 0);
    PGX_Node* const item = pgAllocateDataSetNode();
    InsertText(item, 0x0008, 0x0100, "113681");
    InsertText(item, 0x0008, 0x0102, "DCM");
    InsertText(item, 0x0008, 0x0104, "Phantom");
    sequence->SeqAddTail(item);
}

void InsertImage(PGX_Node* dataSet) {
    InsertNumber(dataSet, 0x0028, 0x0002, 1);  // Samples per Pixel
    InsertText(dataSet, 0x0028, 0x0004, "MONOCHROME2");
    InsertNumber(dataSet, 0x0028, 0x0010, kEdge);
    InsertNumber(dataSet, 0x0028, 0x0011, kEdge);
    // Before the pixels: with 8 Bits Allocated they become OB.
    InsertNumber(dataSet, 0x0028, 0x0100, 8);
    InsertNumber(dataSet, 0x0028, 0x0101, 8);
    InsertNumber(dataSet, 0x0028, 0x0102, 7);
    InsertNumber(dataSet, 0x0028, 0x0103, 0);

    std::vector<uint8_t> pixels(size_t{kEdge} * kEdge);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i % kEdge * 4);
    dataSet->InsertNode(0x7FE0, 0x0010, pixels.data(), static_cast<uint32_t>(pixels.size()));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    PGX_Node* const dataSet = pgAllocateDataSetNode();
    if (dataSet == nullptr) return 1;
    InsertIdentification(dataSet);
    InsertUnknown(dataSet);
    InsertSequence(dataSet);
    InsertImage(dataSet);
    dataSet->AddPart10Elements("1.2.840.10008.1.2.1");  // explicit VR little endian

    const uint32_t result =
        dataSet->SaveDataSetAsEx(arguments[1], PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN);
    if (result != 0) std::fprintf(stderr, "Cannot save (%u)\n", unsigned{result});
    pgFreeNodeHierarchy(dataSet);
    return result == 0 ? 0 : 1;
}
