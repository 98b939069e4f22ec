// Composed streams, opened as the C++ layer opens files.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <string>

#include "support/host_order.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace pgkit_test {

// A stream as a file, and its data set; values of this many bytes and more stay in the file.
class Opened {
  public:
    explicit Opened(const StreamBuilder& stream, uint32_t loadBelow = 64, uint32_t flags = 0)
        : path(directory.Write("file", stream.Data())) {
        auto opened = pgkit::data_set::open(path, {loadBelow, flags});
        EXPECT_TRUE(opened) << opened.error().message;
        dataSet = std::move(*opened);
    }

    pgkit::data_set* operator->() { return &dataSet; }
    pgkit::data_set& operator*() { return dataSet; }

    TempDir directory;
    std::string path;
    pgkit::data_set dataSet;
};

// Explicit little endian, with File Meta Information.
inline StreamBuilder Part10Stream() {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1");
    return stream;
}

// A number's bytes as they are in a little-endian file.
template <typename Number>
std::string BytesOf(Number number) {
    return InHostOrder(std::string(reinterpret_cast<const char*>(&number), sizeof number),
                       sizeof number);
}

}  // namespace pgkit_test
