// A medium under construction: files are written to it and added to a hierarchy.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "dicomdir/create/hierarchy_builder.h"
#include "pgkit/patient_list.h"
#include "support/instance_file.h"

namespace pgkit_test {

class HierarchyBuilding : public testing::Test {
  protected:
    ~HierarchyBuilding() override { pgEmptyPatientList(&patients_); }

    pgkit::HierarchyBuilder& Builder() {
        if (builder_ == nullptr) {
            builder_ = std::make_unique<pgkit::HierarchyBuilder>(patients_, profile_, options_,
                                                                 refusals_.get());
        }
        return *builder_;
    }
    // Later files are added by a new builder, as by a new operation.
    void StartAnew() { builder_ = nullptr; }

    pgkit::AddedObjects Add(const InstanceFile& file, const std::string& name = "FILE") {
        const std::string path = directory_.Write(name, file.Data());
        return Builder().Add({name.c_str(), path.c_str()});
    }

    // Gives files their own instance UIDs.
    InstanceFile NextInstance() {
        return InstanceFile().Instance("1.2.3.4." + std::to_string(++instances_));
    }

    TempDir directory_;
    PGX_List patients_;
    std::string profile_;
    PgDicomdirOptions options_ = {};
    std::unique_ptr<pgkit::AcceptanceList> refusals_;

  private:
    std::unique_ptr<pgkit::HierarchyBuilder> builder_;
    int instances_ = 0;
};

}  // namespace pgkit_test
