// Values in the place of those that identify somebody.
#pragma once

#include <string>

#include "anonymize/new_uids.h"
#include "pgkit/data_set.hpp"

namespace pgtool {

// These leave the element without a value where a better one cannot be stored: never the old one.
void MakeEmpty(pgkit::element& element);
void MakeDummy(pgkit::element& element, const NewUids& uids);
void MakeNewUids(pgkit::element& element, const NewUids& uids);
// DA and DT; false, with the value unchanged, for other elements and for what is no date.
bool MoveDates(pgkit::element& element, int days);

}  // namespace pgtool
