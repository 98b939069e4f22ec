// The objects of the upper three levels, made from a file's data set.
#pragma once

#include <memory>

#include "pgkit/directory_records.h"
#include "pgkit/node.h"

namespace pgkit {

std::unique_ptr<PGX_DicomDirPatientNode> NewPatient(PGX_Node& dataSet);
std::unique_ptr<PGX_DicomDirStudyNode> NewStudy(PGX_Node& dataSet);
std::unique_ptr<PGX_DicomDirSeriesNode> NewSeries(PGX_Node& dataSet);

// Specific Character Set, that of western texts when the data set has none.
void ReadInstanceCharacterSet(PGX_Node& dataSet, char (&field)[272]);

}  // namespace pgkit
