// Opening composed streams and describing the trees they give.
#pragma once

#include <pgkit/pgkit.h>

#include <memory>
#include <string>

#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace pgkit_test {

struct CloseDataSet {
    void operator()(PGX_Node* root) const { pgCloseDataSet(root); }
};
// An opened or built data set, closed at the end.
using DataSet = std::unique_ptr<PGX_Node, CloseDataSet>;

constexpr uint32_t kLoadAll = 0xFFFFFFFF;

// A stream's bytes as a file, opened; keeps the file until it is destroyed.
class OpenedStream {
  public:
    explicit OpenedStream(const Bytes& bytes, uint32_t maxLoadLength = kLoadAll,
                          uint32_t flags = 0);
    explicit OpenedStream(const StreamBuilder& stream, uint32_t maxLoadLength = kLoadAll,
                          uint32_t flags = 0)
        : OpenedStream(stream.Data(), maxLoadLength, flags) {}

    PGX_Node* Root() const { return root_.get(); }
    PGX_Node* operator->() const { return root_.get(); }
    const std::string& Path() const { return path_; }

  private:
    TempDir directory_;
    std::string path_;
    DataSet root_;
};

// One line per tree: "(0008,0060)CS:2 (0040,A730)SQ:-1{[(0010,0010)PN:4]}", with lengths, items in
// brackets, and "null" for no tree.
std::string Describe(const PGX_Node* node);

// The tags of the direct children: "0008,0005 0010,0010".
std::string Tags(const PGX_Node* dataSet);

// The value as text.
std::string TextOf(PGX_Node* element);

// The first direct child with this tag; a test failure when there is none.
PGX_Node* Child(PGX_Node* dataSet, uint16_t group, uint16_t element);

}  // namespace pgkit_test
