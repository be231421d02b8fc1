// Graphics objects: drawing into a picture's storage, clipped to it.

#include <algorithm>
#include <cmath>

#include "host/entry_points.h"
#include "host/pictures/views.h"

namespace host {
namespace {

// The span [first, last) of a side of the picture that [start, start + length) covers, in 64 bits.
struct Span {
  Span(int64_t start, int64_t length, int64_t limit)
      : first(static_cast<int32_t>(std::clamp<int64_t>(start, 0, limit))),
        last(static_cast<int32_t>(std::clamp<int64_t>(start + std::max<int64_t>(length, 0), first, limit))) {}
  int32_t first, last;
};

struct Pen {
  const Picture* picture = nullptr;  // null: draws nothing
  uint32_t word = 0;
  int32_t width = 1, height = 1;

  void fill(int64_t x, int64_t y, int64_t w, int64_t h) const {
    const Span columns(x, w, picture->width), rows(y, h, picture->height);
    for (int32_t row = rows.first; row < rows.last; ++row) {
      std::fill(picture->row(row) + columns.first, picture->row(row) + columns.last, word);
    }
  }
};

int32_t wholeProperty(const Object& object, const char* name) {
  PropertyValue value = int64_t{0};
  object.readProperty(name, value);
  return static_cast<int32_t>(std::get<int64_t>(value));
}

Pen penOf(REALgraphicsStruct* handle) {
  const auto* graphics = find<Graphics>(handle, "draw");
  if (!graphics) return {};
  const auto color = static_cast<uint32_t>(wholeProperty(*graphics, "ForeColor"));
  return {find<Picture>(graphics->picture.get(), "draw into"), opaqueTop() | (color & 0xFFFFFF),
          wholeProperty(*graphics, "PenWidth"), wholeProperty(*graphics, "PenHeight")};
}

// A line's points, one for each step along its longer side: `a` counts along that side, `b` across it.
struct Line {
  bool steep;
  int64_t a1, b1, a2, b2;

  Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2)
      : steep(std::abs(int64_t{y2} - y1) > std::abs(int64_t{x2} - x1)),
        a1(steep ? y1 : x1),
        b1(steep ? x1 : y1),
        a2(steep ? y2 : x2),
        b2(steep ? x2 : y2) {
    if (a1 <= a2) return;
    std::swap(a1, a2);
    std::swap(b1, b2);
  }
  int64_t at(int64_t a) const {
    const auto run = static_cast<double>(std::max<int64_t>(a2 - a1, 1)), rise = static_cast<double>(b2 - b1);
    return b1 + std::llround(static_cast<double>(a - a1) * rise / run);
  }

  // Points next to one another, none when `last` lies before `first`.
  struct Part {
    int64_t first, last;  // as `a`
  };
  // The points from row `top` to row `bottom`.
  Part between(int64_t top, int64_t bottom) const {
    if (steep) return {std::max(a1, top), std::min(a2, bottom)};
    // Rows only grow, or only shrink, along the line.
    if (b1 <= b2) {
      return {firstWhere([&](int64_t row) { return row >= top; }),
              firstWhere([&](int64_t row) { return row > bottom; }) - 1};
    }
    return {firstWhere([&](int64_t row) { return row <= bottom; }),
            firstWhere([&](int64_t row) { return row < top; }) - 1};
  }

 private:
  // The first point whose `b` passes a test that all later ones pass too; behind the last when none does.
  template <typename Test>
  int64_t firstWhere(Test passes) const {
    int64_t low = a1, high = a2 + 1;
    while (low < high) {
      const int64_t middle = low + (high - low) / 2;
      passes(at(middle)) ? high = middle : low = middle + 1;
    }
    return low;
  }
};

// The pen hangs to the right of and below each point. In a row of the picture it covers one run of pixels,
// since the points that reach the row are neighbours: each row is filled once, however long the line and wide
// the pen. All four coordinates are any 32-bit numbers.
void drawLine(REALgraphicsStruct* handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  const Pen pen = penOf(handle);
  if (!pen.picture || pen.width < 1 || pen.height < 1) return;
  const Line line(x1, y1, x2, y2);
  const int64_t top = std::min(y1, y2), bottom = std::max(y1, y2);
  const Span rows(top, bottom - top + pen.height, pen.picture->height);
  for (int64_t row = rows.first; row < rows.last; ++row) {
    const auto [first, last] = line.between(row - pen.height + 1, row);
    if (first > last) continue;
    const auto [left, right] =
        line.steep ? std::minmax({line.at(first), line.at(last)}) : std::pair{first, last};
    pen.fill(left, row, right - left + pen.width, 1);
  }
}

void drawString(REALgraphicsStruct* handle, REALstringStruct* text, int32_t, int32_t) {
  if (find<Graphics>(handle, "draw text")) noteDrawnText(stringBytes(text));
}

void* platformContext(REALgraphicsStruct*) { return nullptr; }

void drawPart(REALgraphicsStruct* handle, REALpictureStruct* image, int32_t x, int32_t y, int32_t w,
              int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh) {
  constexpr int32_t kWhole = -10000;  // the declared default: the source's own size
  const auto* graphics = find<Graphics>(handle, "draw picture");
  const auto* source = find<Picture>(image, "draw picture");
  auto* target = graphics ? find<Picture>(graphics->picture.get(), "draw into") : nullptr;
  if (!source || !target) return;
  drawPicture(*target, *source, {x, y, w, h},
              {sx, sy, sw == kWhole ? source->width : sw, sh == kWhole ? source->height : sh});
}

// The rectangle is left, top, right and bottom; the last argument is ignored.
RBBoolean drawInRectangle(REALgraphicsStruct* handle, REALpictureStruct* image, const int32_t* rectangle,
                          int32_t) {
  const auto* source = find<Picture>(image, "draw picture");
  if (!source || !rectangle) return 0;
  drawPart(handle, image, rectangle[0], rectangle[1], rectangle[2] - rectangle[0],
           rectangle[3] - rectangle[1], 0, 0, source->width, source->height);
  return 1;
}

// ---- Shapes ----

void fillRect(REALgraphicsStruct* handle, int32_t x, int32_t y, int32_t w, int32_t h) {
  const Pen pen = penOf(handle);
  if (pen.picture) pen.fill(x, y, w, h);
}

void clearRect(REALgraphicsStruct* handle, int32_t x, int32_t y, int32_t w, int32_t h) {
  Pen pen = penOf(handle);
  pen.word = opaqueTop() | 0xFFFFFF;
  if (pen.picture) pen.fill(x, y, w, h);
}

// A rectangle with elliptic corners: the inside of one lies a pen's width within another.
struct RoundShape {
  double x, y, w, h, arcWidth, arcHeight;

  bool contains(int32_t column, int32_t row) const {
    const double px = column + 0.5 - x, py = row + 0.5 - y;
    if (px < 0 || py < 0 || px > w || py > h) return false;
    const double rx = std::min(arcWidth, w) / 2, ry = std::min(arcHeight, h) / 2;
    const double dx = std::max({rx - px, px - (w - rx), 0.0}), dy = std::max({ry - py, py - (h - ry), 0.0});
    return rx <= 0 || ry <= 0 || dx * dx / (rx * rx) + dy * dy / (ry * ry) <= 1;
  }
  RoundShape within(double dx, double dy) const {
    return {x + dx,
            y + dy,
            w - 2 * dx,
            h - 2 * dy,
            std::max(arcWidth - 2 * dx, 0.0),
            std::max(arcHeight - 2 * dy, 0.0)};
  }
};

void drawShape(REALgraphicsStruct* handle, const RoundShape& shape, bool filled) {
  const Pen pen = penOf(handle);
  if (!pen.picture || shape.w <= 0 || shape.h <= 0) return;
  const RoundShape hole = shape.within(pen.width, pen.height);
  const auto side = [](double length) { return static_cast<int64_t>(length); };
  const Span columns(side(shape.x), side(shape.w), pen.picture->width);
  const Span rows(side(shape.y), side(shape.h), pen.picture->height);
  for (int32_t y = rows.first; y < rows.last; ++y) {
    for (int32_t x = columns.first; x < columns.last; ++x) {
      if (shape.contains(x, y) && (filled || !hole.contains(x, y))) pen.picture->row(y)[x] = pen.word;
    }
  }
}

template <bool filled>
void roundRect(REALgraphicsStruct* handle, int32_t x, int32_t y, int32_t w, int32_t h, int32_t arcWidth,
               int32_t arcHeight) {
  const auto side = [](int32_t length) { return static_cast<double>(length); };
  drawShape(handle, {side(x), side(y), side(w), side(h), side(arcWidth), side(arcHeight)}, filled);
}
template <bool filled>
void oval(REALgraphicsStruct* handle, int32_t x, int32_t y, int32_t w, int32_t h) {
  roundRect<filled>(handle, x, y, w, h, w, h);
}
void drawRect(REALgraphicsStruct* handle, int32_t x, int32_t y, int32_t w, int32_t h) {
  roundRect<false>(handle, x, y, w, h, 0, 0);
}

}  // namespace

Graphics::Graphics(PictureRef target) : Object("Graphics"), picture(std::move(target)) {
  properties = {{"ForeColor", int64_t{0}}, {"PenWidth", int64_t{1}},  {"PenHeight", int64_t{1}},
                {"TextFont", Text{}},      {"TextSize", int64_t{12}}, {"Bold", false},
                {"Italic", false},         {"Underline", false}};
}

void drawPicture(Picture& target, const Picture& source, Rectangle to, Rectangle from) {
  if (source.oddities.copiesRefuseToo) target.oddities.refusesLock = target.oddities.copiesRefuseToo = true;
  if (to.width < 1 || to.height < 1 || from.width < 1 || from.height < 1) return;
  const Span columns(to.x, to.width, target.width), rows(to.y, to.height, target.height);
  for (int32_t y = rows.first; y < rows.last; ++y) {
    const int64_t fromY = from.y + (int64_t{y} - to.y) * from.height / to.height;
    if (fromY < 0 || fromY >= source.height) continue;
    for (int32_t x = columns.first; x < columns.last; ++x) {
      const int64_t fromX = from.x + (int64_t{x} - to.x) * from.width / to.width;
      if (fromX < 0 || fromX >= source.width) continue;
      target.row(y)[x] = source.row(static_cast<int32_t>(fromY))[fromX];
    }
  }
}

void addGraphicsServices(std::vector<Entry>& all) {
  constexpr Giver kGraphics = Giver::graphics;
  all.insert(
      all.end(),
      {
          entry<drawLine>("RuntimeGraphicsDrawLine"),
          entry<drawString>("RuntimeGraphicsDrawString"),
          entry<platformContext>("REALGraphicsDC"),
          entry<drawInRectangle>("REALDrawPicturePrimitive"),
          entry<drawPart>(
              "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
              "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)",
              kGraphics),
          entry<roundRect<false>>(
              "DrawRoundRect( x as Integer, y as Integer, width as Integer, height as Integer, "
              "ArcWidth as integer, ArcHeight as integer )",
              kGraphics),
          entry<roundRect<true>>(
              "FillRoundRect( x as Integer, y as Integer, width as Integer, height as Integer, "
              "ArcWidth as integer, ArcHeight as integer )",
              kGraphics),
          entry<oval<false>>("DrawOval( x as Integer, y as Integer, width as Integer, height as Integer )",
                             kGraphics),
          entry<oval<true>>("FillOval( x as Integer, y as Integer, width as Integer, height as Integer )",
                            kGraphics),
          entry<drawRect>("DrawRect( x as Integer, y as Integer, width as Integer, height as Integer )",
                          kGraphics),
          entry<fillRect>("FillRect( x as Integer, y as Integer, width as Integer, height as Integer )",
                          kGraphics),
          entry<clearRect>("ClearRect( x as Integer, y as Integer, width as Integer, height as Integer )",
                           kGraphics),
      });
}

}  // namespace host
