// What both classes do with their instances.
#pragma once

#include "frame/entry_points.h"
#include "picture/rows.h"

// The plug-in's data in an instance; null when the host has none.
template <typename Data>
Data* dataOf(REALobjectStruct* object, REALclassDefinition& definition) {
  return static_cast<Data*>(REALGetPluginData(object, &definition));
}

// Releases a picture that an instance holds and forgets it.
inline void releasePicture(REALpictureStruct*& picture) {
  REALpictureStruct* held = picture;
  picture = nullptr;
  if (held) REALUnlockObject(held);
}

// How many columns or rows a limit leaves: those from `least` (0 when below) to `most`, or to the picture's
// end where `most` is no limit.
inline int32_t limited(int32_t least, int32_t most, int32_t length) {
  if (least < 0) least = 0;
  const int32_t end = least < most && most < length ? most : length;
  return least < end ? end - least : 0;
}

// What of a picture a filter works on. Its limits make the area smaller, but it always begins at the top left
// pixel: on purpose.
template <typename Data>
Region areaOf(const Data& limits, const PictureEditor& picture) {
  return {0, 0, limited(limits.minX, limits.maxX, picture.width),
          limited(limits.minY, limits.maxY, picture.height)};
}
