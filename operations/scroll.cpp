// Scrolls a picture's pixels in place: sideways, up or down.

#include <numeric>

#include "frame/held.h"
#include "frame/memory.h"
#include "operations/operations.h"
#include "picture/editor.h"

namespace {

constexpr uint8_t kWhite = 255;

// Moves a picture that is open for writing; false if running out of memory counts as failure.
using Move = bool(PictureEditor& editor, int32_t delta, bool wrap);

struct Direction {
  Move* move;
  // The result for a picture that can't be scrolled: true sideways and false up and down, on purpose.
  bool whenUnusable;
};

bool scroll(REALpictureStruct* picture, int32_t delta, bool wrap, bool withMask, const Direction& direction) {
  if (withMask && picture) {
    Held<REALpictureStruct> mask(REALGetPictureMask(picture, false));
    if (mask && !scroll(mask.get(), delta, wrap, false, direction)) return false;
  }
  if (delta == 0) return true;
  PictureEditor editor;
  if (!editor.GetPictureEditor(picture) || editor.width < 1 || editor.height < 1)
    return direction.whenUnusable;
  return direction.move(editor, delta, wrap);
}

// The rotation of `extent` places equivalent to `delta`, in the direction that takes at most about half of
// them.
int32_t turnOf(int32_t delta, int32_t extent) {
  const int32_t half = extent / 2;
  int32_t turn = delta % extent;
  if (turn >= half) turn -= extent;
  if (-half >= turn) turn += extent;
  return turn;
}

bool leavesNothing(int32_t delta, int32_t extent) { return delta >= extent || delta <= -extent; }

int64_t pixelBytes(const PictureEditor& editor) { return int64_t{editor.width} * 4; }

// The bytes that move with a row. Rows of a surface include their padding, but the bytes after the pixels of
// the last row, or of any row of a host bitmap, may belong to others.
size_t bytesOfRow(const PictureEditor& editor, int32_t y) {
  const bool endsWithPixels = editor.format == kFormatHostBitmap || y == editor.height - 1;
  return static_cast<size_t>(endsWithPixels ? pixelBytes(editor) : editor.rowBytes);
}

void whitenRows(PictureEditor& editor, int32_t first, int32_t count) {
  for (int32_t y = first; y < first + count; ++y) FillMemory(editor.GetRow(y), bytesOfRow(editor, y), kWhite);
}

// ---- Sideways ----

// Moves the first `first` bytes of a row after the others. Saves the smaller of the two parts in `saved`.
void rotateRow(uint8_t* row, size_t first, size_t size, uint8_t* saved) {
  const size_t others = size - first;
  if (first < others) {
    MoveMemory(saved, row, first);
    MoveMemory(row, row + first, others);
    MoveMemory(row + others, saved, first);
  } else {
    MoveMemory(saved, row + first, others);
    MoveMemory(row + others, row, first);
    MoveMemory(row, saved, others);
  }
}

// The hardware prefetcher stops at the end of a page, and doesn't adapt when moves change direction.
void prefetchRow(uintptr_t row, size_t size) {
  for (size_t i = 0; i < size; i += 64) __builtin_prefetch(reinterpret_cast<void*>(row + i), 1);
}

bool moveSideways(PictureEditor& editor, int32_t delta, bool wrap) {
  if (!wrap && leavesNothing(delta, editor.width)) {
    whitenRows(editor, 0, editor.height);
    return true;
  }
  const int32_t shift = wrap ? turnOf(delta, editor.width) : delta;
  Scratch saved(pixelBytes(editor));
  // Out of memory the picture stays unchanged, and that counts as success, on purpose.
  if (shift == 0 || !saved) return true;
  const auto size = static_cast<size_t>(pixelBytes(editor));
  const auto uncovered = static_cast<size_t>(shift < 0 ? -shift : shift) * 4;
  for (int32_t y = 0; y < editor.height; ++y, editor.AddPixelRow()) {
    prefetchRow(reinterpret_cast<uintptr_t>(editor.row) + static_cast<uintptr_t>(editor.rowBytes), size);
    rotateRow(editor.row, shift < 0 ? uncovered : size - uncovered, size, saved.get());
    if (!wrap) FillMemory(shift < 0 ? editor.row + size - uncovered : editor.row, uncovered, kWhite);
  }
  return true;
}

// ---- Up and down ----

// Rows don't overlap. `rep movsl` need not read the cache lines that it overwrites.
void copyRow(uint8_t* to, const uint8_t* from, size_t size) {
  size_t words = size / 4;
  __asm__ volatile("rep movsl" : "+D"(to), "+S"(from), "+c"(words) : : "memory");
  MoveMemory(to, from, size % 4);
}

// Row by row, because rows of a host bitmap need not be contiguous.
void moveRow(PictureEditor& editor, int32_t to, int32_t from) {
  const size_t target = bytesOfRow(editor, to), source = bytesOfRow(editor, from);
  copyRow(editor.GetRow(to), editor.GetRow(from), target < source ? target : source);
}

void moveRows(PictureEditor& editor, int32_t to, int32_t from, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    const int32_t step = to < from ? i : count - 1 - i;
    moveRow(editor, to + step, from + step);
  }
}

// Moves the first `first` rows after the others. Each row moves straight to its place, right after that
// place's old row has moved to its own; so only one row of `saved`, which has room for many, is used.
void rotateRows(PictureEditor& editor, int32_t first, uint8_t* saved) {
  const int32_t others = editor.height - first, rings = std::gcd(first, others);
  for (int32_t start = 0; start < rings; ++start) {
    const size_t size = bytesOfRow(editor, start);
    copyRow(saved, editor.GetRow(start), size);
    int32_t to = start;
    const auto next = [=](int32_t y) { return y < others ? y + first : y - others; };
    for (int32_t from = next(to); from != start; from = next(to)) {
      moveRow(editor, to, from);
      to = from;
    }
    const size_t target = bytesOfRow(editor, to);
    copyRow(editor.GetRow(to), saved, target < size ? target : size);
  }
}

bool turnVertically(PictureEditor& editor, int32_t delta) {
  const int32_t turn = turnOf(delta, editor.height);
  if (turn == 0) return true;
  const int32_t first = turn > 0 ? editor.height - turn : -turn;
  // Allocates room for `first` rows when scrolling down but for the whole picture when scrolling up, on
  // purpose: if that fails, nothing is scrolled.
  Scratch saved(int64_t{turn > 0 ? first : editor.height} * editor.rowBytes);
  if (!saved) return false;
  rotateRows(editor, first, saved.get());
  return true;
}

bool moveVertically(PictureEditor& editor, int32_t delta, bool wrap) {
  if (wrap) return turnVertically(editor, delta);
  const int32_t height = editor.height;
  if (leavesNothing(delta, height)) {
    whitenRows(editor, 0, height);
  } else if (delta < 0) {
    moveRows(editor, 0, -delta, height + delta);
    whitenRows(editor, height + delta, -delta);
  } else {
    moveRows(editor, delta, 0, height - delta);
    whitenRows(editor, 0, delta);
  }
  return true;
}

constexpr Direction kSideways = {moveSideways, true};
constexpr Direction kVertically = {moveVertically, false};

}  // namespace

RBBoolean ScrollHorizontalZVR(REALpictureStruct* picture, int32_t delta, RBBoolean wrap,
                              RBBoolean scrollMask) {
  return scroll(picture, delta, wrap, scrollMask, kSideways);
}

RBBoolean ScrollVerticalZVR(REALpictureStruct* picture, int32_t delta, RBBoolean wrap, RBBoolean scrollMask) {
  return scroll(picture, delta, wrap, scrollMask, kVertically);
}

// With a mask, each direction moves first the mask and then the picture.
RBBoolean ScrollZVR(REALpictureStruct* picture, int32_t deltaX, int32_t deltaY, RBBoolean wrap,
                    RBBoolean scrollMask) {
  return ScrollHorizontalZVR(picture, deltaX, wrap, scrollMask) &&
         ScrollVerticalZVR(picture, deltaY, wrap, scrollMask);
}
