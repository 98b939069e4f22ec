#include "bitmap/received_bitmap.h"

#include "platform/global_block.h"

namespace pgkit {

ReceivedBitmap::ReceivedBitmap(void* handle)
    : handle_(handle),
      bytes_(platform::LockGlobalBlock(handle)),
      header_(ReadBitmapHeader(bytes_, platform::GlobalBlockSize(handle))) {}

ReceivedBitmap::~ReceivedBitmap() {
    if (bytes_ != nullptr) platform::UnlockGlobalBlock(handle_);
}

}  // namespace pgkit
