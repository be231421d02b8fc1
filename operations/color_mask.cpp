// A mask of black rectangles over the coloured areas of a picture that is otherwise gray.

#include <string.h>

#include "frame/memory.h"
#include "operations/operations.h"
#include "picture/rows.h"

namespace {

enum Cell : uint8_t { kGray = 0, kColored = 1, kCovered = 2 };

// Columns left .. right and rows top .. bottom of a map, inclusive.
struct Box {
  ptrdiff_t left, top, right, bottom;
};

// One cell per pixel, surrounded by a ring of gray sentinels so that a box can't grow out of the picture:
// pixel (x, y) is the cell in column x + 1 of row y + 1.
class ColorMap {
 public:
  ColorMap(int32_t width, int32_t height)
      : stride_(ptrdiff_t{width} + 2),
        size_((int64_t{width} + 2) * (int64_t{height} + 2)),
        memory_(size_ + 2 * kMargin),
        cells_(memory_ ? memory_.get() + kMargin : nullptr) {}
  explicit operator bool() const { return static_cast<bool>(memory_); }

  uint8_t* pixel(int32_t x, int32_t y) const { return row(ptrdiff_t{y} + 1) + x + 1; }
  uint8_t* row(ptrdiff_t y) const { return cells_ + y * stride_; }

  // The first coloured cell from `from` on in row order, or null. A null `from` means the first cell.
  uint8_t* findColored(const uint8_t* from) const {
    if (!from) from = cells_;
    const auto left = static_cast<size_t>(cells_ + size_ - from);
    return const_cast<uint8_t*>(static_cast<const uint8_t*>(memchr(from, kColored, left)));
  }
  bool hasColored(ptrdiff_t y, ptrdiff_t left, ptrdiff_t end) const {
    return left < end && memchr(row(y) + left, kColored, static_cast<size_t>(end - left));
  }
  Box at(const uint8_t* cell) const {
    const ptrdiff_t offset = cell - cells_, x = offset % stride_, y = offset / stride_;
    return {x, y, x, y};
  }
  void cover(const Box& box) const {
    for (ptrdiff_t y = box.top; y <= box.bottom; ++y)
      memset(row(y) + box.left, kCovered, static_cast<size_t>(box.right - box.left + 1));
  }

 private:
  // Lets callers read eight cells at once wherever they may read one.
  static constexpr ptrdiff_t kMargin = 8;

  ptrdiff_t stride_;
  int64_t size_;
  Scratch memory_;
  uint8_t* cells_;
};

// Which of eight neighbouring columns have a coloured cell in a box's rows: the OR of eight cells per row. A
// column outside the map contains cells of other rows, but no box gets that far.
class Strip {
 public:
  Strip(const ColorMap& map, const Box& box, ptrdiff_t first) : map_(map) { gather(box, first); }

  void gather(const Box& box, ptrdiff_t first) {
    first_ = first;
    cells_ = 0;
    for (ptrdiff_t y = box.top; y <= box.bottom; ++y) addRow(y);
  }
  void addRow(ptrdiff_t y) {
    uint64_t eight;
    memcpy(&eight, map_.row(y) + first_, sizeof eight);
    cells_ |= eight;
  }
  bool covers(ptrdiff_t column) const { return column >= first_ && column < first_ + kColumns; }
  bool hasColored(ptrdiff_t column) const { return (cells_ >> 8 * (column - first_) & kColored) != 0; }

  static constexpr ptrdiff_t kColumns = 8;

 private:
  const ColorMap& map_;
  ptrdiff_t first_;
  uint64_t cells_;
};

// Grows a box from one coloured cell and avoids repeated reads: cells of the row below that were found gray
// are not read again until the box has moved down.
class Growth {
 public:
  Growth(const ColorMap& map, const Box& seed)
      : map_(map),
        box_(seed),
        grayLeft_(seed.left),
        grayEnd_(seed.left),
        left_(map, seed, seed.left - Strip::kColumns),
        right_(map, seed, seed.right + 1) {}

  // Each side moves by at most one cell per round, until none moves. Corners don't count. The top never
  // moves: the seed is the first coloured cell of the map, so the rows above have none.
  Box run() {
    for (bool moved = true; moved;) {
      const bool down = growDown(), left = growLeft(), right = growRight();
      moved = down || left || right;
    }
    return box_;
  }

 private:
  bool growDown() {
    const ptrdiff_t below = box_.bottom + 1, end = box_.right + 1;
    if (!map_.hasColored(below, box_.left, grayLeft_) && !map_.hasColored(below, grayEnd_, end)) {
      grayLeft_ = box_.left;
      grayEnd_ = end;
      return false;
    }
    box_.bottom = below;
    grayLeft_ = grayEnd_ = box_.left;
    left_.addRow(below);
    right_.addRow(below);
    return true;
  }

  bool growLeft() {
    const ptrdiff_t column = box_.left - 1;
    if (!left_.covers(column)) left_.gather(box_, column - Strip::kColumns + 1);
    if (!left_.hasColored(column)) return false;
    box_.left = column;
    return true;
  }

  bool growRight() {
    const ptrdiff_t column = box_.right + 1;
    if (!right_.covers(column)) right_.gather(box_, column);
    if (!right_.hasColored(column)) return false;
    box_.right = column;
    return true;
  }

  const ColorMap& map_;
  Box box_;
  ptrdiff_t grayLeft_, grayEnd_;  // columns of the row below known to be gray
  Strip left_, right_;
};

// Marks the coloured pixels of a rectangle. It reads the given columns, but the picture's rows from row 0 on
// instead of from `top`, on purpose.
void mark(const ColorMap& map, PictureReader& source, const Region& region) {
  if (region.isEmpty()) return;
  RowSource row(source, {region.left, 0, region.right, region.bottom - region.top});
  const auto width = static_cast<size_t>(region.right - region.left);
  for (int32_t y = region.top; y < region.bottom; ++y, row.nextRow()) {
    uint8_t* cells = map.pixel(region.left, y);
    rows::scanRow(row, 0, width, [&](const kernels::Pixel* in, size_t count, size_t x) {
      kernels::best().markColored(cells + x, in, count, kColored);
      return true;
    });
  }
}

}  // namespace

REALpictureStruct* ExtractColorRectangleMaskZVR(REALpictureStruct* picture, int32_t left, int32_t top,
                                                int32_t width, int32_t height) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  if (width < 0) width = source.width;
  if (height < 0) height = source.height;
  const ColorMap map(source.width, source.height);
  if (!map) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  mark(map, source, Region::cut(left, top, width, height, source));
  // Everything before a seed is gray or covered, so the search resumes there.
  for (const uint8_t* seed = nullptr; (seed = map.findColored(seed));) {
    map.cover(Growth(map, map.at(seed)).run());
  }
  writeRegion(result, Region::whole(result),
              [&](kernels::Output out, size_t count, uint32_t topByte, int32_t x, int32_t y) {
                kernels::best().blackWhere(out, map.pixel(x, y), count, kCovered, topByte);
              });
  return result.RenderPictureWriter();
}

REALpictureStruct* ExtractColorRectangleMaskZVR2(REALpictureStruct* picture) {
  return ExtractColorRectangleMaskZVR(picture, 0, 0, -1, -1);
}
