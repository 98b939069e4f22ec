// One creation, from its first file to its directory file: what scans, offshore creations and
// single files have in common.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/hierarchy_builder.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/list.h"
#include "pgkit/patient_list.h"

namespace pgkit {

// A hierarchy that ends with its scope, or is handed over.
struct DestroyPatients {
    void operator()(PGX_List* patients) const {
        pgEmptyPatientList(patients);
        delete patients;
    }
};
using OwnPatients = std::unique_ptr<PGX_List, DestroyPatients>;

inline OwnPatients NewPatients() { return OwnPatients(new PGX_List); }

// Where a creation ends: in the hierarchy, which is the host's, or in a directory file, which can
// also list what belongs to no patient.
enum class CreationEnd { Hierarchy, DirectoryFile };

class Creation {
  public:
    // Of the medium in a folder, with what the hierarchy has already. Null options are the default,
    // an empty profile is none.
    Creation(std::string folder, std::string_view profile, const PgDicomdirOptions* options,
             PGX_List& patients, CreationEnd end);
    ~Creation();
    Creation(const Creation&) = delete;
    Creation& operator=(const Creation&) = delete;

    // Starts the acceptance list, unless the options want none. Whoever does may keep it: else the
    // former one comes back.
    void StartList();
    void KeepList() { list_.Keep(); }

    PgAcceptanceCode Add(const FileToAdd& file) { return builder_->Add(file).code; }

    // Adds every file of the folder, and fills missing keys on demand; no other file is added after
    // that. Throws std::bad_alloc; what was added by then is complete.
    void Scan(PgDicomdirScanCallback callback, void* userData);

    // Writes the directory file, and keeps the list when that tells about it.
    [[nodiscard]] uint32_t Build();

  private:
    AcceptanceList* List();
    void CloseBuilder();

    std::string folder_;
    PgDicomdirOptions options_;
    AcceptanceList list_;
    PGX_List& patients_;
    PGX_List rootLeaves_;
    std::optional<HierarchyBuilder> builder_;  // until the hierarchy is complete
    size_t refused_ = 0;                       // files, when it is
};

}  // namespace pgkit
