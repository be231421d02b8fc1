// PictureLut3DZVR: a 3D lookup table for colours.

#include "classes/classes.h"
#include "classes/instances.h"
#include "kernels/cube.h"

namespace {

PictureLut3DData* lutOf(REALobjectStruct* object) { return dataOf<PictureLut3DData>(object, gLut3DClass); }

// An element of an instance's table; null outside it.
double* element(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x) {
  PictureLut3DData* lut = lutOf(object);
  return lut && r < kLutSide && g < kLutSide && b < kLutSide && x < kLutChannels ? &lut->table[r][g][b][x]
                                                                                 : nullptr;
}

void mapThroughTable(const PictureLut3DData& lut, PictureReader& source, PictureWriter& result) {
  constexpr int64_t kManyPixels = 20000;  // from this many on, nodes pay off
  const Region area = areaOf(lut, source);
  const double* entries = &lut.table[0][0][0][0];
  kernels::Cube cube;
  if (int64_t{area.right} * area.bottom >= kManyPixels) {
    kernels::prepareCube(cube, entries);
  } else {
    cube.entries = entries;
    cube.hasNodes = false;
  }
  mapRegion(
      result, area,
      [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
        kernels::best().mapThroughCube(out, in, count, top, cube);
      },
      source);
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
