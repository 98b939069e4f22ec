/* A host in C: prints the name and the VR of Pixel Data. */
#include <pgkit/pgkit.h>
#include <stdio.h>

int main(void) {
    char name[128];
    char vr[5];
    pgGetTagPrintableName(0x7FE0, 0x0010, name);
    pgGetVRPrintableName(pgFindValueRepresentation(0x7FE0, 0x0010), vr);
    printf("%s %s\n", name, vr);
    return 0;
}
