// pgkit, the C++ layer (data_set.hpp): items, that is data sets within data sets, and ranges.
#ifndef PGKIT_CPP_ITEM_HPP
#define PGKIT_CPP_ITEM_HPP

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <vector>

#include "pgkit/accessors.h"
#include "pgkit/cpp/element.hpp"
#include "pgkit/cpp/iterator.hpp"
#include "pgkit/cpp/result.hpp"
#include "pgkit/cpp/tag.hpp"
#include "pgkit/dictionary.h"
#include "pgkit/text.h"

namespace pgkit {
inline namespace v1 {

class frame_range;

namespace detail {

// Among siblings. Handle is element or item.
template <typename Handle>
struct sibling_position {
    using value_type = Handle;

    [[nodiscard]] Handle value() const noexcept { return Handle(node, character_set); }
    void advance() noexcept { node = pgKitGetNext(node); }
    [[nodiscard]] bool is_at(const sibling_position& other) const noexcept {
        return node == other.node;
    }

    PGX_Node* node = nullptr;
    PGX_Node* character_set = nullptr;
};

}  // namespace detail

// A data set as something to read and to change: an item of a sequence, or the data set of a file
// (data_set is an item that also owns it). A handle, as cheap to copy as two pointers, which owns
// nothing; valid as long as the item is in its tree and (0008,0005) of what encloses it stays.
//
// It is a range of its elements, in the order of the file:
//
//     for (const pgkit::element element : item) ...
//
// An empty handle, of an item that is not there, has no elements and cannot be changed. Nothing may
// be removed from an item while a loop is at it; walk() (walk.hpp) allows that.
class item {
  public:
    using iterator = detail::handle_iterator<detail::sibling_position<element>>;

    item() noexcept = default;
    // For handles of the flat functions. The second is the (0008,0005) of what encloses the item.
    explicit item(PGX_Node* node, PGX_Node* inherited_character_set = nullptr) noexcept
        : node_(node), inherited_(inherited_character_set) {}

    // Whether there is one.
    [[nodiscard]] explicit operator bool() const noexcept { return node_ != nullptr; }

    // ---- Reading --------------------------------------------------------------------------------

    [[nodiscard]] iterator begin() const noexcept {
        return iterator({pgKitGetFirst(node_), character_set()});
    }
    [[nodiscard]] iterator end() const noexcept { return iterator(); }
    [[nodiscard]] bool empty() const noexcept { return pgKitGetFirst(node_) == nullptr; }

    // The element at a place; an empty one when there is none, also when the path cannot be
    // understood. Of elements with the same tag the first.
    [[nodiscard]] element find(const place& where) const noexcept;
    // The item at a path that ends in one: find_item("ReferencedSeriesSequence[0]"). An empty one
    // when there is none.
    [[nodiscard]] item find_item(const place& where) const noexcept;
    [[nodiscard]] bool contains(const place& where) const noexcept {
        return static_cast<bool>(find(where));
    }

    // The frames of the Pixel Data of this item: frames.hpp.
    [[nodiscard]] frame_range frames() const;

    // ---- Changing -------------------------------------------------------------------------------
    //
    // Elements, sequences and items that are missing on the way are made, new elements at their
    // place in tag order with the value representation of the dictionary (SS for "US or SS" where
    // Pixel Representation is 1, else US). An index that equals the number of items makes one more
    // item. Errors, beside those of the functions of element, which these call:
    //
    //   bad_path        the path cannot be understood, names no tag, or ends in an item
    //   not_found       an index beyond the next item
    //   not_a_sequence  a step with an index is no sequence
    //   wrong_type      the dictionary does not know the value representation of a new element:
    //                   private ones, and without pgxUseEdition(PGX_EDITION_CURRENT) those that are
    //                   younger than 2011. add() makes them.
    //
    // An error changes nothing: what was made on the way is gone again.

    result<void> set_text(const place& where, std::string_view text);
    result<void> set_texts(const place& where, span<const std::string_view> texts);
    result<void> set_texts(const place& where, std::initializer_list<std::string_view> texts);
    template <typename Number, typename = std::enable_if_t<is_number<Number>>>
    result<void> set_number(const place& where, Number number);
    template <typename Number>
    result<void> set_numbers(const place& where, span<const Number> numbers);
    template <typename Number>
    result<void> set_numbers(const place& where, const std::vector<Number>& numbers) {
        return set_numbers(where, span<const Number>(numbers));
    }
    template <typename Number>
    result<void> set_numbers(const place& where, std::initializer_list<Number> numbers) {
        return set_numbers(where, span<const Number>(numbers.begin(), numbers.size()));
    }
    result<void> set_bytes(const place& where, const void* bytes, std::size_t size);

    // The element at a place, as it is when it is there, else a new one without a value, and with
    // this value representation (a ValueRepresentation). For sequences without items, and for
    // private elements.
    result<element> add(const place& where);
    result<element> add(const place& where, std::uint32_t vr);

    // A new item, without elements, behind those of the sequence at a place, which is made when it
    // is missing. not_a_sequence for another element.
    result<item> add_item(const place& where);

    // Removes an element with all that is in it, or an item, which a path may end in. False when it
    // is not there. Handles of what is gone must not be used any more.
    bool remove(const place& where);
    bool remove(const element& child);

    // For the flat functions.
    [[nodiscard]] PGX_Node* node() const noexcept { return node_; }
    // (0008,0005) as it holds for the elements, null when none does. Looked up anew each time.
    [[nodiscard]] PGX_Node* character_set() const noexcept {
        return pgxFindCharacterSet(node_, inherited_);
    }
    [[nodiscard]] PGX_Node* inherited_character_set() const noexcept { return inherited_; }

  private:
    template <typename Change>
    result<void> change(const place& where, Change change);

    PGX_Node* node_ = nullptr;
    PGX_Node* inherited_ = nullptr;
};

// The items of a sequence.
class item_range {
  public:
    using iterator = detail::handle_iterator<detail::sibling_position<item>>;

    item_range() noexcept = default;
    item_range(PGX_Node* first, PGX_Node* character_set) noexcept
        : first_(first), character_set_(character_set) {}

    [[nodiscard]] iterator begin() const noexcept { return iterator({first_, character_set_}); }
    [[nodiscard]] iterator end() const noexcept { return iterator(); }
    [[nodiscard]] bool empty() const noexcept { return first_ == nullptr; }

  private:
    PGX_Node* first_ = nullptr;
    PGX_Node* character_set_ = nullptr;
};

// ---- Definitions: ways to items -----------------------------------------------------------------

inline item_range element::items() const noexcept {
    return is_sequence() ? item_range(pgKitGetFirst(node_), character_set_) : item_range();
}

inline item element::operator[](std::size_t index) const noexcept {
    for (const pgkit::item item : items())
        if (index-- == 0) return item;
    return {};
}

inline std::size_t element::item_count() const noexcept {
    std::size_t count = 0;
    for (auto item = items().begin(); item != items().end(); ++item)
        ++count;
    return count;
}

namespace detail {

// Whether the character set matters for an element, or for what is in it.
inline bool depends_on_character_set(PGX_Node* node) noexcept {
    const std::uint32_t vr = pgKitGetValueRep(node);
    return vr == VR_SQ || vr == VR_UN || vr == VR_UC || vr == VR_Unknown ||
           pgIsCharsetEncodedVR(vr) != 0;
}

inline element find_tag(const item& in, pgkit::tag tag) noexcept {
    PGX_Node* const found = pgKitFindNodeWithGroupElement(in.node(), tag.group, tag.element);
    if (found == nullptr) return {};
    return element(found, depends_on_character_set(found) ? in.character_set() : nullptr);
}

}  // namespace detail

inline element item::find(const place& where) const noexcept {
    if (where.is_tag()) return detail::find_tag(*this, where.tag());
    item in = *this;
    std::string_view path = where.path();
    while (const std::optional<detail::step> step = detail::take_step(path)) {
        const element found = detail::find_tag(in, step->tag);
        if (!step->has_index) return path.empty() ? found : element();
        in = found[step->index];
    }
    return {};
}

inline item item::find_item(const place& where) const noexcept {
    if (where.is_tag()) return {};
    item in = *this;
    std::string_view path = where.path();
    while (const std::optional<detail::step> step = detail::take_step(path)) {
        if (!step->has_index) return {};
        in = detail::find_tag(in, step->tag)[step->index];
        if (path.empty()) return in;
    }
    return {};
}

}  // namespace v1
}  // namespace pgkit

#endif
