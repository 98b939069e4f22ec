// Hierarchy objects of the four levels, made from an instance. Their icons are made elsewhere
// (icon_making.h).
#pragma once

#include <memory>

#include "dicomdir/create/file_gate.h"
#include "dicomdir/keys.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/directory_records.h"

namespace pgkit {

std::unique_ptr<Patient> NewPatient(PGX_Node& dataSet);
std::unique_ptr<Study> NewStudy(PGX_Node& dataSet);
std::unique_ptr<Series> NewSeries(PGX_Node& dataSet);

// Of the kind that the SOP class asks for, by the rules that the options say.
std::unique_ptr<Leaf> NewLeaf(const Candidate& candidate, const FileToAdd& file,
                              const PgDicomdirOptions& options);

}  // namespace pgkit
