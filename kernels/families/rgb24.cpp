// Unpacks RGB24 pixels to words and packs words to RGB24, one vector at a time.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Bytes of RGB24 that `widened` reads and `narrow` writes for one vector of words; those after the vector's
// pixels are unused.
#if defined(__AVX512VBMI__)
constexpr size_t kReach = 64;
#elif defined(__AVX2__)
constexpr size_t kReach = 28;
#else
constexpr size_t kReach = 14;
#endif

// Prefetching reaches beyond the tile that is being processed, but not so far that tiles of other pictures
// leave the cache.
constexpr size_t kTileDistance = 4096;

#if defined(__AVX2__)

// Shuffle indices: for each byte of 16 words its place in the RGB24 pixels, and the inverse.
struct Order {
  uint8_t at[64];
};

constexpr Order placesInBytes() {
  Order order{};
  for (size_t i = 0; i < sizeof order; ++i)
    order.at[i] = static_cast<uint8_t>(i % 4 == 3 ? 0x80 : i / 4 * 3 + 2 - i % 4);  // 0x80 gives 0
  return order;
}

constexpr Order placesInWords() {
  Order order{};
  for (size_t i = 0; i < 48; ++i) order.at[i] = static_cast<uint8_t>(i / 3 * 4 + 2 - i % 3);
  return order;
}

alignas(64) constexpr Order kPlacesInBytes = placesInBytes(), kPlacesInWords = placesInWords();

#endif

// `widened` unpacks RGB24 pixels to a vector of words with top bytes of 0; `narrow` packs them again.
#if defined(__AVX512VBMI__)

Pixels widened(const void* in) {
  const auto bytes = reinterpret_cast<Vector>(load(in));
  const auto order = reinterpret_cast<Vector>(load(&kPlacesInBytes));
  return reinterpret_cast<Pixels>(_mm512_permutexvar_epi8(order, bytes)) & 0xFFFFFF;
}

void narrow(void* out, Pixels pixels) {
  const auto order = reinterpret_cast<Vector>(load(&kPlacesInWords));
  store(out, reinterpret_cast<Pixels>(_mm512_permutexvar_epi8(order, reinterpret_cast<Vector>(pixels))));
}

#elif defined(__AVX2__)

Vector inOrder(Vector bytes, const Order& order) {
  __m128i places;
  __builtin_memcpy(&places, &order, sizeof places);
  return _mm256_shuffle_epi8(bytes, allLanes(places));
}

// A shuffle moves bytes only within a 128-bit lane, which holds 4 pixels.
Pixels widened(const uint8_t* in) {
  __m128i lanes[2];
  __builtin_memcpy(&lanes[0], in, sizeof lanes[0]);
  __builtin_memcpy(&lanes[1], in + 12, sizeof lanes[1]);
  const Vector bytes = _mm256_inserti128_si256(_mm256_castsi128_si256(lanes[0]), lanes[1], 1);
  return reinterpret_cast<Pixels>(inOrder(bytes, kPlacesInBytes));
}

void narrow(uint8_t* out, Pixels pixels) {
  const Vector bytes = inOrder(reinterpret_cast<Vector>(pixels), kPlacesInWords);
  const __m128i lanes[] = {_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1)};
  __builtin_memcpy(out, &lanes[0], sizeof lanes[0]);
  __builtin_memcpy(out + 12, &lanes[1], sizeof lanes[1]);
}

#else

// Swaps red and blue and clears the top byte.
Pixels swapped(Pixels p) {
  const auto redAndBlue = reinterpret_cast<Vector>(p & 0xFF00FF);
  const Vector exchanged = _mm_shufflehi_epi16(_mm_shufflelo_epi16(redAndBlue, 0xB1), 0xB1);
  return (p & 0xFF00) | reinterpret_cast<Pixels>(exchanged);
}

typedef uint64_t Pairs __attribute__((vector_size(16)));
constexpr uint64_t kFirst = 0xFFFFFF, kSecond = kFirst << 32;

// SSE2 has no byte shuffle: shifts separate the two pixels of each half.
Pixels widened(const uint8_t* in) {
  Pairs bytes;
  __builtin_memcpy(&bytes, in, 8);
  __builtin_memcpy(reinterpret_cast<uint8_t*>(&bytes) + 8, in + 6, 8);
  return swapped(reinterpret_cast<Pixels>((bytes & kFirst) | (bytes << 8 & kSecond)));
}

void narrow(uint8_t* out, Pixels pixels) {
  const auto words = reinterpret_cast<Pairs>(swapped(pixels));
  const Pairs bytes = (words & kFirst) | (words & kSecond) >> 8;
  __builtin_memcpy(out, &bytes, 8);
  __builtin_memcpy(out + 6, reinterpret_cast<const uint8_t*>(&bytes) + 8, 8);
}

#endif

// The tail: pixels that `widened` and `narrow` can't handle without reaching too far.
#if defined(__AVX512VBMI__)

// Masks for 0 to kPixels pixels. A lookup table, because building a 64-bit mask from 32-bit halves goes
// through memory.
struct ByteMasks {
  __mmask64 of[kPixels + 1];
  constexpr ByteMasks() : of() {
    for (size_t i = 0; i <= kPixels; ++i) of[i] = (1ULL << i * 3) - 1;
  }
};
constexpr ByteMasks kFirstBytes;

void unpackTail(Pixel* out, const uint8_t* in, size_t count, uint32_t top) {
  for (size_t length; count > 0; count -= length, in += length * 3, out += length) {
    length = count < kPixels ? count : kPixels;
    const Vector bytes = _mm512_maskz_loadu_epi8(kFirstBytes.of[length], in);
    _mm512_mask_storeu_epi32(out, static_cast<__mmask16>((1U << length) - 1),
                             reinterpret_cast<Vector>(widened(&bytes) | top));
  }
}

void packTail(uint8_t* out, const Pixel* in, size_t count) {
  for (size_t length; count > 0; count -= length, in += length, out += length * 3) {
    length = count < kPixels ? count : kPixels;
    Vector bytes;
    narrow(&bytes, reinterpret_cast<Pixels>(
                       _mm512_maskz_loadu_epi32(static_cast<__mmask16>((1U << length) - 1), in)));
    _mm512_mask_storeu_epi8(out, kFirstBytes.of[length], bytes);
  }
}

#else

void unpackTail(Pixel* out, const uint8_t* in, size_t count, uint32_t top) {
  for (; count > 0; --count, in += 3)
    *out++ = static_cast<uint32_t>(in[0]) << 16 | static_cast<uint32_t>(in[1]) << 8 | in[2] | top;
}

void packTail(uint8_t* out, const Pixel* in, size_t count) {
  for (; count > 0; --count, out += 3) {
    const uint32_t word = *in++;
    out[0] = static_cast<uint8_t>(word >> 16);
    out[1] = static_cast<uint8_t>(word >> 8);
    out[2] = static_cast<uint8_t>(word);
  }
}

#endif

}  // namespace

void unpackRGB24(Output out, const uint8_t* in, size_t count, uint32_t top) {
  size_t at = 0;
  if (out.streams && reinterpret_cast<uintptr_t>(out.pixels) % sizeof(Pixel) == 0) {
    const size_t head = headOf(out, count);
    if (count >= head + kReach) {
      unpackTail(out, in, head, top);
      at = inStreams<2, kLinePixels>(
          head, count - kReach, [=](size_t line) __attribute__((always_inline)) {
            prefetch(in + line * 3);
            for (size_t i = line; i < line + kLinePixels; i += kPixels)
              stream(out + i, reinterpret_cast<Vector>(widened(in + i * 3) | top));
          });
    }
  }
  for (; (count - at) * 3 >= kReach; at += kPixels) {
    prefetch(in + at * 3, kTileDistance);
    store(out + at, widened(in + at * 3) | top);
  }
  unpackTail(out + at, in + at * 3, count - at, top);
}

void packRGB24(uint8_t* out, const Pixel* in, size_t count, bool streams) {
  // Streaming stores write whole lines: packs to some lines in the cache first.
  constexpr size_t kLines = 24, kAtOnce = kLines * kCacheLine / 3;
  alignas(kCacheLine) uint8_t lines[kLines * kCacheLine];
  if (streams && reinterpret_cast<uintptr_t>(out) % kCacheLine == 0) {
    for (; count >= kAtOnce; count -= kAtOnce, in += kAtOnce, out += sizeof lines) {
      packRGB24(lines, in, kAtOnce, false);
      for (size_t i = 0; i < sizeof lines; i += sizeof(Vector))
        stream(out + i, reinterpret_cast<Vector>(load(lines + i)));
    }
  }
  for (; count * 3 >= kReach; count -= kPixels, in += kPixels, out += kPixels * 3) narrow(out, load(in));
  packTail(out, in, count);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
