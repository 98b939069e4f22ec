#include "headers/c_host.h"

HostFindings LookIntoFile(const char* path) {
    HostFindings findings;
    PGX_Node* root = pgOpenDataSetFileEx(path, 64, PG_OPEN_SKIP_FRAGMENTS);
    findings.isDicomFile = pgIsDicomFile(path);
    findings.hasModality = pgFindNodeWithGroupElement(root, 0x0008, 0x0060) != NULL;
    findings.hasPatientsName =
        pgFindNodeWithElementId(root, pgGetTagElementId("PatientsName")) != NULL;
    pgCloseDataSet(root);
    return findings;
}

HostAnswers AskForPixelData(void) {
    HostAnswers answers;
    answers.elementId = pgFindElementIdType(0x7FE0, 0x0010);
    answers.valueRep = pgFindValueRepresentation(0x7FE0, 0x0010);
    pgGetVRPrintableName(answers.valueRep, answers.valueRepName);
    pgGetTagPrintableName(0x7FE0, 0x0010, answers.name);
    return answers;
}
