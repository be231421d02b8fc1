// Prepares the nodes of 3D tables.

#include "kernels/cube.h"

#include <emmintrin.h>

namespace kernels {
namespace {

constexpr size_t kUsed = 16;       // entries along an axis
constexpr int32_t kCell = 17;      // the sum of the weights
constexpr int32_t kMiddle = 128;   // the result that a sum of 0 stands for
constexpr double kReach = 135;     // 16-bit nodes reach a little further from it
constexpr int32_t kLost = 16;      // a sum is less than 17 units too low: each node less than one
constexpr double kHair = 0x1p-30;  // more than the rounding of sums can add to an entry

using Pair = __m128d;
Pair both(double value) { return _mm_set1_pd(value); }
bool isAll(Pair mask) { return _mm_movemask_pd(mask) == 3; }

// To the nearest integer.
Pair rounded(Pair v) {
  constexpr double kWhole = 0x1.8p52;  // numbers of this size are integers
  return _mm_sub_pd(_mm_add_pd(v, both(kWhole)), both(kWhole));
}

constexpr size_t kRun = kUsed * 3;  // doubles that lie side by side

// Calls visit(const double* run) for each run of the table that is used.
template <typename Visit>
void visitRuns(const double* entries, const Visit& visit) {
  for (size_t i = 0; i < kUsed * kUsed; ++i)
    visit(entries + (i / kUsed * kCubeSide + i % kUsed) * kCubeSide * 3);
}

}  // namespace

void prepareCube(Cube& cube, const double* entries) {
  const Pair magnitude = _mm_castsi128_pd(_mm_set_epi32(INT32_MAX, -1, INT32_MAX, -1));
  const Pair all = _mm_castsi128_pd(_mm_set1_epi32(-1));
  Pair areNear = all, areHalves = all, farthest = both(0);
  visitRuns(entries, [&](const double* run) {
    for (size_t i = 0; i < kRun; i += 2) {
      const Pair entry = _mm_loadu_pd(run + i), twice = _mm_add_pd(entry, entry);
      const Pair distance = _mm_and_pd(_mm_sub_pd(entry, both(kMiddle)), magnitude);
      areNear = _mm_and_pd(areNear, _mm_cmplt_pd(distance, both(4 * kReach)));
      farthest = _mm_max_pd(farthest, distance);
      areHalves = _mm_and_pd(areHalves, _mm_cmpeq_pd(rounded(twice), twice));
    }
  });
  cube.entries = entries;
  cube.hasNodes = isAll(areNear);
  if (!cube.hasNodes) return;

  const auto areWithin = [&](double reach) { return isAll(_mm_cmplt_pd(farthest, both(reach))); };
  const int32_t coarser = areWithin(kReach) ? 0 : areWithin(2 * kReach) ? 1 : 2;
  // A step of the result is so many units of a sum, and 17ths of that of a node.
  const int32_t units = 4096 >> coarser, middle = kMiddle * units / kCell;
  const double unit = static_cast<double>(kCell) / units;
  Pair areClear = all;
  Cube::Node* node = cube.nodes;
  visitRuns(entries, [&](const double* run) {
    int32_t below[kRun];
    for (size_t i = 0; i < kRun; i += 2) {
      const Pair entry = _mm_loadu_pd(run + i);
      Pair n = rounded(_mm_mul_pd(entry, both(1 / unit)));
      n = _mm_sub_pd(n, _mm_and_pd(_mm_cmpgt_pd(_mm_mul_pd(n, both(unit)), entry), both(1)));
      const Pair end = _mm_add_pd(_mm_mul_pd(n, both(unit)), both(unit - kHair));
      areClear = _mm_and_pd(areClear, _mm_cmplt_pd(entry, end));
      _mm_storel_epi64(reinterpret_cast<__m128i*>(below + i), _mm_cvtpd_epi32(_mm_sub_pd(n, both(middle))));
    }
    for (size_t i = 0; i < kRun; i += 3, ++node) {
      const auto part = [&](size_t x) { return static_cast<int16_t>(below[i + x]); };
      *node = {part(2), part(1), part(0), 0};
    }
  });
  for (; node != cube.nodes + sizeof cube.nodes / sizeof *node; ++node) *node = {};
  const bool isExact = isAll(areHalves);
  cube.shift = 4 - coarser;
  cube.start = kCell * middle - kMiddle * units + (isExact ? kLost : 0);
  // A result is unsure from where the sum may lack as much as the next one needs.
  const int32_t unsure = (units - (isAll(areClear) ? kLost : kLost + 1)) >> cube.shift;
  cube.sure = static_cast<uint8_t>(isExact ? 255 : unsure - 1);
}

}  // namespace kernels
