#include "dicomdir/create/concept_modifiers.h"

#include <string_view>
#include <utility>

#include "dicomdir/record_copy.h"
#include "dicomdir/record_keys.h"

namespace pgkit {

namespace {

bool ModifiesConcept(PGX_Node& item) {
    char relationship[17];
    ReadKey(item, {0x0040, 0xA010}, relationship);
    return std::string_view(relationship).starts_with("HAS CONCEPT MOD");
}

}  // namespace

NodeTree CopyConceptModifiers(PGX_Node* contentSequence) {
    NodeTree copy = CopyForRecord(contentSequence, ModifiesConcept);
    return copy != nullptr && copy->first != nullptr ? std::move(copy) : nullptr;
}

}  // namespace pgkit
