// The two filter classes: instance data and the functions behind their members. The host allocates the data
// with each instance, zero-filled, and accesses stored properties itself.
#pragma once

#include "frame/host_interface.h"

// Entries along each axis of a PictureLut3DZVR's table, and values in an entry (red, green, blue; 0 to 255).
constexpr uint32_t kLutSide = 18;
constexpr uint32_t kLutChannels = 3;

struct PictureLut3DData {
  REALpictureStruct* source;       // one reference held
  REALpictureStruct* destination;  // one reference held
  int32_t minX, minY, maxX, maxY;
  double table[kLutSide][kLutSide][kLutSide][kLutChannels];  // by red, green, blue index and result channel
};
static_assert(offsetof(PictureLut3DData, destination) == 4 && offsetof(PictureLut3DData, minX) == 8 &&
              offsetof(PictureLut3DData, minY) == 12 && offsetof(PictureLut3DData, maxX) == 16 &&
              offsetof(PictureLut3DData, maxY) == 20 && offsetof(PictureLut3DData, table) == 24 &&
              sizeof(PictureLut3DData) == 139992);

struct PictureSepiaData {
  double weights[3];               // of red, green and blue
  REALpictureStruct* source;       // one reference held
  REALpictureStruct* destination;  // one reference held
  int32_t minX, minY, maxX, maxY;
  int32_t sepiaRed, sepiaGreen, sepiaBlue;
  uint32_t unused;
};
static_assert(offsetof(PictureSepiaData, source) == 24 && offsetof(PictureSepiaData, destination) == 28 &&
              offsetof(PictureSepiaData, minX) == 32 && offsetof(PictureSepiaData, minY) == 36 &&
              offsetof(PictureSepiaData, maxX) == 40 && offsetof(PictureSepiaData, maxY) == 44 &&
              offsetof(PictureSepiaData, sepiaRed) == 48 && offsetof(PictureSepiaData, sepiaBlue) == 56 &&
              sizeof(PictureSepiaData) == 64);

// The class records; the host looks up instance data by them. Defined next to the tables of their members.
extern REALclassDefinition gLut3DClass;
extern REALclassDefinition gSepiaClass;

// ---- lut3d.cpp ----

// A no-op: a new table is all 0.
void Lut3DConstructor(REALobjectStruct* object);
// Releases source and destination and sets both to nil. Also the destructor.
void Lut3DClose(REALobjectStruct* object);
// Creates a new destination from the source; false on failure. Releases the old destination first in any
// case.
RBBoolean Lut3DRun(REALobjectStruct* object);
// An element of the table, with r, g, b below 18 and x below 3; 0 outside it.
double Lut3DGetTable(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x);
// Stores an element; a no-op outside the table.
void Lut3DSetTable(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x, double value);

// ---- sepia.cpp ----

// Sets the weights to 0.299, 0.587 and 0.114.
void SepiaConstructor(REALobjectStruct* object);
// Releases source and destination and sets both to nil. Also the destructor.
void SepiaClose(REALobjectStruct* object);
// Creates a new destination from the source; false on failure. Does not release the old destination, on
// purpose: a program that runs twice without Close leaks it.
RBBoolean SepiaRun(REALobjectStruct* object);
// The weights of red, green and blue in a pixel's brightness; 1 is the full value. `parameter` is ignored.
double GetFactorR(REALobjectStruct* object, uint32_t parameter);
double GetFactorG(REALobjectStruct* object, uint32_t parameter);
double GetFactorB(REALobjectStruct* object, uint32_t parameter);
void SetFactorR(REALobjectStruct* object, uint32_t parameter, double value);
void SetFactorG(REALobjectStruct* object, uint32_t parameter, double value);
void SetFactorB(REALobjectStruct* object, uint32_t parameter, double value);
