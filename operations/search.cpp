// Finds a picture in another.

#include <string.h>

#include "operations/operations.h"
#include "picture/rows.h"

namespace {

// An approximate histogram of colours: colours share counters, and only some rows of a large picture are
// counted.
class ColorSample {
 public:
  explicit ColorSample(PictureReader& reader) {
    forSampledRows(reader, [&](uint32_t color, int32_t, int32_t) { ++count_[slot(color)]; });
  }
  uint32_t count(uint32_t color) const { return count_[slot(color)]; }

  // Calls see(color, x, y) for about kPixels pixels in evenly spread rows.
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

// The pixel of the needle to search for first.
struct Anchor {
  int32_t x, y;
  uint32_t color;
};

// Picks a pixel whose colour is rare in the picture, so that few places need a full comparison.
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
        anchors_{0, anchor_.y, picture.width, anchor_.y + lines_},
        walk_(rows::walkOf(anchors_, picture)),
        anchorRow_(picture, anchors_),
        pictureRow_(picture, Region::whole(picture)),
        needleRow_(needle, Region::whole(needle)) {}

  // The first match in row order; false if there is none, with any x and y.
  bool run(int32_t* x, int32_t* y) {
    for (int32_t row = 0; row < walk_.height; ++row) {
      anchorRow_.toRow(anchor_.y + row);
      const bool none =
          rows::scanRow(anchorRow_, 0, walk_.width, [&](const kernels::Pixel* in, size_t count, size_t at) {
            for (size_t i = 0; (i += kernels::best().findColor(in + i, count - i, anchor_.color)) < count;
                 ++i) {
              const auto width = static_cast<size_t>(anchors_.right);
              *x = static_cast<int32_t>((at + i) % width) - anchor_.x;
              *y = static_cast<int32_t>((at + i) / width) + row;
              if (*x >= 0 && *x < columns_ && matches(static_cast<size_t>(*x), *y)) return false;
            }
            return true;
          });
      if (!none) return true;
    }
    return false;
  }

 private:
  // Compares the anchor's row first: rows near a rare pixel are more distinctive than those at an edge.
  bool matches(size_t left, int32_t top) {
    for (int32_t i = 0, y = anchor_.y; i < height_; ++i, y = y + 1 < height_ ? y + 1 : 0) {
      needleRow_.toRow(y);
      pictureRow_.toRow(top + y);
      if (!rowMatches(left)) return false;
    }
    return true;
  }

  // Most places differ within a few pixels, so compares those first and unpacks little.
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
  int32_t columns_, lines_;  // number of positions of its top left corner
  Anchor anchor_;
  Region anchors_;   // where it may lie, in whole rows
  rows::Walk walk_;  // of that region
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
