#include "bench/kernel_runs.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "kernels/cube.h"

namespace bench {
namespace {

using kernels::Pixel;
using kernels::Table;

constexpr uint32_t kTop = 0xFF000000;
constexpr uint32_t kRareColor = 0x123457;

// Results go here, so that no call is optimised away.
volatile uint64_t sink;

void draw(Content content, const Size& size, const Memory& memory) {
  auto* words = reinterpret_cast<uint32_t*>(memory.get());
  for (int y = 0; y < size.height; ++y) drawRow(content, size, y, words + y * size.width);
}

// ---- A call for each type of kernel ----

RowRun on(kernels::SpanMap* Table::*slot) {
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop); };
}
RowRun on(kernels::SpanMap2* Table::*slot) {
  return
      [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.otherPhoto, row.width, kTop); };
}
RowRun on(kernels::SpanMap3* Table::*slot) {
  return [=](const Table& t, const Row& row) {
    (t.*slot)(row.out, row.photo, row.otherPhoto, row.grays, row.width, kTop);
  };
}
RowRun on(kernels::SpanMerge* Table::*slot) {
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width); };
}
RowRun on(kernels::SpanUnpack* Table::*slot) {
  return
      [=](const Table& t, const Row& row) { (t.*slot)(row.out, Row::bytesOf(row.photo), row.width, kTop); };
}
RowRun on(kernels::SpanPack* Table::*slot) {
  return [=](const Table& t, const Row& row) { (t.*slot)(row.outBytes(), row.photo, row.width, false); };
}
RowRun on(kernels::SpanFill* Table::*slot) {
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.width, 0xFF3C78B4); };
}
// Within the row, which is fetched ahead.
RowRun on(kernels::SpanMove* Table::*slot) {
  return [=](const Table& t, const Row& row) {
    kernels::Soon soon = {};
    for (uintptr_t& place : soon.places) place = reinterpret_cast<uintptr_t>(row.out + row.width);
    (t.*slot)(row.outBytes(), row.outBytes() + sizeof(Pixel), (row.width - 1) * sizeof(Pixel), &soon);
  };
}
RowRun on(kernels::SpanFindUncovered* Table::*slot) {
  return [=](const Table& t, const Row& row) { sink = (t.*slot)(row.grays, row.photo, row.width); };
}
RowRun on(kernels::SpanFindUncoveredRGB24* Table::*slot) {
  return [=](const Table& t, const Row& row) {
    sink = (t.*slot)(Row::bytesOf(row.grays), Row::bytesOf(row.photo), row.width);
  };
}
RowRun on(kernels::SpanReplaceColor* Table::*slot) {
  return [=](const Table& t, const Row& row) {
    (t.*slot)(row.out, row.photo, row.width, kTop, row.photo[0], kRareColor);
  };
}
RowRun on(kernels::SpanExtractColor* Table::*slot) {
  return [=](const Table& t, const Row& row) {
    (t.*slot)(row.out, row.photo, row.width, kTop, row.photo[0], kRareColor, 0);
  };
}
RowRun saturating(kernels::SpanSaturate* Table::*slot, int32_t factor) {
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop, factor); };
}
RowRun on(kernels::SpanSaturate* Table::*slot) { return saturating(slot, 315); }
RowRun on(kernels::SpanCountBeyond* Table::*slot) {
  return [=](const Table& t, const Row& row) { sink = (t.*slot)(row.photo, row.width, 10); };
}
// On contents that don't end the call early. SpanFind is the same type as SpanCount.
RowRun on(kernels::SpanCount* Table::*slot) {
  return [=](const Table& t, const Row& row) { sink = (t.*slot)(row.flat, row.width, kRareColor); };
}
RowRun on(kernels::SpanIsColor* Table::*slot) {
  return [=](const Table& t, const Row& row) { sink = (t.*slot)(row.flat, row.width, row.flat[0]); };
}
RowRun on(kernels::SpanIsGray* Table::*slot) {
  return [=](const Table& t, const Row& row) { sink = (t.*slot)(row.grays, row.width, 0); };
}
RowRun on(kernels::SpanCompare* Table::*slot) {
  return [=](const Table& t, const Row& row) { sink = (t.*slot)(row.photo, row.photo, row.width); };
}
// Quarters of the row as two-byte samples; one-byte samples use half of them.
RowRun on(kernels::SampleSums* Table::*slot) {
  return [=](const Table& t, const Row& row) {
    kernels::SampleSpans spans;
    for (size_t k = 0; k < kernels::kSampleSpans; ++k)
      spans[k] = {Row::bytesOf(row.photo + k * row.width / 4), row.width / 4 * sizeof(Pixel) / 2};
    kernels::SpanExcursions sums;
    (t.*slot)(spans, sums);
    sink = sums[0].positive;
  };
}
RowRun on(kernels::SpanLookup* Table::*slot) {
  const auto tables = std::make_shared<kernels::ChannelTables>();
  for (int i = 0; i < 256; ++i) {
    const auto curve = [&](double gamma) { return static_cast<uint8_t>(255 * std::pow(i / 255.0, gamma)); };
    tables->red[i] = curve(0.6);
    tables->green[i] = curve(1.7);
    tables->blue[i] = curve(1.0);
  }
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop, *tables); };
}
RowRun on(kernels::SpanLinear* Table::*slot) {
  const kernels::LinearMap rising{false, 128, 42600, -4900}, falling{true, 0, 30000, 2000};
  const kernels::LinearMaps maps{rising, rising, falling, 7};
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop, maps); };
}
// Through a table whose entries are all whole or all not.
RowRun mapping(kernels::SpanCube* Table::*slot, bool isWhole) {
  struct Mapping {
    std::vector<double> entries;
    kernels::Cube cube;
  };
  const auto mapping = std::make_shared<Mapping>();
  for (size_t i = 0; i < kernels::kCubeSide * kernels::kCubeSide * kernels::kCubeSide * 3; ++i) {
    const double entry = 127 + 127 * std::sin(static_cast<double>(i) * 0.37);
    mapping->entries.push_back(isWhole ? std::floor(entry) : entry);
  }
  kernels::prepareCube(mapping->cube, mapping->entries.data());
  return
      [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop, mapping->cube); };
}
RowRun on(kernels::SpanCube* Table::*slot) { return mapping(slot, false); }
RowRun counting(kernels::SpanHistogram* Table::*slot, const Pixel* Row::*contents) {
  const auto counts = std::make_shared<kernels::ChannelCounts>();
  return [=](const Table& t, const Row& row) { (t.*slot)(row.*contents, row.width, *counts); };
}
RowRun on(kernels::SpanHistogram* Table::*slot) { return counting(slot, &Row::photo); }
RowRun on(kernels::SpanTint* Table::*slot) {
  const auto tint = std::make_shared<kernels::Tint>(kernels::Tint{0x555555, 0x704214, {}});
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop, *tint); };
}
RowRun on(kernels::SpanSepia* Table::*slot) {
  const kernels::Sepia sepia{306, 601, 116, 30, 10, static_cast<uint32_t>(-20)};
  return [=](const Table& t, const Row& row) { (t.*slot)(row.out, row.photo, row.width, kTop, sepia); };
}
RowRun on(kernels::SpanBars* Table::*slot) {
  const auto first = std::make_shared<std::vector<int32_t>>(),
             last = std::make_shared<std::vector<int32_t>>();
  return [=](const Table& t, const Row& row) {
    while (first->size() < row.width) {
      first->push_back(static_cast<int32_t>(first->size() % 90));
      last->push_back(150);
    }
    (t.*slot)(row.out, first->data(), last->data(), row.width, 100, 120, 0x274C5A, 0x88B5C4);
  };
}

std::vector<KernelRun> list() {
#define ZVR_RUN(type, kernel) {#kernel, on(&Table::kernel)},
  return {ZVR_KERNELS(ZVR_RUN)  //
          {"histogram-flat", counting(&Table::histogram, &Row::flat)},
          {"mapThroughCube-whole", mapping(&Table::mapThroughCube, true)},
          {"saturate-wrapping", saturating(&Table::saturate, 1 << 30)}};
#undef ZVR_RUN
}

}  // namespace

Canvas::Canvas(const Size& s)
    : size(s),
      photo(s.pixels() * 4),
      otherPhoto(s.pixels() * 4),
      grays(s.pixels() * 4),
      flat(s.pixels() * 4),
      out(s.pixels() * 4) {
  draw(Content::photo, size, photo);
  draw(Content::otherPhoto, size, otherPhoto);
  draw(Content::grays, size, grays);
  draw(Content::flat, size, flat);
}

const std::vector<KernelRun>& kernelRuns() {
  static const std::vector<KernelRun> all = list();
  return all;
}

void runRows(const KernelRun& kernel, const Table& table, const Canvas& canvas) {
  const auto width = static_cast<size_t>(canvas.size.width);
  for (int y = 0; y < canvas.size.height; ++y) {
    const auto at = [&](const Memory& memory) {
      return reinterpret_cast<Pixel*>(memory.get()) + static_cast<size_t>(y) * width;
    };
    kernel.run(table, {at(canvas.out), at(canvas.photo), at(canvas.otherPhoto), at(canvas.grays),
                       at(canvas.flat), width});
  }
}

}  // namespace bench
