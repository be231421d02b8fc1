// Access to instance data, shared by both classes.
#pragma once

#include "frame/entry_points.h"
#include "frame/held.h"
#include "picture/rows.h"

// The plug-in's data in an instance; null if the host has none.
template <typename Data>
Data* dataOf(REALobjectStruct* object, REALclassDefinition& definition) {
  return static_cast<Data*>(REALGetPluginData(object, &definition));
}

// Takes over an instance's reference on a picture; the instance's field becomes null.
inline Held<REALpictureStruct> takePicture(REALpictureStruct*& picture) {
  Held<REALpictureStruct> taken(picture);
  picture = nullptr;
  return taken;
}

// The number of columns or rows within the limits: from `least` to `most`, or to the picture's end if `most`
// sets no limit. A negative `least` increases the number, on purpose, up to the whole length.
inline int32_t limited(int32_t least, int32_t most, int32_t length) {
  const int64_t end = least < most && most < length ? most : length;
  const int64_t count = end - least;
  return static_cast<int32_t>(count < 0 ? 0 : count > length ? length : count);
}

// The region of a picture that a filter processes. The limits reduce its size, but it always starts at the
// top left pixel, on purpose.
template <typename Data>
Region areaOf(const Data& limits, const PictureEditor& picture) {
  return {0, 0, limited(limits.minX, limits.maxX, picture.width),
          limited(limits.minY, limits.maxY, picture.height)};
}
