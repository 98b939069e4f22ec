// Files and trees for which an operation needs every kind of call that can fail.
#pragma once

#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>

#include "support/directory_builder.h"
#include "support/icon_sequence.h"
#include "support/instance_file.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace pgkit_test {

// Nested items, private elements, long values and fragments.
inline StreamBuilder RichFile() {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").MetaElement(0x0012, "UI", "1.22");
    file.Element(0x0008, 0x0016, "UI", PaddedUid("1.2.840.10008.5.1.4.1.1.2"));
    file.Element(0x0008, 0x0018, "UI", PaddedUid("1.2.3"));
    file.Element(0x0009, 0x0010, "LO", "A MAKER OF MANY PRIVATE ELEMENTS");
    file.Element(0x0009, 0x1001, "UN", "abcd");
    file.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    file.Element(0x0028, 0x0030, "DS", "0.25\\0.5");
    file.Sequence(0x0040, 0xA730).Item().Sequence(0x0040, 0xA043).Item();
    file.Element(0x0008, 0x0104, "LO", std::string(300, 'm'));
    file.EndItem().EndSequence().EndItem().Item().EndItem().EndSequence();
    file.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0);
    for (int i = 0; i < 3; ++i)
        file.Item(4).Text("abcd");
    return file.EndSequence();
}

// The content of an Icon Image Sequence: two pixels.
inline std::string SmallIcon() { return IconSequence("MONOCHROME2 ", "\x12\x34"); }

// The content of a Concept Name Code Sequence.
inline std::string SmallTitle() {
    return OneItem(StreamBuilder().Element(0x0008, 0x0104, "LO", "A title of some length"));
}

// Two patients with records on all levels, and all that these own.
inline void AddRichPatients(DirectoryBuilder& directory) {
    for (const char* id : {"4711", "4712"}) {
        const std::string uid = std::string("1.2.") + id;
        const size_t patient = directory.Patient(id, "DOE^JOHN");
        const size_t study = directory.Study(patient, uid);
        const size_t series = directory.Series(study, uid + ".1", "CT");
        const size_t image = directory.Image(series, uid + ".1.1", 1, "IMG\\X1");
        directory.Image(series, uid + ".1.2", 2, "IMG\\X2");
        const size_t report = directory.Child(series, "SR DOCUMENT");
        directory[series].Set(0x0088, 0x0200, "SQ", SmallIcon());
        directory[image].Set(0x0088, 0x0200, "SQ", SmallIcon());
        directory[report].Set(0x0004, 0x1500, "CS", "IMG\\X3");
        directory[report].Set(0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.88.11");
        directory[report].Set(0x0004, 0x1511, "UI", uid + ".1.3");
        directory[report].Set(0x0040, 0xA043, "SQ", SmallTitle());
    }
}

inline DirectoryBuilder RichDirectory() {
    DirectoryBuilder directory;
    AddRichPatients(directory);
    return directory;
}

// A directory of files to make a medium of, a DICOMDIR elsewhere, and what is done with them. Each
// job takes what SweepFailures gives its jobs.
class JobMedium {
  public:
    JobMedium() {
        options_.storeFileSize = 1;
        options_.fillMissingKeys = 1;
        std::filesystem::create_directories(files_.Path("MEDIUM/SUB"));
        Write("A", InstanceFile().Instance("1.2.3.4.1"));
        // In descending order, in a series and in a study.
        Write("A2", InstanceFile().Instance("1.2.3.4.12").InstanceNumber(-2));
        Write("A3", InstanceFile().Instance("1.2.3.4.13").InstanceNumber(-3));
        Write("A4", SeriesFile("1.2.3.4.14", "-4"));
        Write("A5", SeriesFile("1.2.3.4.15", "-5"));
        Write("SUB/B", InstanceFile().Instance("1.2.3.4.2").Study("1.9").Series("1.9.1"));
        Write("C", InstanceFile().Instance("1.2.3.4.3").Patient("4713", "ROE^JANE"));
        files_.Write("MEDIUM/TEXT", "no file of this kind");
    }

    const std::string& Directory() const { return medium_; }
    const PgDicomdirOptions& Options() const { return options_; }
    // A DICOMDIR that is no part of the medium.
    const std::string& OtherDicomdir() const { return dicomdir_; }

    // The DICOMDIR that a creation wrote.
    DataSet Written() const {
        return DataSet(pgOpenDataSetFile(files_.Path("MEDIUM/DICOMDIR").c_str(), kLoadAll));
    }

    // The result of a creation; 0 when it has written a DICOMDIR.
    template <typename WhileFailing>
    uint32_t Create(WhileFailing&& whileFailing) const {
        std::filesystem::remove(files_.Path("MEDIUM/DICOMDIR"));
        uint32_t result = 1;
        whileFailing(
            [&] { result = pgCreateDicomdirEx(medium_.c_str(), "", &options_, nullptr, nullptr); });
        return result;
    }

    // A file is added to a hierarchy that was read, which is then written as a DICOMDIR.
    template <typename WhileFailing>
    uint32_t Rebuild(WhileFailing&& whileFailing) const {
        PGX_List* patients = pgGetPatientListFromFile(dicomdir_.c_str());
        uint32_t result = 1;
        whileFailing([&] {
            pgAddFile(patients, medium_.c_str(), (medium_ + "\\A").c_str(), "", &options_);
            result = pgBuildDicomdirEx(patients, medium_.c_str(), "SET");
        });
        pgEmptyPatientList(patients);
        delete patients;
        return result;
    }

    template <typename WhileFailing>
    void CreateOffshore(WhileFailing&& whileFailing) const {
        void* handle = nullptr;
        whileFailing(
            [&] { handle = pgStartCreateOffshoreDicomdir(medium_.c_str(), "", &options_); });
        if (handle == nullptr) return;
        for (const char* name : {"A", "A2", "A3", "A4", "A5", "C"}) {
            const std::string path = files_.Path(std::string("MEDIUM/") + name);
            whileFailing([&] { pgAddFileToOffshoreDicomdir(handle, name, path.c_str()); });
        }
        // The handle is gone after this, whatever happens.
        whileFailing([&] { pgEndCreateOffshoreDicomdir(handle); });
    }

    // A DICOMDIR that is there gets files of several kinds, and loses a study. The result of the
    // end, or 1 when it did not begin.
    template <typename WhileFailing>
    uint32_t Update(WhileFailing&& whileFailing) const {
        files_.Write("MEDIUM/DICOMDIR", RichDirectory().Build());
        PgDicomdirOptions options = options_;
        options.flags |= PG_DICOMDIR_STANDARD_RECORDS;
        void* update = nullptr;
        whileFailing(
            [&] { update = pgxStartDicomdirUpdate(medium_.c_str(), "", &options, nullptr); });
        if (update == nullptr) return 1;
        for (const char* name : {"A", "SUB\\B", "DOSE", "PALETTE", "TEXT"}) {
            const std::string path = medium_ + "\\" + name;
            whileFailing([&] { pgxUpdateAddFile(update, name, path.c_str()); });
        }
        whileFailing([&] { pgxUpdateRemoveStudy(update, "1.2.4711"); });
        // The handle is gone after this, whatever happens.
        uint32_t result = 1;
        whileFailing([&] { result = pgxEndDicomdirUpdate(update); });
        return result;
    }

    // One of kinds that have keys of their own, one of them of no patient.
    void WriteStandardKinds() const {
        Write("DOSE", InstanceFile()
                          .SopClass("1.2.840.10008.5.1.4.1.1.481.2")
                          .Instance("1.2.3.4.21")
                          .Set(0x3004, 0x000A, "CS", "A_RATHER_LONG_SUMMATION_TYPE"));
        Write("PALETTE", InstanceFile()
                             .SopClass("1.2.840.10008.5.1.4.39.1")
                             .Instance("1.2.3.4.22")
                             .Remove(0x0020, 0x000D)
                             .Set(0x0070, 0x0080, "CS", "A_RATHER_LONG_LABEL_OF_A_PALETTE"));
    }

  private:
    static InstanceFile SeriesFile(const std::string& uid, const char* number) {
        return InstanceFile().Instance(uid).Series(uid + ".1").Set(0x0020, 0x0011, "IS", number);
    }
    void Write(const std::string& name, const InstanceFile& file) const {
        files_.Write("MEDIUM/" + name, file.Data());
    }

    TempDir files_;
    std::string medium_ = files_.Path("MEDIUM");
    PgDicomdirOptions options_ = {};
    std::string dicomdir_ = files_.Write("DICOMDIR", RichDirectory().Build());
};

}  // namespace pgkit_test
