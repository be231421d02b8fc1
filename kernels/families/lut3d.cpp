// Tetrahedral interpolation in a colour table.

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr uint32_t kCell = 17;  // channel values between two entries
constexpr uint32_t kLast = 15;  // the entry of 255, the last that may be read

// Pixels processed at a time, in 16-bit lanes. Every four lanes hold four neighbours; the fours come
// alternately from the first and the second half of the pixels.
constexpr size_t kWords = 2 * kPixels;
constexpr size_t firstPixelOf(size_t four) { return four % 2 * kPixels + four / 2 * 4; }

// The offsets of the four corners that a colour is mixed from, and their weights in 17ths.
struct Mixes {
  alignas(64) uint16_t corner[4][kWords];
  Words weight[4];
};

// Strides between entries along red, green and blue.
struct Steps {
  uint32_t red, green, blue;
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

// One channel of each pixel.
Words channelOf(Pixels low, Pixels high, int shift) {
  return reinterpret_cast<Words>(ZVR_VECTOR(packs_epi32)(reinterpret_cast<Vector>(low >> shift & 0xFF),
                                                         reinterpret_cast<Vector>(high >> shift & 0xFF)));
}

// Sort key: the share of an axis above the step along it. Between equal shares the smaller step comes first,
// so red comes before green only if its share is strictly larger.
constexpr int kStepBits = 10;
constexpr uint32_t kStepMask = (1 << kStepBits) - 1;
Words stepOf(Words key) { return kStepMask - (key & kStepMask); }

struct Axis {
  Words entry, share, step;

  Axis(Words value, uint32_t stepAlong)
      : entry(multiplyHigh(value, all(65536 / kCell + 1))),  // value / 17
        share(value - entry * kCell),
        // No step goes beyond the last entry, not even to a corner of weight 0.
        step(all(stepAlong) & reinterpret_cast<Words>(entry < kLast)) {}
  Words key() const { return share << kStepBits | (kStepMask - step); }
};

void findMixes(Mixes& mixes, const Pixel* in, const Steps& steps) {
  Pixels low, high;
  __builtin_memcpy(&low, in, sizeof low);
  __builtin_memcpy(&high, in + kPixels, sizeof high);
  const Axis red(channelOf(low, high, 16), steps.red), green(channelOf(low, high, 8), steps.green),
      blue(channelOf(low, high, 0), steps.blue);
  const Words first = max(max(red.key(), green.key()), blue.key());
  const Words last = min(min(red.key(), green.key()), blue.key());
  const Words share1 = first >> kStepBits, share3 = last >> kStepBits;
  const Words share2 = red.share + green.share + blue.share - share1 - share3;
  const Words near = red.entry * static_cast<uint16_t>(steps.red) +
                     green.entry * static_cast<uint16_t>(steps.green) +
                     blue.entry * static_cast<uint16_t>(steps.blue);
  const Words far = near + red.step + green.step + blue.step;
  const Words corner[4] = {near, near + stepOf(first), far - stepOf(last), far};
  __builtin_memcpy(mixes.corner, corner, sizeof corner);
  mixes.weight[0] = kCell - share1;
  mixes.weight[1] = share1 - share2;
  mixes.weight[2] = share2 - share3;
  mixes.weight[3] = share3;
}

// Calls mix(Pixel* out, const Mixes&) for each kWords pixels.
template <typename Mix>
void mapMixed(Pixel* out, const Pixel* in, size_t count, const Steps& steps, const Mix& mix) {
  constexpr size_t kTogether = 64 / kWords;
  Mixes tile[kTogether];
  Mixes& mixes = tile[0];
  for (; count >= kTogether * kWords; count -= kTogether * kWords, in += kTogether * kWords) {
    for (size_t i = 0; i < kTogether; ++i) findMixes(tile[i], in + i * kWords, steps);
    for (size_t i = 0; i < kTogether; ++i, out += kWords) mix(out, tile[i]);
  }
  for (; count >= kWords; count -= kWords, in += kWords, out += kWords) {
    findMixes(mixes, in, steps);
    mix(out, mixes);
  }
  if (count == 0) return;
  Pixel rest[kWords] = {};
  __builtin_memcpy(rest, in, count * sizeof *in);
  findMixes(mixes, rest, steps);
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

// ---- Tables of integers ----

// Gathers four entries.
__m128i fourEntries(const Pixel* cube, const uint16_t* places) {
  const auto number = [=](size_t i) { return static_cast<int32_t>(cube[places[i]]); };
  const auto entry = [=](size_t i) { return _mm_cvtsi32_si128(number(i)); };
#ifdef __AVX2__
  return _mm_insert_epi32(_mm_insert_epi32(_mm_insert_epi32(entry(0), number(1), 1), number(2), 2), number(3),
                          3);
#else
  return _mm_unpacklo_epi64(_mm_unpacklo_epi32(entry(0), entry(1)), _mm_unpacklo_epi32(entry(2), entry(3)));
#endif
}

// Gathers the entries of one half of the pixels.
Words entries(const Pixel* cube, const uint16_t* places) {
#if defined(__AVX512VBMI__)
  __m512i all = _mm512_castsi128_si512(fourEntries(cube, places));
  all = _mm512_maskz_inserti32x4(0xFFFF, all, fourEntries(cube, places + 8), 1);
  all = _mm512_maskz_inserti32x4(0xFFFF, all, fourEntries(cube, places + 16), 2);
  return reinterpret_cast<Words>(_mm512_maskz_inserti32x4(0xFFFF, all, fourEntries(cube, places + 24), 3));
#elif defined(__AVX2__)
  return reinterpret_cast<Words>(_mm256_inserti128_si256(_mm256_castsi128_si256(fourEntries(cube, places)),
                                                         fourEntries(cube, places + 8), 1));
#else
  return reinterpret_cast<Words>(fourEntries(cube, places));
#endif
}

// Sums of weighted entries in 17ths.
struct Sums {
  Words redBlue = {}, green = {};

  void add(Words entries, Vector weights) {
    redBlue += (entries & 0xFF) * reinterpret_cast<Words>(weights);
    green += (entries >> 8) * reinterpret_cast<Words>(weights);
  }
  // v * 61681 >> 20 is v / 17 up to 65535.
  static Words seventeenth(Words sums) { return multiplyHigh(sums, all(61681)) >> 4; }
  Vector pixels(uint32_t top) const {
    const auto redBlues = reinterpret_cast<Pixels>(seventeenth(redBlue));
    const auto greens = reinterpret_cast<Pixels>(seventeenth(green));
    return reinterpret_cast<Vector>(redBlues | (greens << 8 & 0xFF00) | top);
  }
};

}  // namespace

void mapThroughCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const double* cube) {
  constexpr Steps kSteps = {kCubeSide * kCubeSide * 3, kCubeSide * 3, 3};
  static_assert(kSteps.red <= kStepMask);
  const __m128i tops = _mm_set1_epi32(static_cast<int32_t>(top));
  mapMixed(out, in, count, kSteps, [=](Pixel* to, const Mixes& mixes) {
    double weight[4][kWords];
    for (size_t c = 0; c < 4; ++c) {
      for (size_t i = 0; i < kWords; ++i) weight[c][i] = mixes.weight[c][i];
    }
    const auto part = [&](size_t c, size_t i) { return weighted(cube + mixes.corner[c][i], &weight[c][i]); };
    for (size_t four = 0; four < kWords / 4; ++four) {
      Entry sums[4];
      for (size_t i = 0; i < 4; ++i) {
        const size_t lane = four * 4 + i;
        sums[i] = plus(plus(plus(part(0, lane), part(1, lane)), part(2, lane)), part(3, lane));
      }
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + firstPixelOf(four)),
                       _mm_or_si128(fourPixels(sums), tops));
    }
  });
}

void mapThroughWholeCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Pixel* cube) {
  constexpr Steps kSteps = {kWholeCubeSide * kWholeCubeSide, kWholeCubeSide, 1};
  mapMixed(out, in, count, kSteps, [=](Pixel* to, const Mixes& mixes) {
    Sums low, high;
    for (size_t c = 0; c < 4; ++c) {
      const auto weight = reinterpret_cast<Vector>(mixes.weight[c]);
      low.add(entries(cube, mixes.corner[c]), ZVR_VECTOR(unpacklo_epi16)(weight, weight));
      high.add(entries(cube, mixes.corner[c] + 4), ZVR_VECTOR(unpackhi_epi16)(weight, weight));
    }
    const Vector first = low.pixels(top), second = high.pixels(top);
    __builtin_memcpy(to, &first, sizeof first);
    __builtin_memcpy(to + kPixels, &second, sizeof second);
  });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
