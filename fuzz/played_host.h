// Shared by the fuzz targets: hosts of every kind around the linked-in plug-in, in one process.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <vector>

#include "host/calls.h"
#include "host/host.h"
#include "host/objects.h"

namespace fuzz {

// How a host stores the pixels of its pictures.
enum class Pixels {
  bitmap,   // console
  surface,  // desktop with cairo
  pixbuf,   // desktop with GDK, without an X display: RGB24 copies
  kMaxValue = pixbuf,
};

struct HostKind {
  Pixels pixels = Pixels::bitmap;
  // Padding after each row: in words for pictures, in bytes for pixbufs.
  int32_t padding = 0;
};
HostKind takeHostKind(FuzzedDataProvider& data);

// Switches to a host of that kind and enters the plug-in anew, unless it is the current one.
void play(const HostKind& kind);

// Aborts with a list of live objects unless the host has none.
void expectNothingHeld();

// Aborts with a message: the input found a fault.
[[noreturn]] void fail(const char* what);

// A plausible or mistaken argument: a small number, an edge of a range, or anything.
int32_t takeInteger(FuzzedDataProvider& data);
double takeReal(FuzzedDataProvider& data);
// A picture of at most 600 x 40 pixels, of few or many colours.
host::PictureRef takePicture(FuzzedDataProvider& data);
host::PictureRef takePicture(FuzzedDataProvider& data, int width, int height);
// A memory block of 0 to 1100 bytes, or nil.
host::MemoryBlockRef takeBlock(FuzzedDataProvider& data);

}  // namespace fuzz
