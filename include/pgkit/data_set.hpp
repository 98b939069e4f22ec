// pgkit for C++17 and later: data sets as objects that own themselves, ranges, UTF-8 texts, numbers
// as std::optional, errors as values.
//
//     #include <pgkit/data_set.hpp>
//
//     auto image = pgkit::data_set::open("IM1");
//     if (!image) return complain(image.error().message);      // "cannot read IM1: no such file"
//     std::string name = image->find("PatientName").text();    // UTF-8; empty when there is none
//     int rows = image->find("Rows").number<int>().value_or(0);
//     for (const pgkit::item item : image->find("ReferencedStudySequence").items())
//         std::puts(item.find("ReferencedSOPInstanceUID").text().c_str());
//     image->set_text("RequestAttributesSequence[0].RequestedProcedureID", "P1");  // makes both
//     image->remove("PatientBirthDate");
//     if (auto saved = image->save("IM1.new"); !saved) return complain(saved.error().message);
//
// The layer is made of headers only: it calls the flat functions of the module, no members of its
// classes, and so works with every compiler against the module of every other. docs/data_set.md is
// the tour; what each thing does stands where it is declared:
//
//     data_set.hpp           data_set: opening, building, saving
//     cpp/item.hpp           item: finding and changing elements by tags and paths
//     cpp/element.hpp        element: texts, numbers, bytes, items
//     cpp/walk.hpp           walk: every element at every depth
//     cpp/frames.hpp         frames of Pixel Data
//     cpp/directory.hpp      directory: what a DICOMDIR refers to
//     cpp/tag.hpp            tag, and place: how elements are named
//     cpp/result.hpp         result, error, span
//
// 1. Ownership. A data_set or a directory owns what it has opened; both can be moved, not copied.
//    Everything else that has a class is a handle: a pointer or two, owning nothing, valid as long
//    as its data set, and as long as it was not removed from it. Moving a data set moves no nodes:
//    handles stay valid. A function that is to work on data sets and on items takes a pgkit::item.
// 2. Nothing there. Handles may be empty, and empty ones can be asked for everything: they have no
//    text, no number, no items. A failed result holds an empty value.
// 3. Errors are values: result<T>, whose error names the file or the element and the reason. The
//    layer throws nothing itself and can be compiled without exceptions. Texts, vectors and the
//    stack of a walk grow as those of the standard library do, which throws std::bad_alloc for want
//    of memory (or ends the program, without exceptions); nothing is lost then.
// 4. Memory. What the library does not ask for is allocated for results only: the std::string, the
//    std::vector. Texts and numbers of the usual length are read without an allocation on the way.
//    However long a damaged file claims a value to be, no more is allocated than it holds.
// 5. Threads. A data set with all its handles, or a directory, belongs to one thread at a time, and
//    reading counts. Different ones may be used by different threads at once.
// 6. Names. "PatientName" of today's standard and "PatientsName" of the library's tables are both
//    understood, in either edition; which value representations there are the edition tells
//    (pgxUseEdition, edition.h).
// 7. The flat functions can be mixed in: node() is the handle that they take.
#ifndef PGKIT_DATA_SET_HPP
#define PGKIT_DATA_SET_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "pgkit/accessors.h"
#include "pgkit/cpp/directory.hpp"
#include "pgkit/cpp/element.hpp"
#include "pgkit/cpp/element_changes.hpp"
#include "pgkit/cpp/element_values.hpp"
#include "pgkit/cpp/fields.hpp"
#include "pgkit/cpp/frames.hpp"
#include "pgkit/cpp/item.hpp"
#include "pgkit/cpp/item_changes.hpp"
#include "pgkit/cpp/opening.hpp"
#include "pgkit/cpp/result.hpp"
#include "pgkit/cpp/tag.hpp"
#include "pgkit/cpp/walk.hpp"
#include "pgkit/dataset.h"

namespace pgkit {
inline namespace v1 {

// How a file is written.
enum class encoding {
    // As the data set was read: with File Meta Information or without, in its transfer syntax. One
    // that was built in memory is written as explicit_little.
    as_read,
    // DICOM files, with File Meta Information. Encapsulated Pixel Data stay as they are, and with
    // them the transfer syntax: that is always explicit VR little endian.
    explicit_little,
    implicit_little,
    explicit_big
};

// How a file is opened.
struct open_options {
    // Values of fewer bytes are loaded now. Longer ones stay in the file, which then stays open,
    // and are read whenever they are asked for. 0xFFFFFFFF loads all that can be.
    std::uint32_t load_below = 64;
    // PgOpenFlags (dataset.h). Without this one, what stands behind some encapsulated Pixel Data
    // would be missing in the tree, and in what is saved.
    std::uint32_t flags = PG_OPEN_PAST_PIXEL_DATA;
};

// A data set and all that is in it, and its owner. It is an item, and a range of elements.
class data_set : public item {
  public:
    // No data set: no elements, nothing can be set.
    data_set() noexcept = default;
    // Takes over a tree of the flat functions: one that was opened, or pgAllocateDataSetNode's.
    explicit data_set(PGX_Node* root) noexcept : item(root) {}

    data_set(data_set&& other) noexcept : item(other.release()) {}
    data_set& operator=(data_set&& other) noexcept {
        if (this != &other) {
            pgCloseDataSet(node());
            static_cast<item&>(*this) = item(other.release());
        }
        return *this;
    }
    data_set(const data_set&) = delete;
    data_set& operator=(const data_set&) = delete;
    // Frees the tree and closes its file.
    ~data_set() { pgCloseDataSet(node()); }

    // Opens a file: open_report.h tells what a data set is, and what the report says. Of the
    // report, which may be null, the options are read and all else is filled in. A damaged file
    // gives the part of its tree that can be read. Errors: no_such_file, cannot_open,
    // not_a_data_set, read_failed, no_memory.
    [[nodiscard]] static result<data_set> open(const std::string& path,
                                               const open_options& options = {},
                                               PgxOpenReport* report = nullptr);

    // The same from bytes, which may go afterwards: everything is loaded.
    [[nodiscard]] static result<data_set> open_memory(const void* bytes, std::size_t size,
                                                      std::uint32_t flags = 0,
                                                      PgxOpenReport* report = nullptr);

    // A new data set without elements; an empty handle when memory runs out.
    [[nodiscard]] static data_set create() noexcept { return data_set(pgAllocateDataSetNode()); }

    // Saves it as a file. File Meta Information is made where it is missing and asked for, and
    // where it is there its Media Storage SOP Class and Instance UID follow SOP Class UID
    // (0008,0016) and SOP Instance UID (0008,0018) of the data set. The file that it was opened
    // from may be written to: it is replaced when the new one is complete. Any other file is
    // written in place, and a failure leaves a part of it. The reason why a file cannot be created
    // is also printed on the standard error stream.
    //
    // Errors: no_data_set, cannot_create, write_failed, read_failed (a value that is still in its
    // file), too_long (a value of 65,535 bytes and more where the encoding has no room for its
    // length), no_memory.
    result<void> save(const std::string& path, encoding how = encoding::as_read);

    // Gives the tree away: the handle is empty afterwards, and the tree the caller's to close
    // (pgCloseDataSet).
    [[nodiscard]] PGX_Node* release() noexcept {
        PGX_Node* const root = node();
        static_cast<item&>(*this) = item();
        return root;
    }
};

// ---- Definitions --------------------------------------------------------------------------------

namespace detail {

inline constexpr std::uint16_t meta_group = 0x0002;

inline const char* transfer_syntax_of(encoding how) noexcept {
    switch (how) {
        case encoding::implicit_little:
            return "1.2.840.10008.1.2";
        case encoding::explicit_big:
            return "1.2.840.10008.1.2.2";
        default:
            return "1.2.840.10008.1.2.1";
    }
}

inline std::int32_t mode_of(encoding how) noexcept {
    switch (how) {
        case encoding::as_read:
            return 0;
        case encoding::implicit_little:
            return PG_META | PG_IMPLICIT_VR | PG_LITTLE_ENDIAN;
        case encoding::explicit_big:
            return PG_META | PG_EXPLICIT_VR | PG_BIG_ENDIAN;
        default:
            return PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
    }
}

// One of the two UIDs that the File Meta Information repeats.
inline bool copy_uid(item& root, std::uint16_t element_number, std::uint16_t meta_element) {
    const auto uid = root.find({0x0008, element_number}).bytes();
    if (uid.empty() || uid.front() == 0) return true;
    if (uid == root.find({meta_group, meta_element}).bytes()) return true;
    return static_cast<bool>(root.set_bytes({meta_group, meta_element}, uid.data(), uid.size()));
}

// Syntaxes of native data that the library keeps whatever the mode says: deflated, and two private
// ones.
inline bool is_kept_by_saving(const std::string& transfer_syntax) {
    return transfer_syntax == "1.2.840.10008.1.2.1.99" || transfer_syntax == "1.2.840.113619.5.2" ||
           transfer_syntax == "1.2.840.113704.7.0.4.5";
}

// Completes the File Meta Information that is there, or that is to be there.
inline bool complete_meta(item& root, encoding how) {
    if (how != encoding::as_read && !root.contains({meta_group, 0x0010})) {
        root.remove({meta_group, 0x0001});  // which the library would add once more
        return pgKitAddPart10Elements(root.node(), transfer_syntax_of(how)) == 1;
    }
    if (root.begin() == root.end() || root.begin()->tag().group != meta_group) return true;
    if (how != encoding::as_read && is_kept_by_saving(root.find({meta_group, 0x0010}).text()) &&
        !root.set_text({meta_group, 0x0010}, transfer_syntax_of(how))) {
        return false;
    }
    return copy_uid(root, 0x0016, 0x0002) && copy_uid(root, 0x0018, 0x0003);
}

inline result<void> save_result(std::uint32_t code, const std::string& path) {
    const auto fails = [&](failure kind, const char* reason) {
        return error{kind, "cannot save " + path + ": " + reason};
    };
    switch (code) {
        case 0:
            return {};
        case 1:
            return fails(failure::cannot_create, "the file cannot be created");
        case 2:
            return fails(failure::read_failed, "a value has no file to be read from");
        case 4:
            return fails(failure::read_failed, "a value cannot be read from its file");
        case 5:
            return fails(failure::no_memory, "memory has run out");
        case 6:
            return fails(failure::too_long, "a value is too long for its length field");
        case 7:
            return fails(failure::write_failed, "the file cannot be reopened");
        case 0xFFFFFFFF:
            return fails(failure::no_data_set, "there is no data set");
        default:
            return fails(failure::write_failed, "the file cannot be written");
    }
}

}  // namespace detail

inline result<data_set> data_set::open(const std::string& path, const open_options& options,
                                       PgxOpenReport* report) {
    PgxOpenReport told = detail::new_report(report);
    data_set opened(pgxOpenFile(path.c_str(), options.load_below, options.flags, &told));
    if (report != nullptr) *report = told;
    if (!opened) return detail::why_not_opened(path, told.result);
    return opened;
}

inline result<data_set> data_set::open_memory(const void* bytes, std::size_t size,
                                              std::uint32_t flags, PgxOpenReport* report) {
    PgxOpenReport told = detail::new_report(report);
    data_set opened(pgxOpenMemory(bytes, size, flags, &told));
    if (report != nullptr) *report = told;
    if (!opened) return detail::why_no_data_set("the bytes", told.result);
    return opened;
}

inline result<void> data_set::save(const std::string& path, encoding how) {
    if (node() == nullptr) return detail::save_result(0xFFFFFFFF, path);
    if (how == encoding::as_read && !detail::was_read(node())) how = encoding::explicit_little;
    if (!detail::complete_meta(*this, how)) return detail::save_result(5, path);
    return detail::save_result(pgKitSaveDataSetAsEx(node(), path.c_str(), detail::mode_of(how)),
                               path);
}

}  // namespace v1
}  // namespace pgkit

#endif
