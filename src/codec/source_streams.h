// The streams that values on disk are copied from. Nearly always there is one for the whole tree,
// and values lie in it in the order in which they are written: it keeps its buffer between them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "codec/stream_reader.h"

namespace pgkit {

class SourceStreams {
  public:
    // A reader at a position of an open stream, valid until the next call. Null for a null stream.
    StreamReader* At(FILE* stream, uint64_t position) {
        if (stream == nullptr) return nullptr;
        if (reader_ == nullptr || reader_->Stream() != stream) {
            reader_ = std::make_unique<StreamReader>(stream);
        }
        reader_->Seek(position);
        return reader_.get();
    }

  private:
    std::unique_ptr<StreamReader> reader_;
};

}  // namespace pgkit
