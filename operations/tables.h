// Pictures through a lookup table for each channel.
#pragma once

#include "picture/rows.h"

// Writes the top left part of `result`, of the source's size, with each channel of the source looked up in
// its table.
inline void mapThroughTables(PictureEditor& result, const kernels::ChannelTables& tables,
                             PictureReader& source) {
  mapRegion(
      result, Region::whole(source),
      [&tables, kernel = kernels::best().mapThroughTables](kernels::Pixel* out, const kernels::Pixel* in,
                                                           size_t count, uint32_t top) {
        kernel(out, in, count, top, tables);
      },
      source);
}
