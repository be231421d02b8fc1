// Maps pictures through a lookup table per channel.

#include "operations/tables.h"

namespace {

// From this many pixels on, the search for lines costs less than it saves.
constexpr int64_t kWorthSearching = 128 * 128;

}  // namespace

void mapThroughTables(PictureEditor& result, kernels::ChannelTables& tables, PictureReader& source) {
  const auto mapBy = [&](auto kernel, const auto& parameters) {
    mapRegion(
        result, Region::whole(source),
        [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
          kernel(out, in, count, top, parameters);
        },
        source);
  };
  kernels::LinearMaps lines;
  if (int64_t{source.width} * source.height >= kWorthSearching && kernels::findLinearMaps(tables, lines)) {
    mapBy(kernels::best().mapPiecewiseLinear, lines);
  } else {
    kernels::placeEntries(tables);
    mapBy(kernels::best().mapThroughTables, tables);
  }
}
