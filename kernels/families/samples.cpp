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
  uint32_t sum = 0, lane[sizeof lanes / 4];
  __builtin_memcpy(lane, &lanes, sizeof lanes);
  for (const uint32_t value : lane) sum += value;
  return sum;
}

// XOR with the four bytes of `flips` turns samples into the values that the lanes add; `silences` are four
// bytes of samples that add 0.
template <typename SampleLanes>
Excursions sum(const uint8_t* in, size_t bytes, uint32_t flips, uint32_t silences) {
  const Vector flip = allPixels(flips), silence = allPixels(silences);
  SampleLanes lanes;
  const auto addFew = [&](size_t count) __attribute__((always_inline)) {
    Vector few = silence;
    __builtin_memcpy(&few, in, count);
    lanes.add(few ^ flip);
    in += count;
    bytes -= count;
  };
  // Aligns the loads, so that vectors don't cross cache lines unless samples do.
  const size_t head = (0 - reinterpret_cast<uintptr_t>(in)) % sizeof(Vector) & ~size_t{1};
  if (head > 0 && head < bytes) addFew(head);
  while (bytes >= kCacheLine) {
    prefetch(in);
    for (size_t i = 0; i < kCacheLine / sizeof(Vector); ++i, in += sizeof(Vector), bytes -= sizeof(Vector)) {
      Vector samples;
      __builtin_memcpy(&samples, in, sizeof samples);
      lanes.add(samples ^ flip);
      __asm__("" : "+x"(lanes.all), "+x"(lanes.positive));  // keeps them in registers
    }
  }
  while (bytes > 0) addFew(bytes < sizeof(Vector) ? bytes : sizeof(Vector));
  const uint32_t positive = total(lanes.positive);
  return {total(lanes.all) - positive, positive};
}

}  // namespace

Excursions sumInt8(const uint8_t* samples, size_t count) {
  return sum<ByteLanes>(samples, count, 0x80808080, 0);
}

Excursions sumUInt8(const uint8_t* samples, size_t count) {
  return sum<ByteLanes>(samples, count, 0, 0x80808080);
}

Excursions sumInt16(const uint8_t* samples, size_t count) { return sum<WordLanes>(samples, count * 2, 0, 0); }

Excursions sumUInt16(const uint8_t* samples, size_t count) {
  return sum<WordLanes>(samples, count * 2, 0x80008000, 0x80008000);
}

void bars(Pixel* out, const int32_t* first, const int32_t* last, size_t count, int32_t row, uint32_t inside,
          uint32_t outside) {
  for (size_t i = 0; i < count; ++i) out[i] = first[i] <= row && row <= last[i] ? inside : outside;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
