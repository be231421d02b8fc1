// Maps pictures through a lookup table per channel.

#include "operations/tables.h"

namespace {

// From this many pixels on, the search for lines costs less than it saves.
constexpr int64_t kWorthSearching = 128 * 128;

}  // namespace

void mapThroughTables(PictureEditor& result, kernels::ChannelTables& tables, PictureReader& source) {
  const auto by = [](auto kernel, const auto& parameters) {
    return [kernel, &parameters](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
      kernel(out, in, count, top, parameters);
    };
  };
  const Region whole = Region::whole(source);
  const kernels::Table& best = kernels::best();
  kernels::LinearMaps lines;
  if (int64_t{source.width} * source.height >= kWorthSearching && kernels::findLinearMaps(tables, lines)) {
    const BothFormats along{by(best.mapPiecewiseLinear, lines), by(best.mapPiecewiseLinearRGB24, lines)};
    mapRegion(result, whole, along, source);
  } else {
    kernels::placeEntries(tables);
    mapRegion(result, whole, by(best.mapThroughTables, tables), source);
  }
}
