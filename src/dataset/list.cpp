#include "pgkit/list.h"

namespace {

PGX_ListElement* NewCell(void* data) {
    PGX_ListElement* cell = new PGX_ListElement;
    cell->data = data;
    return cell;
}

// The cell that follows before leaves the list.
void RemoveAfter(PGX_List& list, PGX_ListElement* before) {
    PGX_ListElement* removed = before->next;
    before->next = removed->next;
    if (list.tail == removed) list.tail = before;
    delete removed;
    --list.count;
}

}  // namespace

PGX_ListElement::PGX_ListElement() : data(nullptr), next(nullptr) {}

PGX_ListElement::~PGX_ListElement() {
    data = nullptr;
    next = nullptr;
}

PGX_ListElement& PGX_ListElement::operator=(const PGX_ListElement& other) = default;

PGX_List::PGX_List() : count(0), head(nullptr), tail(nullptr) {}

PGX_List::~PGX_List() {
    while (count != 0 && head != nullptr)
        RemoveHead();
}

PGX_List& PGX_List::operator=(const PGX_List& other) = default;

int32_t PGX_List::GetCount() {
    return count;
}

PGX_ListElement* PGX_List::GetFirstPosition() {
    return head;
}

PGX_ListElement* PGX_List::GetLastPosition() {
    return tail;
}

void* PGX_List::GetAt(int32_t index) {
    if (index < 0 || index >= count) return nullptr;
    PGX_ListElement* cell = head;
    while (index-- > 0)
        cell = cell->next;
    return cell->data;
}

void* PGX_List::GetHead() {
    return head == nullptr ? nullptr : head->data;
}

void* PGX_List::GetTail() {
    return tail == nullptr ? nullptr : tail->data;
}

void PGX_List::AddHead(void* data) {
    PGX_ListElement* cell = NewCell(data);
    cell->next = head;
    head = cell;
    if (tail == nullptr) tail = cell;
    ++count;
}

void PGX_List::AddTail(void* data) {
    PGX_ListElement* cell = NewCell(data);
    if (head == nullptr) {
        head = cell;
    } else {
        tail->next = cell;
    }
    tail = cell;
    ++count;
}

void PGX_List::InsertAt(int32_t index, void* data) {
    if (index >= count) return AddTail(data);
    if (index <= 0) return AddHead(data);
    PGX_ListElement* before = head;
    for (int32_t i = 1; i < index; ++i)
        before = before->next;
    PGX_ListElement* cell = NewCell(data);
    cell->next = before->next;
    before->next = cell;
    ++count;
}

void* PGX_List::RemoveHead() {
    if (head == nullptr) return nullptr;
    PGX_ListElement* removed = head;
    void* data = removed->data;
    head = removed == tail ? nullptr : removed->next;
    if (head == nullptr) tail = nullptr;
    delete removed;
    --count;
    return data;
}

void* PGX_List::RemoveTail() {
    if (tail == nullptr) return nullptr;
    if (head == tail) return RemoveHead();
    void* data = tail->data;
    PGX_ListElement* before = head;
    while (before->next != tail)
        before = before->next;
    RemoveAfter(*this, before);
    return data;
}

void* PGX_List::RemoveElement(void* data) {
    if (head == nullptr) return nullptr;
    if (head->data == data) return RemoveHead();
    if (tail == nullptr) return nullptr;
    if (tail->data == data) return RemoveTail();
    for (PGX_ListElement* before = head; before->next != nullptr; before = before->next) {
        if (before->next->data != data) continue;
        RemoveAfter(*this, before);
        return data;
    }
    return nullptr;
}
