// Sums over sound samples, and the bars that are drawn from them.

#include <immintrin.h>

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// The widest vectors that pay: 64 bytes at once are slower, most loads then straddle cache lines.
#ifdef __AVX2__
using Vector = __m256i;
#define ZVR_VECTOR(operation) _mm256_##operation
#else
using Vector = __m128i;
#define ZVR_VECTOR(operation) _mm_##operation
#endif

// Sums in 32-bit lanes.
struct Lanes {
  Vector negative = {}, positive = {};
};

// Of values of 16 bits.
struct WordLanes : Lanes {
  void add(Vector values) {
    const Vector one = ZVR_VECTOR(set1_epi16)(1), isNegative = ZVR_VECTOR(srai_epi16)(values, 15);
    negative = ZVR_VECTOR(add_epi32)(negative, ZVR_VECTOR(madd_epi16)(values & isNegative, one));
    positive = ZVR_VECTOR(add_epi32)(positive, ZVR_VECTOR(madd_epi16)(values & ~isNegative, one));
  }
};

// Of values of 8 bits, each 128 too high.
struct ByteLanes : Lanes {
  void add(Vector values) {
    const Vector middle = ZVR_VECTOR(set1_epi8)(-128), zero = {};
    negative =
        ZVR_VECTOR(sub_epi32)(negative, ZVR_VECTOR(sad_epu8)(ZVR_VECTOR(subs_epu8)(middle, values), zero));
    positive =
        ZVR_VECTOR(add_epi32)(positive, ZVR_VECTOR(sad_epu8)(ZVR_VECTOR(subs_epu8)(values, middle), zero));
  }
};

uint32_t total(Vector lanes) {
  uint32_t sum = 0, lane[sizeof lanes / 4];
  __builtin_memcpy(lane, &lanes, sizeof lanes);
  for (const uint32_t value : lane) sum += value;
  return sum;
}

// `flip` turns samples into the values that the lanes take, and `silence` into their 0.
template <typename SampleLanes>
Excursions sum(const uint8_t* in, size_t bytes, Vector flip, Vector silence) {
  SampleLanes lanes;
  for (; bytes >= sizeof(Vector); bytes -= sizeof(Vector), in += sizeof(Vector)) {
    Vector samples;
    __builtin_memcpy(&samples, in, sizeof samples);
    lanes.add(samples ^ flip);
  }
  __builtin_memcpy(&silence, in, bytes);
  lanes.add(silence ^ flip);
  return {total(lanes.negative), total(lanes.positive)};
}

}  // namespace

Excursions sumInt8(const uint8_t* samples, size_t count) {
  return sum<ByteLanes>(samples, count, ZVR_VECTOR(set1_epi8)(-128), Vector{});
}

Excursions sumUInt8(const uint8_t* samples, size_t count) {
  return sum<ByteLanes>(samples, count, Vector{}, ZVR_VECTOR(set1_epi8)(-128));
}

Excursions sumInt16(const uint8_t* samples, size_t count) {
  return sum<WordLanes>(samples, count * 2, Vector{}, Vector{});
}

Excursions sumUInt16(const uint8_t* samples, size_t count) {
  const Vector middle = ZVR_VECTOR(set1_epi16)(-32768);
  return sum<WordLanes>(samples, count * 2, middle, middle);
}

void bars(Pixel* out, const int32_t* first, const int32_t* last, size_t count, int32_t row, uint32_t inside,
          uint32_t outside) {
  for (size_t i = 0; i < count; ++i) out[i] = first[i] <= row && row <= last[i] ? inside : outside;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
