// What the library's acceptance codes, and the results of a creation, mean to a user.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace pgtool {

// "Dicom file accepted"; empty for a number that is no code.
std::string TextOfAcceptance(uint32_t code);

// The code with its text: "0 Dicom file accepted".
std::string DescribeAcceptance(uint32_t code);

// Why no DICOMDIR of this path was written; empty for the result 0.
std::string DescribeCreation(uint32_t result, const std::string& directoryFile);

// How many files got which code.
class AcceptanceSummary {
  public:
    void Count(uint32_t code);
    uint32_t Files() const { return files_; }
    // How many files got each code that occurred.
    const std::map<uint32_t, uint32_t>& Counts() const { return counts_; }
    // A line on the standard output for every code that occurred: "0 Dicom file accepted: 12".
    void Print() const;

  private:
    std::map<uint32_t, uint32_t> counts_;
    uint32_t files_ = 0;
};

}  // namespace pgtool
