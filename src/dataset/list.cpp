#include "pgkit/list.h"

#include <utility>

#include "dataset/list_cells.h"

using pgkit::LinkAfter;
using pgkit::NewCell;
using pgkit::RemoveAfter;

namespace pgkit {

std::unique_ptr<PGX_ListElement> NewCell(void* data) {
    auto cell = std::make_unique<PGX_ListElement>();
    cell->data = data;
    return cell;
}

void LinkAfter(PGX_List& list, PGX_ListElement* before,
               std::unique_ptr<PGX_ListElement> cell) noexcept {
    PGX_ListElement*& link = before == nullptr ? list.head : before->next;
    cell->next = link;
    if (cell->next == nullptr) list.tail = cell.get();
    link = cell.release();
    ++list.count;
}

void* RemoveAfter(PGX_List& list, PGX_ListElement* before) {
    PGX_ListElement*& link = before == nullptr ? list.head : before->next;
    PGX_ListElement* removed = link;
    void* data = removed->data;
    link = removed->next;
    if (link == nullptr) list.tail = before;
    delete removed;
    --list.count;
    return data;
}

}  // namespace pgkit

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

int32_t PGX_List::GetCount() { return count; }

PGX_ListElement* PGX_List::GetFirstPosition() { return head; }

PGX_ListElement* PGX_List::GetLastPosition() { return tail; }

void* PGX_List::GetAt(int32_t index) {
    if (index < 0 || index >= count) return nullptr;
    PGX_ListElement* cell = head;
    while (index-- > 0)
        cell = cell->next;
    return cell->data;
}

void* PGX_List::GetHead() { return head == nullptr ? nullptr : head->data; }

void* PGX_List::GetTail() { return tail == nullptr ? nullptr : tail->data; }

void PGX_List::AddHead(void* data) { LinkAfter(*this, nullptr, NewCell(data)); }

void PGX_List::AddTail(void* data) { LinkAfter(*this, tail, NewCell(data)); }

void PGX_List::InsertAt(int32_t index, void* data) {
    if (index >= count) return AddTail(data);
    if (index <= 0) return AddHead(data);
    PGX_ListElement* before = head;
    for (int32_t i = 1; i < index; ++i)
        before = before->next;
    LinkAfter(*this, before, NewCell(data));
}

void* PGX_List::RemoveHead() { return head == nullptr ? nullptr : RemoveAfter(*this, nullptr); }

void* PGX_List::RemoveTail() {
    if (tail == nullptr) return nullptr;
    if (head == tail) return RemoveHead();
    PGX_ListElement* before = head;
    while (before->next != tail)
        before = before->next;
    return RemoveAfter(*this, before);
}

void* PGX_List::RemoveElement(void* data) {
    if (head == nullptr) return nullptr;
    if (head->data == data) return RemoveHead();
    if (tail == nullptr) return nullptr;
    if (tail->data == data) return RemoveTail();
    for (PGX_ListElement* before = head; before->next != nullptr; before = before->next) {
        if (before->next->data == data) return RemoveAfter(*this, before);
    }
    return nullptr;
}
