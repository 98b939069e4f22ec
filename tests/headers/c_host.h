/* A host of the module that is written in C. */
#pragma once

#include <pgkit/pgkit.h>

PGKIT_BEGIN_C

/* What a C program finds of a Part 10 file through the flat functions alone. */
typedef struct HostFindings {
    int32_t isDicomFile;
    int32_t hasModality;
    int32_t hasPatientsName;
} HostFindings;

HostFindings LookIntoFile(const char* path);

/* What a C program is told about Pixel Data. */
typedef struct HostAnswers {
    uint32_t elementId;
    uint32_t valueRep;
    char valueRepName[5];
    char name[128];
} HostAnswers;

HostAnswers AskForPixelData(void);

/* What a C program reads of an element through the accessors; zeros when there is none. */
typedef struct HostElement {
    uint16_t group;
    uint16_t element;
    char text[65];
} HostElement;

void DescribeFirstElement(const char* path, HostElement* found);

PGKIT_END_C
