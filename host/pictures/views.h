// The road that this host plays: how it shows a locked picture's pixels.
#pragma once

#include <memory>

#include "host/objects_internal.h"

namespace host {

// Makes a road ready. Throws std::runtime_error when it can't be had.
void openRoad(Road road);
// The type of description in which the road's pictures are locked.
int32_t naturalType();
// A view of a picture's pixels, or null when it can't be made.
std::unique_ptr<PixelView> viewPixels(Picture& picture);
// Top byte that makes a pixel opaque.
uint32_t opaqueTop();

}  // namespace host
