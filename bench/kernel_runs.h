// The kernels that are measured alone: row by row over pictures of words.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/clock.h"
#include "bench/contents.h"
#include "kernels/kernels.h"

namespace bench {

// Pictures that kernels work on, and room for what they write.
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
  std::string name;  // as in kernels::Table, and what it works on
  RowRun run;
};
const std::vector<KernelRun>& kernelRuns();

void runRows(const KernelRun& kernel, const kernels::Table& table, const Canvas& canvas);

}  // namespace bench
