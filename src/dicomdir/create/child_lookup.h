// Finds objects of a hierarchy by their UIDs: the first of a list, as a walk from its head does.
// Lists that are asked more than once are indexed; a single question is answered by the walk.
#pragma once

#include <string_view>
#include <unordered_map>

#include "base/text.h"
#include "dicomdir/hierarchy_index.h"
#include "dicomdir/object_list.h"
#include "pgkit/directory_records.h"
#include "pgkit/list.h"

namespace pgkit {

// Padding makes no other UID: a browse does not see it.
inline std::string_view UidOf(const PGX_DicomDirStudyNode& study) {
    return TrimBlanks(study.studyInstanceUid);
}
inline std::string_view UidOf(const PGX_DicomDirSeriesNode& series) {
    return TrimBlanks(series.seriesInstanceUid);
}
inline std::string_view UidOf(const PGX_DicomDirLeafNode& leaf) {
    return TrimBlanks(leaf.instanceUid);
}

template <typename Child>
class ChildLookup {
  public:
    // The first child of this UID, or null.
    Child* Find(PGX_List& children, std::string_view uid) {
        const auto [list, isNew] = lists_.try_emplace(&children, children.count == 0);
        if (!list->second && isNew) return Walk(children, uid);
        if (!list->second) Index(children);
        list->second = true;
        const auto found = index_.find({&children, uid});
        return found == index_.end() ? nullptr : found->second;
    }

    // To be told of every child before it joins a list.
    void WillJoin(PGX_List& children, Child& child) {
        const auto list = lists_.find(&children);
        if (list != lists_.end() && list->second) {
            index_.try_emplace({&children, UidOf(child)}, &child);
        }
    }

  private:
    static Child* Walk(PGX_List& children, std::string_view uid) {
        for (Child& child : Objects<Child>(children)) {
            if (UidOf(child) == uid) return &child;
        }
        return nullptr;
    }

    void Index(PGX_List& children) {
        for (Child& child : Objects<Child>(children))
            index_.try_emplace({&children, UidOf(child)}, &child);
    }

    std::unordered_map<const PGX_List*, bool> lists_;  // whether a known list is indexed
    ChildIndex<Child> index_;
};

}  // namespace pgkit
