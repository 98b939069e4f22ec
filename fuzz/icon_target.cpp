#include <pgkit/pgkit.h>

#include <algorithm>

#include "bitmap/received_bitmap.h"
#include "dicomdir/create/icon_item.h"
#include "dicomdir/icon_bitmap.h"
#include "input.h"
#include "scratch_files.h"
#include "support/tree.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

// What a broken imaging module might hand out.
pgkit::BitmapHandle AsBitmap(Bytes bytes) {
    pgkit::BitmapHandle bitmap(pgkit::platform::AllocateGlobalBlock(bytes.size()));
    if (bitmap == nullptr) return bitmap;
    std::copy(bytes.begin(), bytes.end(), pgkit::platform::LockGlobalBlock(bitmap.get()));
    pgkit::platform::UnlockGlobalBlock(bitmap.get());
    return bitmap;
}

}  // namespace

void Icon(Bytes bytes) {
    Input input(bytes);
    if (input.Byte() % 2 == 0) {
        if (!input.IsEmpty()) pgkit::NewIconItem(AsBitmap(input.Rest()).get());
        return;
    }
    const std::string path = WriteScratch("icon", input.Rest());
    const pgkit_test::DataSet image(pgOpenDataSetFile(path.c_str(), 0x10000));
    if (image == nullptr) return;
    uint64_t asked = 0;
    const pgkit::BitmapHandle bitmap = pgkit::NewIconBitmap(*image, [&](uint64_t memory) {
        asked += memory;
        return true;
    });
    if (bitmap == nullptr) return;
    Require(pgkit::platform::GlobalBlockSize(bitmap.get()) <= asked,
            "a bitmap takes no more memory than it asked for");
    Require(pgkit::ReceivedBitmap(bitmap.get()).Header().has_value(), "a bitmap is all there");
    pgkit::NewIconItem(bitmap.get());
}

}  // namespace pgkit_fuzz
