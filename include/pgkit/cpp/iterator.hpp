// pgkit, the C++ layer (data_set.hpp): the iterator of its ranges. Nothing here is for programs to
// call.
#ifndef PGKIT_CPP_ITERATOR_HPP
#define PGKIT_CPP_ITERATOR_HPP

#include <cstddef>
#include <iterator>
#include <utility>

namespace pgkit {
inline namespace v1 {
namespace detail {

// Goes over handles that are made as they are asked for. A Position tells its value_type, gives the
// handle there (value) and goes on (advance); the default one is the end of a range where nothing
// else is.
template <typename Position>
class handle_iterator {
  public:
    using value_type = typename Position::value_type;
    using difference_type = std::ptrdiff_t;
    using reference = value_type;
    using iterator_category = std::input_iterator_tag;   // there is nothing to refer to
    using iterator_concept = std::forward_iterator_tag;  // C++20 does not need that

    // Keeps a handle while a member of it is called.
    class pointer {
      public:
        explicit pointer(value_type handle) noexcept : handle_(std::move(handle)) {}
        [[nodiscard]] const value_type* operator->() const noexcept { return &handle_; }

      private:
        value_type handle_;
    };

    handle_iterator() noexcept = default;
    explicit handle_iterator(Position position) noexcept : position_(position) {}

    [[nodiscard]] value_type operator*() const
        noexcept(noexcept(std::declval<const Position&>().value())) {
        return position_.value();
    }
    [[nodiscard]] pointer operator->() const { return pointer(position_.value()); }
    handle_iterator& operator++() noexcept {
        position_.advance();
        return *this;
    }
    handle_iterator operator++(int) noexcept {
        const handle_iterator before = *this;
        position_.advance();
        return before;
    }
    friend bool operator==(const handle_iterator& a, const handle_iterator& b) noexcept {
        return a.position_.is_at(b.position_);
    }
    friend bool operator!=(const handle_iterator& a, const handle_iterator& b) noexcept {
        return !(a == b);
    }

  private:
    Position position_;
};

}  // namespace detail
}  // namespace v1
}  // namespace pgkit

#endif
