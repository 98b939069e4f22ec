// Files of a medium that no record refers to.
#pragma once

#include <string>
#include <vector>

#include "verify/finding.h"
#include "verify/medium_files.h"

namespace pgtool {

// What the standard's media have beside a DICOMDIR and its files: README.TXT, INDEX.HTM, IHE_PDI,
// AUTORUN.INF, and the programs that this starts with what lies in their folders.
class Companions {
  public:
    // Reads the AUTORUN.INF that is among the files.
    Companions(const std::vector<std::string>& all, const MediumFiles& files);

    bool Contains(const std::string& file) const;

  private:
    std::vector<std::string> names_;  // in lower case; of a folder with a slash at the end
};

// Notes DICOM files that no record refers to; directory files are none of these.
void CheckOtherFiles(const std::vector<std::string>& all, const MediumFiles& files,
                     Findings& findings);

}  // namespace pgtool
