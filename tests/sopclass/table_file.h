// The rows of a tab-separated table of tests/data/tables, without its header line.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace pgkit_test {

using TableRow = std::vector<std::string>;

inline std::vector<TableRow> ReadTable(const std::string& name) {
    std::ifstream file(TestData("tables/" + name));
    EXPECT_TRUE(file.good()) << name;
    std::vector<TableRow> rows;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        std::istringstream cells(line);
        TableRow row;
        for (std::string cell; std::getline(cells, cell, '\t');)
            row.push_back(cell);
        rows.push_back(row);
    }
    return rows;
}

}  // namespace pgkit_test
