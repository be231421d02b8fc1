// Rows of pixels as packed words. An operation says which region it works on and what happens to a span of
// words; the formats of the pictures are dealt with here: words are handed to the kernel where they lie,
// 3-byte pixels go through a tile that stays in the first-level cache.
#pragma once

#include <utility>

#include "kernels/kernels.h"
#include "picture/editor.h"

// Columns left <= x < right and rows top <= y < bottom.
struct Region {
  int32_t left, top, right, bottom;

  bool isEmpty() const { return left >= right || top >= bottom; }

  static Region whole(const PictureEditor& editor) { return {0, 0, editor.width, editor.height}; }
  // What of a rectangle lies inside a picture. The ends count from the uncut left and top.
  static Region cut(int32_t left, int32_t top, int32_t width, int32_t height, const PictureEditor& editor);
};

// A reader's current row, from the region's left column on, as words.
//
// In every format the left column is 4 bytes a column from the row's start, on purpose: a region of a picture
// of 3-byte pixels starts further right than its name says, and may run into the next row. What lies past the
// picture's last byte can't be read.
class RowSource {
 public:
  RowSource(PictureEditor& editor, const Region& region);

  void nextRow() { at(editor_.AddPixelRow()); }
  void toRow(int32_t y) { at(editor_.row = editor_.GetRow(y)); }
  // How many of the pixels from `first` on, at most `count`, can be read whole.
  size_t readable(size_t first, size_t count) const;
  // Whether all pixels up to `count` lie in the picture as words.
  bool isDirect(size_t count) const { return editor_.hasWords() && readable(0, count) == count; }
  // Words of the pixels first .. first + count - 1, good until the next call. Bytes that can't be read are 0.
  // `count` is at most kTile unless the row is direct.
  const kernels::Pixel* span(size_t first, size_t count);

  static constexpr size_t kTile = 512;

 private:
  void at(const uint8_t* row);

  PictureEditor& editor_;
  size_t offset_;                           // of the left column, bytes
  const uint8_t* start_;                    // left column of the current row
  size_t available_ = 0;                    // bytes from there to the end of what can be read
  alignas(64) kernels::Pixel tile_[kTile];  // vectors in it don't cross cache lines
};

// The row that an editor writes, likewise.
class RowTarget {
 public:
  RowTarget(PictureEditor& editor, const Region& region);

  void nextRow() { start_ = editor_.AddPixelRow() + offset_; }
  bool isDirect() const { return editor_.hasWords(); }
  uint32_t topByte() const { return editor_.topByte(); }
  // Where to write the words of the pixels from `first` on; `finish` brings them home.
  kernels::Pixel* span(size_t first) {
    return isDirect() ? reinterpret_cast<kernels::Pixel*>(start_) + first : tile_;
  }
  void finish(size_t first, size_t count);

 private:
  PictureEditor& editor_;
  size_t offset_;
  uint8_t* start_;
  alignas(64) kernels::Pixel tile_[RowSource::kTile];
};

namespace rows {

// Whether a region's rows lie end to end in an editor's picture, as words: then they are one long row.
bool areOne(const PictureEditor& editor, const Region& region);

// The same region in rows as long as they can be in all of the pictures.
struct Walk {
  size_t width;
  int32_t height;
};
template <typename... Editors>
Walk walkOf(const Region& region, const Editors&... editors) {
  const auto width = static_cast<size_t>(region.right - region.left);
  const int32_t height = region.bottom - region.top;
  return (areOne(editors, region) && ...) ? Walk{width * static_cast<size_t>(height), 1}
                                          : Walk{width, height};
}

template <typename Kernel, size_t... i>
void mapRow(RowTarget& target, [[maybe_unused]] RowSource* sources, size_t width, const Kernel& kernel,
            std::index_sequence<i...>) {
  const bool direct = target.isDirect() && (sources[i].isDirect(width) && ...);
  for (size_t first = 0, count; first < width; first += count) {
    count = direct || width - first < RowSource::kTile ? width - first : RowSource::kTile;
    kernel(target.span(first), sources[i].span(first, count)..., count, target.topByte());
    target.finish(first, count);
  }
}

// Shows the pixels first <= x < end of a row to a kernel: kernel(const Pixel* in, size_t count, size_t x)
// answers whether to go on. Pixels that can't be read are left out. True when the kernel never stopped.
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

// Writes a region of `result` from the same region of one or more readers:
// kernel(Pixel* out, const Pixel* in..., size_t count, uint32_t topByte) for each span, which may be all of
// it. Rows outside the region are not touched. A reader with fewer rows shows its row 0 past its end.
template <typename Kernel, typename... Readers>
void mapRegion(PictureEditor& result, const Region& region, const Kernel& kernel, Readers&... readers) {
  if (region.isEmpty()) return;
  RowTarget target(result, region);
  RowSource sources[] = {RowSource(readers, region)...};
  const rows::Walk walk = rows::walkOf(region, result, readers...);
  for (int32_t y = 0; y < walk.height; ++y) {
    rows::mapRow(target, sources, walk.width, kernel, std::index_sequence_for<Readers...>());
    target.nextRow();
    for (RowSource& source : sources) source.nextRow();
  }
}

// Writes a region of `result`: kernel(Pixel* out, size_t count, uint32_t topByte, int32_t x, int32_t y) for
// each span of a row, which starts at (x, y).
template <typename Kernel>
void writeRegion(PictureEditor& result, const Region& region, const Kernel& kernel) {
  if (region.isEmpty()) return;
  RowTarget target(result, region);
  const auto width = static_cast<size_t>(region.right - region.left);
  for (int32_t y = region.top; y < region.bottom; ++y) {
    int32_t x = region.left;
    const auto placed = [&](kernels::Pixel* out, size_t count, uint32_t top) {
      kernel(out, count, top, x, y);
      x += static_cast<int32_t>(count);
    };
    rows::mapRow(target, nullptr, width, placed, std::index_sequence<>());
    target.nextRow();
  }
}

// Shows a region of a picture to a kernel, span by span: kernel(const Pixel* in, size_t count)
// answers whether to go on. Pixels that can't be read are left out. True when the kernel never stopped.
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
