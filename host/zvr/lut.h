// Film looks into the plug-in's table.
#pragma once

#include "host/zvr/cube.h"
#include "host/zvr/filters.h"

namespace zvr {

// Fills a PictureLut3DZVR's table through its setter, entry by entry; without a cube so that every colour
// stays what it is. Throws UsageError for a class without a table and Failure for an exception.
void fillTable(Filter& filter, const Cube* cube);

}  // namespace zvr
