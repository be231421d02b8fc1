// Sums over sound samples, and the bars that are drawn from them.

#include <immintrin.h>

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Sums in four lanes, each modulo 2^32.
struct Lanes {
  __m128i negative = _mm_setzero_si128(), positive = _mm_setzero_si128();
};

// Of values of 16 bits.
struct WordLanes : Lanes {
  void add(__m128i values) {
    const __m128i one = _mm_set1_epi16(1), isNegative = _mm_srai_epi16(values, 15);
    negative = _mm_add_epi32(negative, _mm_madd_epi16(_mm_and_si128(isNegative, values), one));
    positive = _mm_add_epi32(positive, _mm_madd_epi16(_mm_andnot_si128(isNegative, values), one));
  }
};

// Of values of 8 bits, each 128 too high.
struct ByteLanes : Lanes {
  void add(__m128i values) {
    const __m128i middle = _mm_set1_epi8(-128), zero = _mm_setzero_si128();
    negative = _mm_sub_epi32(negative, _mm_sad_epu8(_mm_subs_epu8(middle, values), zero));
    positive = _mm_add_epi32(positive, _mm_sad_epu8(_mm_subs_epu8(values, middle), zero));
  }
};

uint32_t total(__m128i lanes) {
  uint32_t lane[4];
  __builtin_memcpy(lane, &lanes, sizeof lane);
  return lane[0] + lane[1] + lane[2] + lane[3];
}

// 16 bytes at a time; `flip` turns samples into the values that the lanes take, and `silence` into their 0.
template <typename SampleLanes>
Excursions sum(const uint8_t* in, size_t bytes, __m128i flip, __m128i silence) {
  SampleLanes lanes;
  for (; bytes >= 16; bytes -= 16, in += 16) {
    __m128i samples;
    __builtin_memcpy(&samples, in, 16);
    lanes.add(_mm_xor_si128(samples, flip));
  }
  __builtin_memcpy(&silence, in, bytes);
  lanes.add(_mm_xor_si128(silence, flip));
  return {total(lanes.negative), total(lanes.positive)};
}

}  // namespace

Excursions sumInt8(const uint8_t* samples, size_t count) {
  return sum<ByteLanes>(samples, count, _mm_set1_epi8(-128), _mm_setzero_si128());
}

Excursions sumUInt8(const uint8_t* samples, size_t count) {
  return sum<ByteLanes>(samples, count, _mm_setzero_si128(), _mm_set1_epi8(-128));
}

Excursions sumInt16(const uint8_t* samples, size_t count) {
  return sum<WordLanes>(samples, count * 2, _mm_setzero_si128(), _mm_setzero_si128());
}

Excursions sumUInt16(const uint8_t* samples, size_t count) {
  const __m128i middle = _mm_set1_epi16(-32768);
  return sum<WordLanes>(samples, count * 2, middle, middle);
}

void bars(Pixel* out, const int32_t* first, const int32_t* last, size_t count, int32_t row, uint32_t inside,
          uint32_t outside) {
  for (size_t i = 0; i < count; ++i) out[i] = first[i] <= row && row <= last[i] ? inside : outside;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
