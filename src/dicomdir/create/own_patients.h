// A hierarchy that ends with its scope, or is handed over.
#pragma once

#include <memory>

#include "pgkit/list.h"
#include "pgkit/patient_list.h"

namespace pgkit {

struct DestroyPatients {
    void operator()(PGX_List* patients) const {
        pgEmptyPatientList(patients);
        delete patients;
    }
};
using OwnPatients = std::unique_ptr<PGX_List, DestroyPatients>;

inline OwnPatients NewPatients() { return OwnPatients(new PGX_List); }

}  // namespace pgkit
