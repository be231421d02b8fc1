// The kernels measured on their own, row by row over pictures of words.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/clock.h"
#include "bench/contents.h"
#include "kernels/kernels.h"

namespace bench {

// Input and output pictures for kernels.
struct Canvas {
  explicit Canvas(const Size& size);

  Size size;
  Memory photo, otherPhoto, grays, flat, out;
};

// One row of a canvas.
struct Row {
  kernels::Pixel* out;
  const kernels::Pixel *photo, *otherPhoto, *grays, *flat;
  size_t width;
  uint8_t* outBytes() const { return reinterpret_cast<uint8_t*>(out); }
  static const uint8_t* bytesOf(const kernels::Pixel* pixels) {
    return reinterpret_cast<const uint8_t*>(pixels);
  }
};
using RowRun = std::function<void(const kernels::Table&, const Row&)>;

struct KernelRun {
  std::string name;  // as in kernels::Table, plus the kind of input
  RowRun run;
};
const std::vector<KernelRun>& kernelRuns();

void runRows(const KernelRun& kernel, const kernels::Table& table, const Canvas& canvas);

}  // namespace bench
