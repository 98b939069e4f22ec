// pgkit: PGX_List, the singly linked list of pointers in which hierarchies are handed out (C++; C
// callers get it as an opaque handle).
//
// A list owns its cells and never what the cells point to: removing a pointer or destroying the
// list leaves the object alive. Walk a list by its cells:
//
//     for (PGX_ListElement* cell = list.GetFirstPosition(); cell != nullptr; cell = cell->next)
//         Use(cell->data);
//
// Change it through the members only: the cells' memory is the module's own.
#ifndef PGKIT_LIST_H
#define PGKIT_LIST_H

#include <stdint.h>

#if defined(__cplusplus)

#include <cstddef>

#include "pgkit/export.h"

// One cell.
class PGX_ListElement {
  public:
    void* data;
    PGX_ListElement* next;  // null in the last cell

    PGKIT_API PGX_ListElement();
    // Frees nothing, and leaves both fields null.
    PGKIT_API ~PGX_ListElement();
    PGKIT_API PGX_ListElement& operator=(const PGX_ListElement& other);
    PGX_ListElement(const PGX_ListElement&) = delete;
};

class PGX_List {
  public:
    int32_t count;
    PGX_ListElement* head;  // null when the list is empty
    PGX_ListElement* tail;

    PGKIT_API PGX_List();
    // Frees the cells, not the objects. The count is 0 afterwards.
    PGKIT_API ~PGX_List();
    // Copies the three fields: afterwards both lists share the cells, those that this list had are
    // lost, and only one of the two may be changed, emptied or destroyed.
    PGKIT_API PGX_List& operator=(const PGX_List& other);
    PGX_List(const PGX_List&) = delete;

    PGKIT_API int32_t GetCount();
    // The first and the last cell, null when the list is empty.
    PGKIT_API PGX_ListElement* GetFirstPosition();
    PGKIT_API PGX_ListElement* GetLastPosition();
    // The pointer at an index that counts from 0; null when there is none. Walks from the head.
    PGKIT_API void* GetAt(int32_t index);
    // The first and the last pointer, null when the list is empty.
    PGKIT_API void* GetHead();
    PGKIT_API void* GetTail();

    PGKIT_API void AddHead(void* data);
    PGKIT_API void AddTail(void* data);
    // Inserts so that the pointer comes to stand at the index. An index below 0 counts as 0, one
    // above the count as the count. Walks from the head.
    PGKIT_API void InsertAt(int32_t index, void* data);

    // Both return the pointer removed, null when the list is empty. RemoveTail walks from the head.
    PGKIT_API void* RemoveHead();
    PGKIT_API void* RemoveTail();
    // Removes one cell that holds this pointer: the head if it does, else the tail if it does, else
    // the first of the others. Returns the pointer, or null when no cell holds it.
    PGKIT_API void* RemoveElement(void* data);
};

// The layout is part of the interface: hosts read the fields.
static_assert(sizeof(void*) == 8, "pgkit is a 64-bit library");
static_assert(sizeof(PGX_ListElement) == 16 && offsetof(PGX_ListElement, next) == 8);
static_assert(sizeof(PGX_List) == 24 && offsetof(PGX_List, head) == 8 &&
              offsetof(PGX_List, tail) == 16);

#else
typedef struct PGX_List PGX_List;
typedef struct PGX_ListElement PGX_ListElement;
#endif

#endif
