// A mask of black rectangles over the coloured areas of a picture that is otherwise gray.

#include <string.h>

#include "operations/operations.h"
#include "picture/rows.h"

namespace {

using kernels::Pixel;

// Columns left .. right and rows top .. bottom, inclusive.
struct Box {
  int32_t left, top, right, bottom;

  bool hasRow(int32_t y) const { return y >= top && y <= bottom; }
};

int32_t smaller(int32_t a, int32_t b) { return a < b ? a : b; }
int32_t larger(int32_t a, int32_t b) { return a > b ? a : b; }

uint8_t* rowOf(const PictureEditor& editor, int32_t y) {
  return editor.format == kFormatHostBitmap ? editor.rowTable[y] : rowAt(editor.firstRow, y, editor.rowBytes);
}

// A row of the source, and the same row of the result if that tells what is covered. Columns are the
// result's.
struct Row {
  const uint8_t *in, *out;
  int32_t inStep, outStep;  // bytes
  int32_t end;              // of the columns that can be read

  bool isColored(int32_t x) const {
    const uint8_t* pixel = in + x * inStep;
    return x < end && (pixel[0] != pixel[1] || pixel[1] != pixel[2]) && out[x * outStep] != 0;
  }
  // The first coloured pixel first <= x < last; `last` if there is none.
  int32_t find(int32_t first, int32_t last) const {
    // In a crowd of small areas the next one is near. No kernel takes pixels of two sizes.
    const bool areAlike = outStep == 0 || outStep == inStep;
    for (const int32_t near = areAlike ? smaller(last, first + 4) : last; first < near; ++first) {
      if (isColored(first)) return first;
    }
    return first < last ? findFar(first, last) : last;
  }
  // The same in a row whose `out` has pixels of the size of `in`, or none.
  int32_t findFar(int32_t first, int32_t last) const;
};

// The coloured pixels of a region that no box covers yet. There is no map: the source tells the colours, and
// what is covered is black in the result. The rows of the result are written from top to bottom, each when a
// box or the search reaches it; before that nothing in it is covered.
class Areas {
 public:
  Areas(const PictureReader& source, PictureWriter& result, const Region& searched)
      : region(searched.isEmpty() ? Region{} : searched),
        source_(source),
        result_(result),
        isLarge_(Region::whole(result).isLarge()) {}

  Row row(int32_t y) const;
  void coverAll();

  const Region region;

 private:
  int32_t start(int32_t y);
  void search(int32_t y, int32_t x);
  void cover(const Box& box);
  void fill(int32_t y, int32_t first, int32_t end, bool white, bool streams) const;

  const PictureReader& source_;
  PictureWriter& result_;
  const bool isLarge_;
  int32_t written_ = 0;  // rows of the result
  // Large boxes: neither searched nor filled again.
  static constexpr int32_t kMostKept = 8;
  Box kept_[kMostKept];
  int32_t keptCount_ = 0;
};

// Which columns beside a box have a coloured pixel in the box's rows. Reads strips of columns, and each pixel
// once.
class Side {
 public:
  // `seed`: the box's first row. direction: -1 for the left side, 1 for the right.
  Side(const Areas& areas, const Row& seed, int32_t direction)
      : areas_(areas), direction_(direction), likely_(seed) {}

  // The box has got a row.
  void addRow(const Row& row) {
    for (int32_t x = first_; x < end_; ++x) {
      if (!row.isColored(x)) continue;
      found_[x - first_] = true;
      likely_ = row;
    }
  }
  bool hasColored(const Box& box, int32_t column) {
    if (column < areas_.region.left || column >= areas_.region.right) return false;
    if (likely_.isColored(column)) return true;
    if (column < first_ || column >= end_) restart(box, column);
    // From below: most areas are wider there.
    while (!found_[column - first_]) {
      if (top_ == box.top) return false;
      addRow(areas_.row(--top_));
    }
    return true;
  }

 private:
  // A box of few rows is not worth many columns.
  void restart(const Box& box, int32_t column) {
    const int32_t columns = smaller(kColumns, box.bottom - box.top + 1);
    first_ = direction_ > 0 ? column : larger(column - columns + 1, areas_.region.left);
    end_ = smaller(first_ + columns, areas_.region.right);
    top_ = box.bottom + 1;
    memset(found_, 0, sizeof found_);
  }

  static constexpr int32_t kColumns = 16;

  const Areas& areas_;
  const int32_t direction_;
  Row likely_;                   // one that had a coloured pixel
  int32_t first_ = 0, end_ = 0;  // columns
  int32_t top_ = 0;              // first of the rows that were read
  bool found_[kColumns];
};

// Grows a box from one coloured pixel and avoids repeated reads: pixels of the row below that were found gray
// are not read again until the box has moved down.
class Growth {
 public:
  Growth(const Areas& areas, int32_t x, int32_t y, const Row& seed, const Row& below)
      : areas_(areas),
        box_{x, y, x, y},
        grayLeft_(x),
        grayEnd_(x),
        below_(below),
        left_(areas, seed, -1),
        right_(areas, seed, 1) {}

  // Each side moves by at most one pixel per round, until none moves. Corners don't count. The top never
  // moves: the seed is the first coloured pixel, so the rows above have none, nor has the pixel to its left.
  Box run() {
    bool left = false, right = true;
    for (bool moved = true; moved;) {
      const bool down = growDown();
      left = (left || down) && left_.hasColored(box_, box_.left - 1);
      box_.left -= left;
      right = (right || down) && right_.hasColored(box_, box_.right + 1);
      box_.right += right;
      moved = down || left || right;
    }
    return box_;
  }

 private:
  bool hasColored(int32_t left, int32_t end) const { return left < end && below_.find(left, end) < end; }
  bool growDown() {
    const int32_t end = box_.right + 1;
    if (!hasColored(box_.left, grayLeft_) && !hasColored(grayEnd_, end)) {
      grayLeft_ = box_.left;
      grayEnd_ = end;
      return false;
    }
    left_.addRow(below_);
    right_.addRow(below_);
    ++box_.bottom;
    grayLeft_ = grayEnd_ = box_.left;
    below_ = areas_.row(box_.bottom + 1);
    if (box_.left < box_.right) {
      // The box will need these; rows are far from one another in memory.
      const Row ahead = areas_.row(smaller(box_.bottom + kAhead, areas_.region.bottom));
      __builtin_prefetch(ahead.in + (box_.left - 8) * ahead.inStep);
      __builtin_prefetch(ahead.in + (box_.right + 8) * ahead.inStep);
    }
    return true;
  }

  static constexpr int32_t kAhead = 5;

  const Areas& areas_;
  Box box_;
  int32_t grayLeft_, grayEnd_;  // columns of the row below known to be gray
  Row below_;
  Side left_, right_;
};

int32_t Row::findFar(int32_t first, int32_t last) const {
  const int32_t readable = smaller(last, end);
  if (first >= readable) return last;
  const auto count = static_cast<size_t>(readable - first);
  const uint8_t *from = in + first * inStep, *to = outStep == 0 ? from : out + first * outStep;
  const size_t found = inStep == sizeof(Pixel)
                           ? kernels::best().findUncovered(reinterpret_cast<const Pixel*>(from),
                                                           reinterpret_cast<const Pixel*>(to), count)
                           : kernels::best().findUncoveredRGB24(from, to, count);
  return found < count ? first + static_cast<int32_t>(found) : last;
}

// The picture's rows are read from row 0 on instead of from the region's top, and the left column lies 4
// bytes a column from a row's start in every format; both on purpose.
Row Areas::row(int32_t y) const {
  static constexpr uint8_t kWhite = 255;
  if (y == region.bottom) return {&kWhite, &kWhite, 0, 0, 0};
  const int32_t step = source_.bytesPerPixel;
  const uint8_t* left = rowOf(source_, y - region.top) + region.left * 4;
  Row row{left - region.left * step, &kWhite, step, 0, region.right};
  if (y < written_) {
    row.out = rowOf(result_, y);
    row.outStep = result_.bytesPerPixel;
  }
  if (step == sizeof(Pixel)) return row;
  // Past the last row nothing can be read.
  const auto start = reinterpret_cast<uintptr_t>(left),
             end = reinterpret_cast<uintptr_t>(rowOf(source_, source_.height - 1) + source_.width * step);
  const auto wanted = static_cast<uintptr_t>((region.right - region.left) * step);
  if (start >= end) {
    row.end = region.left;
  } else if (end - start < wanted) {
    row.end = region.left + static_cast<int32_t>(end - start) / step;
  }
  return row;
}

// Pixels of a row of the result.
void Areas::fill(int32_t y, int32_t first, int32_t end, bool white, bool streams) const {
  if (first >= end) return;
  uint8_t* out = rowOf(result_, y) + first * result_.bytesPerPixel;
  auto size = static_cast<size_t>(end - first) * static_cast<size_t>(result_.bytesPerPixel);
  // A word of white RGB24 pixels is all ones, and one of black ones all zeros.
  const uint32_t top = result_.hasWords() ? result_.topByte()
                       : white            ? 0xFF000000
                                          : 0,
                 word = white ? top | 0xFFFFFF : top;
  if (size > 32) {
    const size_t words = size / sizeof word;
    kernels::best().fill({reinterpret_cast<Pixel*>(out), streams}, words, word);
    out += words * sizeof word;
    size %= sizeof word;
  }
  for (; size >= sizeof word; size -= sizeof word, out += sizeof word) memcpy(out, &word, sizeof word);
  for (; size > 0; --size) *out++ = static_cast<uint8_t>(word);
}

void Areas::cover(const Box& box) {
  // A kept box that has ended, or that this one takes in.
  int32_t i = 0;
  while (i < keptCount_ && kept_[i].bottom >= box.top &&
         (kept_[i].left < box.left || kept_[i].right > box.right))
    ++i;
  const Box black = i < keptCount_ ? kept_[i] : Box{0, 0, 0, -1};
  const int32_t area = (box.right - box.left + 1) * (box.bottom - box.top + 1);
  // Small boxes have neighbours that change the same rows.
  const bool streams = isLarge_ && area >= 1 << 17;
  for (int32_t y = box.top; y <= box.bottom; ++y) {
    if (y >= written_) {
      fill(y, 0, box.left, true, streams);
      fill(y, box.right + 1, result_.width, true, streams);
    }
    const bool isPartBlack = black.hasRow(y);
    if (isPartBlack) fill(y, box.left, black.left, false, streams);
    fill(y, isPartBlack ? black.right + 1 : box.left, box.right + 1, false, streams);
  }
  written_ = larger(written_, box.bottom + 1);
  if (area < 1 << 12) return;
  if (i == kMostKept) --i;
  if (i == keptCount_) ++keptCount_;
  kept_[i] = box;
}

// Writes a row white, while it has no boxes. Returns the first coloured pixel; the region's right if none.
int32_t Areas::start(int32_t y) {
  constexpr int32_t kPiece = 1024;
  int32_t x = 0, seed = region.right;
  if (y >= region.top && y < region.bottom) {
    const Row searched = row(y);
    fill(y, 0, x = region.left, true, isLarge_);
    // In pieces, so that reads and writes overlap.
    for (int32_t end; x < region.right; x = end) {
      end = smaller(x + kPiece, region.right);
      const int32_t found = searched.findFar(x, end);
      if (found < end) {
        seed = found;
        break;
      }
      fill(y, x, end, true, isLarge_);
    }
  }
  fill(y, x, result_.width, true, isLarge_ && seed == region.right);
  written_ = y + 1;
  return seed;
}

// Covers what is coloured in a row from x on, where the rows above are done.
void Areas::search(int32_t y, int32_t x) {
  const Row searched = row(y);
  Row below = row(y + 1);
  while (x < region.right) {
    int32_t end = region.right, skipped = x;
    for (int32_t i = 0; i < keptCount_; ++i) {
      const Box& box = kept_[i];
      if (!box.hasRow(y) || box.right < x) continue;
      if (box.left <= x)
        skipped = larger(skipped, box.right + 1);
      else
        end = smaller(end, box.left);
    }
    if (skipped > x) {
      x = skipped;
      continue;
    }
    x = searched.find(x, end);
    if (x == end) continue;
    // In a crowd most boxes are single pixels.
    if (!searched.isColored(x + 1) && !below.isColored(x)) {
      fill(y, x, x + 1, false, false);
      x += 2;
      continue;
    }
    const Box box = Growth(*this, x, y, searched, below).run();
    cover(box);
    below = row(y + 1);
    x = box.right + 2;  // the pixel between is gray, or the box would be wider
  }
}

void Areas::coverAll() {
  for (int32_t y = 0; y < result_.height; ++y) {
    const bool isSearched = y >= region.top && y < region.bottom;
    const int32_t x = y < written_ ? region.left : start(y);
    if (isSearched) search(y, x);
  }
  kernels::endStreaming();
  if (result_.losesFirstRow()) fill(0, 0, result_.width, false, false);
}

}  // namespace

REALpictureStruct* ExtractColorRectangleMaskZVR(REALpictureStruct* picture, int32_t left, int32_t top,
                                                int32_t width, int32_t height) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  if (width < 0) width = source.width;
  if (height < 0) height = source.height;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  Areas(source, result, Region::cut(left, top, width, height, source)).coverAll();
  return result.RenderPictureWriter();
}

REALpictureStruct* ExtractColorRectangleMaskZVR2(REALpictureStruct* picture) {
  return ExtractColorRectangleMaskZVR(picture, 0, 0, -1, -1);
}
