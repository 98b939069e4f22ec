// pgkit, the C++ layer (data_set.hpp): what a DICOMDIR refers to: patients, studies, series and
// their leaves, the instances.
//
//     auto disc = pgkit::directory::open("/media/cdrom/DICOMDIR");
//     for (const pgkit::patient patient : disc->patients())
//         for (const pgkit::study study : patient.studies())
//             std::printf("%s: %s\n", patient.name().c_str(), study.description().c_str());
//
// Texts are UTF-8, converted from the character set of their record, and cut where the library's
// fields end (directory_records.h). What a record does not have is empty, and 0 for numbers.
//
// The objects of a hierarchy are handles, as cheap to copy as a pointer: they own nothing and are
// valid as long as the directory is. Their records are items: what has no function of its own here
// is found there.
#ifndef PGKIT_CPP_DIRECTORY_HPP
#define PGKIT_CPP_DIRECTORY_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pgkit/accessors.h"
#include "pgkit/cpp/fields.hpp"
#include "pgkit/cpp/item_changes.hpp"
#include "pgkit/cpp/iterator.hpp"
#include "pgkit/cpp/opening.hpp"
#include "pgkit/cpp/result.hpp"
#include "pgkit/standard_records.h"
#include "pgkit/text.h"

namespace pgkit {
inline namespace v1 {

namespace detail {

template <typename Handle>
struct cell_position {
    using value_type = Handle;

    [[nodiscard]] Handle value() const noexcept {
        return Handle(static_cast<typename Handle::object*>(cell->data));
    }
    void advance() noexcept { cell = cell->next; }
    [[nodiscard]] bool is_at(const cell_position& other) const noexcept {
        return cell == other.cell;
    }

    const PGX_ListElement* cell = nullptr;
};

}  // namespace detail

// The objects of one level, in the order of the library: leaves by their instance numbers.
template <typename Handle>
class handle_range {
  public:
    using iterator = detail::handle_iterator<detail::cell_position<Handle>>;

    handle_range() noexcept = default;
    explicit handle_range(PGX_List* list) noexcept : list_(list) {}

    [[nodiscard]] iterator begin() const noexcept { return iterator({detail::first_cell(list_)}); }
    [[nodiscard]] iterator end() const noexcept { return iterator(); }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    [[nodiscard]] std::size_t size() const noexcept {
        return static_cast<std::size_t>(pgKitListGetCount(list_));
    }

  private:
    PGX_List* list_ = nullptr;
};

namespace detail {

// A text of a record as UTF-8. The library's text may lie in a buffer that its next text
// overwrites; the character set does not.
inline std::string field_text(const char* character_set, std::uint32_t vr, const char* field) {
    const auto convert = [&](char* buffer, std::size_t size) {
        const std::int64_t length = pgxFieldToUtf8(character_set, vr, field, buffer, size);
        return length < 0 ? std::size_t{0} : static_cast<std::size_t>(length);
    };
    return bounded_text(convert);
}

// What the handles of all levels have in common.
template <typename Object>
class handle {
  public:
    using object = Object;

    handle() noexcept = default;
    explicit handle(Object* pointer) noexcept : pointer_(pointer) {}

    // Whether there is one.
    [[nodiscard]] explicit operator bool() const noexcept { return pointer_ != nullptr; }
    // For the flat functions.
    [[nodiscard]] Object* pointer() const noexcept { return pointer_; }

  protected:
    [[nodiscard]] std::string text(std::uint32_t vr, const char* (*getter)(Object*)) const {
        if (pointer_ == nullptr) return {};
        return field_text(character_set_of(pointer_), vr, getter(pointer_));
    }

  private:
    Object* pointer_ = nullptr;
};

}  // namespace detail

// An instance: an image, a report, a presentation state ...
class leaf : public detail::handle<PGX_DicomDirLeafNode> {
  public:
    using handle::handle;

    // A PgLeafType, and the type that the record says: "IMAGE", "SR DOCUMENT".
    [[nodiscard]] std::int32_t type() const noexcept { return pgKitDirGetLeafType(pointer()); }
    [[nodiscard]] std::string record_type() const { return text(VR_CS, pgKitDirGetLeafRecordType); }
    // The path of the file: the folder of the DICOMDIR, a backslash and the File ID, which
    // data_set::open takes on every system. The bytes as they stand.
    [[nodiscard]] std::string path() const { return pgKitDirGetLeafFullPath(pointer()); }
    [[nodiscard]] std::string instance_uid() const {
        return text(VR_UI, pgKitDirGetLeafInstanceUID);
    }
    [[nodiscard]] std::string sop_class_uid() const {
        return text(VR_UI, pgKitDirGetLeafSOPClassUID);
    }
    [[nodiscard]] std::int32_t number() const noexcept {
        return pgKitDirGetLeafInstanceNumber(pointer());
    }
    // Of images; 0 of others.
    [[nodiscard]] std::int32_t rows() const noexcept { return pgKitDirGetImageRows(pointer()); }
    [[nodiscard]] std::int32_t columns() const noexcept {
        return pgKitDirGetImageColumns(pointer());
    }
    [[nodiscard]] std::int32_t frames() const noexcept {
        return pgKitDirGetImageNumberOfFrames(pointer());
    }
    [[nodiscard]] item record() const noexcept { return item(pgKitDirGetLeafNode(pointer())); }
};

class series : public detail::handle<PGX_DicomDirSeriesNode> {
  public:
    using handle::handle;

    [[nodiscard]] std::string uid() const { return text(VR_UI, pgKitDirGetSeriesUID); }
    [[nodiscard]] std::string description() const { return text(VR_LO, pgKitDirGetSeriesDesc); }
    [[nodiscard]] std::string number() const { return text(VR_IS, pgKitDirGetSeriesNumber); }
    [[nodiscard]] std::string modality() const { return text(VR_CS, pgKitDirGetSeriesModality); }
    [[nodiscard]] std::string institution() const {
        return text(VR_LO, pgKitDirGetSeriesInstitutionName);
    }
    [[nodiscard]] std::string performing_physician() const {
        return text(VR_PN, pgKitDirGetSeriesPerformingPhysiciansName);
    }
    [[nodiscard]] handle_range<leaf> leaves() const noexcept {
        return handle_range<leaf>(pgKitDirGetLeafList(pointer()));
    }
    [[nodiscard]] item record() const noexcept { return item(pgKitDirGetSeriesNode(pointer())); }
};

class study : public detail::handle<PGX_DicomDirStudyNode> {
  public:
    using handle::handle;

    [[nodiscard]] std::string uid() const { return text(VR_UI, pgKitDirGetStudyUID); }
    [[nodiscard]] std::string id() const { return text(VR_SH, pgKitDirGetStudyID); }
    // YYYYMMDD, and HHMMSS.FFFFFF or a part of it.
    [[nodiscard]] std::string date() const { return text(VR_DA, pgKitDirGetStudyDate); }
    [[nodiscard]] std::string time() const { return text(VR_TM, pgKitDirGetStudyTime); }
    [[nodiscard]] std::string accession_number() const {
        return text(VR_SH, pgKitDirGetStudyAccessionNumber);
    }
    [[nodiscard]] std::string description() const { return text(VR_LO, pgKitDirGetStudyDesc); }
    [[nodiscard]] std::string referring_physician() const {
        return text(VR_PN, pgKitDirGetStudyReferringPhysiciansName);
    }
    // That of its series, "..." when they differ.
    [[nodiscard]] std::string modality() const { return text(VR_CS, pgKitDirGetStudyModality); }
    [[nodiscard]] handle_range<pgkit::series> series() const noexcept {
        return handle_range<pgkit::series>(pgKitDirGetSeriesList(pointer()));
    }
    [[nodiscard]] item record() const noexcept { return item(pgKitDirGetStudyNode(pointer())); }
};

class patient : public detail::handle<PGX_DicomDirPatientNode> {
  public:
    using handle::handle;

    [[nodiscard]] std::string id() const { return text(VR_LO, pgKitDirGetPatientID); }
    [[nodiscard]] std::string name() const { return text(VR_PN, pgKitDirGetPatientsName); }
    // YYYYMMDD.
    [[nodiscard]] std::string birth_date() const {
        return text(VR_DA, pgKitDirGetPatientBirthDate);
    }
    [[nodiscard]] std::string sex() const { return text(VR_CS, pgKitDirGetPatientSex); }
    [[nodiscard]] handle_range<study> studies() const noexcept {
        return handle_range<study>(pgKitDirGetStudyList(pointer()));
    }
    [[nodiscard]] item record() const noexcept { return item(pgKitDirGetPatientNode(pointer())); }
};

// A DICOMDIR that is open, and the owner of its hierarchy. It can be moved, not copied; its handles
// stay valid when it is moved. One thread at a time.
class directory {
  public:
    // No DICOMDIR: no patients.
    directory() noexcept = default;
    directory(directory&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)),
          common_records_(std::move(other.common_records_)) {}
    directory& operator=(directory&& other) noexcept {
        if (this != &other) {
            pgKitCloseDicomDir(pointer_);
            pointer_ = std::exchange(other.pointer_, nullptr);
            common_records_ = std::move(other.common_records_);
        }
        return *this;
    }
    directory(const directory&) = delete;
    directory& operator=(const directory&) = delete;
    ~directory() { pgKitCloseDicomDir(pointer_); }

    // Opens a DICOMDIR and reads its hierarchy. One that is damaged gives what can be reached of
    // it; what is wrong is reported on the standard output. Errors: no_such_file, cannot_open,
    // not_a_data_set (also for a file that is no DICOMDIR), no_memory.
    [[nodiscard]] static result<directory> open(const std::string& path);

    [[nodiscard]] handle_range<patient> patients() const noexcept {
        return handle_range<patient>(pgKitDirGetPatientList(pointer_));
    }
    // The records that belong to no patient, and stand beside those of the patients: palettes,
    // hanging protocols (pgxTakeRootRecords).
    [[nodiscard]] const std::vector<item>& common_records() const noexcept {
        return common_records_;
    }
    // For the flat functions.
    [[nodiscard]] PGX_DicomDir* pointer() const noexcept { return pointer_; }

  private:
    PGX_DicomDir* pointer_ = nullptr;
    std::vector<item> common_records_;
};

// ---- Definitions --------------------------------------------------------------------------------

namespace detail {

// The records that belong to no patient, out of the way of a browse.
inline std::vector<item> take_root_records(PGX_DicomDir* directory) {
    std::vector<PGX_Node*> records(pgxTakeRootRecords(directory, nullptr, 0));
    records.resize(
        pgxTakeRootRecords(directory, records.data(), static_cast<std::uint32_t>(records.size())));
    return std::vector<item>(records.begin(), records.end());
}

}  // namespace detail

inline result<directory> directory::open(const std::string& path) {
    constexpr const char* no_dicomdir = "it is no DICOMDIR";
    // The library reports a DICOMDIR that cannot be opened on the standard output. A data set that
    // cannot be opened it leaves to us.
    PGX_Node* const tried = pgOpenDataSetFileEx(path.c_str(), 0, PG_OPEN_SKIP_FRAGMENTS);
    if (tried == nullptr) return detail::why_not_read(path, no_dicomdir);
    pgCloseDataSet(tried);
    // All values of a record are looked at.
    constexpr std::uint32_t longest_loaded = 0x20000;
    directory opened;
    opened.pointer_ = pgKitOpenDicomDir(path.c_str(), longest_loaded);
    if (opened.pointer_ == nullptr || pgKitIsDicomDir(opened.pointer_) != 1)
        return detail::cannot_read(failure::not_a_data_set, path, no_dicomdir);
    opened.common_records_ = detail::take_root_records(opened.pointer_);
    if (pgKitDirBrowse(opened.pointer_, nullptr, nullptr) == nullptr)
        return detail::cannot_read(failure::no_memory, path, "memory has run out");
    return opened;
}

}  // namespace v1
}  // namespace pgkit

#endif
