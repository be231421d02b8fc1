// Prepares lookup tables for kernels, and searches for lines that reproduce them.

#include "kernels/channel_tables.h"

#include <string.h>

namespace kernels {
namespace {

constexpr int32_t kSteepest = 0xFFFF;
constexpr int kTries = 32;  // a few suffice for nearly all tables that a line fits

enum class Fit { kFound, kNone, kTooSteep };

// Searches for a line through a table, read from its darker end. Heights are in 256ths of an offset's unit,
// so that the line at v is v * slope above its start.
class LineSearch {
 public:
  LineSearch(const uint8_t (&table)[256], uint32_t shift)
      : table_(table), isFalling_(table[0] > table[255]), level_(1 << (shift + 8)) {}

  // Each slope either fits, or two entries show that it must be steeper or flatter, and by how much at
  // least.
  Fit find(LinearMap& line) const {
    int32_t flattest = 0, steepest = kSteepest, slope = firstSlope(), step = 1;
    for (int i = 0; i < kTries && flattest <= steepest; ++i) {
      const Starts starts = startsFor(slope);
      if (starts.lowest < starts.end) {
        if (place(starts, slope, line)) return Fit::kFound;
        slope += step;  // further inside the range that fits, the start has more room
        if (slope > kSteepest || slope < 0) return Fit::kNone;
      } else if (const int32_t missing = starts.lowest - starts.end; starts.lowestAt > starts.endAt) {
        slope = flattest = slope + missing / (starts.lowestAt - starts.endAt) + 1;
        step = 1;
      } else {
        slope = steepest = slope - missing / (starts.endAt - starts.lowestAt) - 1;
        step = -1;
      }
    }
    return flattest > kSteepest ? Fit::kTooSteep : Fit::kNone;
  }

 private:
  // The range of starts that fit, lowest <= start < end, and the values of v that limit it.
  struct Starts {
    int32_t lowest, end;
    int lowestAt, endAt;
  };

  int32_t at(int v) const { return table_[isFalling_ ? 255 - v : v]; }

  // The slope between the ends of the part that isn't level.
  int32_t firstSlope() const {
    int first = 0, last = 255;
    while (first < last && at(first + 1) == at(0)) ++first;
    while (first < last && at(last - 1) == at(255)) --last;
    if (first == last) return 0;
    const int32_t slope = (at(last) - at(first)) * (level_ / (last - first));
    return slope < kSteepest ? slope : kSteepest;
  }

  Starts startsFor(int32_t slope) const {
    Starts starts = {-kSteepest * 256, INT32_MAX, 0, 0};
    for (int v = 0; v < 256; ++v) {
      const int32_t value = at(v), start = value * level_ - v * slope;
      // Entries of 0 and 255 limit only one side: the line is clamped there.
      if (value > 0 && start > starts.lowest) starts.lowest = start, starts.lowestAt = v;
      if (value < 255 && start + level_ < starts.end) starts.end = start + level_, starts.endAt = v;
    }
    return starts;
  }

  // An offset counts 256 units; `before` reaches the heights between two offsets.
  bool place(const Starts& starts, int32_t slope, LinearMap& line) const {
    for (int32_t before = 0; before < 256; ++before) {
      const int64_t missing = int64_t{starts.lowest} * 256 - before * slope;
      const int64_t offset = (missing + 0xFFFF) >> 16;
      if (before * slope + offset * 0x10000 >= int64_t{starts.end} * 256) continue;
      if (offset < -0xFFFF || offset > 0xFFFF) return false;
      line = {isFalling_, static_cast<uint8_t>(before), static_cast<uint16_t>(slope),
              static_cast<int32_t>(offset)};
      return true;
    }
    return false;
  }

  const uint8_t (&table_)[256];
  bool isFalling_;
  int32_t level_;  // height between two results
};

}  // namespace

void placeEntries(ChannelTables& tables) {
  for (int v = 0; v < 256; ++v) {
    tables.placed.red[v] = static_cast<uint32_t>(tables.red[v]) << 16;
    tables.placed.green[v] = static_cast<uint32_t>(tables.green[v]) << 8;
    tables.placed.blue[v] = tables.blue[v];
  }
}

bool findLinearMaps(const ChannelTables& tables, LinearMaps& lines) {
  const bool areSame = memcmp(tables.red, tables.green, sizeof tables.red) == 0 &&
                       memcmp(tables.red, tables.blue, sizeof tables.red) == 0;
  for (uint32_t shift = 8; shift > 2; --shift) {  // up to 32 times as steep as the identity
    Fit fit = LineSearch(tables.red, shift).find(lines.red);
    if (areSame) {
      lines.green = lines.blue = lines.red;
    } else {
      if (fit == Fit::kFound) fit = LineSearch(tables.green, shift).find(lines.green);
      if (fit == Fit::kFound) fit = LineSearch(tables.blue, shift).find(lines.blue);
    }
    lines.shift = shift;
    if (fit != Fit::kTooSteep) return fit == Fit::kFound;
  }
  return false;
}

}  // namespace kernels
