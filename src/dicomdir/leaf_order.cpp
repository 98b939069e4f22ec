#include "dicomdir/leaf_order.h"

#include <iterator>

#include "dataset/list_cells.h"

namespace pgkit {

namespace {

int32_t NumberIn(const PGX_ListElement& cell) {
    return static_cast<PGX_DicomDirLeafNode*>(cell.data)->instanceNumber;
}

}  // namespace

PGX_DicomDirLeafNode& LeafOrder::Insert(PGX_List& leaves,
                                        std::unique_ptr<PGX_DicomDirLeafNode> leaf) {
    const int32_t number = leaf->instanceNumber;
    if (leaves.tail == nullptr || NumberIn(*leaves.tail) <= number) {
        leaves.AddTail(leaf.get());
        PGX_DicomDirLeafNode& added = *leaf.release();
        if (!lastCells_.empty()) lastCells_[number] = leaves.tail;
        return added;
    }
    if (lastCells_.empty()) IndexCells(leaves);
    const auto notSmaller = lastCells_.lower_bound(number);
    PGX_ListElement* before =
        notSmaller == lastCells_.begin() ? nullptr : std::prev(notSmaller)->second;
    PGX_ListElement* cell = InsertAfter(leaves, before, leaf.get());
    PGX_DicomDirLeafNode& added = *leaf.release();
    lastCells_.try_emplace(number, cell);
    return added;
}

void LeafOrder::IndexCells(const PGX_List& leaves) {
    for (PGX_ListElement* cell = leaves.head; cell != nullptr; cell = cell->next)
        lastCells_.insert_or_assign(lastCells_.end(), NumberIn(*cell), cell);
}

}  // namespace pgkit
