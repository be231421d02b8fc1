// Scrolls a picture's pixels in place: sideways, up or down.

#include "frame/held.h"
#include "frame/memory.h"
#include "kernels/kernels.h"
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

// The rows of a picture, counted from the top or from the bottom. Those of a host bitmap need not be
// contiguous.
struct Rows {
  PictureEditor& editor;
  bool fromBottom;

  int32_t placeOf(int32_t y) const { return fromBottom ? editor.height - 1 - y : y; }
  uint8_t* at(int32_t y) const { return editor.GetRow(placeOf(y)); }
  // The bytes that move with a row. Rows of a surface include their padding, but the bytes after the pixels
  // of the last row, or of any row of a host bitmap, may belong to others.
  size_t size(int32_t y) const {
    const bool endsWithPixels = editor.format == kFormatHostBitmap || placeOf(y) == editor.height - 1;
    return static_cast<size_t>(endsWithPixels ? pixelBytes(editor) : editor.rowBytes);
  }
  void whiten(int32_t y) const { FillMemory(at(y), size(y), kWhite); }
};

bool whiten(PictureEditor& editor) {
  for (int32_t y = 0; y < editor.height; ++y) Rows{editor, false}.whiten(y);
  return true;
}

// Visits every row, in rings: each row is followed by the one `step` below it, modulo the height. After the
// last ring come some of them again.
struct Tour {
  int32_t height, step;  // 1 to `height`
  int32_t start = 0, y = 0;

  int32_t next() const { return y < height - step ? y + step : y - (height - step); }
  void advance() {
    y = next();
    if (y == start) y = start = start + 1 < step ? start + 1 : 0;
  }
};

// Smaller pictures mostly lie in the cache already.
constexpr int64_t kFetchedFrom = 512 << 10;  // bytes

// Tells a kernel which rows to fetch while it moves others: the four after the current four.
class Fetcher {
 public:
  // `tour` begins with the first row that is read, and rows before `firstRead` are never read.
  Fetcher(const Rows& rows, const Tour& tour, int32_t firstRead)
      : rows_(rows),
        tour_(tour),
        firstRead_(firstRead),
        isUseful_(pixelBytes(rows.editor) * rows.editor.height >= kFetchedFrom),
        soon_{{}, kernels::shouldStream(int64_t{rows.editor.width} * rows.editor.height)} {
    if (isUseful_) lookAhead();
  }
  // To be called for every row that is read.
  kernels::Soon* forNextRow() {
    if (!isUseful_) return nullptr;
    if (count_++ % kernels::kPlaces == 0) lookAhead();
    return &soon_;
  }

 private:
  void lookAhead() {
    for (uintptr_t& place : soon_.places) {
      while (tour_.y < firstRead_) tour_.advance();
      place = reinterpret_cast<uintptr_t>(rows_.at(tour_.y));
      tour_.advance();
    }
  }

  Rows rows_;
  Tour tour_;
  int32_t firstRead_;
  bool isUseful_;
  size_t count_ = 0;
  kernels::Soon soon_;
};

bool moveSideways(PictureEditor& editor, int32_t delta, bool wrap) {
  if (!wrap && leavesNothing(delta, editor.width)) return whiten(editor);
  const int32_t shift = wrap ? turnOf(delta, editor.width) : delta;
  Scratch saved(pixelBytes(editor));
  // Out of memory the picture stays unchanged, and that counts as success, on purpose.
  if (shift == 0 || !saved) return true;
  const auto uncovered = static_cast<size_t>(shift < 0 ? -shift : shift) * 4,
             others = static_cast<size_t>(pixelBytes(editor)) - uncovered;
  const auto move = kernels::best().move;
  const Rows rows{editor, false};
  Fetcher fetcher(rows, {editor.height, 1}, 0);
  for (int32_t y = 0; y < editor.height; ++y) {
    uint8_t* const row = rows.at(y);
    kernels::Soon* const soon = fetcher.forNextRow();
    if (wrap) move(saved.get(), shift < 0 ? row : row + others, uncovered, soon);
    move(shift < 0 ? row : row + uncovered, shift < 0 ? row + uncovered : row, others, soon);
    uint8_t* const free = shift < 0 ? row + others : row;
    if (wrap) {
      MoveMemory(free, saved.get(), uncovered);
    } else {
      FillMemory(free, uncovered, kWhite);
    }
  }
  return true;
}

// Moves rows up by `step`. Each moves straight to its place, right after that place's old row has moved to
// its own, so that the place still lies in the cache. With `saved`, room for a row, rows wrap.
void moveUp(const Rows& rows, int32_t step, uint8_t* saved) {
  Tour tour{rows.editor.height, step}, read = tour;
  read.advance();
  Fetcher fetcher(rows, read, saved ? 0 : step);
  const auto move = kernels::best().move;
  for (int32_t i = 0; i < rows.editor.height; ++i, tour.advance()) {
    const int32_t to = tour.y, from = tour.next();
    if (saved && to == tour.start) MoveMemory(saved, rows.at(to), rows.size(to));
    if (saved || from > to) {
      const size_t target = rows.size(to), source = rows.size(from);
      move(rows.at(to), saved && from == tour.start ? saved : rows.at(from),
           target < source ? target : source, fetcher.forNextRow());
    } else {
      rows.whiten(to);
    }
  }
}

bool moveVertically(PictureEditor& editor, int32_t delta, bool wrap) {
  if (!wrap && leavesNothing(delta, editor.height)) return whiten(editor);
  const int32_t shift = wrap ? turnOf(delta, editor.height) : delta;
  if (shift == 0) return true;
  Scratch saved;
  // Asks for much more than the one row that is used, on purpose: for all rows but those that wrap when
  // scrolling down and for the whole picture when scrolling up. If that fails, nothing is scrolled.
  if (wrap && !saved.allocate(int64_t{shift > 0 ? editor.height - shift : editor.height} * editor.rowBytes))
    return false;
  moveUp({editor, shift > 0}, shift < 0 ? -shift : shift, saved.get());
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
