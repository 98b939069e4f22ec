// Rows of a scan, and the forms in which they are printed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pgkit/cpp/result.hpp"
#include "text_options.h"

namespace pgtool {

struct ScanColumn {
    std::string name;   // "PatientName"; a path as it was given
    std::string place;  // what is looked up
};

struct ScanRow {
    std::string path;
    std::vector<std::string> values;  // in the order of the columns, UTF-8
    std::vector<bool> isThere;        // whether the data set has the element
    std::string damage;               // what is wrong with a file that is cut short or broken
};

// Columns out of a list, "PatientName,0010,0020,RequestAttributesSequence[0].RequestedProcedureID":
// two numbers of four digits are one tag. Empty with the complaint about what is no element.
std::vector<ScanColumn> ColumnsOf(const std::string& list, std::string& complaint);

// The values of a file, of which no more than the headers and these values are read. The error is
// of no kind when there is a row, not_a_data_set for other files. May be called by several threads
// at once.
pgkit::error ReadRow(const std::vector<ScanColumn>& columns, bool raw, ScanRow& row);

class RowPrinter {
  public:
    virtual ~RowPrinter() = default;
    // Some rows, those that come next.
    virtual void Print(const std::vector<ScanRow>& rows) = 0;
};

// "csv", "jsonl" or "table".
std::unique_ptr<RowPrinter> MakeRowPrinter(const std::string& format,
                                           const std::vector<ScanColumn>& columns,
                                           const TextOptions& texts);

}  // namespace pgtool
