// A pixel's brightness, weighted by one base colour, spread in the proportions of another.
//
// The reference result comes from weights rounded to double, arithmetic in extended precision, and
// truncation. In exact arithmetic a new channel is n / 65025, with n = N * s, N the weighted sum of the old
// channels and s the share of the new one. Rounding can change the truncated quotient only where n / 65025 is
// an integer: everywhere else it lies 2^26 times further from one than the rounding error. So single
// precision finds most channels, a test detects values near an integer, and the rounding errors of the
// weights decide those.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

typedef int32_t Ints __attribute__((vector_size(sizeof(Vector))));
typedef float Floats __attribute__((vector_size(sizeof(Vector))));

Floats allFloats(float value) { return ZVR_VECTOR(set1_ps)(value); }
Floats toFloats(Vector ints) { return __builtin_convertvector(reinterpret_cast<Ints>(ints), Floats); }

#if defined(__AVX512VBMI__)
Floats max(Floats a, Floats b) { return _mm512_maskz_max_ps(0xFFFF, a, b); }
Vector minWords(Vector a, Vector b) { return _mm512_min_epu16(a, b); }
bool isAnyLowerWordZero(Vector v) { return _mm512_testn_epi16_mask(v, v) & 0x55555555; }
#elif defined(__AVX2__)
Floats max(Floats a, Floats b) { return _mm256_max_ps(a, b); }
Vector minWords(Vector a, Vector b) { return _mm256_min_epu16(a, b); }
bool isAnyLowerWordZero(Vector v) {
  return _mm256_movemask_epi8(_mm256_cmpeq_epi16(v, Vector{})) & 0x33333333;
}
#else
Floats max(Floats a, Floats b) { return _mm_max_ps(a, b); }
Vector minWords(Vector a, Vector b) { return _mm_sub_epi16(a, _mm_subs_epu16(a, b)); }
bool isAnyLowerWordZero(Vector v) { return _mm_movemask_epi8(_mm_cmpeq_epi16(v, Vector{})) & 0x3333; }
#endif

uint32_t redOf(uint32_t pixel) { return pixel >> 16 & 0xFF; }
uint32_t greenOf(uint32_t pixel) { return pixel >> 8 & 0xFF; }
uint32_t blueOf(uint32_t pixel) { return pixel & 0xFF; }

// ---- The reference ----

uint32_t shade(long double brightness, uint32_t sepia) {
  const double weight = sepia / 255.0;
  const auto value = static_cast<int32_t>(brightness * weight);
  return static_cast<uint32_t>(value < 255 ? value : 255);
}

uint32_t decided(uint32_t pixel, uint32_t gray, uint32_t sepia) {
  const double red = redOf(gray) / 255.0, green = greenOf(gray) / 255.0, blue = blueOf(gray) / 255.0;
  const long double brightness = static_cast<long double>(redOf(pixel)) * red +
                                 static_cast<long double>(greenOf(pixel)) * green +
                                 static_cast<long double>(blueOf(pixel)) * blue;
  return shade(brightness, redOf(sepia)) << 16 | shade(brightness, greenOf(sepia)) << 8 |
         shade(brightness, blueOf(sepia));
}

uint32_t remembered(Tint& tint, uint32_t pixel) {
  Tint::Known& known = tint.known[(pixel * 0x9E3779B1U) >> 24];
  if (known.pixel != pixel) known = {pixel, decided(pixel, tint.gray, tint.sepia)};
  return known.result;
}

// ---- Rounding errors of the weights ----

// The rounding error of v / 255 as a double, in units of 2^-60 / 255. It is an integer, since such a double
// is a multiple of 2^-60, and at most 255 * 2^6 in magnitude.
//
// With e for a weight's error, the product of the rounded weights and the pixel is
// (n + D * 2^-60 + less than 2^-60) / 65025 with D = s * (R * er + G * eg + B * eb) + N * es. Extended
// precision adds a relative error below 3.01 * 2^-64. So where n / 65025 is an integer, it stays if D is
// above 0.19 * n + 1, becomes one less if D is below -(0.19 * n + 1), and needs the reference in between.
struct WeightErrors {
  int16_t of[256];
  constexpr WeightErrors() : of() {
    for (int v = 0; v < 256; ++v) {
      const long double error = static_cast<long double>(v / 255.0) * 255 - v;
      of[v] = static_cast<int16_t>(error * 0x1p60L);
    }
  }
};
constexpr WeightErrors kErrors;

uint32_t commonDivisor(uint32_t a, uint32_t b) { return b == 0 ? a : commonDivisor(b, a % b); }

// A bias in 65536ths that makes single precision right near integers too: it has the sign of D. A channel
// below 0 is truncated to 0. That works if the sign is the same for all pixels, because each term of D has
// it, and if the values of n lie far enough apart. 0 where each pixel needs its own decision.
float leanOf(uint32_t gray, uint32_t sepia) {
  uint32_t distance = 65025;
  bool isUp = true, isDown = true, isExact = true;
  const uint32_t weights[] = {redOf(gray), greenOf(gray), blueOf(gray)};
  for (const uint32_t weight : weights) {
    const auto n = static_cast<int32_t>(weight * sepia);
    const int32_t part =
        kErrors.of[weight] * static_cast<int32_t>(sepia) + kErrors.of[sepia] * static_cast<int32_t>(weight);
    isUp = isUp && 4 * part >= n;
    isDown = isDown && -4 * part >= n;
    isExact = isExact && kErrors.of[weight] == 0 && kErrors.of[sepia] == 0;
    distance = commonDivisor(distance, weight * sepia);
  }
  if (distance < 25) return 0;
  const float lean = static_cast<float>(distance) / 4;
  return isUp || isExact ? lean : isDown ? -lean : 0;
}

// ---- Vectors ----

// Pixels from channels, which saturate to 0..255.
Vector joined(Ints red, Ints green, Ints blue, Vector tops) {
  const Vector lower =
      ZVR_VECTOR(packs_epi32)(reinterpret_cast<Vector>(blue), reinterpret_cast<Vector>(green));
  const Vector upper = ZVR_VECTOR(packs_epi32)(reinterpret_cast<Vector>(red), tops);
  const Vector bytes = ZVR_VECTOR(packus_epi16)(lower, upper);  // in each lane four of each channel
#ifdef __AVX2__
  const __m128i order = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  return ZVR_VECTOR(shuffle_epi8)(bytes, allLanes(order));
#else
  const auto interleaved = [](Vector v) { return _mm_unpacklo_epi8(v, _mm_unpackhi_epi64(v, v)); };
  return interleaved(interleaved(bytes));
#endif
}

// Weights in the layout of the multiply-add.
struct Weights {
  Vector redBlue, green;

  Weights(int32_t r, int32_t g, int32_t b)
      : redBlue(allPixels(static_cast<uint32_t>(r) << 16 | (static_cast<uint32_t>(b) & 0xFFFF))),
        green(allPixels(static_cast<uint32_t>(g) & 0xFFFF)) {}
  Floats sum(Vector pixels) const {
    const Vector greens = reinterpret_cast<Vector>(reinterpret_cast<Words>(pixels) >> 8);
    return toFloats(ZVR_VECTOR(add_epi32)(ZVR_VECTOR(madd_epi16)(pixels & allPixels(0xFF00FF), redBlue),
                                          ZVR_VECTOR(madd_epi16)(greens, green)));
  }
};

// Maps a brightness to one channel.
struct Share {
  Floats factor, lean, sepia, error;

  Share(uint32_t share, float itsLean, float units)
      // Rounded up to cover the rounding errors to come: no value falls below an integer that the exact one
      // reaches, and none exceeds the exact one by 4 / 65536.
      : factor(allFloats(static_cast<float>(share * (units / 65025.0 * (1 + 0x1p-23))))),
        lean(allFloats(itsLean * (units / 65536))),
        sepia(allFloats(static_cast<float>(share))),
        error(allFloats(kErrors.of[share])) {}

  // The channel in the units, not clamped.
  Ints of(Floats brightness) const { return __builtin_convertvector(brightness * factor + lean, Ints); }
  // The channel as an integer; sets all bits of `unsure` where it may be off by one.
  Ints decided(Floats brightness, Floats weightErrors, Ints& unsure) const {
    const Ints value = of(brightness) >> 16;
    const Floats remainder = brightness * sepia - toFloats(reinterpret_cast<Vector>(value)) * 65025;
    // Where the remainder is 0 this is D, within 1000; elsewhere it exceeds any D.
    const Floats side = remainder * 0x1p40F + (weightErrors * sepia + brightness * error);
    constexpr float kSure = 0x1p22F;  // above 0.19 * n for all n that matter; above 255 the channel saturates
    unsure |= (side < kSure) & (side > -kSure);
    return value + (side < 0);
  }
};

// `units`: how many are 1 in a channel, 65536 where it may be near an integer.
struct Toner {
  Weights weights, errors;
  Share red, green, blue;

  Toner(const Tint& t, float units)
      : weights(static_cast<int32_t>(redOf(t.gray)), static_cast<int32_t>(greenOf(t.gray)),
                static_cast<int32_t>(blueOf(t.gray))),
        errors(kErrors.of[redOf(t.gray)], kErrors.of[greenOf(t.gray)], kErrors.of[blueOf(t.gray)]),
        red(redOf(t.sepia), t.lean[0], units),
        green(greenOf(t.sepia), t.lean[1], units),
        blue(blueOf(t.sepia), t.lean[2], units) {}

  // At least 128: lower values give 0 in all channels, as 128 does, but 128 is not near an integer.
  Floats brightnessOf(Vector pixels) const { return max(weights.sum(pixels), allFloats(128)); }
};

// For vectors with a channel near an integer.
[[gnu::noinline]] Vector decide(Vector pixels, const Toner& toner, uint32_t top, Tint& tint) {
  const Floats brightness = toner.brightnessOf(pixels), errors = toner.errors.sum(pixels);
  Ints unsure{};
  const Ints red = toner.red.decided(brightness, errors, unsure);
  const Ints green = toner.green.decided(brightness, errors, unsure);
  const Ints blue = toner.blue.decided(brightness, errors, unsure);
  auto result = reinterpret_cast<Pixels>(joined(red, green, blue, allPixels(top >> 24)));
  for (size_t i = 0; i < kPixels; ++i) {
    if (unsure[i]) result[i] = remembered(tint, reinterpret_cast<Pixels>(pixels)[i] & 0xFFFFFF) | top;
  }
  return reinterpret_cast<Vector>(result);
}

}  // namespace

void tint(Output out, const Pixel* in, size_t count, uint32_t top, Tint& tint) {
  if (!tint.isPrepared) {
    tint.lean[0] = leanOf(tint.gray, redOf(tint.sepia));
    tint.lean[1] = leanOf(tint.gray, greenOf(tint.sepia));
    tint.lean[2] = leanOf(tint.gray, blueOf(tint.sepia));
    tint.isPrepared = true;
  }
  const Vector tops = allPixels(top >> 24);
  if (tint.lean[0] != 0 && tint.lean[1] != 0 && tint.lean[2] != 0) {
    const Toner toner(tint, 1);
    return mapVectors(
        out, in, count, [&](Vector pixels) __attribute__((always_inline)) {
          const Floats brightness = toner.weights.sum(pixels);
          return joined(toner.red.of(brightness), toner.green.of(brightness), toner.blue.of(brightness),
                        tops);
        });
  }
  const Toner toner(tint, 65536);
  mapVectors(
      out, in, count, [&](Vector pixels) __attribute__((always_inline)) {
        const Floats brightness = toner.brightnessOf(pixels);
        const Ints red = toner.red.of(brightness), green = toner.green.of(brightness),
                   blue = toner.blue.of(brightness);
        const Vector nearest =
            minWords(minWords(reinterpret_cast<Vector>(red), reinterpret_cast<Vector>(green)),
                     reinterpret_cast<Vector>(blue));
        if (isAnyLowerWordZero(ZVR_VECTOR(subs_epu16)(nearest, allWords(3))))
          return decide(pixels, toner, top, tint);
        return joined(red >> 16, green >> 16, blue >> 16, tops);
      });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
