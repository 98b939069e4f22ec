// Sources for pgtool disc, and what it made of them.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/host_system.h"
#include "support/instance_file.h"
#include "support/patient_list.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace pgkit_test {

// The first series of a disc.
constexpr const char* kSeries = "DICOM/PAT00001/STU00001/SER00001/";

// An instance of a study and a series of its own.
inline InstanceFile InstanceOf(int study, int series, int number) {
    const std::string studyUid = "1.2." + std::to_string(study);
    const std::string seriesUid = studyUid + "." + std::to_string(series);
    return Instance(number)
        .Study(studyUid)
        .Series(seriesUid)
        .Instance(seriesUid + "." + std::to_string(number))
        .Set(0x0008, 0x0020, "DA", "20200102")
        .Set(0x0008, 0x0030, "TM", "101112")
        .Set(0x0020, 0x0010, "SH", "S1")
        .Set(0x0020, 0x0011, "IS", std::to_string(series));
}

inline InstanceFile Complete(int number) { return InstanceOf(3, 4, number); }

// Of about so many bytes.
inline InstanceFile Large(InstanceFile file, size_t bytes) {
    return file.Set(0x7FE0, 0x0010, "OB", std::string(bytes, 'x'));
}

class DiscFixture : public testing::Test {
  protected:
    DiscFixture() { std::filesystem::create_directories(directory_.Path("SOURCE/SUB")); }

    std::string Source() const { return directory_.Path("SOURCE"); }
    std::string Target() const { return directory_.Path("DISC"); }
    void Write(const std::string& name, const InstanceFile& file) {
        directory_.Write("SOURCE/" + name, file.Data());
    }
    Finished Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "disc");
        return Pgtool(arguments);
    }
    // Of the source, with options.
    Finished Disc(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {Source(), "-o", Target()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    // The files below a directory, by their paths relative to it.
    static std::set<std::string> FilesOf(const std::string& directory) {
        std::set<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
            if (entry.is_regular_file())
                files.insert(entry.path().lexically_relative(directory).generic_string());
        return files;
    }
    std::set<std::string> Files() const { return FilesOf(Target()); }
    Bytes Stored(const std::string& name) const { return ReadFile(Target() + "/" + name); }
    static std::string Text(const std::string& path) {
        const Bytes bytes = ReadFile(path);
        return std::string(bytes.begin(), bytes.end());
    }
    static std::string HierarchyOf(const std::string& medium) {
        PatientList patients;
        CapturePrinted(
            [&] { patients.reset(pgGetPatientListFromFile((medium + "/DICOMDIR").c_str())); });
        return Outline(patients.get());
    }
    std::string TransferSyntaxOf(const std::string& name) const {
        return pgkit::data_set::open(Target() + "/" + name)->find("TransferSyntaxUID").text();
    }
    // Nothing stands there, not even what is unfinished.
    bool LeftNothing() const {
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(Target()).parent_path()))
            if (entry.path().filename().string().starts_with("DISC")) return false;
        return true;
    }

    TempDir directory_;
};

}  // namespace pgkit_test
