// The private elements of manufacturers, which come in a file with the tool.
#pragma once

#include "text_options.h"

namespace pgtool {

// With the current edition, makes the library know the elements of private.dic, for commands that
// only read: what is written again keeps the value representations that it has. The file lies
// beside the tool, or in share/pgkit of the installation. A site's own privdict.dic beside the
// tool, which the library has read already, stays in its place.
void UsePrivateElements(const TextOptions& texts);

}  // namespace pgtool
