#include "host/pictures/views.h"

#include "host/pictures/cairo.h"
#include "host/pictures/console.h"
#include "host/pictures/gdk.h"
#include "host/pictures/plain.h"

namespace host {
namespace {

struct RoadRow {
  Road road;
  int32_t naturalType;
  uint32_t opaqueTop;
  void (*open)();
  std::unique_ptr<PixelView> (*view)(Picture&);
};
constexpr RoadRow kRoads[] = {
    {Road::cairo, kPictureTypeCairo, 0xFF000000, openCairo, viewByCairo},
    {Road::gdk, kPictureTypeDrawable, 0, openGdk, viewByGdk},
    {Road::console, kPictureTypeBitmap, 0, [] {}, viewByConsole},
};

const RoadRow& row(Road road) {
  const RoadRow* found = kRoads;
  while (found->road != road) ++found;
  return *found;
}

}  // namespace

void openRoad(Road road) {
  if (!settings().plainDrawables) row(road).open();
}
int32_t naturalType() { return row(settings().road).naturalType; }
std::unique_ptr<PixelView> viewPixels(Picture& picture) {
  return settings().plainDrawables ? viewPlainly(picture) : row(settings().road).view(picture);
}
uint32_t opaqueTop() { return row(settings().road).opaqueTop; }

}  // namespace host
