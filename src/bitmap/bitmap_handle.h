// The owner of a bitmap that is a global memory block.
#pragma once

#include <memory>

#include "platform/global_block.h"

namespace pgkit {

struct FreeBitmap {
    void operator()(void* handle) const { platform::FreeGlobalBlock(handle); }
};
using BitmapHandle = std::unique_ptr<void, FreeBitmap>;

}  // namespace pgkit
