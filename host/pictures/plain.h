// Settings::plainDrawables: a picture is shown as a record of its RGB24 pixels.
#pragma once

#include <memory>

#include "host/objects_internal.h"

namespace host {

std::unique_ptr<PixelView> viewPlainly(Picture& picture);

}  // namespace host
