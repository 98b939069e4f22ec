// Keeps the leaves of a series in ascending order of their instance numbers, without walking the
// list for each of them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "pgkit/directory_records.h"
#include "pgkit/list.h"

namespace pgkit {

class LeafOrder {
  public:
    // Gives the list a leaf: at the end when no number is greater, else in front of the first leaf
    // whose number is not smaller. Between two calls nobody else may change the list.
    PGX_DicomDirLeafNode& Insert(PGX_List& leaves, std::unique_ptr<PGX_DicomDirLeafNode> leaf);

  private:
    void IndexCells(const PGX_List& leaves);

    // The last cell of each number that occurs. Stays empty while leaves come in order.
    std::map<int32_t, PGX_ListElement*> lastCells_;
};

}  // namespace pgkit
