// A stream that is closed when its owner goes.
#pragma once

#include <cstdio>
#include <memory>

namespace pgkit::platform {

struct CloseFile {
    void operator()(FILE* stream) const { std::fclose(stream); }
};

using FileHandle = std::unique_ptr<FILE, CloseFile>;

}  // namespace pgkit::platform
