// Shared by the fuzz targets: hosts of every kind around the linked-in plug-in, in one process.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <vector>

#include "host/calls.h"
#include "host/host.h"
#include "host/objects.h"

namespace fuzz {

// How the pictures of a host show their pixels.
enum class Pixels {
  bitmap,   // console
  surface,  // desktop with cairo
  pixbuf,   // desktop with GDK, without an X display: copies of 3-byte pixels
  kMaxValue = pixbuf,
};

struct HostKind {
  Pixels pixels = Pixels::bitmap;
  // Words between the rows of pictures, and bytes between those of pixbufs.
  int32_t padding = 0;
};
HostKind takeHostKind(FuzzedDataProvider& data);

// Plays a host of that kind, with the plug-in entered afresh, unless it is played already.
void play(const HostKind& kind);

// Ends the process, with a list of what is held, unless the host holds nothing.
void expectNothingHeld();

// Ends the process with a message: an input showed a fault.
[[noreturn]] void fail(const char* what);

// A number as callers give them, by mistake as well: small ones, edges of ranges, anything.
int32_t takeInteger(FuzzedDataProvider& data);
double takeReal(FuzzedDataProvider& data);
// A picture of at most 600 pixels' width and 40 rows, of few or many colours.
host::PictureRef takePicture(FuzzedDataProvider& data);
host::PictureRef takePicture(FuzzedDataProvider& data, int width, int height);
// A memory block of 0 to 1100 bytes, or nil.
host::MemoryBlockRef takeBlock(FuzzedDataProvider& data);

}  // namespace fuzz
