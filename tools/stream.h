// Files as streams that close themselves.
#pragma once

#include <cstdio>
#include <memory>

namespace pgtool {

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

}  // namespace pgtool
