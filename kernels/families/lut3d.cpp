// Tetrahedral interpolation in a colour table.

#include <immintrin.h>

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr size_t kTile = 64;
constexpr int kCell = 17;  // channel values from one entry to the next
constexpr int kLast = 15;  // the entry of 255, the last that may be read

// Where the four corners lie that a colour is mixed from, and what each weighs in 17ths.
struct Mixes {
  int16_t corner[4][kTile], weight[4][kTile];
};

// Lanes of 16 bits throughout: that is what the narrowest instruction set has minimum and maximum of.
inline int16_t narrow(int value) { return static_cast<int16_t>(value); }
inline int16_t larger(int16_t a, int16_t b) { return a > b ? a : b; }
inline int16_t smaller(int16_t a, int16_t b) { return a < b ? a : b; }

// The share of an axis and the step along it in one number. Of equal shares the smaller step goes first: red
// goes before green only when its share is strictly the larger one.
constexpr int kStepBits = 10, kStepMask = (1 << kStepBits) - 1;
inline int16_t keyOf(int share, int step) { return narrow(share << kStepBits | (kStepMask - step)); }
inline int16_t shareOf(int16_t key) { return narrow(key >> kStepBits); }
inline int16_t stepOf(int16_t key) { return narrow(kStepMask - (key & kStepMask)); }

// From one entry to the next along red, green and blue.
struct Steps {
  int red, green, blue;
};

template <typename Layout>
void findMixes(Mixes& mixes, const Pixel* in, size_t count) {
  constexpr Steps kSteps = Layout::kSteps;
  static_assert(kSteps.red <= kStepMask);
  int16_t reds[kTile], greens[kTile], blues[kTile];
  for (size_t i = 0; i < count; ++i) {
    reds[i] = narrow(in[i] >> 16 & 0xFF);
    greens[i] = narrow(in[i] >> 8 & 0xFF);
    blues[i] = narrow(in[i] & 0xFF);
  }
  for (size_t i = 0; i < count; ++i) {
    const int16_t r = reds[i], g = greens[i], b = blues[i];
    // v / 17 for v up to 255
    const int16_t ri = narrow(r * 241 >> 12), gi = narrow(g * 241 >> 12), bi = narrow(b * 241 >> 12);
    const int16_t rn = narrow(r - kCell * ri), gn = narrow(g - kCell * gi), bn = narrow(b - kCell * bi);
    // No step leads beyond the last entry, not even to a corner that weighs nothing.
    const int16_t rs = ri < kLast ? kSteps.red : 0, gs = gi < kLast ? kSteps.green : 0,
                  bs = bi < kLast ? kSteps.blue : 0;
    const int16_t rk = keyOf(rn, rs), gk = keyOf(gn, gs), bk = keyOf(bn, bs);
    const int16_t first = larger(larger(rk, gk), bk), last = smaller(smaller(rk, gk), bk);
    const int16_t n1 = shareOf(first), n3 = shareOf(last), n2 = narrow(rn + gn + bn - n1 - n3);
    const int16_t near = narrow(ri * kSteps.red + gi * kSteps.green + bi * kSteps.blue);
    const int16_t far = narrow(near + rs + gs + bs);
    mixes.corner[0][i] = near;
    mixes.corner[1][i] = narrow(near + stepOf(first));
    mixes.corner[2][i] = narrow(far - stepOf(last));
    mixes.corner[3][i] = far;
    mixes.weight[0][i] = narrow(kCell - n1);
    mixes.weight[1][i] = narrow(n1 - n2);
    mixes.weight[2][i] = narrow(n2 - n3);
    mixes.weight[3][i] = n3;
  }
}

struct Doubles {
  static constexpr Steps kSteps = {kCubeSide * kCubeSide * 3, kCubeSide * 3, 3};
};
struct Words {
  static constexpr Steps kSteps = {kWholeCubeSide * kWholeCubeSide, kWholeCubeSide, 1};
};

constexpr int16_t kSeventeenth = static_cast<int16_t>(61681);  // v * 61681 >> 20 is v / 17 up to 65535
constexpr double kWeights[kCell + 1] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};

// Three doubles: an entry of the table, or a sum of entries. Nothing behind the third is read.
#ifdef __AVX2__
struct Entry {
  __m256d rgb;
};
inline Entry load(const double* from) {
  return {_mm256_maskload_pd(from, _mm256_setr_epi64x(-1, -1, -1, 0))};
}
inline Entry times(Entry e, const double* weight) {
  return {_mm256_mul_pd(e.rgb, _mm256_broadcast_sd(weight))};
}
inline Entry plus(Entry a, Entry b) { return {_mm256_add_pd(a.rgb, b.rgb)}; }
// 17ths, limited to 0..255 and truncated, as a word. The order of operands makes 0 of what is not a number.
inline uint32_t packed(Entry sum) {
  const __m256d value = _mm256_div_pd(sum.rgb, _mm256_set1_pd(kCell));
  const __m256d limited = _mm256_min_pd(_mm256_max_pd(value, _mm256_setzero_pd()), _mm256_set1_pd(255));
  const __m128i bytes =
      _mm_shuffle_epi8(_mm256_cvttpd_epi32(limited),
                       _mm_setr_epi8(8, 4, 0, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
  return static_cast<uint32_t>(_mm_cvtsi128_si32(bytes));
}
#else
struct Entry {
  __m128d rg, b;
};
inline Entry load(const double* from) { return {_mm_loadu_pd(from), _mm_load_sd(from + 2)}; }
inline Entry times(Entry e, const double* weight) {
  const __m128d w = _mm_load1_pd(weight);
  return {_mm_mul_pd(e.rg, w), _mm_mul_sd(e.b, w)};
}
inline Entry plus(Entry a, Entry b) { return {_mm_add_pd(a.rg, b.rg), _mm_add_sd(a.b, b.b)}; }
inline __m128i limited(__m128d sum) {
  const __m128d value = _mm_div_pd(sum, _mm_set1_pd(kCell));
  return _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(value, _mm_setzero_pd()), _mm_set1_pd(255)));
}
// 17ths, limited to 0..255 and truncated, as a word. The order of operands makes 0 of what is not a number.
inline uint32_t packed(Entry sum) {
  const __m128i rg = limited(sum.rg), b = limited(sum.b);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(rg) << 16 | _mm_cvtsi128_si32(_mm_srli_si128(rg, 4)) << 8 |
                               _mm_cvtsi128_si32(b));
}
#endif

// A corner of pixel i, weighted.
inline Entry part(const double* cube, const Mixes& mixes, size_t corner, size_t i) {
  return times(load(cube + mixes.corner[corner][i]), kWeights + mixes.weight[corner][i]);
}

// Whole entries, several pixels at a time: the sums of the four corners in lanes of 16 bits, in two halves.
#ifdef __AVX2__
constexpr size_t kVector = 8;
using Vector = __m256i;

inline __m128i eight(const int16_t* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
inline Vector gather(const Pixel* cube, const int16_t* places) {
  return _mm256_i32gather_epi32(reinterpret_cast<const int*>(cube), _mm256_cvtepi16_epi32(eight(places)), 4);
}
// Adds two corners at a time: their bytes and their weights interleaved.
inline void addCorners(Vector& low, Vector& high, const Pixel* cube, const Mixes& mixes, size_t c, size_t i) {
  const Vector a = gather(cube, mixes.corner[c] + i), b = gather(cube, mixes.corner[c + 1] + i);
  const __m128i pair =
      _mm_or_si128(eight(mixes.weight[c] + i), _mm_slli_epi16(eight(mixes.weight[c + 1] + i), 8));
  const Vector once = _mm256_cvtepu16_epi32(pair);
  const Vector twice = _mm256_or_si256(once, _mm256_slli_epi32(once, 16));
  low = _mm256_add_epi16(
      low, _mm256_maddubs_epi16(_mm256_unpacklo_epi8(a, b), _mm256_unpacklo_epi32(twice, twice)));
  high = _mm256_add_epi16(
      high, _mm256_maddubs_epi16(_mm256_unpackhi_epi8(a, b), _mm256_unpackhi_epi32(twice, twice)));
}
inline Vector seventeenth(Vector sums) {
  return _mm256_srli_epi16(_mm256_mulhi_epu16(sums, _mm256_set1_epi16(kSeventeenth)), 4);
}
inline void store(Pixel* out, Vector low, Vector high, uint32_t top) {
  const Vector words = _mm256_packus_epi16(seventeenth(low), seventeenth(high));
  const Vector opaque = _mm256_or_si256(words, _mm256_set1_epi32(static_cast<int32_t>(top)));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), opaque);
}
#else
constexpr size_t kVector = 4;
using Vector = __m128i;

inline Vector gather(const Pixel* cube, const int16_t* places) {
  const auto word = [&](size_t i) { return static_cast<int32_t>(cube[places[i]]); };
  return _mm_setr_epi32(word(0), word(1), word(2), word(3));
}
inline void addCorner(Vector& low, Vector& high, const Pixel* cube, const Mixes& mixes, size_t c, size_t i) {
  const Vector entries = gather(cube, mixes.corner[c] + i), zero = _mm_setzero_si128();
  const Vector once = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(mixes.weight[c] + i));
  const Vector twice = _mm_unpacklo_epi16(once, once);
  low =
      _mm_add_epi16(low, _mm_mullo_epi16(_mm_unpacklo_epi8(entries, zero), _mm_unpacklo_epi32(twice, twice)));
  high = _mm_add_epi16(high,
                       _mm_mullo_epi16(_mm_unpackhi_epi8(entries, zero), _mm_unpackhi_epi32(twice, twice)));
}
inline void addCorners(Vector& low, Vector& high, const Pixel* cube, const Mixes& mixes, size_t c, size_t i) {
  addCorner(low, high, cube, mixes, c, i);
  addCorner(low, high, cube, mixes, c + 1, i);
}
inline Vector seventeenth(Vector sums) {
  return _mm_srli_epi16(_mm_mulhi_epu16(sums, _mm_set1_epi16(kSeventeenth)), 4);
}
inline void store(Pixel* out, Vector low, Vector high, uint32_t top) {
  const Vector words = _mm_packus_epi16(seventeenth(low), seventeenth(high));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                   _mm_or_si128(words, _mm_set1_epi32(static_cast<int32_t>(top))));
}
#endif

// A tile of a whole number of vectors.
void mixWhole(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Pixel* cube) {
  Mixes mixes;
  findMixes<Words>(mixes, in, count);
  for (size_t i = 0; i < count; i += kVector) {
    Vector low{}, high{};
    addCorners(low, high, cube, mixes, 0, i);
    addCorners(low, high, cube, mixes, 2, i);
    store(out + i, low, high, top);
  }
}

}  // namespace

void mapThroughCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const double* cube) {
  Mixes mixes;
  for (size_t tile; count > 0; count -= tile, in += tile, out += tile) {
    tile = count < kTile ? count : kTile;
    findMixes<Doubles>(mixes, in, tile);
    for (size_t i = 0; i < tile; ++i) {
      Entry sum = part(cube, mixes, 0, i);
      for (size_t c = 1; c < 4; ++c) sum = plus(sum, part(cube, mixes, c, i));
      out[i] = packed(sum) | top;
    }
  }
}

void mapThroughWholeCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Pixel* cube) {
  for (size_t tile; count >= kVector; count -= tile, in += tile, out += tile) {
    tile = count < kTile ? count / kVector * kVector : kTile;
    mixWhole(out, in, tile, top, cube);
  }
  Pixel rest[kVector] = {};
  for (size_t i = 0; i < count; ++i) rest[i] = in[i];
  mixWhole(rest, rest, kVector, top, cube);
  for (size_t i = 0; i < count; ++i) out[i] = rest[i];
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
