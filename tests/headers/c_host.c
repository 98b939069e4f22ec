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

void DescribeFirstElement(const char* path, HostElement* found) {
    PGX_Node* root = pgKitOpenDataSetFile(path, 64);
    PGX_Node* element = pgKitGetFirst(root);
    found->group = pgKitGetGroup(element);
    found->element = pgKitGetElement(element);
    found->text[0] = 0;
    pgKitGetStringValue(element, found->text, (int32_t)sizeof(found->text) - 1);
    pgKitCloseDataSet(root);
}
