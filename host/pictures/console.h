// Console and web hosts: a picture is shown as a bitmap record with a table of rows.
#pragma once

#include <memory>

#include "host/objects_internal.h"

namespace host {

// Null when the picture can't be shown.
std::unique_ptr<PixelView> viewByConsole(Picture& picture);

}  // namespace host
