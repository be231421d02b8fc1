// Where rows begin and end.

#include "picture/rows.h"

#include <string.h>

namespace {

struct Extent {
  int32_t first, end;
};

// Ends are computed in 64 bits: start + length can't wrap.
Extent cutExtent(int32_t start, int32_t length, int32_t limit) {
  const int64_t end = int64_t{start} + length;
  return {start > 0 ? start : 0, static_cast<int32_t>(end < limit ? (end > 0 ? end : 0) : limit)};
}

ptrdiff_t leftOffset(const Region& region) { return ptrdiff_t{region.left} * 4; }

// Moves an editor to the region's first row. One that stands there already keeps its row, which for a writer
// with a buffer of its own is not the buffer's.
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

bool rows::areOne(const PictureEditor& editor, const Region& region) {
  // Rows of a host bitmap may lie anywhere, and a picture with fewer rows than the region starts over.
  return editor.hasWords() && editor.format != kFormatHostBitmap && editor.rowBytes == editor.width * 4 &&
         region.left == 0 && region.right == editor.width && region.bottom <= editor.height;
}

RowSource::RowSource(PictureEditor& editor, const Region& region)
    : editor_(editor), offset_(leftOffset(region)) {
  at(firstRowOf(editor, region));
}

void RowSource::at(const uint8_t* row) {
  start_ = nullptr;
  available_ = 0;
  if (!row) return;  // there is none in a picture without rows
  start_ = row + offset_;
  // Rows of a host bitmap may lie anywhere; the others lie in one block that ends with the last row's pixels.
  const uint8_t* lastRow = editor_.format == kFormatHostBitmap
                               ? row
                               : editor_.firstRow + ptrdiff_t{editor_.rowBytes} * (editor_.height - 1);
  available_ = lastRow + ptrdiff_t{editor_.width} * editor_.bytesPerPixel - start_;
}

size_t RowSource::readable(size_t first, size_t count) const {
  const ptrdiff_t size = editor_.GetBytesPerPixel();
  if (size <= 0 || available_ <= 0) return 0;
  const auto pixels = static_cast<size_t>(available_ / size);
  return pixels <= first ? 0 : pixels - first < count ? pixels - first : count;
}

const kernels::Pixel* RowSource::span(size_t first, size_t count) {
  const size_t whole = readable(first, count);
  if (editor_.hasWords() && whole == count) return reinterpret_cast<const kernels::Pixel*>(start_) + first;
  if (whole > 0 && editor_.hasWords()) {
    memcpy(tile_, start_ + first * sizeof *tile_, whole * sizeof *tile_);
  } else if (whole > 0) {
    kernels::best().unpackRGB24(tile_, start_ + first * 3, whole, 0);
  }
  memset(tile_ + whole, 0, (count - whole) * sizeof *tile_);
  return tile_;
}

RowTarget::RowTarget(PictureEditor& editor, const Region& region)
    : editor_(editor), offset_(leftOffset(region)), start_(firstRowOf(editor, region) + offset_) {}

void RowTarget::finish(size_t first, size_t count) {
  if (editor_.format == kFormatRGB24) kernels::best().packRGB24(start_ + first * 3, tile_, count);
}
