// Opening and saving data sets for commands.
#pragma once

#include <memory>
#include <string>

#include "pgkit/dataset.h"
#include "pgkit/node.h"

namespace pgtool {

struct CloseDataSet {
    void operator()(PGX_Node* root) const { pgCloseDataSet(root); }
};
using DataSet = std::unique_ptr<PGX_Node, CloseDataSet>;

// Why a file that a command wants to read gave no data set.
std::string CannotOpen(const std::string& path);

// What a result of SaveDataSetAsEx means.
std::string DescribeSaveResult(uint32_t result);

}  // namespace pgtool
