// Group length elements (gggg,0000): the encoded size of the rest of their group.
#include "base/diagnostics.h"
#include "dataset/new_element.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

enum class Missing { Add, AddInMetaGroup };

bool IsExplicit(uint16_t group, uint32_t mode) {
    return (mode & PG_EXPLICIT_VR) != 0 || (group == kMetaGroup && (mode & PG_META) != 0);
}

// Sets a group length from the elements of its group that follow it.
int32_t SetGroupLength(PGX_Node& groupLength, uint32_t mode) {
    const bool isExplicit = IsExplicit(groupLength.group, mode);
    uint32_t sum = 0;
    for (const PGX_Node* element = groupLength.next;
         element != nullptr && element->group == groupLength.group; element = element->next) {
        if (!IsElementTag(element->group, element->element)) continue;  // is not written
        sum += HeaderSize(element->valueRep, isExplicit) + element->length;
    }
    return groupLength.SetValue(&sum, sizeof sum);
}

// Puts a group length in front of the first element of a run of one group. In a data set in tag
// order that is its place; in one that is not, every run gets its own.
bool LinkGroupLength(PGX_Node& dataSet, PGX_Node*& runStart) {
    const uint32_t zero = 0;
    PGX_Node* groupLength = NewElement(dataSet, runStart->group, 0, &zero, sizeof zero);
    if (groupLength == nullptr) return false;
    groupLength->next = runStart;
    runStart = groupLength;
    return true;
}

int32_t SetGroupLengths(PGX_Node& dataSet, uint32_t mode, Missing missing) {
    if (dataSet.nodeType != NT_DataSet) {
        PrintOut("AddGroupLengths: can only work with NT_DataSet type\n");
        return 0;
    }
    PGX_Node** link = &dataSet.first;
    while (*link != nullptr) {
        const uint16_t group = (*link)->group;
        const bool isWanted = missing == Missing::Add || group == kMetaGroup;
        if ((*link)->element != 0 && isWanted && !LinkGroupLength(dataSet, *link)) return 0;
        if ((*link)->element == 0 && SetGroupLength(**link, mode) == 0) return 0;
        while (*link != nullptr && (*link)->group == group)
            link = &(*link)->next;
    }
    return 1;
}

}  // namespace

}  // namespace pgkit

int32_t PGX_Node::AddGroupLengths(uint32_t mode) {
    return pgkit::SetGroupLengths(*this, mode, pgkit::Missing::Add);
}

int32_t PGX_Node::UpdateGroupLengths(uint32_t mode) {
    return pgkit::SetGroupLengths(*this, mode, pgkit::Missing::AddInMetaGroup);
}
