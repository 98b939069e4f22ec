// pgkit, the C++ layer (data_set.hpp): errors as values, and the span that this layer gives bytes
// in.
#ifndef PGKIT_CPP_RESULT_HPP
#define PGKIT_CPP_RESULT_HPP

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

namespace pgkit {
inline namespace v1 {

// Why something could not be done.
enum class failure {
    none,            // it was done
    no_such_file,    // nothing of that name is there
    cannot_open,     // it is there and cannot be opened, or is no file
    not_a_data_set,  // the file has nothing that could be read as DICOM
    no_data_set,  // the handle is empty: a data set that was moved away, an item that is not there
    bad_path,     // a path that cannot be understood, or that names no known tag
    not_found,    // no such element or item
    not_a_sequence,  // a path leads through an element that has no items
    wrong_type,      // the element's value representation has no such values
    bad_value,       // a number that does not fit, a text that is no number, a "\" within one value
    not_expressible,  // the data set's character set lacks a character of the text
    invalid_utf8,     // a text that is no UTF-8
    too_long,         // an element or a length field cannot hold that many bytes
    cannot_create,    // the file to be written cannot be created
    write_failed,     // it cannot be written to its end
    read_failed,      // a value that is still in its file cannot be read from there
    no_memory
};

// What went wrong. The message is a text for the user, in English, without a full stop; it names
// the file, the path or the element that it is about: "cannot read IM1: no such file".
struct error {
    failure kind = failure::none;
    std::string message;
};

// A value or the error in its place.
//
//     if (auto read = pgkit::data_set::open(path)) use(*read);
//     else std::fprintf(stderr, "%s\n", read.error().message.c_str());
//
// Where there is an error the value is an empty one, so that * and -> do no harm: an empty data set
// has no elements and cannot be saved.
template <typename T>
class [[nodiscard]] result {
  public:
    result(T value) : value_(std::move(value)) {}
    result(pgkit::error error) : error_(std::move(error)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return error_.kind == failure::none; }
    [[nodiscard]] const pgkit::error& error() const noexcept { return error_; }

    [[nodiscard]] T& operator*() & noexcept { return value_; }
    [[nodiscard]] const T& operator*() const& noexcept { return value_; }
    [[nodiscard]] T&& operator*() && noexcept { return std::move(value_); }
    [[nodiscard]] T* operator->() noexcept { return &value_; }
    [[nodiscard]] const T* operator->() const noexcept { return &value_; }

  private:
    T value_{};
    pgkit::error error_;
};

// That something was done, or the error. Several are done as one, which has the first error:
//
//     pgkit::result<void> done;
//     done &= image.set_text("PatientName", "DOE^JANE");
//     done &= image.set_number("Rows", 64);
//     if (!done) complain(done.error().message);
template <>
class [[nodiscard]] result<void> {
  public:
    result() = default;
    result(pgkit::error error) : error_(std::move(error)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return error_.kind == failure::none; }
    [[nodiscard]] const pgkit::error& error() const noexcept { return error_; }

    result& operator&=(result other) {
        if (*this) error_ = std::move(other.error_);
        return *this;
    }
    // Of other results the value is dropped.
    template <typename T>
    result& operator&=(const result<T>& other) {
        if (*this) error_ = other.error();
        return *this;
    }

  private:
    pgkit::error error_;
};

// Objects of a type that lie one behind the other and belong to somebody else. It is made from
// whatever has data() and size(), and std::span (C++20) can be made from it.
template <typename T>
class span {
  public:
    using element_type = T;
    using value_type = std::remove_cv_t<T>;
    using iterator = T*;

    constexpr span() noexcept = default;
    constexpr span(T* data, std::size_t size) noexcept : data_(data), size_(size) {}
    template <std::size_t Size>
    constexpr span(T (&array)[Size]) noexcept : data_(array), size_(Size) {}
    template <
        typename Container,
        typename = std::enable_if_t<std::is_convertible_v<
            std::remove_pointer_t<decltype(std::declval<Container&>().data())> (*)[], T (*)[]>>>
    constexpr span(Container& container) noexcept
        : data_(container.data()), size_(container.size()) {}
    template <
        typename Container,
        typename = std::enable_if_t<
            std::is_const_v<T> &&
            std::is_convertible_v<
                std::remove_pointer_t<decltype(std::declval<const Container&>().data())> (*)[],
                T (*)[]>>>
    constexpr span(const Container& container) noexcept
        : data_(container.data()), size_(container.size()) {}

    [[nodiscard]] constexpr T* data() const noexcept { return data_; }
    [[nodiscard]] constexpr std::size_t size() const noexcept { return size_; }
    [[nodiscard]] constexpr bool empty() const noexcept { return size_ == 0; }
    [[nodiscard]] constexpr T* begin() const noexcept { return data_; }
    [[nodiscard]] constexpr T* end() const noexcept { return data_ + size_; }
    // Any index below size().
    [[nodiscard]] constexpr T& operator[](std::size_t index) const noexcept { return data_[index]; }

  private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace v1
}  // namespace pgkit

#endif
