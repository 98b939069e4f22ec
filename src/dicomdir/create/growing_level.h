// The objects of one level while a hierarchy grows: finds them among their siblings and puts new
// ones in their places, with the answers and the orders of walks through the lists.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>

#include "dicomdir/hierarchy_index.h"
#include "dicomdir/insertion_order.h"
#include "dicomdir/object_list.h"
#include "pgkit/list.h"

namespace pgkit {

// The number that a text begins with, as "%d" reads it: blanks and a sign may come first. 0 when
// there is none; the nearest number where it does not fit.
int32_t LeadingInteger(const char* text);

// Objects without a number come at the end of their list.
inline int32_t NumberOf(const Series& series) { return LeadingInteger(series.seriesNumber); }
inline int32_t NumberOf(const Leaf& leaf) { return leaf.instanceNumber; }

template <typename Object>
concept Numbered = requires(const Object& object) {
    NumberOf(object);
};

template <typename Object>
class GrowingLevel {
  public:
    using Key = decltype(KeyOf(std::declval<const Object&>()));

    // The first of the siblings that has the key, or null. A list is indexed when it is asked for
    // the second time: a single question is answered faster by a walk.
    Object* Find(PGX_List& siblings, const Key& key) {
        const auto [asked, isNew] = isIndexed_.try_emplace(&siblings, siblings.count == 0);
        if (!asked->second && isNew) return Walk(siblings, key);
        if (!asked->second) {
            for (Object& object : Objects<Object>(siblings))
                Index(siblings, object);
        }
        asked->second = true;
        const auto found = index_.find(Among(siblings, key));
        return found == index_.end() ? nullptr : found->second;
    }

    // Throws std::bad_alloc, and has changed no list then; but it may know an object that is gone,
    // and must not be asked any more.
    void Add(PGX_List& siblings, std::unique_ptr<Object> object) {
        const auto asked = isIndexed_.find(&siblings);
        if (asked != isIndexed_.end() && asked->second) Index(siblings, *object);
        if constexpr (Numbered<Object>) {
            const auto numberOf = [](const Object& o) { return NumberOf(o); };
            const auto order = orders_.try_emplace(&siblings, siblings, numberOf, Ties::InFront);
            order.first->second.Insert(std::move(object));
        } else {
            Append(siblings, std::move(object));
        }
    }

  private:
    static Object* Walk(PGX_List& siblings, const Key& key) {
        for (Object& object : Objects<Object>(siblings)) {
            if (KeyOf(object) == key) return &object;
        }
        return nullptr;
    }

    // Of several with the same key the first one stays.
    void Index(const PGX_List& siblings, Object& object) {
        index_.try_emplace(Among(siblings, KeyOf(object)), &object);
    }

    std::unordered_map<const PGX_List*, bool> isIndexed_;  // of those that were asked
    LevelIndex<Object> index_;
    std::unordered_map<const PGX_List*, InsertionOrder<Object>> orders_;
};

}  // namespace pgkit
