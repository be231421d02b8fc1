#include "tests/pixel_models.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "tests/plain_kernels.h"

namespace {

using Values = std::vector<host::Value>;

Values noArguments(Random&, Rgb) { return {}; }

// A pixel by the definition of a kernel.
template <auto kernel, typename... Parameters>
Rgb by(const Rgb* source, Parameters&&... parameters) {
  Rgb result;
  kernel(&result, source, 1, 0, parameters...);
  return result;
}

// ---- Invert, merge and replace channels ----

Rgb invert(const Rgb* source, const Values&) { return by<plain::invert>(source); }

Rgb invertGray(const Rgb* source, const Values&) { return by<plain::invertGray>(source); }

Rgb brighter(const Rgb* source, const Values&) {
  Rgb result;
  plain::max(&result, source, source + 1, 1, 0);
  return result;
}

// Sources: red, blue, green.
Rgb combine(const Rgb* source, const Values&) {
  return rgb(red(source[0]), green(source[2]), blue(source[1]));
}

template <Rgb channel>
Rgb replace(const Rgb* source, const Values&) {
  return (source[0] & ~channel) | (source[1] & channel);
}

// ---- Lookup tables ----

// Blocks of 256 bytes, and shorter and longer ones.
Values tables(Random& random, Rgb) {
  Values blocks;
  for (int i = 0; i < 3; ++i) {
    std::vector<uint8_t> bytes(static_cast<size_t>(random.chance(70) ? 256 : random.between(1, 300)));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.word());
    blocks.emplace_back(host::newMemoryBlock(bytes.data(), bytes.size()));
  }
  return blocks;
}

int lookUp(const host::Value& table, int value) {
  auto* block = std::get<host::MemoryBlockRef>(table).get();
  const auto index = static_cast<size_t>(value);
  return index < host::memoryBlockSize(block) ? host::memoryBlockBytes(block)[index] : 0;
}

// Tables: red, blue, green.
Rgb transform(const Rgb* source, const Values& arguments) {
  return rgb(lookUp(arguments[0], red(*source)), lookUp(arguments[2], green(*source)),
             lookUp(arguments[1], blue(*source)));
}

// ---- Brightness and contrast ----

template <int count>
Values doubles(Random& random, Rgb) {
  constexpr double kUnits[] = {1, 0.01, 1 / 3.0};
  constexpr double kOdd[] = {NAN,  INFINITY, -INFINITY, 1e300, -1e300, 2147483647.5, -2147483648.5,
                             -0.0, 1e-300,   -255,      255,   -1,     4294967296.0, 1e10};
  Values values;
  for (int i = 0; i < count; ++i) {
    values.emplace_back(random.chance(75) ? random.between(-300, 300) * kUnits[random.between(0, 2)]
                                          : kOdd[random.between(0, int(std::size(kOdd)) - 1)]);
  }
  return values;
}

// As the processor does it.
int truncated(double value) { return _mm_cvttsd_si32(_mm_set_sd(value)); }
int clamped(double value) { return std::clamp(truncated(value), 0, 255); }

double contrasted(double v, double contrast) { return 127 + (v - 127) * (1 + contrast); }
double brightened(double v, double brightness) {
  const double factor = brightness < 0 ? (255 + brightness) / 255 : (255 - brightness) / 255;
  const double offset = brightness < 0 ? 0 : brightness;
  return v * factor + offset;
}

int linear(double v, double brightness, double) { return truncated(brightened(v, brightness)) & 255; }
int absolute(double v, double brightness, double) { return clamped(v + brightness); }
int contrast(double v, double c, double) { return clamped(contrasted(v, c)); }
int contrastLinear(double v, double c, double b) { return clamped(brightened(contrasted(v, c), b)); }
int contrastAbsolute(double v, double c, double b) { return clamped(contrasted(v, c) + b); }
int custom(double v, double a, double b) { return clamped(v * a + b); }

// Each channel by a formula of one or two parameters: given once for all channels, or for red, green and
// blue in turn.
template <int (*formula)(double, double, double), size_t parameters>
Rgb byFormula(const Rgb* source, const Values& arguments) {
  const int old[] = {red(*source), green(*source), blue(*source)};
  int changed[3];
  for (size_t channel = 0; channel < 3; ++channel) {
    double parameter[2] = {};
    for (size_t i = 0; i < parameters; ++i) {
      const size_t index = arguments.size() == parameters ? i : i * 3 + channel;
      parameter[i] = std::get<double>(arguments[index]);
    }
    changed[channel] = formula(old[channel], parameter[0], parameter[1]);
  }
  return rgb(changed[0], changed[1], changed[2]);
}

// ---- Replace and extract a colour ----

RBColor colorOf(const host::Value& value) { return std::get<host::Color>(value).rgb; }

host::Color anyColor(Random& random) { return {random.color() | random.word() << 24}; }

// Searches for a colour that is there, or one next to it; each colour with any top byte.
Values colorsNear(Random& random, Rgb hint, int others) {
  const Rgb near = random.chance(70) ? hint : hint ^ 1U << random.between(0, 23);
  Values arguments = {host::Color{near | random.word() << 24}};
  for (int i = 0; i < others; ++i) arguments.emplace_back(anyColor(random));
  return arguments;
}

Values twoColors(Random& random, Rgb hint) { return colorsNear(random, hint, 1); }
Values threeColors(Random& random, Rgb hint) { return colorsNear(random, hint, 2); }

Rgb replaceColor(const Rgb* source, const Values& colors) {
  return by<plain::replaceColor>(source, colorOf(colors[0]), colorOf(colors[1]));
}

Rgb extractColor(const Rgb* source, const Values& colors) {
  return by<plain::extractColor>(source, colorOf(colors[0]), colorOf(colors[1]), colorOf(colors[2]));
}

// ---- Saturation ----

Values saturationAmount(Random& random, Rgb) {
  // The processor's ways of dividing change where factors (amount + 255) get large or negative.
  const int64_t edges[] = {
      0,       -255,    -256,      255,       0x7EFF,          0x7F00,          0x7F01,        -0x80FE,
      -0x80FF, -0x8100, INT32_MIN, INT32_MAX, INT32_MAX - 255, INT32_MAX - 254, 8421504 - 255, 200000,
      -200000, 8421505, -8421505};
  const int64_t edge = edges[random.word() % std::size(edges)], any = static_cast<int32_t>(random.word());
  return {random.chance(33) ? edge : random.chance(50) ? random.between(-600, 600) : any};
}

Rgb saturate(const Rgb* source, const Values& arguments) {
  return by<plain::saturate>(source, static_cast<int32_t>(std::get<int64_t>(arguments[0]) + 255));
}

// ---- Tint ----

Values tintBases(Random& random, Rgb) {
  // Thirds and fifths often: they give whole values, which rounding decides.
  const Rgb bases[] = {0x555555, 0xFFFFFF, 0xAA5533, 0x336699, 0x000000, 0xFF0000};
  Values arguments;
  for (int i = 0; i < 2; ++i) {
    const Rgb base = bases[random.between(0, 5)];
    arguments.emplace_back(random.chance(60) ? host::Color{base | random.word() << 24} : anyColor(random));
  }
  return arguments;
}

Rgb tint(const Rgb* source, const Values& colors) {
  return by<plain::tint>(source, kernels::Tint{colorOf(colors[0]), colorOf(colors[1]), {}});
}

}  // namespace

const std::vector<PixelModel>& pixelModels() {
  static const std::vector<PixelModel> models = {
      {"InvertZVR", false, true, 1, noArguments, invert},
      {"InvertGrayZVR", false, true, 1, noArguments, invertGray},
      {"MergePictureZVR", true, false, 2, noArguments, brighter},
      {"CombinePicturesZVR", true, false, 3, noArguments, combine},
      {"ReplaceRedChannelZVR", false, false, 2, noArguments, replace<0xFF0000>},
      {"ReplaceGreenChannelZVR", false, false, 2, noArguments, replace<0x00FF00>},
      {"ReplaceBlueChannelZVR", false, false, 2, noArguments, replace<0x0000FF>},
      {"TransformColorsZVR", false, false, 1, tables, transform},
      {"ChangeBrightnessLinearZVR", false, true, 1, doubles<1>, byFormula<linear, 1>},
      {"ChangeBrightnessLinearZVR", false, true, 1, doubles<3>, byFormula<linear, 1>},
      {"ChangeBrightnessAbsoluteZVR", false, true, 1, doubles<1>, byFormula<absolute, 1>},
      {"ChangeBrightnessAbsoluteZVR", false, true, 1, doubles<3>, byFormula<absolute, 1>},
      {"ChangeContrastZVR", false, true, 1, doubles<1>, byFormula<contrast, 1>},
      {"ChangeContrastZVR", false, true, 1, doubles<3>, byFormula<contrast, 1>},
      {"ChangeContrastBrightnessLinearZVR", false, true, 1, doubles<2>, byFormula<contrastLinear, 2>},
      {"ChangeContrastBrightnessLinearZVR", false, true, 1, doubles<6>, byFormula<contrastLinear, 2>},
      {"ChangeContrastBrightnessAbsoluteZVR", false, true, 1, doubles<2>, byFormula<contrastAbsolute, 2>},
      {"ChangeContrastBrightnessAbsoluteZVR", false, true, 1, doubles<6>, byFormula<contrastAbsolute, 2>},
      {"ChangeCustomZVR", false, true, 1, doubles<2>, byFormula<custom, 2>},
      {"ReplaceColorZVR", false, true, 1, twoColors, replaceColor},
      {"ExtractColorZVR", false, false, 1, threeColors, extractColor},
      {"ChangeSaturationZVR", false, true, 1, saturationAmount, saturate},
      {"TintPictureZVR", true, true, 1, tintBases, tint},
  };
  return models;
}
