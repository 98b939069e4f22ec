// Tests of what is done with a medium: its files, its acceptance list, and what a scan tells.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "dicomdir/create/medium.h"
#include "support/instance_file.h"
#include "support/temp_dir.h"

namespace pgkit_test {

// The content of a text file, its line ends as "\n"; empty when there is no file.
inline std::string TextFile(const std::string& path) {
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

class ScanTest : public testing::Test {
  protected:
    std::string Directory() const { return medium_.Directory(); }
    template <typename Content>
    void Write(const std::string& name, const Content& content) {
        medium_.Write(name, content);
    }
    bool Exists(const std::string& name) const {
        return std::filesystem::exists(medium_.Path(name));
    }
    DataSet Open() const { return medium_.Open(); }

    std::string ListFile() const { return TextFile(medium_.Path("dcmdir.lst")); }
    // The list file behind its header; "no list" when there is none.
    std::string ListLines() const {
        const std::string text = ListFile();
        const size_t header = text.find("\n\n");
        return header == std::string::npos ? "no list" : text.substr(header + 2);
    }

    // A scan callback; its user data is the test.
    static int32_t Note(const PgDicomdirScanReason* reason) {
        auto& self = *static_cast<ScanTest*>(reason->userData);
        self.seen_ += std::string(reason->fileName) + "|" + reason->subdirectory + "|" +
                      std::to_string(reason->acceptanceCode) + ";";
        return --self.stopAfter_ == 0 ? 7 : 0;
    }

    // What the callback has seen: "NAME|SUBDIRECTORY|CODE;".
    std::string seen_;
    size_t stopAfter_ = SIZE_MAX;
    PgDicomdirOptions options_ = {};
    Medium medium_;
    TempDir outside_;
};

// The text with every digit as '#': nobody knows the time.
inline std::string Pattern(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }, '#');
    return text;
}

}  // namespace pgkit_test
