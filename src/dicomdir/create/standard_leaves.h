// Leaves for the records of today's standard. What an object of the public classes has no field for
// it carries in an item of its own, as record: the leaf owns it and has PG_LEAF_OWNS_KEYS.
#pragma once

#include <memory>

#include "dicomdir/create/standard_kinds.h"
#include "dicomdir/keys.h"

namespace pgkit {

// A leaf of the kind with the keys that it has no fields for.
std::unique_ptr<Leaf> NewStandardLeaf(PGX_Node& dataSet, const StandardKind& kind);

// Copies such keys into a record.
void PutOwnKeys(PGX_Node& record, const Leaf& leaf);

// Makes those up that have to have a value and have none. Leaves that were made by other rules stay
// as they are.
void FillMissingKeys(Leaf& leaf);

}  // namespace pgkit
