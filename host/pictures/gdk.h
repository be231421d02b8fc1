// Older desktop hosts: a picture is shown as a copy in a GDK pixmap; what is drawn there never comes back.
#pragma once

#include <memory>

#include "host/objects_internal.h"

namespace host {

// Throws std::runtime_error when GDK 2 or an X display is missing.
void openGdk();
// Null when the picture can't be shown.
std::unique_ptr<PixelView> viewByGdk(Picture& picture);

}  // namespace host
