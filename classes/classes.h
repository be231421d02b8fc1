// The two filter classes: instance data and the functions that serve their members. The host allocates the
// data with each instance, zero-filled, and reads and writes stored properties itself.
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

// The records of the classes, by which the host hands out the data of their instances. Defined beside the
// tables of their members.
extern REALclassDefinition gLut3DClass;
extern REALclassDefinition gSepiaClass;

// ---- lut3d.cpp ----

// Nothing to do: a new table is all 0.
void Lut3DConstructor(REALobjectStruct* object);
// Releases source and destination and sets both to nil. Also the destructor.
void Lut3DClose(REALobjectStruct* object);
// Makes a new destination from the source; false when that can't be. The old destination is released first,
// whatever follows.
RBBoolean Lut3DRun(REALobjectStruct* object);
// An element of the table; 0 outside it (r, g, b below 18, x below 3).
double Lut3DGetTable(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x);
// Stores an element; nothing outside the table.
void Lut3DSetTable(REALobjectStruct* object, uint32_t r, uint32_t g, uint32_t b, uint32_t x, double value);

// ---- sepia.cpp ----

// Sets the weights to 0.299, 0.587 and 0.114.
void SepiaConstructor(REALobjectStruct* object);
// Releases source and destination and sets both to nil. Also the destructor.
void SepiaClose(REALobjectStruct* object);
// Makes a new destination from the source; false when that can't be. The old destination is not released, on
// purpose: a program that runs twice without Close loses it.
RBBoolean SepiaRun(REALobjectStruct* object);
// The weights of red, green and blue in a pixel's brightness, 1 for all of it. `parameter` is not looked at.
double GetFactorR(REALobjectStruct* object, uint32_t parameter);
double GetFactorG(REALobjectStruct* object, uint32_t parameter);
double GetFactorB(REALobjectStruct* object, uint32_t parameter);
void SetFactorR(REALobjectStruct* object, uint32_t parameter, double value);
void SetFactorG(REALobjectStruct* object, uint32_t parameter, double value);
void SetFactorB(REALobjectStruct* object, uint32_t parameter, double value);
