// Tetrahedral interpolation in a colour table.

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr uint32_t kCell = 17;  // channel values between two entries
constexpr uint32_t kLast = 15;  // the entry of 255, the last that may be read

// Distances between nodes along red, green and blue.
constexpr uint16_t kRed = 256, kGreen = 16, kBlue = 1;

// Pixels processed at a time, in 16-bit lanes. Every four lanes hold four neighbours; the fours come
// alternately from the first and the second half of the pixels.
constexpr size_t kWords = 2 * kPixels;
constexpr size_t firstPixelOf(size_t four) { return four % 2 * kPixels + four / 2 * 4; }

// The nodes at the four corners that a colour is mixed from, and their weights in 17ths.
struct Mixes {
  alignas(64) uint16_t corner[4][kWords];
  Words weight[4];
};

Words all(uint32_t word) { return reinterpret_cast<Words>(allWords(word)); }
Words max(Words a, Words b) {
  return reinterpret_cast<Words>(
      ZVR_VECTOR(max_epi16)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}
Words min(Words a, Words b) {
  return reinterpret_cast<Words>(
      ZVR_VECTOR(min_epi16)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}

// The upper or, of words shifted left, the lower halves of pixels.
Words upperHalves(Pixels low, Pixels high) {
  const auto half = [](Pixels v) { return ZVR_VECTOR(srai_epi32)(reinterpret_cast<Vector>(v), 16); };
  return reinterpret_cast<Words>(ZVR_VECTOR(packs_epi32)(half(low), half(high)));
}

// Sort key: the share of an axis above the step along it. Between equal shares the smaller step comes first,
// so red comes before green only if its share is strictly larger.
constexpr int kStepBits = 10;
constexpr uint32_t kStepMask = (1 << kStepBits) - 1;
Words stepOf(Words key) { return kStepMask - (key & kStepMask); }

struct Axis {
  Words entry, share, step;

  Axis(Words value, uint16_t stepAlong, bool isGuarded)
      : entry(multiplyHigh(value, all(65536 / kCell + 1))),  // value / 17
        share(value - entry * kCell),
        step(all(stepAlong)) {
    if (isGuarded) step &= reinterpret_cast<Words>(entry != kLast);
  }
  Words key() const { return share << kStepBits | (kStepMask - step); }
};

// Guarded corners of weight 0 do not lie beyond the last entries; others do, or begin the next row.
template <bool isGuarded>
void findMixes(Mixes& mixes, const Pixel* in) {
  Pixels low, high;
  __builtin_memcpy(&low, in, sizeof low);
  __builtin_memcpy(&high, in + kPixels, sizeof high);
  const Words greenBlue = upperHalves(low << 16, high << 16);
  const Axis red(upperHalves(low, high) & 0xFF, kRed, isGuarded), green(greenBlue >> 8, kGreen, isGuarded),
      blue(greenBlue & 0xFF, kBlue, isGuarded);
  const Words first = max(max(red.key(), green.key()), blue.key());
  const Words last = min(min(red.key(), green.key()), blue.key());
  const Words share1 = first >> kStepBits, share3 = last >> kStepBits;
  const Words share2 = red.share + green.share + blue.share - share1 - share3;
  const Words near = red.entry * kRed + green.entry * kGreen + blue.entry * kBlue;
  const Words far = near + (red.step + green.step + blue.step);
  const Words corner[4] = {near, near + stepOf(first), far - stepOf(last), far};
  __builtin_memcpy(mixes.corner, corner, sizeof corner);
  mixes.weight[0] = kCell - share1;
  mixes.weight[1] = share1 - share2;
  mixes.weight[2] = share2 - share3;
  mixes.weight[3] = share3;
}

// Calls mix(Pixel* out, const Mixes&) for each kWords pixels.
template <bool isGuarded, typename Mix>
void mapMixed(Pixel* out, const Pixel* in, size_t count, const Mix& mix) {
  constexpr size_t kTogether = 4;
  Mixes tile[kTogether];
  Mixes& mixes = tile[0];
  for (; count >= kTogether * kWords; count -= kTogether * kWords, in += kTogether * kWords) {
    for (size_t i = 0; i < kTogether; ++i) {
      prefetch(in + i * kWords);
      findMixes<isGuarded>(tile[i], in + i * kWords);
    }
    for (size_t i = 0; i < kTogether; ++i, out += kWords) mix(out, tile[i]);
  }
  for (; count >= kWords; count -= kWords, in += kWords, out += kWords) {
    findMixes<isGuarded>(mixes, in);
    mix(out, mixes);
  }
  if (count == 0) return;
  Pixel rest[kWords] = {};
  __builtin_memcpy(rest, in, count * sizeof *in);
  findMixes<isGuarded>(mixes, rest);
  mix(rest, mixes);
  __builtin_memcpy(out, rest, count * sizeof *out);
}

// ---- Tables of any doubles ----

// Multiplying a sum in 17ths by this and truncating gives the same as dividing by 17: the product never
// decreases as the sum grows, and for each k up to 255 the first sum whose product reaches k is 17 * k.
// Products are clamped to 0..255 as quotients would be; the operand order turns NaN into 0.
constexpr double kSeventeenth = 1.0 / kCell;

#ifdef __AVX2__
// An entry, or a sum of entries; the last lane is unused.
using Entry = __m256d;
Entry weighted(const double* entry, const double* weight) {
  return _mm256_mul_pd(_mm256_loadu_pd(entry), _mm256_broadcast_sd(weight));
}
Entry plus(Entry a, Entry b) { return _mm256_add_pd(a, b); }
__m128i clamped(Entry sum) {
  const __m256d value = _mm256_mul_pd(sum, _mm256_set1_pd(kSeventeenth));
  return _mm256_cvttpd_epi32(_mm256_min_pd(_mm256_max_pd(value, _mm256_setzero_pd()), _mm256_set1_pd(255)));
}
__m128i fourPixels(const Entry* sums) {
  const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(clamped(sums[0]), clamped(sums[1])),
                                         _mm_packs_epi32(clamped(sums[2]), clamped(sums[3])));
  return _mm_shuffle_epi8(bytes, _mm_setr_epi8(2, 1, 0, -1, 6, 5, 4, -1, 10, 9, 8, -1, 14, 13, 12, -1));
}
#else
struct Entry {
  __m128d redGreen, blue;
};
Entry weighted(const double* entry, const double* weight) {
  const __m128d w = _mm_set1_pd(*weight);
  // Loads the third as an integer: a double load through the pointer would require alignment.
  const __m128d third = _mm_castsi128_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(entry + 2)));
  return {_mm_mul_pd(_mm_loadu_pd(entry), w), _mm_mul_sd(third, w)};
}
Entry plus(Entry a, Entry b) { return {_mm_add_pd(a.redGreen, b.redGreen), _mm_add_sd(a.blue, b.blue)}; }
__m128i clamped(__m128d sum) {
  const __m128d value = _mm_mul_pd(sum, _mm_set1_pd(kSeventeenth));
  return _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(value, _mm_setzero_pd()), _mm_set1_pd(255)));
}
__m128i clamped(__m128d low, __m128d high) { return _mm_unpacklo_epi64(clamped(low), clamped(high)); }
__m128i fourPixels(const Entry* sums) {
  const __m128i redGreen = _mm_packs_epi32(clamped(sums[0].redGreen, sums[1].redGreen),
                                           clamped(sums[2].redGreen, sums[3].redGreen));
  const __m128i blue =
      clamped(_mm_unpacklo_pd(sums[0].blue, sums[1].blue), _mm_unpacklo_pd(sums[2].blue, sums[3].blue));
  return _mm_or_si128(_mm_or_si128(_mm_slli_epi32(redGreen, 16), _mm_srli_epi32(redGreen, 8)), blue);
}
#endif

// The sum of part(0) to part(3), added in the order of the definition.
template <typename Part>
Entry sumOf(const Part& part) {
  return plus(plus(plus(part(0), part(1)), part(2)), part(3));
}

// A node's place in the table of doubles.
template <typename Place>
Place placeOf(Place node) {
  constexpr uint16_t kSide = kCubeSide;
  const Place red = node >> 8 & 15, green = node >> 4 & 15, blue = node & 15;
  return ((red * kSide + green) * kSide + blue) * 3;
}

// Mixes with places in the table of doubles, and doubles.
struct ExactMixes {
  uint16_t place[4][kWords];
  double weight[4][kWords];

  explicit ExactMixes(const Mixes& mixes) {
    for (size_t c = 0; c < 4; ++c) {
      Words node;
      __builtin_memcpy(&node, mixes.corner[c], sizeof node);
      const Words places = placeOf(node);
      __builtin_memcpy(place[c], &places, sizeof places);
      for (size_t i = 0; i < kWords; ++i) weight[c][i] = mixes.weight[c][i];
    }
  }
  Entry sum(const double* entries, size_t lane) const {
    return sumOf([&](size_t c) { return weighted(entries + place[c][lane], &weight[c][lane]); });
  }
};

void mapExactly(Pixel* out, const Pixel* in, size_t count, uint32_t top, const double* entries) {
  const __m128i tops = _mm_set1_epi32(static_cast<int32_t>(top));
  mapMixed<true>(out, in, count, [=](Pixel* to, const Mixes& mixes) {
    const ExactMixes exact(mixes);
    for (size_t four = 0; four < kWords / 4; ++four) {
      Entry sums[4];
      for (size_t i = 0; i < 4; ++i) sums[i] = exact.sum(entries, four * 4 + i);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + firstPixelOf(four)),
                       _mm_or_si128(fourPixels(sums), tops));
    }
  });
}

// ---- Fixed point ----

// A node in the lower half of each 128-bit lane.
Vector nodesAt(const Cube& cube, const uint16_t* places) {
  const auto node = [&](size_t lane) {
    return reinterpret_cast<const __m128i*>(&cube.nodes[places[lane * 8]]);
  };
#if defined(__AVX512VBMI__)
  __m512i all = _mm512_castsi128_si512(_mm_loadl_epi64(node(0)));
  all = _mm512_mask_broadcastq_epi64(all, 0x04, _mm_loadl_epi64(node(1)));
  all = _mm512_mask_broadcastq_epi64(all, 0x10, _mm_loadl_epi64(node(2)));
  return _mm512_mask_broadcastq_epi64(all, 0x40, _mm_loadl_epi64(node(3)));
#elif defined(__AVX2__)
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadl_epi64(node(0))), _mm_loadu_si128(node(1)),
                                 1);
#else
  return _mm_loadl_epi64(node(0));
#endif
}

// Element i of each 128-bit lane, throughout the lane.
__attribute__((always_inline)) inline Vector fourthsOf(Vector v, size_t i) {
  constexpr auto shuffled = [](Vector from, auto element) {
    return ZVR_VECTOR(shuffle_epi32)(from, static_cast<_MM_PERM_ENUM>(element * 0x55));
  };
  using std::integral_constant;
  return i == 0   ? shuffled(v, integral_constant<int, 0>())
         : i == 1 ? shuffled(v, integral_constant<int, 1>())
         : i == 2 ? shuffled(v, integral_constant<int, 2>())
                  : shuffled(v, integral_constant<int, 3>());
}

// Bit i: whether any byte of pixel i is set.
uint32_t pixelsSet(Vector v) {
#if defined(__AVX512VBMI__)
  return _mm512_test_epi32_mask(v, v);
#elif defined(__AVX2__)
  return ~static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(v, Vector{})))) &
         0xFF;
#else
  return ~static_cast<uint32_t>(_mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(v, Vector{})))) & 0xF;
#endif
}

// Computes those pixels whose bits are set in `unsure`, mostly one.
[[gnu::noinline]] void decide(Pixel* to, uint32_t unsure, const Mixes& mixes, uint32_t top,
                              const double* entries) {
  for (; unsure != 0; unsure &= unsure - 1) {
    const auto pixel = static_cast<size_t>(__builtin_ctz(unsure));
    const size_t half = pixel / kPixels, four = pixel % kPixels / 4;
    const size_t lane = (four * 2 + half) * 4 + pixel % 4;
    const Entry sum = sumOf([&](size_t c) {
      const double weight = mixes.weight[c][lane];
      return weighted(entries + placeOf<size_t>(mixes.corner[c][lane]), &weight);
    });
    const Entry sums[4] = {sum, sum, sum, sum};
    to[pixel] = static_cast<uint32_t>(_mm_cvtsi128_si32(fourPixels(sums))) | top;
  }
}

void mapByNodes(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Cube& cube) {
  // The fourth sum is far beyond the range, so that it gives the top byte.
  const Vector start =
      allLanes(_mm_setr_epi32(cube.start, cube.start, cube.start, top != 0 ? INT32_MAX / 2 : INT32_MIN / 2));
  const Vector sure = allWords(0xFF00U | cube.sure);
  const __m128i shift = _mm_cvtsi32_si128(cube.shift);
  const Vector most = allWords(0x7F80);  // beyond the range the fraction is sure
  mapMixed<false>(
      out, in, count, [&](Pixel * to, const Mixes& mixes) __attribute__((always_inline)) {
        uint32_t unsure = 0;
        unroll<2>([&](size_t half) __attribute__((always_inline)) {
          const auto weights = [&](size_t c) __attribute__((always_inline)) {
            const auto first = reinterpret_cast<Vector>(mixes.weight[c]),
                       second = reinterpret_cast<Vector>(mixes.weight[c + 1]);
            return half == 0 ? ZVR_VECTOR(unpacklo_epi16)(first, second)
                             : ZVR_VECTOR(unpackhi_epi16)(first, second);
          };
          const Vector near = weights(0), far = weights(2);
          Vector sums[4];
          unroll<4>([&](size_t i) __attribute__((always_inline)) {
            const auto part = [&](size_t c, Vector weight) __attribute__((always_inline)) {
              const Vector nodes =
                  ZVR_VECTOR(unpacklo_epi16)(nodesAt(cube, mixes.corner[c] + half * 4 + i),
                                             nodesAt(cube, mixes.corner[c + 1] + half * 4 + i));
              return ZVR_VECTOR(madd_epi16)(nodes, fourthsOf(weight, i));
            };
            const Vector sum = ZVR_VECTOR(add_epi32)(part(0, near), part(2, far));
            sums[i] = ZVR_VECTOR(sra_epi32)(ZVR_VECTOR(add_epi32)(sum, start), shift);
          });
          // Results in 256ths, 128 too low.
          const auto results = [&](Vector a, Vector b) __attribute__((always_inline)) {
            return ZVR_VECTOR(min_epi16)(ZVR_VECTOR(packs_epi32)(a, b), most);
          };
          const Vector low = results(sums[0], sums[1]), high = results(sums[2], sums[3]);
          const Vector pixels =
              ZVR_VECTOR(packs_epi16)(ZVR_VECTOR(srai_epi16)(low, 8), ZVR_VECTOR(srai_epi16)(high, 8));
          store(to + half * kPixels, reinterpret_cast<Pixels>(pixels) ^ 0x80808080);
          unsure |= pixelsSet(ZVR_VECTOR(packs_epi16)(ZVR_VECTOR(subs_epu8)(low, sure),
                                                      ZVR_VECTOR(subs_epu8)(high, sure)))
                    << half * kPixels;
        });
        if (unsure != 0) decide(to, unsure, mixes, top, cube.entries);
      });
}

}  // namespace

void mapThroughCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Cube& cube) {
  if (cube.hasNodes) {
    mapByNodes(out, in, count, top, cube);
  } else {
    mapExactly(out, in, count, top, cube.entries);
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
