// Accessors: lists.
#include <new>

#include "api/handle_access.h"
#include "pgkit/accessors.h"

using pgkit::CallOn;
using pgkit::FieldOf;
using pgkit::Guarded;

PGX_List* pgKitListAllocate() {
    return Guarded([] { return new (std::nothrow) PGX_List; });
}

void pgKitListDelete(PGX_List* list) {
    Guarded([=] { delete list; });
}

int32_t pgKitListGetCount(PGX_List* list) { return CallOn(list, &PGX_List::GetCount); }

void* pgKitListGetElementAt(PGX_List* list, int32_t index) {
    return CallOn(list, &PGX_List::GetAt, index);
}

void* pgKitListGetHead(PGX_List* list) { return CallOn(list, &PGX_List::GetHead); }

void* pgKitListGetTail(PGX_List* list) { return CallOn(list, &PGX_List::GetTail); }

void pgKitListAddHead(PGX_List* list, void* data) { CallOn(list, &PGX_List::AddHead, data); }

void pgKitListAddTail(PGX_List* list, void* data) { CallOn(list, &PGX_List::AddTail, data); }

void pgKitListInsertAt(PGX_List* list, int32_t index, void* data) {
    CallOn(list, &PGX_List::InsertAt, index, data);
}

void* pgKitListRemoveHead(PGX_List* list) { return CallOn(list, &PGX_List::RemoveHead); }

void* pgKitListRemoveTail(PGX_List* list) { return CallOn(list, &PGX_List::RemoveTail); }

void* pgKitListRemoveElement(PGX_List* list, void* data) {
    return CallOn(list, &PGX_List::RemoveElement, data);
}

PGX_ListElement* pgxListFirst(PGX_List* list) { return FieldOf(list, &PGX_List::head); }

PGX_ListElement* pgxListNext(PGX_ListElement* cell) {
    return FieldOf(cell, &PGX_ListElement::next);
}

void* pgxListData(PGX_ListElement* cell) { return FieldOf(cell, &PGX_ListElement::data); }
