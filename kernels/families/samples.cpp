// Sums over sound samples, and the bars drawn from them.

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Sums in 32-bit lanes.
struct Lanes {
  Vector all = {}, positive = {};
};

// Of 16-bit values.
struct WordLanes : Lanes {
  void add(Vector values) {
    const Vector one = allWords(1);
    all = ZVR_VECTOR(add_epi32)(all, ZVR_VECTOR(madd_epi16)(values, one));
    positive =
        ZVR_VECTOR(add_epi32)(positive, ZVR_VECTOR(madd_epi16)(ZVR_VECTOR(max_epi16)(values, Vector{}), one));
  }
};

// Of 8-bit values biased by 128.
struct ByteLanes : Lanes {
  void add(Vector values) {
    const Vector middle = ZVR_VECTOR(set1_epi8)(-128), zero = {};
    const Vector offset = ZVR_VECTOR(sad_epu8)(middle, zero);
    all = ZVR_VECTOR(add_epi32)(all, ZVR_VECTOR(sub_epi32)(ZVR_VECTOR(sad_epu8)(values, zero), offset));
    positive =
        ZVR_VECTOR(add_epi32)(positive, ZVR_VECTOR(sad_epu8)(ZVR_VECTOR(subs_epu8)(values, middle), zero));
  }
};

uint32_t total(Vector lanes) {
#if defined(__AVX512VBMI__)
  return static_cast<uint32_t>(_mm512_reduce_add_epi32(lanes));
#else
  uint32_t sum = 0, lane[sizeof lanes / 4];
  __builtin_memcpy(lane, &lanes, sizeof lanes);
  for (const uint32_t value : lane) sum += value;
  return sum;
#endif
}

// At least one byte, at most a vector's; the others are as in `padding`.
Vector loadFew(const uint8_t* from, size_t size, Vector padding) {
#if defined(__AVX512VBMI__)
  return _mm512_mask_loadu_epi8(padding, UINT64_MAX >> (sizeof padding - size), from);
#else
  __builtin_memcpy(&padding, from, size);
  return padding;
#endif
}

// XOR with the four bytes of `flips` turns samples into the values that the lanes add; `silences` are four
// bytes of samples that add 0.
template <typename SampleLanes, size_t sampleSize>
void sum(const SampleSpans& spans, SpanExcursions& sums, uint32_t flips, uint32_t silences) {
  const Vector flip = allPixels(flips), silence = allPixels(silences);
  SampleLanes lanes[kSampleSpans];
  const uint8_t *in[kSampleSpans], *end[kSampleSpans];
  const auto addFew = [&](size_t k, size_t count) __attribute__((always_inline)) {
    lanes[k].add(loadFew(in[k], count, silence) ^ flip);
    in[k] += count;
  };
  size_t lines = SIZE_MAX;
  for (size_t k = 0; k < kSampleSpans; ++k) {
    in[k] = spans[k].samples;
    end[k] = in[k] + spans[k].count * sampleSize;
    // Aligns the loads, so that vectors don't cross cache lines unless samples do.
    const size_t head = (0 - reinterpret_cast<uintptr_t>(in[k])) % sizeof(Vector) & ~size_t{1};
    if (head > 0 && head < static_cast<size_t>(end[k] - in[k])) addFew(k, head);
    const size_t whole = static_cast<size_t>(end[k] - in[k]) / kCacheLine;
    if (whole < lines) lines = whole;
  }
  for (; lines > 0; --lines) {
    for (size_t k = 0; k < kSampleSpans; ++k) {
      prefetch(in[k]);
      for (size_t i = 0; i < kCacheLine; i += sizeof(Vector), in[k] += sizeof(Vector))
        lanes[k].add(reinterpret_cast<Vector>(load(in[k])) ^ flip);
    }
  }
  for (size_t k = 0; k < kSampleSpans; ++k) {
    for (size_t left; (left = static_cast<size_t>(end[k] - in[k])) > 0;)
      addFew(k, left < sizeof(Vector) ? left : sizeof(Vector));
    const uint32_t positive = total(lanes[k].positive);
    sums[k] = {total(lanes[k].all) - positive, positive};
  }
}

}  // namespace

void sumInt8(const SampleSpans& spans, SpanExcursions& sums) {
  sum<ByteLanes, 1>(spans, sums, 0x80808080, 0);
}

void sumUInt8(const SampleSpans& spans, SpanExcursions& sums) {
  sum<ByteLanes, 1>(spans, sums, 0, 0x80808080);
}

void sumInt16(const SampleSpans& spans, SpanExcursions& sums) { sum<WordLanes, 2>(spans, sums, 0, 0); }

void sumUInt16(const SampleSpans& spans, SpanExcursions& sums) {
  sum<WordLanes, 2>(spans, sums, 0x80008000, 0x80008000);
}

void bars(Pixel* out, const int32_t* end1, const int32_t* end2, size_t count, int32_t row, int32_t centre,
          uint32_t inside, uint32_t outside) {
  const auto draw = [=](const auto& covers) {
    for (size_t i = 0; i < count; ++i) out[i] = covers(end1[i], end2[i]) ? inside : outside;
  };
  if (row == centre) {
    draw([](int32_t, int32_t) { return true; });
  } else if (row < centre) {
    draw([=](int32_t a, int32_t b) { return (a < b ? a : b) <= row; });
  } else {
    draw([=](int32_t a, int32_t b) { return (a > b ? a : b) >= row; });
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
