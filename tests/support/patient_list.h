// The owner of a patient list that the library allocated.
#pragma once

#include <pgkit/patient_list.h>

#include <memory>

namespace pgkit_test {

struct DeletePatients {
    void operator()(PGX_List* patients) const {
        pgEmptyPatientList(patients);
        delete patients;
    }
};
// A list with its whole hierarchy, deleted at the end.
using PatientList = std::unique_ptr<PGX_List, DeletePatients>;

}  // namespace pgkit_test
