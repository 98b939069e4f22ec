#include "dataset/long_lists.h"

#include <algorithm>

#include "dictionary/tags.h"

namespace pgkit {

namespace {

struct Mark {
    const PGX_Node* parent;  // null for a free place
    const PGX_Node* first;   // its first child at the time; only compared
    PGX_Node* before;        // two children that follow each other: the walk begins behind before
    const PGX_Node* after;
    uint32_t greatestKey;  // of all children up to before
};

// The marks of all threads. Few lists are long, and fewer grow at a time.
class Marks {
  public:
    // Where a walk for the key can begin, and the greatest key before that; the parent's first link
    // when there is no mark that holds.
    PGX_Node** Find(PGX_Node& parent, uint64_t key, uint32_t& greatestKey) {
        greatestKey = 0;
        if (!MayBeMarked(&parent)) return &parent.first;
        const Guard guard(*this);
        for (Mark& mark : marks_) {
            if (mark.parent != &parent) continue;
            const bool holds = parent.first == mark.first && mark.before->next == mark.after;
            if (!holds) {
                Free(mark);
            } else if (mark.greatestKey <= key) {
                greatestKey = mark.greatestKey;
                return &mark.before->next;
            }
            break;
        }
        return &parent.first;
    }

    // A mark of the same parent is replaced, unless it serves greater keys.
    void Put(const Mark& mark) {
        const Guard guard(*this);
        auto place = std::ranges::find(marks_, mark.parent, &Mark::parent);
        if (place != marks_.end() && place->greatestKey > mark.greatestKey) return;
        if (place == marks_.end()) place = std::ranges::find(marks_, nullptr, &Mark::parent);
        if (place == marks_.end()) place = marks_.begin() + nextVictim_++ % marks_.size();
        Free(*place);
        *place = mark;
        Count(mark, 1);
    }

    void ForgetParent(const PGX_Node& parent) {
        const Guard guard(*this);
        for (Mark& mark : marks_)
            if (mark.parent == &parent) Free(mark);
    }

    void ForgetNode(const PGX_Node* node) {
        const Guard guard(*this);
        for (Mark& mark : marks_)
            if (mark.parent == node || mark.before == node || mark.after == node) Free(mark);
    }

    void ForgetAll() {
        const Guard guard(*this);
        for (Mark& mark : marks_)
            Free(mark);
    }

  private:
    // Held for a few comparisons, so it is waited for without the system.
    class Guard {
      public:
        explicit Guard(Marks& marks) : isLocked_(marks.isLocked_) {
            while (isLocked_.test_and_set(std::memory_order_acquire)) {
            }
        }
        ~Guard() { isLocked_.clear(std::memory_order_release); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

      private:
        std::atomic_flag& isLocked_;
    };

    static void Count(const Mark& mark, uint16_t change) {
        for (const PGX_Node* node :
             {mark.parent, static_cast<const PGX_Node*>(mark.before), mark.after})
            MarkCounterOf(node).fetch_add(change, std::memory_order_relaxed);
    }

    static void Free(Mark& mark) {
        if (mark.parent == nullptr) return;
        Count(mark, static_cast<uint16_t>(-1));
        mark = {};
    }

    std::atomic_flag isLocked_;
    std::array<Mark, 8> marks_{};
    size_t nextVictim_ = 0;
};

constinit Marks marks;

struct Walk {
    PGX_Node** link;  // that was found
    size_t steps;
};

Walk WalkTo(PGX_Node** link, uint64_t key) {
    size_t steps = 0;
    for (; *link != nullptr && TagKey((*link)->group, (*link)->element) <= key; ++steps)
        link = &(*link)->next;
    return {link, steps};
}

// Whatever has been walked from a link on, all but the last kMarkDistance steps.
Mark MarkBehind(const PGX_Node& parent, PGX_Node** link, size_t steps, uint32_t greatestKey) {
    PGX_Node* before = nullptr;
    for (size_t i = 0; i < steps - kMarkDistance; ++i) {
        before = *link;
        greatestKey = std::max(greatestKey, TagKey(before->group, before->element));
        link = &before->next;
    }
    return {&parent, parent.first, before, *link, greatestKey};
}

}  // namespace

PGX_Node** FindInsertionLink(PGX_Node& parent, uint64_t key) {
    uint32_t greatestKey = 0;
    PGX_Node** start = marks.Find(parent, key, greatestKey);
    Walk walk = WalkTo(start, key);
    if (start != &parent.first && walk.steps < kSeenChildren) {
        if (*walk.link == nullptr) marks.ForgetParent(parent);
        start = &parent.first;
        greatestKey = 0;
        walk = WalkTo(start, key);
    }
    if (walk.steps > kAlwaysWalked) {
        marks.Put(MarkBehind(parent, start, walk.steps, greatestKey));
    }
    return walk.link;
}

void ForgetLongLists() { marks.ForgetAll(); }

void ForgetMarksOf(const PGX_Node* node) { marks.ForgetNode(node); }

}  // namespace pgkit
