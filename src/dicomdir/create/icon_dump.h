// For the debugger: nothing in the library calls this.
#pragma once

namespace pgkit {

// Writes a bitmap to the root of drive C, as pgSaveBmp000.bmp, pgSaveBmp001.bmp and so on, if the
// imaging module is there to do it.
void DumpIcon(void* bitmap);

}  // namespace pgkit
