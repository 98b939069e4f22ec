// Saves a copy of a DICOM file under another patient's name, without birth date and telephone
// numbers, in the encoding of the original. Pixels go from file to file and are never held whole.
//
//   edit_and_save FILE NEW_FILE NAME
#include <pgkit/pgkit.h>

#include <cstdio>
#include <cstring>

namespace {

void RemoveElement(PGX_Node* dataSet, uint16_t group, uint16_t element) {
    // Frees the element too; null is ignored.
    dataSet->RemoveNode(dataSet->FindNode(group, element));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) return 2;
    PGX_Node* const dataSet = pgOpenDataSetFile(arguments[1], 64);
    if (dataSet == nullptr) {
        std::fprintf(stderr, "Cannot read %s\n", arguments[1]);
        return 1;
    }
    const char* const name = arguments[3];
    dataSet->AddOrReplaceNode(0x0010, 0x0010, name, static_cast<uint32_t>(std::strlen(name)));
    RemoveElement(dataSet, 0x0010, 0x0030);
    RemoveElement(dataSet, 0x0010, 0x2154);

    const uint32_t result = dataSet->SaveDataSetAsEx(arguments[2], 0);  // 0: the encoding as read
    if (result != 0) std::fprintf(stderr, "Cannot save (%u)\n", unsigned{result});
    pgCloseDataSet(dataSet);  // only now: unread values were still in the old file
    return result == 0 ? 0 : 1;
}
