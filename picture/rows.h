// Rows of pixels as packed words. An operation names a region and a kernel for spans of words; this layer
// handles the pixel formats: words go to the kernel in place, RGB24 pixels go through a tile that stays in
// the first-level cache, or to a kernel of their own.
#pragma once

#include <utility>

#include "kernels/kernels.h"
#include "picture/editor.h"

// Columns left <= x < right and rows top <= y < bottom.
struct Region {
  int32_t left, top, right, bottom;

  bool isEmpty() const { return left >= right || top >= bottom; }
  // Whether to write it past the caches.
  bool isLarge() const { return kernels::shouldStream(int64_t{right - left} * (bottom - top)); }

  static Region whole(const PictureEditor& editor) { return {0, 0, editor.width, editor.height}; }
  // Clips a rectangle to a picture. Its right and bottom edges count from the unclipped left and top.
  static Region cut(int32_t left, int32_t top, int32_t width, int32_t height, const PictureEditor& editor);
};

// A reader's current row as words, starting at the region's left column.
//
// The left column is 4 bytes per column from the row's start in every format, on purpose: a region of an
// RGB24 picture starts further right than its name says, and may run into the next row. Bytes past the
// picture's last one can't be read.
class RowSource {
 public:
  RowSource(PictureEditor& editor, const Region& region);

  void nextRow() { at(editor_.AddPixelRow()); }
  void toRow(int32_t y) { at(editor_.row = editor_.GetRow(y)); }
  // The number of pixels, at most `count`, that can be read whole from `first` on.
  size_t readable(size_t first, size_t count) const;
  // Whether the first `count` pixels are words, or RGB24 pixels, of the picture that can be used in place.
  bool isDirect(size_t count) const { return editor_.hasWords() && readable(0, count) == count; }
  bool isDirectRGB24(size_t count) const {
    return editor_.format == kFormatRGB24 && readable(0, count) == count;
  }
  // The pixels from `first` on as they lie in the picture.
  const kernels::Pixel* inPlace(size_t first) const {
    return reinterpret_cast<const kernels::Pixel*>(start_ +
                                                   first * static_cast<size_t>(editor_.GetBytesPerPixel()));
  }
  // The words of the pixels first .. first + count - 1, valid until the next call. Bytes that can't be read
  // are 0. `count` is at most kTile unless the row is direct.
  const kernels::Pixel* span(size_t first, size_t count);

  static constexpr size_t kTile = 512;

 private:
  void at(const uint8_t* row);

  PictureEditor& editor_;
  size_t offset_;                           // of the left column, in bytes
  const uint8_t* lastRow_;                  // of the block that can be read; null: the current row
  const uint8_t* start_;                    // left column of the current row
  size_t available_ = 0;                    // readable bytes from there
  alignas(64) kernels::Pixel tile_[kTile];  // vectors in it don't cross cache lines
};

// The row that an editor writes, as RowSource reads it.
class RowTarget {
 public:
  RowTarget(PictureEditor& editor, const Region& region);
  ~RowTarget();
  RowTarget(const RowTarget&) = delete;
  RowTarget& operator=(const RowTarget&) = delete;

  void nextRow() { start_ = editor_.AddPixelRow() + offset_; }
  bool isDirect() const { return editor_.hasWords(); }
  bool isDirectRGB24() const { return editor_.format == kFormatRGB24; }
  uint32_t topByte() const { return editor_.topByte(); }
  // Where to write the words of the pixels from `first` on; `finish` stores them in the picture.
  kernels::Output span(size_t first) { return isDirect() ? inPlace(first) : kernels::Output(tile_); }
  // The place of the pixels from `first` on in the picture.
  kernels::Output inPlace(size_t first) const {
    const size_t offset = first * static_cast<size_t>(editor_.GetBytesPerPixel());
    return {reinterpret_cast<kernels::Pixel*>(start_ + offset), isLarge_};
  }
  void finish(size_t first, size_t count);
  // The number of RGB24 pixels before one that begins a cache line, as streaming stores need it; 0 if there
  // will be none.
  size_t head() const;

 private:
  PictureEditor& editor_;
  size_t offset_;
  uint8_t* start_;
  bool isLarge_;
  alignas(64) kernels::Pixel tile_[RowSource::kTile];
};

// A kernel for words, and one of the same type for RGB24 pixels.
template <typename Kernel>
struct BothFormats {
  Kernel words, rgb24;
};
template <typename Kernel>
BothFormats(Kernel, Kernel) -> BothFormats<Kernel>;

namespace rows {

// Whether a region's rows are contiguous pixels in an editor's picture, and so can be treated as one row.
bool areContiguous(const PictureEditor& editor, const Region& region);

// A region as the longest rows that suit all of the pictures.
struct Walk {
  size_t width;
  int32_t height;
};
template <typename... Editors>
Walk walkOf(const Region& region, const Editors&... editors) {
  // Offsets within a row are signed, so a row takes up less than half the address space.
  constexpr auto kLongest = static_cast<int64_t>(INT32_MAX / sizeof(kernels::Pixel));
  const int32_t width = region.right - region.left, height = region.bottom - region.top;
  const bool isOneRow = int64_t{width} * height <= kLongest && (areContiguous(editors, region) && ...);
  return isOneRow ? Walk{static_cast<size_t>(width) * static_cast<size_t>(height), 1}
                  : Walk{static_cast<size_t>(width), height};
}

template <typename Kernel, size_t... i>
void mapRow(RowTarget& target, [[maybe_unused]] RowSource* sources, size_t width, const Kernel& kernel,
            std::index_sequence<i...>) {
  const bool direct = target.isDirect() && (sources[i].isDirect(width) && ...);
  for (size_t first = 0, count; first < width; first += count) {
    const size_t most = direct ? width : first < target.head() ? target.head() : RowSource::kTile;
    count = width - first < most ? width - first : most;
    kernel(target.span(first), sources[i].span(first, count)..., count, target.topByte());
    target.finish(first, count);
  }
}

// The same without unpacking, where no picture needs it.
template <typename Kernel, size_t... i>
void mapRow(RowTarget& target, RowSource* sources, size_t width, const BothFormats<Kernel>& kernels,
            std::index_sequence<i...> all) {
  if (!target.isDirectRGB24() || !(sources[i].isDirectRGB24(width) && ...))
    return mapRow(target, sources, width, kernels.words, all);
  const size_t head = target.head();
  for (size_t first = 0, count; first < width; first += count) {
    count = (first < head && head < width ? head : width) - first;
    kernels.rgb24(target.inPlace(first), sources[i].inPlace(first)..., count, 0);
  }
}

// Passes the pixels first <= x < end of a row to a kernel: kernel(const Pixel* in, size_t count, size_t x)
// returns whether to go on. Skips pixels that can't be read. True if the kernel never stopped.
template <typename Kernel>
bool scanRow(RowSource& source, size_t first, size_t end, const Kernel& kernel) {
  end = first + source.readable(first, end - first);
  const bool direct = source.isDirect(end);
  for (size_t count; first < end; first += count) {
    count = direct || end - first < RowSource::kTile ? end - first : RowSource::kTile;
    if (!kernel(source.span(first, count), count, first)) return false;
  }
  return true;
}

}  // namespace rows

// Writes a region of `result` from the same region of one or more readers. Calls
// kernel(Output out, const Pixel* in..., size_t count, uint32_t topByte) for each span; one span may cover
// the whole region. The kernel may be a pair: BothFormats. Rows outside the region are not touched. A reader
// with fewer rows repeats its row 0.
template <typename Kernel, typename... Readers>
void mapRegion(PictureEditor& result, const Region& region, const Kernel& kernel, Readers&... readers) {
  if (region.isEmpty()) return;
  RowTarget target(result, region);
  RowSource sources[] = {RowSource(readers, region)...};
  const auto mapRows = [&](const rows::Walk& walk) {
    for (int32_t y = 0; y < walk.height; ++y) {
      rows::mapRow(target, sources, walk.width, kernel, std::index_sequence_for<Readers...>());
      target.nextRow();
      for (RowSource& source : sources) source.nextRow();
    }
  };
  Region rest = region;
  // A row that is discarded lies elsewhere.
  if (result.row != result.firstRow && result.rowIndex == 0) {
    mapRows({static_cast<size_t>(region.right - region.left), 1});
    ++rest.top;
  }
  if (!rest.isEmpty()) mapRows(rows::walkOf(rest, result, readers...));
}

// Writes a region of `result`. Calls kernel(Pixel* out, size_t count, uint32_t topByte, int32_t x, int32_t y)
// for each span of a row; the span starts at (x, y).
template <typename Kernel>
void writeRegion(PictureEditor& result, const Region& region, const Kernel& kernel) {
  if (region.isEmpty()) return;
  RowTarget target(result, region);
  const auto width = static_cast<size_t>(region.right - region.left);
  for (int32_t y = region.top; y < region.bottom; ++y) {
    int32_t x = region.left;
    const auto placed = [&](kernels::Output out, size_t count, uint32_t top) {
      kernel(out, count, top, x, y);
      x += static_cast<int32_t>(count);
    };
    rows::mapRow(target, nullptr, width, placed, std::index_sequence<>());
    target.nextRow();
  }
}

// Passes a region of a picture to a kernel, span by span: kernel(const Pixel* in, size_t count) returns
// whether to go on. Skips pixels that can't be read. True if the kernel never stopped.
template <typename Kernel>
bool scanRegion(PictureReader& reader, const Region& region, const Kernel& kernel) {
  if (region.isEmpty()) return true;
  RowSource source(reader, region);
  const rows::Walk walk = rows::walkOf(region, reader);
  for (int32_t y = 0; y < walk.height; ++y) {
    const auto unplaced = [&](const kernels::Pixel* in, size_t count, size_t) { return kernel(in, count); };
    if (!rows::scanRow(source, 0, walk.width, unplaced)) return false;
    source.nextRow();
  }
  return true;
}
