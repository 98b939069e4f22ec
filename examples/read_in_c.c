/* Prints the top level of a DICOM file: tag, name, length, and the value of short texts. In C, by
   the flat functions alone.

     read_in_c FILE
*/
#include <pgkit/pgkit.h>
#include <stdio.h>

static void PrintElement(PGX_Node* element) {
    const uint16_t group = pgKitGetGroup(element);
    const uint16_t number = pgKitGetElement(element);
    const uint32_t valueRep = pgKitGetValueRep(element);
    char vr[5];
    char name[128];
    char text[65];

    pgGetVRPrintableName(valueRep, vr);
    pgGetTagPrintableName(group, number, name);
    printf("(%04X,%04X) %s %s, %u bytes", group, number, vr, name,
           (unsigned)pgKitGetLength(element));
    /* Texts that depend on the character set, and the codes that do not. */
    if ((pgIsCharsetEncodedVR(valueRep) || valueRep == VR_CS || valueRep == VR_UI) &&
        pgKitGetStringValue(element, text, 64)) {
        printf(": %s", text);
    }
    printf("\n");
}

int main(int argumentCount, char** arguments) {
    PGX_Node* dataSet;
    PGX_Node* element;
    if (argumentCount != 2) return 2;
    dataSet = pgKitOpenDataSetFile(arguments[1], 64);
    if (dataSet == NULL) {
        fprintf(stderr, "Cannot read %s\n", arguments[1]);
        return 1;
    }
    for (element = pgKitGetFirst(dataSet); element != NULL; element = pgKitGetNext(element)) {
        PrintElement(element);
    }
    pgKitCloseDataSet(dataSet);
    return 0;
}
