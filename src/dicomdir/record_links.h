// The links between directory records: offsets in the file that become numbers of records.
#pragma once

#include "dicomdir/record_table.h"

namespace pgkit {

// Turns the offsets of all records into links, in file order, and marks the offset elements with
// what they lead to (offsetPending, offsetTarget), so that a tree that is written again gets
// offsets that are right there. An offset that leads nowhere is reported on the standard output and
// stops this: the elements behind it keep bare offsets. Returns whether all offsets were resolved.
[[nodiscard]] bool ResolveLinks(const RecordTable& records);

struct Link {
    enum class Kind {
        None,   // there is no link: the element is missing or its offset is 0
        Found,  // to a record
        Lost    // no record begins at the offset
    };

    Kind kind = Kind::None;
    RecordNumber target = 0;  // of Found
    uint32_t offset = 0;      // of Lost
};

// Where an offset element leads, by its mark or else by its value. There is no link for null.
Link FollowLink(const RecordTable& records, PGX_Node* offsetElement);

}  // namespace pgkit
