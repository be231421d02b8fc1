// Brightness, contrast and custom linear maps. A channel's new value depends only on its old one, so each
// channel's curve is computed once, in double, as a lookup table of 256 values.

#include <string.h>

#include "kernels/convert.h"
#include "operations/operations.h"
#include "operations/tables.h"

namespace {

uint8_t clamped(double value) {
  const int32_t whole = toInt32(value);
  return static_cast<uint8_t>(whole < 0 ? 0 : whole > 255 ? 255 : whole);
}

// Stretches values away from 127.
double contrasted(double value, double contrast) { return 127 + (value - 127) * (1 + contrast); }

// Squeezes the range toward black (brightness below 0) or toward white; the end itself stays fixed.
class LinearBrightness {
 public:
  // NaN is treated as the white side.
  explicit LinearBrightness(double brightness)
      : factor_((brightness < 0 ? 255 + brightness : 255 - brightness) / 255),
        offset_(brightness < 0 ? 0 : brightness) {}
  double operator()(double value) const { return value * factor_ + offset_; }

 private:
  double factor_, offset_;
};

template <typename Curve>
void fillTable(uint8_t (&table)[256], const Curve& curve) {
  for (int v = 0; v < 256; ++v) table[v] = curve(double(v));
}

// A new picture like the source, mapped through lookup tables that `fill` computes.
template <typename Fill>
REALpictureStruct* throughTables(REALpictureStruct* picture, const Fill& fill) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source)) return nullptr;
  kernels::ChannelTables tables;
  fill(tables);
  mapThroughTables(result, tables, source);
  return result.RenderPictureWriter();
}

// Maps each channel through its own curve: uint8_t curve(double).
template <typename Curve>
REALpictureStruct* throughCurves(REALpictureStruct* picture, const Curve& red, const Curve& green,
                                 const Curve& blue) {
  return throughTables(picture, [&](kernels::ChannelTables& tables) {
    fillTable(tables.red, red);
    fillTable(tables.green, green);
    fillTable(tables.blue, blue);
  });
}

// Maps all channels through one curve.
template <typename Curve>
REALpictureStruct* throughCurve(REALpictureStruct* picture, const Curve& curve) {
  return throughTables(picture, [&](kernels::ChannelTables& tables) {
    fillTable(tables.red, curve);
    memcpy(tables.green, tables.red, sizeof tables.red);
    memcpy(tables.blue, tables.red, sizeof tables.red);
  });
}

auto linearCurve(double brightness) {
  // Out-of-range values wrap here, on purpose; all other methods of this file clamp.
  return
      [linear = LinearBrightness(brightness)](double v) { return static_cast<uint8_t>(toInt32(linear(v))); };
}

auto absoluteCurve(double brightness) {
  return [brightness](double v) { return clamped(v + brightness); };
}

auto contrastCurve(double contrast) {
  return [contrast](double v) { return clamped(contrasted(v, contrast)); };
}

auto contrastLinearCurve(double contrast, double brightness) {
  return [contrast, linear = LinearBrightness(brightness)](double v) {
    return clamped(linear(contrasted(v, contrast)));
  };
}

auto contrastAbsoluteCurve(double contrast, double brightness) {
  return [contrast, brightness](double v) { return clamped(contrasted(v, contrast) + brightness); };
}

}  // namespace

REALpictureStruct* LinBrightnessPicture1(REALpictureStruct* picture, double brightness) {
  return throughCurve(picture, linearCurve(brightness));
}

REALpictureStruct* LinBrightnessPicture3(REALpictureStruct* picture, double red, double green, double blue) {
  return throughCurves(picture, linearCurve(red), linearCurve(green), linearCurve(blue));
}

REALpictureStruct* AbsBrightnessPicture1(REALpictureStruct* picture, double brightness) {
  return throughCurve(picture, absoluteCurve(brightness));
}

REALpictureStruct* AbsBrightnessPicture3(REALpictureStruct* picture, double red, double green, double blue) {
  return throughCurves(picture, absoluteCurve(red), absoluteCurve(green), absoluteCurve(blue));
}

REALpictureStruct* ContrastPicture1(REALpictureStruct* picture, double contrast) {
  return throughCurve(picture, contrastCurve(contrast));
}

REALpictureStruct* ContrastPicture3(REALpictureStruct* picture, double red, double green, double blue) {
  return throughCurves(picture, contrastCurve(red), contrastCurve(green), contrastCurve(blue));
}

REALpictureStruct* ContrastLinBrightnessPicture1(REALpictureStruct* picture, double contrast,
                                                 double brightness) {
  return throughCurve(picture, contrastLinearCurve(contrast, brightness));
}

REALpictureStruct* ContrastLinBrightnessPicture3(REALpictureStruct* picture, double contrastRed,
                                                 double contrastGreen, double contrastBlue,
                                                 double brightnessRed, double brightnessGreen,
                                                 double brightnessBlue) {
  return throughCurves(picture, contrastLinearCurve(contrastRed, brightnessRed),
                       contrastLinearCurve(contrastGreen, brightnessGreen),
                       contrastLinearCurve(contrastBlue, brightnessBlue));
}

REALpictureStruct* ContrastAbsBrightnessPicture1(REALpictureStruct* picture, double contrast,
                                                 double brightness) {
  return throughCurve(picture, contrastAbsoluteCurve(contrast, brightness));
}

REALpictureStruct* ContrastAbsBrightnessPicture3(REALpictureStruct* picture, double contrastRed,
                                                 double contrastGreen, double contrastBlue,
                                                 double brightnessRed, double brightnessGreen,
                                                 double brightnessBlue) {
  return throughCurves(picture, contrastAbsoluteCurve(contrastRed, brightnessRed),
                       contrastAbsoluteCurve(contrastGreen, brightnessGreen),
                       contrastAbsoluteCurve(contrastBlue, brightnessBlue));
}

REALpictureStruct* TransformPicture(REALpictureStruct* picture, double a, double b) {
  return throughCurve(picture, [a, b](double v) { return clamped(v * a + b); });
}
