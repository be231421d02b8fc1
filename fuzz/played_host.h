// Shared by the fuzz targets: hosts around the linked-in plug-in, one after another in one process.
#pragma once

#include "tests/pictures.h"

namespace fuzz {

// Begins a host of that kind, but not for the GDK road, and enters the plug-in anew.
void play(host::Road kind);

// Aborts with a message: the input found a fault.
[[noreturn]] void fail(const char* what);

}  // namespace fuzz
