// PictureLut3DZVR: a 3D lookup table for colours.

#include "classes/classes.h"
#include "classes/instances.h"
#include "kernels/convert.h"

namespace {

PictureLut3DData* lutOf(REALobjectStruct* object) { return dataOf<PictureLut3DData>(object, gLut3DClass); }

// An element of an instance's table; null outside it.
double* element(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x) {
  PictureLut3DData* lut = lutOf(object);
  return lut && r < kLutSide && g < kLutSide && b < kLutSide && x < kLutChannels ? &lut->table[r][g][b][x]
                                                                                 : nullptr;
}

// The used part of a table as bytes, if it holds only integers from 0 to 255. Maps large pictures faster,
// with the same results.
class WholeTable {
 public:
  // False if an entry doesn't fit.
  bool fill(const PictureLut3DData& lut) {
    kernels::Pixel* node = nodes_;
    for (uint32_t r = 0; r < kSide; ++r) {
      for (uint32_t g = 0; g < kSide; ++g) {
        for (uint32_t b = 0; b < kSide; ++b) {
          if (!pack(lut.table[r][g][b], *node++)) return false;
        }
      }
    }
    return true;
  }
  const kernels::Pixel* nodes() const { return nodes_; }

 private:
  static constexpr uint32_t kSide = kernels::kWholeCubeSide;

  static bool pack(const double (&entry)[kLutChannels], kernels::Pixel& node) {
    uint32_t word = 0;
    for (double value : entry) {
      const int32_t whole = toInt32(value);
      if (whole < 0 || whole > 255 || whole != value) return false;
      word = word << 8 | static_cast<uint32_t>(whole);
    }
    node = word;
    return true;
  }

  kernels::Pixel nodes_[kSide * kSide * kSide];
};

void mapThroughTable(const PictureLut3DData& lut, PictureReader& source, PictureWriter& result) {
  const Region area = areaOf(lut, source);
  const auto mapBy = [&](auto kernel, const auto* nodes) {
    mapRegion(
        result, area,
        [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
          kernel(out, in, count, top, nodes);
        },
        source);
  };
  constexpr int64_t kManyPixels = 20000;  // from this many on, filling a WholeTable pays off
  WholeTable whole;
  if (int64_t{area.right} * area.bottom >= kManyPixels && whole.fill(lut)) {
    mapBy(kernels::best().mapThroughWholeCube, whole.nodes());
  } else {
    mapBy(kernels::best().mapThroughCube, &lut.table[0][0][0][0]);
  }
}

}  // namespace

void Lut3DConstructor(REALobjectStruct*) {}

void Lut3DClose(REALobjectStruct* object) {
  if (PictureLut3DData* lut = lutOf(object)) {
    const auto source = takePicture(lut->source), destination = takePicture(lut->destination);
  }
}

RBBoolean Lut3DRun(REALobjectStruct* object) {
  PictureLut3DData* lut = lutOf(object);
  if (!lut) return false;
  takePicture(lut->destination);
  PictureReader source;
  if (!source.GetPictureReader(lut->source)) return false;
  PictureWriter result;
  if (!result.NewPictureWriter(source)) return false;
  mapThroughTable(*lut, source, result);
  lut->destination = result.RenderPictureWriter();
  return true;
}

double Lut3DGetTable(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x) {
  const double* value = element(object, r, g, b, x);
  return value ? *value : 0.0;
}

void Lut3DSetTable(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x, double value) {
  if (double* target = element(object, r, g, b, x)) *target = value;
}
