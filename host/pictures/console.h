// Console and web hosts: a picture is shown as a bitmap record with a table of rows.
#pragma once

#include <memory>

#include "host/objects_internal.h"

namespace host {

// Never null.
std::unique_ptr<PixelView> viewByConsole(Picture& picture);

}  // namespace host
