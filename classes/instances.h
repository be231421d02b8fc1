// What both classes do with their instances.
#pragma once

#include "frame/entry_points.h"
#include "frame/held.h"
#include "picture/rows.h"

// The plug-in's data in an instance; null when the host has none.
template <typename Data>
Data* dataOf(REALobjectStruct* object, REALclassDefinition& definition) {
  return static_cast<Data*>(REALGetPluginData(object, &definition));
}

// Takes the reference that an instance holds on a picture: the instance forgets it.
inline Held<REALpictureStruct> takePicture(REALpictureStruct*& picture) {
  Held<REALpictureStruct> taken(picture);
  picture = nullptr;
  return taken;
}

// How many columns or rows a limit leaves: those from `least` to `most`, or to the picture's end where `most`
// is no limit. A negative `least` counts literally, on purpose: it adds to them, up to the whole length.
inline int32_t limited(int32_t least, int32_t most, int32_t length) {
  const int64_t end = least < most && most < length ? most : length;
  const int64_t count = end - least;
  return static_cast<int32_t>(count < 0 ? 0 : count > length ? length : count);
}

// What of a picture a filter works on. Its limits make the area smaller, but it always begins at the top left
// pixel: on purpose.
template <typename Data>
Region areaOf(const Data& limits, const PictureEditor& picture) {
  return {0, 0, limited(limits.minX, limits.maxX, picture.width),
          limited(limits.minY, limits.maxY, picture.height)};
}
