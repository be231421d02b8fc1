// Finding a picture in another.

#include <string.h>

#include "operations/operations.h"
#include "picture/rows.h"

namespace {

// How often a picture has which colour, roughly: colours share counters, and of a large picture only some
// rows are counted.
class ColorSample {
 public:
  explicit ColorSample(PictureReader& reader) {
    forSampledRows(reader, [&](uint32_t color, int32_t, int32_t) { ++count_[slot(color)]; });
  }
  uint32_t count(uint32_t color) const { return count_[slot(color)]; }

  // Shows the pixels of evenly spread rows, about kPixels of them: see(color, x, y).
  template <typename See>
  static void forSampledRows(PictureReader& reader, const See& see) {
    constexpr int64_t kPixels = 65536;
    const Region whole = Region::whole(reader);
    const int64_t step = 1 + int64_t{whole.right} * whole.bottom / kPixels;
    RowSource row(reader, whole);
    for (int64_t y = 0; y < whole.bottom; y += step) {
      row.toRow(static_cast<int32_t>(y));
      rows::scanRow(row, 0, static_cast<size_t>(whole.right),
                    [&](const kernels::Pixel* in, size_t count, size_t x) {
                      for (size_t i = 0; i < count; ++i) {
                        see(in[i] & 0xFFFFFF, static_cast<int32_t>(x + i), static_cast<int32_t>(y));
                      }
                      return true;
                    });
    }
  }

 private:
  static constexpr int kSlotBits = 12;
  static uint32_t slot(uint32_t color) { return color * 0x9E3779B1 >> (32 - kSlotBits); }

  uint32_t count_[1 << kSlotBits] = {};
};

// The pixel of the needle that is looked for first.
struct Anchor {
  int32_t x, y;
  uint32_t color;
};

// A pixel whose colour the picture seldom has, so that few places need a closer look.
Anchor chooseAnchor(PictureReader& picture, PictureReader& needle) {
  const ColorSample sample(picture);
  Anchor anchor = {};
  uint32_t rarest = UINT32_MAX;
  ColorSample::forSampledRows(needle, [&](uint32_t color, int32_t x, int32_t y) {
    const uint32_t count = sample.count(color);
    if (count >= rarest) return;
    rarest = count;
    anchor = {x, y, color};
  });
  return anchor;
}

class Search {
 public:
  Search(PictureReader& picture, PictureReader& needle)
      : width_(needle.width),
        height_(needle.height),
        columns_(picture.width - needle.width + 1),
        lines_(picture.height - needle.height + 1),
        anchor_(chooseAnchor(picture, needle)),
        anchorRow_(picture, Region::whole(picture)),
        pictureRow_(picture, Region::whole(picture)),
        needleRow_(needle, Region::whole(needle)) {}

  // The first match row by row; false when there is none.
  bool run(int32_t* x, int32_t* y) {
    for (int32_t top = 0; top < lines_; ++top) {
      anchorRow_.toRow(top + anchor_.y);
      const auto first = static_cast<size_t>(anchor_.x), end = first + static_cast<size_t>(columns_);
      const bool none =
          rows::scanRow(anchorRow_, first, end, [&](const kernels::Pixel* in, size_t count, size_t at) {
            const size_t found = findAnchor(in, count, at - first, top);
            if (found < count) *x = static_cast<int32_t>(at - first + found);
            return found == count;
          });
      if (none) continue;
      *y = top;
      return true;
    }
    return false;
  }

 private:
  // The first of the pixels that is the anchor of a match, or `count`. The first of them belongs to the
  // needle's left edge at `left`.
  size_t findAnchor(const kernels::Pixel* in, size_t count, size_t left, int32_t top) {
    size_t i = 0;
    while ((i += kernels::best().findColor(in + i, count - i, anchor_.color)) < count) {
      if (matches(left + i, top)) return i;
      ++i;
    }
    return count;
  }

  // The anchor's row comes first: around a rare pixel there is more to tell places apart by than at an edge.
  bool matches(size_t left, int32_t top) {
    for (int32_t i = 0, y = anchor_.y; i < height_; ++i, y = y + 1 < height_ ? y + 1 : 0) {
      needleRow_.toRow(y);
      pictureRow_.toRow(top + y);
      if (!rowMatches(left)) return false;
    }
    return true;
  }

  // Most places differ within a few pixels: those first, so that little is unpacked for them.
  bool rowMatches(size_t left) {
    constexpr size_t kFirst = 16;
    const auto width = static_cast<size_t>(width_);
    size_t limit = kFirst;
    for (size_t x = 0, count; x < width; x += count, limit = RowSource::kTile) {
      count = width - x < limit ? width - x : limit;
      if (!kernels::best().areEqual(pictureRow_.span(left + x, count), needleRow_.span(x, count), count))
        return false;
    }
    return true;
  }

  int32_t width_, height_;   // of the needle
  int32_t columns_, lines_;  // where its top left corner can lie
  Anchor anchor_;
  RowSource anchorRow_, pictureRow_, needleRow_;
};

}  // namespace

RBBoolean FindPicture(REALpictureStruct* picture, REALpictureStruct* needle, int32_t* x, int32_t* y) {
  int32_t foundX = 0, foundY = 0;
  if (x) *x = 0;
  if (y) *y = 0;
  PictureReader source, wanted;
  if (!source.GetPictureReader(picture) || !wanted.GetPictureReader(needle)) return false;
  // A needle without pixels is not found.
  if (wanted.width < 1 || wanted.height < 1) return false;
  if (wanted.width > source.width || wanted.height > source.height) return false;
  if (!Search(source, wanted).run(&foundX, &foundY)) return false;
  if (x) *x = foundX;
  if (y) *y = foundY;
  return true;
}
