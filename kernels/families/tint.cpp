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
Floats min(Floats a, Floats b) { return _mm512_maskz_min_ps(0xFFFF, a, b); }
Floats max(Floats a, Floats b) { return _mm512_maskz_max_ps(0xFFFF, a, b); }
Vector minWords(Vector a, Vector b) { return _mm512_min_epu16(a, b); }
bool isAnyLowerWordZero(Vector v) { return _mm512_testn_epi16_mask(v, v) & 0x55555555; }
#elif defined(__AVX2__)
Floats min(Floats a, Floats b) { return _mm256_min_ps(a, b); }
Floats max(Floats a, Floats b) { return _mm256_max_ps(a, b); }
Vector minWords(Vector a, Vector b) { return _mm256_min_epu16(a, b); }
bool isAnyLowerWordZero(Vector v) {
  return _mm256_movemask_epi8(_mm256_cmpeq_epi16(v, Vector{})) & 0x33333333;
}
#else
Floats min(Floats a, Floats b) { return _mm_min_ps(a, b); }
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

// A bias in 65536ths that makes single precision right near integers too: it has the sign of D. That works if
// the sign is the same for all pixels, because each term of D has it, and if the values of n lie far enough
// apart. 0 where each pixel needs its own decision.
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

  Share(uint32_t share, float itsLean)
      // Rounded up to cover the rounding errors to come: no value falls below an integer that the exact one
      // reaches, and none exceeds the exact one by 4 / 65536.
      : factor(allFloats(static_cast<float>(share * (65536 / 65025.0 * (1 + 0x1p-23))))),
        lean(allFloats(itsLean)),
        sepia(allFloats(static_cast<float>(share))),
        error(allFloats(kErrors.of[share])) {}

  // The channel in 65536ths.
  Pixels of(Floats brightness) const {
    const Floats value = min(brightness * factor + lean, allFloats(255.5F * 65536));
    return reinterpret_cast<Pixels>(__builtin_convertvector(value, Ints));
  }
  // The channel as an integer; sets all bits of `unsure` where it may be off by one.
  Pixels decided(Floats brightness, Floats weightErrors, Ints& unsure) const {
    const Pixels value = of(brightness) >> 16;
    const Floats remainder = brightness * sepia - toFloats(reinterpret_cast<Vector>(value)) * 65025;
    // Where the remainder is 0 this is D, within 1000; elsewhere it exceeds any D.
    const Floats side = remainder * 0x1p40F + (weightErrors * sepia + brightness * error);
    constexpr float kSure = 0x1p22F;  // above 0.19 * n for all n that matter
    unsure |= (side < kSure) & (side > -kSure);
    return value + reinterpret_cast<Pixels>(side < 0);
  }
};

struct Toner {
  Weights weights, errors;
  Share red, green, blue;

  explicit Toner(const Tint& t)
      : weights(static_cast<int32_t>(redOf(t.gray)), static_cast<int32_t>(greenOf(t.gray)),
                static_cast<int32_t>(blueOf(t.gray))),
        errors(kErrors.of[redOf(t.gray)], kErrors.of[greenOf(t.gray)], kErrors.of[blueOf(t.gray)]),
        red(redOf(t.sepia), t.lean[0]),
        green(greenOf(t.sepia), t.lean[1]),
        blue(blueOf(t.sepia), t.lean[2]) {}

  // At least 128: lower values give 0 in all channels, as 128 does, but 128 is not near an integer.
  Floats brightnessOf(Vector pixels) const { return max(weights.sum(pixels), allFloats(128)); }
};

// For vectors with a channel near an integer.
[[gnu::noinline]] Vector decide(Vector pixels, const Toner& toner, uint32_t top, Tint& tint) {
  const Floats brightness = toner.brightnessOf(pixels), errors = toner.errors.sum(pixels);
  Ints unsure{};
  const Pixels red = toner.red.decided(brightness, errors, unsure);
  const Pixels green = toner.green.decided(brightness, errors, unsure);
  const Pixels blue = toner.blue.decided(brightness, errors, unsure);
  Pixels result = red << 16 | green << 8 | blue | top;
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
  const Toner toner(tint);
  mapVectors(
      out, in, count, [&](Vector pixels) __attribute__((always_inline)) {
        const Floats brightness = toner.brightnessOf(pixels);
        const Pixels red = toner.red.of(brightness), green = toner.green.of(brightness),
                     blue = toner.blue.of(brightness);
        const Vector nearest =
            minWords(minWords(reinterpret_cast<Vector>(red), reinterpret_cast<Vector>(green)),
                     reinterpret_cast<Vector>(blue));
        if (isAnyLowerWordZero(ZVR_VECTOR(subs_epu16)(nearest, allWords(3))))
          return decide(pixels, toner, top, tint);
        return reinterpret_cast<Vector>((red & 0xFF0000) | (green >> 8 & 0xFF00) | blue >> 16 | top);
      });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
