// PictureSepiaZVR: toned monochrome.

#include "classes/classes.h"
#include "classes/instances.h"
#include "kernels/convert.h"

namespace {

PictureSepiaData* sepiaOf(REALobjectStruct* object) { return dataOf<PictureSepiaData>(object, gSepiaClass); }

enum Weight { kRed, kGreen, kBlue };

double getWeight(REALobjectStruct* object, Weight weight) {
  const PictureSepiaData* sepia = sepiaOf(object);
  return sepia ? sepia->weights[weight] : 0.0;
}

void setWeight(REALobjectStruct* object, Weight weight, double value) {
  if (PictureSepiaData* sepia = sepiaOf(object)) sepia->weights[weight] = value;
}

// The kernel's parameters from the properties.
kernels::Sepia toningOf(const PictureSepiaData& sepia) {
  const auto fixedPoint = [&](Weight weight) {
    return static_cast<uint32_t>(toInt32(1024 * sepia.weights[weight]));
  };
  return {fixedPoint(kRed),
          fixedPoint(kGreen),
          fixedPoint(kBlue),
          static_cast<uint32_t>(sepia.sepiaRed),
          static_cast<uint32_t>(sepia.sepiaGreen),
          static_cast<uint32_t>(sepia.sepiaBlue)};
}

}  // namespace

void SepiaConstructor(REALobjectStruct* object) {
  if (PictureSepiaData* sepia = sepiaOf(object)) {
    sepia->weights[kRed] = 0.299;
    sepia->weights[kGreen] = 0.587;
    sepia->weights[kBlue] = 0.114;
  }
}

void SepiaClose(REALobjectStruct* object) {
  if (PictureSepiaData* sepia = sepiaOf(object)) {
    const auto source = takePicture(sepia->source), destination = takePicture(sepia->destination);
  }
}

RBBoolean SepiaRun(REALobjectStruct* object) {
  PictureSepiaData* sepia = sepiaOf(object);
  if (!sepia) return false;
  PictureReader source;
  if (!source.GetPictureReader(sepia->source)) return false;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return false;
  const kernels::Sepia toning = toningOf(*sepia);
  const auto kernel = [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
    kernels::best().sepia(out, in, count, top, toning);
  };
  mapRegion(result, areaOf(*sepia, source), kernel, source);
  sepia->destination = result.RenderPictureWriter();  // overwrites the old one without releasing it
  return true;
}

double GetFactorR(REALobjectStruct* object, uint32_t) { return getWeight(object, kRed); }
double GetFactorG(REALobjectStruct* object, uint32_t) { return getWeight(object, kGreen); }
double GetFactorB(REALobjectStruct* object, uint32_t) { return getWeight(object, kBlue); }
void SetFactorR(REALobjectStruct* object, uint32_t, double value) { setWeight(object, kRed, value); }
void SetFactorG(REALobjectStruct* object, uint32_t, double value) { setWeight(object, kGreen, value); }
void SetFactorB(REALobjectStruct* object, uint32_t, double value) { setWeight(object, kBlue, value); }
