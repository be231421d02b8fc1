// Shared by the fuzz targets: hosts of every kind around the linked-in plug-in, in one process.
#pragma once

#include "tests/pictures.h"

namespace fuzz {

// Begins a host of that kind and enters the plug-in anew. GDK is played without an X display.
void play(host::Road kind);

// Aborts with a message: the input found a fault.
[[noreturn]] void fail(const char* what);

}  // namespace fuzz
