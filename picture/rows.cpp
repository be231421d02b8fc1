// Row bounds and access to spans.

#include "picture/rows.h"

#include <string.h>

namespace {

struct Extent {
  int32_t first, end;
};

// In 64 bits, so that start + length can't overflow.
Extent cutExtent(int32_t start, int32_t length, int32_t limit) {
  const int64_t end = int64_t{start} + length;
  return {start > 0 ? start : 0, static_cast<int32_t>(end < limit ? (end > 0 ? end : 0) : limit)};
}

constexpr size_t kRGB24Size = 3;

// Rows of a host bitmap may lie anywhere, but often one lies after the other.
bool areAdjacent(const PictureEditor& editor, const Region& region) {
  for (int32_t y = region.top; y < region.bottom; ++y) {
    if (editor.rowTable[y] != rowAt(editor.rowTable[region.top], y - region.top, editor.rowBytes))
      return false;
  }
  return true;
}

// The last row of the block that a region's rows lie in; null if each is a block of its own.
const uint8_t* lastRowOf(const PictureEditor& editor, const Region& region) {
  if (editor.format != kFormatHostBitmap) return rowAt(editor.firstRow, editor.height - 1, editor.rowBytes);
  return !region.isEmpty() && rows::areContiguous(editor, region) ? editor.rowTable[region.bottom - 1]
                                                                  : nullptr;
}

size_t leftOffset(const Region& region) { return static_cast<size_t>(region.left) * 4; }

// Moves an editor to the region's first row. An editor that is already there keeps its row pointer: for a
// writer with its own buffer that is not the buffer's row.
uint8_t* firstRowOf(PictureEditor& editor, const Region& region) {
  if (region.top != editor.rowIndex) editor.row = editor.GetRow(region.top);
  return editor.row;
}

}  // namespace

Region Region::cut(int32_t left, int32_t top, int32_t width, int32_t height, const PictureEditor& editor) {
  const Extent columns = cutExtent(left, width, editor.width);
  const Extent lines = cutExtent(top, height, editor.height);
  return {columns.first, lines.first, columns.end, lines.end};
}

bool rows::areContiguous(const PictureEditor& editor, const Region& region) {
  // Past its last row a picture repeats row 0.
  return editor.rowBytes == int64_t{editor.width} * editor.GetBytesPerPixel() && region.left == 0 &&
         region.right == editor.width && region.bottom <= editor.height &&
         (editor.format != kFormatHostBitmap || areAdjacent(editor, region));
}

RowSource::RowSource(PictureEditor& editor, const Region& region)
    : editor_(editor), offset_(leftOffset(region)), lastRow_(lastRowOf(editor, region)) {
  at(firstRowOf(editor, region));
}

void RowSource::at(const uint8_t* row) {
  start_ = nullptr;
  available_ = 0;
  const size_t size = static_cast<size_t>(editor_.GetBytesPerPixel());
  if (!row || size == 0) return;  // no rows, or an unknown pixel format
  // The block may be larger than ptrdiff_t can hold, hence uintptr_t.
  const uint8_t* lastRow = lastRow_ ? lastRow_ : row;
  const auto end = reinterpret_cast<uintptr_t>(lastRow) + static_cast<size_t>(editor_.width) * size;
  const auto start = reinterpret_cast<uintptr_t>(row) + offset_;
  if (start >= end) return;
  start_ = row + offset_;
  available_ = end - start;
}

size_t RowSource::readable(size_t first, size_t count) const {
  const size_t pixels = available_ / (editor_.hasWords() ? sizeof *tile_ : kRGB24Size);
  return pixels <= first ? 0 : pixels - first < count ? pixels - first : count;
}

const kernels::Pixel* RowSource::span(size_t first, size_t count) {
  const size_t whole = readable(first, count);
  if (editor_.hasWords() && whole == count) return reinterpret_cast<const kernels::Pixel*>(start_) + first;
  memset(tile_ + whole, 0, (count - whole) * sizeof *tile_);
  if (editor_.hasWords()) {
    if (whole > 0) memcpy(tile_, start_ + first * sizeof *tile_, whole * sizeof *tile_);
    return tile_;
  }
  if (whole > 0) kernels::best().unpackRGB24(tile_, start_ + first * kRGB24Size, whole, 0);
  // A pixel cut off by the picture's end keeps the bytes before it.
  const size_t next = (first + whole) * kRGB24Size;
  if (whole < count && next < available_) {
    uint8_t pixel[kRGB24Size] = {};
    memcpy(pixel, start_ + next, available_ - next);
    kernels::best().unpackRGB24(tile_ + whole, pixel, 1, 0);
  }
  return tile_;
}

RowTarget::RowTarget(PictureEditor& editor, const Region& region)
    : editor_(editor),
      offset_(leftOffset(region)),
      start_(firstRowOf(editor, region) + offset_),
      isLarge_(region.isLarge()) {}

RowTarget::~RowTarget() {
  if (isLarge_) kernels::endStreaming();
}

size_t RowTarget::head() const {
  constexpr size_t kLine = 64, kInverse = 43;  // 3 * 43 is 1 modulo 64
  static_assert(RowSource::kTile * kRGB24Size % kLine == 0);
  return isLarge_ ? (0 - reinterpret_cast<uintptr_t>(start_)) * kInverse % kLine : 0;
}

void RowTarget::finish(size_t first, size_t count) {
  if (editor_.format == kFormatRGB24)
    kernels::best().packRGB24(start_ + first * kRGB24Size, tile_, count, isLarge_);
}
