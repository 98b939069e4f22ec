// Opening and saving data sets for commands.
#pragma once

#include <cstdint>
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

// Saves a data set, and closes it, through an OutputFile: the result of SaveDataSetAsEx, with which
// the former file is as it was unless it is 0.
[[nodiscard]] uint32_t SaveWhole(DataSet root, const std::string& path, uint32_t mode);

// What a result of SaveDataSetAsEx means.
std::string DescribeSaveResult(uint32_t result);

}  // namespace pgtool
