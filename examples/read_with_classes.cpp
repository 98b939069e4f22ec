// The same as read_and_print.cpp, with the classes that the module exports.
//
//   read_with_classes FILE
#include <pgkit/pgkit.h>

#include <cstdio>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    // Values below 64 bytes are loaded now; longer ones, the pixels above all, stay in the file.
    PGX_Node* const dataSet = pgOpenDataSetFile(arguments[1], 64);
    if (dataSet == nullptr) {
        std::fprintf(stderr, "Cannot read %s\n", arguments[1]);
        return 1;
    }
    if (PGX_Node* const name = dataSet->FindNode(0x0010, 0x0010)) {
        char text[65];
        name->GetStringValue(text, 64);
        std::printf("Patient: %s\n", text);
    }
    PGX_Node* const rows = dataSet->FindNode(0x0028, 0x0010);
    PGX_Node* const columns = dataSet->FindNode(0x0028, 0x0011);
    if (rows != nullptr && columns != nullptr) {
        std::printf("Image: %u x %u\n", unsigned{columns->GetUSValue()},
                    unsigned{rows->GetUSValue()});
    }
    dataSet->Dump(stdout, "  ");
    pgCloseDataSet(dataSet);  // and the file
    return 0;
}
