// Newer desktop hosts: a picture is shown as a cairo drawing context on an image surface over its pixels.
#pragma once

#include <memory>

#include "host/objects_internal.h"

namespace host {

// Throws std::runtime_error when cairo is missing.
void openCairo();
// Null when the picture can't be shown.
std::unique_ptr<PixelView> viewByCairo(Picture& picture);

}  // namespace host
