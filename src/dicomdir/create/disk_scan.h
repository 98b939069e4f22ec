// A whole scan as callers ask for it: the acceptance list is started, every file is added, and
// missing keys are filled on demand.
#pragma once

#include <string>

#include "dicomdir/create/acceptance_list.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/list.h"

namespace pgkit {

class DiskScan {
  public:
    // The profile and the options may be null.
    DiskScan(const char* directory, const char* profile, const PgDicomdirOptions* options);

    // Adds to what the hierarchy has already. Throws std::bad_alloc; what was added by then is
    // complete.
    void Run(PGX_List& patients, PgDicomdirScanCallback callback, void* userData);

    const std::string& Directory() const { return directory_; }
    const PgDicomdirOptions& Options() const { return options_; }
    // Null when the options want none.
    AcceptanceList* List();
    // The scan was all that was asked for.
    void KeepList() { list_.Keep(); }

  private:
    std::string directory_;
    std::string profile_;
    PgDicomdirOptions options_;
    AcceptanceList list_;
};

}  // namespace pgkit
