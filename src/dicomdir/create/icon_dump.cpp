#include "dicomdir/create/icon_dump.h"

#include <atomic>
#include <cstdio>

#include "dicomdir/create/imaging_module.h"

namespace pgkit {

namespace {

constinit std::atomic<unsigned> nextNumber = 0;

}  // namespace

void DumpIcon(void* bitmap) {
    char path[40];
    std::snprintf(path, sizeof path, "C:\\pgSaveBmp%03u.bmp", nextNumber++);
    const ImagingModule module;
    if (module.writeBitmap != nullptr) module.writeBitmap(bitmap, path);
}

}  // namespace pgkit
