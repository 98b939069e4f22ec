// pgkit, the C++ layer (data_set.hpp): how data sets and items are changed.
#ifndef PGKIT_CPP_ITEM_CHANGES_HPP
#define PGKIT_CPP_ITEM_CHANGES_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pgkit/cpp/element_changes.hpp"
#include "pgkit/cpp/element_values.hpp"
#include "pgkit/cpp/item.hpp"
#include "pgkit/dictionary.h"

namespace pgkit {
inline namespace v1 {
namespace detail {

inline constexpr pgkit::tag bits_allocated{0x0028, 0x0100};
inline constexpr pgkit::tag pixel_representation{0x0028, 0x0103};
inline constexpr pgkit::tag pixel_data{0x7FE0, 0x0010};

// New Pixel Data take over the Bits Allocated that the data set remembers, which are those that
// were last inserted together with their value. So this inserts them once more, for a moment.
inline void remember_bits_allocated(const item& in) noexcept {
    const std::uint16_t bits = pgKitGetUSValue(
        pgKitFindNodeWithGroupElement(in.node(), bits_allocated.group, bits_allocated.element));
    if (bits == 0) return;
    PGX_Node* const reminder = pgKitInsertNodeWithGroupElement(
        in.node(), bits_allocated.group, bits_allocated.element, &bits, sizeof bits);
    pgKitRemoveNode(in.node(), reminder);
}

// The way to an element, or to a sequence that gets one more item. What is missing is made and,
// unless it is kept in the end, taken back.
class made_way {
  public:
    explicit made_way(const place& where) noexcept : where_(where) {}
    made_way(const made_way&) = delete;
    made_way& operator=(const made_way&) = delete;
    ~made_way() {
        if (child_ != nullptr) pgKitRemoveNode(parent_, child_);
    }
    void keep() noexcept { child_ = nullptr; }

    // A new element gets this value representation, or that of the dictionary.
    result<element> to_element(item in, std::optional<std::uint32_t> vr) {
        if (!in) return fails(failure::no_data_set, "there is no data set");
        if (where_.is_tag()) return element_in(in, where_.tag(), vr);
        std::string_view path = where_.path();
        while (const std::optional<step> next = take_step(path)) {
            if (!next->has_index && path.empty()) return element_in(in, next->tag, vr);
            if (!next->has_index || path.empty()) break;
            result<element> sequence = sequence_in(in, next->tag);
            if (!sequence) return sequence;
            result<item> entered = item_in(*sequence, next->index);
            if (!entered) return entered.error();
            in = *entered;
        }
        return fails(failure::bad_path, "the path leads to no element");
    }

    // The same to a sequence; and one of its items, which may be the next.
    result<element> to_sequence(const item& in) {
        result<element> target = to_element(in, std::uint32_t{VR_SQ});
        if (target && !target->is_sequence())
            return fails(failure::not_a_sequence, "the element is no sequence");
        return target;
    }
    result<item> item_in(const element& sequence, std::size_t index) {
        std::size_t count = 0;
        for (const item present : sequence.items())
            if (count++ == index) return present;
        if (count != index) return fails(failure::not_found, "there is no such item");
        PGX_Node* const added = pgAllocateDataSetNode();
        if (added == nullptr) return fails(failure::no_memory, "memory has run out");
        pgKitSeqAddTail(sequence.node(), added);
        made(sequence.node(), added);
        return item(added, sequence.character_set());
    }

  private:
    result<element> sequence_in(const item& in, pgkit::tag tag) {
        result<element> sequence = element_in(in, tag, std::uint32_t{VR_SQ});
        if (sequence && !sequence->is_sequence())
            return fails(failure::not_a_sequence, tag.text() + " is no sequence");
        return sequence;
    }

    result<element> element_in(const item& in, pgkit::tag tag, std::optional<std::uint32_t> vr) {
        if (const element present = find_tag(in, tag)) return present;
        const std::uint32_t known = pgFindValueRepresentation(tag.group, tag.element);
        const bool is_known = known != VR_Unknown;
        if (vr == std::uint32_t{VR_SQ} && is_known && known != VR_SQ && known != VR_UN)
            return fails(failure::not_a_sequence, tag.text() + " is no sequence");
        if (!vr && !is_known) {
            return fails(failure::wrong_type,
                         "the value representation of " + tag.text() + " is not known");
        }
        if (tag == pixel_data) remember_bits_allocated(in);
        PGX_Node* const inserted =
            pgKitInsertNodeWithGroupElement(in.node(), tag.group, tag.element, nullptr, 0);
        if (inserted == nullptr) return fails(failure::no_memory, "memory has run out");
        if (vr) {
            pgKitSetValueRep(inserted, *vr);
        } else if (known == VR_USSS) {
            const bool is_signed = find_tag(in, pixel_representation).number<int>() == 1;
            pgKitSetValueRep(inserted, is_signed ? VR_SS : VR_US);
        }
        made(in.node(), inserted);
        return find_tag(in, tag);
    }

    // The first thing that is made holds all others.
    void made(PGX_Node* parent, PGX_Node* child) noexcept {
        if (child_ != nullptr) return;
        parent_ = parent;
        child_ = child;
    }

    [[nodiscard]] error fails(failure kind, const std::string& reason) const {
        return {kind, "cannot set " + where_.text() + ": " + reason};
    }

    place where_;
    PGX_Node* parent_ = nullptr;
    PGX_Node* child_ = nullptr;
};

}  // namespace detail

template <typename Change>
result<void> item::change(const place& where, Change change_element) {
    detail::made_way way(where);
    result<element> target = way.to_element(*this, std::nullopt);
    if (!target) return target.error();
    result<void> changed = change_element(*target);
    if (changed) way.keep();
    return changed;
}

inline result<void> item::set_text(const place& where, std::string_view text) {
    return change(where, [&](element& target) { return target.set_text(text); });
}

inline result<void> item::set_texts(const place& where, span<const std::string_view> texts) {
    return change(where, [&](element& target) { return target.set_texts(texts); });
}

inline result<void> item::set_texts(const place& where,
                                    std::initializer_list<std::string_view> texts) {
    return change(where, [&](element& target) { return target.set_texts(texts); });
}

template <typename Number, typename>
result<void> item::set_number(const place& where, Number number) {
    return change(where, [&](element& target) { return target.set_number(number); });
}

template <typename Number>
result<void> item::set_numbers(const place& where, span<const Number> numbers) {
    return change(where, [&](element& target) { return target.set_numbers(numbers); });
}

inline result<void> item::set_bytes(const place& where, const void* bytes, std::size_t size) {
    return change(where, [&](element& target) { return target.set_bytes(bytes, size); });
}

inline result<element> item::add(const place& where) {
    detail::made_way way(where);
    result<element> target = way.to_element(*this, std::nullopt);
    if (target) way.keep();
    return target;
}

inline result<element> item::add(const place& where, std::uint32_t vr) {
    detail::made_way way(where);
    result<element> target = way.to_element(*this, vr);
    if (target) way.keep();
    return target;
}

inline result<item> item::add_item(const place& where) {
    detail::made_way way(where);
    result<element> sequence = way.to_sequence(*this);
    if (!sequence) return sequence.error();
    result<item> added = way.item_in(*sequence, sequence->item_count());
    if (added) way.keep();
    return added;
}

inline bool item::remove(const element& child) {
    for (const element present : *this) {
        if (present.node() != child.node()) continue;
        pgKitRemoveNode(node_, child.node());
        return true;
    }
    return false;
}

inline bool item::remove(const place& where) {
    if (where.is_tag()) return remove(detail::find_tag(*this, where.tag()));
    item in = *this;
    std::string_view path = where.path();
    while (const std::optional<detail::step> step = detail::take_step(path)) {
        const element found = detail::find_tag(in, step->tag);
        if (!step->has_index) return path.empty() && in.remove(found);
        const item entered = found[step->index];
        if (path.empty() && entered) pgKitRemoveNode(found.node(), entered.node());
        if (path.empty()) return static_cast<bool>(entered);
        in = entered;
    }
    return false;
}

}  // namespace v1
}  // namespace pgkit

#endif
